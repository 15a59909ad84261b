// The whole program as a function, and what holds of each of its runs.
#pragma once

#include <rapidjson/document.h>

#include <string>
#include <vector>

#include "FakeInstrument.h"
#include "GC_Web.h"
#include "Input.h"

/// What one run of the program left.
struct Run {
  int status = 0;
  std::string out;
  std::string err;
};

/// Words as a program receives them, a null pointer behind them.
std::vector<char*> pointersTo(std::vector<std::string>& words);

/// Runs the program with these words behind its name. There is a FakeInstrument to talk to.
Run runProgram(const std::vector<std::string>& aWords);

/// Runs an action and returns what it returned, and all that it wrote.
template <class Action>
Run capture(Action&& aAction);

/// How far a run gets with its instrument.
enum class eReached { eNothing, eLibrary, eInstrument };

/// Lets the start of the library or the connection fail, for few inputs.
eReached scriptConnection(Input& input, FakeInstrument& instrument);

/// A status of the library; 0 and 28 among them more often than others.
unsigned long takeStatus(Input& input);

/// Requires what holds of every run of an operation: the exit status; the calls around the
/// connection, and that it is closed when it was opened; nothing that changes the instrument in a
/// report; one document that fits its schema, or none; what standard error says of it. Returns the
/// document; null when there is none.
rapidjson::Document requireOrderly(const FakeInstrument& aInstrument, const Run& aRun,
                                   eSections aOperation, eReached aReached);

/// All calls that change the instrument: batch writes and commands.
std::vector<Call> changes(const FakeInstrument& aInstrument);

template <class Action>
Run capture(Action&& aAction) {
  // The C library takes other streams in the place of its own: no file, no system call.
  std::FILE* const usualOut = stdout;
  std::FILE* const usualErr = stderr;
  char* text[2] = {nullptr, nullptr};
  std::size_t size[2] = {0, 0};
  stdout = ::open_memstream(&text[0], &size[0]);
  stderr = ::open_memstream(&text[1], &size[1]);
  Run run;
  run.status = aAction();
  std::fclose(stdout);
  std::fclose(stderr);
  stdout = usualOut;
  stderr = usualErr;
  run.out.assign(text[0], size[0]);
  run.err.assign(text[1], size[1]);
  std::free(text[0]);
  std::free(text[1]);
  return run;
}
