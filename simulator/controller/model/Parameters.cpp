// The parameter table, and the ways into it.
#include "Parameters.h"

#include <array>

namespace model {

namespace {

constexpr double cIntMax = 2147483647;

constexpr auto eSingle = eSpan::eSingle;
constexpr auto eByChannel = eSpan::eByChannel;
constexpr auto eById = eSpan::eById;
constexpr auto eInteger = eType::eInteger;
constexpr auto eReal = eType::eReal;
constexpr auto eReadWrite = eAccess::eReadWrite;
constexpr auto eReadOnly = eAccess::eReadOnly;
constexpr auto eComputed = eAccess::eComputed;

// Addresses are the instrument's; bounds and units are what is assumed of it.
// clang-format off
constexpr ParameterRow cRows[] = {
    {eParam::eInstalled, 502, 0, eById, "mInstalled", eInteger, eReadOnly, "", 0, 1},
    {eParam::eColumnHeader, 200, 1, eByChannel, "mColumnHeader", eInteger, eReadOnly, "", 0, 1},
    {eParam::eHeatedSampleLineInstalled, 602, 0, eSingle, "mHeatedSampleLineInstalled", eInteger, eReadOnly, "", 0, 1},
    {eParam::eColumnTemp, 300, 1, eByChannel, "mColumnTemp", eReal, eComputed, "degC", -40, 250},
    {eParam::eInjTemp, 302, 1, eByChannel, "mInjTemp", eReal, eComputed, "degC", -40, 250},
    {eParam::ePress, 304, 1, eByChannel, "mPress", eReal, eComputed, "kPa", 0, 500},
    {eParam::eColumnTempSP, 202, 1, eByChannel, "mColumnTempSP", eReal, eReadWrite, "degC", 0, 180},
    {eParam::eInjTempSP, 203, 1, eByChannel, "mInjTempSP", eReal, eReadWrite, "degC", 0, 110},
    {eParam::ePressSP, 342, 1, eByChannel, "mPressSP", eReal, eReadWrite, "kPa", 0, 350},
    {eParam::eRunTimeSP, 204, 1, eByChannel, "mRunTimeSP", eInteger, eReadWrite, "s", 0, 3600},
    {eParam::eAutoZero, 307, 1, eByChannel, "mAutoZero", eReal, eComputed, "mV", -1000, 1000},
    {eParam::eDetState, 215, 1, eByChannel, "mDetState", eInteger, eReadOnly, "", 0, 1},
    {eParam::eDetCalibrated, 323, 1, eByChannel, "mDetCalibrated", eInteger, eReadOnly, "", 0, 1},
    {eParam::eSampleLineTemp, 100, 0, eSingle, "mSampleLineTemp", eReal, eComputed, "degC", -40, 250},
    {eParam::eSampleLineTempSP, 1, 0, eSingle, "mSampleLineTempSP", eReal, eReadWrite, "degC", 0, 110},
    {eParam::eAmbientTemp, 103, 0, eSingle, "mAmbientTemp", eInteger, eReadOnly, "degC", -40, 80},
    {eParam::eAmbientPressure, 104, 0, eSingle, "mAmbientPressure", eReal, eComputed, "kPa", 50, 120},
    {eParam::eServiceSwitch, 70, 0, eSingle, "mServiceSwitch", eInteger, eReadOnly, "", 0, 1},
    {eParam::eAutoState, 138, 0, eSingle, "mAutoState", eInteger, eComputed, "", 0, 6},
    {eParam::eExtReady, 131, 0, eSingle, "mExtReady", eInteger, eReadOnly, "", 0, 1},
    {eParam::eGcState, 102, 0, eSingle, "mGC_State", eInteger, eComputed, "", 0, 10},
    {eParam::eCurrentStream, 58, 0, eSingle, "mCurrentStream", eInteger, eReadOnly, "", 0, 46},
    {eParam::eErrorStatus, 132, 0, eSingle, "mGC_Error_Status", eInteger, eReadOnly, "", 0, 65535},
    {eParam::eCurRunTime, 161, 0, eSingle, "mGC_CurRunTime", eInteger, eComputed, "s", 0, 3600},
    {eParam::eFlushingStream, 134, 0, eSingle, "mGC_FlushingStream", eReal, eComputed, "min", 0, 60},
    {eParam::eWaitingBetweenRuns, 162, 0, eSingle, "mGC_WaitingBetweenRuns", eReal, eReadOnly, "min", 0, 1440},
    {eParam::eCleaningTimeLeft, 96, 0, eSingle, "mGC_CleaningTimeLeft", eInteger, eComputed, "min", 0, 1440},
    {eParam::eAnalysisCounter, 2202, 0, eSingle, "mAnalysisCounter", eInteger, eReadOnly, "", 0, cIntMax},
    {eParam::eContinuous, 12, 0, eSingle, "mContinuous", eInteger, eReadOnly, "", 0, 1},
    {eParam::eSeqLine, 136, 0, eSingle, "mSeq_line", eInteger, eReadOnly, "", 0, 20},
    {eParam::eLineReplicate, 137, 0, eSingle, "mLine_replicate", eInteger, eReadOnly, "", 0, 999},
    {eParam::eSeqReplicate, 135, 0, eSingle, "mSeq_replicate", eInteger, eReadOnly, "", 0, 999},
    {eParam::eRunType, 141, 0, eSingle, "mRunType", eInteger, eReadOnly, "", 0, 3},
    {eParam::eAlarmOverall, 2211, 0, eSingle, "mAlarmOverall", eInteger, eReadOnly, "", 0, 1},
    {eParam::eHasController, 173, 0, eSingle, "mHasController", eInteger, eReadOnly, "", 0, 1},
};
// clang-format on

constexpr std::uint32_t membersOf(const ParameterRow& row) {
  return row.span == eSingle ? 1 : cChannels;
}

constexpr bool isInOrder() {
  std::size_t n = 0;
  for (const ParameterRow& row : cRows) {
    if (row.param != eParam{n++} || row.lowest > row.highest) {
      return false;
    }
  }
  return true;
}
static_assert(isInOrder(), "a row's place is its eParam");

constexpr std::size_t countSlots() {
  std::size_t count = 0;
  for (const ParameterRow& row : cRows) {
    count += membersOf(row);
  }
  return count;
}
static_assert(countSlots() == cSlots);

constexpr std::array<Slot, cSlots> makeSlots() {
  std::array<Slot, cSlots> slots{};
  std::size_t n = 0;
  for (const ParameterRow& row : cRows) {
    for (std::uint32_t i = 0; i < membersOf(row); ++i) {
      slots[n++] = {&row, row.span == eSingle ? 0 : i + 1,
                    row.channel + (row.span == eByChannel ? i : 0),
                    row.id + (row.span == eById ? i : 0)};
    }
  }
  return slots;
}
constexpr std::array<Slot, cSlots> cSlotTable = makeSlots();

constexpr std::array<std::size_t, std::size(cRows)> makeFirstSlots() {
  std::array<std::size_t, std::size(cRows)> first{};
  for (std::size_t n = 1; n < std::size(cRows); ++n) {
    first[n] = first[n - 1] + membersOf(cRows[n - 1]);
  }
  return first;
}
constexpr auto cFirstSlots = makeFirstSlots();

}  // namespace

const Slot& slotAt(std::size_t aSlot) {
  return cSlotTable[aSlot];
}

std::string nameOf(std::size_t aSlot) {
  const Slot& slot = slotAt(aSlot);
  return slot.row->name + (slot.member == 0 ? std::string() : std::to_string(slot.member));
}

std::size_t slotOf(eParam aParam, std::uint32_t aMember) {
  const auto row = static_cast<std::size_t>(aParam);
  return cFirstSlots[row] + (cRows[row].span == eSingle ? 0 : aMember - 1);
}

std::optional<std::size_t> findAddress(std::uint32_t aChannel, std::uint32_t aMethod,
                                       std::uint32_t aStep, std::uint32_t aParmID) {
  if (aMethod != 0 || aStep != 0) {
    return std::nullopt;
  }
  for (std::size_t n = 0; n < cSlots; ++n) {
    if (cSlotTable[n].channel == aChannel && cSlotTable[n].id == aParmID) {
      return n;
    }
  }
  return std::nullopt;
}

std::optional<std::size_t> findName(const std::string& aName) {
  for (std::size_t n = 0; n < cSlots; ++n) {
    if (nameOf(n) == aName) {
      return n;
    }
  }
  return std::nullopt;
}

}  // namespace model
