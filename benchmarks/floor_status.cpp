// The live status; its state texts are constants.
#include <ErrorText.h>
#include <PlatformLayer.h>

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "floor.h"
#include "floor_objects.h"

template class ACE_Singleton<CloneFactory, ACE_Thread_Mutex>;

namespace bench {

namespace {

constexpr Place cStatus[] = {
    {102},    {96},     {323, 4}, {215, 4}, {307, 4}, {342, 4}, {162},    {200, 3}, {204, 2},
    {2211},   {203, 4}, {300, 4}, {215, 3}, {307, 3}, {204, 3}, {200, 2}, {502},    {161},
    {204, 4}, {602},    {203, 3}, {300, 3}, {323, 2}, {215, 2}, {342, 2}, {304, 2}, {200, 1},
    {103},    {100},    {141},    {138},    {104},    {323, 3}, {342, 3}, {58},     {2202},
    {203, 2}, {300, 2}, {215, 1}, {202, 1}, {304, 1}, {302, 1}, {135},    {304, 4}, {505},
    {12},     {202, 2}, {302, 2}, {203, 1}, {300, 1}, {1},      {132},    {202, 3}, {304, 3},
    {302, 3}, {323, 1}, {342, 1}, {137},    {202, 4}, {302, 4}, {131},    {70},     {134},
    {173},    {307, 2}, {503},    {136},    {200, 4}, {504},    {307, 1}, {204, 1},
};
static_assert(std::size(cStatus) == 71);
using Records = std::array<ParamList, std::size(cStatus)>;

void addPair(Writer& writer, const char* key, const ParamList& setpoint, const ParamList& actual) {
  writer.Key(key);
  writer.StartObject();
  addReal(writer, "Setpoint", setpoint.realvalue);
  addReal(writer, "Actual", actual.realvalue);
  writer.EndObject();
}

void addChannel(Writer& writer, const Records& records, std::uint32_t channel) {
  const auto of = [&](std::uint32_t id) -> const ParamList& { return find(records, id, channel); };
  startChannel(writer, channel);
  addPair(writer, "Column_temp", of(202), of(300));
  addPair(writer, "Column_press", of(342), of(304));
  addPair(writer, "Injector_temp", of(203), of(302));
  writer.Key("TCD");
  writer.StartObject();
  addReal(writer, "Auto_zero", of(307).realvalue);
  addText(writer, "State", of(215).intvalue != 0 ? "On" : "Off");
  addText(writer, "Calibrated", of(323).intvalue != 0 ? "OK" : "X");
  writer.EndObject();
  writer.EndObject();
}

}  // namespace

void addReport(Writer& writer, unsigned long handle) {
  const Records records = readBatch(handle, cStatus);
  const auto number = [&](std::uint32_t id) { return find(records, id).intvalue; };
  unsigned int clock[6] = {};
  plxGetTime(&clock[0], &clock[1], &clock[2], &clock[3], &clock[4], &clock[5], nullptr);
  char text[128];
  std::snprintf(text, sizeof text, "%u-%u-%u %02u:%02u:%02u", clock[3], clock[4], clock[5],
                clock[0], clock[1], clock[2]);
  addText(writer, "GC_time", text);
  addText(writer, "Application", fetch<SiteInfoTag>(handle, 4).getTagName().c_str());
  addText(writer, "Host", number(173) != 0 ? "monitoring" : "online");
  int longest = 0;
  for (std::uint32_t channel = 1; channel <= 4; ++channel) {
    longest = std::max(longest, find(records, 204, channel).intvalue);
  }
  addInt(writer, "Total_run_time", longest);
  addInt(writer, "Run_time", number(161));
  addInt(writer, "Error_code", number(132));
  getErrorText(number(132), text);
  addText(writer, "Error_str", text);
  addFlag(writer, "Alarm_overall", number(2211));
  addInt(writer, "Curr_stream", number(58));
  addInt(writer, "Last_counter", number(2202));
  addFlag(writer, "Continuous", number(12));
  addInt(writer, "Seq_line", number(136));
  addInt(writer, "Line_replicate", number(137));
  addInt(writer, "Seq_replicate", number(135));
  addText(writer, "Run_type", "Analysis");
  addText(writer, "GC_state", "Ready");
  addText(writer, "Ext_ready_in", number(131) != 0 ? "Ready" : "Not Ready");
  addText(writer, "Auto_state", "Idle");
  addText(writer, "Service_switch", number(70) != 0 ? "On" : "Off");
  addReal(writer, "Ambient_press", find(records, 104).realvalue);
  addInt(writer, "Ambient_temp", number(103));
  addPair(writer, "Sample_line_temp", find(records, 1), find(records, 100));
  for (std::uint32_t channel = 1; channel <= 4; ++channel) {
    if (number(501 + channel) != 0) {
      addChannel(writer, records, channel);
    }
  }
}

}  // namespace bench
