// Parameter tables: what an operation reads, as rows of name, channel and id.
#pragma once

#include <cstddef>

#include "Parameter.h"

/// The analytical channels are numbered 1 to 4.
constexpr int cChannels = 4;

/// How many parameters a row of a table stands for.
enum class eSpan {
  eSingle,     ///< one parameter
  eByChannel,  ///< one on each channel n, with one id; n is appended to the name
  eById,       ///< one id after the other on the row's channel; n is appended to the name
};

struct ParameterRow {
  unsigned long id;  ///< of the first parameter of the row
  const char* name;  ///< name in the map; without the digit where the row is a family
  eSpan span;
  unsigned long channel;  ///< of the first parameter of the row
};

/// How many parameters a table registers.
template <std::size_t size>
constexpr std::size_t countParameters(const ParameterRow (&rows)[size]) {
  std::size_t count = 0;
  for (const ParameterRow& row : rows) {
    count += row.span == eSpan::eSingle ? 1 : cChannels;
  }
  return count;
}

/// Name of a channel's parameter: the family's name with the channel's digit appended.
class ChannelName {
 public:
  /// `aFamily`: at most 30 characters. `aChannel`: 1 to 4.
  ChannelName(const char* aFamily, int aChannel);
  operator const char*() const { return mText; }

 private:
  char mText[32] = {};
};

/// Binds a new parameter of value 0, which the map then owns. A name that is bound already keeps
/// its parameter.
void registerParameter(ParameterMap& aMap, const char* name, unsigned long channel,
                       unsigned long id);

/// Registers a table in its order, each family channel by channel.
void registerParameters(ParameterMap& aMap, const ParameterRow* rows, std::size_t count);

template <std::size_t size>
void registerParameters(ParameterMap& aMap, const ParameterRow (&rows)[size]) {
  registerParameters(aMap, rows, size);
}
