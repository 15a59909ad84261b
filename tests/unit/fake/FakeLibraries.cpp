// The functions of the three libraries, forwarded to the scripted instrument.
#include <ErrorText.h>
#include <PlatformLayer.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sstream>

#include "FakeInstrument.h"

namespace {
FakeInstrument& instrument() {
  FakeInstrument* const lInstrument = FakeInstrument::current();
  if (lInstrument == nullptr) {
    std::fputs("A library was called and there is no scripted instrument\n", stderr);
    std::abort();
  }
  return *lInstrument;
}

/// An argument as it appears in the log.
template <class Argument>
std::string shown(Argument aArgument) {
  return std::to_string(aArgument);
}
std::string shown(const char* aText) {
  return aText != nullptr ? '"' + std::string(aText) + '"' : "null";
}
std::string shownHandle(unsigned long aHandle) {
  return aHandle == FakeInstrument::cHandle ? "handle" : shown(aHandle);
}

template <class... Arguments>
void record(const char* aFunction, const std::string& aFirst, const Arguments&... aRest) {
  std::ostringstream lText;
  lText << aFunction << '(' << aFirst;
  ((lText << ", " << aRest), ...);
  lText << ')';
  instrument().record(lText.str());
}
}  // namespace

void initializeACE() {
  record("initializeACE", "");
}

void finishACE() {
  record("finishACE", "");
}

unsigned long plxGetTime(unsigned int* hour, unsigned int* minute, unsigned int* second,
                         unsigned int* day, unsigned int* month, unsigned int* year,
                         long* aSeventh) {
  record("plxGetTime", aSeventh == nullptr ? "null" : "long");
  if (!instrument().silent) {
    const Clock& clock = instrument().clock;
    *hour = clock.hour;
    *minute = clock.minute;
    *second = clock.second;
    *day = clock.day;
    *month = clock.month;
    *year = clock.year;
  }
  return instrument().answerStatus(eFunction::eGetTime);
}

void getErrorText(int code, char* buffer) {
  record("getErrorText", shown(code));
  if (!instrument().silent) {
    std::string lText = instrument().errorText(code);
    lText.resize(std::min(lText.size() + 1, FakeInstrument::cErrorTextSize));
    lText.copy(buffer, lText.size());
  }
}

unsigned long startupGC(long aFirst, long address, long aThird, long aFourth, long aFifth,
                        const char* aText) {
  record("startupGC", shown(aFirst), shown(address), shown(aThird), shown(aFourth), shown(aFifth),
         shown(aText));
  return instrument().answerStatus(eFunction::eStartupGC);
}

unsigned long EstablishConnection(unsigned long mode, const char* clientName, const char* aText,
                                  unsigned long* handle) {
  record("EstablishConnection", shown(mode), shown(clientName), shown(aText));
  if (!instrument().silent) {
    *handle = FakeInstrument::cHandle;
  }
  return instrument().answerStatus(eFunction::eEstablishConnection);
}

unsigned long ReadParamList(unsigned long handle, ParamList* records, unsigned long count) {
  return instrument().transfer(eFunction::eReadParamList, "ReadParamList", handle, records, count);
}

unsigned long WriteParamList(unsigned long handle, ParamList* records, unsigned long count) {
  return instrument().transfer(eFunction::eWriteParamList, "WriteParamList", handle, records,
                               count);
}

unsigned long ExecuteCommand(unsigned long handle, unsigned long channel, unsigned long command) {
  record("ExecuteCommand", shownHandle(handle), shown(channel), shown(command));
  return instrument().answerStatus(eFunction::eExecuteCommand);
}

unsigned long ReadObject(unsigned long handle, unsigned long number, RemoteObject*& object) {
  record("ReadObject", shownHandle(handle), shown(number));
  if (!instrument().silent) {
    object = instrument().object(number);
  }
  return instrument().answerStatus(eFunction::eReadObject);
}

unsigned long ReadProgramInfo(unsigned long handle, unsigned long aSecond, unsigned long channel,
                              unsigned long aFourth, unsigned long* first, unsigned long* second) {
  record("ReadProgramInfo", shownHandle(handle), shown(aSecond), shown(channel), shown(aFourth));
  const auto* const lInfo = instrument().programInfo(channel);
  if (!instrument().silent && lInfo != nullptr) {
    std::tie(*first, *second) = *lInfo;
  }
  return instrument().answerStatus(eFunction::eReadProgramInfo);
}

unsigned long BreakConnection(unsigned long handle) {
  record("BreakConnection", shownHandle(handle));
  return instrument().answerStatus(eFunction::eBreakConnection);
}

unsigned long shutdownGC() {
  record("shutdownGC", "");
  return instrument().answerStatus(eFunction::eShutdownGC);
}
