// What the simulated instrument stores: its settings, tables and counters.
#pragma once

#include <rapidjson/document.h>

#include <cstdint>
#include <vector>

#include "Parameters.h"
#include "ScenarioTables.h"

namespace simulator::model {

/// A value for every slot. Those that the instrument computes have what the scenario says of them.
class StoredValues {
 public:
  /// `aScenario`: its tables, and its values by name, which come before the tables'. A value that
  /// is missing starts at 0.
  explicit StoredValues(const rapidjson::Value& aScenario);

  double at(std::size_t aSlot) const { return mValues[aSlot]; }
  void put(std::size_t aSlot, double aValue) { mValues[aSlot] = aValue; }

  double of(eParam aParam, std::uint32_t aMember = 1, std::uint32_t aStep = 1) const;
  void set(double aValue, eParam aParam, std::uint32_t aMember = 1, std::uint32_t aStep = 1);

  /// A value as far as its bounds allow, whatever an operator has set.
  double bounded(eParam aParam, std::uint32_t aStep = 1) const;

  /// The most that a client may write.
  double highest(std::size_t aSlot) const;

  /// Whether the part that a parameter belongs to (channel, sample line) is there.
  bool isFitted(std::size_t aSlot) const;

  /// How many steps (lines, peaks, rows) a table has now; `aChannel`, 1 to 4, for peaks.
  std::uint32_t stepsOf(eTable aTable, std::uint32_t aChannel = 1) const;

  /// Whether a parameter's step is one that its table has now.
  bool isThere(std::size_t aSlot) const;

 private:
  std::vector<double> mValues;
  PeakCounts mPeaks{};
};

}  // namespace simulator::model
