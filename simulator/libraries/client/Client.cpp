// Stand-in of the instrument client library: each call is one request over TCP and its answer.
#include <InstrumentClient.h>
#include <RemoteObjects.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "CloneFactoryAccess.h"
#include "Connection.h"

namespace {

using client::Connection;

constexpr std::uint32_t cFirstMulticast = 224;  // first octet; reserved addresses lie above

/// What exists between startupGC and shutdownGC.
struct Library {
  std::uint32_t address = 0;
  /// A handle is a position, counted from 1. A closed connection leaves its place empty: its handle
  /// never comes to mean another one.
  std::vector<std::unique_ptr<Connection>> connections;
  /// Everything that ReadObject handed out; the callers never delete it.
  std::vector<std::unique_ptr<RemoteObject>> objects;
};

/// Null while not started. Made on first use, so that loading the library costs nothing; what a
/// program leaves open is closed and freed when it ends.
std::unique_ptr<Library>& library() {
  static std::unique_ptr<Library> instance;
  return instance;
}

/// Finds the connection of a handle.
eStatus findConnection(unsigned long aHandle, Connection*& connection) {
  if (library() == nullptr) {
    return eLibraryNotStarted;
  }
  const std::vector<std::unique_ptr<Connection>>& connections = library()->connections;
  if (aHandle == 0 || aHandle > connections.size() || connections[aHandle - 1] == nullptr) {
    return eHandleUnknown;
  }
  connection = connections[aHandle - 1].get();
  return eSuccess;
}

/// Whether the 32 bits of a message hold the value.
bool fits(unsigned long value) {
  return static_cast<std::uint32_t>(value) == value;
}

std::uint32_t narrow(unsigned long value) {
  return static_cast<std::uint32_t>(value);
}

/// A batch of either direction. The caller's records change only when as many come back.
unsigned long transfer(wire::eType aType, unsigned long handle, ParamList* records,
                       unsigned long count) {
  Connection* connection = nullptr;
  if (const eStatus status = findConnection(handle, connection)) {
    return status;
  }
  if (records == nullptr || count > wire::cMaxRecords) {
    return eArgumentInvalid;
  }
  const wire::Batch request{eSuccess, {records, records + count}};
  wire::Batch reply;
  if (const eStatus status = connection->call(aType, request, reply)) {
    return status;
  }
  // Only a refusal may come back without its records.
  const bool refused =
      reply.records.empty() && reply.status != eSuccess && reply.status != eBatchIncomplete;
  if (reply.records.size() != count && !refused) {
    connection->close();
    return eAnswerInvalid;
  }
  std::copy(reply.records.begin(), reply.records.end(), records);
  return reply.status;
}

}  // namespace

unsigned long startupGC(long, long address, long, long, long, const char*) {
  if (library() != nullptr) {
    return eLibraryStarted;
  }
  // A long of 32 bits holds the addresses from 128 in the last octet on as negative values.
  const auto bits = static_cast<std::uint32_t>(address);
  const bool isAddress =
      address == static_cast<long>(bits) || address == static_cast<std::int32_t>(bits);
  const std::uint32_t firstOctet = bits & 0xFF;
  if (!isAddress || firstOctet == 0 || firstOctet >= cFirstMulticast) {
    return eAddressUnusable;
  }
  library() = std::make_unique<Library>();
  library()->address = bits;
  return eSuccess;
}

unsigned long EstablishConnection(unsigned long mode, const char* clientName, const char*,
                                  unsigned long* handle) {
  if (library() == nullptr) {
    return eLibraryNotStarted;
  }
  if (clientName == nullptr || handle == nullptr || !fits(mode)) {
    return eArgumentInvalid;
  }
  auto connection = std::make_unique<Connection>();
  if (const eStatus status = connection->open(library()->address)) {
    return status;
  }
  wire::StatusReply reply;
  const wire::ConnectRequest request{narrow(mode), clientName};
  if (const eStatus status = connection->call(wire::eType::eConnect, request, reply)) {
    return status;
  }
  if (reply.status == eSuccess) {
    library()->connections.push_back(std::move(connection));
    *handle = library()->connections.size();
  }
  return reply.status;
}

