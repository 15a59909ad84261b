// The version, for a person who starts a program by hand.
#include "Version.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace gateway {

bool isAskedForVersion(int argc, const char* const argv[]) {
  return argc == 2 && std::strcmp(argv[1], "--version") == 0 &&
         std::getenv("GATEWAY_INTERFACE") == nullptr;
}

int printVersion(const char* aProgram) {
  std::printf("%s " GC_WEB_VERSION "\n", aProgram);
  return std::fflush(stdout) == 0 ? 0 : 1;
}

}  // namespace gateway
