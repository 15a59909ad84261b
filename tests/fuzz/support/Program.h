// The whole program as a function, and what must hold for each of its runs.
#pragma once

#include <rapidjson/document.h>

#include <string>
#include <vector>

#include "FakeInstrument.h"
#include "GC_Web.h"
#include "Input.h"

/// The results of one run of the program.
struct Run {
  int status = 0;
  std::string out;
  std::string err;
};

/// Words in the form of main's arguments, ending in a null pointer.
std::vector<char*> pointersTo(std::vector<std::string>& words);

/// Runs the program with these words after its name. A FakeInstrument must exist.
Run runProgram(const std::vector<std::string>& aWords);

/// Runs an action and returns its result and everything it wrote.
template <class Action>
Run capture(Action&& aAction);

/// How far a run gets with its instrument.
enum class eReached { eNothing, eLibrary, eInstrument };

/// Lets the library's start or the connection fail for a few inputs.
eReached scriptConnection(Input& input, FakeInstrument& instrument);

/// A status of the library; 0 and 28 are the most frequent.
unsigned long takeStatus(Input& input);

/// Requires what holds for every run of an operation: the exit status; the calls around the
/// connection, which must be closed if it was opened; no change to the instrument in a report; one
/// document that matches its schema, or none; the matching text on standard error. Returns the
/// document; null if there is none.
rapidjson::Document requireOrderly(const FakeInstrument& aInstrument, const Run& aRun,
                                   eSections aOperation, eReached aReached);

/// All calls that change the instrument: batch writes and commands.
std::vector<Call> changes(const FakeInstrument& aInstrument);

template <class Action>
Run capture(Action&& aAction) {
  // The C library accepts other streams in place of its own: no file, no system call.
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
