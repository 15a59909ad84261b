// One simulated controller as all of its clients share it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "Faults.h"
#include "Instrument.h"
#include "Journal.h"
#include "Scenario.h"
#include "SimClock.h"

namespace simulator {

/// Holds one instrument from load() on.
struct Simulation {
  /// Clients that are connected at the same time; further ones are told so.
  static constexpr std::uint32_t cMaxClients = 256;

  /// Loads a scenario in place of instrument and faults; time starts at 0. False, nothing changed
  /// and one line "FILE: POINTER: reason" in `error`, when it is not fit.
  bool load(const std::string& aNameOrPath, std::string& error);

  std::uint32_t seed = 1;
  SimClock clock;
  Scenario scenario;
  std::unique_ptr<Instrument> instrument;
  FaultList faults;
  Journal journal;
  std::uint32_t clients = 0;  ///< connected now
  std::uint64_t calls = 0;    ///< of all clients since the start
};

}  // namespace simulator
