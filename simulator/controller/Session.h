// What one client says and what it is answered, apart from sockets.
#pragma once

#include <Message.h>

#include <cstdint>
#include <optional>
#include <string>

#include "Alterations.h"
#include "Journal.h"
#include "Simulation.h"

namespace simulator {

/// One client, from the moment its connection is accepted.
class Session {
 public:
  /// `aPeer` and `aNumber` are for the journal.
  Session(Simulation& aSimulation, const std::string& aPeer, std::uint64_t aNumber);
  /// A client that has not disconnected is lost, says the journal.
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /// Has the client been admitted, and not left yet?
  bool isConnected() const { return mMode.has_value(); }

  /// Serves one frame. Its magic and length have been checked, its type and its body have not.
  Reply serve(const wire::Header& aHeader, const char* aBody);

  /// True, and in the journal, when a fault refuses the connection that has just been accepted.
  bool isRefused();

 private:
  /// Serves one call, which `perform` does.
  template <class Request, class Answer>
  Reply exchange(const wire::Header& aHeader, const char* aBody,
                 void (Session::*perform)(const Request&, Answer&));

  // What the calls do. The answer's status is 0 before.
  void connect(const wire::ConnectRequest& aRequest, wire::StatusReply& answer);
  void read(const wire::Batch& aRequest, wire::Batch& answer);
  void write(const wire::Batch& aRequest, wire::Batch& answer);
  void command(const wire::CommandRequest& aRequest, wire::StatusReply& answer);
  void object(const wire::ObjectRequest& aRequest, wire::ObjectReply& answer);
  void programInfo(const wire::ProgramInfoRequest& aRequest, wire::ProgramInfoReply& answer);
  void disconnect(const wire::StatusReply& aRequest, wire::StatusReply& answer);

  bool mayChange() const;
  /// Tells what the journal tells of every call.
  void introduce(JournalEntry& entry, const char* aCall) const;

  Simulation& mSimulation;
  std::string mPeer;
  std::uint64_t mNumber;
  std::optional<std::uint32_t> mMode;  ///< while connected
};

}  // namespace simulator
