// Answers to requests for reports.
#include "ReportAnswer.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "Diagnosis.h"
#include "KeptAnswer.h"
#include "Request.h"
#include "SharedStatus.h"
#include "ToolProcess.h"
#include "Units.h"
#include "Verdict.h"

namespace gateway {

namespace {

struct ReportRow {
  const char* path;
  eOperation operation;
};

constexpr ReportRow cReports[] = {
    {"/api/status", eOperation::eStatus},           {"/api/config", eOperation::eConfiguration},
    {"/api/alarms", eOperation::eAlarms},           {"/api/sequence", eOperation::eSequence},
    {"/api/calibration", eOperation::eCalibration},
};

std::string askTool(cgicc::CgiInput& input, const Settings& aSettings, const Limits& aLimits,
                    eOperation aOperation) {
  ToolProcess tool(aSettings, aLimits, {aOperation});
  tool.waitUntil(Clock::now() + aLimits.report);
  const Answer answer = judge(aOperation, tool.outcome());
  diagnose(input, aSettings, aOperation, answer.status, tool.outcome().errors);
  return render(withUnits(answer, aSettings.units));
}

bool hasBody(cgicc::CgiInput& input) {
  const std::string length = input.getenv("CONTENT_LENGTH");
  return !length.empty() && length != "0";
}

/// The checks common to all paths.
std::optional<Answer> findFault(cgicc::CgiInput& input, Settings& settings) {
  const std::string method = input.getenv("REQUEST_METHOD");
  if (method != "GET" && method != "HEAD") {
    return methodNotAllowed("GET, HEAD");
  }
  if (!input.getenv("QUERY_STRING").empty() || hasBody(input)) {
    return problem(400, "A report takes no query or body.");
  }
  return readReportSettings(input, settings);
}

std::string answerWithBody(cgicc::CgiInput& input, const Limits& aLimits) {
  const std::string path = pathOf(input);
  const auto* report = std::find_if(std::begin(cReports), std::end(cReports),
                                    [&path](const ReportRow& row) { return path == row.path; });
  const bool isKept = report == std::end(cReports) && isKeptPath(path);
  if (report == std::end(cReports) && !isKept) {
    return render(problem(404, "There is no such report."));
  }
  Settings settings;
  if (const std::optional<Answer> fault = findFault(input, settings)) {
    return render(*fault);
  }
  if (isKept) {
    return withInterruptions(render(answerKept(path, settings)), settings);
  }
  const auto ask = [&] { return askTool(input, settings, aLimits, report->operation); };
  const std::string answer =
      report->operation == eOperation::eStatus ? shareStatus(settings.state, aLimits, ask) : ask();
  return withInterruptions(answer, settings);
}

}  // namespace

std::string answerReport(cgicc::CgiInput& input, const Limits& aLimits) {
  const std::string answer = answerWithBody(input, aLimits);
  return input.getenv("REQUEST_METHOD") == "HEAD" ? withoutBody(answer) : answer;
}

}  // namespace gateway
