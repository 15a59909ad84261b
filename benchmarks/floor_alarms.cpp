// The alarms, which must be enabled and no more than the report can show.
#include <AlarmTexts.h>

#include <cstdio>
#include <iterator>

#include "floor.h"

namespace bench {

namespace {

constexpr Place cHeader[] = {{2029}, {2028}};
constexpr Place cRow[] = {{2032}, {2038}, {2031}, {2030}, {2212}};
// Twenty characters; the channel field holds their position.
constexpr Place cComponentName[] = {
    {2021, 1},  {2021, 2},  {2021, 3},  {2021, 4},  {2021, 5},  {2021, 6},  {2021, 7},
    {2021, 8},  {2021, 9},  {2021, 10}, {2021, 11}, {2021, 12}, {2021, 13}, {2021, 14},
    {2021, 15}, {2021, 16}, {2021, 17}, {2021, 18}, {2021, 19}, {2021, 20},
};

void addComponent(Writer& writer, unsigned long handle, int component) {
  const auto letters = readBatch(handle, cComponentName, static_cast<std::uint32_t>(component));
  char name[std::size(cComponentName) + 1] = "";
  for (std::size_t i = 0; i < letters.size(); ++i) {
    name[i] = static_cast<char>(letters[i].intvalue);
  }
  char text[100];
  std::snprintf(text, sizeof text, "%d. %s", component, name);
  addText(writer, "ParamStr", text);
}

void addRow(Writer& writer, unsigned long handle, std::uint32_t row) {
  const auto records = readBatch(handle, cRow, row);
  const auto number = [&](std::uint32_t id) { return find(records, id).intvalue; };
  writer.StartObject();
  addText(writer, "SampleType", number(2038) != 0 ? "All" : sampleTypeText(number(2030) + 1));
  addInt(writer, "GroupID", number(2031));
  addText(writer, "GroupStr", alarmGroupText(number(2031)));
  addInt(writer, "ParamID", number(2032));
  if (isComponentGroup(number(2031))) {
    addComponent(writer, handle, number(2032));
  } else {
    addText(writer, "ParamStr", alarmParameterText(number(2031), number(2032)));
  }
  addFlag(writer, "Triggered", number(2212));
  writer.EndObject();
}

}  // namespace

void addReport(Writer& writer, unsigned long handle) {
  const int total = find(readBatch(handle, cHeader), 2029).intvalue;
  addInt(writer, "total", total);
  writer.Key("rows");
  writer.StartArray();
  for (int row = 1; row <= total; ++row) {
    addRow(writer, handle, static_cast<std::uint32_t>(row));
  }
  writer.EndArray();
}

}  // namespace bench
