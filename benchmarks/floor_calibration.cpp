// The calibration table.
#include <iterator>

#include "floor.h"

namespace bench {

namespace {

constexpr std::uint32_t cFirstLetterId = 1176;
constexpr std::uint32_t cLetters = 20;

constexpr Place cPeak[] = {
    {1196}, {1188}, {1185}, {1179}, {1190}, {1181}, {1183}, {1176}, {1178}, {1192}, {1186}, {1230},
    {1194}, {1193}, {1184}, {1195}, {1180}, {1182}, {1177}, {1242}, {1191}, {1187}, {1189},
};
static_assert(std::size(cPeak) == cLetters + 3);

void addPeak(Writer& writer, unsigned long handle, std::uint32_t channel, std::uint32_t peak) {
  const auto records = readBatch(handle, cPeak, peak, channel);
  char name[cLetters + 1] = "";
  for (const ParamList& record : records) {
    // Unsigned, so that an id below that of the first letter wraps to above every position.
    const std::uint32_t position = record.ParmID - cFirstLetterId;
    if (position < cLetters) {
      name[position] = static_cast<char>(record.intvalue);
    }
  }
  writer.StartObject();
  addInt(writer, "Channel", static_cast<int>(channel));
  addInt(writer, "ID", static_cast<int>(peak));
  addText(writer, "PkName", name);
  addReal(writer, "Ret_time", find(records, 1196, channel).realvalue * 60.0);
  addReal(writer, "Level_amt", find(records, 1230, channel).realvalue);
  addReal(writer, "Linear", find(records, 1242, channel).realvalue);
  writer.EndObject();
}

}  // namespace

void addReport(Writer& writer, unsigned long handle) {
  unsigned long peaks[4] = {};
  unsigned long total = 0;
  for (std::uint32_t channel = 1; channel <= 4; ++channel) {
    unsigned long unused = 0;
    ReadProgramInfo(handle, 0, channel, 1, &peaks[channel - 1], &unused);
    total += peaks[channel - 1];
  }
  addInt(writer, "total", static_cast<int>(total));
  writer.Key("rows");
  writer.StartArray();
  for (std::uint32_t channel = 1; channel <= 4; ++channel) {
    for (std::uint32_t peak = 1; peak <= peaks[channel - 1]; ++peak) {
      addPeak(writer, handle, channel, peak);
    }
  }
  writer.EndArray();
}

}  // namespace bench
