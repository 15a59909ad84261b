// A lock shared by the gateway's processes. The kernel releases it when its holder has ended in any
// way, together with every process that inherited the file.
#pragma once

#include <string>

#include "Descriptor.h"
#include "Settings.h"

namespace gateway {

class FileLock {
 public:
  /// Opens the file, which remains when the lock is released.
  explicit FileLock(const std::string& aPath);

  bool isOpen() const { return mFile.isOpen(); }
  /// The file, for callers that keep data in it.
  int file() const { return mFile.get(); }
  bool tryLock() const;
  /// Releases the lock early, for processes that have inherited the file too.
  void unlock() const;
  /// Waits for the holder; false if the time runs out. Uses SIGALRM and its timer.
  bool lockUntil(Clock::time_point aTime) const;

 private:
  Descriptor mFile;
};

}  // namespace gateway
