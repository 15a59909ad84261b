// Commands: paths, methods, bodies, and the arguments that the tool gets.
#include "Bench.h"
#include "FileLock.h"

namespace gateway {

namespace {

class CommandRequest : public Bench {};

struct Good {
  const char* method;
  const char* path;
  const char* body;
  std::vector<std::string> arguments;
};

const Good cGood[] = {
    {"POST", "/run", R"({"type": "single", "stream": 2})", {"-R", "single", "-v", "2"}},
    {"POST", "/run", R"({"stream": 0, "type": "single"})", {"-R", "single", "-v", "0"}},
    {"POST", "/run", R"({"type": "calibration", "stream": 46})", {"-R", "calib", "-v", "46"}},
    {"POST", "/run", R"({"type": "automation"})", {"-R", "auto"}},
    {"POST", "/abort", R"({"when": "now"})", {"-A", "now"}},
    {"POST", "/abort", R"({"when": "after-run"})", {"-A", "auto"}},
    {"PUT", "/stream", R"({"stream": 2})", {"-V", "2"}},
    {"PUT", "/stream", R"({"stream": 46})", {"-V", "46"}},
    {"PUT", "/stream", R"({"stream": 0})", {"-V", "0"}},
    {"PUT", "/solution", R"({"solution": 0})", {"-M", "0"}},
    {"PUT", "/solution", " {\"solution\" : 10}\n", {"-M", "10"}},
    {"POST", "/alarm-reset", "{}", {"-P"}},
    {"PUT", "/sequence", R"({"Table_repeat": 1, "total": 0})", {"-Q", "/proc/self/fd/3"}},
    {"PUT", "/calibration", R"({"total": 0})", {"-C", "/proc/self/fd/3"}},
};

TEST_F(CommandRequest, StartsTheToolWithItsArguments) {
  toolDoes("describe 0");
  for (const Good& row : cGood) {
    const Received answer = command(row.method, row.path, row.body);
    ASSERT_EQ(answer.status, 200) << row.path << row.body << answer.body;
    EXPECT_EQ(answer.headers.at("Link"), "</schemas/result.schema.json>; rel=\"describedby\"");
    const rapidjson::Document document = answer.document();
    std::vector<std::string> arguments;
    for (const auto& argument : document["arguments"].GetArray()) {
      arguments.emplace_back(argument.GetString());
    }
    EXPECT_EQ(arguments, row.arguments);
  }
}

TEST_F(CommandRequest, SaysNothingOfASwitchedStream) {
  toolDoes("err writeParam. return 0.");
  const Received answer = command("PUT", "/stream", R"({"stream": 2})");
  EXPECT_EQ(answer.status, 204);
  EXPECT_EQ(answer.body, "");
}

TEST_F(CommandRequest, LogsInWhoeverMayCommandAndDoesNothing) {
  toolDoes("note " + path("runs"));
  const FileLock other(path("command.lock"));
  ASSERT_TRUE(other.tryLock());
  const Received answer = command("POST", "/login", "{}");
  EXPECT_EQ(answer.status, 204);
  EXPECT_EQ(answer.body, "");
  EXPECT_EQ(command("POST", "/login", R"({"a": 1})").status, 422);
  EXPECT_EQ(command("PUT", "/login", "{}").headers.at("Allow"), "POST");
  input.variables.erase("REMOTE_USER");
  EXPECT_EQ(command("POST", "/login", "{}").status, 403);
  EXPECT_EQ(contentOf("runs"), "");
  EXPECT_EQ(contentOf("log"), "");
}

TEST_F(CommandRequest, LogsOutWithARefusalThatAsksForNothing) {
  toolDoes("note " + path("runs"));
  const Received answer = command("POST", "/logout", "{}");
  EXPECT_EQ(answer.status, 401);
  EXPECT_EQ(answer.reason, "Unauthorized");
  EXPECT_EQ(answer.detail(), "You are signed out.");
  EXPECT_EQ(answer.headers.count("WWW-Authenticate"), 0U);
  EXPECT_EQ(command("POST", "/logout", R"({"a": 1})").status, 422);
  EXPECT_EQ(command("PUT", "/logout", "{}").headers.at("Allow"), "POST");
  EXPECT_EQ(contentOf("runs"), "");
  EXPECT_EQ(contentOf("log"), "");
}

TEST_F(CommandRequest, TellsWhoHasGivenIt) {
  toolDoes(std::string("out ") + cAccepted);
  EXPECT_EQ(command("POST", "/alarm-reset", "{}").headers.at("X-GC-User"), "anna");
  EXPECT_EQ(command("POST", "/login", "{}").headers.at("X-GC-User"), "anna");
  EXPECT_EQ(command("POST", "/logout", "{}").headers.at("X-GC-User"), "anna");
  EXPECT_EQ(command("POST", "/run", "{}").headers.at("X-GC-User"), "anna");
  input.variables["REMOTE_USER"] = "an na\r\nSet-Cookie: a";
  EXPECT_EQ(command("POST", "/login", "{}").headers.at("X-GC-User"),
            "an%20na%0D%0ASet-Cookie%3A%20a");
  input.variables.erase("REMOTE_USER");
  EXPECT_EQ(command("POST", "/login", "{}").headers.count("X-GC-User"), 0U);
  EXPECT_EQ(report("/api/status").headers.count("X-GC-User"), 0U);
}

TEST_F(CommandRequest, HasOneMethodForEachPath) {
  toolDoes("note " + path("runs"));
  for (const Good& row : cGood) {
    for (const char* method : {"GET", "HEAD", "PUT", "POST", "DELETE", "OPTIONS", "post", ""}) {
      if (std::string(method) != row.method) {
        const Received answer = command(method, row.path, row.body);
        EXPECT_EQ(answer.status, 405) << method << row.path;
        EXPECT_EQ(answer.headers.at("Allow"), row.method);
      }
    }
  }
  for (const char* other : {"", "/", "/runs", "/run/", "/status", "/Run"}) {
    EXPECT_EQ(command("POST", other, "{}").status, 404) << other;
  }
  EXPECT_EQ(contentOf("runs"), "");
}

TEST_F(CommandRequest, NamesTheSettingThatIsMissing) {
  for (const char* variable : {"GC_WEB_TOOL", "GC_WEB_ADDRESS", "GC_WEB_STATE", "GC_WEB_DATA",
                               "GC_WEB_LOG", "GC_WEB_SCHEMAS"}) {
    const std::string value = input.variables[variable];
    input.variables[variable] = "";
    const Received answer = command("POST", "/alarm-reset", "{}");
    EXPECT_EQ(answer.status, 500);
    EXPECT_NE(answer.detail().find(variable), std::string::npos) << answer.body;
    input.variables[variable] = value;
  }
}

struct Bad {
  const char* path;
  const char* body;
  int status;
  const char* place;  ///< how the detail begins
};

constexpr Bad cBad[] = {
    {"/run", "", 400, "The body"},
    {"/run", "{", 400, "The body"},
    {"/run", "{\"type\": \"automation\"} x", 400, "The body"},
    {"/run", "{\"type\": \"\xFF\"}", 400, "The body"},
    {"/run", "\xEF\xBB\xBF{\"type\": \"automation\"}", 400, "The body"},
    {"/run", "{type: \"automation\"}", 400, "The body"},
    {"/run", "[]", 422, "The document does not match its schema: type"},
    {"/run", "5", 422, "The document does not match its schema: type"},
    {"/run", "{}", 422, "The document does not match its schema: required type"},
    {"/run", R"({"type": "auto"})", 422, "/type does not match its schema: enum"},
    {"/run", R"({"type": "single\u0000", "stream": 1})", 422,
     "/type does not match its schema: enum"},
    {"/run", R"({"type": 1})", 422, "/type does not match its schema: type"},
    {"/run", R"({"type": "single"})", 422, "/stream is missing"},
    {"/run", R"({"type": "calibration"})", 422, "/stream is missing"},
    {"/run", R"({"type": "automation", "stream": 1})", 422, "The document has more members"},
    {"/run", R"({"type": "single", "stream": 1, "stream": 2})", 422, "The document has more"},
    {"/run", R"({"type": "single", "type": "calibration", "stream": 2})", 422, "The document has"},
    {"/run", R"({"type": "single", "stream": 1, "x": 2})", 422,
     "/x does not match its schema: addi"},
    {"/run", R"({"type": "single", "stream": -1})", 422,
     "/stream does not match its schema: minimum"},
    {"/run", R"({"type": "single", "stream": 47})", 422,
     "/stream does not match its schema: maximum"},
    {"/run", R"({"type": "single", "stream": 1.5})", 422,
     "/stream does not match its schema: type"},
    {"/run", R"({"type": "single", "stream": 1.0})", 422,
     "/stream does not match its schema: type"},
    {"/run", R"({"type": "single", "stream": "1"})", 422,
     "/stream does not match its schema: type"},
    {"/run", R"({"type": "single", "stream": 1e300})", 422,
     "/stream does not match its schema: type"},
    {"/run", R"({"type": "single", "stream": 4294967297})", 422,
     "/stream does not match its schema: m"},
    {"/run", R"({"type": "single", "stream": 18446744073709551615})", 422,
     "/stream does not match its schema: maximum"},
    {"/abort", "{}", 422, "The document does not match its schema: required when"},
    {"/abort", R"({"when": "auto"})", 422, "/when does not match its schema: enum"},
    {"/abort", R"({"when": "now", "x": 1})", 422,
     "/x does not match its schema: additionalProperties"},
    {"/alarm-reset", R"({"x": 1})", 422, "/x does not match its schema: additionalProperties"},
    {"/alarm-reset", "null", 422, "The document does not match its schema: type"},
};

TEST_F(CommandRequest, RefusesABodyOfAnotherShape) {
  toolDoes("note " + path("runs"));
  for (const Bad& row : cBad) {
    const Received answer = command("POST", row.path, row.body);
    EXPECT_EQ(answer.status, row.status) << row.body;
    EXPECT_EQ(answer.detail().rfind(row.place, 0), 0U) << row.body << answer.body;
  }
  for (const char* path : {"/stream", "/solution"}) {
    for (const char* body : {"[]", "5", "null"}) {
      EXPECT_EQ(command("PUT", path, body).detail(),
                "The document does not match its schema: type.");
    }
  }
  EXPECT_EQ(command("POST", "/seen", "[]").detail(),
            "The document does not match its schema: type.");
  EXPECT_EQ(command("POST", "/seen", "{}").detail(),
            "The document does not match its schema: required id.");
  for (const char* body : {R"({"stream": 47})", R"({"stream": -1})", R"({"solution": 1})", "{}",
                           R"({"stream": 1, "stream": 2})", R"({"stream": true})"}) {
    EXPECT_EQ(command("PUT", "/stream", body).status, 422) << body;
  }
  for (const char* body :
       {R"({"solution": 11})", R"({"solution": -1})", R"({"stream": 1})", "{}"}) {
    EXPECT_EQ(command("PUT", "/solution", body).status, 422) << body;
  }
  EXPECT_EQ(contentOf("runs"), "");
  EXPECT_EQ(contentOf("log"), "");
}

TEST_F(CommandRequest, AZeroOctetIsNoJson) {
  toolDoes("note " + path("runs"));
  setCommand("POST", "/alarm-reset", std::string("{}\0", 3));
  EXPECT_EQ(replyToCommand().status, 400);
  EXPECT_EQ(contentOf("runs"), "");
}

std::string nested(std::size_t aLevels) {
  const std::string value = std::string(aLevels, '[') + std::string(aLevels, ']');
  return R"({"total": 0, "x": )" + value + "}";
}

TEST_F(CommandRequest, MayBeNestedAHundredLevelsDeep) {
  toolDoes(std::string("out ") + cAccepted);
  EXPECT_EQ(command("PUT", "/calibration", nested(99)).status, 200);
  EXPECT_EQ(command("PUT", "/calibration", nested(100)).status, 422);
  EXPECT_EQ(command("PUT", "/calibration", nested(32000)).status, 422);
  EXPECT_EQ(command("PUT", "/calibration", std::string(65536, '[')).status, 400);
  std::string wide = R"({"total": 0, "x": [[])";
  for (int i = 0; i < 1000; ++i) {
    wide += ", [{}]";
  }
  EXPECT_EQ(command("PUT", "/calibration", wide + "]}").status, 200);
}

}  // namespace

}  // namespace gateway
