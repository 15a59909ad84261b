// Computed values that an operator of the simulation has set.
#pragma once

#include <rapidjson/document.h>

#include <optional>
#include <vector>

#include "StoredValues.h"

namespace simulator::model {

/// They are held until the instrument next changes its state of its own accord or at a client's
/// request.
class Holds {
 public:
  /// Holds nothing.
  Holds();
  /// Holds what a snapshot names, at the values that are stored.
  Holds(const rapidjson::Value& aSnapshot, const StoredValues& aStored);

  /// What a parameter is held at, if it is.
  std::optional<double> at(std::size_t aSlot) const { return mValues[aSlot]; }

  void hold(std::size_t aSlot, double aValue) { mValues[aSlot] = aValue; }
  void release(std::size_t aSlot) { mValues[aSlot].reset(); }
  void releaseAll();

  /// The names of what is held.
  rapidjson::Value describe(rapidjson::Document::AllocatorType& aAllocator) const;

 private:
  std::vector<std::optional<double>> mValues;
};

}  // namespace simulator::model
