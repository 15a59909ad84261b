// A pair of sockets, and a reactor that handles pending events and never waits.
#include "Peer.h"

#include <ace/Dev_Poll_Reactor.h>
#include <ace/Reactor.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <map>

#include "Require.h"

namespace simulator {

namespace {

ACE_Reactor& reactor() {
  static ACE_Reactor instance(new ACE_Dev_Poll_Reactor(64, true), true);
  return instance;
}

const Scenario& shippedScenario(const std::string& aName) {
  static std::map<std::string, Scenario> scenarios;
  Scenario& scenario = scenarios[aName];
  std::string error;
  require(!scenario.name.empty() || loadScenario(aName, scenario, error), "a scenario loads",
          error);
  return scenario;
}

}  // namespace

std::unique_ptr<Simulation> makeSimulation(const std::string& aScenario) {
  auto simulation = std::make_unique<Simulation>();
  simulation->clock.pause();
  simulation->clock.reset();
  simulation->instrument =
      std::make_unique<Instrument>(shippedScenario(aScenario), simulation->seed);
  return simulation;
}

void requireBounded(const Simulation& aSimulation) {
  const auto& lines = aSimulation.journal.lines();
  require(lines.size() <= Journal::cMaxLines, "the journal keeps its bound");
  std::size_t octets = 0;
  for (const std::string& line : lines) {
    rapidjson::Document document;
    document.Parse<rapidjson::kParseValidateEncodingFlag>(line.data(), line.size());
    require(document.IsObject() && line.find('\n') == std::string::npos,
            "a line of the journal is a JSON object", line);
    octets += line.size();
  }
  require(octets <= Journal::cMaxOctets, "the journal keeps its bound");
  require(aSimulation.clients <= 1, "there is at most one client",
          std::to_string(aSimulation.clients));
}

Peer::Peer(const Make& aMake) {
  int sockets[2] = {-1, -1};
  require(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, sockets) == 0,
          "the sockets are created");
  mSocket = sockets[0];
  mStream = aMake(reactor(), sockets[1], [this] { mStream.reset(); });
}

Peer::~Peer() {
  ::close(mSocket);
  serve();
  // A delayed answer keeps its connection, whose socket is not read until then.
  mStream.reset();
}

void Peer::send(const std::string& aOctets, std::size_t aPart) {
  std::size_t sent = 0;
  while (sent < aOctets.size() && !isClosed()) {
    const std::size_t size = std::min(aPart, aOctets.size() - sent);
    const ssize_t count = ::send(mSocket, aOctets.data() + sent, size, MSG_NOSIGNAL);
    serve();
    if (count > 0) {
      sent += static_cast<std::size_t>(count);
    }
  }
}

void Peer::serve() {
  char octets[65536];
  bool more = true;
  while (more) {
    ACE_Time_Value now = ACE_Time_Value::zero;
    more = reactor().handle_events(now) > 0;
    ssize_t count = 0;
    while ((count = ::recv(mSocket, octets, sizeof octets, 0)) > 0) {
      mReceived.append(octets, static_cast<std::size_t>(count));
    }
  }
}

}  // namespace simulator
