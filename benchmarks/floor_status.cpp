// The least program that gets the everyday instrument's status and prints it: what a request costs
// before the tool adds anything. Same libraries, calls, records and bytes; no map, no checks, and
// the state texts are taken for granted.
#include <ErrorText.h>
#include <InstrumentClient.h>
#include <PlatformLayer.h>
#include <RemoteObjects.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>

template class ACE_Singleton<CloneFactory, ACE_Thread_Mutex>;

namespace {

using Writer = rapidjson::PrettyWriter<rapidjson::StringBuffer>;

constexpr std::uint32_t cChannelIds[] = {200, 300, 302, 304, 202, 203, 342, 204, 307, 215, 323};
constexpr std::uint32_t cInstrumentIds[] = {502, 503,  504, 505, 602, 100, 1,   103,  104,
                                            70,  138,  131, 102, 58,  132, 161, 134,  162,
                                            96,  2202, 12,  136, 137, 135, 141, 2211, 173};
constexpr std::size_t cCount = 4 * std::size(cChannelIds) + std::size(cInstrumentIds);
static_assert(cCount == 71);

ParamList records[cCount];

const ParamList& find(std::uint32_t channel, std::uint32_t id) {
  const ParamList* record = records;
  while (record->Channel != channel || record->ParmID != id) {
    ++record;
  }
  return *record;
}

void makeRecords() {
  ParamList* record = records;
  for (const std::uint32_t id : cInstrumentIds) {
    *record++ = {0, 0, 0, id, 0.0, 0, 0};
  }
  for (std::uint32_t channel = 1; channel <= 4; ++channel) {
    for (const std::uint32_t id : cChannelIds) {
      *record++ = {channel, 0, 0, id, 0.0, 0, 0};
    }
  }
}

void addText(Writer& writer, const char* key, const char* text) {
  writer.Key(key);
  writer.String(text);
}

void addInt(Writer& writer, const char* key, std::uint32_t id) {
  writer.Key(key);
  writer.Int(find(0, id).intvalue);
}

void addFlag(Writer& writer, const char* key, std::uint32_t id) {
  writer.Key(key);
  writer.Bool(find(0, id).intvalue != 0);
}

void addPair(Writer& writer, const char* key, std::uint32_t channel, std::uint32_t setpoint,
             std::uint32_t actual) {
  writer.Key(key);
  writer.StartObject();
  writer.Key("Setpoint");
  writer.Double(find(channel, setpoint).realvalue);
  writer.Key("Actual");
  writer.Double(find(channel, actual).realvalue);
  writer.EndObject();
}

void addChannel(Writer& writer, std::uint32_t channel) {
  const char key[] = {'C', 'h', 'a', 'n', 'n', 'e', 'l', static_cast<char>('0' + channel), '\0'};
  writer.Key(key);
  writer.StartObject();
  addPair(writer, "Column_temp", channel, 202, 300);
  addPair(writer, "Column_press", channel, 342, 304);
  addPair(writer, "Injector_temp", channel, 203, 302);
  writer.Key("TCD");
  writer.StartObject();
  writer.Key("Auto_zero");
  writer.Double(find(channel, 307).realvalue);
  addText(writer, "State", find(channel, 215).intvalue != 0 ? "On" : "Off");
  addText(writer, "Calibrated", find(channel, 323).intvalue != 0 ? "OK" : "X");
  writer.EndObject();
  writer.EndObject();
}

void addDocument(Writer& writer, unsigned long handle) {
  writer.StartObject();
  unsigned int clock[6] = {};
  plxGetTime(&clock[0], &clock[1], &clock[2], &clock[3], &clock[4], &clock[5], nullptr);
  char text[128];
  std::snprintf(text, sizeof text, "%u-%u-%u %02u:%02u:%02u", clock[3], clock[4], clock[5],
                clock[0], clock[1], clock[2]);
  addText(writer, "GC_time", text);
  ACE_Singleton<CloneFactory, ACE_Thread_Mutex>::instance()->registerObject(SiteInfoTag());
  RemoteObject* object = nullptr;
  ReadObject(handle, 4, object);
  const auto* tag = dynamic_cast<const SiteInfoTag*>(object);
  addText(writer, "Application", tag == nullptr ? "" : tag->getTagName().c_str());
  addText(writer, "Host", find(0, 173).intvalue != 0 ? "monitoring" : "online");
  int longest = 0;
  for (std::uint32_t channel = 1; channel <= 4; ++channel) {
    longest = std::max(longest, find(channel, 204).intvalue);
  }
  writer.Key("Total_run_time");
  writer.Int(longest);
  addInt(writer, "Run_time", 161);
  addInt(writer, "Error_code", 132);
  getErrorText(find(0, 132).intvalue, text);
  addText(writer, "Error_str", text);
  addFlag(writer, "Alarm_overall", 2211);
  addInt(writer, "Curr_stream", 58);
  addInt(writer, "Last_counter", 2202);
  addFlag(writer, "Continuous", 12);
  addInt(writer, "Seq_line", 136);
  addInt(writer, "Line_replicate", 137);
  addInt(writer, "Seq_replicate", 135);
  addText(writer, "Run_type", "Analysis");
  addText(writer, "GC_state", "Ready");
  addText(writer, "Ext_ready_in", find(0, 131).intvalue != 0 ? "Ready" : "Not Ready");
  addText(writer, "Auto_state", "Idle");
  addText(writer, "Service_switch", find(0, 70).intvalue != 0 ? "On" : "Off");
  writer.Key("Ambient_press");
  writer.Double(find(0, 104).realvalue);
  addInt(writer, "Ambient_temp", 103);
  addPair(writer, "Sample_line_temp", 0, 1, 100);
  for (std::uint32_t channel = 1; channel <= 4; ++channel) {
    if (find(0, 501 + channel).intvalue != 0) {
      addChannel(writer, channel);
    }
  }
  writer.EndObject();
}

}  // namespace

/// floor_status ADDRESS
int main(int argc, char* argv[]) {
  unsigned int octet[4] = {};
  if (argc != 2 ||
      std::sscanf(argv[1], "%u.%u.%u.%u", &octet[0], &octet[1], &octet[2], &octet[3]) != 4) {
    return 1;
  }
  const std::uint32_t address = octet[0] | octet[1] << 8 | octet[2] << 16 | octet[3] << 24;
  initializeACE();
  unsigned long handle = 0;
  if (startupGC(1, static_cast<long>(address), 0, 0, 1, "") != 0 ||
      EstablishConnection(1, "SimUI", "", &handle) != 0) {
    return 1;
  }
  makeRecords();
  ReadParamList(handle, records, cCount);
  rapidjson::StringBuffer buffer;
  Writer writer(buffer);
  addDocument(writer, handle);
  std::puts(buffer.GetString());
  BreakConnection(handle);
  shutdownGC();
  finishACE();
  return 0;
}
