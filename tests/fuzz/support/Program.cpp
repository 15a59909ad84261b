// The program's guarantees, written down independently of it.
#include "Program.h"

#include <algorithm>

#include "Require.h"
#include "Schemas.h"

int gcWebMain(int argc, char* argv[]);

namespace {

using rapidjson::Document;

struct Promise {
  eSections operation;
  const char* schema;    ///< of the document; null if there is none
  const char* accepted;  ///< a command's Msg for status 0; null if it is specified elsewhere
};

constexpr Promise cPromises[] = {
    {eStatusRead, "status", nullptr},        {eConfigRead, "configuration", nullptr},
    {eAlarmRead, "alarms", nullptr},         {eSequenceRead, "sequence", nullptr},
    {eCalibRead, "calibration", nullptr},    {eStreamWrite, nullptr, nullptr},
    {eSingleRun, "result", "Accepted"},      {eAutomationRun, "result", "Accepted"},
    {eCalibrationRun, "result", "Accepted"}, {eAbortRun, "result", "Accepted"},
    {eSolutionLoad, "result", "Refused"},  // the texts are swapped there
    {eSequenceWrite, "result", nullptr},     {eCalibWrite, "result", nullptr},
    {eAlarmReset, "result", "Accepted"},
};

bool isReport(eSections aOperation) {
  return aOperation <= eCalibRead;
}

std::string joined(const std::vector<std::string>& aLines) {
  std::string text;
  for (const std::string& line : aLines) {
    text += line + '\n';
  }
  return text;
}

bool startsWith(const std::string& aText, const std::string& aStart) {
  return aText.compare(0, aStart.size(), aStart) == 0;
}

void requireConnectionFailure(const Run& aRun, eReached aReached) {
  const bool started = aReached == eReached::eLibrary;
  require(
      aRun.err == (started ? "EstablishConnection An error occured while connecting to the GC.\n"
                           : "startupGC An error occured.\n"),
      "standard error says what failed", aRun.err);
  const Document document = requireDocument(aRun.out, "result");
  require(document["ErrorCode"].GetUint() == (started ? 10053U : 1U), "the code of the failure",
          aRun.out);
  require(document["Msg"] == (started ? "Unable to connect to GC!" : "GC DLL error!"),
          "the text of the failure", aRun.out);
}

/// The calls before and after those of the section.
void requireLifeCycle(const FakeInstrument& aInstrument, eSections aOperation, eReached aReached) {
  std::vector<std::string> calls = aInstrument.calls();
  const std::string shown = joined(calls);
  std::vector<std::string> first = {"initializeACE()", "startupGC(1, "};
  std::vector<std::string> last = {"finishACE()"};
  if (aReached != eReached::eNothing) {
    const std::string mode = isReport(aOperation) ? "1" : "0";
    first.push_back("EstablishConnection(" + mode + ", \"SimUI\", \"\")");
  }
  if (aReached == eReached::eInstrument) {
    // A library that writes nothing has left the handle unchanged.
    last = {aInstrument.silent ? "BreakConnection(0)" : "BreakConnection(handle)", "shutdownGC()",
            "finishACE()"};
    require(calls.size() >= first.size() + last.size(), "the connection is closed", shown);
  } else {
    require(calls.size() == first.size() + last.size(), "nothing is asked", shown);
  }
  for (std::size_t i = 0; i < first.size(); ++i) {
    require(startsWith(calls[i], first[i]), "it starts in its order", shown);
  }
  for (std::size_t i = 0; i < last.size(); ++i) {
    require(calls[calls.size() - last.size() + i] == last[i], "it ends in its order", shown);
  }
  for (std::size_t i = first.size(); i < calls.size() - last.size(); ++i) {
    require(calls[i].find("Connection(") == std::string::npos && calls[i] != "shutdownGC()",
            "there is one connection", shown);
  }
}

/// The number after "Execute failed"; 0 if it is absent. It is the last line.
int failure(const Run& aRun) {
  const std::string words = "Execute failed ";
  const std::size_t start = aRun.err.rfind(words);
  if (start == std::string::npos) {
    return 0;
  }
  const int number = std::atoi(aRun.err.c_str() + start + words.size());
  require(number != 0 && aRun.err.substr(start) == words + std::to_string(number) + ".\n",
          "a failure is reported in one line", aRun.err);
  return number;
}

void requireVerdict(const Document& aVerdict, const Promise& aPromise, const Run& aRun) {
  const std::string message = aVerdict["Msg"].GetString();
  const unsigned code = aVerdict["ErrorCode"].GetUint();
  const int failed = failure(aRun);
  if (message == "Format Invalid" || message == "Format invalid") {
    require(failed == -1, "a refused file is a failure", aRun.err);
    return;
  }
  require(code == static_cast<unsigned>(failed), "both outputs show the same status",
          aRun.out + aRun.err);
  if (aPromise.accepted != nullptr) {
    require((message == aPromise.accepted) == (code == 0), "the text matches the status", aRun.out);
  }
}

}  // namespace

