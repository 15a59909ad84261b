// Starts a single run: one batch, one command, one verdict.
#include "SecSingleRun.h"

#include <InstrumentClient.h>

#include "Common.h"
#include "ParameterTable.h"
#include "RunCommand.h"

namespace {

// The run's parameters; run type 0 is an analysis.
constexpr ParameterRow cSingleRun[] = {
    {60, "mRunType", 0, eSpan::eSingle, 0},
    {61, "mLevel", 0, eSpan::eSingle, 0},
    {62, "mStream", 0, eSpan::eSingle, 0},
};

constexpr unsigned long cStartRun = 0;

}  // namespace

void SecSingleRun::init(ParameterMap* aMap, unsigned long handle) {
  mMap = aMap;
  mHandle = handle;
  registerParameters(*aMap, cSingleRun);
}

void SecSingleRun::setArgument(int arg) {
  if (Parameter* parameter = findParameter(*mMap, "mStream")) {
    stream = arg;
    parameter->setIntValue(arg);
  }
}

int SecSingleRun::writeGC() {
  unsigned long ulResult = writeAndReport(*mMap, mHandle);
  if (ulResult == 0) {
    ulResult = ExecuteCommand(mHandle, 0, cStartRun);
  }
  return printVerdict(ulResult);
}
