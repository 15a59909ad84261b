// What the simulated instrument measures: temperatures, pressures, the detectors' auto-zero.
#pragma once

#include <rapidjson/document.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "Measurement.h"
#include "StoredValues.h"

namespace simulator::model {

/// How a family of measured values moves. What follows nothing else follows its own first value.
struct MeasuredRow {
  eParam actual;
  eParam follows;
  double timeConstant;  ///< seconds
  double tolerance;     ///< within this of what it follows, the part is ready
  double noise;         ///< the most that a reading is off
  double stepsPerUnit;  ///< resolution of a reading
};

/// Each is on its way to the stored value that it follows.
class MeasuredValues {
 public:
  /// One that the scenario does not give starts at what it follows.
  MeasuredValues(StoredValues& aStored, const rapidjson::Value& aScenario, std::uint32_t aSeed);

  /// A reading, 0 for a part that is not there; nothing for a parameter that is not measured.
  std::optional<double> reading(std::size_t aSlot, double aNow) const;

  /// Sends what follows a parameter on its way to another value.
  void follow(std::size_t aSlot, double aValue, double aNow);

  /// When all parts that are there are ready.
  double settledAt() const;

  /// The second of the noise that a time is.
  double noiseTime(double aNow) const { return aNow + mNoiseBegin; }

  /// All of them without their noise.
  rapidjson::Value describe(double aNow, rapidjson::Document::AllocatorType& aAllocator) const;

  /// Goes on from a snapshot's values and second of the noise.
  void resume(const rapidjson::Value& aSnapshot);

 private:
  /// A measured parameter, and the one that it follows.
  struct Measured {
    const MeasuredRow* row;
    std::size_t slot;
    std::size_t followed;
    Lag lag;
  };

  double measure(const Measured& aMeasured, double aNow) const;

  StoredValues& mStored;
  std::uint32_t mSeed;
  double mNoiseBegin = 0.0;  ///< which of the noise's seconds time begins with
  std::vector<Measured> mMeasured;
};

}  // namespace simulator::model
