// The texts for instrument state, automation state and run type.
#include <gtest/gtest.h>

#include <climits>
#include <limits>
#include <ostream>

#include "SecStatusAccess.h"
#include "TestMap.h"

namespace {
constexpr double cInfinity = std::numeric_limits<double>::infinity();
constexpr double cNaN = std::numeric_limits<double>::quiet_NaN();

struct Row {
  int code;
  const char* text;
};

constexpr Row cGcStates[] = {
    {0, "Initializing"}, {1, "Flushing"},      {2, "Running"},           {3, "Stabilizing"},
    {4, "Ready"},        {5, "Error"},         {6, "Recoverable Error"}, {7, "Unrecoverable Error"},
    {8, "Not Ready"},    {9, "Wait Ext Rdy"},  {10, "Cleaning 0 min"},   {11, "Unknown"},
    {12, "Unknown"},     {256, "Unknown"},     {INT_MAX, "Unknown"},     {-1, "Unknown"},
    {-2, "Unknown"},     {INT_MIN, "Unknown"},
};

constexpr Row cAutoStates[] = {
    {0, "Idle"},
    {1, "Running - Single Run"},
    {2, "Running Sequence"},
    {3, "Running Calibration"},
    {4, "Running Verification"},
    {5, "Recalculating"},
    {6, "Flushing Stream"},
    {7, "Unknown"},
    {8, "Unknown"},
    {256, "Unknown"},
    {INT_MAX, "Unknown"},
    {-1, "Unknown"},
    {-2, "Unknown"},
    {INT_MIN, "Unknown"},
};

constexpr Row cRunTypes[] = {
    {0, "Analysis"}, {1, "Calibration"}, {2, "Blank"},      {3, "Verification"},
    {4, "None"},     {5, "None"},        {256, "None"},     {INT_MAX, "None"},
    {-1, "None"},    {-2, "None"},       {INT_MIN, "None"},
};

struct CountRow {
  int count;
  const char* running;
  const char* cleaning;
};

constexpr CountRow cCounts[] = {
    {0, "Running", "Cleaning 0 min"},
    {1, "Running 1s", "Cleaning 1 min"},
    {37, "Running 37s", "Cleaning 37 min"},
    {-1, "Running -1s", "Cleaning -1 min"},
    {INT_MAX, "Running 2147483647s", "Cleaning 2147483647 min"},
    {INT_MIN, "Running -2147483648s", "Cleaning -2147483648 min"},
};

/// Minutes, and the two texts that show them as seconds: one truncated to whole seconds, the other
/// to whole minutes first.
struct MinutesRow {
  double minutes;
  const char* delay;
  const char* flushing;
};

constexpr MinutesRow cMinutes[] = {
    {0.0, "Running Sequence", "Flushing Stream"},
    {-0.0, "Running Sequence", "Flushing Stream"},
    {-0.5, "Running Sequence", "Flushing Stream"},
    {-1e300, "Running Sequence", "Flushing Stream"},
    {-cInfinity, "Running Sequence", "Flushing Stream"},
    {cNaN, "Running Sequence", "Flushing Stream"},
    {5e-324, "Run Delay 0s", "Flushing Stream 0s"},
    {0.01, "Run Delay 0s", "Flushing Stream 0s"},
    {0.5, "Run Delay 30s", "Flushing Stream 0s"},
    {0.99, "Run Delay 59s", "Flushing Stream 0s"},
    {1.0, "Run Delay 60s", "Flushing Stream 60s"},
    {1.5, "Run Delay 90s", "Flushing Stream 60s"},
    {1.999, "Run Delay 119s", "Flushing Stream 60s"},
    {2.9, "Run Delay 174s", "Flushing Stream 120s"},
    {1440.25, "Run Delay 86415s", "Flushing Stream 86400s"},
    // 35791394 minutes is the largest number whose seconds fit into an int.
    {35791394.0, "Run Delay 2147483640s", "Flushing Stream 2147483640s"},
    {35791394.99, "Run Delay 2147483647s", "Flushing Stream 2147483640s"},
    {35791395.0, "Run Delay 2147483647s", "Flushing Stream 2147483647s"},
    {2147483647.0, "Run Delay 2147483647s", "Flushing Stream 2147483647s"},
    {2147483648.0, "Run Delay 2147483647s", "Flushing Stream 2147483647s"},
    {1e18, "Run Delay 2147483647s", "Flushing Stream 2147483647s"},
    {1.7976931348623157e308, "Run Delay 2147483647s", "Flushing Stream 2147483647s"},
    {cInfinity, "Run Delay 2147483647s", "Flushing Stream 2147483647s"},
};

std::ostream& operator<<(std::ostream& aStream, const Row& aRow) {
  return aStream << aRow.code;
}
std::ostream& operator<<(std::ostream& aStream, const CountRow& aRow) {
  return aStream << aRow.count;
}
std::ostream& operator<<(std::ostream& aStream, const MinutesRow& aRow) {
  return aStream << aRow.minutes;
}

class GcStateTest : public testing::TestWithParam<Row> {};
class AutoStateTest : public testing::TestWithParam<Row> {};
class RunTypeCodeTest : public testing::TestWithParam<Row> {};
class CountTest : public testing::TestWithParam<CountRow> {};
class MinutesTest : public testing::TestWithParam<MinutesRow> {};
}  // namespace

