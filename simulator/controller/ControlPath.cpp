// The folder under /tmp is checked before it is used: anyone may have made it.
#include "ControlPath.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace simulator {

namespace {

std::string ownFolder() {
  return "/tmp/gc-sim-" + std::to_string(::getuid());
}

}  // namespace

std::string defaultControlPath(const std::string& aAddress) {
  const char* runtime = std::getenv("XDG_RUNTIME_DIR");
  const std::string folder = runtime != nullptr && *runtime == '/' ? runtime : ownFolder();
  return folder + "/gc-sim-" + aAddress + ".sock";
}

bool prepareControlFolder(const std::string& aPath, std::string& error) {
  const std::string folder = ownFolder();
  return aPath.compare(0, folder.size() + 1, folder + '/') != 0 || makePrivateFolder(folder, error);
}

bool makePrivateFolder(const std::string& aFolder, std::string& error) {
  struct stat status = {};
  if ((::mkdir(aFolder.c_str(), 0700) != 0 && errno != EEXIST) ||
      ::lstat(aFolder.c_str(), &status) != 0) {
    error = aFolder + ": " + std::strerror(errno);
    return false;
  }
  if (!S_ISDIR(status.st_mode) || status.st_uid != ::getuid() || (status.st_mode & 0077) != 0) {
    error = aFolder + ": not a folder that only its user can enter";
    return false;
  }
  return true;
}

}  // namespace simulator
