// What the browser is told of a run of the tool.
#include "Verdict.h"

#include <sys/wait.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <optional>
#include <string>

#include "Json.h"

namespace {

constexpr char cResultSchema[] = "result";
constexpr std::size_t cLongestComplaint = 200;
constexpr char cFailure[] = "Execute failed ";

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
    return "The tool was ended by signal " + std::to_string(WTERMSIG(aOutcome.status)) + '.';
  }
  const std::size_t line = std::min(aOutcome.errors.find('\n'), cLongestComplaint);
  return "The tool ended with exit status " + std::to_string(WEXITSTATUS(aOutcome.status)) + ". " +
         aOutcome.errors.substr(0, line);
}

Answer instrumentRefused(eOperation aOperation, int aStatus) {
  return problem(isReport(aOperation) ? 502 : 409, "The instrument refused it.", aStatus);
}

/// Of a tool that ended well and printed nothing.
Answer judgeSilence(eOperation aOperation, std::optional<int> aFailure) {
  if (aFailure.has_value()) {
    return instrumentRefused(aOperation, *aFailure);
  }
  // Only the switch of the stream says nothing when all is well.
  return aOperation == eOperation::eStream ? Answer{204, "", "", ""}
                                           : problem(502, "The tool printed nothing.");
}

/// Status of a printed result object.
int judgeResult(unsigned aCode, const std::string& aMessage, bool aHasFailed) {
  // The two codes with which the tool says that it did not get as far as the instrument.
  if (aCode == 1 || aCode == 10053) {
    return 503;
  }
  // A file that is no sequence is refused with code 0. No other words tell anything.
  return aCode != 0 || aHasFailed || aMessage == "Format Invalid" ? 409 : 200;
}

Answer judgeDocument(eOperation aOperation, const std::string& aOutput,
                     std::optional<int> aFailure) {
  rapidjson::Document document;
  if (!parseJson(aOutput, document) || !document.IsObject()) {
    return problem(502, "What the tool printed is not one JSON document.");
  }
  const auto code = document.FindMember("ErrorCode");
  if (code == document.MemberEnd() && isReport(aOperation)) {
    return aFailure.has_value() ? instrumentRefused(aOperation, *aFailure)
                                : Answer{200, aOutput, schemaOf(aOperation), ""};
  }
  if (code == document.MemberEnd() || !code->value.IsUint()) {
    return problem(502, "What the tool printed has no ErrorCode.");
  }
  const auto message = document.FindMember("Msg");
  const bool hasMessage = message != document.MemberEnd() && message->value.IsString();
  const int status = judgeResult(
      code->value.GetUint(), hasMessage ? message->value.GetString() : "", aFailure.has_value());
  return {status, aOutput, cResultSchema, status == 503 ? "Retry-After: 5\r\n" : ""};
}

}  // namespace

Answer judge(eOperation aOperation, const Outcome& aOutcome) {
  if (!aOutcome.started) {
    return problem(502, "The tool could not be started.");
  }
  if (aOutcome.late) {
    return problem(504, isReport(aOperation) ? "The instrument did not answer in time."
                                             : "The command is still going on.");
  }
  if (aOutcome.tooMuch) {
    return problem(502, "The tool printed too much.");
  }
  if (aOutcome.status != 0) {
    return problem(502, describeEnd(aOutcome));
  }
  const std::optional<int> failure = findFailure(aOutcome.errors);
  return aOutcome.output.empty() ? judgeSilence(aOperation, failure)
                                 : judgeDocument(aOperation, aOutcome.output, failure);
}
