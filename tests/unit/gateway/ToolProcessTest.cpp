// Runs of the tool: what it inherits, how it ends, how long it is waited for.
#include "ToolProcess.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>

#include <csignal>
#include <cstdint>
#include <initializer_list>

#include "Bench.h"

namespace gateway {

namespace {

constexpr std::chrono::milliseconds cShort{30};
constexpr std::chrono::seconds cLong{30};

class ToolRun : public Bench {
 protected:
  Outcome run(const std::string& aLines, std::chrono::milliseconds aTime = cLong,
              eOperation aOperation = eOperation::eStatus) {
    toolDoes(aLines);
    ToolProcess tool(settings(), limits, {aOperation});
    tool.waitUntil(Clock::now() + aTime);
    return tool.outcome();
  }
};

TEST_F(ToolRun, KeepsBothOutputsApart) {
  const Outcome outcome = run("out one\nerr two\nout three");
  EXPECT_TRUE(outcome.started);
  EXPECT_FALSE(outcome.late);
  EXPECT_FALSE(outcome.tooMuch);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "onethree");
  EXPECT_EQ(outcome.errors, "two\n");
}

TEST_F(ToolRun, MaySayNothing) {
  const Outcome outcome = run("out ");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output + outcome.errors, "");
}

TEST_F(ToolRun, InheritsNothing) {
  const Descriptor ownInput(::dup(STDIN_FILENO));
  const Descriptor zero(::open("/dev/zero", O_RDONLY | O_CLOEXEC));
  ASSERT_EQ(::dup2(zero.get(), STDIN_FILENO), STDIN_FILENO);
  const Descriptor high(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  ASSERT_EQ(::dup2(high.get(), 57), 57);  // dup2 does not copy O_CLOEXEC
  const Descriptor higher(57);
  ASSERT_EQ(::setenv("GC_WEB_SECRET", "x", 1), 0);  // NOLINT(concurrency-mt-unsafe)
  const auto before = std::signal(SIGTERM, SIG_IGN);
  toolDoes("describe", "");
  const rapidjson::Document born = report("/api/config").document();
  std::signal(SIGTERM, before);
  ::dup2(ownInput.get(), STDIN_FILENO);
  EXPECT_EQ(born["environment"].Size(), 0U);
  ASSERT_EQ(born["descriptors"].Size(), 3U);
  EXPECT_EQ(born["descriptors"][2], 2);
  EXPECT_STREQ(born["input"].GetString(), "/dev/null");
  EXPECT_TRUE(born["leads"].GetBool());
  const std::uint64_t signals = (1U << (SIGTERM - 1)) | (1U << (SIGPIPE - 1)) |
                                (1U << (SIGCHLD - 1)) | (1U << (SIGINT - 1)) | (1U << (SIGHUP - 1));
  EXPECT_EQ(born["SigIgn"].GetUint64() & signals, 0U);
  EXPECT_EQ(born["SigBlk"].GetUint64() & signals, 0U);
}

TEST_F(ToolRun, LeavesTheGatewaysSignalsAsTheyWere) {
  run("out ");
  sigset_t held;
  sigprocmask(SIG_SETMASK, nullptr, &held);
  for (const int number : {SIGTERM, SIGINT, SIGHUP, SIGPIPE, SIGALRM}) {
    EXPECT_EQ(sigismember(&held, number), 0) << number;
  }
}

TEST_F(ToolRun, IsToldWhereItsLibrariesAre) {
  input.variables["GC_WEB_LIBRARY_PATH"] = "/nowhere:/else";
  // The web server's own environment must not reach the tool.
  input.variables["LD_LIBRARY_PATH"] = "/of-the-server";
  toolDoes("describe", "");
  const rapidjson::Document born = report("/api/config").document();
  ASSERT_EQ(born["environment"].Size(), 1U);
  EXPECT_STREQ(born["environment"][0].GetString(), "LD_LIBRARY_PATH=/nowhere:/else");
}

std::uint64_t maskOf(std::initializer_list<int> aSignals) {
  std::uint64_t mask = 0;
  for (const int number : aSignals) {
    mask |= std::uint64_t{1} << static_cast<unsigned>(number - 1);
  }
  return mask;
}

TEST_F(ToolRun, OfACommandHasNothingButItsFileAndTheLocks) {
  toolDoes("describe 0");
  const rapidjson::Document born = command("PUT", "/calibration", R"({"total": 0})").document();
  ASSERT_EQ(born["descriptors"].Size(), 6U);
  EXPECT_EQ(born["descriptors"][5], 5);
  EXPECT_EQ(born["files"][3].GetString(), std::string("/memfd:upload (deleted)"));
  EXPECT_EQ(born["files"][4].GetString(), path("command.lock"));
  EXPECT_EQ(std::string(born["files"][5].GetString()).rfind(path("data/begun/"), 0), 0U);
}

TEST_F(ToolRun, OfACommandWithoutAFileHasTheLocksOnly) {
  toolDoes("describe 0");
  const rapidjson::Document born = command("POST", "/alarm-reset", "{}").document();
  ASSERT_EQ(born["descriptors"].Size(), 5U);
  EXPECT_EQ(born["files"][3].GetString(), path("command.lock"));
  EXPECT_EQ(std::string(born["files"][4].GetString()).rfind(path("data/begun/"), 0), 0U);
}

/// A command that has begun must finish, even if a service manager signals every process.
TEST_F(ToolRun, OfACommandIgnoresWhatEndsAService) {
  // It may be ignored if the tests were started in the background.
  std::signal(SIGQUIT, SIG_DFL);
  toolDoes("describe 0");
  const rapidjson::Document born = command("POST", "/alarm-reset", "{}").document();
  const std::uint64_t ignored = maskOf({SIGTERM, SIGINT, SIGHUP, SIGPIPE});
  EXPECT_EQ(born["SigIgn"].GetUint64() & ignored, ignored);
  EXPECT_EQ(born["SigIgn"].GetUint64() & maskOf({SIGCHLD, SIGALRM, SIGQUIT, SIGABRT}), 0U);
  EXPECT_EQ(born["SigBlk"].GetUint64() & (ignored | maskOf({SIGALRM, SIGCHLD})), 0U);
}

/// If its gateway has been killed, nothing else would end a hung tool that holds the locks.
TEST_F(ToolRun, OfACommandDoesNotLiveForEver) {
  // Allows for what a busy machine spends between the tool's start and its look at the clock.
  constexpr double cBusy = 60.0;
  toolDoes("describe 0");
  const Received longest = command("POST", "/alarm-reset", "{}");
  EXPECT_NEAR(longest.document()["alarm"].GetInt(), 120 + 3600 + 4, cBusy);
  const Received abort = command("POST", "/abort", R"({"when": "now"})");
  EXPECT_GT(abort.document()["alarm"].GetInt(), 0);
  EXPECT_LE(abort.document()["alarm"].GetInt(), 20 + 4);
  toolDoes("describe", "");
  EXPECT_EQ(ask("/api/config").document()["alarm"], 0);
}

TEST_F(ToolRun, HasItsFileWhateverNumberTheGatewayGaveIt) {
  Descriptor lowest(::memfd_create("file", MFD_CLOEXEC));
  const Descriptor file(::fcntl(lowest.get(), F_DUPFD_CLOEXEC, 50));
  lowest.close();
  ASSERT_EQ(::write(file.get(), "content", 7), 7);
  for (const int number : {3, 33}) {
    const Descriptor copy(::dup3(file.get(), number, O_CLOEXEC));
    toolDoes("keep " + path("kept"));
    ToolProcess tool(settings(), limits, {eOperation::eSequenceFile, 0, copy.get()});
    tool.waitForEnd();
    EXPECT_EQ(contentOf("kept"), "content") << number;
    write("kept", "");
  }
}

TEST_F(ToolRun, TellsHowItEnded) {
  EXPECT_EQ(WEXITSTATUS(run("out {}\nexit 3").status), 3);
  EXPECT_EQ(WTERMSIG(run("out {}\nsignal 9").status), SIGKILL);
  input.variables["GC_WEB_TOOL"] = path("nothing");
  EXPECT_EQ(WEXITSTATUS(run("out ").status), 127);
  EXPECT_EQ(report("/api/config").status, 502);
  input.variables["GC_WEB_TOOL"] = path("");
  EXPECT_EQ(report("/api/config").status, 502);
}

TEST_F(ToolRun, PrintsAsMuchAsIsAllowed) {
  limits.output = 100000;
  const Outcome outcome = run("flood 99999\nflood-errors 99999");
  EXPECT_FALSE(outcome.tooMuch);
  EXPECT_EQ(outcome.output.size(), 99999U);
  EXPECT_EQ(outcome.errors.size(), 99999U);
}

TEST_F(ToolRun, OfAReportEndsWhenItPrintsMore) {
  limits.output = 100000;
  const std::string open = fifo("open");
  // Neither ends by itself.
  const Outcome output = run("flood 100001\nawait " + open);
  EXPECT_TRUE(output.tooMuch);
  EXPECT_FALSE(output.late);
  EXPECT_EQ(output.output.size(), 100000U);
  const Outcome errors = run("flood-errors 100001\nawait " + open);
  EXPECT_TRUE(errors.tooMuch);
  EXPECT_EQ(errors.errors.size(), 100000U);
}

TEST_F(ToolRun, OfACommandGoesOnWhenItPrintsMore) {
  limits.output = 10;
  const Outcome outcome = run("flood 1000000\nflood-errors 1000000\nnote " + path("runs"), cLong,
                              eOperation::eAutomation);
  EXPECT_TRUE(outcome.tooMuch);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output.size() + outcome.errors.size(), 20U);
  EXPECT_EQ(contentOf("runs"), "run\n");
}

