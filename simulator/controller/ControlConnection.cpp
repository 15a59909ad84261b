// Lines are cut out of what comes in; none is kept that grows too long.
#include "ControlConnection.h"

#include <utility>

#include "Control.h"

namespace simulator {

namespace {

/// The largest answer is the journal; a second one may wait behind it.
constexpr std::size_t cMaxUnsent = 2 * Journal::cMaxOctets + 1'000'000;

}  // namespace

ControlConnection::ControlConnection(ACE_Reactor& aReactor, ACE_HANDLE aHandle,
                                     std::function<void()> aClosed, Simulation& aSimulation)
    : Stream(aReactor, aHandle, cMaxUnsent, std::move(aClosed)), mSimulation(aSimulation) {}

bool ControlConnection::received(const char* aOctets, std::size_t aLength) {
  mReceived.append(aOctets, aLength);
  std::size_t start = 0;
  std::size_t end = mReceived.find('\n');
  while (end != std::string::npos && end - start <= cMaxLine) {
    if (!sendLine(answerControl(mSimulation, mReceived.substr(start, end - start)))) {
      return false;
    }
    start = end + 1;
    end = mReceived.find('\n', start);
  }
  mReceived.erase(0, start);
  if (mReceived.size() <= cMaxLine) {
    return true;
  }
  return sendLine(refuseControl("the line is too long")) && finish();
}

bool ControlConnection::sendLine(const std::string& aLine) {
  const std::string line = aLine + '\n';
  return send(line.data(), line.size());
}

}  // namespace simulator
