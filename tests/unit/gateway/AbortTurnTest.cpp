// Which aborts may share an answer.
#include "AbortTurn.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <ctime>
#include <fstream>
#include <optional>

#include "TemporaryFolder.h"

namespace gateway {

namespace {

constexpr char cAnswer[] = "Status: 200 OK\r\n\r\n{}\n";

class AbortsAtATime : public ::testing::Test {
 protected:
  void keep(const std::string& aContent) const {
    std::ofstream(mFolder.path("abort"), std::ios::binary) << aContent;
  }

  static std::int64_t sinceStart() {
    timespec time = {};
    ::clock_gettime(CLOCK_BOOTTIME, &time);
    return static_cast<std::int64_t>(time.tv_sec) * 1000000000 + time.tv_nsec;
  }

  std::int64_t dateOfCommands() const {
    struct stat file = {};
    EXPECT_EQ(::stat(mFolder.path("command").c_str(), &file), 0);
    return static_cast<std::int64_t>(file.st_mtim.tv_sec) * 1000000000 + file.st_mtim.tv_nsec;
  }

  TemporaryFolder mFolder;
  const FileLock mAborts{mFolder.path("abort")};
  const FileLock mCommands{mFolder.path("command")};
};

TEST_F(AbortsAtATime, ShareTheAnswerOfTheOneThatEndsMeanwhile) {
  const AbortTurn waiting(mAborts, mCommands);
  AbortTurn acting(mAborts, mCommands);
  acting.begin();
  acting.share(cAnswer);
  EXPECT_EQ(waiting.sharedAnswer(), cAnswer);
  acting.share("");
  EXPECT_EQ(waiting.sharedAnswer(), "");
}

TEST_F(AbortsAtATime, DoNotShareAnEarlierAnswer) {
  AbortTurn acting(mAborts, mCommands);
  acting.begin();
  acting.share(cAnswer);
  const AbortTurn late(mAborts, mCommands);
  EXPECT_EQ(late.sharedAnswer(), std::nullopt);
}

TEST_F(AbortsAtATime, DoNotShareWhenACommandHasBegunSince) {
  const AbortTurn waiting(mAborts, mCommands);
  AbortTurn acting(mAborts, mCommands);
  acting.begin();
  ASSERT_TRUE(markCommandBegun(mCommands));
  acting.share(cAnswer);
  EXPECT_EQ(waiting.sharedAnswer(), std::nullopt);
}

TEST_F(AbortsAtATime, DoNotShareWhenACommandWasGoingOn) {
  const AbortTurn waiting(mAborts, mCommands);
  AbortTurn acting(mAborts, mCommands);
  const FileLock other(mFolder.path("command"));
  ASSERT_TRUE(other.tryLock());
  acting.begin();
  acting.share(cAnswer);
  EXPECT_EQ(waiting.sharedAnswer(), std::nullopt);
  other.unlock();
  acting.begin();
  EXPECT_TRUE(other.tryLock()) << "the turn keeps the lock of the commands";
  acting.share(cAnswer);
  EXPECT_EQ(waiting.sharedAnswer(), cAnswer);
}

TEST_F(AbortsAtATime, DoNotShareWhatHasNotBegun) {
  const AbortTurn waiting(mAborts, mCommands);
  const AbortTurn acting(mAborts, mCommands);
  acting.share(cAnswer);
  EXPECT_EQ(waiting.sharedAnswer(), std::nullopt);
  AbortTurn begun(mAborts, mCommands);
  begun.begin();
  begun.share("longer" + std::string(cAnswer));
  begun.share(cAnswer);
  EXPECT_EQ(waiting.sharedAnswer(), cAnswer);
}

TEST_F(AbortsAtATime, AreToldWhenACommandBegins) {
  struct stat before = {};
  ASSERT_EQ(::stat(mFolder.path("command").c_str(), &before), 0);
  const std::int64_t earliest = sinceStart();
  EXPECT_TRUE(markCommandBegun(mCommands));
  // File timestamps may be coarser than a nanosecond.
  EXPECT_GE(dateOfCommands(), earliest - 10000000);
  EXPECT_LE(dateOfCommands(), sinceStart());
  struct stat after = {};
  ASSERT_EQ(::stat(mFolder.path("command").c_str(), &after), 0);
  EXPECT_EQ(after.st_atim.tv_sec, before.st_atim.tv_sec);
  EXPECT_FALSE(markCommandBegun(FileLock(mFolder.path("nothing/command"))));
}

TEST_F(AbortsAtATime, MakeNothingOfWhatIsTorn) {
  const AbortTurn turn(mAborts, mCommands);
  const std::string end = std::to_string(sinceStart() + 1000000000) + ' ';
  const std::string begun = std::to_string(dateOfCommands());
  keep(end + begun + " 2\n{}");
  EXPECT_EQ(turn.sharedAnswer(), "{}");
  const std::string own = end + begun + " 99";
  const std::string cTorn[] = {end + begun + ' ' + std::to_string(own.size()),
                               end + begun + " \n",
                               "",
                               "\n",
                               "{}",
                               "\n{}",
                               "x\n{}",
                               end + "\n{}",
                               end + begun + "\n{}",
                               end + begun + " 2",
                               end + begun + " 2\n",
                               end + begun + " 2\n{",
                               end + begun + " 2\n{}\n",
                               end + begun + " x\n{}",
                               end + begun + "1 2\n{}",
                               "0 " + begun + " 2\n{}"};
  for (const std::string& torn : cTorn) {
    keep(torn);
    EXPECT_EQ(turn.sharedAnswer(), std::nullopt) << torn;
  }
}

}  // namespace

}  // namespace gateway
