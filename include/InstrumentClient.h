// The instrument client library: one connection to the controller, and everything sent over it.
#pragma once

#include <cstddef>
#include <cstdint>

class RemoteObject;

// These symbols come from a library, whatever visibility the including file is compiled with.
#pragma GCC visibility push(default)

/// One parameter on its way to or from the instrument.
struct ParamList {
  std::uint32_t Channel;        ///< 0 for the whole instrument, 1 to 4 for an analytical channel
  std::uint32_t Method;         ///< method index
  std::uint32_t Step;           ///< line or step of a table-like parameter, from 1; 0 elsewhere
  std::uint32_t ParmID;         ///< parameter number
  double realvalue;             ///< real value, in the instrument's own unit
  std::int32_t intvalue;        ///< integer value
  std::uint32_t ServiceStatus;  ///< status that the instrument returns with the value
};

static_assert(sizeof(ParamList) == 32, "the library exchanges records of 32 bytes");
static_assert(offsetof(ParamList, Channel) == 0);
static_assert(offsetof(ParamList, Method) == 4);
static_assert(offsetof(ParamList, Step) == 8);
static_assert(offsetof(ParamList, ParmID) == 12);
static_assert(offsetof(ParamList, realvalue) == 16);
static_assert(offsetof(ParamList, intvalue) == 24);
static_assert(offsetof(ParamList, ServiceStatus) == 28);

// Every function returns a status: 0 is success, the other codes are the library's own. A batch
// read returns 28 when some of its parameters could not be read.

/// Starts the library for the instrument at `address`: an IPv4 address, first octet in the lowest
/// byte. Call once, before anything else.
unsigned long startupGC(long, long address, long, long, long, const char*);

/// Opens a connection in `mode` (1: reports, 0: commands) and stores its handle.
unsigned long EstablishConnection(unsigned long mode, const char* clientName, const char*,
                                  unsigned long* handle);

/// Fills in `realvalue`, `intvalue` and `ServiceStatus` of `count` records, in place.
unsigned long ReadParamList(unsigned long handle, ParamList* records, unsigned long count);

/// Writes the values of `count` records.
unsigned long WriteParamList(unsigned long handle, ParamList* records, unsigned long count);

/// Executes one instrument command.
unsigned long ExecuteCommand(unsigned long handle, unsigned long channel, unsigned long command);

/// Fetches remote object `number`. Its class must be registered with the CloneFactory.
unsigned long ReadObject(unsigned long handle, unsigned long number, RemoteObject*& object);

/// Reads two values about the program of `channel`; the first is its number of calibrated peaks.
unsigned long ReadProgramInfo(unsigned long handle, unsigned long, unsigned long channel,
                              unsigned long, unsigned long* first, unsigned long* second);

/// Closes the connection.
unsigned long BreakConnection(unsigned long handle);

/// Stops the library.
unsigned long shutdownGC();

#pragma GCC visibility pop
