// The log of commands: the contents of its lines, and what happens to them on a failing disk.
#include "CommandLog.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <ctime>
#include <set>
#include <string>

#include "Bench.h"

namespace gateway {

namespace {

class LogOfCommands : public Bench {
 protected:
  LogOfCommands() { setCommand("POST", "/run", R"({"type": "single", "stream": 2})"); }
};

TEST_F(LogOfCommands, HasALineBeforeAndALineAfter) {
  toolDoes("keep-log " + path("log") + ' ' + path("meanwhile") + "\nout " + cAccepted);
  ASSERT_EQ(replyToCommand().status, 200);
  const std::vector<std::string> lines = linesOf("log");
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(linesOf("meanwhile"), std::vector<std::string>{lines[0]});
  const rapidjson::Document begun = std::move(logged("begun").at(0));
  const std::string time = begun["time"].GetString();
  const std::string id = begun["id"].GetString();
  EXPECT_EQ(lines[0], R"({"time":")" + time + R"(","id":")" + id +
                          R"(","event":"begun","user":"anna","address":"192.0.2.7",)"
                          R"("command":["-R","single","-v","2"]})");
  const std::string end = logged("ended").at(0)["time"].GetString();
  EXPECT_EQ(lines[1], R"({"time":")" + end + R"(","id":")" + id +
                          R"(","event":"ended","user":"anna","address":"192.0.2.7",)"
                          R"("command":["-R","single","-v","2"],"status":200,)"
                          R"("document":{"ErrorCode":0,"Msg":"Accepted"}})");
  EXPECT_EQ(id.size(), 16U);
  EXPECT_EQ(id.find_first_not_of("0123456789abcdef"), std::string::npos);
}

TEST_F(LogOfCommands, KnowsEveryCommandByANumberOfItsOwn) {
  std::set<std::string> ids;
  std::set<char> digits;
  std::set<char> lastDigits;
  for (int i = 0; i < 1000; ++i) {
    const std::string id = newCommandId();
    EXPECT_EQ(id.size(), 16U);
    EXPECT_TRUE(ids.insert(id).second) << id;
    digits.insert(id.begin(), id.end());
    lastDigits.insert(id.back());
  }
  EXPECT_EQ(lastDigits, digits);
  EXPECT_EQ(std::string(digits.begin(), digits.end()), "0123456789abcdef");
}

TEST_F(LogOfCommands, TellsTheTimeInUtc) {
  // Hours away from UTC, whatever the machine's time zone.
  const char* before = std::getenv("TZ");  // NOLINT(concurrency-mt-unsafe)
  const std::string zone = before == nullptr ? "" : before;
  ::setenv("TZ", "XXX-9", 1);  // NOLINT(concurrency-mt-unsafe)
  ::tzset();
  toolDoes(std::string("out ") + cAccepted);
  replyToCommand();
  if (before == nullptr) {
    ::unsetenv("TZ");  // NOLINT(concurrency-mt-unsafe)
  } else {
    ::setenv("TZ", zone.c_str(), 1);  // NOLINT(concurrency-mt-unsafe)
  }
  ::tzset();
  const rapidjson::Document line = std::move(logged("ended").at(0));
  std::tm parts = {};
  ASSERT_EQ(*::strptime(line["time"].GetString(), "%Y-%m-%dT%H:%M:%SZ", &parts), '\0');
  EXPECT_LT(std::abs(std::difftime(::timegm(&parts), std::time(nullptr))), 60.0);
}

TEST_F(LogOfCommands, HasALineHoweverItWent) {
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
  const auto ended = logged("ended");
  ASSERT_EQ(ended.size(), 5U);
  EXPECT_EQ(ended[0]["document"]["ErrorCode"], 207);
  EXPECT_EQ(ended[1]["document"]["status"], 502);
  EXPECT_EQ(ended[2]["status"], 502);
  EXPECT_EQ(ended[3]["document"].GetStringLength(), 2000U);
  EXPECT_EQ(ended[3]["document"].GetString()[0], '{');
  EXPECT_EQ(ended[3].MemberCount(), ended[0].MemberCount());
  EXPECT_TRUE(ended[4]["document"].IsNull());
  const auto begun = logged("begun");
  ASSERT_EQ(begun.size(), 5U);
  for (std::size_t i = 0; i < begun.size(); ++i) {
    EXPECT_EQ(begun[i]["id"], ended[i]["id"]);
    EXPECT_TRUE(i == 0 || begun[i]["id"] != begun[i - 1]["id"]);
  }
}

