// Expands parameter tables into the map.
#include "ParameterTable.h"

#include <algorithm>
#include <cstring>
#include <memory>

ChannelName::ChannelName(const char* aFamily, int aChannel) {
  const std::size_t length = std::min(std::strlen(aFamily), sizeof mText - 2);
  std::memcpy(mText, aFamily, length);
  mText[length] = static_cast<char>('0' + aChannel);
  mText[length + 1] = '\0';
}

void bindParameter(ParameterMap& aMap, const char* name, std::unique_ptr<Parameter> parameter) {
  if (aMap.bind(ACE_CString(name, nullptr, false), parameter.get()) == 0) {
    static_cast<void>(parameter.release());
  }
}

void registerParameters(ParameterMap& aMap, const ParameterRow* rows, std::size_t count,
                        unsigned long step) {
  const auto bind = [&](const char* name, const ParameterRow& row, unsigned long channel,
                        unsigned long id) {
    bindParameter(aMap, name, std::make_unique<Parameter>(channel, id, row.value, 0.0, step, 0));
  };
  for (const ParameterRow* row = rows; row != rows + count; ++row) {
    if (row->span == eSpan::eSingle) {
      bind(row->name, *row, row->channel, row->id);
      continue;
    }
    for (int n = 1; n <= cChannels; ++n) {
      const auto offset = static_cast<unsigned long>(n - 1);
      const bool byId = row->span == eSpan::eById;
      bind(ChannelName(row->name, n), *row, row->channel + (byId ? 0 : offset),
           row->id + (byId ? offset : 0));
    }
  }
}
