// Non-blocking IPv4 sockets with deadlines.
#include "Connection.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace client {

namespace {

using std::chrono::steady_clock;

sockaddr_in socketAddress(std::uint32_t aAddress) {
  const unsigned char octets[] = {
      static_cast<unsigned char>(aAddress), static_cast<unsigned char>(aAddress >> 8),
      static_cast<unsigned char>(aAddress >> 16), static_cast<unsigned char>(aAddress >> 24)};
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(wire::cPort);
  static_assert(sizeof octets == sizeof address.sin_addr);
  std::memcpy(&address.sin_addr, octets, sizeof octets);
  return address;
}

}  // namespace

eStatus Connection::open(std::uint32_t aAddress) {
  close();
  const Deadline deadline = steady_clock::now() + mLimits.connect;
  mSocket = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  const int on = 1;
  ::setsockopt(mSocket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  const sockaddr_in address = socketAddress(aAddress);
  int error = 0;
  if (::connect(mSocket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    error = errno;
  }
  if (error == EINPROGRESS) {
    if (wait(POLLOUT, deadline)) {
      socklen_t size = sizeof error;
      ::getsockopt(mSocket, SOL_SOCKET, SO_ERROR, &error, &size);
    } else {
      error = ETIMEDOUT;
    }
  }
  if (error == 0) {
    return eSuccess;
  }
  close();
  return error == ETIMEDOUT ? eConnectTimeout : eConnectRefused;
}

void Connection::close() {
  if (mSocket >= 0) {
    ::close(mSocket);
    mSocket = -1;
  }
}

eStatus Connection::exchange(wire::eType aType, const wire::Frame& aFrame,
                             std::vector<char>& body) {
  if (mSocket < 0) {
    return eConnectionLost;
  }
  const Deadline deadline = steady_clock::now() + mLimits.answer;
  eStatus status = send(aFrame, deadline);
  std::vector<char> octets(wire::cHeaderSize);
  if (status == eSuccess) {
    status = receive(octets, deadline);
  }
  if (status != eSuccess) {
    return status;
  }
  wire::Header header{};
  if (!wire::decodeHeader(octets.data(), header) || header.type != aType ||
      header.sequence != mSequence) {
    return eAnswerInvalid;
  }
  body.resize(header.bodyLength);
  return receive(body, deadline);
}

eStatus Connection::send(const wire::Frame& aFrame, Deadline aDeadline) {
  std::size_t sent = 0;
  while (sent < aFrame.size()) {
    // A controller that has gone must not end the program with SIGPIPE.
    const ssize_t count = ::send(mSocket, aFrame.data() + sent, aFrame.size() - sent, MSG_NOSIGNAL);
    if (count >= 0) {
      sent += static_cast<std::size_t>(count);
    } else if (errno != EAGAIN && errno != EINTR) {
      return eConnectionLost;
    } else if (!wait(POLLOUT, aDeadline)) {
      return eAnswerTimeout;
    }
  }
  return eSuccess;
}

eStatus Connection::receive(std::vector<char>& octets, Deadline aDeadline) {
  std::size_t received = 0;
  while (received < octets.size()) {
    const ssize_t count = ::recv(mSocket, octets.data() + received, octets.size() - received, 0);
    if (count > 0) {
      received += static_cast<std::size_t>(count);
    } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
      return eConnectionLost;
    } else if (!wait(POLLIN, aDeadline)) {
      return eAnswerTimeout;
    }
  }
  return eSuccess;
}

/// Waits until the socket is ready or has failed. False when the deadline comes first.
bool Connection::wait(short aEvents, Deadline aDeadline) const {
  pollfd descriptor{mSocket, aEvents, 0};
  int ready = 0;
  do {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(aDeadline - steady_clock::now());
    ready = ::poll(&descriptor, 1, static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
  } while (ready < 0 && errno == EINTR);
  return ready != 0;
}

}  // namespace client
