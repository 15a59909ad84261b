// A folder that lives as long as a test.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = std::filesystem::temp_directory_path() / "gc-server-XXXXXX";
    mPath = ::mkdtemp(name.data()) != nullptr ? name : "";
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(mPath, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::string path(const std::string& aName) const { return mPath + '/' + aName; }

 private:
  std::string mPath;
};
