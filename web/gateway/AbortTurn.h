// What aborts of the same kind share: one of them at a time, and its answer.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "FileLock.h"

/// Makes a later abort know that a command has begun since. `aCommands`: their lock, held. False
/// when that could not be done.
bool markCommandBegun(const FileLock& aCommands);

/// Made when an abort is asked for. Its lock says which kind of abort it is.
class AbortTurn {
 public:
  /// `aCommands`: the lock of the other commands, which is not waited for.
  AbortTurn(const FileLock& aAborts, const FileLock& aCommands);

  /// The answer of an abort that ended while this one waited for the lock, if it stopped all that
  /// this one would stop: no other command was going on when it began or has begun since.
  std::optional<std::string> sharedAnswer() const;
  /// To be called when it is this abort's turn, before the tool is started.
  void begin();
  /// Leaves the rendered answer to those who wait.
  void share(const std::string& aAnswer) const;

 private:
  const FileLock& mAborts;
  const FileLock& mCommands;
  std::int64_t mAsked;
  std::int64_t mLastCommand = 0;
  bool mIsAlone = false;
};
