// What a run with an injury is to print, and which calls it is to make.
#pragma once

#include <string>
#include <vector>

#include "Faults.h"
#include "Operations.h"

/// A run without injury: what it printed, and its calls, as text and with the records sent.
struct GoodRun {
  Output output;
  std::vector<Call> log;
  std::vector<std::string> traffic;
};

struct Expectation {
  Output output;
  std::vector<std::string> calls;
  /// Of what the tables do not know; none in a defined cell.
  std::string undefined;
};

Expectation expectation(const Operation& aOperation, const GoodRun& aGood, const Injury& aInjury);

/// A call of the log without what is settled elsewhere: which error's text was asked for.
std::string plainCall(const std::string& aCall);
