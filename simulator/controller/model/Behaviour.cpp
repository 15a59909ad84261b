// States, runs and measured values of the simulated instrument as functions of time.
#include "Behaviour.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace model {

/// How a family of measured values moves. What follows nothing else follows its own first value.
struct MeasuredRow {
  eParam actual;
  eParam follows;
  double timeConstant;  ///< seconds
  double tolerance;     ///< within this of what it follows, the part is ready
  double noise;         ///< the most that a reading is off
  double stepsPerUnit;  ///< resolution of a reading
};

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
constexpr double cShortestRun = 1.0;
constexpr double cMinute = 60.0;

std::uint32_t membersOf(eParam aParam) {
  return slotAt(slotOf(aParam)).row->span == eSpan::eSingle ? 1 : cChannels;
}

}  // namespace

Behaviour::Behaviour(const rapidjson::Value& aParameters, std::uint32_t aSeed)
    : mSeed(aSeed), mPhase{} {
  std::array<bool, cSlots> given{};
  for (const auto& member : aParameters.GetObject()) {
    if (const auto slot = findName(member.name.GetString())) {
      mValues[*slot] = member.value.GetDouble();
      given[*slot] = true;
    }
  }
  for (const MeasuredRow& row : cMeasured) {
    for (std::uint32_t n = 1; n <= membersOf(row.actual); ++n) {
      const std::size_t slot = slotOf(row.actual, n);
      const std::size_t followed = slotOf(row.follows, n);
      const double target = mValues[followed];
      mMeasured.push_back(
          {&row, slot, followed, {given[slot] ? mValues[slot] : target, 0.0, target}});
    }
  }
  mPhase = firstPhase();
}

void Behaviour::advance(double aNow) {
  // Short of infinity, so that what never ends does not end.
  const double now = std::max(mNow, std::min(aNow, std::numeric_limits<double>::max()));
  while (mPhase.until <= now) {
    mNow = std::max(mNow, mPhase.until);
    finishPhase();
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
    case eParam::eCleaningTimeLeft:
      return inState(eCleaning) ? integral(std::ceil(left / cMinute)) : 0.0;
    default:
      return 0.0;
  }
}

int Behaviour::state() const {
  return static_cast<int>(value(slotOf(eParam::eGcState)));
}

bool Behaviour::isFitted(std::size_t aSlot) const {
  const Slot& slot = slotAt(aSlot);
  switch (slot.row->param) {
    case eParam::eSampleLineTemp:
    case eParam::eSampleLineTempSP:
      return stored(eParam::eHeatedSampleLineInstalled) != 0.0;
    default:
      return slot.channel == 0 || stored(eParam::eInstalled, slot.channel) != 0.0;
  }
}

void Behaviour::write(std::size_t aSlot, double aValue) {
  const int before = mPhase.state;
  change(aSlot, aValue);
  if (mPhase.state != before) {
    mHeld.fill(std::nullopt);
  }
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
}

void Behaviour::startRun() {
  enter({eRunning, eAutoSingleRun, mNow, mNow + runTime()});
}

void Behaviour::abortRun() {
  enter(idlePhase());
}

void Behaviour::stopAutomation() {
  // A single run is the last one anyway, and nothing follows it that could be stopped.
}

double Behaviour::stored(eParam aParam, std::uint32_t aMember) const {
  return mValues[slotOf(aParam, aMember)];
}

double Behaviour::runTime() const {
  double longest = cShortestRun;
  for (std::uint32_t n = 1; n <= cChannels; ++n) {
    if (stored(eParam::eInstalled, n) != 0.0) {
      longest = std::max(longest, stored(eParam::eRunTimeSP, n));
    }
  }
  return longest;
}

Behaviour::Phase Behaviour::firstPhase() const {
  const int state = static_cast<int>(stored(eParam::eGcState));
  switch (state) {
    case eInitializing:
      return {state, eAutoIdle, 0.0, cInitializingTime};
    case eFlushing:
      return {state, eAutoFlushing, 0.0, stored(eParam::eFlushingStream) * cMinute};
    case eRunning: {
      const double elapsed = stored(eParam::eCurRunTime);
      return {state, eAutoSingleRun, -elapsed, runTime() - elapsed};
    }
    case eCleaning:
      return {state, eAutoIdle, 0.0, stored(eParam::eCleaningTimeLeft) * cMinute};
    case eError:
    case eRecoverableError:
    case eUnrecoverableError:
      return {state, eAutoIdle, 0.0, cNever};
    default:
      return idlePhase();
  }
}

Behaviour::Phase Behaviour::idlePhase() const {
  const double settled = settledAt();
  if (settled > mNow) {
    return {eStabilizing, eAutoIdle, mNow, settled};
  }
  if (stored(eParam::eServiceSwitch) != 0.0) {
    return {eNotReady, eAutoIdle, mNow, cNever};
  }
  return {stored(eParam::eExtReady) != 0.0 ? eReady : eWaitExtReady, eAutoIdle, mNow, cNever};
}

void Behaviour::enter(const Phase& aPhase) {
  mPhase = aPhase;
  mHeld.fill(std::nullopt);
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
  if (contains(cIdleStates, mPhase.state)) {
    mPhase = idlePhase();
  }
}

void Behaviour::finishPhase() {
  if (mPhase.state == eRunning) {
    double& counter = mValues[slotOf(eParam::eAnalysisCounter)];
    counter = integral(counter + 1.0);
  }
  enter(idlePhase());
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
  const Slot& slot = slotAt(aMeasured.slot);
  const std::uint64_t source = (std::uint64_t{slot.id} << 32U) | slot.channel;
  return rounded(
      lagged(aMeasured.lag, row.timeConstant, mNow) + row.noise * noise(mSeed, source, mNow),
      row.stepsPerUnit);
}

}  // namespace model
