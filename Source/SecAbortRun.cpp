// Aborts a run or sequence: one or two commands, one verdict.
#include "SecAbortRun.h"

#include <InstrumentClient.h>

#include "Common.h"

namespace {

constexpr unsigned long cAbortRun = 1;
constexpr unsigned long cStopAutomation = 17;

}  // namespace

void SecAbortRun::init(ParameterMap* aMap, unsigned long handle) {
  mMap = aMap;
  mHandle = handle;
}

void SecAbortRun::setArgument(int arg) {
  mode = arg;
}

int SecAbortRun::writeGC() {
  unsigned long ulResult = 0;
  if (mode == 0) {
    ulResult = ExecuteCommand(mHandle, 0, cAbortRun);
  }
  if (ulResult == 0) {
    ulResult = ExecuteCommand(mHandle, 0, cStopAutomation);
  }
  return printVerdict(ulResult);
}
