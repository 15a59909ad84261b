// The sequence table of an instrument with a stream selector.
#include <RunType.h>

#include "floor.h"

namespace bench {

namespace {

constexpr Place cHeader[] = {{12}, {525}, {15}, {144}};
constexpr Place cLine[] = {
    {23}, {1010, 1}, {24}, {26}, {22},
};

void addLine(Writer& writer, unsigned long handle, std::uint32_t line) {
  const auto records = readBatch(handle, cLine, line);
  writer.StartObject();
  addText(writer, "Type", runTypeText(find(records, 23).intvalue));
  addInt(writer, "Repeat", find(records, 24).intvalue);
  addInt(writer, "Stream", find(records, 22).intvalue);
  addInt(writer, "Slot", find(records, 1010, 1).intvalue);
  addReal(writer, "Flush_time", find(records, 26).realvalue);
  writer.EndObject();
}

}  // namespace

void addReport(Writer& writer, unsigned long handle) {
  const auto header = readBatch(handle, cHeader);
  const int total = find(header, 144).intvalue;
  addInt(writer, "Table_repeat", find(header, 15).intvalue);
  addFlag(writer, "Continuous", find(header, 12).intvalue);
  addInt(writer, "total", total);
  writer.Key("rows");
  writer.StartArray();
  for (int line = 1; line <= total; ++line) {
    addLine(writer, handle, static_cast<std::uint32_t>(line));
  }
  writer.EndArray();
}

}  // namespace bench
