// The operations of the tool, each as a command line that succeeds on one and the same instrument.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "Arguments.h"
#include "FakeInstrument.h"
#include "GC_Web.h"

struct Operation {
  const char* name;
  eSections code;
  std::vector<std::string> words;
  const char* file;  ///< contents of the file that the last word is to name; null for none
};

inline std::ostream& operator<<(std::ostream& aStream, const Operation& aOperation) {
  return aStream << aOperation.name;
}

const std::vector<Operation>& operations();

/// Gives the instrument something to answer to each report: no value that is shown is 0, so that
/// one that did not arrive is seen.
void setAnswers(FakeInstrument& aInstrument);

/// What one run of the program left behind.
struct Outcome {
  int status = 99;  ///< exit status
  Output output;
  int aceBlocks = 0;  ///< blocks of ACE's containers that were not freed
};

/// Runs the whole program. The file of a download goes when the run has ended.
Outcome run(const Operation& aOperation);
