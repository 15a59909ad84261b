// The front end: from options to a request, from a request to one section on one connection.
#pragma once

#include <array>
#include <cstdint>

#include "Parameter.h"  // IWYU pragma: export

/// What one run of the tool does.
enum eSections {
  eStatusRead = 0,
  eConfigRead = 1,
  eAlarmRead = 2,
  eSequenceRead = 3,
  eCalibRead = 4,
  eStreamWrite = 5,
  eSingleRun = 6,
  eAutomationRun = 7,
  eCalibrationRun = 8,
  eAbortRun = 9,
  eSolutionLoad = 10,
  eSequenceWrite = 11,
  eCalibWrite = 12,
  eAlarmReset = 13,
  NR_OF_SECTIONS = 14
};

/// IPv4 address of the instrument, first octet in the lowest byte: true on the controllers'
/// little-endian processors, and with g++'s and clang's rule for reading another member of a union.
union InstrumentAddress {
  std::array<unsigned char, 4> bAddr;
  std::uint32_t lAddr;
};

/// What the command line asks for.
struct Request {
  eSections selected_sections = eStatusRead;
  /// Stream (-V, -v), slot (-M) or abort mode (-A): the last of these options wins.
  int set_num = 0;
  /// File of a download; a longer name is truncated to 256 characters.
  std::array<char, 256 + 1> filename{};
  InstrumentAddress uAddr = {{127, 0, 0, 1}};
};

/// Reads the command line into `aRequest`. Returns true when there is a request to perform;
/// otherwise it has written messages to standard error, and `result` is the exit status: -1 for an
/// error, 0 after the usage text.
bool parseCommandLine(int argc, char* argv[], Request& aRequest, int& result);

/// Writes the usage text to standard error. `app` is the name under which the tool was invoked.
void print_usage(char* app);

/// Connects to the instrument, performs the request with `lMap` as the section's map, and
/// disconnects. The outcome is what was printed: the document or result object on standard output,
/// "Execute failed" on standard error.
void performRequest(Request& aRequest, ParameterMap& lMap);
