// What the simulated instrument does as time passes: its states, its runs, its measured values.
#pragma once

#include <rapidjson/document.h>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "Measurement.h"
#include "Parameters.h"
#include "StateCodes.h"

namespace model {

struct MeasuredRow;

/// All values are of the time that advance() was last given. Between two changes everything is a
/// function of time; what changes by itself does so at times known beforehand. So it does not
/// matter how often, or when, anybody asks.
class Behaviour {
 public:
  /// `aParameters`: a scenario's values by name; one that is missing starts at 0, a measured one at
  /// what it follows.
  Behaviour(const rapidjson::Value& aParameters, std::uint32_t aSeed);

  /// Goes on to a time, in seconds; one in the past changes nothing.
  void advance(double aNow);

  /// A parameter as the instrument shows it; whole and within 32 bits for an integer one.
  double value(std::size_t aSlot) const;

  /// The state that the instrument shows, which is the one that decides what is allowed.
  int state() const;

  /// Whether the part that a parameter belongs to (channel, sample line) is there.
  bool isFitted(std::size_t aSlot) const;

  /// Changes a setting, as a client does.
  void write(std::size_t aSlot, double aValue);

  /// Changes any parameter, as an operator of the simulation does. A computed one is held until the
  /// instrument next changes its state of its own accord or at a client's request.
  void set(std::size_t aSlot, double aValue);

  // What the commands do; whether the state allows it is the caller's to check.
  void startRun();
  void abortRun();
  void stopAutomation();

 private:
  /// What the instrument is doing, and until when it does so by itself.
  struct Phase {
    int state;
    int automation;
    double since;
    double until;
  };
  /// A measured parameter, and the one that it follows.
  struct Measured {
    const MeasuredRow* row;
    std::size_t slot;
    std::size_t followed;
    Lag lag;
  };

  double stored(eParam aParam, std::uint32_t aMember = 1) const;
  double runTime() const;
  Phase firstPhase() const;
  Phase idlePhase() const;
  void enter(const Phase& aPhase);
  void change(std::size_t aSlot, double aValue);
  void finishPhase();
  double settledAt() const;
  double measure(const Measured& aMeasured) const;

  std::uint32_t mSeed;
  double mNow = 0.0;
  std::array<double, cSlots> mValues{};
  std::array<std::optional<double>, cSlots> mHeld{};
  std::vector<Measured> mMeasured;
  Phase mPhase;
};

}  // namespace model
