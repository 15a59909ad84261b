// One run of the tool for all who ask for the status at about the same time.
#include "SharedStatus.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <iterator>
#include <optional>
#include <thread>

#include "FileLock.h"

namespace {

/// Milliseconds of a clock that may be set, or of one that starts with the system.
std::int64_t millisecondsOf(const timespec& aTime) {
  return static_cast<std::int64_t>(aTime.tv_sec) * 1000 + aTime.tv_nsec / 1000000;
}

std::int64_t now(clockid_t aClock) {
  timespec time = {};
  ::clock_gettime(aClock, &time);
  return millisecondsOf(time);
}

bool isFresh(std::int64_t aAge, const Limits& aLimits) {
  return aAge >= 0 && aAge < aLimits.freshStatus.count();
}

/// The file is a line with the time since the system's start and the length of the answer, then the
/// answer. Its date must be recent too: the line alone may be of an earlier start.
std::optional<std::string> readAnswer(const std::string& aPath, const Limits& aLimits) {
  struct stat file = {};
  if (::stat(aPath.c_str(), &file) != 0 ||
      !isFresh(now(CLOCK_REALTIME) - millisecondsOf(file.st_mtim), aLimits)) {
    return std::nullopt;
  }
  std::ifstream input(aPath, std::ios::binary);
  std::int64_t written = 0;
  std::size_t length = 0;
  input >> written >> length;
  if (!input || input.get() != '\n') {
    return std::nullopt;
  }
  const std::string answer{std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>()};
  const std::int64_t age = now(CLOCK_BOOTTIME) - written;
  if (answer.size() != length || !isFresh(age, aLimits)) {
    return std::nullopt;
  }
  return "Age: " + std::to_string(age / 1000) + "\r\n" + answer;
}

/// Only the holder of the lock writes. What cannot be kept is asked for again.
void keepAnswer(const std::string& aPath, const std::string& aAnswer) {
  const std::string unfinished = aPath + ".new";
  std::ofstream output(unfinished, std::ios::binary | std::ios::trunc);
  output << now(CLOCK_BOOTTIME) << ' ' << aAnswer.size() << '\n' << aAnswer;
  output.close();
  if (output) {
    std::rename(unfinished.c_str(), aPath.c_str());
  } else {
    ::unlink(unfinished.c_str());
  }
}

}  // namespace

std::string shareStatus(const std::string& aStateFolder, const Limits& aLimits,
                        const std::function<std::string()>& aAsk) {
  const FileLock lock(aStateFolder + "/status.lock");
  if (!lock.isOpen()) {
    return render(problem(500, "GC_WEB_STATE is no folder to write to."));
  }
  const std::string path = aStateFolder + "/status.answer";
  const Clock::time_point end = Clock::now() + aLimits.otherStatus;
  while (true) {
    const bool isLocked = lock.tryLock();
    if (std::optional<std::string> answer = readAnswer(path, aLimits)) {
      return *answer;
    }
    if (isLocked) {
      std::string answer = aAsk();
      keepAnswer(path, answer);
      return answer;
    }
    if (Clock::now() >= end) {
      return render(problem(504, "Somebody else's request for the status has not ended."));
    }
    std::this_thread::sleep_for(cBetweenTries);
  }
}
