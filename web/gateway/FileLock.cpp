// A lock shared by the gateway's processes.
#include "FileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/time.h>

#include <algorithm>
#include <cerrno>
#include <csignal>

namespace gateway {

namespace {

// An alarm that rings just before the wait begins has no effect, so it repeats.
constexpr timeval cAgain = {0, 20000};

void ring(int) {}

/// Interrupts blocking system calls from a given time on.
class AlarmClock {
 public:
  explicit AlarmClock(Clock::time_point aTime) {
    struct sigaction action = {};
    action.sa_handler = ring;  // without SA_RESTART
    ::sigaction(SIGALRM, &action, &mAction);
    sigset_t alarm;
    sigemptyset(&alarm);
    sigaddset(&alarm, SIGALRM);
    sigprocmask(SIG_UNBLOCK, &alarm, &mMask);
    const auto left = std::chrono::duration_cast<std::chrono::microseconds>(aTime - Clock::now());
    const auto time = std::max(left, std::chrono::microseconds(1));
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    const itimerval timer = {
        cAgain,
        {static_cast<time_t>(seconds.count()), static_cast<suseconds_t>((time - seconds).count())}};
    ::setitimer(ITIMER_REAL, &timer, nullptr);
  }
  ~AlarmClock() {
    const itimerval none = {};
    ::setitimer(ITIMER_REAL, &none, nullptr);
    sigprocmask(SIG_SETMASK, &mMask, nullptr);
    ::sigaction(SIGALRM, &mAction, nullptr);
  }
  AlarmClock(const AlarmClock&) = delete;
  AlarmClock& operator=(const AlarmClock&) = delete;

 private:
  struct sigaction mAction = {};
  sigset_t mMask = {};
};

}  // namespace

FileLock::FileLock(const std::string& aPath)
    : mFile(::open(aPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600)) {}

bool FileLock::tryLock() const {
  return ::flock(mFile.get(), LOCK_EX | LOCK_NB) == 0;
}

void FileLock::unlock() const {
  ::flock(mFile.get(), LOCK_UN);
}

bool FileLock::lockUntil(Clock::time_point aTime) const {
  if (tryLock()) {
    return true;
  }
  const AlarmClock alarm(aTime);
  while (::flock(mFile.get(), LOCK_EX) != 0) {
    if (errno != EINTR || Clock::now() >= aTime) {
      return false;
    }
  }
  return true;
}

}  // namespace gateway
