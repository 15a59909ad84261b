// The tool: one request from start to end.
#include <PlatformLayer.h>

#include "Common.h"
#include "GC_Web.h"

int main(int argc, char* argv[]) {
  ParameterMap lMap(128);
  Request request;
  int result = 0;
  if (!parseCommandLine(argc, argv, request, result)) {
    return result;
  }
  performRequest(request, lMap);
  clearParamMap(lMap, true);
  finishACE();
  return 0;
}
