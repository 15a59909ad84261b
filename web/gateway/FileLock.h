// A lock between the gateway's processes; the kernel releases it when its holder ends in any way.
#pragma once

#include <fcntl.h>
#include <sys/file.h>

#include <chrono>
#include <string>

#include "Descriptor.h"

class FileLock {
 public:
  /// Opens the file, which stays when the lock is gone.
  explicit FileLock(const std::string& aPath)
      : mFile(::open(aPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600)) {}

  bool isOpen() const { return mFile.isOpen(); }
  bool tryLock() const { return ::flock(mFile.get(), LOCK_EX | LOCK_NB) == 0; }

 private:
  Descriptor mFile;
};

/// How often a lock that another process holds is tried. There is no wait with a time limit.
constexpr std::chrono::milliseconds cBetweenTries{10};
