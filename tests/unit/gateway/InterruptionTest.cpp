// Commands for which no process is left that could tell how they ended.
#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <iterator>

#include "BegunCommands.h"
#include "Bench.h"
#include "FileLock.h"

namespace gateway {

namespace {

class Interrupted : public Bench {
 protected:
  Interrupted() { setCommand("POST", "/run", R"({"type": "single", "stream": 2})"); }

  pid_t doElsewhere() {
    const pid_t process = ::fork();
    if (process == 0) {
      answerCommand(input, limits, [](const std::string&) {});
      ::_exit(0);
    }
    return process;
  }

  /// Kills the gateway of a command; its tool keeps running until something is written to `end`.
  void interrupt(Descriptor& end, const std::string& aFifo) {
    toolDoes("await " + aFifo);
    const pid_t gateway = doElsewhere();
    end = whenAwaited(aFifo);
    ::kill(gateway, SIGKILL);
    EXPECT_EQ(::waitpid(gateway, nullptr, 0), gateway);
  }

  /// Leaves a command behind that no process is running any more; returns its identifier.
  std::string leaveInterrupted() {
    Descriptor end;
    interrupt(end, fifo("interrupted"));
    letGoOn(end);
    EXPECT_GT(::waitpid(-1, nullptr, 0), 0);  // the tool, now a child of this process
    const auto begun = logged("begun");
    return begun.back()["id"].GetString();
  }

  Received commands() { return ask("/api/unfinished"); }
};

TEST_F(Interrupted, KeepsItsLockAsLongAsTheTool) {
  Descriptor end;
  interrupt(end, fifo("open"));
  const FileLock lock(path("command.lock"));
  EXPECT_FALSE(lock.tryLock());
  limits.otherCommand = std::chrono::milliseconds(10);
  EXPECT_EQ(replyToCommand().status, 409);
  letGoOn(end);
  EXPECT_GT(::waitpid(-1, nullptr, 0), 0);
  EXPECT_TRUE(lock.tryLock());
}

TEST_F(Interrupted, GoesOnAsLongAsTheTool) {
  Descriptor end;
  interrupt(end, fifo("open"));
  Received answer = commands();
  EXPECT_EQ(answer.status, 200);
  EXPECT_EQ(answer.headers.count("X-GC-Interrupted"), 0U);
  EXPECT_EQ(answer.headers["Link"], "</schemas/unfinished.schema.json>; rel=\"describedby\"");
  rapidjson::Document document = answer.document();
  ASSERT_EQ(document["going_on"].Size(), 1U);
  EXPECT_STREQ(document["going_on"][0]["user"].GetString(), "anna");
  EXPECT_TRUE(document["interrupted"].Empty());
  letGoOn(end);
  EXPECT_GT(::waitpid(-1, nullptr, 0), 0);
  answer = commands();
  EXPECT_EQ(answer.headers["X-GC-Interrupted"], "1");
  document = answer.document();
  EXPECT_TRUE(document["going_on"].Empty());
  ASSERT_EQ(document["interrupted"].Size(), 1U);
  EXPECT_TRUE(document["interrupted"][0] == logged("begun").at(0));
}

TEST_F(Interrupted, IsToldByEveryAnswer) {
  leaveInterrupted();
  toolDoes("out {}");
  for (const char* where : {"/api/status", "/api/status", "/api/config", "/api/backups/sequence"}) {
    EXPECT_EQ(ask(where).headers["X-GC-Interrupted"], "1") << where;
  }
  toolDoes(std::string("out ") + cAccepted);
  EXPECT_EQ(replyToCommand().headers["X-GC-Interrupted"], "1");
  EXPECT_EQ(command("POST", "/login", "{}").headers["X-GC-Interrupted"], "1");
  EXPECT_EQ(command("POST", "/run", "{}").headers["X-GC-Interrupted"], "1");
}

TEST_F(Interrupted, IsToldUntilSomebodyHasSeenIt) {
  const std::string id = leaveInterrupted();
  input.variables["REMOTE_USER"] = "berta";
  const Received answer = command("POST", "/seen", R"({"id": ")" + id + "\"}");
  EXPECT_EQ(answer.status, 204);
  EXPECT_EQ(answer.headers.count("X-GC-Interrupted"), 0U);
  EXPECT_TRUE(commands().document()["interrupted"].Empty());
  const auto seen = logged("seen");
  ASSERT_EQ(seen.size(), 1U);
  EXPECT_EQ(seen[0]["id"].GetString(), id);
  EXPECT_STREQ(seen[0]["user"].GetString(), "berta");
  EXPECT_STREQ(seen[0]["address"].GetString(), "192.0.2.7");
  EXPECT_FALSE(seen[0].HasMember("command"));
  EXPECT_EQ(command("POST", "/seen", R"({"id": ")" + id + "\"}").status, 404);
  EXPECT_EQ(logged("seen").size(), 1U);
}

