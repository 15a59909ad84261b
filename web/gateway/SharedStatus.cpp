// One run of the tool for all clients that request the status at about the same time.
#include "SharedStatus.h"

#include <sys/stat.h>
#include <unistd.h>

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <optional>
#include <system_error>

#include "FileLock.h"

namespace gateway {

namespace {

// Controllers will run beyond the range of 32-bit dates.
static_assert(sizeof(time_t) >= 8);

std::int64_t millisecondsOf(const timespec& aTime) {
  return static_cast<std::int64_t>(aTime.tv_sec) * 1000 + aTime.tv_nsec / 1000000;
}

std::int64_t timeOf(clockid_t aClock) {
  timespec time = {};
  ::clock_gettime(aClock, &time);
  return millisecondsOf(time);
}

bool isFresh(std::int64_t aAge, const Limits& aLimits) {
  return aAge >= 0 && aAge < aLimits.freshStatus.count();
}

/// The file is a line with the time since boot and the length of the answer, followed by the
/// answer. Its modification time must be recent too: the line alone may date from an earlier boot.
std::optional<std::string> readAnswer(int aFile, const Limits& aLimits,
                                      const std::function<Moment()>& aNow) {
  struct stat file = {};
  if (::fstat(aFile, &file) != 0) {
    return std::nullopt;
  }
  const Moment now = aNow();
  if (!isFresh(now.date - millisecondsOf(file.st_mtim), aLimits)) {
    return std::nullopt;
  }
  std::string text(static_cast<std::size_t>(file.st_size), '\0');
  if (::pread(aFile, text.data(), text.size(), 0) != file.st_size) {
    return std::nullopt;
  }
  const std::size_t line = text.find('\n');
  if (line == std::string::npos) {
    return std::nullopt;
  }
  std::int64_t written = 0;
  std::size_t length = 0;
  const auto [space, timeFault] = std::from_chars(text.data(), &text[line], written);
  if (timeFault != std::errc() || *space != ' ' || written < 0) {
    return std::nullopt;
  }
  const auto [end, lengthFault] = std::from_chars(space + 1, &text[line], length);
  if (lengthFault != std::errc() || end != &text[line] || length != text.size() - line - 1) {
    return std::nullopt;
  }
  const std::int64_t age = now.sinceStart - written;
  if (!isFresh(age, aLimits)) {
    return std::nullopt;
  }
  return "Age: " + std::to_string(age / 1000) + "\r\n" + text.substr(line + 1);
}

/// Only the holder of the lock writes. A concurrent reader finds fewer octets than the line says,
/// as it does if the answer could not be stored completely, and does not use them.
void keepAnswer(int aFile, const std::string& aAnswer, const Moment& aNow) {
  const std::string line =
      std::to_string(aNow.sinceStart) + ' ' + std::to_string(aAnswer.size()) + '\n';
  // Not to zero: some file systems then flush the file to disk at once.
  if (::ftruncate(aFile, 1) == 0) {
    const std::string text = line + aAnswer;
    static_cast<void>(::pwrite(aFile, text.data(), text.size(), 0));
  }
}

}  // namespace

Moment momentNow() {
  return {timeOf(CLOCK_BOOTTIME), timeOf(CLOCK_REALTIME)};
}

std::string shareStatus(const std::string& aStateFolder, const Limits& aLimits,
                        const std::function<std::string()>& aAsk,
                        const std::function<Moment()>& aNow) {
  const FileLock lock(aStateFolder + "/status.answer");
  if (!lock.isOpen()) {
    return render(problem(500, "The folder GC_WEB_STATE is not writable."));
  }
  bool isLocked = lock.tryLock();
  std::optional<std::string> answer = readAnswer(lock.file(), aLimits, aNow);
  if (!answer && !isLocked) {
    isLocked = lock.lockUntil(Clock::now() + aLimits.otherStatus);
    answer = readAnswer(lock.file(), aLimits, aNow);
  }
  if (answer) {
    return *answer;
  }
  if (!isLocked) {
    return render(problem(504, "Another request for the status has not finished yet."));
  }
  answer = aAsk();
  keepAnswer(lock.file(), *answer, aNow());
  return *answer;
}

}  // namespace gateway
