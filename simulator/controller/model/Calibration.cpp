// Coefficients as functions of the number of calibrations.
#include "Calibration.h"

#include "Measurement.h"

namespace simulator::model {

namespace {

constexpr double cLargestShift = 0.002;    ///< of a coefficient by a calibration, relative
constexpr double cCoefficientSteps = 1e9;  ///< resolution of a coefficient: so many a unit

}  // namespace

Calibration::Calibration(StoredValues& aStored, std::uint32_t aSeed)
    : mStored(aStored), mSeed(aSeed) {
  const std::size_t first = slotOf(eParam::ePeakLinear);
  for (std::size_t n = 0; n < std::size_t{cChannels} * cPeaks; ++n) {
    mCoefficients.push_back(mStored.at(first + n));
  }
}

void Calibration::change(std::size_t aSlot, double aValue) {
  const std::size_t coefficient = aSlot - slotOf(eParam::ePeakLinear);
  if (coefficient < mCoefficients.size()) {
    mCoefficients[coefficient] = aValue;
  }
}

/// Each calibration shifts a coefficient away from the first one, not from the last: so a thousand
/// of them can be passed over, and no coefficient drifts away.
void Calibration::complete(double aRuns) {
  mRuns += aRuns;
  for (std::uint32_t n = 1; n <= cChannels; ++n) {
    if (mStored.of(eParam::eInstalled, n) == 0.0) {
      continue;
    }
    for (std::uint32_t peak = 1; peak <= mStored.stepsOf(eTable::ePeaks, n); ++peak) {
      if (mStored.of(eParam::ePeakLevelAmount, n, peak) == 0.0) {
        continue;  // no amount, nothing to calibrate with
      }
      const std::size_t slot = slotOf(eParam::ePeakLinear, n, peak);
      const double shift = cLargestShift * noise(mSeed, slot, mRuns);
      mStored.put(slot, rounded(mCoefficients[slot - slotOf(eParam::ePeakLinear)] * (1.0 + shift),
                                cCoefficientSteps));
    }
  }
}

bool Calibration::isDone() const {
  for (std::uint32_t n = 1; n <= cChannels; ++n) {
    if (mStored.of(eParam::eInstalled, n) != 0.0 && mStored.of(eParam::eColumnHeader, n) == 0.0 &&
        mStored.of(eParam::eDetCalibrated, n) == 0.0) {
      return false;
    }
  }
  return true;
}

}  // namespace simulator::model
