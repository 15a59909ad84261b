// The parts of the model together.
#include "Behaviour.h"

#include <algorithm>
#include <cmath>

#include "StartUp.h"

namespace simulator::model {

Behaviour::Behaviour(const rapidjson::Value& aScenario, std::uint32_t aSeed)
    : mStored(aScenario),
      mMeasured(mStored, aScenario, aSeed),
      mCalibration(mStored, aSeed),
      mAlarms(mStored),
      mPhases(mStored, mMeasured, mHolds, mAlarms),
      mRuns(mStored, mHolds, mCalibration, mAlarms, mPhases) {
  const auto snapshot = aScenario.FindMember("snapshot");
  if (snapshot == aScenario.MemberEnd()) {
    startUp(givenStart(mStored), mPhases, mRuns);
  } else {
    resume(snapshot->value);
  }
}

void Behaviour::advance(double aNow) {
  const double now = std::max(mPhases.now(), std::min(aNow, cLastMoment));
  while (mPhases.current().until <= now) {
    const double until = mPhases.current().until;
    mPhases.setNow(std::max(mPhases.now(), until));
    if (!mRuns.follow(until, now)) {
      mPhases.enter(mPhases.idlePhase());
    }
  }
  mPhases.setNow(now);
}

double Behaviour::value(std::size_t aSlot) const {
  if (const auto held = mHolds.at(aSlot)) {
    return *held;
  }
  const ParameterRow& row = *slotAt(aSlot).row;
  if (row.access != eAccess::eComputed) {
    return mStored.at(aSlot);
  }
  if (row.param == eParam::eAlarmOverall) {
    return mAlarms.isOn() ? 1.0 : 0.0;
  }
  const auto reading = mMeasured.reading(aSlot, mPhases.now());
  return reading ? *reading : mPhases.shown(row.param);
}

bool Behaviour::takesSettings() const {
  return contains(cSettingStates, mPhases.state()) && mPhases.automation() == eAutoIdle;
}

bool Behaviour::takes(std::size_t aSlot) const {
  switch (slotAt(aSlot).row->param) {
    case eParam::eStreamNr:
      return takesSettings() && mStored.of(eParam::eStreamConfigured) != 0.0;
    case eParam::eSlotNr:
      return contains(cIdleStates, mPhases.state()) && mPhases.automation() == eAutoIdle;
    default:
      return takesSettings() && mStored.isFitted(aSlot);
  }
}

void Behaviour::write(std::size_t aSlot, double aValue) {
  const Slot slot = slotAt(aSlot);
  if (slot.row->param == eParam::eSlotNr) {
    mRuns.loadSolution(slot.step);
    return;
  }
  if (slot.row->param == eParam::eStreamNr) {
    // A run started at the instrument takes its sample from where the valve stands.
    mStored.set(aValue, eParam::eCurrentStream);
    mStored.set(aValue, eParam::eStartStream);
  }
  const int before = mPhases.current().state;
  change(aSlot, aValue);
  if (mPhases.current().state != before) {
    mHolds.releaseAll();
  }
  mPhases.watchAlarms();
}

void Behaviour::set(std::size_t aSlot, double aValue) {
  const ParameterRow& row = *slotAt(aSlot).row;
  const double value = row.type == eType::eInteger ? integral(aValue) : aValue;
  if (row.access == eAccess::eComputed) {
    mHolds.hold(aSlot, value);
  } else {
    // Whatever state this brings about, what was set before it stays: an operator who arranges
    // several values must not mind their order.
    change(aSlot, value);
  }
  mPhases.watchAlarms();
}

void Behaviour::resetAlarms() {
  mAlarms.reset();
  mHolds.release(slotOf(eParam::eAlarmOverall));
  mPhases.watchAlarms();
}

void Behaviour::refuseStart() {
  mAlarms.signal(eEvent::eStartRefused, static_cast<int>(mStored.of(eParam::eRunType)));
}

void Behaviour::change(std::size_t aSlot, double aValue) {
  mStored.put(aSlot, aValue);
  mMeasured.follow(aSlot, aValue, mPhases.now());
  mCalibration.change(aSlot, aValue);
  mPhases.idleAnew();
}

rapidjson::Value Behaviour::describe(rapidjson::Document::AllocatorType& aAllocator) const {
  const double now = mPhases.now();
  rapidjson::Value snapshot(rapidjson::kObjectType);
  snapshot.AddMember("time", std::min(std::floor(mMeasured.noiseTime(now)), cLastMoment),
                     aAllocator);
  mPhases.describe(snapshot, aAllocator);
  snapshot.AddMember("undisturbed", mMeasured.describe(now, aAllocator), aAllocator);
  snapshot.AddMember("held", mHolds.describe(aAllocator), aAllocator);
  return snapshot;
}

void Behaviour::resume(const rapidjson::Value& aSnapshot) {
  const Holds held(aSnapshot, mStored);
  mMeasured.resume(aSnapshot);
  const StoredValues stored = mStored;
  startUp(snapshotStart(aSnapshot), mPhases, mRuns);
  // Whatever starting up has made of them: a run may count as another replicate, an error that
  // nobody sees have set off an alarm.
  mStored = stored;
  mHolds = held;
  mPhases.watchAlarms();
}

}  // namespace simulator::model
