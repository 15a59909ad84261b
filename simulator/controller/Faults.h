// What can be made to go wrong between a client and the instrument.
#pragma once

#include <JsonText.h>
#include <Message.h>

#include <cstddef>
#include <cstdint>
#include <list>
#include <optional>
#include <string>

#include "Fault.h"

namespace simulator {

/// The faults that can still act, in the order in which they were added.
class FaultList {
 public:
  static constexpr std::size_t cMaxFaults = 1000;
  static constexpr double cMaxSeconds = Fault::cMaxSeconds;

  /// Adds the fault that an object describes. False, with JSON pointer and reason in `error`
  /// ("/nth: a whole number from 1 expected", ": an object expected"), when it describes none.
  bool add(const rapidjson::Value& aFault, std::string& error);
  void clear() { mFaults.clear(); }

  /// The fault that acts on this call, if any. All count the call; of those that are due the one
  /// added first acts, and the others stay due.
  std::optional<Fault> match(wire::eType aCall);

  /// True when a connection that has just been accepted is to be refused.
  bool matchAccepted();

  /// Writes an array: each fault as it was added, with "seen" and "hits".
  void describe(JsonWriter& writer) const;

 private:
  std::optional<Fault> matchBit(std::uint32_t aCall, bool aAccepted);

  std::list<Fault> mFaults;
};

}  // namespace simulator
