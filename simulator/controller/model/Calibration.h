// What calibration runs do to the coefficients of the peaks.
#pragma once

#include <cstdint>
#include <vector>

#include "StoredValues.h"

namespace simulator::model {

class Calibration {
 public:
  /// `aSeed` drives what a calibration finds.
  Calibration(StoredValues& aStored, std::uint32_t aSeed);

  /// From now on calibrations find something near this, if the parameter is a coefficient.
  void change(std::size_t aSlot, double aValue);

  /// Gives effect to calibration runs that are completed.
  void complete(double aRuns);

  /// Whether every channel in use has been calibrated.
  bool isDone() const;

 private:
  StoredValues& mStored;
  std::uint32_t mSeed;
  double mRuns = 0.0;                 ///< completed
  std::vector<double> mCoefficients;  ///< of all peaks, before these runs
};

}  // namespace simulator::model
