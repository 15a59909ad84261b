// The operations of the tool, and the command line for each.
#pragma once

#include <string>
#include <vector>

namespace gateway {

enum class eOperation {
  eStatus,
  eConfiguration,
  eAlarms,
  eSequence,
  eCalibration,
  eSingleRun,
  eCalibrationRun,
  eAutomation,
  eAbortNow,
  eAbortAfterRun,
  eStream,
  eSolution,
  eAlarmReset,
  eSequenceFile,
  eCalibrationFile,
  eCount
};

/// An operation with its number or file descriptor, if it takes one.
struct ToolCall {
  eOperation operation = eOperation::eStatus;
  int number = 0;
  int file = -1;
};

bool isReport(eOperation aOperation);
bool takesFile(eOperation aOperation);
bool isAbort(eOperation aOperation);

/// Name of the lock file that the operation holds exclusively; null for a report. An abort does not
/// wait for other commands, and an immediate abort does not even wait for the other kind of abort.
const char* lockOf(eOperation aOperation);

/// The report of the table that a download replaces.
eOperation tableOf(eOperation aDownload);

/// The options of the operation, without its operand.
std::vector<std::string> optionsOf(eOperation aOperation);

/// Name of the schema of a report's output.
const char* schemaOf(eOperation aOperation);

/// The options and the operand: a number, or the path under which the tool finds its file.
std::vector<std::string> argumentsOf(const ToolCall& aCall);

/// The tool's descriptor number for its file.
constexpr int cToolFile = 3;

}  // namespace gateway
