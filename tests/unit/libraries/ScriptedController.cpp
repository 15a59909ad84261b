// The scripted controller's sockets.
#include "ScriptedController.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <random>
#include <stdexcept>
#include <utility>

namespace {

/// Waits for input. False if the test is over.
bool waitFor(int aSocket, int aStop) {
  pollfd descriptors[] = {{aSocket, POLLIN, 0}, {aStop, POLLIN, 0}};
  return ::poll(descriptors, 2, -1) > 0 && descriptors[1].revents == 0;
}

bool receive(int aSocket, int aStop, wire::Frame& octets) {
  std::size_t received = 0;
  while (received < octets.size()) {
    if (!waitFor(aSocket, aStop)) {
      return false;
    }
    const ssize_t count = ::recv(aSocket, octets.data() + received, octets.size() - received, 0);
    if (count <= 0) {
      return false;
    }
    received += static_cast<std::size_t>(count);
  }
  return true;
}

/// Sends an answer, until the test is over or the client stops reading.
void send(int aSocket, int aStop, const Answer& aAnswer) {
  const wire::Frame& octets = aAnswer.octets;
  const std::size_t together = std::min(aAnswer.singlyFrom, octets.size());
  ::send(aSocket, octets.data(), together, MSG_NOSIGNAL);
  for (std::size_t i = together; i < octets.size(); ++i) {
    pollfd stop{aStop, POLLIN, 0};
    if (::poll(&stop, 1, static_cast<int>(aAnswer.pause.count())) != 0 ||
        ::send(aSocket, &octets[i], 1, MSG_NOSIGNAL) < 0) {
      return;
    }
  }
}

}  // namespace

int listenOnFreeAddress(int aBacklog, long& address) {
  std::random_device random;
  for (int attempt = 0; attempt < 1000; ++attempt) {
    const std::uint32_t host = 0x7F000001 + (random() & 0x007FFFFF);
    sockaddr_in name{};
    name.sin_family = AF_INET;
    name.sin_port = htons(wire::cPort);
    name.sin_addr.s_addr = htonl(host);
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int on = 1;
    ::setsockopt(listener, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    if (::bind(listener, reinterpret_cast<const sockaddr*>(&name), sizeof name) == 0 &&
        ::listen(listener, aBacklog) == 0) {
      address = static_cast<long>(__builtin_bswap32(host));
      return listener;
    }
    ::close(listener);
  }
  throw std::runtime_error("no free loopback address");
}

ScriptedController::ScriptedController() : mListener(listenOnFreeAddress(8, mAddress)) {
  if (::pipe(mStop) != 0) {
    throw std::runtime_error("no pipe");
  }
  for (const wire::eType type : {wire::eType::eConnect, wire::eType::eDisconnect}) {
    on(type, [](const Request& request) { return answer(request, wire::StatusReply()); });
  }
  mThread = std::thread([this] { serve(); });
}

ScriptedController::~ScriptedController() {
  ::close(mStop[1]);
  mThread.join();
  ::close(mStop[0]);
  ::close(mListener);
}

void ScriptedController::on(wire::eType aType, Script aScript) {
  const std::lock_guard<std::mutex> lock(mMutex);
  mScripts[aType] = std::move(aScript);
}

std::vector<Request> ScriptedController::requests() const {
  const std::lock_guard<std::mutex> lock(mMutex);
  return mRequests;
}

void ScriptedController::serve() {
  while (waitFor(mListener, mStop[0])) {
    const int connection = ::accept4(mListener, nullptr, nullptr, SOCK_CLOEXEC);
    if (connection >= 0) {
      serveConnection(connection);
      ::close(connection);
    }
  }
}

void ScriptedController::serveConnection(int aSocket) {
  Request request{};
  wire::Frame head(wire::cHeaderSize);
  while (receive(aSocket, mStop[0], head) && wire::decodeHeader(head.data(), request.header)) {
    request.body.resize(request.header.bodyLength);
    if (!receive(aSocket, mStop[0], request.body)) {
      return;
    }
    const Answer reply = answerTo(request);
    send(aSocket, mStop[0], reply);
    if (reply.then == Answer::eThen::eHangUp) {
      return;
    }
  }
}

Answer ScriptedController::answerTo(const Request& aRequest) {
  const std::lock_guard<std::mutex> lock(mMutex);
  mRequests.push_back(aRequest);
  const auto script = mScripts.find(aRequest.header.type);
  return script == mScripts.end() ? Answer() : script->second(aRequest);
}
