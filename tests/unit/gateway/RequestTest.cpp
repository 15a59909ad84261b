// What the headers of a command must be, and what is answered when they are not.
#include "Bench.h"

namespace {

class CommandHeaders : public Bench {
 protected:
  CommandHeaders() {
    toolDoes("note " + path("runs") + "\nout " + cAccepted);
    setCommand("POST", "/alarm-reset", "{}");
  }
};

struct Case {
  const char* variable;
  const char* value;
  int status;
};

constexpr Case cCases[] = {
    {"QUERY_STRING", "-s+192.0.2.1", 400},
    {"REMOTE_USER", "", 403},
    {"REMOTE_USER", "0", 200},
    {"HTTP_X_GC_REQUEST", "", 403},
    {"HTTP_X_GC_REQUEST", "0", 403},
    {"HTTP_X_GC_REQUEST", "11", 403},
    {"HTTP_SEC_FETCH_SITE", "same-origin", 200},
    {"HTTP_SEC_FETCH_SITE", "same-site", 403},
    {"HTTP_SEC_FETCH_SITE", "cross-site", 403},
    {"HTTP_SEC_FETCH_SITE", "none", 403},
    {"HTTP_ORIGIN", "http://gc.example", 200},
    {"HTTP_ORIGIN", "HTTP://GC.example", 200},
    {"HTTP_ORIGIN", "https://gc.example", 403},
    {"HTTP_ORIGIN", "http://gc.example:8080", 403},
    {"HTTP_ORIGIN", "http://gc.example.org", 403},
    {"HTTP_ORIGIN", "http://", 403},
    {"HTTP_ORIGIN", "null", 403},
    {"CONTENT_TYPE", "", 415},
    {"CONTENT_TYPE", "text/plain", 415},
    {"CONTENT_TYPE", "application/jsonx", 415},
    {"CONTENT_TYPE", "application/x-www-form-urlencoded", 415},
    {"CONTENT_TYPE", "Application/JSON", 200},
    {"CONTENT_TYPE", "application/json ; charset=UTF-8", 200},
    {"CONTENT_TYPE", "application/json;Charset=\"utf-8\"", 200},
    {"CONTENT_TYPE", "application/json; version=1", 200},
    {"CONTENT_TYPE", "application/json;", 200},
    {"CONTENT_TYPE", "application/json; charset=latin1", 415},
    {"CONTENT_TYPE", "application/json; version=1; charset=utf-16", 415},
    {"CONTENT_TYPE", "application/json; charset", 415},
    {"CONTENT_LENGTH", "", 411},
    {"CONTENT_LENGTH", "-1", 411},
    {"CONTENT_LENGTH", "2x", 411},
    {"CONTENT_LENGTH", " 2", 411},
    {"CONTENT_LENGTH", "65537", 413},
    {"CONTENT_LENGTH", "4294967298", 413},
    {"CONTENT_LENGTH", "99999999999999999999999999", 413},
    {"CONTENT_LENGTH", "3", 400},
    {"CONTENT_LENGTH", "65536", 400},
    {"CONTENT_LENGTH", "1", 400},
    {"CONTENT_LENGTH", "0", 400},
    {"CONTENT_LENGTH", "0002", 200},
};

TEST_F(CommandHeaders, DecideBeforeTheToolIsStarted) {
  std::size_t runs = 0;
  for (const Case& row : cCases) {
    const auto good = input.variables;
    input.variables[row.variable] = row.value;
    input.octetsRead = 0;
    const Received answer = replyToCommand();
    EXPECT_EQ(answer.status, row.status) << row.variable << ": " << row.value;
    if (row.status == 200) {
      ++runs;
    } else {
      EXPECT_NE(answer.detail(), "");
    }
    if (row.status > 400) {
      EXPECT_EQ(input.octetsRead, 0U) << row.variable << ": " << row.value;
    }
    input.variables = good;
  }
  EXPECT_EQ(contentOf("runs").size(), runs * std::string("run\n").size());
  EXPECT_EQ(logged("ended").size(), runs);
}

TEST_F(CommandHeaders, KnowTheOwnOriginWithAnyPort) {
  struct {
    const char* https;
    const char* host;
    const char* origin;
    int status;
  } const cOrigins[] = {
      {"", "gc.example:80", "http://gc.example", 200},
      {"", "gc.example:8080", "http://gc.example:8080", 200},
      {"", "gc.example:8080", "http://gc.example", 403},
      {"", "[::1]:8080", "http://[::1]:8080", 200},
      {"", "gc.example:443", "http://gc.example", 403},
      {"on", "gc.example", "https://gc.example", 200},
      {"on", "gc.example:443", "https://gc.example", 200},
      {"on", "gc.example:8443", "https://gc.example:8443", 200},
      {"on", "gc.example", "http://gc.example", 403},
      {"off", "gc.example", "https://gc.example", 403},
      {"", "", "http://", 403},
      {"", "", "http://gc.example", 403},
      {"", "x", "http://x", 200},
  };
  for (const auto& row : cOrigins) {
    input.variables["HTTPS"] = row.https;
    input.variables["HTTP_HOST"] = row.host;
    input.variables["HTTP_ORIGIN"] = row.origin;
    EXPECT_EQ(replyToCommand().status, row.status) << row.origin << " to " << row.host;
  }
}

TEST_F(CommandHeaders, AreLookedAtFromWhoToWhat) {
  // One more fault each time; the newest is told first.
  const struct {
    const char* variable;
    const char* value;
    int status;
  } cFaults[] = {
      {"CONTENT_LENGTH", "65537", 413}, {"CONTENT_TYPE", "text/plain", 415},
      {"HTTP_X_GC_REQUEST", "", 403},   {"GC_WEB_LOG", "", 500},
      {"REQUEST_METHOD", "GET", 405},   {"PATH_INFO", "/", 404},
  };
  for (const auto& row : cFaults) {
    input.variables[row.variable] = row.value;
    EXPECT_EQ(replyToCommand().status, row.status) << row.variable;
  }
}

}  // namespace
