// Listeners, the connections that they accept, and the signals that end it all.
#include "Server.h"

#include <ace/Dev_Poll_Reactor.h>
#include <ace/INET_Addr.h>
#include <ace/SOCK_Acceptor.h>
#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

namespace simulator {

namespace {

/// Handles that the reactor has room for; it raises the process's own limit to as many.
constexpr std::size_t cMaxHandles = 1024;

/// Accepted connections whose clients have not said yet who they are. The oldest makes room for a
/// new one: it is sooner a port scanner than a client.
constexpr std::size_t cMaxSilent = 256;
constexpr std::size_t cMaxControls = 64;
constexpr int cBacklog = 1024;
static_assert(Simulation::cMaxClients + cMaxSilent + cMaxControls < cMaxHandles - 64);

/// What the next accepted connection is, or ACE_INVALID_HANDLE when there is none after all.
ACE_HANDLE acceptNext(ACE_HANDLE aListener, sockaddr_in* peer) {
  socklen_t length = sizeof(sockaddr_in);
  return ::accept4(aListener, reinterpret_cast<sockaddr*>(peer),
                   peer != nullptr ? &length : nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
}

std::string toText(const sockaddr_in& aAddress) {
  char text[INET_ADDRSTRLEN] = "";
  ::inet_ntop(AF_INET, &aAddress.sin_addr, text, sizeof text);
  return std::string(text) + ':' + std::to_string(ntohs(aAddress.sin_port));
}

}  // namespace

Watch::Watch(ACE_Reactor& aReactor, std::function<void(ACE_HANDLE)> aReadable)
    : ACE_Event_Handler(&aReactor), mReadable(std::move(aReadable)) {}

Watch::~Watch() {
  if (mHandle != ACE_INVALID_HANDLE) {
    reactor()->remove_handler(mHandle, READ_MASK | DONT_CALL);
    ::close(mHandle);
  }
}

bool Watch::open(ACE_HANDLE aHandle) {
  mHandle = aHandle;
  return mHandle != ACE_INVALID_HANDLE && reactor()->register_handler(this, READ_MASK) == 0;
}

int Watch::handle_input(ACE_HANDLE aHandle) {
  mReadable(aHandle);
  return 0;
}

Server::Server(Simulation& aSimulation)
    : mSimulation(aSimulation),
      mReactor(new ACE_Dev_Poll_Reactor(cMaxHandles, true, nullptr, &mTimers), true),
      mClientWatch(mReactor, [this](ACE_HANDLE aListener) { acceptClient(aListener); }),
      mControlWatch(mReactor, [this](ACE_HANDLE aListener) { acceptControl(aListener); }),
      mSignalWatch(mReactor, [this](ACE_HANDLE) { mStopped = true; }) {}

bool Server::open(const std::string& aAddress, const std::string& aControlPath,
                  std::string& error) {
  if (!mReactor.initialized()) {
    error = std::to_string(cMaxHandles) + " open files expected to be allowed";
    return false;
  }
  return openSignals(error) && openClients(aAddress, error) &&
         mControlWatch.open(mControlSocket.listen(aControlPath, error));
}

bool Server::openSignals(std::string& error) {
  sigset_t stopping;
  sigemptyset(&stopping);
  sigaddset(&stopping, SIGTERM);
  sigaddset(&stopping, SIGINT);
  std::signal(SIGPIPE, SIG_IGN);
  ::sigprocmask(SIG_BLOCK, &stopping, nullptr);
  if (!mSignalWatch.open(::signalfd(-1, &stopping, SFD_NONBLOCK | SFD_CLOEXEC))) {
    error = std::string("signals: ") + std::strerror(errno);
    return false;
  }
  return true;
}

bool Server::openClients(const std::string& aAddress, std::string& error) {
  // Reusing the address lets a new controller start while connections of the last one fade away;
  // it does not let two listen.
  ACE_SOCK_Acceptor acceptor;
  const ACE_INET_Addr address(wire::cPort, aAddress.c_str(), AF_INET);
  if (acceptor.open(address, 1, PF_INET, cBacklog) != 0 || acceptor.enable(ACE_NONBLOCK) != 0 ||
      !mClientWatch.open(acceptor.get_handle())) {
    error = aAddress + ':' + std::to_string(wire::cPort) + ": " + std::strerror(errno);
    return false;
  }
  return true;
}

bool Server::run() {
  while (!mStopped) {
    if (mReactor.handle_events() == -1) {
      return false;
    }
  }
  return true;
}

void Server::acceptClient(ACE_HANDLE aListener) {
  sockaddr_in peer = {};
  const ACE_HANDLE handle = acceptNext(aListener, &peer);
  if (handle == ACE_INVALID_HANDLE) {
    return;
  }
  const int on = 1;
  ::setsockopt(handle, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  dropSilentClient();
  const std::uint64_t number = ++mAcceptedClients;
  auto client = std::make_unique<Connection>(
      mReactor, handle, [this, number] { mClients.erase(number); }, mSimulation, toText(peer),
      number);
  if (client->start()) {
    mClients.emplace(number, std::move(client));
  }
}

void Server::dropSilentClient() {
  const auto isSilent = [](const auto& aClient) { return !aClient.second->isConnected(); };
  if (static_cast<std::size_t>(std::count_if(mClients.begin(), mClients.end(), isSilent)) >=
      cMaxSilent) {
    mClients.erase(std::find_if(mClients.begin(), mClients.end(), isSilent));
  }
}

void Server::acceptControl(ACE_HANDLE aListener) {
  const ACE_HANDLE handle = acceptNext(aListener, nullptr);
  if (handle == ACE_INVALID_HANDLE) {
    return;
  }
  const std::uint64_t number = ++mAcceptedControls;
  auto control = std::make_unique<ControlConnection>(
      mReactor, handle, [this, number] { mControls.erase(number); }, mSimulation);
  if (mControls.size() < cMaxControls && control->open()) {
    mControls.emplace(number, std::move(control));
  }
}

}  // namespace simulator
