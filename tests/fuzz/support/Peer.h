// The client's end of a connection that the controller's own code serves, in this thread.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "Simulation.h"
#include "Stream.h"

namespace simulator {

/// A simulation of a shipped scenario, with its clock stopped.
std::unique_ptr<Simulation> makeSimulation(const std::string& aScenario);

/// Requires what must hold whatever clients send: bounded storage, and a valid JSON journal.
void requireBounded(const Simulation& aSimulation);

class Peer {
 public:
  /// Creates the server's end and starts it. Everything except streams has been closed.
  using Make = std::function<std::unique_ptr<Stream>(ACE_Reactor& reactor, ACE_HANDLE handle,
                                                     std::function<void()> closed)>;

  explicit Peer(const Make& aMake);
  /// Hangs up, and requires the server to notice.
  ~Peer();
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  /// Whether the server has closed the connection.
  bool isClosed() const { return mStream == nullptr; }

  /// Sends as much as the server accepts, in parts of this size, and lets it answer.
  void send(const std::string& aOctets, std::size_t aPart);
  /// Everything that the server has answered.
  const std::string& received() const { return mReceived; }

 private:
  void serve();

  int mSocket = -1;
  std::unique_ptr<Stream> mStream;
  std::string mReceived;
};

}  // namespace simulator
