// The Unix socket that the remote control listens on.
#pragma once

#include <sys/types.h>

#include <string>

namespace simulator {

/// Owns the socket's file, which goes when this does.
class ControlSocket {
 public:
  ControlSocket() = default;
  ~ControlSocket();
  ControlSocket(const ControlSocket&) = delete;
  ControlSocket& operator=(const ControlSocket&) = delete;

  /// Makes a socket that only its owner can open, and returns its listening handle, which is the
  /// caller's. A file that nobody listens on any more is replaced. Returns -1, with one line in
  /// `error`, when somebody does, or something else is in the way.
  int listen(const std::string& aPath, std::string& error);

 private:
  std::string mPath;  ///< empty until the file is ours
  dev_t mDevice = 0;
  ino_t mNode = 0;
};

}  // namespace simulator
