// Messages as octets: one list of fields for each message, read and written from the same list.
#include "Message.h"

#include <arpa/inet.h>

#include <cstring>
#include <tuple>

#include "NetworkOrder.h"
#include "ObjectTexts.h"

namespace wire {

namespace {

// The fields of each message in the order in which they cross the connection.
template <class Message>
constexpr int cFields = 0;
template <>
constexpr auto cFields<ParamList> = std::make_tuple(&ParamList::Channel, &ParamList::Method,
                                                    &ParamList::Step, &ParamList::ParmID,
                                                    &ParamList::realvalue, &ParamList::intvalue,
                                                    &ParamList::ServiceStatus);
template <>
constexpr auto cFields<ConnectRequest> = std::make_tuple(&ConnectRequest::mode,
                                                         &ConnectRequest::clientName);
template <>
constexpr auto cFields<Batch> = std::make_tuple(&Batch::status, &Batch::records);
template <>
constexpr auto cFields<CommandRequest> = std::make_tuple(&CommandRequest::channel,
                                                         &CommandRequest::command);
template <>
constexpr auto cFields<ObjectRequest> = std::make_tuple(&ObjectRequest::number);
template <>
constexpr auto cFields<ObjectReply> = std::make_tuple(&ObjectReply::status, &ObjectReply::className,
                                                      &ObjectReply::contents);
template <>
constexpr auto cFields<ProgramInfoRequest> = std::make_tuple(&ProgramInfoRequest::first,
                                                             &ProgramInfoRequest::channel,
                                                             &ProgramInfoRequest::third);
template <>
constexpr auto cFields<ProgramInfoReply> = std::make_tuple(&ProgramInfoReply::status,
                                                           &ProgramInfoReply::first,
                                                           &ProgramInfoReply::second);
template <>
constexpr auto cFields<StatusReply> = std::make_tuple(&StatusReply::status);

/// Octets that a record takes, wherever it stands: eight-octet alignment leaves no padding.
constexpr std::size_t cRecordSize = sizeof(ParamList);

// --- the room that a field needs at most: its octets, its count, padding before both ---

constexpr std::size_t cMaxOverhead = 16;

template <class Number>
std::size_t room(const Number&) {
  return cMaxOverhead;
}
std::size_t room(const ACE_CString& text) {
  return cMaxOverhead + text.length() + 1;
}
template <class Element>
std::size_t room(const std::vector<Element>& elements) {
  return cMaxOverhead + elements.size() * sizeof(Element);
}

// --- writing ---

template <class Message>
bool writeFields(ACE_OutputCDR& stream, const Message& message);

template <class Number>
bool write(ACE_OutputCDR& stream, Number number) {
  return writeNumber(stream, number);
}

bool write(ACE_OutputCDR& stream, const ACE_CString& text) {
  return writeText(stream, {text.fast_rep(), text.length()});
}

bool write(ACE_OutputCDR& stream, const std::vector<char>& octets) {
  const auto count = static_cast<std::uint32_t>(octets.size());
  return octets.size() <= cMaxBody && writeNumber(stream, count) &&
         stream.write_char_array(octets.data(), count);
}

bool write(ACE_OutputCDR& stream, const std::vector<ParamList>& records) {
  if (records.size() > cMaxRecords ||
      !writeNumber(stream, static_cast<std::uint32_t>(records.size()))) {
    return false;
  }
  for (const ParamList& record : records) {
    if (!writeFields(stream, record)) {
      return false;
    }
  }
  return true;
}

template <class Message>
bool writeFields(ACE_OutputCDR& stream, const Message& message) {
  return std::apply([&](auto... field) { return (write(stream, message.*field) && ...); },
                    cFields<Message>);
}

template <class Message>
Frame encodeMessage(eType type, std::uint32_t sequence, const Message& message) {
  const std::size_t maxBody =
      std::apply([&](auto... field) { return (room(message.*field) + ...); }, cFields<Message>);
  // Zeroed, and large enough never to grow: padding would carry whatever the memory held before.
  Frame frame(cHeaderSize + maxBody, '\0');
  ACE_OutputCDR stream(frame.data() + cHeaderSize, maxBody);
  if (!writeFields(stream, message) || stream.length() > cMaxBody) {
    return {};
  }
  const std::uint32_t header[] = {htonl(cMagic), htonl(static_cast<std::uint32_t>(type)),
                                  htonl(sequence),
                                  htonl(static_cast<std::uint32_t>(stream.length()))};
  static_assert(sizeof header == cHeaderSize);
  std::memcpy(frame.data(), header, sizeof header);
  frame.resize(cHeaderSize + stream.length());
  return frame;
}

// --- reading; no memory is reserved for what the stream does not hold ---

template <class Message>
bool readFields(ACE_InputCDR& stream, Message& message);

template <class Number>
bool read(ACE_InputCDR& stream, Number& number) {
  return readNumber(stream, number);
}

bool read(ACE_InputCDR& stream, ACE_CString& text) {
  return readText(stream, text);
}

bool read(ACE_InputCDR& stream, std::vector<char>& octets) {
  std::uint32_t count = 0;
  if (!readNumber(stream, count) || count > stream.length()) {
    return false;
  }
  octets.resize(count);
  return stream.read_char_array(octets.data(), count);
}

bool read(ACE_InputCDR& stream, std::vector<ParamList>& records) {
  std::uint32_t count = 0;
  if (!readNumber(stream, count) || count > cMaxRecords || count * cRecordSize > stream.length()) {
    return false;
  }
  records.resize(count);
  for (ParamList& record : records) {
    if (!readFields(stream, record)) {
      return false;
    }
  }
  return true;
}

template <class Message>
bool readFields(ACE_InputCDR& stream, Message& message) {
  return std::apply([&](auto... field) { return (read(stream, message.*field) && ...); },
                    cFields<Message>);
}

template <class Message>
bool decodeMessage(const char* body, std::size_t length, Message& message) {
  if (length == 0 || length > cMaxBody) {  // no message is empty
    return false;
  }
  // The stream aligns by address, the sender aligned from the body's start.
  Frame aligned;
  if (reinterpret_cast<std::uintptr_t>(body) % ACE_CDR::MAX_ALIGNMENT != 0) {
    aligned.assign(body, body + length);
    body = aligned.data();
  }
  ACE_InputCDR stream(body, length);
  return readFields(stream, message) && stream.length() == 0;
}

}  // namespace

Frame encode(eType type, std::uint32_t sequence, const ConnectRequest& message) {
  return encodeMessage(type, sequence, message);
}
Frame encode(eType type, std::uint32_t sequence, const Batch& message) {
  return encodeMessage(type, sequence, message);
}
Frame encode(eType type, std::uint32_t sequence, const CommandRequest& message) {
  return encodeMessage(type, sequence, message);
}
Frame encode(eType type, std::uint32_t sequence, const ObjectRequest& message) {
  return encodeMessage(type, sequence, message);
}
Frame encode(eType type, std::uint32_t sequence, const ObjectReply& message) {
  return encodeMessage(type, sequence, message);
}
Frame encode(eType type, std::uint32_t sequence, const ProgramInfoRequest& message) {
  return encodeMessage(type, sequence, message);
}
Frame encode(eType type, std::uint32_t sequence, const ProgramInfoReply& message) {
  return encodeMessage(type, sequence, message);
}
Frame encode(eType type, std::uint32_t sequence, const StatusReply& message) {
  return encodeMessage(type, sequence, message);
}

bool decodeHeader(const char* octets, Header& header) {
  std::uint32_t words[cHeaderSize / sizeof(std::uint32_t)];
  std::memcpy(words, octets, sizeof words);
  header.type = static_cast<eType>(ntohl(words[1]));
  header.sequence = ntohl(words[2]);
  header.bodyLength = ntohl(words[3]);
  return ntohl(words[0]) == cMagic && header.bodyLength <= cMaxBody;
}

bool decode(const char* body, std::size_t length, ConnectRequest& message) {
  return decodeMessage(body, length, message);
}
bool decode(const char* body, std::size_t length, Batch& message) {
  return decodeMessage(body, length, message);
}
bool decode(const char* body, std::size_t length, CommandRequest& message) {
  return decodeMessage(body, length, message);
}
bool decode(const char* body, std::size_t length, ObjectRequest& message) {
  return decodeMessage(body, length, message);
}
bool decode(const char* body, std::size_t length, ObjectReply& message) {
  return decodeMessage(body, length, message);
}
bool decode(const char* body, std::size_t length, ProgramInfoRequest& message) {
  return decodeMessage(body, length, message);
}
bool decode(const char* body, std::size_t length, ProgramInfoReply& message) {
  return decodeMessage(body, length, message);
}
bool decode(const char* body, std::size_t length, StatusReply& message) {
  return decodeMessage(body, length, message);
}

}  // namespace wire
