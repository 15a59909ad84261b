// The start of a calibration run.
#include "SecCalibRun.h"

#include "ParameterTable.h"

namespace {

// The run's parameters; run type 1 is a calibration.
constexpr ParameterRow cCalibrationRun[] = {
    {60, "mRunType", eSpan::eSingle, 0, 1},   {61, "mLevel", eSpan::eSingle, 0, 1},
    {62, "mStream", eSpan::eSingle, 0, 0},    {75, "mRFCalibType", eSpan::eSingle, 0, 1},
    {73, "mReplicate", eSpan::eSingle, 0, 2}, {74, "mCurrentReplicate", eSpan::eSingle, 0, 1},
};

}  // namespace

void SecCalibRun::init(ParameterMap* aMap, unsigned long handle) {
  mMap = aMap;
  mHandle = handle;
  registerParameters(*aMap, cCalibrationRun);
}
