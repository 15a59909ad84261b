// Starts the automation sequence: one command, one verdict.
#include "SecAutoRun.h"

#include <InstrumentClient.h>

#include "Common.h"

namespace {

constexpr unsigned long cStartAutomation = 16;

}  // namespace

void SecAutoRun::init(ParameterMap* aMap, unsigned long handle) {
  mMap = aMap;
  mHandle = handle;
}

int SecAutoRun::writeGC() {
  return printVerdict(ExecuteCommand(mHandle, 0, cStartAutomation));
}
