// Measured values as functions of time.
#include "MeasuredValues.h"

#include <JsonText.h>

#include <algorithm>
#include <cmath>

namespace simulator::model {

namespace {

constexpr MeasuredRow cMeasured[] = {
    {eParam::eColumnTemp, eParam::eColumnTempSP, 90.0, 0.5, 0.03, 100.0},
    {eParam::eInjTemp, eParam::eInjTempSP, 60.0, 0.5, 0.05, 100.0},
    {eParam::ePress, eParam::ePressSP, 5.0, 1.0, 0.2, 10.0},
    {eParam::eSampleLineTemp, eParam::eSampleLineTempSP, 120.0, 1.0, 0.05, 100.0},
    {eParam::eAutoZero, eParam::eAutoZero, 1.0, 1.0, 0.004, 1000.0},
    {eParam::eAmbientPressure, eParam::eAmbientPressure, 1.0, 1.0, 0.02, 100.0},
};

std::uint32_t membersOf(eParam aParam) {
  return slotAt(slotOf(aParam)).row->span == eSpan::eSingle ? 1 : cChannels;
}

}  // namespace

MeasuredValues::MeasuredValues(StoredValues& aStored, const rapidjson::Value& aScenario,
                               std::uint32_t aSeed)
    : mStored(aStored), mSeed(aSeed) {
  const auto& given = aScenario["parameters"];
  for (const MeasuredRow& row : cMeasured) {
    for (std::uint32_t n = 1; n <= membersOf(row.actual); ++n) {
      const std::size_t slot = slotOf(row.actual, n);
      const std::size_t followed = slotOf(row.follows, n);
      const double target = mStored.at(followed);
      const double start = given.HasMember(nameOf(slot).c_str()) ? mStored.at(slot) : target;
      mMeasured.push_back({&row, slot, followed, {start, 0.0, target}});
    }
  }
}

std::optional<double> MeasuredValues::reading(std::size_t aSlot, double aNow) const {
  for (const Measured& measured : mMeasured) {
    if (measured.slot == aSlot) {
      return mStored.isFitted(aSlot) ? measure(measured, aNow) : 0.0;
    }
  }
  return std::nullopt;
}

void MeasuredValues::follow(std::size_t aSlot, double aValue, double aNow) {
  for (Measured& measured : mMeasured) {
    if (measured.followed == aSlot) {
      const double reached = lagged(measured.lag, measured.row->timeConstant, aNow);
      // From a reading that is no number the way back would never end.
      measured.lag = {std::isfinite(reached) ? reached : aValue, aNow, aValue};
    }
  }
}

double MeasuredValues::settledAt() const {
  double settled = 0.0;
  for (const Measured& measured : mMeasured) {
    if (mStored.isFitted(measured.slot)) {
      settled = std::max(settled, model::settledAt(measured.lag, measured.row->timeConstant,
                                                   measured.row->tolerance));
    }
  }
  return settled;
}

double MeasuredValues::measure(const Measured& aMeasured, double aNow) const {
  const MeasuredRow& row = *aMeasured.row;
  const Slot slot = slotAt(aMeasured.slot);
  const std::uint64_t source = (std::uint64_t{slot.id} << 32U) | slot.channel;
  return rounded(lagged(aMeasured.lag, row.timeConstant, aNow) +
                     row.noise * noise(mSeed, source, noiseTime(aNow)),
                 row.stepsPerUnit);
}

rapidjson::Value MeasuredValues::describe(double aNow,
                                          rapidjson::Document::AllocatorType& aAllocator) const {
  rapidjson::Value undisturbed(rapidjson::kObjectType);
  for (const Measured& measured : mMeasured) {
    const double value = lagged(measured.lag, measured.row->timeConstant, aNow);
    undisturbed.AddMember(rapidjson::Value(nameOf(measured.slot).c_str(), aAllocator),
                          realValue(value), aAllocator);
  }
  return undisturbed;
}

void MeasuredValues::resume(const rapidjson::Value& aSnapshot) {
  const auto undisturbed = aSnapshot.FindMember("undisturbed");
  for (Measured& measured : mMeasured) {
    double value = 0.0;
    if (undisturbed != aSnapshot.MemberEnd() &&
        undisturbed->value.HasMember(nameOf(measured.slot).c_str()) &&
        readReal(undisturbed->value[nameOf(measured.slot).c_str()], value)) {
      measured.lag.start = value;
      if (measured.followed == measured.slot) {
        measured.lag.target = value;
        mStored.put(measured.slot, value);
      }
    }
  }
  const auto time = aSnapshot.FindMember("time");
  mNoiseBegin = time == aSnapshot.MemberEnd() ? 0.0 : time->value.GetDouble();
}

}  // namespace simulator::model
