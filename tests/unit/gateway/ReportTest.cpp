// Requests for reports: paths, methods, settings, output.
#include "Bench.h"

namespace gateway {

namespace {

class ReportRequest : public Bench {};

struct Route {
  const char* path;
  const char* option;
  const char* schema;
};

constexpr Route cRoutes[] = {
    {"/api/status", "-t", "status"},           {"/api/config", "-g", "configuration"},
    {"/api/alarms", "-a", "alarms"},           {"/api/sequence", "-q", "sequence"},
    {"/api/calibration", "-c", "calibration"},
};

TEST_F(ReportRequest, StartsTheToolWithOneOption) {
  toolDoes("describe", "");
  for (const Route& route : cRoutes) {
    const Received answer = report(route.path);
    EXPECT_EQ(answer.status, 200) << route.path;
    EXPECT_EQ(answer.reason, "OK");
    EXPECT_EQ(answer.headers.at("Content-Type"), "application/json");
    EXPECT_EQ(answer.headers.at("Cache-Control"), "no-store");
    EXPECT_EQ(answer.headers.at("Link"),
              std::string("</schemas/") + route.schema + ".schema.json>; rel=\"describedby\"");
    const rapidjson::Document document = answer.document();
    ASSERT_EQ(document["arguments"].Size(), 1U) << answer.body;
    EXPECT_STREQ(document["arguments"][0].GetString(), route.option);
  }
}

TEST_F(ReportRequest, HandsOnEveryOctet) {
  toolDoes("out  {\"a\" :\t1.50,\nout \"a\": \"\xC3\xA9\\u00e9\"} \nflood 3");
  const Received answer = report("/api/config");
  EXPECT_EQ(answer.status, 200);
  EXPECT_EQ(answer.body, " {\"a\" :\t1.50,\"a\": \"\xC3\xA9\\u00e9\"}    ");
  EXPECT_EQ(answer.headers.at("Content-Length"), std::to_string(answer.body.size()));
}

TEST_F(ReportRequest, TakesThePathHoweverItIsDivided) {
  toolDoes("describe", "");
  input.variables["PATH_INFO"] = "/alarms";
  const rapidjson::Document document = report("/api").document();
  EXPECT_STREQ(document["arguments"][0].GetString(), "-a");
}

TEST_F(ReportRequest, KnowsNoOtherPath) {
  toolDoes("note " + path("runs"));
  for (const char* other : {"", "/", "/api", "/api/", "/api/status/", "/api/Status", "/api/run",
                            "/api/command/run", "/api/status%20"}) {
    EXPECT_EQ(report(other).status, 404) << other;
    EXPECT_EQ(report(other, "POST").status, 404) << other;
  }
  EXPECT_NE(report("/x").detail(), "");
  EXPECT_EQ(contentOf("runs"), "");
}

TEST_F(ReportRequest, AllowsOnlyGetAndHead) {
  toolDoes("note " + path("runs"));
  for (const char* method : {"POST", "PUT", "DELETE", "OPTIONS", "PATCH", "get", ""}) {
    for (const Route& route : cRoutes) {
      const Received answer = report(route.path, method);
      EXPECT_EQ(answer.status, 405) << method;
      EXPECT_EQ(answer.headers.at("Allow"), "GET, HEAD");
      EXPECT_NE(answer.detail(), "");
    }
  }
  EXPECT_EQ(contentOf("runs"), "");
}

TEST_F(ReportRequest, SendsNoBodyForHead) {
  for (const Route& route : cRoutes) {
    const Received answer = report(route.path, "HEAD");
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.body, "");
    EXPECT_EQ(answer.headers.at("Content-Length"), "2");
    EXPECT_EQ(answer.headers.count("Link"), 1U);
  }
}

TEST_F(ReportRequest, TellsTheVersion) {
  toolDoes("note " + path("runs"));
  const Received answer = report("/api/about");
  EXPECT_EQ(answer.status, 200);
  EXPECT_EQ(answer.body, R"({"version":")" GC_VERSION R"("})");
  EXPECT_EQ(answer.headers.at("Link"), "</schemas/about.schema.json>; rel=\"describedby\"");
  EXPECT_EQ(report("/api/about/").status, 404);
  EXPECT_EQ(contentOf("runs"), "");
}

TEST_F(ReportRequest, TakesNoQueryAndNoBody) {
  input.variables["QUERY_STRING"] = "a=b";
  EXPECT_EQ(report("/api/config").status, 400);
  input.variables["QUERY_STRING"] = "";
  input.variables["CONTENT_LENGTH"] = "1";
  EXPECT_EQ(report("/api/config").status, 400);
  input.variables["CONTENT_LENGTH"] = "0";
  EXPECT_EQ(report("/api/config").status, 200);
  EXPECT_EQ(input.octetsRead, 0U);
}

TEST_F(ReportRequest, NamesTheSettingThatIsMissing) {
  for (const char* variable : {"GC_WEB_TOOL", "GC_WEB_ADDRESS", "GC_WEB_STATE", "GC_WEB_DATA"}) {
    const std::string value = input.variables[variable];
    input.variables.erase(variable);
    const Received answer = report("/api/config");
    EXPECT_EQ(answer.status, 500);
    EXPECT_NE(answer.detail().find(variable), std::string::npos) << answer.body;
    input.variables[variable] = value;
  }
}

TEST_F(ReportRequest, NeedsNoSettingOfCommands) {
  input.variables.erase("GC_WEB_LOG");
  input.variables.erase("GC_WEB_SCHEMAS");
  EXPECT_EQ(report("/api/status").status, 200);
}

TEST_F(ReportRequest, IsNotHeldUpByAToolThatHangs) {
  const std::string open = fifo("open");
  limits.report = std::chrono::milliseconds(30);
  toolDoes("out {}\nclose\nawait " + open);
  EXPECT_EQ(report("/api/config").status, 504);
}

}  // namespace

}  // namespace gateway
