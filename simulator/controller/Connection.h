// The TCP connection of one client.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "FrameAssembler.h"
#include "Session.h"
#include "Stream.h"

namespace simulator {

class Connection : public Stream {
 public:
  /// `aPeer` and `aNumber` are for the journal.
  Connection(ACE_Reactor& aReactor, ACE_HANDLE aHandle, std::function<void()> aClosed,
             Simulation& aSimulation, const std::string& aPeer, std::uint64_t aNumber);

  /// Has the client said who it is?
  bool isConnected() const { return mSession.isConnected(); }

  /// False when the connection is over already: refused by a fault, or not taken by the reactor.
  bool start();

 protected:
  bool received(const char* aOctets, std::size_t aLength) override;
  bool timedOut() override;

 private:
  bool serveFrames();
  bool answer(const Reply& aReply);

  Session mSession;
  FrameAssembler mFrames;
  Reply mHeld;            ///< the answer that a delay holds back
  bool mHolding = false;  ///< further frames wait until it is sent
};

}  // namespace simulator
