// What a snapshot adds to the values that are shown, and how an instrument goes on from there.
#include <JsonText.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "Behaviour.h"

namespace model {

namespace {

constexpr double cLongest = 1e15;  ///< the most seconds that a scenario may say

double seconds(const rapidjson::Value& aSnapshot, const char* aName, double aOtherwise = 0.0) {
  const auto found = aSnapshot.FindMember(aName);
  return found == aSnapshot.MemberEnd() ? aOtherwise : found->value.GetDouble();
}

}  // namespace

rapidjson::Value Behaviour::describe(rapidjson::Document::AllocatorType& aAllocator) const {
  rapidjson::Value undisturbed(rapidjson::kObjectType);
  for (const Measured& measured : mMeasured) {
    const double value = lagged(measured.lag, measured.row->timeConstant, mNow);
    undisturbed.AddMember(rapidjson::Value(nameOf(measured.slot).c_str(), aAllocator),
                          realValue(value), aAllocator);
  }
  rapidjson::Value held(rapidjson::kArrayType);
  for (std::size_t slot = 0; slot < mHeld.size(); ++slot) {
    if (mHeld[slot]) {
      held.PushBack(rapidjson::Value(nameOf(slot).c_str(), aAllocator), aAllocator);
    }
  }
  rapidjson::Value snapshot(rapidjson::kObjectType);
  snapshot.AddMember("time", std::min(std::floor(mNow + mNoiseBegin), cLongest), aAllocator);
  snapshot.AddMember("state", mPhase.state, aAllocator);
  if (mPhase.state == eRunning) {
    snapshot.AddMember("elapsed", std::min(mNow - mPhase.since, cLongest), aAllocator);
  }
  if (mPhase.activity != eActivity::eWaiting && std::isfinite(mPhase.until)) {
    snapshot.AddMember("left", std::min(mPhase.until - mNow, cLongest), aAllocator);
  }
  snapshot.AddMember("undisturbed", undisturbed, aAllocator);
  snapshot.AddMember("held", held, aAllocator);
  return snapshot;
}

void Behaviour::resume(const rapidjson::Value& aSnapshot) {
  std::vector<std::optional<double>> held(slotCount());
  const auto names = aSnapshot.FindMember("held");
  if (names != aSnapshot.MemberEnd()) {
    for (const auto& name : names->value.GetArray()) {
      if (const auto slot = findName(name.GetString())) {
        held[*slot] = mValues[*slot];
      }
    }
  }
  const auto undisturbed = aSnapshot.FindMember("undisturbed");
  for (Measured& measured : mMeasured) {
    double value = 0.0;
    if (undisturbed != aSnapshot.MemberEnd() &&
        undisturbed->value.HasMember(nameOf(measured.slot).c_str()) &&
        readReal(undisturbed->value[nameOf(measured.slot).c_str()], value)) {
      measured.lag.start = value;
      if (measured.followed == measured.slot) {
        measured.lag.target = value;
        mValues[measured.slot] = value;
      }
    }
  }
  mNoiseBegin = seconds(aSnapshot, "time");
  const std::vector<double> values = mValues;
  const int state = aSnapshot["state"].GetInt();
  // What would never be reached may be within reach when it is computed afresh.
  const double never = state == eStabilizing ? std::numeric_limits<double>::infinity() : 0.0;
  startUp({state, seconds(aSnapshot, "elapsed"), seconds(aSnapshot, "left", never)});
  // Whatever starting up has made of them: a run may count as another replicate, an error that
  // nobody sees have set off an alarm.
  mValues = values;
  mHeld = held;
  watchAlarms();
}

}  // namespace model