unsigned long ReadParamList(unsigned long handle, ParamList* records, unsigned long count) {
  return transfer(wire::eType::eRead, handle, records, count);
}

unsigned long WriteParamList(unsigned long handle, ParamList* records, unsigned long count) {
  return transfer(wire::eType::eWrite, handle, records, count);
}

unsigned long ExecuteCommand(unsigned long handle, unsigned long channel, unsigned long command) {
  Connection* connection = nullptr;
  if (const eStatus status = findConnection(handle, connection)) {
    return status;
  }
  if (!fits(channel) || !fits(command)) {
    return eArgumentInvalid;
  }
  const wire::CommandRequest request{narrow(channel), narrow(command)};
  wire::StatusReply reply;
  const eStatus status = connection->call(wire::eType::eCommand, request, reply);
  return status != eSuccess ? status : reply.status;
}

unsigned long ReadObject(unsigned long handle, unsigned long number, RemoteObject*& object) {
  Connection* connection = nullptr;
  if (const eStatus status = findConnection(handle, connection)) {
    return status;
  }
  if (!fits(number)) {
    return eArgumentInvalid;
  }
  wire::ObjectReply reply;
  if (const eStatus status =
          connection->call(wire::eType::eObject, wire::ObjectRequest{narrow(number)}, reply)) {
    return status;
  }
  if (reply.status != eSuccess) {
    return reply.status;
  }
  std::unique_ptr<RemoteObject> created = CloneFactoryAccess::create(reply.className.c_str());
  if (created == nullptr) {
    return eClassNotRegistered;
  }
  ACE_InputCDR stream(reply.contents.data(), reply.contents.size(), ACE_CDR::BYTE_ORDER_BIG_ENDIAN);
  if (reply.contents.empty() || !created->load(stream) || stream.length() != 0) {
    connection->close();
    return eAnswerInvalid;
  }
  object = created.get();
  library()->objects.push_back(std::move(created));
  return eSuccess;
}

unsigned long ReadProgramInfo(unsigned long handle, unsigned long first, unsigned long channel,
                              unsigned long third, unsigned long* firstValue,
                              unsigned long* secondValue) {
  Connection* connection = nullptr;
  if (const eStatus status = findConnection(handle, connection)) {
    return status;
  }
  if (firstValue == nullptr || secondValue == nullptr || !fits(first) || !fits(channel) ||
      !fits(third)) {
    return eArgumentInvalid;
  }
  const wire::ProgramInfoRequest request{narrow(first), narrow(channel), narrow(third)};
  wire::ProgramInfoReply reply;
  if (const eStatus status = connection->call(wire::eType::eProgramInfo, request, reply)) {
    return status;
  }
  if (reply.status != eSuccess) {
    return reply.status;
  }
  const auto firstAnswer = static_cast<unsigned long>(reply.first);
  const auto secondAnswer = static_cast<unsigned long>(reply.second);
  if (firstAnswer != reply.first || secondAnswer != reply.second) {
    connection->close();
    return eAnswerInvalid;
  }
  *firstValue = firstAnswer;
  *secondValue = secondAnswer;
  return eSuccess;
}

unsigned long BreakConnection(unsigned long handle) {
  Connection* connection = nullptr;
  if (const eStatus status = findConnection(handle, connection)) {
    return status;
  }
  wire::StatusReply reply;
  const eStatus status = connection->call(wire::eType::eDisconnect, wire::StatusReply(), reply);
  library()->connections[handle - 1].reset();
  return status != eSuccess ? status : reply.status;
}

unsigned long shutdownGC() {
  if (library() == nullptr) {
    return eLibraryNotStarted;
  }
  library().reset();
  return eSuccess;
}
