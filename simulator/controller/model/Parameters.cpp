// The parameter table, and the ways into it.
#include "Parameters.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>

namespace simulator::model {

namespace {

constexpr double cIntMax = 2147483647;
constexpr double cHighestStream = 46;

constexpr auto eSingle = eSpan::eSingle;
constexpr auto eByChannel = eSpan::eByChannel;
constexpr auto eById = eSpan::eById;
constexpr auto eSlots = eTable::eSlots;
constexpr auto eSequence = eTable::eSequence;
constexpr auto ePeaks = eTable::ePeaks;
constexpr auto eAlarms = eTable::eAlarms;
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
    {eParam::eCurrentStream, 58, 0, eSingle, "mCurrentStream", eInteger, eReadOnly, "", 0, cHighestStream},
    {eParam::eErrorStatus, 132, 0, eSingle, "mGC_Error_Status", eInteger, eReadOnly, "", 0, 65535},
    {eParam::eCurRunTime, 161, 0, eSingle, "mGC_CurRunTime", eInteger, eComputed, "s", 0, 3600},
    {eParam::eFlushingStream, 134, 0, eSingle, "mGC_FlushingStream", eReal, eComputed, "min", 0, 60},
    {eParam::eWaitingBetweenRuns, 162, 0, eSingle, "mGC_WaitingBetweenRuns", eReal, eComputed, "min", 0, 1440},
    {eParam::eCleaningTimeLeft, 96, 0, eSingle, "mGC_CleaningTimeLeft", eInteger, eComputed, "min", 0, 1440},
    {eParam::eAnalysisCounter, 2202, 0, eSingle, "mAnalysisCounter", eInteger, eReadOnly, "", 0, cIntMax},
    {eParam::eContinuous, 12, 0, eSingle, "mContinuous", eInteger, eReadWrite, "", 0, 1},
    {eParam::eSeqLine, 136, 0, eSingle, "mSeq_line", eInteger, eReadOnly, "", 0, 20},
    {eParam::eLineReplicate, 137, 0, eSingle, "mLine_replicate", eInteger, eReadOnly, "", 0, 999},
    {eParam::eSeqReplicate, 135, 0, eSingle, "mSeq_replicate", eInteger, eReadOnly, "", 0, 999},
    {eParam::eRunType, 141, 0, eSingle, "mRunType", eInteger, eReadOnly, "", 0, 3},
    {eParam::eAlarmOverall, 2211, 0, eSingle, "mAlarmOverall", eInteger, eComputed, "", 0, 1},
    {eParam::eHasController, 173, 0, eSingle, "mHasController", eInteger, eReadOnly, "", 0, 1},
    // What the instrument is made of.
    {eParam::eInstSerial, 601, 0, eSingle, "mInstSerial", eInteger, eReadOnly, "", 0, cIntMax},
    {eParam::eStreamConfigured, 525, 0, eSingle, "mStreamConfigured", eInteger, eReadOnly, "", 0, 1},
    {eParam::eStreamMaxNr, 524, 0, eSingle, "mStreamMaxNr", eInteger, eReadOnly, "", 0, cHighestStream},
    {eParam::eModuleSerial, 826, 1, eByChannel, "mAM_SerialNumber", eInteger, eReadOnly, "", 0, cIntMax},
    {eParam::eModulePartNumber, 827, 1, eByChannel, "mAM_PN", eInteger, eReadOnly, "", 0, cIntMax},
    {eParam::eCarrierGas, 201, 1, eByChannel, "mCarrierGas", eInteger, eReadOnly, "", 0, 3},
    // The run that the next start is to make; valve and solutions.
    {eParam::eStartRunType, 60, 0, eSingle, "mStartRunType", eInteger, eReadWrite, "", 0, 3},
    {eParam::eStartLevel, 61, 0, eSingle, "mLevel", eInteger, eReadWrite, "", 0, 7},
    {eParam::eStartStream, 62, 0, eSingle, "mStream", eInteger, eReadWrite, "", 0, cHighestStream},
    {eParam::eStartCalibType, 75, 0, eSingle, "mRFCalibType", eInteger, eReadWrite, "", 0, 3},
    {eParam::eStartReplicates, 73, 0, eSingle, "mReplicate", eInteger, eReadWrite, "", 0, 99},
    {eParam::eStartReplicate, 74, 0, eSingle, "mCurrentReplicate", eInteger, eReadWrite, "", 0, 99},
    {eParam::eStreamNr, 39, 0, eSingle, "mStreamNr", eInteger, eReadWrite, "", 0, cHighestStream},
    {eParam::eSlotNr, 1003, 0, eSingle, "mSlotNr", eInteger, eReadWrite, "", 0, 1, eSlots},
    // The automation sequence. Solutions belong to channel 1, everything else to the instrument.
    {eParam::eTableRepeat, 15, 0, eSingle, "mTableRepeat", eInteger, eReadWrite, "", 0, 999},
    {eParam::eTotalLines, 144, 0, eSingle, "mTotalLines", eInteger, eReadOnly, "", 0, 20},
    {eParam::eLineRunType, 23, 0, eSingle, "mRunType", eInteger, eReadWrite, "", 0, 3, eSequence},
    {eParam::eLineRepeat, 24, 0, eSingle, "mRepeat", eInteger, eReadWrite, "", 0, 999, eSequence},
    {eParam::eLineStream, 22, 0, eSingle, "mStream", eInteger, eReadWrite, "", 0, cHighestStream, eSequence},
    {eParam::eLineCalib, 25, 0, eSingle, "mCalib", eInteger, eReadWrite, "", 0, 1, eSequence},
    {eParam::eLineSolution, 1010, 1, eSingle, "mSolution", eInteger, eReadWrite, "", 0, 10, eSequence},
    {eParam::eLineFlushTime, 26, 0, eSingle, "mFlushTime", eReal, eReadWrite, "min", 0, 60, eSequence},
    // Calibrated peaks, but for their names.
    {eParam::ePeakRetention, 1196, 1, eByChannel, "mRT", eReal, eReadOnly, "min", 0, 60, ePeaks},
    {eParam::ePeakLevelAmount, 1230, 1, eByChannel, "mLevelAmt", eReal, eReadWrite, "", 0, 1e6, ePeaks},
    {eParam::ePeakLinear, 1242, 1, eByChannel, "mLinearCoef", eReal, eReadOnly, "", 0, 1e6, ePeaks},
    // Alarms.
    {eParam::eAlarmEnabled, 2028, 0, eSingle, "mEnabled", eInteger, eReadOnly, "", 0, 1},
    {eParam::eAlarmTotal, 2029, 0, eSingle, "mTotal", eInteger, eReadOnly, "", 0, 38},
    {eParam::eAlarmOn, 2030, 0, eSingle, "mAlarmOn", eInteger, eReadOnly, "", 0, 4, eAlarms},
    {eParam::eAlarmOnAll, 2038, 0, eSingle, "mAlarmOnAll", eInteger, eReadOnly, "", 0, 1, eAlarms},
    {eParam::eAlarmGroup, 2031, 0, eSingle, "mGroupID", eInteger, eReadOnly, "", 0, 12, eAlarms},
    {eParam::eAlarmParam, 2032, 0, eSingle, "mParamID", eInteger, eReadOnly, "", 0, 400, eAlarms},
    {eParam::eAlarmTriggered, 2212, 0, eSingle, "mTriggered", eInteger, eReadOnly, "", 0, 1, eAlarms},
};
// clang-format on

/// Steps of a table: the first, and how many at most.
struct Steps {
  std::uint32_t first;
  std::uint32_t count;
};

constexpr Steps stepsOf(const ParameterRow& row) {
  switch (row.table) {
    case eSlots:
      return {0, cSolutionSlots};
    case eSequence:
      return {1, cSequenceLines};
    case ePeaks:
      return {1, cPeaks};
    case eAlarms:
      return {1, cAlarmRows};
    default:
      return {0, 1};
  }
}

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

/// Slot of the first parameter of each row, and behind them the number of all.
constexpr std::array<std::size_t, std::size(cRows) + 1> makeFirstSlots() {
  std::array<std::size_t, std::size(cRows) + 1> first{};
  for (std::size_t n = 0; n < std::size(cRows); ++n) {
    first[n + 1] = first[n] + std::size_t{membersOf(cRows[n])} * stepsOf(cRows[n]).count;
  }
  return first;
}
constexpr auto cFirstSlots = makeFirstSlots();

/// Slot by the places within its row; both count from 0.
std::size_t slotIn(const ParameterRow& row, std::uint32_t aMember, std::uint32_t aStep) {
  return cFirstSlots[static_cast<std::size_t>(row.param)] +
         std::size_t{aMember} * stepsOf(row).count + aStep;
}

}  // namespace

