// The messages between the stand-in client library and the simulated controller.
//
// A frame is a header of 16 octets and a body. The header is four unsigned 32-bit numbers in
// network order: magic, type, sequence, length of the body. The body is a CDR stream in network
// order, aligned from its own start. Every request is answered by one reply of the same type and
// sequence. Nothing that comes over the connection is believed before it is checked.
#pragma once

#include <InstrumentClient.h>
#include <ace/CDR_Stream.h>
#include <ace/SString.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "ObjectTexts.h"

namespace wire {

/// The one port that controllers listen on.
constexpr std::uint16_t cPort = 20047;

constexpr std::uint32_t cMagic = 0x47435731;  // "GCW1"
constexpr std::size_t cHeaderSize = 16;
constexpr std::uint32_t cMaxRecords = 4096;
constexpr std::uint32_t cMaxBody = 256 * 1024;  ///< more than any message needs

enum class eType : std::uint32_t {
  eConnect = 1,
  eRead = 2,
  eWrite = 3,
  eCommand = 4,
  eObject = 5,
  eProgramInfo = 6,
  eDisconnect = 7,
};

struct Header {
  eType type;
  std::uint32_t sequence;
  std::uint32_t bodyLength;
};

struct ConnectRequest {
  std::uint32_t mode = 0;
  ACE_CString clientName;
};
/// Of eRead and eWrite, requests and replies; in a request the status is 0. A refused batch comes
/// back with its status and no records. A written batch comes back with the service statuses.
struct Batch {
  std::uint32_t status = 0;
  std::vector<ParamList> records;
};
struct CommandRequest {
  std::uint32_t channel = 0;
  std::uint32_t command = 0;
};
struct ObjectRequest {
  std::uint32_t number = 0;
};
/// Contents as the class's own save() wrote them, aligned from their own start (marshalTexts() in
/// ObjectTexts.h makes them without the class); empty with a status other than 0.
struct ObjectReply {
  std::uint32_t status = 0;
  ACE_CString className;
  std::vector<char> contents;
};
struct ProgramInfoRequest {
  std::uint32_t first = 0;
  std::uint32_t channel = 0;
  std::uint32_t third = 0;
};
struct ProgramInfoReply {
  std::uint32_t status = 0;
  std::uint64_t first = 0;
  std::uint64_t second = 0;
};
/// Of eConnect, eCommand and eDisconnect; with status 0 also the request of eDisconnect.
struct StatusReply {
  std::uint32_t status = 0;
};

/// A whole frame, header included. Empty when the message breaks a bound: a text over cMaxText,
/// more than cMaxRecords records, a body over cMaxBody.
using Frame = std::vector<char>;

Frame encode(eType type, std::uint32_t sequence, const ConnectRequest& message);
Frame encode(eType type, std::uint32_t sequence, const Batch& message);
Frame encode(eType type, std::uint32_t sequence, const CommandRequest& message);
Frame encode(eType type, std::uint32_t sequence, const ObjectRequest& message);
Frame encode(eType type, std::uint32_t sequence, const ObjectReply& message);
Frame encode(eType type, std::uint32_t sequence, const ProgramInfoRequest& message);
Frame encode(eType type, std::uint32_t sequence, const ProgramInfoReply& message);
Frame encode(eType type, std::uint32_t sequence, const StatusReply& message);

/// Reads a header of cHeaderSize octets. False for a wrong magic, a length over cMaxBody; the type
/// is not checked here, so that an unknown one can be answered.
bool decodeHeader(const char* octets, Header& header);

// Each reads a body of exactly `length` octets, at any alignment. False, and an unspecified
// message, when it is too short, too long, or holds a count or text over its bound.
bool decode(const char* body, std::size_t length, ConnectRequest& message);
bool decode(const char* body, std::size_t length, Batch& message);
bool decode(const char* body, std::size_t length, CommandRequest& message);
bool decode(const char* body, std::size_t length, ObjectRequest& message);
bool decode(const char* body, std::size_t length, ObjectReply& message);
bool decode(const char* body, std::size_t length, ProgramInfoRequest& message);
bool decode(const char* body, std::size_t length, ProgramInfoReply& message);
bool decode(const char* body, std::size_t length, StatusReply& message);

}  // namespace wire
