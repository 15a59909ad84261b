// Turns a run of the tool into the answer for the browser.
#include "Verdict.h"

#include <sys/wait.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "Json.h"
#include "LibraryStatus.h"

namespace gateway {

namespace {

constexpr char cResultSchema[] = "result";
constexpr std::size_t cLongestComplaint = 200;
constexpr char cFailure[] = "Execute failed ";

constexpr char cOutcomeUnknown[] =
    "It is not known whether the instrument carried out the command: check its status.";

// Exit statuses for a bad command line (the tool's), and for a missing program (the system's).
constexpr int cBadCommandLine = 255;
constexpr int cNoProgram = 127;

/// For a command that may have reached the instrument, or a report, which changes nothing.
Answer outcomeUnknown(eOperation aOperation, int aStatus, const std::string& aDetail,
                      ProblemFacts aFacts = {}) {
  if (isReport(aOperation)) {
    return problem(aStatus, aDetail, aFacts);
  }
  aFacts.isOutcomeUnknown = true;
  return problem(aStatus, aDetail + ' ' + cOutcomeUnknown, aFacts);
}

/// N of a line "Execute failed N." on standard error.
std::optional<int> findFailure(const std::string& aErrors) {
  std::size_t line = 0;
  while (line < aErrors.size()) {
    const std::size_t end = std::min(aErrors.find('\n', line), aErrors.size());
    const std::size_t number = line + sizeof cFailure - 1;
    int status = 0;
    if (aErrors.compare(line, sizeof cFailure - 1, cFailure) == 0 &&
        std::from_chars(&aErrors[number], &aErrors[end], status).ec == std::errc()) {
      return status;
    }
    line = end + 1;
  }
  return std::nullopt;
}

std::string describeEnd(const Outcome& aOutcome) {
  if (WIFSIGNALED(aOutcome.status)) {
    return "The tool was killed by signal " + std::to_string(WTERMSIG(aOutcome.status)) + '.';
  }
  const std::size_t line = std::min(aOutcome.errors.find('\n'), cLongestComplaint);
  return "The tool exited with status " + std::to_string(WEXITSTATUS(aOutcome.status)) + ". " +
         aOutcome.errors.substr(0, line);
}

/// Whether the tool ended before it could send the instrument anything.
bool hasDoneNothing(int aStatus) {
  return WIFEXITED(aStatus) &&
         (WEXITSTATUS(aStatus) == cBadCommandLine || WEXITSTATUS(aStatus) == cNoProgram);
}

/// The answer for a status from the library itself; none for one from the instrument.
std::optional<Answer> judgeUnanswered(eOperation aOperation, std::uint32_t aStatus,
                                      const std::string& aMessage) {
  const char* reason = unansweredReason(aStatus);
  if (reason == nullptr) {
    return std::nullopt;
  }
  ProblemFacts facts;
  facts.libraryStatus = aStatus;
  // A verdict's plain text would only mislead.
  if (aMessage.find(':') != std::string::npos) {
    facts.message = aMessage;
  }
  return outcomeUnknown(aOperation, 504,
                        std::string("No answer from the instrument: ") + reason + '.', facts);
}

Answer judgeFailure(eOperation aOperation, int aStatus) {
  if (const auto answer = judgeUnanswered(aOperation, static_cast<std::uint32_t>(aStatus), "")) {
    return *answer;
  }
  ProblemFacts facts;
  facts.instrumentStatus = aStatus;
  return problem(isReport(aOperation) ? 502 : 409, "The instrument refused the request.", facts);
}

/// For a tool that ended normally and printed nothing.
Answer judgeSilence(eOperation aOperation, std::optional<int> aFailure) {
  if (aFailure.has_value()) {
    return judgeFailure(aOperation, *aFailure);
  }
  // Only the stream switch prints nothing on success.
  return aOperation == eOperation::eStream
             ? Answer{204, "", "", ""}
             : outcomeUnknown(aOperation, 502, "The tool printed nothing.");
}

constexpr char cFileRefused[] = "Format Invalid";

/// Whether the tool reports that it did not reach the instrument. Two codes mean that, unless a
/// call failed: then the code is the call's.
bool isUnreached(unsigned aCode, std::optional<int> aFailure) {
  return (aCode == 1 || aCode == 10053) && !aFailure.has_value();
}

/// Status of a printed result object.
int judgeResult(unsigned aCode, const std::string& aMessage, bool aHasFailed) {
  // A file that is not a sequence is refused with code 0. No other text matters.
  return aCode != 0 || aHasFailed || aMessage == cFileRefused ? 409 : 200;
}

/// The status behind a verdict. After a refused file, the number on standard error is the tool's
/// own.
std::uint32_t statusOf(unsigned aCode, const std::string& aMessage, std::optional<int> aFailure) {
  return aCode != 0 || aMessage == cFileRefused ? aCode
                                                : static_cast<std::uint32_t>(aFailure.value_or(0));
}

Answer judgeDocument(eOperation aOperation, const std::string& aOutput,
                     std::optional<int> aFailure) {
  rapidjson::Document document;
  if (!parseJson(aOutput, document) || !document.IsObject()) {
    return outcomeUnknown(aOperation, 502, "The tool's output is not a single JSON document.");
  }
  const auto code = document.FindMember("ErrorCode");
  if (code == document.MemberEnd() && isReport(aOperation)) {
    return aFailure.has_value() ? judgeFailure(aOperation, *aFailure)
                                : Answer{200, aOutput, schemaOf(aOperation), ""};
  }
  if (code == document.MemberEnd() || !code->value.IsUint()) {
    return outcomeUnknown(aOperation, 502, "The tool's output has no ErrorCode.");
  }
  const auto member = document.FindMember("Msg");
  const bool hasMessage = member != document.MemberEnd() && member->value.IsString();
  const std::string message = hasMessage ? member->value.GetString() : "";
  const unsigned number = code->value.GetUint();
  if (isUnreached(number, aFailure)) {
    return {503, aOutput, cResultSchema, "Retry-After: 5\r\n"};
  }
  if (const auto answer =
          judgeUnanswered(aOperation, statusOf(number, message, aFailure), message)) {
    return *answer;
  }
  return {judgeResult(number, message, aFailure.has_value()), aOutput, cResultSchema, ""};
}

}  // namespace

Answer judge(eOperation aOperation, const Outcome& aOutcome) {
  if (!aOutcome.started) {
    return problem(502, "The tool could not be started; nothing was done.");
  }
  if (aOutcome.late) {
    // A late run is killed, unless it is a command that others may have to wait for.
    const bool isEnded = isReport(aOperation) || isAbort(aOperation);
    return outcomeUnknown(
        aOperation, 504,
        isEnded ? "The instrument did not answer in time." : "The command is still in progress.");
  }
  if (aOutcome.tooMuch) {
    return outcomeUnknown(aOperation, 502, "The tool printed too much.");
  }
  if (aOutcome.status != 0) {
    return hasDoneNothing(aOutcome.status) ? problem(502, describeEnd(aOutcome))
                                           : outcomeUnknown(aOperation, 502, describeEnd(aOutcome));
  }
  const std::optional<int> failure = findFailure(aOutcome.errors);
  return aOutcome.output.empty() ? judgeSilence(aOperation, failure)
                                 : judgeDocument(aOperation, aOutcome.output, failure);
}

}  // namespace gateway
