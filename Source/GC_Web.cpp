// The front end's connection and dispatch.
#include "GC_Web.h"

#include <InstrumentClient.h>
#include <PlatformLayer.h>

#include <cstdio>
#include <memory>

#include "Common.h"
#include "SecAbortRun.h"
#include "SecAlarm.h"
#include "SecAutoRun.h"
#include "SecCalibRun.h"
#include "SecCalibTbl.h"
#include "SecConfig.h"
#include "SecSequenceTbl.h"
#include "SecSingleRun.h"
#include "SecSolutionLoad.h"
#include "SecStatus.h"
#include "SecStream.h"
#include "Section.h"

namespace {

// The two failures that have a code of the tool's own.
constexpr unsigned int cLibraryFailed = 1;
constexpr unsigned int cConnectionFailed = 10053;

/// What a section is given between init and the final call.
enum class eExtra { eNone, eArgument, eFile };

struct OperationRow {
  eSections code;
  std::unique_ptr<SectionBase> (*create)();
  eExtra extra;
};

template <class Section>
std::unique_ptr<SectionBase> create() {
  return std::make_unique<Section>();
}

constexpr OperationRow cOperations[] = {
    {eStatusRead, create<SecStatus>, eExtra::eNone},
    {eConfigRead, create<SecConfig>, eExtra::eNone},
    {eAlarmRead, create<SecAlarm>, eExtra::eNone},
    {eSequenceRead, create<SecSequenceTbl>, eExtra::eNone},
    {eCalibRead, create<SecCalibTbl>, eExtra::eNone},
    {eStreamWrite, create<SecStream>, eExtra::eArgument},
    {eSingleRun, create<SecSingleRun>, eExtra::eArgument},
    {eAutomationRun, create<SecAutoRun>, eExtra::eNone},
    {eCalibrationRun, create<SecCalibRun>, eExtra::eArgument},
    {eAbortRun, create<SecAbortRun>, eExtra::eArgument},
    {eSolutionLoad, create<SecSolutionLoad>, eExtra::eArgument},
    {eSequenceWrite, create<SecSequenceTbl>, eExtra::eFile},
    {eCalibWrite, create<SecCalibTbl>, eExtra::eFile},
    {eAlarmReset, create<SecAlarm>, eExtra::eNone},
};

/// A code without a row reads the status, as when no option is given.
const OperationRow& findOperation(eSections code) {
  for (const OperationRow& row : cOperations) {
    if (row.code == code) {
      return row;
    }
  }
  return cOperations[0];
}

/// Reports only read, and connect in mode 1; commands connect in mode 0.
unsigned long connectionMode(eSections code) {
  return code < eStreamWrite ? 1 : 0;
}

/// Starts the library and opens the connection; a failure is reported on both outputs. A library
/// that was started is not stopped then: it is stopped only after a connection.
bool openConnection(const Request& aRequest, unsigned long& handle) {
  initializeACE();
  if (startupGC(1, static_cast<long>(aRequest.uAddr.lAddr), 0, 0, 1, "") != 0) {
    std::fputs("startupGC An error occured.\n", stderr);
    printErroMsg(cLibraryFailed, "GC DLL error!");
    return false;
  }
  if (EstablishConnection(connectionMode(aRequest.selected_sections), "SimUI", "", &handle) != 0) {
    std::fputs("EstablishConnection An error occured while connecting to the GC.\n", stderr);
    printErroMsg(cConnectionFailed, "Unable to connect to GC!");
    return false;
  }
  return true;
}

/// Calls the section's functions in turn. Returns the result of the last one.
int drive(SectionBase& lSection, const OperationRow& row, Request& aRequest, ParameterMap& lMap,
          unsigned long handle) {
  lSection.init(&lMap, handle);
  switch (row.extra) {
    case eExtra::eNone:
      break;
    case eExtra::eArgument:
      lSection.setArgument(aRequest.set_num);
      break;
    case eExtra::eFile:
      // The result is ignored: writeGC rejects a document that could not be read, and prints the
      // verdict that the page waits for.
      lSection.parseFile(aRequest.filename.data());
      break;
  }
  return connectionMode(aRequest.selected_sections) == 1 ? lSection.readGC() : lSection.writeGC();
}

}  // namespace

void performRequest(Request& aRequest, ParameterMap& lMap) {
  unsigned long handle = 0;
  if (!openConnection(aRequest, handle)) {
    return;
  }
  const OperationRow& row = findOperation(aRequest.selected_sections);
  const std::unique_ptr<SectionBase> lSection = row.create();
  const int result = drive(*lSection, row, aRequest, lMap, handle);
  if (result != 0) {
    std::fprintf(stderr, "Execute failed %d.\n", result);
  }
  BreakConnection(handle);
  shutdownGC();
}  // the section is destroyed after the library has stopped
