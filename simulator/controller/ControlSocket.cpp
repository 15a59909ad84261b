// A socket file outlives a process that was killed: that there is one does not mean it is in use.
#include "ControlSocket.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace simulator {

namespace {

constexpr int cBacklog = 64;

int bindPrivately(int aHandle, const sockaddr_un& aAddress) {
  // From its first moment on the file has no rights for others.
  const mode_t mask = ::umask(0177);
  const int result = ::bind(aHandle, reinterpret_cast<const sockaddr*>(&aAddress), sizeof aAddress);
  const int reason = errno;
  ::umask(mask);
  errno = reason;
  return result;
}

/// Is the file a socket that nobody listens on? Leaves errno as it is when not.
bool isAbandoned(const sockaddr_un& aAddress) {
  const int inUse = errno;
  struct stat status = {};
  if (::lstat(aAddress.sun_path, &status) != 0 || !S_ISSOCK(status.st_mode)) {
    errno = inUse;
    return false;
  }
  const int probe = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  const bool refused =
      ::connect(probe, reinterpret_cast<const sockaddr*>(&aAddress), sizeof aAddress) != 0 &&
      errno == ECONNREFUSED;
  ::close(probe);
  errno = inUse;
  return refused;
}

}  // namespace

ControlSocket::~ControlSocket() {
  // Not a file that somebody else has put in its place.
  struct stat status = {};
  if (!mPath.empty() && ::lstat(mPath.c_str(), &status) == 0 && status.st_dev == mDevice &&
      status.st_ino == mNode) {
    ::unlink(mPath.c_str());
  }
}

int ControlSocket::listen(const std::string& aPath, std::string& error) {
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  if (aPath.empty() || aPath.size() >= sizeof address.sun_path) {
    error = aPath + ": a path of 1 to " + std::to_string(sizeof address.sun_path - 1) +
            " characters expected";
    return -1;
  }
  std::memcpy(address.sun_path, aPath.data(), aPath.size());
  const int handle = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  int result = bindPrivately(handle, address);
  if (result != 0 && errno == EADDRINUSE && isAbandoned(address)) {
    ::unlink(address.sun_path);
    result = bindPrivately(handle, address);
  }
  struct stat status = {};
  if (result != 0 || ::lstat(address.sun_path, &status) != 0 || ::listen(handle, cBacklog) != 0) {
    error = aPath + ": " + std::strerror(errno);
    ::close(handle);
    return -1;
  }
  mPath = aPath;
  mDevice = status.st_dev;
  mNode = status.st_ino;
  return handle;
}

}  // namespace simulator
