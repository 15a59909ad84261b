// The connection of one remote control: requests and answers, one line each.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "Simulation.h"
#include "Stream.h"

namespace simulator {

class ControlConnection : public Stream {
 public:
  static constexpr std::size_t cMaxLine = 65536;

  ControlConnection(ACE_Reactor& aReactor, ACE_HANDLE aHandle, std::function<void()> aClosed,
                    Simulation& aSimulation);

 protected:
  bool received(const char* aOctets, std::size_t aLength) override;

 private:
  bool sendLine(const std::string& aLine);

  Simulation& mSimulation;
  std::string mReceived;
};

}  // namespace simulator
