// Commands exclude each other, outlive the browser and are logged.
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <ctime>

#include "Bench.h"
#include "FileLock.h"

namespace {

class CarriedOut : public Bench {
 protected:
  CarriedOut() { setCommand("POST", "/run", R"({"type": "single", "stream": 2})"); }

  /// Another process that carries the command out.
  pid_t doElsewhere() {
    const pid_t process = ::fork();
    if (process == 0) {
      limits.otherCommand = std::chrono::seconds(30);
      answerCommand(input, limits, [](const std::string&) {});
      ::_exit(0);
    }
    return process;
  }

  rapidjson::Document logged(std::size_t aLine) const {
    rapidjson::Document line;
    line.Parse(log().at(aLine).c_str());
    EXPECT_FALSE(line.HasParseError()) << log().at(aLine);
    return line;
  }
};

TEST_F(CarriedOut, IsLogged) {
  toolDoes(std::string("out ") + cAccepted);
  ASSERT_EQ(replyToCommand().status, 200);
  ASSERT_EQ(log().size(), 1U);
  const std::string line = log()[0];
  const std::string time = logged(0)["time"].GetString();
  EXPECT_EQ(line, R"({"time":")" + time +
                      R"(","user":"anna","address":"192.0.2.7",)"
                      R"("command":["-R","single","-v","2"],"status":200,)"
                      R"("document":{"ErrorCode":0,"Msg":"Accepted"}})");
  std::tm parts = {};
  ASSERT_EQ(*::strptime(time.c_str(), "%Y-%m-%dT%H:%M:%SZ", &parts), '\0') << time;
  EXPECT_LT(std::abs(std::difftime(::timegm(&parts), std::time(nullptr))), 60.0);
}

TEST_F(CarriedOut, IsLoggedHoweverItWent) {
  toolDoes("out {\"ErrorCode\": 207,\nout  \"Msg\": \"Refused\"}\nerr Execute failed 207.");
  EXPECT_EQ(replyToCommand().status, 409);
  toolDoes("out Hello");
  EXPECT_EQ(replyToCommand().status, 502);
  toolDoes("signal 9");
  EXPECT_EQ(replyToCommand().status, 502);
  toolDoes("out {\"ErrorCode\": 0, \"Msg\": \"" + std::string(3000, 'x') + "\"}");
  EXPECT_EQ(replyToCommand().status, 200);
  toolDoes("out ");
  EXPECT_EQ(command("PUT", "/stream", R"({"stream": 3})").status, 204);
  EXPECT_EQ(logged(0)["document"]["ErrorCode"], 207);
  EXPECT_EQ(logged(1)["document"]["status"], 502);
  EXPECT_EQ(logged(2)["status"], 502);
  EXPECT_EQ(logged(3)["document"].GetStringLength(), 2000U);
  EXPECT_TRUE(logged(4)["document"].IsNull());
  EXPECT_EQ(log().size(), 5U);
}

TEST_F(CarriedOut, IsLoggedWithoutItsFile) {
  toolDoes(std::string("out ") + cAccepted);
  command("PUT", "/calibration", R"({"total": 0, "secret": 1})");
  const rapidjson::Document line = logged(0);
  ASSERT_EQ(line["command"].Size(), 1U);
  EXPECT_STREQ(line["command"][0].GetString(), "-C");
  EXPECT_EQ(log()[0].find("secret"), std::string::npos);
}

TEST_F(CarriedOut, IsLoggedInOneLineWhoeverAsks) {
  toolDoes(std::string("out ") + cAccepted);
  const struct {
    std::string user;
    std::string logged;
  } cUsers[] = {
      {"a\",\"status\":200}\n{\"user\":\"b", "a\",\"status\":200}\n{\"user\":\"b"},
      {"\xFF\xC3\xA9\xC3", "\xEF\xBF\xBD\xC3\xA9\xEF\xBF\xBD"},
      {"\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"\x01\x7F\t\r\n\\", "\x01\x7F\t\r\n\\"},
      {std::string(10000, 'u'), std::string(10000, 'u')},
  };
  std::size_t lines = 0;
  for (const auto& row : cUsers) {
    input.variables["REMOTE_USER"] = row.user;
    input.variables["REMOTE_ADDR"] = row.user;
    EXPECT_EQ(replyToCommand().status, 200);
    ASSERT_EQ(log().size(), ++lines);
    const rapidjson::Document line = logged(lines - 1);
    EXPECT_EQ(line["user"].GetString(), row.logged);
    EXPECT_EQ(line["address"].GetString(), row.logged);
  }
}

TEST_F(CarriedOut, IsNotBegunWhenItCannotBeLogged) {
  toolDoes("note " + path("runs"));
  input.variables["GC_WEB_LOG"] = path("nothing/log");
  const Received answer = replyToCommand();
  EXPECT_EQ(answer.status, 500);
  EXPECT_NE(answer.detail().find("GC_WEB_LOG"), std::string::npos);
  EXPECT_EQ(contentOf("runs"), "");
}

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
    EXPECT_NE(answer.detail(), "");
    EXPECT_EQ(contentOf("runs"), "");
    EXPECT_TRUE(log().empty());
  }
  EXPECT_EQ(replyToCommand().status, 200);
}

TEST_F(CarriedOut, WaitsForAnotherToEnd) {
  const std::string open = fifo("open");
  toolDoes("await " + open + "\nout " + cAccepted);
  const pid_t first = doElsewhere();
  const Descriptor end = whenAwaited(open);
  toolDoes(std::string("out ") + cAccepted);
  setCommand("POST", "/alarm-reset", "{}");
  const pid_t second = doElsewhere();
  letGoOn(end);
  for (const pid_t process : {first, second}) {
    int status = -1;
    EXPECT_EQ(::waitpid(process, &status, 0), process);
    EXPECT_EQ(status, 0);
  }
  EXPECT_STREQ(logged(0)["command"][0].GetString(), "-R");
  EXPECT_STREQ(logged(1)["command"][0].GetString(), "-P");
}

TEST_F(CarriedOut, IsEndedWhenItNeverWouldBe) {
  toolDoes("await " + fifo("open"));
  limits.command = std::chrono::milliseconds(10);
  limits.hung = std::chrono::milliseconds(10);
  EXPECT_EQ(replyToCommand().status, 504);
  ASSERT_EQ(log().size(), 1U);
  EXPECT_EQ(logged(0)["status"], 504);
  EXPECT_STREQ(logged(0)["document"]["detail"].GetString(), "The tool was ended by signal 9.");
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
    EXPECT_TRUE(log().empty());
    EXPECT_FALSE(FileLock(path("command.lock")).tryLock());
    letGoOn(whenAwaited(open));
  });
  ASSERT_EQ(replies.size(), 1U);
  EXPECT_EQ(Received(replies[0]).status, 504);
  EXPECT_NE(Received(replies[0]).detail(), "");
  ASSERT_EQ(log().size(), 1U);
  EXPECT_EQ(logged(0)["status"], 504);
  EXPECT_EQ(logged(0)["document"]["ErrorCode"], 0);
  EXPECT_TRUE(FileLock(path("command.lock")).tryLock());
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
  ASSERT_EQ(log().size(), 1U);
  EXPECT_EQ(logged(0)["status"], 200);
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
