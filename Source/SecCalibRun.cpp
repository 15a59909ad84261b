// Starts a calibration run.
#include "SecCalibRun.h"

#include "ParameterTable.h"

namespace {

// The run's parameters; run type 1 is a calibration.
constexpr ParameterRow cCalibrationRun[] = {
    {60, "mRunType", 0, eSpan::eSingle, 1},   {61, "mLevel", 0, eSpan::eSingle, 1},
    {62, "mStream", 0, eSpan::eSingle, 0},    {75, "mRFCalibType", 0, eSpan::eSingle, 1},
    {73, "mReplicate", 0, eSpan::eSingle, 2}, {74, "mCurrentReplicate", 0, eSpan::eSingle, 1},
};

}  // namespace

void SecCalibRun::init(ParameterMap* aMap, unsigned long handle) {
  mMap = aMap;
  mHandle = handle;
  registerParameters(*aMap, cCalibrationRun);
}