TEST_F(Interrupted, IsSeenOnlyWhenTheLogTakesIt) {
  const std::string id = leaveInterrupted();
  const std::string log = input.variables["GC_WEB_LOG"];
  for (const std::string& bad : {std::string("/dev/full"), path("nothing/log")}) {
    input.variables["GC_WEB_LOG"] = bad;
    EXPECT_EQ(command("POST", "/seen", R"({"id": ")" + id + "\"}").status, 500);
    EXPECT_EQ(commands().headers["X-GC-Interrupted"], "1");
  }
}

TEST_F(Interrupted, IsNotSeenWhileItGoesOn) {
  Descriptor end;
  interrupt(end, fifo("open"));
  const std::string id = logged("begun").at(0)["id"].GetString();
  const Received answer = command("POST", "/seen", R"({"id": ")" + id + "\"}");
  EXPECT_EQ(answer.status, 409);
  EXPECT_EQ(answer.detail(), "The command is still in progress.");
  EXPECT_TRUE(logged("seen").empty());
  letGoOn(end);
}

TEST_F(Interrupted, IsSeenByItsIdentifierOnly) {
  for (const char* body : {"{}", R"({"id": "../../log0000000"})", R"({"id": "0123456789ABCDEF"})",
                           R"({"id": "0123456789abcde"})", R"({"id": "0123456789abcdef0"})",
                           R"({"id": 1})", R"({"id": "0123456789abcdef", "x": 1})",
                           R"({"id": "0123456789abcdef", "id": "0123456789abcdef"})"}) {
    EXPECT_EQ(command("POST", "/seen", body).status, 422) << body;
  }
  EXPECT_EQ(command("POST", "/seen", R"({"id": "0123456789abcdef"})").status, 404);
  EXPECT_EQ(command("PUT", "/seen", R"({"id": "0123456789abcdef"})").status, 405);
}

TEST_F(Interrupted, AreSeveralInTheirOrder) {
  for (const char* line : {"{\"time\":\"2\"}\n", "{\"time\":\"1\"}\n", "{\"time\":\"3\"}\n"}) {
    BegunCommand(path("data"), std::string("a") + line[9], line);
  }
  const auto interrupted = findUnfinished(path("data")).interrupted;
  EXPECT_EQ(interrupted, (std::vector<std::string>{"{\"time\":\"1\"}\n", "{\"time\":\"2\"}\n",
                                                   "{\"time\":\"3\"}\n"}));
}

TEST_F(Interrupted, AreToldInTheirOrderWhileTheyGoOn) {
  // Whatever order the folder has: the names are in another one than the times.
  const BegunCommand commands[] = {{path("data"), "b", "{\"time\":\"3\"}\n"},
                                   {path("data"), "d", "{\"time\":\"1\"}\n"},
                                   {path("data"), "a", "{\"time\":\"2\"}\n"},
                                   {path("data"), "c", "{\"time\":\"4\"}\n"}};
  const auto goingOn = findUnfinished(path("data")).goingOn;
  ASSERT_EQ(goingOn.size(), std::size(commands));
  EXPECT_TRUE(std::is_sorted(goingOn.begin(), goingOn.end()));
}

