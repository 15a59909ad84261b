// Locks between processes, and how long they are waited for.
#include "FileLock.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <csignal>
#include <string>

#include "TemporaryFolder.h"

namespace gateway {

namespace {

class Lock : public ::testing::Test {
 protected:
  TemporaryFolder mFolder;
  std::string mPath = mFolder.path("lock");
};

TEST_F(Lock, IsForItsOwnerOnly) {
  const mode_t mask = ::umask(0);
  const FileLock lock(mPath);
  ::umask(mask);
  ASSERT_TRUE(lock.isOpen());
  struct stat file = {};
  ASSERT_EQ(::stat(mPath.c_str(), &file), 0);
  EXPECT_EQ(file.st_mode & 07777U, 0600U);
  EXPECT_EQ(::fcntl(lock.file(), F_GETFD), FD_CLOEXEC);
}

TEST_F(Lock, IsNoLinkAndNoFolder) {
  ASSERT_EQ(::symlink("elsewhere", mPath.c_str()), 0);
  EXPECT_FALSE(FileLock(mPath).isOpen());
  EXPECT_FALSE(FileLock(mFolder.path("")).isOpen());
  EXPECT_NE(::access(mFolder.path("elsewhere").c_str(), F_OK), 0);
}

TEST_F(Lock, HasOneHolder) {
  const FileLock first(mPath);
  {
    const FileLock second(mPath);
    EXPECT_TRUE(second.tryLock());
    EXPECT_FALSE(first.tryLock());
    second.unlock();
    EXPECT_TRUE(first.tryLock());
    first.unlock();
    EXPECT_TRUE(second.tryLock());
  }
  EXPECT_TRUE(first.tryLock()) << "a released lock is still held";
}

TEST_F(Lock, IsWaitedForAsLongAsIsSaid) {
  const FileLock holder(mPath);
  ASSERT_TRUE(holder.tryLock());
  const FileLock waiting(mPath);
  for (const int milliseconds : {-1000, 0, 30, 1050}) {
    const std::chrono::milliseconds time(milliseconds);
    const auto begin = Clock::now();
    EXPECT_FALSE(waiting.lockUntil(begin + time));
    EXPECT_GE(Clock::now() - begin, time);
  }
}

TEST_F(Lock, IsTakenWhenItIsFree) {
  const FileLock lock(mPath);
  EXPECT_TRUE(lock.lockUntil(Clock::now() - std::chrono::seconds(1)));
}

int sRung = 0;

TEST_F(Lock, GivesTheAlarmClockBack) {
  struct sigaction own = {};
  struct sigaction before = {};
  own.sa_handler = [](int) { ++sRung; };
  ASSERT_EQ(::sigaction(SIGALRM, &own, &before), 0);
  sigset_t alarm;
  sigset_t mask;
  sigemptyset(&alarm);
  sigaddset(&alarm, SIGALRM);
  ASSERT_EQ(sigprocmask(SIG_BLOCK, &alarm, &mask), 0);
  const FileLock holder(mPath);
  ASSERT_TRUE(holder.tryLock());
  const FileLock waiting(mPath);
  EXPECT_FALSE(waiting.lockUntil(Clock::now() + std::chrono::milliseconds(30)));
  EXPECT_EQ(sRung, 0);
  struct sigaction after = {};
  ASSERT_EQ(::sigaction(SIGALRM, &before, &after), 0);
  EXPECT_EQ(after.sa_handler, own.sa_handler);
  sigset_t held;
  ASSERT_EQ(sigprocmask(SIG_SETMASK, &mask, &held), 0);
  EXPECT_EQ(sigismember(&held, SIGALRM), 1);
  itimerval timer = {};
  ASSERT_EQ(::getitimer(ITIMER_REAL, &timer), 0);
  EXPECT_EQ(timer.it_value.tv_sec + timer.it_value.tv_usec, 0);
  EXPECT_EQ(timer.it_interval.tv_sec + timer.it_interval.tv_usec, 0);
}

TEST_F(Lock, IsNotTakenWithoutAFile) {
  const FileLock lock(mFolder.path("nothing/lock"));
  EXPECT_FALSE(lock.isOpen());
  EXPECT_FALSE(lock.tryLock());
  const auto begin = Clock::now();
  EXPECT_FALSE(lock.lockUntil(begin + std::chrono::hours(1)));
}

}  // namespace

}  // namespace gateway
