// Concurrent requests for the status.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "Bench.h"
#include "FileLock.h"

namespace gateway {

namespace {

class SharedStatus : public Bench {
 protected:
  SharedStatus() {
    // Long enough for any machine; the tests of expiry make it short.
    limits.freshStatus = std::chrono::hours(1);
  }

  /// Requests the status in another process, which writes the answer to a file.
  pid_t askElsewhere(const std::string& aName) {
    const pid_t process = ::fork();
    if (process == 0) {
      input.variables["REQUEST_METHOD"] = "GET";
      input.variables["SCRIPT_NAME"] = "/api/status";
      write(aName, answerReport(input, limits));
      ::_exit(0);
    }
    return process;
  }

  std::size_t runs() const { return contentOf("runs").size() / 4; }
  /// The tool leaves a trace of each run.
  void toolCounts() { toolDoes("note " + path("runs") + "\nout {\"a\": 1}"); }
};

void expectToEndWell(pid_t aProcess) {
  int status = -1;
  EXPECT_EQ(::waitpid(aProcess, &status, 0), aProcess);
  EXPECT_EQ(status, 0);
}

TEST_F(SharedStatus, IsAskedForOnce) {
  const std::string open = fifo("open");
  toolDoes("note " + path("runs") + "\nawait " + open + "\nout {\"a\": 1}");
  const pid_t first = askElsewhere("first");
  const Descriptor end = whenAwaited(open);
  const pid_t second = askElsewhere("second");
  const pid_t third = askElsewhere("third");
  letGoOn(end);
  for (const pid_t process : {first, second, third}) {
    expectToEndWell(process);
  }
  EXPECT_EQ(runs(), 1U);
  const std::string answer = contentOf("first");
  EXPECT_EQ(Received(answer).body, "{\"a\": 1}");
  for (const char* name : {"second", "third"}) {
    const std::string shared = contentOf(name);
    EXPECT_EQ(shared.rfind("Age: ", 0), 0U) << shared;
    EXPECT_EQ(shared.substr(shared.find('\n') + 1), answer);
  }
}

TEST_F(SharedStatus, IsKeptForAWhile) {
  toolCounts();
  const Received asked = report("/api/status");
  EXPECT_EQ(asked.headers.count("Age"), 0U);
  const Received shared = report("/api/status");
  EXPECT_EQ(shared.headers.count("Age"), 1U);
  EXPECT_EQ(shared.status, 200);
  EXPECT_EQ(shared.body, asked.body);
  const Received head = report("/api/status", "HEAD");
  EXPECT_EQ(head.headers.count("Age"), 1U);
  EXPECT_EQ(head.body, "");
  EXPECT_EQ(runs(), 1U);
}

TEST_F(SharedStatus, AskedForWithHeadHasABodyForOthers) {
  toolCounts();
  EXPECT_EQ(report("/api/status", "HEAD").body, "");
  EXPECT_EQ(report("/api/status").body, "{\"a\": 1}");
  EXPECT_EQ(runs(), 1U);
}

TEST_F(SharedStatus, IsSharedWhateverItIs) {
  toolDoes("note " + path("runs") + "\nsignal 9");
  EXPECT_EQ(report("/api/status").status, 502);
  const Received shared = report("/api/status");
  EXPECT_EQ(shared.status, 502);
  EXPECT_NE(shared.detail(), "");
  EXPECT_EQ(runs(), 1U);
}

TEST_F(SharedStatus, IsAskedForAgainWhenItIsOld) {
  limits.freshStatus = std::chrono::milliseconds(0);
  toolCounts();
  report("/api/status");
  EXPECT_EQ(report("/api/status").headers.count("Age"), 0U);
  EXPECT_EQ(runs(), 2U);
}

TEST_F(SharedStatus, IsNoOtherReport) {
  toolCounts();
  report("/api/status");
  report("/api/config");
  report("/api/config");
  EXPECT_EQ(runs(), 3U);
}

TEST_F(SharedStatus, IsNotWaitedForForEver) {
  toolCounts();
  limits.otherStatus = std::chrono::milliseconds(30);
  const FileLock other(path("status.answer"));
  ASSERT_TRUE(other.tryLock());
  EXPECT_EQ(report("/api/status").status, 504);
  EXPECT_EQ(runs(), 0U);
}

TEST_F(SharedStatus, IsReadWhileSomebodyAsks) {
  toolCounts();
  report("/api/status");
  const FileLock other(path("status.answer"));
  ASSERT_TRUE(other.tryLock());
  EXPECT_EQ(report("/api/status").headers.count("Age"), 1U);
}

TEST_F(SharedStatus, IsNotHeldUpByAProcessThatWasKilled) {
  const std::string life = fifo("life");
  toolDoes("hang " + life);
  const pid_t other = askElsewhere("other");
  const Descriptor reader(::open(life.c_str(), O_RDONLY | O_CLOEXEC));
  ::kill(other, SIGKILL);
  EXPECT_EQ(::waitpid(other, nullptr, 0), other);
  toolCounts();
  EXPECT_EQ(report("/api/status").status, 200);
}

TEST_F(SharedStatus, NeedsItsFolder) {
  input.variables["GC_WEB_STATE"] = path("nothing");
  const Received answer = report("/api/status");
  EXPECT_EQ(answer.status, 500);
  EXPECT_NE(answer.detail().find("GC_WEB_STATE"), std::string::npos);
}

TEST_F(SharedStatus, IsAnsweredAlsoWhenItCannotBeKept) {
  toolCounts();
  rlimit before = {};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  const rlimit small = {40, before.rlim_max};
  const auto action = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  EXPECT_EQ(report("/api/status").body, "{\"a\": 1}");
  EXPECT_EQ(report("/api/status").body, "{\"a\": 1}");
  ::setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, action);
  EXPECT_EQ(runs(), 2U);
}

TEST_F(SharedStatus, IsNotFollowedElsewhere) {
  write("elsewhere", "mine");
  ASSERT_EQ(::symlink(path("elsewhere").c_str(), path("status.answer").c_str()), 0);
  EXPECT_EQ(report("/api/status").status, 500);
  EXPECT_EQ(contentOf("elsewhere"), "mine");
}

}  // namespace

}  // namespace gateway