TEST_F(LogOfCommands, KeepsADocumentOfTheLongestLengthAsItIs) {
  const std::string text = R"({"ErrorCode": 0, "Msg": ")" + std::string(1973, 'x') + "\"}";
  ASSERT_EQ(text.size(), 2000U);
  toolDoes("out " + text);
  replyToCommand();
  EXPECT_TRUE(logged("ended").at(0)["document"].IsObject());
}

TEST_F(LogOfCommands, HasNoFile) {
  toolDoes(std::string("out ") + cAccepted);
  ASSERT_EQ(command("PUT", "/calibration", R"({"total": 0, "secret": 1})").status, 200);
  for (const char* event : {"begun", "ended"}) {
    const rapidjson::Document line = std::move(logged(event).at(0));
    ASSERT_EQ(line["command"].Size(), 1U);
    EXPECT_STREQ(line["command"][0].GetString(), "-C");
  }
  EXPECT_EQ(contentOf("log").find("secret"), std::string::npos);
}

TEST_F(LogOfCommands, HasOneLineWhoeverAsks) {
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
  std::size_t commands = 0;
  for (const auto& row : cUsers) {
    input.variables["REMOTE_USER"] = row.user;
    input.variables["REMOTE_ADDR"] = row.user;
    EXPECT_EQ(replyToCommand().status, 200);
    ++commands;
    for (const char* event : {"begun", "ended"}) {
      const auto lines = logged(event);
      ASSERT_EQ(lines.size(), commands);
      EXPECT_EQ(lines.back()["user"].GetString(), row.logged);
      EXPECT_EQ(lines.back()["address"].GetString(), row.logged);
    }
  }
  EXPECT_EQ(linesOf("log").size(), 2 * commands);
}

TEST_F(LogOfCommands, IsForItsOwnerAndGroup) {
  const mode_t before = ::umask(0);
  toolDoes(std::string("out ") + cAccepted);
  replyToCommand();
  ::umask(before);
  struct stat file = {};
  ASSERT_EQ(::stat(path("log").c_str(), &file), 0);
  EXPECT_EQ(file.st_mode & 0777U, 0640U);
}

TEST_F(LogOfCommands, BeginsALineBehindATornOne) {
  write("log", "{\"time\":\"2026-11-2");
  toolDoes(std::string("out ") + cAccepted);
  ASSERT_EQ(replyToCommand().status, 200);
  const std::vector<std::string> lines = linesOf("log");
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(lines[0], "{\"time\":\"2026-11-2");
  EXPECT_EQ(lines[1].front(), '{');
  EXPECT_EQ(lines[1].back(), '}');
}

TEST_F(LogOfCommands, BeginsALineBehindASingleCharacter) {
  write("log", "x");
  EXPECT_TRUE(CommandLog(path("log")).add("one\n"));
  EXPECT_EQ(contentOf("log"), "x\none\n");
}

TEST_F(LogOfCommands, HasNoEmptyLine) {
  const CommandLog log(path("log"));
  EXPECT_TRUE(log.add("one\n"));
  EXPECT_TRUE(log.add("two\n"));
  EXPECT_EQ(contentOf("log"), "one\ntwo\n");
}

TEST_F(LogOfCommands, GoesOnInTheNewFileAfterARotation) {
  for (const bool isKept : {true, false}) {
    const CommandLog log(path("log"));
    EXPECT_TRUE(log.addFirstOfTwo("begun\n"));
    ASSERT_EQ(::rename(path("log").c_str(), path("log.1").c_str()), 0);
    if (!isKept) {
      ASSERT_EQ(::unlink(path("log.1").c_str()), 0);
    }
    EXPECT_TRUE(log.add("ended\n"));
    EXPECT_EQ(contentOf("log"), "ended\n");
    EXPECT_EQ(contentOf("log.1"), isKept ? "begun\n" : "");
    ASSERT_EQ(::unlink(path("log").c_str()), 0);
  }
}

/// There it has room; nobody would find it in an unlinked file.
TEST_F(LogOfCommands, StaysInTheOldFileWhenThereIsNoNewOne) {
  const CommandLog log(path("log"));
  EXPECT_TRUE(log.addFirstOfTwo("begun\n"));
  ASSERT_EQ(::rename(path("log").c_str(), path("log.1").c_str()), 0);
  ASSERT_EQ(::mkdir(path("log").c_str(), 0700), 0);
  EXPECT_TRUE(log.add("ended\n"));
  EXPECT_EQ(contentOf("log.1"), "begun\nended\n");
  ASSERT_EQ(::unlink(path("log.1").c_str()), 0);
  EXPECT_FALSE(log.add("ended\n"));
}

