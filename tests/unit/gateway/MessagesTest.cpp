// The messages that people read when something is refused, word for word.
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>

#include "Bench.h"
#include "FileLock.h"

namespace gateway {

namespace {

class Told : public Bench {
 protected:
  Told() {
    toolDoes(std::string("out ") + cAccepted);
    setCommand("POST", "/alarm-reset", "{}");
  }
};

TEST_F(Told, IsWhatIsWrongWithARequest) {
  const struct {
    const char* variable;
    const char* value;
    int status;
    const char* detail;
  } cRows[] = {
      {"QUERY_STRING", "x", 400, "A command takes no query."},
      {"GC_WEB_PLAIN_HTTP_COMMANDS", "", 403,
       "Commands over plain HTTP are refused, because others on the network could read and replay "
       "them. Open this page over https:// (set up in tls.conf) or on the controller itself."},
      {"REMOTE_USER", "", 403, "Commands are off until a password is set (gc-web-password)."},
      {"HTTP_X_GC_REQUEST", "", 403, "A command needs the header X-GC-Request: 1."},
      {"HTTP_ORIGIN", "http://evil.example", 403, "The Origin of a command must be this server."},
      {"HTTP_SEC_FETCH_SITE", "cross-site", 403,
       "The Sec-Fetch-Site of a command must be same-origin."},
      {"CONTENT_TYPE", "text/plain", 415,
       "A command needs the Content-Type application/json, in UTF-8."},
      {"CONTENT_LENGTH", "", 411, "A command needs a Content-Length."},
      {"CONTENT_LENGTH", "65537", 413, "The body is longer than 65536 octets."},
      {"CONTENT_LENGTH", "3", 400, "The body is shorter than its Content-Length."},
      {"PATH_INFO", "/nothing", 404, "There is no such command."},
      {"REQUEST_METHOD", "GET", 405, "This path accepts only POST."},
      {"GC_WEB_TOOL", "", 500, "GC_WEB_TOOL is not set."},
      {"GC_WEB_STATE", "/nothing", 500,
       "The folder GC_WEB_STATE is not writable; nothing was done. Check that it exists, belongs "
       "to the web server, and is not full."},
      {"GC_WEB_DATA", "/nothing", 500,
       "The folder GC_WEB_DATA is not writable; nothing was done. Check that it exists, belongs to "
       "the web server, and that the disk is not full."},
      {"GC_WEB_LOG", "/nothing/log", 500,
       "The command log (GC_WEB_LOG) is not writable; nothing was done. Check that its folder "
       "exists, belongs to the web server, and that the disk is not full."},
  };
  for (const auto& row : cRows) {
    const auto good = input.variables;
    input.variables[row.variable] = row.value;
    const Received answer = replyToCommand();
    EXPECT_EQ(answer.status, row.status);
    EXPECT_EQ(answer.detail(), row.detail);
    input.variables = good;
  }
}

TEST_F(Told, IsThatALockCannotBeMade) {
  const struct {
    const char* lock;
    const char* body;
  } cRows[] = {{"command.lock", R"({"when": "now"})"},
               {"abort-after-run.lock", R"({"when": "after-run"})"}};
  for (const auto& row : cRows) {
    ASSERT_EQ(::mkdir(path(row.lock).c_str(), 0700), 0);
    const Received answer = command("POST", "/abort", row.body);
    EXPECT_EQ(answer.status, 500);
    EXPECT_EQ(answer.detail(),
              "The folder GC_WEB_STATE is not writable; nothing was done. Check that it exists, "
              "belongs to the web server, and is not full.");
  }
}

TEST_F(Told, IsWhatIsWrongWithABody) {
  const struct {
    const char* method;
    const char* path;
    const char* body;
    int status;
    const char* detail;
  } cRows[] = {
      {"POST", "/run", "{", 400, "The body is not a single JSON document in UTF-8."},
      {"POST", "/run", "{}", 422, "The document does not match its schema: required type."},
      {"POST", "/run", R"({"type": "single"})", 422, "/stream is missing."},
      {"POST", "/run", R"({"type": "automation", "stream": 1})", 422,
       "The document has more members than this command takes."},
      {"POST", "/seen", R"({"id": "0123456789abcdef", "id": "0123456789abcdef"})", 422,
       "The document has more members than this command takes."},
      {"POST", "/seen", R"({"id": "0123456789abcdef"})", 404,
       "There is no such interrupted command."},
  };
  for (const auto& row : cRows) {
    const Received answer = command(row.method, row.path, row.body);
    EXPECT_EQ(answer.status, row.status);
    EXPECT_EQ(answer.detail(), row.detail);
  }
  const std::string deep = std::string(101, '[') + std::string(101, ']');
  EXPECT_EQ(command("PUT", "/calibration", deep).detail(),
            "The document is nested more than 100 levels deep.");
  input.variables["GC_WEB_SCHEMAS"] = path("");
  EXPECT_EQ(command("PUT", "/calibration", R"({"total": 0})").detail(),
            "GC_WEB_SCHEMAS has no schema calibration-file.");
  EXPECT_EQ(command("PUT", "/sequence", R"({"total": 0})").detail(),
            "GC_WEB_SCHEMAS has no schema sequence-file.");
  write("command-nothing.schema.json", "[]");
  EXPECT_EQ(command("POST", "/alarm-reset", "{}").detail(),
            "GC_WEB_SCHEMAS has no schema command-nothing.");
}

TEST_F(Told, IsWhatIsInTheWay) {
  limits.otherCommand = std::chrono::milliseconds(1);
  limits.abort = std::chrono::milliseconds(1);
  limits.otherStatus = std::chrono::milliseconds(1);
  const FileLock commands(path("command.lock"));
  const FileLock aborts(path("abort-now.lock"));
  const FileLock status(path("status.answer"));
  ASSERT_TRUE(commands.tryLock() && aborts.tryLock() && status.tryLock());
  EXPECT_EQ(replyToCommand().detail(),
            "Another command is still in progress, so this one was not started. Try again when it "
            "has finished.");
  EXPECT_EQ(command("POST", "/abort", R"({"when": "now"})").detail(),
            "Another abort is still in progress, so this one was not started. Try again.");
  EXPECT_EQ(ask("/api/status").detail(), "Another request for the status has not finished yet.");
}

TEST_F(Told, IsWhenTheMachineIsTooSlow) {
  limits.begin = std::chrono::milliseconds(-1);
  EXPECT_EQ(replyToCommand().detail(),
            "The machine was too slow to start the command in time; nothing was done. Try again.");
}

TEST_F(Told, IsWhatIsWrongWithAReport) {
  EXPECT_EQ(ask("/api/nothing").detail(), "There is no such report.");
  EXPECT_EQ(ask("/api/status", "POST").detail(), "This path accepts only GET, HEAD.");
  EXPECT_EQ(ask("/api/backups/sequence/1").detail(), "There is no such backup.");
  FakeInput before = input;
  input.variables["QUERY_STRING"] = "x";
  EXPECT_EQ(ask("/api/status").detail(), "A report takes no query or body.");
  input = before;
  input.variables["GC_WEB_STATE"] = "/nothing";
  EXPECT_EQ(ask("/api/status").detail(), "The folder GC_WEB_STATE is not writable.");
}

TEST_F(Told, IsThatAFileCannotBeKept) {
  rlimit before = {};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  const rlimit small = {30000, before.rlim_max};
  const auto action = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  const Received answer =
      command("PUT", "/calibration", R"({"total": 0)" + std::string(40000, ' ') + '}');
  ::setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, action);
  EXPECT_EQ(answer.status, 500);
  EXPECT_EQ(answer.detail(), "The file could not be stored; nothing was done.");
  EXPECT_EQ(contentOf("log"), "");
}

TEST_F(Told, IsWhyATableWasNotSent) {
  toolDoes(std::string("out ") + cAccepted, R"({"ErrorCode": 5, "Msg": "No"})");
  const Received unread = command("PUT", "/calibration", R"({"total": 0})");
  EXPECT_EQ(unread.status, 502);
  EXPECT_EQ(unread.detail(),
            "The current table could not be read, so the new one was not sent: the instrument "
            "still has the current one. Try again.");
  toolDoes(std::string("out ") + cAccepted);
  input.variables["GC_WEB_DATA"] = "/nothing";
  const Received unkept = command("PUT", "/calibration", R"({"total": 0})");
  EXPECT_EQ(unkept.status, 500);
  EXPECT_EQ(unkept.detail(),
            "The current table could not be backed up in GC_WEB_DATA, so the new one was not sent: "
            "the instrument still has the current one. Is the disk full?");
}

}  // namespace

}  // namespace gateway
