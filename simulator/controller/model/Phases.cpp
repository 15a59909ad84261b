// Phases, and what the instrument shows of them.
#include "Phases.h"

#include <algorithm>
#include <cmath>

namespace simulator::model {

Phases::Phases(const StoredValues& aStored, const MeasuredValues& aMeasured, Holds& aHolds,
               Alarms& aAlarms)
    : mStored(aStored), mMeasured(aMeasured), mHolds(aHolds), mAlarms(aAlarms) {}

int Phases::state() const {
  return static_cast<int>(mHolds.at(slotOf(eParam::eGcState)).value_or(mPhase.state));
}

int Phases::automation() const {
  return static_cast<int>(mHolds.at(slotOf(eParam::eAutoState)).value_or(mPhase.automation));
}

double Phases::shown(eParam aParam) const {
  const auto inState = [this](int aState) { return mPhase.state == aState; };
  const double left = mPhase.until - mNow;
  switch (aParam) {
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

void Phases::enter(const Phase& aPhase) {
  mPhase = aPhase;
  mHolds.releaseAll();
  watchAlarms();
}

Phase Phases::idlePhase() const {
  const double settled = mMeasured.settledAt();
  if (settled > mNow) {
    return {eStabilizing, eAutoIdle, mNow, settled, eActivity::eIdling};
  }
  if (mStored.of(eParam::eServiceSwitch) != 0.0) {
    return {eNotReady, eAutoIdle, mNow, cNever, eActivity::eIdling};
  }
  return {mStored.of(eParam::eExtReady) != 0.0 ? eReady : eWaitExtReady, eAutoIdle, mNow, cNever,
          eActivity::eIdling};
}

void Phases::idleAnew() {
  if (mPhase.activity == eActivity::eIdling) {
    mPhase = idlePhase();
  }
}

void Phases::watchAlarms() {
  watchAlarms(static_cast<int>(mStored.of(eParam::eRunType)));
}

void Phases::watchAlarms(int aRunType) {
  const std::size_t pressure = slotOf(eParam::eAmbientPressure);
  mAlarms.watch({state(), mStored.of(eParam::eAmbientTemp),
                 mHolds.at(pressure).value_or(mStored.at(pressure))},
                aRunType);
}

void Phases::describe(rapidjson::Value& snapshot,
                      rapidjson::Document::AllocatorType& aAllocator) const {
  snapshot.AddMember("state", mPhase.state, aAllocator);
  if (mPhase.state == eRunning) {
    snapshot.AddMember("elapsed", std::min(mNow - mPhase.since, cLastMoment), aAllocator);
  }
  if (mPhase.activity != eActivity::eWaiting && std::isfinite(mPhase.until)) {
    snapshot.AddMember("left", std::min(mPhase.until - mNow, cLastMoment), aAllocator);
  }
}

}  // namespace simulator::model
