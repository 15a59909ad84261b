// Files that must survive a power failure, and their folders.
#include "StoredFile.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <memory>

#include "Descriptor.h"

namespace gateway {

std::string contentOf(int aFile) {
  struct stat state = {};
  if (::fstat(aFile, &state) != 0) {
    return {};
  }
  std::string content(static_cast<std::size_t>(state.st_size), '\0');
  const ssize_t count = ::pread(aFile, content.data(), content.size(), 0);
  content.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  return content;
}

bool writeToDisk(int aFile, const std::string& aContent) {
  return ::write(aFile, aContent.data(), aContent.size()) ==
             static_cast<ssize_t>(aContent.size()) &&
         ::fsync(aFile) == 0;
}

bool syncFolder(const std::string& aPath) {
  const Descriptor folder(::open(aPath.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  return folder.isOpen() && ::fsync(folder.get()) == 0;
}

void makeFolder(const std::string& aPath) {
  if (::mkdir(aPath.c_str(), 0700) == 0) {
    syncFolder(parentOf(aPath));
  }
}

std::string parentOf(const std::string& aPath) {
  const std::size_t slash = aPath.rfind('/');
  if (slash == std::string::npos) {
    return ".";
  }
  return slash == 0 ? "/" : aPath.substr(0, slash);
}

std::vector<std::string> namesIn(const std::string& aPath) {
  std::vector<std::string> names;
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir(aPath.c_str()), ::closedir);
  if (folder != nullptr) {
    while (const dirent* entry = ::readdir(folder.get())) {  // NOLINT(concurrency-mt-unsafe)
      if (entry->d_name[0] != '.') {
        names.emplace_back(entry->d_name);
      }
    }
  }
  return names;
}

}  // namespace gateway
