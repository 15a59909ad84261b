// The alarm rows: what they watch, and when they trigger.
#pragma once

#include <cstdint>

#include "StoredValues.h"

namespace simulator::model {

/// What happens in a moment and can set off alarms.
enum class eEvent { eVerificationFailed, eStartRefused };

/// What alarms watch.
struct Conditions {
  int state;  ///< that the instrument shows
  double cabinetTemp;
  double
      ambientPressure;  ///< itself, not a reading: near a limit, noise would trigger now and then
};

/// Rows and what has triggered are stored values. A row that has triggered stays so until it is
/// reset.
class Alarms {
 public:
  explicit Alarms(StoredValues& aStored) : mStored(aStored) {}

  /// Triggers each row whose condition holds and whose sample type is `aRunType`.
  void watch(const Conditions& aConditions, int aRunType);

  /// Triggers each row that watches for an event and whose sample type is `aRunType`.
  void signal(eEvent aEvent, int aRunType);

  /// Whether any alarm is on.
  bool isOn() const;

  /// Takes all rows back.
  void reset();

 private:
  template <typename Predicate>
  void trigger(int aRunType, Predicate aPredicate);

  bool isFor(std::uint32_t aStep, int aRunType) const;
  int storedInt(eParam aParam, std::uint32_t aStep) const;

  StoredValues& mStored;
};

}  // namespace simulator::model
