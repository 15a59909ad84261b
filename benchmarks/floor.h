// What the floors share: batches as tables of addresses, and members of a document.
#pragma once

#include <InstrumentClient.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace bench {

using Writer = rapidjson::PrettyWriter<rapidjson::StringBuffer>;

/// The part of each floor: its calls, and the members of its document, in order.
void addReport(Writer& writer, unsigned long handle);

/// The instrument is channel 0, the analytical channels are 1 to 4.
struct Place {
  std::uint32_t id = 0;
  std::uint32_t channel = 0;
};

/// Reads a batch in the order of its table, which is that of the tool's map. `channel` is added to
/// the channels in the table.
template <std::size_t size>
std::array<ParamList, size> readBatch(unsigned long handle, const Place (&places)[size],
                                      std::uint32_t step = 0, std::uint32_t channel = 0) {
  std::array<ParamList, size> records{};
  for (std::size_t i = 0; i < size; ++i) {
    records[i].Channel = places[i].channel + channel;
    records[i].Step = step;
    records[i].ParmID = places[i].id;
  }
  ReadParamList(handle, records.data(), size);
  return records;
}

/// The record of a parameter that is in the batch.
template <std::size_t size>
const ParamList& find(const std::array<ParamList, size>& records, std::uint32_t id,
                      std::uint32_t channel = 0) {
  const ParamList* record = records.data();
  while (record->ParmID != id || record->Channel != channel) {
    ++record;
  }
  return *record;
}

inline void addText(Writer& writer, const char* key, const char* text) {
  writer.Key(key);
  writer.String(text);
}

inline void addInt(Writer& writer, const char* key, int value) {
  writer.Key(key);
  writer.Int(value);
}

inline void addReal(Writer& writer, const char* key, double value) {
  writer.Key(key);
  writer.Double(value);
}

inline void addFlag(Writer& writer, const char* key, int value) {
  writer.Key(key);
  writer.Bool(value != 0);
}

inline void startChannel(Writer& writer, std::uint32_t channel) {
  const char key[] = {'C', 'h', 'a', 'n', 'n', 'e', 'l', static_cast<char>('0' + channel), '\0'};
  writer.Key(key);
  writer.StartObject();
}

}  // namespace bench
