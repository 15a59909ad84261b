// Commands exclude each other, and survive the browser's disconnection and every signal.
#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <ctime>

#include "Bench.h"
#include "FileLock.h"

namespace gateway {

namespace {

class CarriedOut : public Bench {
 protected:
  CarriedOut() { setCommand("POST", "/run", R"({"type": "single", "stream": 2})"); }

  /// Runs the command in another process.
  pid_t doElsewhere() {
    const pid_t process = ::fork();
    if (process == 0) {
      limits.otherCommand = std::chrono::seconds(30);
      answerCommand(input, limits, [](const std::string&) {});
      ::_exit(0);
    }
    return process;
  }
};

TEST_F(CarriedOut, NeedsTheFolderOfItsLock) {
  toolDoes("note " + path("runs"));
  input.variables["GC_WEB_STATE"] = path("nothing");
  const Received answer = replyToCommand();
  EXPECT_EQ(answer.status, 500);
  EXPECT_NE(answer.detail().find("GC_WEB_STATE"), std::string::npos);
  EXPECT_EQ(contentOf("runs"), "");
}

TEST_F(CarriedOut, IsNotBegunWhileAnotherIs) {
  toolDoes("note " + path("runs") + "\nout " + cAccepted);
  limits.otherCommand = std::chrono::milliseconds(30);
  {
    const FileLock other(path("command.lock"));
    ASSERT_TRUE(other.tryLock());
    const Received answer = replyToCommand();
    EXPECT_EQ(answer.status, 409);
    EXPECT_NE(answer.detail().find("this one was not started"), std::string::npos);
    EXPECT_EQ(contentOf("runs"), "");
    EXPECT_EQ(contentOf("log"), "");
  }
  EXPECT_EQ(replyToCommand().status, 200);
}

/// The client has given up by then.
TEST_F(CarriedOut, IsNotWhenItCouldNotBeginInTime) {
  toolDoes("note " + path("runs") + "\nout " + cAccepted);
  limits.begin = std::chrono::milliseconds(-1);
  const Received answer = replyToCommand();
  EXPECT_EQ(answer.status, 500);
  EXPECT_NE(answer.detail().find("nothing was done"), std::string::npos);
  EXPECT_EQ(contentOf("runs"), "");
  EXPECT_EQ(logged("begun").size(), 1U);
  EXPECT_EQ(logged("ended").at(0)["status"], 500);
  EXPECT_TRUE(filesIn("data/begun").empty());
}

TEST_F(CarriedOut, WaitsForAnotherToEnd) {
  const std::string open = fifo("open");
  toolDoes("await " + open + "\nout " + cAccepted);
  const pid_t first = doElsewhere();
  const Descriptor end = whenAwaited(open);
  toolDoes(std::string("out ") + cAccepted);
  setCommand("POST", "/alarm-reset", "{}");
  const pid_t second = doElsewhere();
  whenItWaits(second);
  letGoOn(end);
  for (const pid_t process : {first, second}) {
    int status = -1;
    EXPECT_EQ(::waitpid(process, &status, 0), process);
    EXPECT_EQ(status, 0);
  }
  std::vector<std::string> order;
  for (const std::string& line : linesOf("log")) {
    rapidjson::Document entry;
    entry.Parse(line.c_str());
    order.emplace_back(std::string(entry["event"].GetString()) + entry["command"][0].GetString());
  }
  EXPECT_EQ(order, (std::vector<std::string>{"begun-R", "ended-R", "begun-P", "ended-P"}));
}

TEST_F(CarriedOut, IsEndedWhenItNeverWouldBe) {
  toolDoes("await " + fifo("open"));
  limits.command = std::chrono::milliseconds(10);
  limits.hung = std::chrono::milliseconds(10);
  EXPECT_EQ(replyToCommand().status, 504);
  const auto ended = logged("ended");
  ASSERT_EQ(ended.size(), 1U);
  EXPECT_EQ(ended[0]["status"], 504);
  EXPECT_EQ(std::string(ended[0]["document"]["detail"].GetString())
                .rfind("The tool was killed by signal 9.", 0),
            0U);
  limits = Limits();
  toolDoes(std::string("out ") + cAccepted);
  EXPECT_EQ(replyToCommand().status, 200);
}

TEST_F(CarriedOut, GoesOnAfterTheAnswerWhenItTakesLong) {
  const std::string open = fifo("open");
  toolDoes("await " + open + "\nout " + cAccepted);
  limits.command = std::chrono::milliseconds(30);
  std::vector<std::string> replies;
  answerCommand(input, limits, [&](const std::string& aReply) {
    replies.push_back(aReply);
    EXPECT_TRUE(logged("ended").empty());
    EXPECT_FALSE(FileLock(path("command.lock")).tryLock());
    letGoOn(whenAwaited(open));
  });
  ASSERT_EQ(replies.size(), 1U);
  EXPECT_EQ(Received(replies[0]).status, 504);
  EXPECT_NE(Received(replies[0]).detail(), "");
  const auto ended = logged("ended");
  ASSERT_EQ(ended.size(), 1U);
  EXPECT_EQ(ended[0]["status"], 504);
  EXPECT_EQ(ended[0]["document"]["ErrorCode"], 0);
  EXPECT_TRUE(FileLock(path("command.lock")).tryLock());
}

TEST_F(CarriedOut, StaysUnfinishedIfItsEndCannotBeLogged) {
  const std::string open = fifo("open");
  toolDoes("await " + open + "\nout " + cAccepted);
  limits.command = std::chrono::milliseconds(30);
  rlimit before = {};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  const auto action = std::signal(SIGXFSZ, SIG_IGN);
  testing::internal::CaptureStderr();
  answerCommand(input, limits, [&](const std::string&) {
    letGoOn(whenAwaited(open));
    // Enough for what is captured, less than the log has.
    const rlimit small = {100, before.rlim_max};
    EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  });
  ::setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, action);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "The end of a command could not be written to the command log.\n");
  EXPECT_EQ(filesIn("data/begun").size(), 1U);
}

