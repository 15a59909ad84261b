// Answers to requests for reports.
#include "ReportAnswer.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "Request.h"
#include "SharedStatus.h"
#include "ToolProcess.h"
#include "Verdict.h"

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

std::string askTool(const Settings& aSettings, const Limits& aLimits, eOperation aOperation) {
  ToolProcess tool(aSettings, aLimits, {aOperation});
  tool.waitUntil(Clock::now() + aLimits.report);
  return render(judge(aOperation, tool.outcome()));
}

bool hasBody(cgicc::CgiInput& input) {
  const std::string length = input.getenv("CONTENT_LENGTH");
  return !length.empty() && length != "0";
}

std::string answerWithBody(cgicc::CgiInput& input, const Limits& aLimits,
                           const std::string& aMethod) {
  const std::string path = pathOf(input);
  const auto* report = std::find_if(std::begin(cReports), std::end(cReports),
                                    [&path](const ReportRow& row) { return path == row.path; });
  if (report == std::end(cReports)) {
    return render(problem(404, "There is no such report."));
  }
  if (aMethod != "GET" && aMethod != "HEAD") {
    return render(methodNotAllowed("GET, HEAD"));
  }
  if (!input.getenv("QUERY_STRING").empty() || hasBody(input)) {
    return render(problem(400, "A report takes no query and no body."));
  }
  Settings settings;
  if (const std::optional<Answer> fault = readReportSettings(input, settings)) {
    return render(*fault);
  }
  const auto ask = [&] { return askTool(settings, aLimits, report->operation); };
  return report->operation == eOperation::eStatus ? shareStatus(settings.state, aLimits, ask)
                                                  : ask();
}

}  // namespace

std::string answerReport(cgicc::CgiInput& input, const Limits& aLimits) {
  const std::string method = input.getenv("REQUEST_METHOD");
  const std::string answer = answerWithBody(input, aLimits, method);
  return method == "HEAD" ? withoutBody(answer) : answer;
}