TEST_F(LogOfCommands, ThatIsRotatedHasBothLinesOfACommand) {
  const std::string open = fifo("open");
  toolDoes("await " + open + "\nout " + cAccepted);
  limits.command = std::chrono::milliseconds(30);
  answerCommand(input, limits, [&](const std::string&) {
    EXPECT_EQ(logged("begun").size(), 1U);
    EXPECT_EQ(::unlink(path("log").c_str()), 0);
    letGoOn(whenAwaited(open));
  });
  EXPECT_EQ(logged("ended").size(), 1U);
  EXPECT_TRUE(filesIn("data/begun").empty());
}

TEST_F(LogOfCommands, ThatCannotBeOpenedLetsNothingBegin) {
  toolDoes("note " + path("runs"));
  input.variables["GC_WEB_LOG"] = path("nothing/log");
  const Received answer = replyToCommand();
  EXPECT_EQ(answer.status, 500);
  EXPECT_NE(answer.detail().find("GC_WEB_LOG"), std::string::npos);
  EXPECT_EQ(contentOf("runs"), "");
  EXPECT_TRUE(filesIn("data/begun").empty());
}

TEST_F(LogOfCommands, ThatCannotBeWrittenLetsNothingBegin) {
  toolDoes("note " + path("runs"));
  input.variables["GC_WEB_LOG"] = "/dev/full";
  EXPECT_EQ(replyToCommand().status, 500);
  EXPECT_EQ(contentOf("runs"), "");
  EXPECT_TRUE(filesIn("data/begun").empty());
}

/// Limits the size of files that this process writes.
class SizeLimit {
 public:
  explicit SizeLimit(rlim_t aSize) {
    ::getrlimit(RLIMIT_FSIZE, &mBefore);
    const rlimit now = {aSize, mBefore.rlim_max};
    mHandler = std::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &now);
  }
  ~SizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &mBefore);
    std::signal(SIGXFSZ, mHandler);
  }
  SizeLimit(const SizeLimit&) = delete;
  SizeLimit& operator=(const SizeLimit&) = delete;

 private:
  rlimit mBefore = {};
  void (*mHandler)(int) = nullptr;
};

TEST_F(LogOfCommands, HasAWholeLineOrNothingOfIt) {
  const std::string before = std::string(100, 'x') + '\n';
  write("log", before);
  const CommandLog log(path("log"));
  {
    const SizeLimit limit(150);
    EXPECT_FALSE(log.add(std::string(99, 'y') + '\n'));
  }
  EXPECT_EQ(contentOf("log"), before);
  EXPECT_TRUE(log.add("z\n"));
  EXPECT_EQ(contentOf("log"), before + "z\n");
}

/// In a separate process, with a disk of this many pages.
template <typename tDo>
int onSmallDisk(const std::string& aFolder, int aPages, const tDo& aDo) {
  const pid_t process = ::fork();
  if (process == 0) {
    const std::string size = "size=" + std::to_string(aPages * 4096);
    const bool isThere =
        (::unshare(CLONE_NEWNS) == 0 || ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0) &&
        ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
        ::mount("none", aFolder.c_str(), "tmpfs", 0, size.c_str()) == 0;
    ::_exit(isThere ? aDo() : 99);
  }
  int status = -1;
  ::waitpid(process, &status, 0);
  return WEXITSTATUS(status);
}

TEST_F(LogOfCommands, SetsRoomAsideForTheEnd) {
  ASSERT_EQ(::mkdir(path("disk").c_str(), 0700), 0);
  const auto fillDisk = [&] {
    const Descriptor rest(::open(path("disk/rest").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    const std::string page(4096, 'x');
    while (::write(rest.get(), page.data(), page.size()) > 0) {
    }
  };
  EXPECT_EQ(onSmallDisk(path("disk"), 20,
                        [&] {
                          const CommandLog log(path("disk/log"));
                          const bool hasBegun = log.addFirstOfTwo("begun\n");
                          fillDisk();
                          const bool hasEnded = log.add(std::string(4096, 'e') + '\n');
                          const bool isNext = log.addFirstOfTwo("begun\n");
                          return (hasBegun ? 1 : 0) + (hasEnded ? 2 : 0) + (isNext ? 4 : 0);
                        }),
            3);
}

}  // namespace

}  // namespace gateway
