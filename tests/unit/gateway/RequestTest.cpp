// The headers that a command needs, and the answers if they are missing or wrong.
#include "Bench.h"

namespace gateway {

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
    {"QUERY_STRING", "0", 400},
    {"GC_WEB_PLAIN_HTTP_COMMANDS", "", 403},
    {"GC_WEB_PLAIN_HTTP_COMMANDS", "yes", 403},
    {"GC_WEB_PLAIN_HTTP_COMMANDS", "Allowed", 403},
    {"REMOTE_USER", "", 403},
    {"REMOTE_USER", "0", 200},
    {"HTTP_X_GC_REQUEST", "", 403},
    {"HTTP_X_GC_REQUEST", "0", 403},
    {"HTTP_X_GC_REQUEST", "11", 403},
    {"HTTP_X_GC_REQUEST", " 1", 403},
    {"HTTP_X_GC_REQUEST", "1 ", 403},
    {"HTTP_X_GC_REQUEST", "1, 1", 403},
    {"HTTP_X_GC_REQUEST", "true", 403},
    {"HTTP_SEC_FETCH_SITE", "same-origin", 200},
    {"HTTP_SEC_FETCH_SITE", "same-origin2", 403},
    {"HTTP_SEC_FETCH_SITE", "same-origin, cross-site", 403},
    {"HTTP_SEC_FETCH_SITE", "same-site", 403},
    {"HTTP_SEC_FETCH_SITE", "cross-site", 403},
    {"HTTP_SEC_FETCH_SITE", "none", 403},
    {"HTTP_ORIGIN", "http://gc.example", 200},
    {"HTTP_ORIGIN", "HTTP://GC.example", 200},
    {"HTTP_ORIGIN", "https://gc.example", 403},
    {"HTTP_ORIGIN", "http://gc.example:8080", 403},
    {"HTTP_ORIGIN", "http://gc.example.org", 403},
    {"HTTP_ORIGIN", "http://not-gc.example", 403},
    {"HTTP_ORIGIN", "http://gc.example/", 403},
    {"HTTP_ORIGIN", "http://gc.example http://evil.example", 403},
    {"HTTP_ORIGIN", "gc.example", 403},
    {"HTTP_ORIGIN", "ftp://gc.example", 403},
    {"HTTP_ORIGIN", "http://", 403},
    {"HTTP_ORIGIN", "null", 403},
    {"CONTENT_TYPE", "", 415},
    {"CONTENT_TYPE", "text/plain", 415},
    {"CONTENT_TYPE", "text/plain; charset=utf-8", 415},
    {"CONTENT_TYPE", "text/plain; application/json", 415},
    {"CONTENT_TYPE", "text/plain; charset=utf-8; application/json", 415},
    {"CONTENT_TYPE", "multipart/form-data; charset=utf-8", 415},
    {"CONTENT_TYPE", "application/x-www-form-urlencoded; charset=utf-8", 415},
    {"CONTENT_TYPE", "charset=utf-8", 415},
    {"CONTENT_TYPE", ";", 415},
    {"CONTENT_TYPE", "; charset=utf-8", 415},
    {"CONTENT_TYPE", "json", 415},
    {"CONTENT_TYPE", "application/json, text/plain", 415},
    {"CONTENT_TYPE", "application/json text/plain", 415},
    {"CONTENT_TYPE", "application/problem+json", 415},
    {"CONTENT_TYPE", "application/jsonx", 415},
    {"CONTENT_TYPE", "application/x-www-form-urlencoded", 415},
    {"CONTENT_TYPE", "Application/JSON", 200},
    {"CONTENT_TYPE", "application/json ; charset=UTF-8", 200},
    {"CONTENT_TYPE", "application/json;Charset=\"utf-8\"", 200},
    {"CONTENT_TYPE", "application/json; version=1", 200},
    {"CONTENT_TYPE", "application/json;", 200},
    {"CONTENT_TYPE", " \tapplication/json\t ", 200},
    {"CONTENT_TYPE", "application/json; charset=utf-8;", 200},
    {"CONTENT_TYPE", "application/json;\tcharset = utf-8 ; version=1", 200},
    {"CONTENT_TYPE", "application/json; charsets=latin1", 200},
    {"CONTENT_TYPE", "application/json; charset=utf-8; charset=latin1", 415},
    {"CONTENT_TYPE", "application/json; charset=utf-80", 415},
    {"CONTENT_TYPE", "application/json; charset=\"utf-8", 415},
    {"CONTENT_TYPE", "application/json; charset=", 415},
    {"CONTENT_TYPE", "application/json; charset=latin1", 415},
    {"CONTENT_TYPE", "application/json; version=1; charset=utf-16", 415},
    {"CONTENT_TYPE", "application/json; charset", 415},
    {"CONTENT_LENGTH", "", 411},
    {"CONTENT_LENGTH", "-1", 411},
    {"CONTENT_LENGTH", "2x", 411},
    {"CONTENT_LENGTH", " 2", 411},
    {"CONTENT_LENGTH", "2 ", 411},
    {"CONTENT_LENGTH", "+2", 411},
    {"CONTENT_LENGTH", "0x2", 411},
    {"CONTENT_LENGTH", "2,2", 411},
    {"CONTENT_LENGTH", "65537", 413},
    {"CONTENT_LENGTH", "4294967298", 413},
    {"CONTENT_LENGTH", "18446744073709551618", 413},
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

TEST_F(CommandHeaders, MustHaveComeWhereNobodyElseReads) {
  const struct {
    const char* https;
    const char* address;
    int status;
  } cWays[] = {
      {"on", "192.0.2.7", 200},
      {"ON", "192.0.2.7", 200},
      {"on", "", 200},
      {"", "192.0.2.7", 403},
      {"off", "192.0.2.7", 403},
      {"1", "192.0.2.7", 403},
      {"", "127.0.0.1", 200},
      {"", "127.255.255.254", 200},
      {"", "126.255.255.255", 403},
      {"", "128.0.0.1", 403},
      {"", "::1", 200},
      {"", "0:0:0:0:0:0:0:1", 200},
      {"", "::ffff:127.0.0.1", 200},
      {"", "::ffff:192.0.2.127", 403},
      {"", "::127.0.0.1", 403},
      {"", "::", 403},
      {"", "::2", 403},
      {"", "2001:db8::1", 403},
      {"", "7f00::1", 403},
      {"", "", 403},
      {"", "127", 403},
      {"", "127.0.0.1.example", 403},
      {"", "localhost", 403},
  };
  input.variables.erase("GC_WEB_PLAIN_HTTP_COMMANDS");
  for (const auto& row : cWays) {
    input.variables["HTTPS"] = row.https;
    input.variables["REMOTE_ADDR"] = row.address;
    input.octetsRead = 0;
    const Received answer = replyToCommand();
    EXPECT_EQ(answer.status, row.status) << row.https << ' ' << row.address;
    EXPECT_EQ(input.octetsRead, row.status == 200 ? 2U : 0U) << row.https << ' ' << row.address;
  }
}

TEST_F(CommandHeaders, ThatAProxyPassesOnAreNotOfThisMachine) {
  input.variables.erase("GC_WEB_PLAIN_HTTP_COMMANDS");
  input.variables["REMOTE_ADDR"] = "127.0.0.1";
  for (const char* mark :
       {"HTTP_FORWARDED", "HTTP_X_FORWARDED_FOR", "HTTP_X_REAL_IP", "HTTP_VIA"}) {
    for (const char* value : {"192.0.2.7", "127.0.0.1"}) {
      input.variables["HTTPS"] = "";
      input.variables[mark] = value;
      EXPECT_EQ(replyToCommand().status, 403) << mark;
      input.variables["HTTPS"] = "on";
      EXPECT_EQ(replyToCommand().status, 200) << mark;
      input.variables.erase(mark);
    }
  }
  input.variables["HTTPS"] = "";
  // Not even the scheme that the header names: the web server reports the scheme of proxies that it
  // trusts.
  input.variables["HTTP_X_FORWARDED_PROTO"] = "https";
  input.variables["HTTP_X_FORWARDED_FOR"] = "192.0.2.7";
  EXPECT_EQ(replyToCommand().status, 403);
}

TEST_F(CommandHeaders, AreRefusedOverHttpWithAReasonAndAWayOut) {
  input.variables.erase("GC_WEB_PLAIN_HTTP_COMMANDS");
  // Before anyone is asked for a password.
  input.variables.erase("REMOTE_USER");
  EXPECT_EQ(
      replyToCommand().detail(),
      "Commands over plain HTTP are refused, because others on the network could read and replay "
      "them. Open this page over https:// (set up in tls.conf) or on the controller itself.");
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
      {"on", "gc.example:80", "https://gc.example", 403},
      {"on", "gc.example:443", "http://gc.example", 403},
      {"", "GC.example", "http://gc.example", 200},
      {"", "80", "http://80", 200},
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
  // Adds one more fault each time; the answer names the latest.
  const struct {
    const char* variable;
    const char* value;
    int status;
    const char* words;
  } cFaults[] = {
      {"CONTENT_LENGTH", "65537", 413, "longer than 65536"},
      {"CONTENT_TYPE", "text/plain", 415, "Content-Type"},
      {"HTTP_SEC_FETCH_SITE", "none", 403, "Sec-Fetch-Site"},
      {"HTTP_ORIGIN", "null", 403, "Origin"},
      {"HTTP_X_GC_REQUEST", "", 403, "X-GC-Request"},
      {"REMOTE_USER", "", 403, "password"},
      {"GC_WEB_PLAIN_HTTP_COMMANDS", "", 403, "plain HTTP"},
      {"QUERY_STRING", "x", 400, "query"},
      {"GC_WEB_LOG", "", 500, "GC_WEB_LOG"},
      {"REQUEST_METHOD", "GET", 405, "POST"},
      {"PATH_INFO", "/", 404, "no such command"},
  };
  for (const auto& row : cFaults) {
    input.variables[row.variable] = row.value;
    const Received answer = replyToCommand();
    EXPECT_EQ(answer.status, row.status) << row.variable;
    EXPECT_NE(answer.detail().find(row.words), std::string::npos) << answer.detail();
  }
  EXPECT_EQ(input.octetsRead, 0U);
}

}  // namespace

}  // namespace gateway
