// Parameter tables: what an operation reads, as rows of name, channel and id.
#pragma once

#include <cstddef>
#include <memory>

#include "Common.h"

/// The analytical channels are numbered 1 to 4.
constexpr int cChannels = 4;

/// How many parameters a table row stands for.
enum class eSpan {
  eSingle,     ///< one parameter
  eByChannel,  ///< one on each channel n, all with the same id; n is appended to the name
  eById,       ///< consecutive ids on the row's channel; n is appended to the name
};

struct ParameterRow {
  unsigned long id = 0;        ///< of the first parameter of the row
  const char* name = nullptr;  ///< name in the map; without the digit if the row is a family
  unsigned long channel = 0;   ///< of the first parameter of the row
  eSpan span = eSpan::eSingle;
  long value = 0;  ///< initial integer value
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

/// Name of a channel's parameter: the family's name followed by the channel's digit.
class ChannelName {
 public:
  /// `aFamily`: at most 30 characters. `aChannel`: 1 to 4.
  ChannelName(const char* aFamily, int aChannel);
  operator const char*() const { return mText; }
  const char* text() const { return mText; }

 private:
  char mText[32] = {};
};

/// Binds a parameter, which the map then owns. A name that is already bound keeps its parameter.
void bindParameter(ParameterMap& aMap, const char* name, std::unique_ptr<Parameter> parameter);

/// Registers a table in order, each family channel by channel, with real value and method 0.
/// `step`: the line that the rows belong to, from 1; 0 if they belong to no line.
void registerParameters(ParameterMap& aMap, const ParameterRow* rows, std::size_t count,
                        unsigned long step);

template <std::size_t size>
void registerParameters(ParameterMap& aMap, const ParameterRow (&rows)[size],
                        unsigned long step = 0) {
  registerParameters(aMap, rows, size, step);
}

/// A map for the batches of one call, which is cleared on every return path.
class LocalMap {
 public:
  explicit LocalMap(std::size_t aBuckets) : mMap(aBuckets) {}
  ~LocalMap() { clearParamMap(mMap, true); }
  LocalMap(const LocalMap&) = delete;
  LocalMap& operator=(const LocalMap&) = delete;

  ParameterMap& operator*() { return mMap; }

 private:
  ParameterMap mMap;
};
