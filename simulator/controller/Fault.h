// One thing that is made to go wrong between a client and the instrument.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace simulator {

enum class eFault {
  eRefuse,      ///< close a connection as soon as it is accepted
  eDrop,        ///< close instead of answering
  eDelay,       ///< answer late
  eHang,        ///< never answer
  eStatus,      ///< answer with a status in place of doing the call
  eUnanswered,  ///< leave records of a batch read unanswered
  eSwap,        ///< two records of a batch change places
  eShort,       ///< cut the answer's body to half its length
  eTruncate,    ///< cut the answer's frame to half its length and close
  eValue,       ///< answer with other values
  eText,        ///< answer with another text
  eIgnore,      ///< answer a write or a command with 0 and do nothing
};

struct Fault {
  static constexpr double cMaxSeconds = 3600.0;
  static constexpr std::uint32_t cMaxTextLength = 64 * 1024;

  eFault kind = eFault::eRefuse;
  const char* name = "";
  std::uint32_t calls = 0;  ///< those that it hits, a set of callBit()s
  std::uint32_t nth = 1;    ///< the first of these that it hits
  std::uint32_t times = 1;  ///< how many it hits; 0 for ever
  std::uint64_t seen = 0;
  std::uint64_t hits = 0;
  std::string source;  ///< the JSON object that it was made from

  // What only some kinds have.
  bool after = false;  ///< the call takes effect before the connection is dropped
  double seconds = 0.0;
  std::uint32_t status = 0;
  bool allRecords = false;
  std::vector<std::uint32_t> records;
  std::uint32_t first = 0;
  std::uint32_t second = 0;
  std::optional<double> real;
  std::optional<std::int32_t> integer;
  std::string text;
};

}  // namespace simulator
