// A fuzzer crashes if the code under test is wrong without crashing itself.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

/// `aSeen`: the evidence of the failure.
inline void require(bool aHolds, const char* aWhat, const std::string& aSeen = "") {
  if (!aHolds) {
    std::fprintf(stderr, "NOT SO: %s\n%s\n", aWhat, aSeen.c_str());
    std::abort();
  }
}
