// The operations of the tool, each as a command line that succeeds on the same instrument.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "Arguments.h"
#include "FakeInstrument.h"
#include "GC_Web.h"

struct Operation {
  std::string name;
  eSections code;
  std::vector<std::string> words;
  std::string file;  ///< contents of the file named by the last word; empty for none
};

inline std::ostream& operator<<(std::ostream& aStream, const Operation& aOperation) {
  return aStream << aOperation.name;
}

/// Those of tests/failures.json.
const std::vector<Operation>& operations();

/// Gives the instrument an answer to each report: no displayed value is 0, so that a missing one is
/// seen.
void setAnswers(FakeInstrument& aInstrument);

/// The results of one run of the program.
struct Outcome {
  int status = 99;  ///< exit status
  Output output;
  int aceBlocks = 0;  ///< blocks of ACE's containers that were not freed
};

/// Runs the whole program, then removes the file of a download.
Outcome run(const Operation& aOperation);
