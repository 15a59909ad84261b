// Aborts do not wait for other commands, and share each other's answer.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>

#include "AbortTurn.h"
#include "Bench.h"
#include "FileLock.h"

namespace gateway {

namespace {

constexpr char cNow[] = R"({"when": "now"})";
constexpr char cAfterRun[] = R"({"when": "after-run"})";

class Aborted : public Bench {
 protected:
  Aborted() { limits.otherCommand = std::chrono::seconds(30); }

  /// Runs a command in another process, which leaves its answer in a file.
  pid_t doElsewhere(const std::string& aAnswer = "answer") {
    const pid_t process = ::fork();
    if (process == 0) {
      answerCommand(input, limits, [&](const std::string& aReply) { write(aAnswer, aReply); });
      ::_exit(0);
    }
    return process;
  }

  static void expectGoodEnd(pid_t aProcess) {
    int status = -1;
    EXPECT_EQ(::waitpid(aProcess, &status, 0), aProcess);
    EXPECT_EQ(status, 0);
  }
};

TEST_F(Aborted, WaitsForNoOtherCommand) {
  const FileLock other(path("command.lock"));
  ASSERT_TRUE(other.tryLock());
  toolDoes("note " + path("runs") + "\nout " + cAccepted);
  for (const char* when : {cNow, cAfterRun}) {
    EXPECT_EQ(command("POST", "/abort", when).status, 200);
  }
  EXPECT_EQ(contentOf("runs"), "run\nrun\n");
  EXPECT_EQ(logged("ended").size(), 2U);
}

TEST_F(Aborted, AtOnceDoesNotWaitForTheEndOfARun) {
  const std::string open = fifo("open");
  toolDoes("await " + open + "\nout " + cAccepted);
  setCommand("POST", "/abort", cAfterRun);
  const pid_t first = doElsewhere();
  const Descriptor end = whenAwaited(open);
  toolDoes(std::string("out ") + cAccepted);
  EXPECT_EQ(command("POST", "/abort", cNow).status, 200);
  letGoOn(end);
  expectGoodEnd(first);
}

TEST_F(Aborted, SharesTheAnswerOfOneThatIsUnderWay) {
  const std::string open = fifo("open");
  toolDoes("note " + path("runs") + "\nawait " + open + "\nout " + cAccepted);
  setCommand("POST", "/abort", cNow);
  const pid_t first = doElsewhere("first");
  const Descriptor end = whenAwaited(open);
  const pid_t second = doElsewhere("second");
  whenItWaits(second);
  letGoOn(end);
  expectGoodEnd(first);
  expectGoodEnd(second);
  EXPECT_EQ(contentOf("runs"), "run\n");
  EXPECT_EQ(contentOf("second"), contentOf("first"));
  EXPECT_EQ(Received(contentOf("first")).status, 200);
  EXPECT_EQ(logged("begun").size(), 1U);
  const auto shared = logged("shared");
  ASSERT_EQ(shared.size(), 1U);
  EXPECT_STREQ(shared[0]["user"].GetString(), "anna");
  EXPECT_STREQ(shared[0]["command"][1].GetString(), "now");
  EXPECT_NE(shared[0]["id"], logged("begun")[0]["id"]);
  EXPECT_EQ(linesOf("log").size(), 3U);
}

TEST_F(Aborted, DoesNotShareTheAnswerOfOneThatHasEnded) {
  toolDoes("note " + path("runs") + "\nout " + cAccepted);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(command("POST", "/abort", cNow).status, 200);
  }
  EXPECT_EQ(contentOf("runs"), "run\nrun\n");
}

/// A run that began after the first abort would continue, although two people were told it had
/// ended.
TEST_F(Aborted, IsDoneAgainWhenACommandHasBegunSince) {
  const std::string open = fifo("open");
  toolDoes("note " + path("runs") + "\nawait " + open + "\nout " + cAccepted);
  setCommand("POST", "/abort", cNow);
  const pid_t first = doElsewhere("first");
  const Descriptor end = whenAwaited(open);
  toolDoes(std::string("out ") + cAccepted);
  EXPECT_EQ(command("POST", "/run", R"({"type": "automation"})").status, 200);
  toolDoes("note " + path("runs") + "\nout " + cAccepted);
  setCommand("POST", "/abort", cNow);
  const pid_t second = doElsewhere("second");
  whenItWaits(second);
  letGoOn(end);
  expectGoodEnd(first);
  expectGoodEnd(second);
  EXPECT_EQ(contentOf("runs"), "run\nrun\n");
}

TEST_F(Aborted, IsDoneAgainWhenACommandWasGoingOn) {
  const FileLock other(path("command.lock"));
  ASSERT_TRUE(other.tryLock());
  const std::string open = fifo("open");
  toolDoes("note " + path("runs") + "\nawait " + open + "\nout " + cAccepted);
  setCommand("POST", "/abort", cNow);
  const pid_t first = doElsewhere("first");
  const Descriptor end = whenAwaited(open);
  toolDoes("note " + path("runs") + "\nout " + cAccepted);
  const pid_t second = doElsewhere("second");
  whenItWaits(second);
  letGoOn(end);
  expectGoodEnd(first);
  expectGoodEnd(second);
  EXPECT_EQ(contentOf("runs"), "run\nrun\n");
}

TEST_F(Aborted, LetsOtherCommandsBegin) {
  const std::string open = fifo("open");
  toolDoes("await " + open + "\nout " + cAccepted);
  setCommand("POST", "/abort", cNow);
  const pid_t first = doElsewhere();
  const Descriptor end = whenAwaited(open);
  toolDoes(std::string("out ") + cAccepted);
  limits.otherCommand = std::chrono::milliseconds(0);
  EXPECT_EQ(command("POST", "/alarm-reset", "{}").status, 200);
  letGoOn(end);
  expectGoodEnd(first);
}

TEST_F(Aborted, IsEndedWhenTheInstrumentDoesNotAnswer) {
  limits.abort = std::chrono::milliseconds(30);
  toolDoes("await " + fifo("open"));
  const Received answer = command("POST", "/abort", cNow);
  EXPECT_EQ(answer.status, 504);
  EXPECT_STREQ(answer.document()["outcome"].GetString(), "unknown");
  EXPECT_EQ(answer.detail().rfind("The instrument did not answer in time.", 0), 0U);
  // Not by the alarm clock that ends it when nobody attends to it.
  EXPECT_EQ(std::string(logged("ended").at(0)["document"]["detail"].GetString())
                .rfind("The tool was killed by signal 9.", 0),
            0U);
  limits = Limits();
  toolDoes(std::string("out ") + cAccepted);
  EXPECT_EQ(command("POST", "/abort", cNow).status, 200);
  EXPECT_EQ(logged("ended").size(), 2U);
}

TEST_F(Aborted, WaitsAsLongAsAnotherMayTake) {
  limits.abort = std::chrono::seconds(60);
  limits.otherCommand = std::chrono::seconds(0);
  const FileLock other(path("abort-now.lock"));
  ASSERT_TRUE(other.tryLock());
  toolDoes(std::string("out ") + cAccepted);
  setCommand("POST", "/abort", cNow);
  const pid_t waiting = doElsewhere("waiting");
  whenItWaits(waiting);
  other.unlock();
  expectGoodEnd(waiting);
  EXPECT_EQ(Received(contentOf("waiting")).status, 200);
}

TEST_F(Aborted, SaysWhenAnotherDoesNotEnd) {
  limits.abort = std::chrono::milliseconds(10);
  limits.otherCommand = std::chrono::milliseconds(10);
  const FileLock other(path("abort-now.lock"));
  ASSERT_TRUE(other.tryLock());
  toolDoes("note " + path("runs"));
  const Received answer = command("POST", "/abort", cNow);
  EXPECT_EQ(answer.status, 504);
  EXPECT_NE(answer.detail().find("not started"), std::string::npos);
  EXPECT_EQ(contentOf("runs"), "");
  EXPECT_EQ(contentOf("log"), "");
}

/// The folder may date from an earlier boot, when the clock was ahead.
TEST_F(Aborted, SharesNoAnswerFromBeforeTheOther) {
  const std::string open = fifo("open");
  toolDoes("note " + path("runs") + "\nawait " + open);
  {
    const FileLock commands(path("command.lock"));
    ASSERT_TRUE(markCommandBegun(commands));
  }
  struct stat mark = {};
  ASSERT_EQ(::stat(path("command.lock").c_str(), &mark), 0);
  const long long begun = mark.st_mtim.tv_sec * 1000000000LL + mark.st_mtim.tv_nsec;
  write("abort-now.lock", "99999999999999999 " + std::to_string(begun) + " 3\nabc");
  setCommand("POST", "/abort", cNow);
  const pid_t first = doElsewhere();
  const Descriptor end = whenAwaited(open);
  toolDoes("note " + path("runs") + "\nout " + cAccepted);
  const pid_t second = doElsewhere("second");
  whenItWaits(second);
  ::kill(first, SIGKILL);
  EXPECT_EQ(::waitpid(first, nullptr, 0), first);
  letGoOn(end);
  expectGoodEnd(second);
  EXPECT_EQ(contentOf("runs"), "run\nrun\n");
}

/// The next abort waits for it, and would give up before its turn.
TEST_F(Aborted, IsEndedInTimeForTheNextWithoutAGateway) {
  toolDoes("describe 0");
  const Received answer = command("POST", "/abort", cNow);
  EXPECT_LT(std::chrono::seconds(answer.document()["alarm"].GetInt()),
            limits.abort + Limits().otherCommand);
}

TEST_F(Aborted, MakesNothingOfATornAnswer) {
  toolDoes("note " + path("runs") + "\nout " + cAccepted);
  for (const char* content : {"", "\n", "99999999999999999 0 3\nab", "99999999999999999 0\nabc",
                              "9 9 99999999999999999999\nabc", "x", "99999999999999999 0 3"}) {
    const FileLock other(path("abort-now.lock"));
    ASSERT_TRUE(other.tryLock());
    write("abort-now.lock", content);
    setCommand("POST", "/abort", cNow);
    write("runs", "");
    const pid_t waiting = doElsewhere();
    whenItWaits(waiting);
    other.unlock();
    expectGoodEnd(waiting);
    EXPECT_EQ(contentOf("runs"), "run\n") << content;
  }
}

}  // namespace

}  // namespace gateway
