// Every call goes one way: decoded, matched with the faults, done, altered, journaled, encoded.
#include "Session.h"

#include <Status.h>

#include <utility>

#include "Alterations.h"
#include "Calls.h"

namespace simulator {

namespace {

constexpr std::uint32_t cCommandMode = 0;
constexpr std::uint32_t cReportMode = 1;

template <class Request>
bool decodeRequest(const wire::Header& aHeader, const char* aBody, Request& request) {
  return wire::decode(aBody, aHeader.bodyLength, request);
}

/// A Disconnect has nothing to say, and may say so with a status.
bool decodeRequest(const wire::Header& aHeader, const char* aBody, wire::StatusReply& request) {
  return aHeader.bodyLength == 0 || wire::decode(aBody, aHeader.bodyLength, request);
}

/// A batch that is done, wholly or in part, comes back with its records, a refused one without.
void keepRecords(const wire::Batch& aRequest, wire::Batch& answer) {
  if (answer.status == eSuccess || answer.status == eBatchIncomplete) {
    answer.records = aRequest.records;
  }
}

template <class Request, class Answer>
void keepRecords(const Request& /*aRequest*/, Answer& /*answer*/) {}

// What the journal tells of a call, besides what it tells of every call.

void describe(JournalEntry& entry, wire::eType /*aCall*/, const wire::ConnectRequest& aRequest,
              const wire::StatusReply& /*aAnswer*/) {
  entry.add("mode", std::uint64_t{aRequest.mode});
  entry.add("client", std::string(aRequest.clientName.c_str(), aRequest.clientName.length()));
}

/// A batch read tells what it was answered, a batch write, and one without answer, what it asked.
void describe(JournalEntry& entry, wire::eType aCall, const wire::Batch& aRequest,
              const wire::Batch& aAnswer) {
  const bool answered = aCall == wire::eType::eRead && !aAnswer.records.empty();
  entry.add("records", answered ? aAnswer.records : aRequest.records);
}

void describe(JournalEntry& entry, wire::eType /*aCall*/, const wire::CommandRequest& aRequest,
              const wire::StatusReply& /*aAnswer*/) {
  entry.add("channel", std::uint64_t{aRequest.channel});
  entry.add("command", std::uint64_t{aRequest.command});
}

void describe(JournalEntry& entry, wire::eType /*aCall*/, const wire::ObjectRequest& aRequest,
              const wire::ObjectReply& /*aAnswer*/) {
  entry.add("number", std::uint64_t{aRequest.number});
}

void describe(JournalEntry& entry, wire::eType /*aCall*/, const wire::ProgramInfoRequest& aRequest,
              const wire::ProgramInfoReply& /*aAnswer*/) {
  entry.add("channel", std::uint64_t{aRequest.channel});
}

void describe(JournalEntry& /*entry*/, wire::eType /*aCall*/, const wire::StatusReply& /*aRequest*/,
              const wire::StatusReply& /*aAnswer*/) {}

}  // namespace

Session::Session(Simulation& aSimulation, const std::string& aPeer, std::uint64_t aNumber)
    : mSimulation(aSimulation), mPeer(aPeer), mNumber(aNumber) {}

Session::~Session() {
  if (isConnected()) {
    --mSimulation.clients;
    JournalEntry entry;
    introduce(entry, "Lost");
    mSimulation.journal.write(entry.finish());
  }
}

bool Session::isRefused() {
  if (!mSimulation.faults.matchAccepted()) {
    return false;
  }
  JournalEntry entry;
  introduce(entry, "Lost");
  entry.add("fault", std::string("refuse"));
  mSimulation.journal.write(entry.finish());
  return true;
}

Reply Session::serve(const wire::Header& aHeader, const char* aBody) {
  Reply closing;
  closing.close = true;
  if (isConnected() == (aHeader.type == wire::eType::eConnect)) {
    return closing;  // the first call, and no other, is Connect
  }
  switch (aHeader.type) {
    case wire::eType::eConnect:
      return exchange(aHeader, aBody, &Session::connect);
    case wire::eType::eRead:
      return exchange(aHeader, aBody, &Session::read);
    case wire::eType::eWrite:
      return exchange(aHeader, aBody, &Session::write);
    case wire::eType::eCommand:
      return exchange(aHeader, aBody, &Session::command);
    case wire::eType::eObject:
      return exchange(aHeader, aBody, &Session::object);
    case wire::eType::eProgramInfo:
      return exchange(aHeader, aBody, &Session::programInfo);
    case wire::eType::eDisconnect:
      return exchange(aHeader, aBody, &Session::disconnect);
  }
  Reply unknown;
  wire::StatusReply answer;
  answer.status = eUnknownMessage;
  unknown.octets = wire::encode(aHeader.type, aHeader.sequence, answer);
  return unknown;
}

template <class Request, class Answer>
Reply Session::exchange(const wire::Header& aHeader, const char* aBody,
                        void (Session::*perform)(const Request&, Answer&)) {
  Reply reply;
  Request request;
  if (!decodeRequest(aHeader, aBody, request)) {
    reply.close = true;
    return reply;
  }
  ++mSimulation.calls;
  const std::optional<Fault> fault = mSimulation.faults.match(aHeader.type);
  JournalEntry entry;
  introduce(entry, callName(aHeader.type));
  Answer answer;
  std::optional<std::uint32_t> status;
  if (!fault || takesEffect(*fault)) {
    (this->*perform)(request, answer);
    status = answer.status;
    reply.close = aHeader.type == wire::eType::eDisconnect || status == eTooManyConnections;
  } else {
    status = statusInstead(*fault);
    answer.status = status.value_or(eSuccess);
    keepRecords(request, answer);
  }
  if (fault) {
    alter(*fault, request, answer);
    status = status ? answer.status : status;
    entry.add("fault", std::string(fault->name));
  }
  if (status) {
    entry.add("status", std::uint64_t{*status});
  }
  describe(entry, aHeader.type, request, answer);
  mSimulation.journal.write(entry.finish());
  reply.octets = wire::encode(aHeader.type, aHeader.sequence, answer);
  if (fault) {
    alter(*fault, reply);
  }
  return reply;
}

void Session::connect(const wire::ConnectRequest& aRequest, wire::StatusReply& answer) {
  if (aRequest.mode != cCommandMode && aRequest.mode != cReportMode) {
    answer.status = eModeUnknown;
  } else if (mSimulation.clients >= Simulation::cMaxClients) {
    answer.status = eTooManyConnections;
  } else {
    mMode = aRequest.mode;
    ++mSimulation.clients;
  }
}

void Session::read(const wire::Batch& aRequest, wire::Batch& answer) {
  answer.records = aRequest.records;
  answer.status = mSimulation.instrument->read(mSimulation.clock.now(), answer.records);
}

void Session::write(const wire::Batch& aRequest, wire::Batch& answer) {
  answer.status = eNotPermitted;
  if (mMode == cCommandMode) {
    answer.status = mSimulation.instrument->write(mSimulation.clock.now(), aRequest.records);
  }
  keepRecords(aRequest, answer);
}

void Session::command(const wire::CommandRequest& aRequest, wire::StatusReply& answer) {
  answer.status = eNotPermitted;
  if (mMode == cCommandMode) {
    answer.status = mSimulation.instrument->command(mSimulation.clock.now(), aRequest.channel,
                                                    aRequest.command);
  }
}

void Session::object(const wire::ObjectRequest& aRequest, wire::ObjectReply& answer) {
  answer.status =
      mSimulation.instrument->object(aRequest.number, answer.className, answer.contents);
}

void Session::programInfo(const wire::ProgramInfoRequest& aRequest,
                          wire::ProgramInfoReply& answer) {
  answer.status =
      mSimulation.instrument->programInfo(aRequest.channel, answer.first, answer.second);
}

void Session::disconnect(const wire::StatusReply& /*aRequest*/, wire::StatusReply& /*answer*/) {
  mMode.reset();
  --mSimulation.clients;
}

void Session::introduce(JournalEntry& entry, const char* aCall) const {
  entry.add("time", mSimulation.clock.now());
  entry.add("peer", mPeer);
  entry.add("connection", mNumber);
  if (mMode) {
    entry.add("mode", std::uint64_t{*mMode});
  }
  entry.add("call", std::string(aCall));
}

}  // namespace simulator