std::size_t slotCount() {
  return cFirstSlots.back();
}

Slot slotAt(std::size_t aSlot) {
  const auto* next = std::upper_bound(cFirstSlots.begin(), cFirstSlots.end(), aSlot);
  const auto n = static_cast<std::size_t>(next - cFirstSlots.begin()) - 1;
  const ParameterRow& row = cRows[n];
  const Steps steps = stepsOf(row);
  const auto place = static_cast<std::uint32_t>(aSlot - cFirstSlots[n]);
  const std::uint32_t member = place / steps.count;
  return {&row, row.span == eSingle ? 0 : member + 1,
          row.channel + (row.span == eByChannel ? member : 0),
          row.id + (row.span == eById ? member : 0), steps.first + place % steps.count};
}

std::string nameOf(std::size_t aSlot) {
  const Slot slot = slotAt(aSlot);
  std::string name = slot.row->name;
  if (slot.member != 0) {
    name += std::to_string(slot.member);
  }
  if (slot.row->table != eTable::eNone) {
    name += "[" + std::to_string(slot.step) + "]";
  }
  return name;
}

std::size_t slotOf(eParam aParam, std::uint32_t aMember, std::uint32_t aStep) {
  const ParameterRow& row = cRows[static_cast<std::size_t>(aParam)];
  return slotIn(row, row.span == eSingle ? 0 : aMember - 1,
                row.table == eTable::eNone ? 0 : aStep - stepsOf(row).first);
}

