// What the tool can be asked for, and its command line for that.
#pragma once

#include <string>
#include <vector>

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

/// An operation with its number, or the descriptor of its file, where it takes one.
struct ToolCall {
  eOperation operation = eOperation::eStatus;
  int number = 0;
  int file = -1;
};

bool isReport(eOperation aOperation);
bool takesFile(eOperation aOperation);
bool isAbort(eOperation aOperation);

/// Name of the file whose lock the operation needs for itself; null for a report. An abort waits
/// for no other command, and one that cannot wait for the end of a run not even for the other
/// abort.
const char* lockOf(eOperation aOperation);

/// The report of the table that a download replaces.
eOperation tableOf(eOperation aDownload);

/// The options of the operation, without its operand.
std::vector<std::string> optionsOf(eOperation aOperation);

/// Name of the schema of what a report prints.
const char* schemaOf(eOperation aOperation);

/// The options and the operand: a number, or the name under which the tool finds its file.
std::vector<std::string> argumentsOf(const ToolCall& aCall);

/// The tool's own number of the descriptor of its file.
constexpr int cToolFile = 3;
