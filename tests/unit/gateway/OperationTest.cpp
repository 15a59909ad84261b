// Every operation: the tool's command line, its schema, its lock.
#include "Operation.h"

#include <gtest/gtest.h>

namespace gateway {

namespace {

struct Row {
  eOperation operation;
  std::vector<std::string> arguments;
  const char* schema;
  const char* lock;  ///< a name that stays: a tool may outlive the gateway of its version
  bool takesFile = false;
  bool isAbort = false;
};

const Row cRows[] = {
    {eOperation::eStatus, {"-t"}, "status", nullptr},
    {eOperation::eConfiguration, {"-g"}, "configuration", nullptr},
    {eOperation::eAlarms, {"-a"}, "alarms", nullptr},
    {eOperation::eSequence, {"-q"}, "sequence", nullptr},
    {eOperation::eCalibration, {"-c"}, "calibration", nullptr},
    {eOperation::eSingleRun, {"-R", "single", "-v", "7"}, "result", "command.lock"},
    {eOperation::eCalibrationRun, {"-R", "calib", "-v", "7"}, "result", "command.lock"},
    {eOperation::eAutomation, {"-R", "auto"}, "result", "command.lock"},
    {eOperation::eAbortNow, {"-A", "now"}, "result", "abort-now.lock", false, true},
    {eOperation::eAbortAfterRun, {"-A", "auto"}, "result", "abort-after-run.lock", false, true},
    {eOperation::eStream, {"-V", "7"}, "result", "command.lock"},
    {eOperation::eSolution, {"-M", "7"}, "result", "command.lock"},
    {eOperation::eAlarmReset, {"-P"}, "result", "command.lock"},
    {eOperation::eSequenceFile, {"-Q", "/proc/self/fd/3"}, "result", "command.lock", true},
    {eOperation::eCalibrationFile, {"-C", "/proc/self/fd/3"}, "result", "command.lock", true},
};

TEST(Operation, IsARowOfTheTable) {
  for (const Row& row : cRows) {
    const std::string name = row.arguments.front();
    EXPECT_EQ(argumentsOf({row.operation, 7, 9}), row.arguments);
    EXPECT_STREQ(schemaOf(row.operation), row.schema) << name;
    EXPECT_STREQ(lockOf(row.operation), row.lock) << name;
    EXPECT_EQ(isReport(row.operation), row.lock == nullptr) << name;
    EXPECT_EQ(takesFile(row.operation), row.takesFile) << name;
    EXPECT_EQ(isAbort(row.operation), row.isAbort) << name;
  }
  EXPECT_EQ(sizeof cRows / sizeof cRows[0], 15U);
}

TEST(Operation, OfADownloadHasTheReportOfItsTable) {
  EXPECT_EQ(tableOf(eOperation::eSequenceFile), eOperation::eSequence);
  EXPECT_EQ(tableOf(eOperation::eCalibrationFile), eOperation::eCalibration);
}

}  // namespace

}  // namespace gateway