// A map without the counts, which then read as 0.

TEST_P(GcStateTest, Text) {
  EXPECT_EQ(SecStatusAccess::gcState(GetParam().code, TestMap()), GetParam().text);
}

TEST_P(AutoStateTest, Text) {
  EXPECT_EQ(SecStatusAccess::autoState(GetParam().code, TestMap()), GetParam().text);
}

TEST_P(RunTypeCodeTest, Text) {
  EXPECT_EQ(SecStatusAccess::runType(GetParam().code, TestMap()), GetParam().text);
}

// All values that the text does not use are set to something else, so that a mix-up is seen.

TEST_P(CountTest, Running) {
  TestMap map;
  map.add("mGC_CleaningTimeLeft", 0, 96)->setIntValue(111);
  Parameter* const runTime = map.add("mGC_CurRunTime", 0, 161);
  runTime->setRealValue(222.0);
  runTime->setIntValue(GetParam().count);
  EXPECT_EQ(SecStatusAccess::gcState(2, map), GetParam().running);
}

TEST_P(CountTest, Cleaning) {
  TestMap map;
  map.add("mGC_CurRunTime", 0, 161)->setIntValue(111);
  Parameter* const timeLeft = map.add("mGC_CleaningTimeLeft", 0, 96);
  timeLeft->setRealValue(222.0);
  timeLeft->setIntValue(GetParam().count);
  EXPECT_EQ(SecStatusAccess::gcState(10, map), GetParam().cleaning);
}

TEST_P(MinutesTest, RunDelay) {
  TestMap map;
  map.add("mGC_FlushingStream", 0, 134)->setRealValue(111.0);
  Parameter* const waiting = map.add("mGC_WaitingBetweenRuns", 0, 162);
  waiting->setIntValue(222);
  waiting->setRealValue(GetParam().minutes);
  EXPECT_EQ(SecStatusAccess::autoState(2, map), GetParam().delay);
}

TEST_P(MinutesTest, FlushingStream) {
  TestMap map;
  map.add("mGC_WaitingBetweenRuns", 0, 162)->setRealValue(111.0);
  Parameter* const flushing = map.add("mGC_FlushingStream", 0, 134);
  flushing->setIntValue(222);
  flushing->setRealValue(GetParam().minutes);
  EXPECT_EQ(SecStatusAccess::autoState(6, map), GetParam().flushing);
}

INSTANTIATE_TEST_SUITE_P(Codes, GcStateTest, testing::ValuesIn(cGcStates));
INSTANTIATE_TEST_SUITE_P(Codes, AutoStateTest, testing::ValuesIn(cAutoStates));
INSTANTIATE_TEST_SUITE_P(Codes, RunTypeCodeTest, testing::ValuesIn(cRunTypes));
INSTANTIATE_TEST_SUITE_P(Counts, CountTest, testing::ValuesIn(cCounts));
INSTANTIATE_TEST_SUITE_P(Minutes, MinutesTest, testing::ValuesIn(cMinutes));

TEST(StateTextsTest, OtherCodesShowNoCount) {
  TestMap map;
  map.add("mGC_CurRunTime", 0, 161)->setIntValue(37);
  map.add("mGC_CleaningTimeLeft", 0, 96)->setIntValue(38);
  map.add("mGC_WaitingBetweenRuns", 0, 162)->setRealValue(39.0);
  map.add("mGC_FlushingStream", 0, 134)->setRealValue(40.0);
  for (const Row& row : cGcStates) {
    if (row.code != 2 && row.code != 10) {
      EXPECT_EQ(SecStatusAccess::gcState(row.code, map), row.text);
    }
  }
  for (const Row& row : cAutoStates) {
    if (row.code != 2 && row.code != 6) {
      EXPECT_EQ(SecStatusAccess::autoState(row.code, map), row.text);
    }
  }
  for (const Row& row : cRunTypes) {
    EXPECT_EQ(SecStatusAccess::runType(row.code, map), row.text);
  }
}