TEST_F(CarriedOut, OutlivesTheBrowserAndTheServersSignal) {
  const std::string open = fifo("open");
  toolDoes("await " + open + "\nout " + cAccepted);
  int ends[2] = {-1, -1};
  ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
  Descriptor reader(ends[0]);
  Descriptor writer(ends[1]);
  const pid_t gateway = ::fork();
  if (gateway == 0) {
    reader.close();
    answerCommand(input, limits, [&](const std::string& aReply) { send(writer.get(), aReply); });
    ::_exit(7);
  }
  reader.close();  // nobody will read the answer
  {
    const Descriptor end = whenAwaited(open);
    for (const int number : {SIGTERM, SIGHUP, SIGINT}) {
      EXPECT_EQ(::kill(gateway, number), 0);
    }
    letGoOn(end);
  }
  int status = -1;
  EXPECT_EQ(::waitpid(gateway, &status, 0), gateway);
  EXPECT_TRUE(WIFEXITED(status)) << status;
  EXPECT_EQ(WEXITSTATUS(status), 7);
  const auto ended = logged("ended");
  ASSERT_EQ(ended.size(), 1U);
  EXPECT_EQ(ended[0]["status"], 200);
}

TEST_F(CarriedOut, OutlivesTheGateway) {
  const std::string open = fifo("open");
  const Descriptor told(::open(fifo("told").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  toolDoes("await " + open + "\nnote " + path("told"));
  const pid_t gateway = doElsewhere();
  const Descriptor end = whenAwaited(open);
  ::kill(gateway, SIGKILL);
  EXPECT_EQ(::waitpid(gateway, nullptr, 0), gateway);
  letGoOn(end);
  pollfd news = {told.get(), POLLIN, 0};
  ASSERT_EQ(::poll(&news, 1, 10000), 1);
  char word[4] = "";
  EXPECT_EQ(::read(told.get(), word, 3), 3);
  EXPECT_STREQ(word, "run");
}

}  // namespace

}  // namespace gateway
