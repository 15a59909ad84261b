// The status that several ask for at a time.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <ctime>

#include "Bench.h"
#include "FileLock.h"

namespace {

class SharedStatus : public Bench {
 protected:
  SharedStatus() {
    // Long enough for any machine; the tests of the end of sharing make it short.
    limits.freshStatus = std::chrono::hours(1);
  }

  /// Another process that asks for the status and writes the answer into a file.
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
  /// The tool leaves a trace of its runs.
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
  EXPECT_EQ(contentOf("second"), "Age: 0\r\n" + answer);
  EXPECT_EQ(contentOf("third"), "Age: 0\r\n" + answer);
}

TEST_F(SharedStatus, IsKeptForAWhile) {
  toolCounts();
  const Received asked = report("/api/status");
  EXPECT_EQ(asked.headers.count("Age"), 0U);
  const Received shared = report("/api/status");
  EXPECT_EQ(shared.headers.at("Age"), "0");
  EXPECT_EQ(shared.status, 200);
  EXPECT_EQ(shared.body, asked.body);
  const Received head = report("/api/status", "HEAD");
  EXPECT_EQ(head.headers.at("Age"), "0");
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

/// What would be kept of an answer that somebody got so many milliseconds ago.
std::string kept(long aMilliseconds, const std::string& aAnswer, std::size_t aLength) {
  timespec now = {};
  ::clock_gettime(CLOCK_BOOTTIME, &now);
  const std::int64_t time = std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1000000;
  return std::to_string(time - aMilliseconds) + ' ' + std::to_string(aLength) + '\n' + aAnswer;
}

constexpr char cKept[] = "Status: 200 OK\r\n\r\n{\"kept\": 1}";

TEST_F(SharedStatus, HasItsAgeInSeconds) {
  write("status.answer", kept(2500, cKept, sizeof cKept - 1));
  const Received answer = report("/api/status");
  EXPECT_EQ(answer.headers.at("Age"), "2");
  EXPECT_EQ(answer.body, "{\"kept\": 1}");
}

TEST_F(SharedStatus, ThatIsTornOrOldOrOfTheFutureIsIgnored) {
  toolCounts();
  const std::size_t length = sizeof cKept - 1;
  std::string withoutLength = kept(0, "", 0);
  withoutLength.erase(withoutLength.size() - 2, 1);
  const std::string cBad[] = {
      withoutLength,
      "",
      "x",
      "1",
      "1 ",
      "1 1",
      " ",
      "\n",
      "1\n",
      "1 \n",
      std::string(100, '\0'),
      kept(0, cKept, length).substr(0, 5),
      kept(0, cKept, length).substr(0, 30),
      kept(0, cKept, length - 1),
      kept(0, cKept, length + 1),
      kept(3600000, cKept, length),
      kept(-5000, cKept, length),
      "-" + kept(0, cKept, length),
  };
  std::size_t expected = 0;
  for (const std::string& content : cBad) {
    write("status.answer", content);
    EXPECT_EQ(report("/api/status").body, "{\"a\": 1}") << content;
    EXPECT_EQ(runs(), ++expected) << content;
  }
}

TEST_F(SharedStatus, OfAnEarlierStartOfTheSystemIsIgnored) {
  toolCounts();
  for (const long date : {-2L * 3600, 2L * 3600}) {
    write("status.answer", kept(0, cKept, sizeof cKept - 1));
    timespec now = {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const timespec times[] = {{now.tv_sec + date, 0}, {now.tv_sec + date, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path("status.answer").c_str(), times, 0), 0);
    EXPECT_EQ(report("/api/status").body, "{\"a\": 1}");
  }
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