std::vector<char*> pointersTo(std::vector<std::string>& words) {
  std::vector<char*> pointers(words.size() + 1, nullptr);
  std::transform(words.begin(), words.end(), pointers.begin(),
                 [](std::string& word) { return word.data(); });
  return pointers;
}

Run runProgram(const std::vector<std::string>& aWords) {
  std::vector<std::string> words = aWords;
  words.insert(words.begin(), "GC_Web");
  std::vector<char*> arguments = pointersTo(words);
  return capture([&] { return gcWebMain(static_cast<int>(words.size()), arguments.data()); });
}

unsigned long takeStatus(Input& input) {
  constexpr std::uint32_t cUsual[] = {0, 0, 28, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
  const std::size_t choice = input.below(8);
  return choice < 7 ? cUsual[choice] : input.number<std::uint32_t>();
}

eReached scriptConnection(Input& input, FakeInstrument& instrument) {
  const std::uint8_t choice = input.octet();
  if (choice == 0xFE) {
    instrument.setStatus(eFunction::eStartupGC, 1 + input.below(0xFFFFFFFF));
    return eReached::eNothing;
  }
  if (choice == 0xFF) {
    instrument.setStatus(eFunction::eEstablishConnection, 1 + input.below(0xFFFFFFFF));
    return eReached::eLibrary;
  }
  return eReached::eInstrument;
}

std::vector<Call> changes(const FakeInstrument& aInstrument) {
  std::vector<Call> calls;
  for (const Call& call : aInstrument.log()) {
    if (startsWith(call.text, "WriteParamList") || startsWith(call.text, "ExecuteCommand")) {
      calls.push_back(call);
    }
  }
  return calls;
}

Document requireOrderly(const FakeInstrument& aInstrument, const Run& aRun, eSections aOperation,
                        eReached aReached) {
  require(aRun.status == 0, "the exit status is 0");
  requireLifeCycle(aInstrument, aOperation, aReached);
  if (aReached != eReached::eInstrument) {
    requireConnectionFailure(aRun, aReached);
    return Document();
  }
  const Promise& promise = cPromises[aOperation];
  require(promise.operation == aOperation, "every operation has a promise");
  if (isReport(aOperation)) {
    require(changes(aInstrument).empty(), "a report changes nothing");
    require(aRun.out.empty() == (failure(aRun) != 0), "a report is printed or has failed",
            aRun.out + aRun.err);
    require(failure(aRun) != 0 || aRun.err.empty(), "a report is printed without a word", aRun.err);
  }
  if (promise.schema == nullptr || (isReport(aOperation) && aRun.out.empty())) {
    require(aRun.out.empty(), "nothing is printed", aRun.out);
    return Document();
  }
  Document document = requireDocument(aRun.out, promise.schema);
  if (!isReport(aOperation)) {
    requireVerdict(document, promise, aRun);
  }
  return document;
}
