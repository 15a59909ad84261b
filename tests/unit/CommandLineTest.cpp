// Options of the command line: the operation and number that they select, and every rejection.
#include <gtest/gtest.h>

#include <ostream>

#include "Arguments.h"
#include "UsageText.h"

namespace {
using Words = std::vector<std::string>;

std::string joined(const Words& aWords) {
  std::string lText;
  for (const std::string& word : aWords) {
    lText += " [" + word + "]";
  }
  return lText;
}

struct AcceptedRow {
  Words words;
  eSections operation;
  int number = 0;
  const char* file = "";
};

struct RefusedRow {
  Words words;
  std::string message;
};

std::ostream& operator<<(std::ostream& aStream, const AcceptedRow& aRow) {
  return aStream << joined(aRow.words);
}
std::ostream& operator<<(std::ostream& aStream, const RefusedRow& aRow) {
  return aStream << joined(aRow.words);
}

constexpr const char* cNoNumber = "ERROR: can't convert string to number\n";
constexpr const char* cNoStream = "ERROR: number out of range for stream\n";
constexpr const char* cNoSlot = "ERROR: number out of range for slot\n";
constexpr const char* cNoFile = "No file specified\n";
constexpr const char* cNoOperands = "Stdin not supported\n";

std::string withUsage(const std::string& aComplaint) {
  return "GC_Web: " + aComplaint + cUsage;
}

const AcceptedRow cOperations[] = {
    {{}, eStatusRead},
    {{"-t"}, eStatusRead},
    {{"-g"}, eConfigRead},
    {{"-a"}, eAlarmRead},
    {{"-q"}, eSequenceRead},
    {{"-c"}, eCalibRead},
    {{"-P"}, eAlarmReset},
    {{"-V", "7"}, eStreamWrite, 7},
    {{"-v", "7"}, eStatusRead, 7},
    {{"-M", "7"}, eSolutionLoad, 7},
    {{"-R", "auto"}, eAutomationRun},
    {{"-R", "single"}, eSingleRun},
    {{"-R", "calib"}, eCalibrationRun},
    {{"-A", "now"}, eAbortRun, 0},
    {{"-A", "auto"}, eAbortRun, 1},
    {{"-Q", "file"}, eSequenceWrite, 0, "file"},
    {{"-C", "file"}, eCalibWrite, 0, "file"},
    {{"-s", "10.0.0.1"}, eStatusRead},
};

const AcceptedRow cAborts[] = {
    {{"-A", "later"}, eAbortRun, 1}, {{"-A", ""}, eAbortRun, 1},
    {{"-A", "Now"}, eAbortRun, 1},   {{"-A", "NOW"}, eAbortRun, 1},
    {{"-A", "no"}, eAbortRun, 1},    {{"-A", "nowhere"}, eAbortRun, 1},
    {{"-A", " now"}, eAbortRun, 1},  {{"-A", "now "}, eAbortRun, 1},
    {{"-A", "0"}, eAbortRun, 1},     {{"-A", "-t"}, eAbortRun, 1},
};

const AcceptedRow cNumbers[] = {
    {{"-V", "0"}, eStreamWrite, 0},     {{"-V", "46"}, eStreamWrite, 46},
    {{"-v", "0"}, eStatusRead, 0},      {{"-v", "46"}, eStatusRead, 46},
    {{"-M", "0"}, eSolutionLoad, 0},    {{"-M", "10"}, eSolutionLoad, 10},
    {{"-V", "5x"}, eStreamWrite, 5},    {{"-V", "46abc"}, eStreamWrite, 46},
    {{"-V", " 7"}, eStreamWrite, 7},    {{"-V", "\t\n 7"}, eStreamWrite, 7},
    {{"-V", "+3"}, eStreamWrite, 3},    {{"-V", "-0"}, eStreamWrite, 0},
    {{"-V", "0046"}, eStreamWrite, 46}, {{"-V", "0x10"}, eStreamWrite, 0},
    {{"-V", "010"}, eStreamWrite, 10},  {{"-V", "4.9"}, eStreamWrite, 4},
    {{"-V", "1e1"}, eStreamWrite, 1},   {{"-v", "5x"}, eStatusRead, 5},
    {{"-v", " +3 "}, eStatusRead, 3},   {{"-M", "5x"}, eSolutionLoad, 5},
    {{"-M", " 7"}, eSolutionLoad, 7},   {{"-M", "+3"}, eSolutionLoad, 3},
    {{"-M", "010"}, eSolutionLoad, 10},
};

const AcceptedRow cTogether[] = {
    // The last operation wins, and so does the last number.
    {{"-g", "-t"}, eStatusRead},
    {{"-t", "-g", "-a", "-q", "-c"}, eCalibRead},
    {{"-c", "-q", "-a", "-g"}, eConfigRead},
    {{"-P", "-P"}, eAlarmReset},
    {{"-R", "single", "-R", "auto"}, eAutomationRun},
    {{"-R", "auto", "-A", "now", "-P"}, eAlarmReset},
    {{"-V", "1", "-V", "2"}, eStreamWrite, 2},
    {{"-V", "5", "-g"}, eConfigRead, 5},
    {{"-V", "5", "-M", "6"}, eSolutionLoad, 6},
    {{"-M", "6", "-V", "5"}, eStreamWrite, 5},
    {{"-M", "5", "-v", "3"}, eSolutionLoad, 3},
    {{"-M", "5", "-v", "46"}, eSolutionLoad, 46},
    {{"-v", "3", "-M", "5"}, eSolutionLoad, 5},
    {{"-V", "5", "-v", "0"}, eStreamWrite, 0},
    {{"-A", "now", "-v", "9"}, eAbortRun, 9},
    {{"-v", "9", "-A", "now"}, eAbortRun, 0},
    {{"-V", "5", "-A", "later"}, eAbortRun, 1},
    {{"-A", "auto", "-A", "now"}, eAbortRun, 0},
    {{"-A", "auto", "-R", "single"}, eSingleRun, 1},
    {{"-v", "3", "-R", "calib"}, eCalibrationRun, 3},
    {{"-R", "calib", "-v", "3"}, eCalibrationRun, 3},
    {{"-R", "single", "-v", "46"}, eSingleRun, 46},
    {{"-Q", "one", "-C", "two"}, eCalibWrite, 0, "two"},
    {{"-C", "two", "-Q", "one"}, eSequenceWrite, 0, "one"},
    {{"-Q", "one", "-t"}, eStatusRead, 0, "one"},
    {{"-Q", "a long name", "-Q", "b"}, eSequenceWrite, 0, "b"},
    // Bundled options, attached arguments, and the end of options.
    {{"-tga"}, eAlarmRead},
    {{"-atP"}, eAlarmReset},
    {{"-tV5"}, eStreamWrite, 5},
    {{"-gV", "5"}, eStreamWrite, 5},
    {{"-V5", "-v6"}, eStreamWrite, 6},
    {{"-Rsingle"}, eSingleRun},
    {{"-Anow"}, eAbortRun},
    {{"-M10"}, eSolutionLoad, 10},
    {{"-Qfile"}, eSequenceWrite, 0, "file"},
    {{"-Q", "-t"}, eSequenceWrite, 0, "-t"},
    {{"-C", "--"}, eCalibWrite, 0, "--"},
    {{"-g", "--"}, eConfigRead},
    {{"--"}, eStatusRead},
};

const RefusedRow cRefused[] = {
    {{"-V", "47"}, cNoStream},
    {{"-V", "-1"}, cNoStream},
    {{"-v", "47"}, cNoStream},
    {{"-v", "-1"}, cNoStream},
    {{"-M", "11"}, cNoSlot},
    {{"-M", "-1"}, cNoSlot},
    {{"-M", "46"}, cNoSlot},
    {{"-V", "99999999999999999999"}, cNoStream},
    {{"-v", "99999999999999999999"}, cNoStream},
    {{"-M", "99999999999999999999"}, cNoSlot},
    {{"-V", "-99999999999999999999"}, cNoStream},
    {{"-M", "-99999999999999999999"}, cNoSlot},
    {{"-V", "4294967296"}, cNoStream},
    {{"-v", "4294967299"}, cNoStream},
    {{"-M", "4294967300"}, cNoSlot},
    {{"-V", ""}, cNoNumber},
    {{"-V", "abc"}, cNoNumber},
    {{"-V", "x5"}, cNoNumber},
    {{"-V", "-"}, cNoNumber},
    {{"-V", "+"}, cNoNumber},
    {{"-V", " "}, cNoNumber},
    {{"-V", "- 5"}, cNoNumber},
    {{"-V", "-t"}, cNoNumber},
    {{"-V", "--"}, cNoNumber},
    {{"-v", ""}, cNoNumber},
    {{"-v", "abc"}, cNoNumber},
    {{"-M", ""}, cNoNumber},
    {{"-M", "abc"}, cNoNumber},
    {{"-R", "foo"}, "Operation 'foo' unknown\n"},
    {{"-R", ""}, "Operation '' unknown\n"},
    {{"-R", "Auto"}, "Operation 'Auto' unknown\n"},
    {{"-R", "singles"}, "Operation 'singles' unknown\n"},
    {{"-R", "singl"}, "Operation 'singl' unknown\n"},
    {{"-R", "calib "}, "Operation 'calib ' unknown\n"},
    {{"-R", "%s%n"}, "Operation '%s%n' unknown\n"},
    {{"-R", std::string(3000, 'r')}, "Operation '" + std::string(3000, 'r') + "' unknown\n"},
    {{"-Q", ""}, cNoFile},
    {{"-C", ""}, cNoFile},
    {{"-Q", "file", "-C", ""}, cNoFile},
    // Operands.
    {{"extra"}, cNoOperands},
    {{"-t", "extra"}, cNoOperands},
    {{"extra", "-t"}, cNoOperands},
    {{"-"}, cNoOperands},
    {{""}, cNoOperands},
    {{"--", "-t"}, cNoOperands},
    {{"--", "-X"}, cNoOperands},
    {{"-g", "--", "--"}, cNoOperands},
    {{"-V", "5", "6"}, cNoOperands},
    {{"-s", "0.0.0.0", "extra"}, cNoOperands},
    // Unknown options and missing arguments.
    {{"-X"}, withUsage("invalid option -- 'X'\n")},
    {{"-T"}, withUsage("invalid option -- 'T'\n")},
    {{"-S"}, withUsage("invalid option -- 'S'\n")},
    {{"-?"}, withUsage("invalid option -- '?'\n")},
    {{"-:"}, withUsage("invalid option -- ':'\n")},
    {{"-tX"}, withUsage("invalid option -- 'X'\n")},
    {{"--help"}, withUsage("invalid option -- '-'\n")},
    {{"-s"}, withUsage("option requires an argument -- 's'\n")},
    {{"-v"}, withUsage("option requires an argument -- 'v'\n")},
    {{"-V"}, withUsage("option requires an argument -- 'V'\n")},
    {{"-A"}, withUsage("option requires an argument -- 'A'\n")},
    {{"-R"}, withUsage("option requires an argument -- 'R'\n")},
    {{"-M"}, withUsage("option requires an argument -- 'M'\n")},
    {{"-Q"}, withUsage("option requires an argument -- 'Q'\n")},
    {{"-C"}, withUsage("option requires an argument -- 'C'\n")},
    {{"-tgV"}, withUsage("option requires an argument -- 'V'\n")},
    // Parsing stops at the first error.
    {{"-V", "47", "-M", "11"}, cNoStream},
    {{"-M", "11", "-V", "47"}, cNoSlot},
    {{"-R", "foo", "-X"}, "Operation 'foo' unknown\n"},
    {{"-X", "-R", "foo"}, withUsage("invalid option -- 'X'\n")},
    {{"-V", "abc", "extra"}, cNoNumber},
    {{"-V", "47", "-V", "4"}, cNoStream},
    {{"-V", "47", "-h"}, cNoStream},
    {{"-X", "-h"}, withUsage("invalid option -- 'X'\n")},
    {{"-Q", "", "-h"}, cNoFile},
};

class AcceptedTest : public testing::TestWithParam<AcceptedRow> {};
class RefusedTest : public testing::TestWithParam<RefusedRow> {};
}  // namespace

