// The parameters of the simulated instrument: names, addresses, types, units, bounds, access.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace simulator::model {

constexpr std::uint32_t cChannels = 4;
constexpr std::uint32_t cSequenceLines = 20;
constexpr std::uint32_t cAlarmRows = 38;
constexpr std::uint32_t cSolutionSlots = 11;  ///< 0 to 10
constexpr std::uint32_t cPeaks = 400;         ///< the most of a channel, and of all together
constexpr double cMinute = 60.0;              ///< of parameters in minutes, in seconds

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
  eInstSerial,
  eStreamConfigured,
  eStreamMaxNr,
  eModuleSerial,
  eModulePartNumber,
  eCarrierGas,
  eStartRunType,
  eStartLevel,
  eStartStream,
  eStartCalibType,
  eStartReplicates,
  eStartReplicate,
  eStreamNr,
  eSlotNr,
  eTableRepeat,
  eTotalLines,
  eLineRunType,
  eLineRepeat,
  eLineStream,
  eLineCalib,
  eLineSolution,
  eLineFlushTime,
  ePeakRetention,
  ePeakLevelAmount,
  ePeakLinear,
  eAlarmEnabled,
  eAlarmTotal,
  eAlarmOn,
  eAlarmOnAll,
  eAlarmGroup,
  eAlarmParam,
  eAlarmTriggered,
};

/// How many parameters a row stands for.
enum class eSpan {
  eSingle,     ///< one
  eByChannel,  ///< one on each channel n, with one id; n is appended to the name
  eById,       ///< one id after the other on the row's channel; n is appended to the name
};

/// Which field of a record carries the value.
enum class eType { eInteger, eReal };

/// Which table the steps of a row count through: what a record's step says there.
enum class eTable {
  eNone,      ///< no steps
  eSlots,     ///< solution slots, from 0
  eSequence,  ///< lines of the automation sequence, from 1
  ePeaks,     ///< calibrated peaks of a channel, from 1
  eAlarms,    ///< alarm rows, from 1
};

enum class eAccess {
  eReadWrite,  ///< a setting: written over the connection, within its bounds
  eReadOnly,   ///< stored; changed by the instrument itself or by an operator of the simulation
  eComputed,   ///< follows from the instrument's state and the time
};

struct ParameterRow {
  eParam param{};
  std::uint32_t id = 0;       ///< of the first parameter of the row
  std::uint32_t channel = 0;  ///< of the first parameter of the row
  eSpan span = eSpan::eSingle;
  const char* name = "";  ///< without the digit where the row is a family, and without step
  eType type = eType::eInteger;
  eAccess access = eAccess::eComputed;
  const char* unit = "";
  double lowest = 0.0;
  double highest = 0.0;
  eTable table = eTable::eNone;
};

/// One parameter. Its place in the table, 0 to slotCount() - 1, is what the model knows it by.
struct Slot {
  const ParameterRow* row;
  std::uint32_t member;  ///< 1 to 4 in a family, 0 for a single parameter
  std::uint32_t channel;
  std::uint32_t id;
  std::uint32_t step;  ///< 0 where the row has no steps
};

std::size_t slotCount();

Slot slotAt(std::size_t aSlot);

/// Name of a parameter: "mGC_State", "mColumnTemp1", "mRepeat[2]", "mLevelAmt1[3]".
std::string nameOf(std::size_t aSlot);

/// Slot of a parameter; `aMember` is 1 to 4 in a family, and of no meaning for a single one;
/// `aStep` one of its table's, and of no meaning where the row has none.
std::size_t slotOf(eParam aParam, std::uint32_t aMember = 1, std::uint32_t aStep = 1);

/// Finds what any instrument could have: whether a line, peak or row is there is not its business.
std::optional<std::size_t> findAddress(std::uint32_t aChannel, std::uint32_t aMethod,
                                       std::uint32_t aStep, std::uint32_t aParmID);
std::optional<std::size_t> findName(const std::string& aName);

}  // namespace simulator::model
