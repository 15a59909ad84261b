// What a fuzzer does when the code under test is wrong without having crashed: it crashes.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

/// `aSeen`: what shows that it does not hold.
inline void require(bool aHolds, const char* aWhat, const std::string& aSeen = "") {
  if (!aHolds) {
    std::fprintf(stderr, "NOT SO: %s\n%s\n", aWhat, aSeen.c_str());
    std::abort();
  }
}