TEST_F(Interrupted, IsNoneThatNeverBegan) {
  ASSERT_EQ(::mkdir(path("data/begun").c_str(), 0700), 0);
  write("data/begun/0123456789abcdef", "");
  write("data/begun/0123456789abcde0", "{\"time\":\"2026");
  EXPECT_EQ(commands().headers.count("X-GC-Interrupted"), 0U);
}

TEST_F(Interrupted, LeavesNothingWhenItWasNot) {
  toolDoes("files " + path("data/begun") + ' ' + path("meanwhile") + "\nout " + cAccepted);
  ASSERT_EQ(replyToCommand().status, 200);
  EXPECT_EQ(linesOf("meanwhile"),
            std::vector<std::string>{logged("begun").at(0)["id"].GetString()});
  EXPECT_TRUE(filesIn("data/begun").empty());
}

TEST_F(Interrupted, IsForItsOwnerOnly) {
  const mode_t before = ::umask(0);
  const BegunCommand begun(path("data"), "a", "{}\n");
  ::umask(before);
  struct stat file = {};
  ASSERT_EQ(::fstat(begun.file(), &file), 0);
  EXPECT_EQ(file.st_mode & 0777U, 0600U);
  ASSERT_EQ(::stat(path("data/begun").c_str(), &file), 0);
  EXPECT_EQ(file.st_mode & 0777U, 0700U);
}

TEST_F(Interrupted, ThatCouldNotBeKeptIsNotBegun) {
  toolDoes("note " + path("runs"));
  input.variables["GC_WEB_DATA"] = path("nothing");
  const Received answer = replyToCommand();
  EXPECT_EQ(answer.status, 500);
  EXPECT_NE(answer.detail().find("GC_WEB_DATA"), std::string::npos);
  EXPECT_EQ(contentOf("runs"), "");
  EXPECT_EQ(contentOf("log"), "");
}

TEST_F(Interrupted, ThatCouldNotBeWrittenLeavesNothing) {
  rlimit before = {};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  const rlimit small = {10, before.rlim_max};
  const auto action = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  const BegunCommand begun(path("data"), "0123456789abcdef", std::string(20, 'x') + '\n');
  ::setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, action);
  EXPECT_FALSE(begun.isKept());
  EXPECT_EQ(::access(path("data/begun").c_str(), F_OK), 0);
  EXPECT_NE(::access(path("data/begun/0123456789abcdef").c_str(), F_OK), 0);
}

TEST_F(Interrupted, HasAFileOfItsOwn) {
  const BegunCommand first(path("data"), "0123456789abcdef", "first\n");
  ASSERT_TRUE(first.isKept());
  const BegunCommand second(path("data"), "0123456789abcdef", "second\n");
  EXPECT_FALSE(second.isKept());
  EXPECT_EQ(contentOf("data/begun/0123456789abcdef"), "first\n");
}

/// What a service manager sends to all processes of a service.
class SignalToAll : public Interrupted, public testing::WithParamInterface<const char*> {};

TEST_P(SignalToAll, InterruptsNothing) {
  if (std::string(GetParam()) == "/abort") {
    setCommand("POST", "/abort", R"({"when": "now"})");
  }
  const std::string open = fifo("open");
  toolDoes("say-pid " + path("pid") + "\nawait " + open + "\nout " + cAccepted);
  const pid_t gateway = doElsewhere();
  {
    const Descriptor end = whenAwaited(open);
    const pid_t tool = std::stoi(contentOf("pid"));
    for (const int number : {SIGTERM, SIGHUP, SIGINT, SIGPIPE}) {
      EXPECT_EQ(::kill(gateway, number), 0);
      EXPECT_EQ(::kill(tool, number), 0);
    }
    letGoOn(end);
  }
  EXPECT_EQ(::waitpid(gateway, nullptr, 0), gateway);
  const auto ended = logged("ended");
  ASSERT_EQ(ended.size(), 1U);
  EXPECT_EQ(ended[0]["status"], 200);
}

INSTANTIATE_TEST_SUITE_P(Commands, SignalToAll, testing::Values("/run", "/abort"));

}  // namespace

}  // namespace gateway
