// States, runs and measured values of the simulated instrument as functions of time.
#include "Behaviour.h"

#include <JsonText.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "Alarms.h"

namespace model {

namespace {

constexpr MeasuredRow cMeasured[] = {
    {eParam::eColumnTemp, eParam::eColumnTempSP, 90.0, 0.5, 0.03, 100.0},
    {eParam::eInjTemp, eParam::eInjTempSP, 60.0, 0.5, 0.05, 100.0},
    {eParam::ePress, eParam::ePressSP, 5.0, 1.0, 0.2, 10.0},
    {eParam::eSampleLineTemp, eParam::eSampleLineTempSP, 120.0, 1.0, 0.05, 100.0},
    {eParam::eAutoZero, eParam::eAutoZero, 1.0, 1.0, 0.004, 1000.0},
    {eParam::eAmbientPressure, eParam::eAmbientPressure, 1.0, 1.0, 0.02, 100.0},
};

constexpr double cNever = std::numeric_limits<double>::infinity();
constexpr double cInitializingTime = 30.0;
// Time stands still here, where a second is still much more than the last bit of a number.
constexpr double cLastMoment = 1e15;
constexpr double cMinute = 60.0;

std::uint32_t membersOf(eParam aParam) {
  return slotAt(slotOf(aParam)).row->span == eSpan::eSingle ? 1 : cChannels;
}

}  // namespace

Behaviour::Behaviour(const rapidjson::Value& aScenario, std::uint32_t aSeed)
    : mSeed(aSeed), mValues(slotCount()), mHeld(slotCount()) {
  mPeaks = loadTables(aScenario, mValues);
  std::vector<bool> given(slotCount());
  for (const auto& member : aScenario["parameters"].GetObject()) {
    if (const auto slot = findName(member.name.GetString())) {
      double value = 0.0;
      readReal(member.value, value);
      mValues[*slot] = slotAt(*slot).row->type == eType::eInteger ? integral(value) : value;
      given[*slot] = true;
    }
  }
  if (!given[slotOf(eParam::eStartStream)]) {
    store(stored(eParam::eCurrentStream), eParam::eStartStream);
  }
  const auto coefficients =
      mValues.begin() + static_cast<std::ptrdiff_t>(slotOf(eParam::ePeakLinear));
  mCoefficients.assign(coefficients, coefficients + std::ptrdiff_t{cChannels} * cPeaks);
  for (const MeasuredRow& row : cMeasured) {
    for (std::uint32_t n = 1; n <= membersOf(row.actual); ++n) {
      const std::size_t slot = slotOf(row.actual, n);
      const std::size_t followed = slotOf(row.follows, n);
      const double target = mValues[followed];
      mMeasured.push_back(
          {&row, slot, followed, {given[slot] ? mValues[slot] : target, 0.0, target}});
    }
  }
  const auto snapshot = aScenario.FindMember("snapshot");
  if (snapshot == aScenario.MemberEnd()) {
    startUp(givenStart());
  } else {
    resume(snapshot->value);
  }
}

void Behaviour::advance(double aNow) {
  const double now = std::max(mNow, std::min(aNow, cLastMoment));
  while (mPhase.until <= now) {
    const double until = mPhase.until;
    mNow = std::max(mNow, until);
    if (mCourse) {
      // Straight to where the plan stands now, however many runs that passes over.
      followPlan(mCourse->isStopping ? until : now);
    } else {
      enter(idlePhase());
    }
  }
  mNow = now;
}

double Behaviour::value(std::size_t aSlot) const {
  if (mHeld[aSlot]) {
    return *mHeld[aSlot];
  }
  const ParameterRow& row = *slotAt(aSlot).row;
  if (row.access != eAccess::eComputed) {
    return mValues[aSlot];
  }
  if (row.param == eParam::eAlarmOverall) {
    return isAlarmOn(*this) ? 1.0 : 0.0;
  }
  for (const Measured& measured : mMeasured) {
    if (measured.slot == aSlot) {
      return isFitted(aSlot) ? measure(measured) : 0.0;
    }
  }
  const auto inState = [this](int aState) { return mPhase.state == aState; };
  const double left = mPhase.until - mNow;
  switch (row.param) {
    case eParam::eGcState:
      return mPhase.state;
    case eParam::eAutoState:
      return mPhase.automation;
    case eParam::eCurRunTime:
      return inState(eRunning) ? integral(mNow - mPhase.since) : 0.0;
    case eParam::eFlushingStream:
      return inState(eFlushing) ? rounded(left / cMinute, 100.0) : 0.0;
    case eParam::eWaitingBetweenRuns:
      return mPhase.activity == eActivity::eWaiting ? rounded(left / cMinute, 1000.0) : 0.0;
    case eParam::eCleaningTimeLeft:
      return inState(eCleaning) ? integral(std::ceil(left / cMinute)) : 0.0;
    default:
      return 0.0;
  }
}

int Behaviour::state() const {
  return static_cast<int>(value(slotOf(eParam::eGcState)));
}

int Behaviour::automation() const {
  return static_cast<int>(value(slotOf(eParam::eAutoState)));
}

bool Behaviour::isFitted(std::size_t aSlot) const {
  const Slot slot = slotAt(aSlot);
  switch (slot.row->param) {
    case eParam::eSampleLineTemp:
    case eParam::eSampleLineTempSP:
      return stored(eParam::eHeatedSampleLineInstalled) != 0.0;
    case eParam::eLineSolution:  // the channel in its address is no part of the instrument
      return true;
    default:
      return slot.channel == 0 || stored(eParam::eInstalled, slot.channel) != 0.0;
  }
}

std::uint32_t Behaviour::stepsOf(eTable aTable, std::uint32_t aChannel) const {
  const auto within = [this](eParam aTotal, double aLowest, double aHighest) {
    return static_cast<std::uint32_t>(std::clamp(stored(aTotal), aLowest, aHighest));
  };
  switch (aTable) {
    case eTable::eSequence:
      return within(eParam::eTotalLines, 1.0, cSequenceLines);
    case eTable::eAlarms:
      return within(eParam::eAlarmTotal, 0.0, cAlarmRows);
    case eTable::ePeaks:
      return mPeaks[aChannel - 1];
    default:
      return cSolutionSlots;
  }
}

bool Behaviour::isThere(std::size_t aSlot) const {
  const Slot slot = slotAt(aSlot);
  const eTable table = slot.row->table;
  return table == eTable::eNone || slot.step <= stepsOf(table, slot.member == 0 ? 1 : slot.member);
}

bool Behaviour::takesSettings() const {
  return contains(cSettingStates, state()) && automation() == eAutoIdle;
}

bool Behaviour::takes(std::size_t aSlot) const {
  switch (slotAt(aSlot).row->param) {
    case eParam::eStreamNr:
      return takesSettings() && stored(eParam::eStreamConfigured) != 0.0;
    case eParam::eSlotNr:
      return contains(cIdleStates, state()) && automation() == eAutoIdle;
    default:
      return takesSettings() && isFitted(aSlot);
  }
}

double Behaviour::highest(std::size_t aSlot) const {
  const ParameterRow& row = *slotAt(aSlot).row;
  return row.param == eParam::eStreamNr ? std::min(row.highest, stored(eParam::eStreamMaxNr))
                                        : row.highest;
}

void Behaviour::write(std::size_t aSlot, double aValue) {
  const Slot slot = slotAt(aSlot);
  if (slot.row->param == eParam::eSlotNr) {
    loadSolution(slot.step);
    return;
  }
  if (slot.row->param == eParam::eStreamNr) {
    // A run started at the instrument takes its sample from where the valve stands.
    store(aValue, eParam::eCurrentStream);
    store(aValue, eParam::eStartStream);
  }
  const int before = mPhase.state;
  change(aSlot, aValue);
  if (mPhase.state != before) {
    releaseAll();
  }
  watchAlarms();
}

void Behaviour::set(std::size_t aSlot, double aValue) {
  const ParameterRow& row = *slotAt(aSlot).row;
  const double value = row.type == eType::eInteger ? integral(aValue) : aValue;
  if (row.access == eAccess::eComputed) {
    mHeld[aSlot] = value;
  } else {
    // Whatever state this brings about, what was set before it stays: an operator who arranges
    // several values must not mind their order.
    change(aSlot, value);
  }
  watchAlarms();
}

double Behaviour::stored(eParam aParam, std::uint32_t aMember, std::uint32_t aStep) const {
  return mValues[slotOf(aParam, aMember, aStep)];
}

void Behaviour::store(double aValue, eParam aParam, std::uint32_t aMember, std::uint32_t aStep) {
  mValues[slotOf(aParam, aMember, aStep)] = aValue;
}

double Behaviour::undisturbed(eParam aParam) const {
  const std::size_t slot = slotOf(aParam);
  return mHeld[slot].value_or(mValues[slot]);
}

void Behaviour::release(eParam aParam) {
  mHeld[slotOf(aParam)].reset();
}

void Behaviour::watchAlarms() {
  watchConditions(*this, static_cast<int>(stored(eParam::eRunType)));
}

Behaviour::Start Behaviour::givenStart() const {
  const int state = static_cast<int>(stored(eParam::eGcState));
  switch (state) {
    case eInitializing:
      return {state, 0.0, cInitializingTime};
    case eFlushing:
      return {state, 0.0, stored(eParam::eFlushingStream) * cMinute};
    case eRunning:
      return {state, stored(eParam::eCurRunTime), runTime() - stored(eParam::eCurRunTime)};
    case eCleaning:
      return {state, 0.0, stored(eParam::eCleaningTimeLeft) * cMinute};
    default:
      return {state, 0.0, 0.0};
  }
}

void Behaviour::startUp(const Start& aStart) {
  switch (aStart.state) {
    case eInitializing:
    case eCleaning:
      return enter({aStart.state, eAutoIdle, 0.0, aStart.left});
    case eFlushing:
      return enter({aStart.state, eAutoFlushing, 0.0, aStart.left});
    case eRunning:
      return begin(singleRun(eParam::eRunType, eParam::eCurrentStream, 1.0,
                             aStart.elapsed + aStart.left, -aStart.elapsed),
                   false);
    case eError:
    case eRecoverableError:
    case eUnrecoverableError:
      return enter({aStart.state, eAutoIdle, 0.0, cNever});
    case eNotReady:  // and a solution being loaded
      return enter(aStart.left > 0.0 ? Phase{eNotReady, eAutoIdle, 0.0, aStart.left} : idlePhase());
    case eStabilizing:
      return enter(aStart.left > 0.0
                       ? Phase{eStabilizing, eAutoIdle, 0.0, aStart.left, eActivity::eIdling}
                       : idlePhase());
    default:
      return enter(idlePhase());
  }
}

Behaviour::Phase Behaviour::idlePhase() const {
  const double settled = settledAt();
  if (settled > mNow) {
    return {eStabilizing, eAutoIdle, mNow, settled, eActivity::eIdling};
  }
  if (stored(eParam::eServiceSwitch) != 0.0) {
    return {eNotReady, eAutoIdle, mNow, cNever, eActivity::eIdling};
  }
  return {stored(eParam::eExtReady) != 0.0 ? eReady : eWaitExtReady, eAutoIdle, mNow, cNever,
          eActivity::eIdling};
}

void Behaviour::enter(const Phase& aPhase) {
  mPhase = aPhase;
  releaseAll();
  watchAlarms();
}

void Behaviour::releaseAll() {
  std::fill(mHeld.begin(), mHeld.end(), std::nullopt);
}

void Behaviour::change(std::size_t aSlot, double aValue) {
  mValues[aSlot] = aValue;
  for (Measured& measured : mMeasured) {
    if (measured.followed == aSlot) {
      const double reached = lagged(measured.lag, measured.row->timeConstant, mNow);
      // From a reading that is no number the way back would never end.
      measured.lag = {std::isfinite(reached) ? reached : aValue, mNow, aValue};
    }
  }
  const std::size_t coefficient = aSlot - slotOf(eParam::ePeakLinear);
  if (coefficient < mCoefficients.size()) {
    mCoefficients[coefficient] = aValue;
  }
  if (mPhase.activity == eActivity::eIdling) {
    mPhase = idlePhase();
  }
}

double Behaviour::settledAt() const {
  double settled = 0.0;
  for (const Measured& measured : mMeasured) {
    if (isFitted(measured.slot)) {
      settled = std::max(settled, model::settledAt(measured.lag, measured.row->timeConstant,
                                                   measured.row->tolerance));
    }
  }
  return settled;
}

double Behaviour::measure(const Measured& aMeasured) const {
  const MeasuredRow& row = *aMeasured.row;
  const Slot slot = slotAt(aMeasured.slot);
  const std::uint64_t source = (std::uint64_t{slot.id} << 32U) | slot.channel;
  return rounded(lagged(aMeasured.lag, row.timeConstant, mNow) +
                     row.noise * noise(mSeed, source, mNow + mNoiseBegin),
                 row.stepsPerUnit);
}

}  // namespace model
