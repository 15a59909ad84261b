// Serialises aborts of the same kind, and lets those that waited share an answer.
#include "AbortTurn.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <ctime>
#include <sstream>

#include "StoredFile.h"

namespace gateway {

namespace {

std::int64_t nanosecondsOf(const timespec& aTime) {
  return static_cast<std::int64_t>(aTime.tv_sec) * 1000000000 + aTime.tv_nsec;
}

/// Time since boot: a clock that nobody can set.
std::int64_t now() {
  timespec time = {};
  ::clock_gettime(CLOCK_BOOTTIME, &time);
  return nanosecondsOf(time);
}

/// When the last non-abort command began, from the modification time of its lock file.
std::int64_t lastBegun(const FileLock& aCommands) {
  struct stat file = {};
  return ::fstat(aCommands.file(), &file) == 0 ? nanosecondsOf(file.st_mtim) : 0;
}

}  // namespace

bool markCommandBegun(const FileLock& aCommands) {
  // A timestamp needs no space, which a full file system might not have.
  const std::int64_t time = now();
  const std::array<timespec, 2> times = {
      {{0, UTIME_OMIT}, {time / 1000000000, static_cast<long>(time % 1000000000)}}};
  return ::futimens(aCommands.file(), times.data()) == 0;
}

AbortTurn::AbortTurn(const FileLock& aAborts, const FileLock& aCommands)
    : mAborts(aAborts), mCommands(aCommands), mAsked(now()) {}

std::optional<std::string> AbortTurn::sharedAnswer() const {
  const std::string kept = contentOf(mAborts.file());
  const std::size_t line = kept.find('\n');
  if (line == std::string::npos) {
    return std::nullopt;
  }
  std::istringstream about(kept.substr(0, line));
  std::int64_t ended = 0;
  std::int64_t lastCommand = 0;
  std::size_t length = 0;
  about >> ended >> lastCommand >> length;
  std::string answer = kept.substr(line + 1);
  if (!about || length != answer.size() || ended < mAsked || lastCommand != lastBegun(mCommands)) {
    return std::nullopt;
  }
  return answer;
}

void AbortTurn::begin() {
  // If this process is killed, the next one must not take the old content for its answer.
  static_cast<void>(::ftruncate(mAborts.file(), 0));
  mIsAlone = mCommands.tryLock();
  mLastCommand = lastBegun(mCommands);
  if (mIsAlone) {
    mCommands.unlock();
  }
}

void AbortTurn::share(const std::string& aAnswer) const {
  if (!mIsAlone || ::ftruncate(mAborts.file(), 0) != 0) {
    return;
  }
  const std::string text = std::to_string(now()) + ' ' + std::to_string(mLastCommand) + ' ' +
                           std::to_string(aAnswer.size()) + '\n' + aAnswer;
  static_cast<void>(::pwrite(mAborts.file(), text.data(), text.size(), 0));
}

}  // namespace gateway
