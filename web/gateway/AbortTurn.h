// Serialises aborts of the same kind, and lets those that waited share an answer.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "FileLock.h"

namespace gateway {

/// Lets a later abort see that a command has begun in the meantime. `aCommands`: the commands'
/// lock, held. False if that failed.
bool markCommandBegun(const FileLock& aCommands);

/// Created when an abort is requested. Its lock tells which kind of abort it is.
class AbortTurn {
 public:
  /// `aCommands`: the lock of the other commands; it is never waited for.
  AbortTurn(const FileLock& aAborts, const FileLock& aCommands);

  /// The answer of an abort that ended while this one waited for the lock, if it stopped everything
  /// that this one would stop: no other command was running when it began, and none has begun
  /// since.
  std::optional<std::string> sharedAnswer() const;
  /// Call once this abort holds the lock, before the tool is started.
  void begin();
  /// Leaves the rendered answer for those who wait.
  void share(const std::string& aAnswer) const;

 private:
  const FileLock& mAborts;
  const FileLock& mCommands;
  std::int64_t mAsked;
  std::int64_t mLastCommand = 0;
  bool mIsAlone = false;
};

}  // namespace gateway
