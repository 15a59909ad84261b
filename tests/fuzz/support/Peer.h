// The other end of a connection that the controller's own code serves, in this thread.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "Simulation.h"
#include "Stream.h"

/// A simulation of a shipped scenario, whose time stands still.
std::unique_ptr<Simulation> makeSimulation(const std::string& aScenario);

/// Requires what holds whatever clients say: the bounds of what is kept, and a journal of JSON.
void requireBounded(const Simulation& aSimulation);

class Peer {
 public:
  /// Makes the server's end, and has it started. Whatever is not a stream has been closed.
  using Make = std::function<std::unique_ptr<Stream>(ACE_Reactor& reactor, ACE_HANDLE handle,
                                                     std::function<void()> closed)>;

  explicit Peer(const Make& aMake);
  /// Hangs up, and requires that the server notices.
  ~Peer();
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  /// Has the server closed the connection?
  bool isClosed() const { return mStream == nullptr; }

  /// Sends as much as the server takes, in parts of this size, and lets it answer.
  void send(const std::string& aOctets, std::size_t aPart);
  /// All that the server has answered.
  const std::string& received() const { return mReceived; }

 private:
  void serve();

  int mSocket = -1;
  std::unique_ptr<Stream> mStream;
  std::string mReceived;
};
