// The smallest program that gets one report from the instrument and prints it: the cost of a
// request before the tool adds anything. Same libraries, calls, records and bytes; no map, no
// checks, no document in memory.
#include "floor.h"

#include <InstrumentClient.h>
#include <PlatformLayer.h>

#include <cstdio>

/// floor_REPORT ADDRESS
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
  rapidjson::StringBuffer buffer;
  bench::Writer writer(buffer);
  writer.StartObject();
  bench::addReport(writer, handle);
  writer.EndObject();
  std::puts(buffer.GetString());
  BreakConnection(handle);
  shutdownGC();
  finishACE();
  return 0;
}
