// A file that exists only in memory, with a name under which it can be opened.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "Require.h"

class MemoryFile {
 public:
  explicit MemoryFile(const std::string& aContent) : mDescriptor(::memfd_create("input", 0)) {
    const ssize_t written = ::write(mDescriptor, aContent.data(), aContent.size());
    require(written == static_cast<ssize_t>(aContent.size()), "a file in memory is written");
  }
  ~MemoryFile() { ::close(mDescriptor); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  std::string name() const { return "/proc/self/fd/" + std::to_string(mDescriptor); }

 private:
  int mDescriptor;
};
