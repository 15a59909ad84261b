// What a client may send to the simulated controller: valid frames, invalid ones, and any octets.
#include <Message.h>
#include <Status.h>

#include <optional>

#include "Connection.h"
#include "Input.h"
#include "MakeMessage.h"
#include "Peer.h"
#include "Require.h"

namespace simulator {

namespace {

using wire::eType;

constexpr std::size_t cLongestBody = 262144;

std::uint32_t numberAt(const std::string& aOctets, std::size_t aPlace) {
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    number = number << 8 | static_cast<unsigned char>(aOctets[aPlace + i]);
  }
  return number;
}

std::string octetsOf(std::uint32_t aNumber) {
  std::string octets;
  for (int shift = 24; shift >= 0; shift -= 8) {
    octets += static_cast<char>(aNumber >> shift & 0xFF);
  }
  return octets;
}

template <class Message>
std::string makeFrame(Input& input, eType aType) {
  Message message;
  make(input, message);
  const wire::Frame frame = wire::encode(aType, input.number<std::uint32_t>(), message);
  return {frame.begin(), frame.end()};
}

/// A frame with a valid header and any body, possibly for a message that does not exist.
std::string makeBrokenFrame(Input& input) {
  const std::uint32_t type = input.octet() % 10;
  const std::string body = input.flag() ? input.text() : std::string(input.below(200'000), 'b');
  return "GCW1" + octetsOf(type) + octetsOf(7) + octetsOf(static_cast<std::uint32_t>(body.size())) +
         body;
}

std::string makePart(Input& input) {
  switch (input.below(12)) {
    case 0:
      return input.text();
    case 1:
      return makeBrokenFrame(input);
    case 2:
      return makeFrame<wire::StatusReply>(input, eType::eDisconnect);
    case 3:
      return makeFrame<wire::ObjectRequest>(input, eType::eObject);
    case 4:
      return makeFrame<wire::ProgramInfoRequest>(input, eType::eProgramInfo);
    case 5:
      return makeFrame<wire::ConnectRequest>(input, eType::eConnect);
    case 6:
    case 7:
      return makeFrame<wire::CommandRequest>(input, eType::eCommand);
    case 8:
    case 9:
      return makeFrame<wire::Batch>(input, eType::eWrite);
    default:
      return makeFrame<wire::Batch>(input, eType::eRead);
  }
}

struct Frame {
  std::uint32_t type = 0;
  std::uint32_t sequence = 0;
  std::string body;
};

/// The complete frames at the start of some octets. The remainder goes to `rest`.
std::vector<Frame> takeFrames(const std::string& aOctets, std::string& rest) {
  std::vector<Frame> frames;
  std::size_t place = 0;
  while (aOctets.size() - place >= 16 && aOctets.compare(place, 4, "GCW1") == 0) {
    const std::size_t length = numberAt(aOctets, place + 12);
    if (length > cLongestBody || aOctets.size() - place - 16 < length) {
      break;
    }
    frames.push_back({numberAt(aOctets, place + 4), numberAt(aOctets, place + 8),
                      aOctets.substr(place + 16, length)});
    place += 16 + length;
  }
  rest = aOctets.substr(place);
  return frames;
}

template <class Message>
Message decoded(const Frame& aFrame) {
  Message message;
  require(wire::decode(aFrame.body.data(), aFrame.body.size(), message), "the answer is a message");
  return message;
}

/// A batch is answered record by record, or refused as a whole.
void requireBatch(const Frame& aRequest, const Frame& aAnswer) {
  const auto request = decoded<wire::Batch>(aRequest);
  const auto answer = decoded<wire::Batch>(aAnswer);
  if (answer.status != eSuccess && answer.status != eBatchIncomplete) {
    require(answer.records.empty(), "a refused batch has no records");
    return;
  }
  require(answer.records.size() == request.records.size(), "every record comes back");
  for (std::size_t i = 0; i < answer.records.size(); ++i) {
    const ParamList& asked = request.records[i];
    const ParamList& told = answer.records[i];
    require(asked.Channel == told.Channel && asked.Method == told.Method &&
                asked.Step == told.Step && asked.ParmID == told.ParmID,
            "every record comes back in its place");
  }
}

void requireAnswer(const Frame& aRequest, const Frame& aAnswer, std::optional<unsigned>& mode) {
  require(aRequest.type == aAnswer.type && aRequest.sequence == aAnswer.sequence,
          "the answer belongs to the request");
  switch (static_cast<eType>(aRequest.type)) {
    case eType::eConnect: {
      const auto request = decoded<wire::ConnectRequest>(aRequest);
      const unsigned status = decoded<wire::StatusReply>(aAnswer).status;
      require(status == (request.mode > 1 ? eModeUnknown : eSuccess), "there are two modes");
      mode = request.mode;
      return;
    }
    case eType::eRead:
      requireBatch(aRequest, aAnswer);
      return;
    case eType::eWrite:
      requireBatch(aRequest, aAnswer);
      require(mode == 0U || decoded<wire::Batch>(aAnswer).status == eNotPermitted,
              "a report connection writes nothing");
      return;
    case eType::eCommand:
      require(mode == 0U || decoded<wire::StatusReply>(aAnswer).status == eNotPermitted,
              "a report connection commands nothing");
      return;
    case eType::eObject:
      decoded<wire::ObjectReply>(aAnswer);
      return;
    case eType::eProgramInfo:
      decoded<wire::ProgramInfoReply>(aAnswer);
      return;
    case eType::eDisconnect:
      require(decoded<wire::StatusReply>(aAnswer).status == eSuccess, "everybody may leave");
      return;
  }
  require(decoded<wire::StatusReply>(aAnswer).status == eUnknownMessage, "what is that?");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aOctets, std::size_t aSize) {
  constexpr const char* cScenarios[] = {"everyday", "everyday", "bare", "error", "warming-up"};
  constexpr std::size_t cParts[] = {1'000'000, 65536, 4096, 17, 1};
  Input input(aOctets, aSize);
  const std::unique_ptr<Simulation> simulation = makeSimulation(input.oneOf(cScenarios));
  std::size_t part = input.oneOf(cParts);
  std::string sent;
  std::string received;
  bool closed = false;
  {
    Peer peer([&](ACE_Reactor& reactor, ACE_HANDLE handle, std::function<void()> done) {
      auto connection = std::make_unique<Connection>(reactor, handle, std::move(done), *simulation,
                                                     "127.0.0.1:1", 1);
      require(connection->start(), "a connection starts");
      return connection;
    });
    if (input.octet() < 0xE0) {
      const wire::Frame connect =
          wire::encode(eType::eConnect, 1, wire::ConnectRequest{input.flag() ? 1U : 0U, "fuzz"});
      sent.assign(connect.begin(), connect.end());
    }
    while (input.left() > 0 && sent.size() < 1'000'000) {
      sent += makePart(input);
      if (input.octet() >= 0xE0) {
        simulation->clock.step(input.octet() * 10.0);
      }
    }
    part = std::max(part, sent.size() / 1000);
    peer.send(sent, part);
    received = peer.received();
    closed = peer.isClosed();
  }
  require(simulation->clients == 0, "a client that has disconnected is no longer counted");
  requireBounded(*simulation);

  std::string rest;
  const std::vector<Frame> requests = takeFrames(sent, rest);
  const bool restIsStart =
      rest.size() < 16 || (rest.compare(0, 4, "GCW1") == 0 && numberAt(rest, 12) <= cLongestBody);
  std::string tail;
  const std::vector<Frame> answers = takeFrames(received, tail);
  require(tail.empty(), "answers are whole frames", tail);
  require(answers.size() <= requests.size(), "nothing is said without being asked");
  require(closed || (answers.size() == requests.size() && restIsStart),
          "every request is answered, or the connection closed");
  std::optional<unsigned> mode;
  for (std::size_t i = 0; i < answers.size(); ++i) {
    requireAnswer(requests[i], answers[i], mode);
  }
  return 0;
}

}  // namespace simulator