TEST_F(ToolRun, OfAReportIsEndedAndReapedWhenItIsLate) {
  const std::string life = fifo("life");
  toolDoes("out {}\nhang " + life);
  Descriptor reader;
  {
    ToolProcess tool(settings(), limits, {eOperation::eStatus});
    reader = Descriptor(::open(life.c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_FALSE(tool.waitUntil(Clock::now() + cShort));
    EXPECT_TRUE(tool.outcome().late);
    EXPECT_EQ(tool.outcome().output, "{}");
  }
  char nothing = 0;
  EXPECT_EQ(::read(reader.get(), &nothing, 1), 0);
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
}

TEST_F(ToolRun, IsLateWhenItLivesOnSilently) {
  const Outcome outcome = run("out {}\nclose\nawait " + fifo("open"), cShort);
  EXPECT_TRUE(outcome.late);
}

TEST_F(ToolRun, OfAReportEndsWithTheGateway) {
  const std::string life = fifo("life");
  toolDoes("hang " + life);
  const pid_t gateway = ::fork();
  if (gateway == 0) {
    report("/api/config");
    ::_exit(0);
  }
  const Descriptor reader(::open(life.c_str(), O_RDONLY | O_CLOEXEC));
  ::kill(gateway, SIGKILL);
  char nothing = 0;
  EXPECT_EQ(::read(reader.get(), &nothing, 1), 0);
  EXPECT_EQ(::waitpid(gateway, nullptr, 0), gateway);
}

}  // namespace

}  // namespace gateway