TEST_P(AcceptedTest, Request) {
  const Parsed parsed = parse(GetParam().words);
  EXPECT_TRUE(parsed.accepted);
  EXPECT_EQ(parsed.request.selected_sections, GetParam().operation);
  EXPECT_EQ(parsed.request.set_num, GetParam().number);
  EXPECT_STREQ(parsed.request.filename.data(), GetParam().file);
  EXPECT_EQ(parsed.output.out, "");
  EXPECT_EQ(parsed.output.err, "");
}

INSTANTIATE_TEST_SUITE_P(Operations, AcceptedTest, testing::ValuesIn(cOperations));
INSTANTIATE_TEST_SUITE_P(Aborts, AcceptedTest, testing::ValuesIn(cAborts));
INSTANTIATE_TEST_SUITE_P(Numbers, AcceptedTest, testing::ValuesIn(cNumbers));
INSTANTIATE_TEST_SUITE_P(Together, AcceptedTest, testing::ValuesIn(cTogether));

TEST_P(RefusedTest, Message) {
  const Parsed parsed = parse(GetParam().words);
  EXPECT_FALSE(parsed.accepted);
  EXPECT_EQ(parsed.result, -1);
  EXPECT_EQ(parsed.output.out, "");
  EXPECT_EQ(parsed.output.err, GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(Words, RefusedTest, testing::ValuesIn(cRefused));

TEST(OperationCodesTest, AreFixed) {
  EXPECT_EQ(eStatusRead, 0);
  EXPECT_EQ(eConfigRead, 1);
  EXPECT_EQ(eAlarmRead, 2);
  EXPECT_EQ(eSequenceRead, 3);
  EXPECT_EQ(eCalibRead, 4);
  EXPECT_EQ(eStreamWrite, 5);
  EXPECT_EQ(eSingleRun, 6);
  EXPECT_EQ(eAutomationRun, 7);
  EXPECT_EQ(eCalibrationRun, 8);
  EXPECT_EQ(eAbortRun, 9);
  EXPECT_EQ(eSolutionLoad, 10);
  EXPECT_EQ(eSequenceWrite, 11);
  EXPECT_EQ(eCalibWrite, 12);
  EXPECT_EQ(eAlarmReset, 13);
  EXPECT_EQ(NR_OF_SECTIONS, 14);
}
