// Journal lines parse, whatever is in them; the file gets them all, the memory the last.
#include "Journal.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <rapidjson/document.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <limits>
#include <sstream>

#include "TemporaryFolder.h"

namespace simulator {

namespace {

constexpr double cNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double cInfinity = std::numeric_limits<double>::infinity();

std::string contents(const std::string& aPath) {
  std::ostringstream text;
  text << std::ifstream(aPath).rdbuf();
  return text.str();
}

TEST(JournalEntry, MembersComeInOrder) {
  JournalEntry entry;
  entry.add("time", 1.5);
  entry.add("connection", std::uint64_t{18446744073709551615U});
  entry.add("peer", std::string("127.0.0.1:1"));
  EXPECT_EQ(entry.finish(),
            R"({"time":1.5,"connection":18446744073709551615,"peer":"127.0.0.1:1"})");
}

TEST(JournalEntry, Records) {
  JournalEntry entry;
  entry.add("records", std::vector<ParamList>{{1, 2, 3, 4, 0.5, -6, 7},
                                              {0, 0, 0, 4294967295U, cNaN, 0, 0},
                                              {0, 0, 0, 0, cInfinity, 0, 0},
                                              {0, 0, 0, 0, -cInfinity, 0, 0}});
  EXPECT_EQ(entry.finish(),
            R"({"records":[)"
            R"({"channel":1,"method":2,"step":3,"id":4,"real":0.5,"int":-6,"status":7},)"
            R"({"channel":0,"method":0,"step":0,"id":4294967295,"real":"NaN","int":0,"status":0},)"
            R"({"channel":0,"method":0,"step":0,"id":0,"real":"Infinity","int":0,"status":0},)"
            R"({"channel":0,"method":0,"step":0,"id":0,"real":"-Infinity","int":0,"status":0}]})");
}

TEST(JournalEntry, AnyOctets) {
  std::string octets;
  for (int octet = 0; octet < 256; ++octet) {
    octets += static_cast<char>(octet);
  }
  JournalEntry entry;
  entry.add("client", octets);
  const std::string line = entry.finish();
  EXPECT_EQ(line.find('\n'), std::string::npos);
  rapidjson::Document document;
  document.Parse<rapidjson::kParseValidateEncodingFlag>(line.c_str());
  ASSERT_FALSE(document.HasParseError());
  const std::string client(document["client"].GetString(), document["client"].GetStringLength());
  EXPECT_EQ(client.substr(0, 128), octets.substr(0, 128));
  EXPECT_EQ(client.size(), 128U + 128 * 3);
}

TEST(Journal, AppendsToItsFile) {
  const TemporaryFolder folder;
  const std::string path = folder.path("journal");
  std::string error;
  {
    Journal journal;
    ASSERT_TRUE(journal.open(path, error)) << error;
    journal.write("{\"n\":1}");
    EXPECT_EQ(contents(path), "{\"n\":1}\n");
  }
  Journal journal;
  ASSERT_TRUE(journal.open(path, error)) << error;
  journal.write("{\"n\":2}");
  EXPECT_EQ(contents(path), "{\"n\":1}\n{\"n\":2}\n");
}

TEST(Journal, MakesItsFileForOthersToRead) {
  const TemporaryFolder folder;
  const std::string path = folder.path("journal");
  const mode_t mask = ::umask(0);
  std::string error;
  int handle = -1;
  {
    Journal journal;
    EXPECT_TRUE(journal.open(path, error));
    EXPECT_EQ(error, "");
    // The lowest that is free: what has been opened is below it.
    handle = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ::close(handle);
    EXPECT_NE(::fcntl(handle - 1, F_GETFD), -1);
  }
  ::umask(mask);
  EXPECT_EQ(::fcntl(handle - 1, F_GETFD), -1) << "the file is left open";
  struct stat status = {};
  ASSERT_EQ(::stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0644U);
}

TEST(Journal, MayHaveAnyHandle) {
  // Even that of the standard input.
  const TemporaryFolder folder;
  const std::string path = folder.path("journal");
  const int input = ::dup(STDIN_FILENO);
  ::close(STDIN_FILENO);
  {
    Journal journal;
    std::string error;
    EXPECT_TRUE(journal.open(path, error));
    EXPECT_EQ(error, "");
    journal.write("{}");
  }
  EXPECT_EQ(::fcntl(STDIN_FILENO, F_GETFD), -1);
  ::dup2(input, STDIN_FILENO);
  ::close(input);
  EXPECT_EQ(contents(path), "{}\n");
}

TEST(Journal, WithoutAFileClosesAndWritesNone) {
  const TemporaryFolder folder;
  const int input = ::dup(STDIN_FILENO);
  const int file = ::open(folder.path("input").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  ::dup2(file, STDIN_FILENO);
  {
    Journal journal;
    journal.write("{}");
  }
  EXPECT_NE(::fcntl(STDIN_FILENO, F_GETFD), -1);
  ::dup2(input, STDIN_FILENO);
  ::close(input);
  ::close(file);
  EXPECT_EQ(contents(folder.path("input")), "");
}

TEST(Journal, FileThatCannotBeOpened) {
  Journal journal;
  std::string error;
  EXPECT_FALSE(journal.open("/nonexistent/journal", error));
  EXPECT_EQ(error, "/nonexistent/journal: No such file or directory");
  ::testing::internal::CaptureStderr();
  journal.write("{}");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(journal.lines().size(), 1U);
}

TEST(Journal, GoesOnWhenItsFileIsFull) {
  Journal journal;
  std::string error;
  ASSERT_TRUE(journal.open("/dev/full", error)) << error;
  ::testing::internal::CaptureStderr();
  journal.write("{\"n\":1}");
  journal.write("{\"n\":2}");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(),
            "gc-sim: the journal file takes no more lines: No space left on device\n");
  EXPECT_EQ(journal.lines().size(), 2U);
}

TEST(Journal, SaysWhenALineIsCut) {
  const TemporaryFolder folder;
  const std::string path = folder.path("journal");
  rlimit before = {};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  const auto action = std::signal(SIGXFSZ, SIG_IGN);
  Journal journal;
  std::string error;
  ASSERT_TRUE(journal.open(path, error)) << error;
  ::testing::internal::CaptureStderr();
  const std::string first(994, 'x');
  journal.write(first);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
  const rlimit small = {1000, before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  ::testing::internal::CaptureStderr();
  journal.write("{\"n\":2}");
  ::setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, action);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(),
            "gc-sim: the journal file takes no more lines: it is full\n");
  EXPECT_EQ(contents(path), first + "\n{\"n\":");
}

TEST(Journal, KeepsTheLastThousandLines) {
  Journal journal;
  for (int n = 1; n <= 1500; ++n) {
    journal.write(std::to_string(n));
  }
  ASSERT_EQ(journal.lines().size(), 1000U);
  EXPECT_EQ(journal.lines().front(), "501");
  EXPECT_EQ(journal.lines().back(), "1500");
}

TEST(Journal, KeepsEightMegabytes) {
  Journal journal;
  const std::string line(1'000'000, 'x');
  for (int n = 0; n < 20; ++n) {
    journal.write(line);
  }
  EXPECT_EQ(journal.lines().size(), 8U);
  journal.write("");
  EXPECT_EQ(journal.lines().size(), 9U);
  journal.write("z");
  EXPECT_EQ(journal.lines().size(), 9U);
  std::string longest;
  while (longest.size() <= Journal::cMaxOctets) {
    longest += line;
  }
  journal.write(longest);
  EXPECT_EQ(journal.lines().size(), 1U);
  journal.write("z");
  EXPECT_EQ(journal.lines().size(), 1U);
  EXPECT_EQ(journal.lines().back(), "z");
}

}  // namespace

}  // namespace simulator
