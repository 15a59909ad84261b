// The remote control: any lines on its connection, and then a client that sees their effects.
#include <Message.h>

#include "ControlConnection.h"
#include "Input.h"
#include "MakeMessage.h"
#include "Peer.h"
#include "Require.h"
#include "Session.h"

namespace simulator {

namespace {

using wire::eType;

template <class Message>
void serve(Session& session, Input& input, eType aType) {
  Message message;
  make(input, message);
  const wire::Frame frame = wire::encode(aType, 1, message);
  wire::Header header{};
  wire::decodeHeader(frame.data(), header);
  const Reply reply = session.serve(header, frame.data() + wire::cHeaderSize);
  require(!reply.octets.empty() || reply.close || reply.hang,
          "a call is answered, closed, or left hanging by a fault");
  require(reply.seconds >= 0.0 && reply.seconds <= FaultList::cMaxSeconds,
          "a delay is within its bound");
}

void playClient(Simulation& simulation, Input& input) {
  Session session(simulation, "127.0.0.1:1", 1);
  session.isRefused();
  wire::ConnectRequest connect;
  connect.clientName = "fuzz";
  const wire::Frame frame = wire::encode(eType::eConnect, 1, connect);
  wire::Header header{};
  wire::decodeHeader(frame.data(), header);
  session.serve(header, frame.data() + wire::cHeaderSize);
  serve<wire::Batch>(session, input, eType::eRead);
  serve<wire::Batch>(session, input, eType::eWrite);
  serve<wire::CommandRequest>(session, input, eType::eCommand);
  serve<wire::ObjectRequest>(session, input, eType::eObject);
  serve<wire::ProgramInfoRequest>(session, input, eType::eProgramInfo);
}

/// One line per answer: an object that tells whether the verb succeeded and, if not, why not.
std::size_t requireAnswers(const std::string& aReceived) {
  std::size_t lines = 0;
  std::size_t start = 0;
  for (std::size_t end = aReceived.find('\n'); end != std::string::npos;
       end = aReceived.find('\n', start)) {
    const std::string line = aReceived.substr(start, end - start);
    rapidjson::Document answer;
    answer.Parse<rapidjson::kParseValidateEncodingFlag>(line.data(), line.size());
    require(answer.IsObject() && answer.HasMember("ok") && answer["ok"].IsBool(),
            "an answer is an object with a boolean ok", line);
    require(answer["ok"].GetBool() != answer.HasMember("error"), "a refusal gives its reason",
            line);
    start = end + 1;
    ++lines;
  }
  require(start == aReceived.size(), "answers are whole lines", aReceived.substr(start));
  return lines;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aOctets, std::size_t aSize) {
  constexpr std::size_t cMostLines = 12;
  Input input(aOctets, aSize);
  // Requests come before the last empty line, the client's octets after it.
  const std::string all = input.rest();
  const std::size_t empty = std::min(all.rfind("\n\n"), all.size());
  std::string said = all.substr(0, empty);
  const std::string done = all.substr(empty);
  std::size_t lines = 0;
  for (std::size_t place = said.find('\n'); place != std::string::npos;
       place = said.find('\n', place + 1)) {
    if (++lines == cMostLines) {
      said.resize(place);
    }
  }
  said += "\n{\"verb\":\"snapshot\"}\n";
  lines = static_cast<std::size_t>(std::count(said.begin(), said.end(), '\n'));

  const std::unique_ptr<Simulation> simulation = makeSimulation("everyday");
  {
    Peer peer([&](ACE_Reactor& reactor, ACE_HANDLE handle, std::function<void()> closed) {
      auto connection =
          std::make_unique<ControlConnection>(reactor, handle, std::move(closed), *simulation);
      require(connection->open(), "a connection opens");
      return connection;
    });
    peer.send(said, 4096);
    require(!peer.isClosed(), "short lines close nothing");
    require(requireAnswers(peer.received()) == lines, "every line is answered");
  }
  Input rest(reinterpret_cast<const std::uint8_t*>(done.data()), done.size());
  playClient(*simulation, rest);
  requireBounded(*simulation);
  require(simulation->clients == 0, "a client that has disconnected is no longer counted");
  return 0;
}

}  // namespace simulator
