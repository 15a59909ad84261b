// The parameters of the simulated instrument: names, addresses, types, units, bounds, access.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace model {

constexpr std::uint32_t cChannels = 4;

/// The rows of the parameter table, in its order.
enum class eParam : std::size_t {
  eInstalled,
  eColumnHeader,
  eHeatedSampleLineInstalled,
  eColumnTemp,
  eInjTemp,
  ePress,
  eColumnTempSP,
  eInjTempSP,
  ePressSP,
  eRunTimeSP,
  eAutoZero,
  eDetState,
  eDetCalibrated,
  eSampleLineTemp,
  eSampleLineTempSP,
  eAmbientTemp,
  eAmbientPressure,
  eServiceSwitch,
  eAutoState,
  eExtReady,
  eGcState,
  eCurrentStream,
  eErrorStatus,
  eCurRunTime,
  eFlushingStream,
  eWaitingBetweenRuns,
  eCleaningTimeLeft,
  eAnalysisCounter,
  eContinuous,
  eSeqLine,
  eLineReplicate,
  eSeqReplicate,
  eRunType,
  eAlarmOverall,
  eHasController,
};

/// How many parameters a row stands for.
enum class eSpan {
  eSingle,     ///< one
  eByChannel,  ///< one on each channel n, with one id; n is appended to the name
  eById,       ///< one id after the other on the row's channel; n is appended to the name
};

/// Which field of a record carries the value.
enum class eType { eInteger, eReal };

enum class eAccess {
  eReadWrite,  ///< a setting: written over the connection, within its bounds
  eReadOnly,   ///< stored; changed by the instrument itself or by an operator of the simulation
  eComputed,   ///< follows from the instrument's state and the time
};

struct ParameterRow {
  eParam param;
  std::uint32_t id;       ///< of the first parameter of the row
  std::uint32_t channel;  ///< of the first parameter of the row
  eSpan span;
  const char* name;  ///< without the digit where the row is a family
  eType type;
  eAccess access;
  const char* unit;
  double lowest;
  double highest;
};

/// One parameter. Its place in the table, 0 to cSlots - 1, is what the model knows it by.
struct Slot {
  const ParameterRow* row;
  std::uint32_t member;  ///< 1 to 4 in a family, 0 for a single parameter
  std::uint32_t channel;
  std::uint32_t id;
};

constexpr std::size_t cSlots = 71;

const Slot& slotAt(std::size_t aSlot);

/// Name of a parameter: "mGC_State", "mColumnTemp1".
std::string nameOf(std::size_t aSlot);

/// Slot of a parameter; `aMember` is 1 to 4 in a family, and of no meaning for a single one.
std::size_t slotOf(eParam aParam, std::uint32_t aMember = 1);

std::optional<std::size_t> findAddress(std::uint32_t aChannel, std::uint32_t aMethod,
                                       std::uint32_t aStep, std::uint32_t aParmID);
std::optional<std::size_t> findName(const std::string& aName);

}  // namespace model
