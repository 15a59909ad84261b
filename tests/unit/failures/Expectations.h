// What a run with an injury should print, and which calls it should make.
#pragma once

#include <string>
#include <vector>

#include "Faults.h"
#include "Operations.h"

/// A run without an injury: its output, and its calls, as text and with the records sent.
struct GoodRun {
  Output output;
  std::vector<Call> log;
  std::vector<std::string> traffic;
};

struct Expectation {
  Output output;
  std::vector<std::string> calls;
  /// What the tables do not cover; empty in a defined cell.
  std::string undefined;
};

Expectation expectation(const Operation& aOperation, const GoodRun& aGood, const Injury& aInjury);

/// A logged call without details checked elsewhere, such as the error whose text was requested.
std::string plainCall(const std::string& aCall);
