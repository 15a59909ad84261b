// Frames in, answers out, one at a time and in their order.
#include "Connection.h"

#include <utility>

namespace simulator {

namespace {

/// Some of the largest answers: a client asks, reads the answer and asks again.
constexpr std::size_t cMaxUnsent = 1'000'000;

/// A connection that says nothing is not kept for longer; real seconds.
constexpr double cGreetingSeconds = 5.0;

}  // namespace

Connection::Connection(ACE_Reactor& aReactor, ACE_HANDLE aHandle, std::function<void()> aClosed,
                       Simulation& aSimulation, const std::string& aPeer, std::uint64_t aNumber)
    : Stream(aReactor, aHandle, cMaxUnsent, std::move(aClosed)),
      mSession(aSimulation, aPeer, aNumber) {}

bool Connection::start() {
  if (mSession.isRefused() || !open()) {
    return false;
  }
  startTimer(cGreetingSeconds);
  return true;
}

bool Connection::received(const char* aOctets, std::size_t aLength) {
  return mFrames.append(aOctets, aLength) && serveFrames();
}

bool Connection::timedOut() {
  if (!mHolding) {
    return false;
  }
  mHolding = false;
  startTimer(cGreetingSeconds);
  return answer(mHeld) && serveFrames();
}

bool Connection::serveFrames() {
  wire::Header header{};
  const char* body = nullptr;
  while (!mHolding && !isFinishing()) {
    switch (mFrames.next(header, body)) {
      case FrameAssembler::eNext::eNone:
        return true;
      case FrameAssembler::eNext::eInvalid:
        return false;
      case FrameAssembler::eNext::eFrame:
        break;
    }
    Reply reply = mSession.serve(header, body);
    if (reply.seconds > 0.0) {
      mHeld = std::move(reply);
      mHolding = true;
      startTimer(mHeld.seconds);
    } else if (!answer(reply)) {
      return false;
    }
  }
  return true;
}

bool Connection::answer(const Reply& aReply) {
  if (isConnected() || aReply.hang) {
    stopTimer();
  }
  if (!aReply.octets.empty() && !send(aReply.octets.data(), aReply.octets.size())) {
    return false;
  }
  return !aReply.close || finish();
}

}  // namespace simulator
