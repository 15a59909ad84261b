// The messages of the connection: any octets are decoded, any message is encoded and decoded again.
#include <Message.h>
#include <ObjectTexts.h>

#include <algorithm>
#include <memory>
#include <type_traits>

#include "MakeMessage.h"
#include "Require.h"

namespace {

using wire::eType;

/// Whether padding of any content comes before a field.
template <class Message>
constexpr bool cHasPadding =
    std::is_same_v<Message, wire::ObjectReply> || std::is_same_v<Message, wire::ProgramInfoReply>;

/// The octets at the end of a separate heap block, so that reads beyond them are detected.
template <class Message>
bool decodeAt(const std::string& aBody, std::size_t aAlignment, Message& message) {
  const std::unique_ptr<char[]> block(new char[aAlignment + aBody.size()]);
  aBody.copy(block.get() + aAlignment, aBody.size());
  return wire::decode(block.get() + aAlignment, aBody.size(), message);
}

/// Two messages are equal if their octets are, which holds for NaNs too.
template <class Message>
void requireRoundTrip(const Message& aMessage, std::size_t aAlignment) {
  constexpr std::uint32_t cSequence = 0x81020304;
  const wire::Frame frame = wire::encode(eType::eObject, cSequence, aMessage);
  require(frame.size() >= wire::cHeaderSize, "a message within its bounds is encoded");
  wire::Header header{};
  require(wire::decodeHeader(frame.data(), header), "its header is valid");
  require(header.type == eType::eObject && header.sequence == cSequence &&
              header.bodyLength == frame.size() - wire::cHeaderSize,
          "its header has the type and sequence");
  const std::string body(frame.begin() + wire::cHeaderSize, frame.end());
  Message decoded;
  require(decodeAt(body, aAlignment, decoded), "an encoded message is decoded");
  require(wire::encode(eType::eObject, cSequence, decoded) == frame, "as it was encoded");
  require(isSame(decoded, aMessage), "as the same message");
  Message cut;
  require(!decodeAt(body.substr(0, body.size() - 1), aAlignment, cut),
          "a truncated message is rejected");
  require(!decodeAt(body + 'x', aAlignment, cut), "a message with trailing octets is rejected");
}

template <class Message>
void fuzzMessage(Input& input) {
  const std::size_t alignment = input.below(8);
  if (input.flag()) {
    Message message;
    make(input, message);
    requireRoundTrip(message, alignment);
    return;
  }
  const std::string body = input.rest();
  Message message;
  if (decodeAt(body, alignment, message)) {
    requireRoundTrip(message, alignment);
    const wire::Frame frame = wire::encode(eType::eObject, 0, message);
    require(cHasPadding<Message> || std::equal(frame.begin() + wire::cHeaderSize, frame.end(),
                                               body.begin(), body.end()),
            "a message has one form");
  }
}

void fuzzTexts(Input& input) {
  const std::string octets = input.rest();
  ACE_InputCDR stream(octets.data(), octets.size());
  ACE_CString text;
  while (wire::readText(stream, text)) {
    require(text.length() <= wire::cMaxText, "a text is within its bound");
    const std::string same(text.fast_rep(), text.length());
    const std::vector<char> contents = wire::marshalTexts(&same, 1);
    require(std::equal(contents.begin(), contents.end(), stream.rd_ptr() - contents.size()),
            "a text has one form");
    ACE_InputCDR again(contents.data(), contents.size());
    ACE_CString back;
    require(wire::readText(again, back) && back == text && again.length() == 0,
            "a text survives the round trip");
  }
}

void fuzzHeader(Input& input) {
  std::string octets = input.rest();
  octets.resize(wire::cHeaderSize);
  wire::Header header{};
  const bool good = wire::decodeHeader(octets.data(), header);
  require(!good || (octets.compare(0, 4, "GCW1") == 0 && header.bodyLength <= wire::cMaxBody),
          "a header is within its bound");
}

constexpr void (*cTargets[])(Input&) = {
    &fuzzHeader,
    &fuzzTexts,
    &fuzzMessage<wire::ConnectRequest>,
    &fuzzMessage<wire::Batch>,
    &fuzzMessage<wire::CommandRequest>,
    &fuzzMessage<wire::ObjectRequest>,
    &fuzzMessage<wire::ObjectReply>,
    &fuzzMessage<wire::ProgramInfoRequest>,
    &fuzzMessage<wire::ProgramInfoReply>,
    &fuzzMessage<wire::StatusReply>,
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aOctets, std::size_t aSize) {
  Input input(aOctets, aSize);
  input.oneOf(cTargets)(input);
  return 0;
}
