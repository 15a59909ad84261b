// Lag, noise and rounding of measured values.
#include "Measurement.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace simulator::model {

namespace {

// The finalizer of the SplitMix64 generator: every bit of the input moves every bit of the output.
std::uint64_t mix(std::uint64_t value) {
  value += 0x9E3779B97F4A7C15U;
  value = (value ^ (value >> 30U)) * 0xBF58476D1CE4E5B9U;
  value = (value ^ (value >> 27U)) * 0x94D049BB133111EBU;
  return value ^ (value >> 31U);
}

}  // namespace

double lagged(const Lag& aLag, double aTimeConstant, double aNow) {
  const double left = std::exp(-(aNow - aLag.since) / aTimeConstant);
  if (left == 1.0 || aLag.start == aLag.target) {
    return aLag.start;  // nothing of an infinite way would be no number
  }
  return aLag.start * left + aLag.target * (1.0 - left);
}

double settledAt(const Lag& aLag, double aTimeConstant, double aTolerance) {
  const double gap = std::fabs(aLag.start - aLag.target);
  if (std::isnan(gap)) {
    return std::numeric_limits<double>::infinity();
  }
  return aLag.since + (gap > aTolerance ? aTimeConstant * std::log(gap / aTolerance) : 0.0);
}

double noise(std::uint32_t aSeed, std::uint64_t aSource, double aNow) {
  const double second = std::floor(aNow);
  std::uint64_t bits = 0;
  static_assert(sizeof bits == sizeof second);
  std::memcpy(&bits, &second, sizeof bits);
  const std::uint64_t mixed = mix(mix(mix(aSeed) ^ aSource) ^ bits);
  return static_cast<double>(mixed >> 11U) * 0x1p-52 - 1.0;
}

double rounded(double aValue, double aStepsPerUnit) {
  constexpr double cLargest = 1e12;
  if (!(std::fabs(aValue) < cLargest)) {
    return aValue;
  }
  // Adding zero turns the -0.0 of a small negative value into 0.0.
  return std::round(aValue * aStepsPerUnit) / aStepsPerUnit + 0.0;
}

double integral(double aValue) {
  if (std::isnan(aValue)) {
    return 0.0;
  }
  return std::trunc(std::clamp<double>(aValue, std::numeric_limits<std::int32_t>::min(),
                                       std::numeric_limits<std::int32_t>::max()));
}

}  // namespace simulator::model
