// The tool's command line for each operation.
#include "Operation.h"

#include <cstddef>

namespace gateway {

namespace {

enum class eOperand { eNone, eNumber, eFile };

struct OperationRow {
  eOperation operation;
  const char* options[3];
  eOperand operand;
  const char* schema;  ///< of the output; the same for all commands
  const char* lock;
};

constexpr char cVerdict[] = "result";
constexpr char cCommands[] = "command.lock";

constexpr OperationRow cOperations[] = {
    {eOperation::eStatus, {"-t"}, eOperand::eNone, "status", nullptr},
    {eOperation::eConfiguration, {"-g"}, eOperand::eNone, "configuration", nullptr},
    {eOperation::eAlarms, {"-a"}, eOperand::eNone, "alarms", nullptr},
    {eOperation::eSequence, {"-q"}, eOperand::eNone, "sequence", nullptr},
    {eOperation::eCalibration, {"-c"}, eOperand::eNone, "calibration", nullptr},
    {eOperation::eSingleRun, {"-R", "single", "-v"}, eOperand::eNumber, cVerdict, cCommands},
    {eOperation::eCalibrationRun, {"-R", "calib", "-v"}, eOperand::eNumber, cVerdict, cCommands},
    {eOperation::eAutomation, {"-R", "auto"}, eOperand::eNone, cVerdict, cCommands},
    {eOperation::eAbortNow, {"-A", "now"}, eOperand::eNone, cVerdict, "abort-now.lock"},
    {eOperation::eAbortAfterRun, {"-A", "auto"}, eOperand::eNone, cVerdict, "abort-after-run.lock"},
    {eOperation::eStream, {"-V"}, eOperand::eNumber, cVerdict, cCommands},
    {eOperation::eSolution, {"-M"}, eOperand::eNumber, cVerdict, cCommands},
    {eOperation::eAlarmReset, {"-P"}, eOperand::eNone, cVerdict, cCommands},
    {eOperation::eSequenceFile, {"-Q"}, eOperand::eFile, cVerdict, cCommands},
    {eOperation::eCalibrationFile, {"-C"}, eOperand::eFile, cVerdict, cCommands},
};

constexpr bool isInOrder() {
  int expected = 0;
  for (const OperationRow& row : cOperations) {
    if (static_cast<int>(row.operation) != expected++) {
      return false;
    }
  }
  return expected == static_cast<int>(eOperation::eCount);
}
static_assert(isInOrder(), "the rows are found by their operation");

const OperationRow& rowOf(eOperation aOperation) {
  return cOperations[static_cast<std::size_t>(aOperation)];
}

}  // namespace

bool isReport(eOperation aOperation) {
  return aOperation < eOperation::eSingleRun;
}

bool takesFile(eOperation aOperation) {
  return rowOf(aOperation).operand == eOperand::eFile;
}

bool isAbort(eOperation aOperation) {
  return aOperation == eOperation::eAbortNow || aOperation == eOperation::eAbortAfterRun;
}

const char* lockOf(eOperation aOperation) {
  return rowOf(aOperation).lock;
}

eOperation tableOf(eOperation aDownload) {
  return aDownload == eOperation::eSequenceFile ? eOperation::eSequence : eOperation::eCalibration;
}

const char* schemaOf(eOperation aOperation) {
  return rowOf(aOperation).schema;
}

std::vector<std::string> optionsOf(eOperation aOperation) {
  std::vector<std::string> options;
  for (const char* option : rowOf(aOperation).options) {
    if (option != nullptr) {
      options.emplace_back(option);
    }
  }
  return options;
}

std::vector<std::string> argumentsOf(const ToolCall& aCall) {
  std::vector<std::string> arguments = optionsOf(aCall.operation);
  switch (rowOf(aCall.operation).operand) {
    case eOperand::eNone:
      break;
    case eOperand::eNumber:
      arguments.push_back(std::to_string(aCall.number));
      break;
    case eOperand::eFile:
      arguments.push_back("/proc/self/fd/" + std::to_string(cToolFile));
      break;
  }
  return arguments;
}

}  // namespace gateway
