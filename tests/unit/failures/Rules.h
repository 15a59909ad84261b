// The effects of a failed call, by operation.
#pragma once

#include <cstddef>

#include "GC_Web.h"

constexpr eSections cAnyOperation = NR_OF_SECTIONS;

/// The statuses of a call that end the operation.
enum class eEnds { eNever, eNotZero, eNeither0Nor28 };

/// The first matching rule applies to a call.
struct Rule {
  eSections operation = cAnyOperation;
  const char* call = nullptr;  ///< how the call and its records begin, as logged
  eEnds ends = eEnds::eNever;
  const char* message = nullptr;  ///< of the result object then; null: nothing is printed
  bool announced = false;         ///< whether standard error gets the status, in any case
};

constexpr Rule cRules[] = {
    {eStreamWrite, "WriteParamList(", eEnds::eNotZero, nullptr, true},
    {eSingleRun, "WriteParamList(", eEnds::eNotZero, "Refused", true},
    {eCalibrationRun, "WriteParamList(", eEnds::eNotZero, "Refused", true},
    {eSolutionLoad, "WriteParamList(", eEnds::eNotZero, "Accepted", true},
    {eSequenceWrite, "WriteParamList(handle, 2)", eEnds::eNotZero,
     "Refused: unable to set table repeat"},
    {eSequenceWrite, "ExecuteCommand(handle, 0, 22)", eEnds::eNotZero,
     "Refused: unabled to clear orignal table"},
    {eSequenceWrite, "ExecuteCommand(handle, 0, 19)", eEnds::eNotZero,
     "Refused: unable to insert new sequence"},
    {eSequenceWrite, "WriteParamList(handle, 6)", eEnds::eNotZero,
     "Refused: unable to set sequence line params"},
    {eCalibWrite, "ExecuteCommand(handle, 0, 26)", eEnds::eNever},
    {eCalibWrite, "WriteParamList(handle, 1): 1:1230@2", eEnds::eNotZero,
     "Refused: Unable to set new level for chan[1] peak[2]"},
    {eCalibWrite, "WriteParamList(handle, 1): 2:1230@1", eEnds::eNotZero,
     "Refused: Unable to set new level for chan[2] peak[1]"},
    {eCalibWrite, "WriteParamList(handle, 1): 1:1230@1", eEnds::eNotZero,
     "Refused: Unable to set new level for chan[1] peak[1]"},
    {eSingleRun, "ExecuteCommand(handle, 0, 0)", eEnds::eNotZero, "Refused"},
    {eCalibrationRun, "ExecuteCommand(handle, 0, 0)", eEnds::eNotZero, "Refused"},
    {eAutomationRun, "ExecuteCommand(handle, 0, 16)", eEnds::eNotZero, "Refused"},
    {eAbortRun, "ExecuteCommand(handle, 0, 1)", eEnds::eNotZero, "Refused"},
    {eAbortRun, "ExecuteCommand(handle, 0, 17)", eEnds::eNotZero, "Refused"},
    {eAlarmReset, "ExecuteCommand(handle, 0, 35)", eEnds::eNotZero, "Refused"},
    {eAlarmRead, "ReadParamList(handle, 2)", eEnds::eNotZero},
    {eAlarmRead, "ReadParamList(handle, 20)", eEnds::eNever},
    {eAlarmRead, "ReadParamList(handle, 5)", eEnds::eNeither0Nor28},
    {eStatusRead, "ReadParamList(", eEnds::eNeither0Nor28},
    {eConfigRead, "ReadParamList(", eEnds::eNeither0Nor28},
    {eSequenceRead, "ReadParamList(", eEnds::eNeither0Nor28},
    {eCalibRead, "ReadParamList(", eEnds::eNeither0Nor28},
    {eCalibRead, "ReadProgramInfo(", eEnds::eNever},
    {eStatusRead, "plxGetTime(", eEnds::eNever},
    {eStatusRead, "getErrorText(", eEnds::eNever},
    {cAnyOperation, "registerObject(", eEnds::eNever},
    {cAnyOperation, "~", eEnds::eNever},
    {cAnyOperation, "ReadObject(", eEnds::eNever},
    {cAnyOperation, "BreakConnection(", eEnds::eNever},
    {cAnyOperation, "shutdownGC(", eEnds::eNever},
    {cAnyOperation, "initializeACE(", eEnds::eNever},
    {cAnyOperation, "finishACE(", eEnds::eNever},
};

/// The connection failures: the two that have a code and a line of their own, and after which
/// nothing is closed.
struct ConnectionRule {
  const char* call;
  unsigned long code;
  const char* message;
  const char* error;
};

constexpr ConnectionRule cConnectionRules[] = {
    {"startupGC(", 1, "GC DLL error!", "startupGC An error occured.\n"},
    {"EstablishConnection(", 10053, "Unable to connect to GC!",
     "EstablishConnection An error occured while connecting to the GC.\n"},
};
