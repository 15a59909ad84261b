// A lock between the gateway's processes; the kernel releases it when its holder has ended in any
// way, and with it every process to which the holder has handed the file.
#pragma once

#include <string>

#include "Descriptor.h"
#include "Settings.h"

class FileLock {
 public:
  /// Opens the file, which stays when the lock is gone.
  explicit FileLock(const std::string& aPath);

  bool isOpen() const { return mFile.isOpen(); }
  /// The file, for who keeps something in it.
  int file() const { return mFile.get(); }
  bool tryLock() const;
  /// Before the end of this object, and for processes that have inherited the file too.
  void unlock() const;
  /// Waits for whoever holds it; false when the time is over. Takes the alarm clock for that.
  bool lockUntil(Clock::time_point aTime) const;

 private:
  Descriptor mFile;
};
