// How runs of the tool become answers for the browser.
#include "Verdict.h"

#include <csignal>

#include "Bench.h"

namespace gateway {

namespace {

constexpr char cInverted[] = R"({"ErrorCode": 0, "Msg": "Refused"})";
constexpr char cNotReached[] = R"({"ErrorCode": 10053, "Msg": "Unable to connect to GC!"})";
constexpr char cNotStarted[] = R"({"ErrorCode": 1, "Msg": "GC DLL error!"})";

Received judged(eOperation aOperation, const std::string& aOutput,
                const std::string& aErrors = "") {
  return Received(render(judge(aOperation, {true, false, false, 0, aOutput, aErrors})));
}

struct Expected {
  eOperation operation;
  const char* output;
  const char* errors;
  int status;
};

constexpr eOperation cRun = eOperation::eSingleRun;
constexpr eOperation cReport = eOperation::eAlarms;

// Each is sent exactly as printed.
constexpr Expected cDocuments[] = {
    {cReport, "{\"a\": 1}\n", "", 200},
    {cReport, "{}", "writeParam. return 0.\n", 200},
    {cReport, cNotReached, "EstablishConnection An error occured\n", 503},
    {cReport, cNotStarted, "", 503},
    {cReport, R"({"ErrorCode": 207, "Msg": "x"})", "", 409},
    {cRun, cAccepted, "writeParam. return 0.\n", 200},
    {cRun, cInverted, "writeParam. return 0.\n", 200},
    {eOperation::eSolution, cInverted, "", 200},
    {eOperation::eSolution, R"({"ErrorCode": 28, "Msg": "Accepted"})", "Execute failed 28.\n", 409},
    {cRun, R"({"ErrorCode": 0})", "", 200},
    {cRun, R"({"ErrorCode": 0, "Msg": 5})", "", 200},
    {cRun, R"({"ErrorCode": 0, "Msg": "format invalid"})", "", 200},
    {cRun, R"({"ErrorCode": 0, "Msg": "Format Invalid"})", "", 409},
    {cRun, R"({"ErrorCode": 2, "Msg": "Format invalid"})", "Execute failed -1.\n", 409},
    {cRun, R"({"ErrorCode": 2, "Msg": "Accepted"})", "", 409},
    {cRun, R"({"ErrorCode": 4294967294, "Msg": "Refused"})", "Execute failed -2.\n", 409},
    {cRun, R"({"ErrorCode": 106, "Msg": "Refused"})", "Execute failed 106.\n", 409},
    {cRun, R"({"ErrorCode": 110, "Msg": "Refused"})", "Execute failed 110.\n", 409},
    {cRun, R"({"ErrorCode": 0, "Msg": "Format Invalid"})", "Execute failed -1.\n", 409},
    {cRun, cAccepted, "writeParam. return 0.\nExecute failed 7.\n", 409},
    {cRun, cAccepted, "what? Execute failed 7.\n", 200},
    {cRun, cAccepted, "Execute failed.\n", 200},
    {cRun, cNotReached, "", 503},
    {cRun, cNotStarted, "", 503},
    {eOperation::eStream, cNotReached, "", 503},
    {cRun, R"({"ErrorCode": 1, "Msg": "Refused"})", "Execute failed 1.\n", 409},
};

TEST(VerdictOfTheTool, FollowsTheDocument) {
  for (const Expected& row : cDocuments) {
    const Received answer = judged(row.operation, row.output, row.errors);
    EXPECT_EQ(answer.status, row.status) << row.output << row.errors;
    EXPECT_EQ(answer.body, row.output);
    EXPECT_EQ(answer.headers.at("Content-Type"), "application/json");
    const std::string schema =
        answer.body.find("ErrorCode") == std::string::npos ? "alarms" : "result";
    EXPECT_EQ(answer.headers.at("Link"),
              "</schemas/" + schema + ".schema.json>; rel=\"describedby\"");
    EXPECT_EQ(answer.headers.count("Retry-After"), row.status == 503 ? 1U : 0U);
  }
  EXPECT_EQ(judged(cRun, cNotReached).headers.at("Retry-After"), "5");
}

// Answered with a problem document.
constexpr Expected cFaults[] = {
    {cReport, "", "", 502},
    {cRun, "", "writeParam. return 0.\n", 502},
    {cReport, "", "Execute failed 28.\n", 502},
    {cReport, "{}", "Execute failed 28.\n", 502},
    {cRun, "", "writeParam. return 28.\nExecute failed 28.\n", 409},
    {eOperation::eStream, "", "writeParam. return 28.\nExecute failed 28.\n", 409},
    {eOperation::eStream, "\n", "", 502},
    {cReport, "nonsense", "", 502},
    {cReport, "{} {}", "", 502},
    {cRun, R"({"ErrorCode": 0, "Msg": "Accepted"}{"ErrorCode": 0, "Msg": "Accepted"})", "", 502},
    {cReport, "{\"a\": 1", "", 502},
    {cReport, "[]", "", 502},
    {cReport, "\xEF\xBB\xBF{}", "", 502},
    {cReport, "{\"a\": \"\xFF\"}", "", 502},
    {cRun, "{}", "", 502},
    {cRun, R"({"ErrorCode": "0"})", "", 502},
    {cRun, R"({"ErrorCode": -1})", "", 502},
    {cRun, R"({"ErrorCode": 0.0})", "", 502},
    {cRun, R"({"ErrorCode": 4294967296})", "", 502},
    {cReport, R"({"ErrorCode": null})", "", 502},
};

TEST(VerdictOfTheTool, MakesAProblemOfEverythingElse) {
  for (const Expected& row : cFaults) {
    const Received answer = judged(row.operation, row.output, row.errors);
    EXPECT_EQ(answer.status, row.status) << row.output << row.errors;
    EXPECT_NE(answer.detail(), "");
    EXPECT_EQ(answer.document().HasMember("status-of-instrument"),
              std::string(row.errors).find("Execute failed") != std::string::npos);
  }
}

TEST(VerdictOfTheTool, TellsTheStatusOfTheInstrument) {
  EXPECT_EQ(judged(cReport, "", "Execute failed 28.\n").document()["status-of-instrument"], 28);
  EXPECT_EQ(judged(cRun, "", "x\nExecute failed -2.").document()["status-of-instrument"], -2);
}

constexpr char cNotKnown[] =
    "It is not known whether the instrument carried out the command: check its status.";

/// A failure of the library itself is not a refusal: the instrument may be running.
TEST(VerdictOfTheTool, IsUnknownWithoutTheInstrumentsWord) {
  const struct {
    std::uint32_t status;
    const char* errors;
    const char* reason;
  } cStatuses[] = {
      {107, "Execute failed 107.\n", "it did not answer in time"},
      {108, "Execute failed 108.\n", "the connection was lost"},
      {109, "Execute failed 109.\n", "its answer was not understood"},
      {10053, "Execute failed 10053.\n", "the connection was lost"},
      {4294967295U, "Execute failed -1.\n", "the client library failed"},
  };
  for (const auto& row : cStatuses) {
    const std::string code = std::to_string(row.status);
    const std::string detail = std::string("No answer from the instrument: ") + row.reason + ".";
    for (const std::string& output : {R"({"ErrorCode": )" + code + R"(, "Msg": "Refused"})",
                                      std::string(), std::string(cAccepted)}) {
      const Received answer = judged(cRun, output, row.errors);
      EXPECT_EQ(answer.status, 504) << output;
      EXPECT_EQ(answer.detail(), detail + ' ' + cNotKnown);
      const rapidjson::Document problem = answer.document();
      EXPECT_EQ(problem["status-of-library"], row.status);
      EXPECT_STREQ(problem["outcome"].GetString(), "unknown");
      EXPECT_EQ(problem.MemberCount(), 5U);
    }
    const Received report = judged(cReport, "", row.errors);
    EXPECT_EQ(report.status, 504);
    EXPECT_EQ(report.detail(), detail);
    EXPECT_FALSE(report.document().HasMember("outcome"));
  }
}

TEST(VerdictOfTheTool, SaysHowFarADownloadGot) {
  const char* words = "Refused: Unable to set new level for chan[1] peak[6]";
  const Received answer =
      judged(eOperation::eCalibrationFile,
             R"({"ErrorCode": 107, "Msg": ")" + std::string(words) + "\"}", "Execute failed 107.");
  EXPECT_STREQ(answer.document()["message"].GetString(), words);
}

TEST(VerdictOfTheTool, IsUnknownWhenTheToolDoesNotSay) {
  const struct {
    Outcome outcome;
    bool isUnknown = false;
  } cEnds[] = {
      {{false, false, false, 0, "", ""}, false},
      {{true, true, false, 0, "", ""}, true},
      {{true, false, true, 0, "", ""}, true},
      {{true, false, false, SIGKILL, "", ""}, true},
      {{true, false, false, 1 << 8, "", ""}, true},
      {{true, false, false, 127 << 8, "", ""}, false},
      {{true, false, false, 255 << 8, "", ""}, false},
      {{true, false, false, 0, "", ""}, true},
      {{true, false, false, 0, "{}", ""}, true},
      {{true, false, false, 0, "nonsense", ""}, true},
  };
  for (const auto& row : cEnds) {
    const Received answer(render(judge(cRun, row.outcome)));
    EXPECT_EQ(answer.document().HasMember("outcome"), row.isUnknown) << answer.body;
    EXPECT_EQ(answer.detail().find(cNotKnown) != std::string::npos, row.isUnknown) << answer.body;
    const Received report(render(judge(cReport, row.outcome)));
    EXPECT_EQ(report.body.find("outcome"), std::string::npos);
    EXPECT_EQ(report.body.find("not known"), std::string::npos);
  }
}

TEST(VerdictOfTheTool, AZeroOctetIsNoJson) {
  EXPECT_EQ(judged(cReport, std::string("{}\0 x", 5)).status, 502);
}

TEST(VerdictOfTheTool, ASwitchedStreamHasNoContent) {
  const Received answer = judged(eOperation::eStream, "", "writeParam. return 0.\n");
  EXPECT_EQ(answer.status, 204);
  EXPECT_EQ(answer.body, "");
  EXPECT_EQ(answer.headers.count("Content-Type"), 0U);
  EXPECT_EQ(answer.headers.count("Content-Length"), 0U);
  EXPECT_EQ(answer.headers.at("Cache-Control"), "no-store");
}

TEST(VerdictOfTheTool, IsToldInTheseWords) {
  const std::string unknown = std::string(" ") + cNotKnown;
  const std::string complaint(300, 'x');
  const struct {
    eOperation operation;
    Outcome outcome;
    std::string detail;
  } cEnds[] = {
      {cRun, {false, false, false, 0, "", ""}, "The tool could not be started; nothing was done."},
      {cReport, {true, true, false, 0, "", ""}, "The instrument did not answer in time."},
      {cRun, {true, true, false, 0, "", ""}, "The command is still in progress." + unknown},
      {cReport, {true, false, true, 0, "", ""}, "The tool printed too much."},
      {cReport, {true, false, false, SIGKILL, "", ""}, "The tool was killed by signal 9."},
      {cReport, {true, false, false, 3 << 8, "", "Why\nx"}, "The tool exited with status 3. Why"},
      {cReport,
       {true, false, false, 3 << 8, "", complaint},
       "The tool exited with status 3. " + complaint.substr(100)},
      {cReport, {true, false, false, 0, "", ""}, "The tool printed nothing."},
      {cReport,
       {true, false, false, 0, "x", ""},
       "The tool's output is not a single JSON document."},
      {cRun, {true, false, false, 0, "{}", ""}, "The tool's output has no ErrorCode." + unknown},
      {cRun,
       {true, false, false, 0, "", "Execute failed 28."},
       "The instrument refused the request."},
  };
  for (const auto& row : cEnds) {
    EXPECT_EQ(Received(render(judge(row.operation, row.outcome))).detail(), row.detail);
  }
}

TEST(VerdictOfTheTool, FollowsTheEndOfTheRun) {
  const struct {
    Outcome outcome;
    int status = 0;
    const char* word = "";
  } cEnds[] = {
      {{false, false, false, 0, "", ""}, 502, "started"},
      {{true, true, false, 0, cAccepted, ""}, 504, ""},
      {{true, false, true, 0, cAccepted, ""}, 502, "too much"},
      {{true, false, false, SIGSEGV, cAccepted, ""}, 502, "signal 11. It is"},
      {{true, false, false, 255 << 8, "", "Invalid \xFFP address\nmore"}, 502, "status 255. Inv"},
  };
  for (const auto& row : cEnds) {
    const Received answer(render(judge(cRun, row.outcome)));
    EXPECT_EQ(answer.status, row.status);
    EXPECT_NE(answer.detail().find(row.word), std::string::npos) << answer.detail();
    EXPECT_EQ(answer.detail().find("more"), std::string::npos);
  }
}

}  // namespace

}  // namespace gateway
