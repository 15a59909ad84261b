// How a measured value moves: a first-order lag towards what it follows, and a little noise.
#pragma once

#include <cstdint>

namespace simulator::model {

/// A value on its way from `start`, where it was at the time `since`, to `target`.
struct Lag {
  double start;
  double since;
  double target;
};

/// The value at `aNow`. Any doubles: never an overflow where start and target are finite.
double lagged(const Lag& aLag, double aTimeConstant, double aNow);

/// When the value comes within `aTolerance` of its target: infinity for a gap that is no number.
double settledAt(const Lag& aLag, double aTimeConstant, double aTolerance);

/// Between -1 and 1, the same for the same seed, source and second.
double noise(std::uint32_t aSeed, std::uint64_t aSource, double aNow);

/// To the nearest of `aStepsPerUnit` (100: hundredths). The result prints with as few digits; a
/// value too large to have such digits comes back as it is.
double rounded(double aValue, double aStepsPerUnit);

/// As an integer parameter holds it: cut to a whole number, the nearest that 32 bits can hold, 0
/// for NaN.
double integral(double aValue);

}  // namespace simulator::model
