// The statuses that the stand-in client library and the simulated instrument answer with.
#pragma once

#include <cstdint>

/// To the tool these are opaque but for 0 and 28; people read them in "Execute failed" lines,
/// verdicts and the journal. 100s: the library's own. 200s: the instrument's refusals.
enum eStatus : std::uint32_t {
  eSuccess = 0,
  eBatchIncomplete = 28,  ///< some records of a batch read were not answered

  eLibraryNotStarted = 101,
  eLibraryStarted = 102,   ///< startupGC was called twice
  eAddressUnusable = 103,  ///< multicast or reserved: no instrument can have it
  eConnectRefused = 104,
  eConnectTimeout = 105,
  eHandleUnknown = 106,
  eAnswerTimeout = 107,
  eConnectionLost = 108,
  eAnswerInvalid = 109,       ///< the answer is no message, or not the one asked for
  eClassNotRegistered = 110,  ///< no prototype for the class of the object that came
  eArgumentInvalid = 111,     ///< null pointer, or a count that no message can hold

  eUnknownMessage = 201,
  eModeUnknown = 202,   ///< connection modes are 0 and 1
  eNotPermitted = 203,  ///< write or command on a connection in mode 1
  eParameterUnknown = 204,
  eReadOnly = 205,
  eOutOfBounds = 206,
  eStateForbids = 207,  ///< not in the instrument's present state
  eCommandUnknown = 208,
  eObjectUnknown = 209,
  eChannelUnknown = 210,
  eTooManyConnections = 211,
};
