// What the command operations share: writing and reporting their parameters.
#include "RunCommand.h"

#include <cstdio>

#include "Common.h"

unsigned int writeAndReport(const ParameterMap& aMap, unsigned long aHandle) {
  const unsigned int ulResult = writeParams(aMap, aHandle);
  std::fprintf(stderr, "writeParam. return %d.\n", static_cast<int>(ulResult));
  return ulResult;
}
