// The calls of a client under the names that the journal and the faults use.
#pragma once

#include <Message.h>

#include <cstdint>
#include <iterator>

namespace simulator {

/// In the order of their message types, which start at 1.
constexpr const char* cCallNames[] = {"Connect", "Read",        "Write",     "Command",
                                      "Object",  "ProgramInfo", "Disconnect"};
static_assert(std::size(cCallNames) == static_cast<std::size_t>(wire::eType::eDisconnect));

constexpr const char* callName(wire::eType aCall) {
  return cCallNames[static_cast<std::uint32_t>(aCall) - 1];
}

/// A set of calls has one bit for each.
constexpr std::uint32_t callBit(wire::eType aCall) {
  return 1U << static_cast<std::uint32_t>(aCall);
}

constexpr std::uint32_t cEveryCall = (1U << (std::size(cCallNames) + 1)) - 2;

}  // namespace simulator
