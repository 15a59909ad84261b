// What the tool and the library say about a failure reaches the web server's error log.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <regex>

#include "Bench.h"

namespace gateway {

namespace {

class Said : public Bench {
 protected:
  /// What the gateway writes to standard error in the meantime.
  template <typename tDo>
  std::string during(const tDo& aDo) {
    const Descriptor before(::dup(STDERR_FILENO));
    {
      const Descriptor file(
          ::open(path("said").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
      ::dup2(file.get(), STDERR_FILENO);
    }
    aDo();
    ::dup2(before.get(), STDERR_FILENO);
    return contentOf("said");
  }
};

constexpr char cTime[] = R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ )";

TEST_F(Said, OfACommandIsToldWithTimeAndRequest) {
  toolDoes(
      "err writeParam. return 0.\nerr Execute failed 207.\nout {\"ErrorCode\": 207, \"Msg\": "
      "\"x\"}");
  const std::string said = during([&] { command("POST", "/run", R"({"type": "automation"})"); });
  EXPECT_TRUE(std::regex_match(
      said, std::regex(
                std::string(cTime) +
                R"(POST /api/command/run 409: writeParam\. return 0\. \| Execute failed 207\.\n)")))
      << said;
}

TEST_F(Said, OfEveryFailedCommand) {
  toolDoes("err one\nexit 1");
  const std::string said = during([&] {
    command("POST", "/alarm-reset", "{}");
    command("POST", "/alarm-reset", "{}");
  });
  EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 2);
}

TEST_F(Said, WhenAllIsWellIsNotTold) {
  toolDoes(std::string("err writeParam. return 0.\nout ") + cAccepted);
  EXPECT_EQ(during([&] { command("POST", "/alarm-reset", "{}"); }), "");
  toolDoes("err x\nout ");
  EXPECT_EQ(during([&] { command("PUT", "/stream", R"({"stream": 1})"); }), "");
  toolDoes("err x\nout {}");
  EXPECT_EQ(during([&] { ask("/api/config"); }), "");
}

TEST_F(Said, IsNothingWhenNothingIsSaid) {
  toolDoes("exit 1");
  EXPECT_EQ(during([&] { ask("/api/config"); }), "");
}

TEST_F(Said, IsOneLineOfPlainCharacters) {
  toolDoes("err a\x1B[2J\xFF\\\t~\x7F \x1F\nerr b\nexit 1");
  const std::string said = during([&] { command("POST", "/alarm-reset", "{}"); });
  EXPECT_NE(said.find(R"(: a\x1b[2J\xff\x5c\x09~\x7f \x1f | b)"), std::string::npos) << said;
  EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1);
}

TEST_F(Said, IsTheBeginning) {
  toolDoes("err " + std::string(999, 'a') + "bc\nexit 1");
  const std::string said = during([&] { command("POST", "/alarm-reset", "{}"); });
  EXPECT_NE(said.find("aab\n"), std::string::npos) << said;
}

TEST_F(Said, OfAReportIsToldOnceAMinute) {
  toolDoes("err Execute failed 207.\nout ");
  EXPECT_NE(during([&] { ask("/api/config"); }).find("GET /api/config 502: Execute failed 207."),
            std::string::npos);
  EXPECT_EQ(during([&] { ask("/api/config"); }), "");
  EXPECT_NE(during([&] { ask("/api/alarms"); }), "");
  struct stat mark = {};
  const std::string name = path("configuration.told");
  ASSERT_EQ(::stat(name.c_str(), &mark), 0);
  EXPECT_EQ(mark.st_mode & 0777U, 0600U);
  const struct {
    long seconds;
    bool isTold;
  } cAges[] = {{-30, false}, {-61, true}, {-100000, true}, {1000, true}};
  for (const auto& row : cAges) {
    timespec times[2] = {{0, UTIME_OMIT}, {mark.st_mtime + row.seconds, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, name.c_str(), times, 0), 0);
    EXPECT_EQ(!during([&] { ask("/api/config"); }).empty(), row.isTold) << row.seconds;
  }
}

TEST_F(Said, OfTheTableBeforeADownloadIsTold) {
  input.variables["GC_WEB_ADDRESS"] = "err Execute failed 207.";
  const std::string said =
      during([&] { command("PUT", "/sequence", R"({"Table_repeat": 1, "total": 0})"); });
  EXPECT_NE(said.find("PUT /api/command/sequence 502: Execute failed 207."), std::string::npos);
}

}  // namespace

}  // namespace gateway
