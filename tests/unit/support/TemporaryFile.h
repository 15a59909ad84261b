// An input file that exists for the duration of a test.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& aContent)
      : mName(testing::TempDir() + "gc-input-XXXXXX") {
    const int lDescriptor = ::mkstemp(mName.data());
    std::FILE* const lFile = lDescriptor >= 0 ? ::fdopen(lDescriptor, "wb") : nullptr;
    if (lFile == nullptr ||
        std::fwrite(aContent.data(), 1, aContent.size(), lFile) < aContent.size()) {
      ADD_FAILURE() << "Cannot write " << mName;
    }
    if (lFile != nullptr) {
      std::fclose(lFile);
    }
  }
  ~TemporaryFile() { std::remove(mName.c_str()); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  /// The name, in the form for parseFile.
  char* name() { return mName.data(); }

 private:
  std::string mName;
};