std::optional<std::size_t> findAddress(std::uint32_t aChannel, std::uint32_t aMethod,
                                       std::uint32_t aStep, std::uint32_t aParmID) {
  if (aMethod != 0) {
    return std::nullopt;
  }
  for (const ParameterRow& row : cRows) {
    // What is below the row's first wraps round to far above its last.
    const std::uint32_t channel = aChannel - row.channel;
    const std::uint32_t id = aParmID - row.id;
    const std::uint32_t step = aStep - stepsOf(row).first;
    if (channel < (row.span == eByChannel ? cChannels : 1) &&
        id < (row.span == eById ? cChannels : 1) && step < stepsOf(row).count) {
      return slotIn(row, channel + id, step);
    }
  }
  return std::nullopt;
}

std::optional<std::size_t> findName(const std::string& aName) {
  const std::size_t bracket = aName.find('[');
  const bool hasStep = bracket != std::string::npos;
  const std::string family = aName.substr(0, bracket);
  for (const ParameterRow& row : cRows) {
    const std::string name = row.name;
    if ((row.table != eTable::eNone) != hasStep || family.compare(0, name.size(), name) != 0) {
      continue;
    }
    // Whatever stands behind the name is read generously, and then must be what would be written.
    const std::uint32_t member = row.span == eSingle || family.size() == name.size()
                                     ? 0
                                     : static_cast<std::uint32_t>(family.back()) - '1';
    const std::uint32_t step =
        hasStep ? static_cast<std::uint32_t>(std::strtoul(&aName[bracket + 1], nullptr, 10)) -
                      stepsOf(row).first
                : 0;
    if (member < membersOf(row) && step < stepsOf(row).count) {
      const std::size_t slot = slotIn(row, member, step);
      if (nameOf(slot) == aName) {
        return slot;
      }
    }
  }
  return std::nullopt;
}

}  // namespace simulator::model
