// The alarm report and the reset of all alarms.
#include <gmock/gmock.h>

#include "AlarmRows.h"
#include "SecAlarm.h"
#include "SectionBench.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {
constexpr const char* cHead = "ReadParamList(handle, 2): 0:2029 0:2028";

/// The records of a row, in the order of a map of 40 buckets.
std::string rowBatch(int aRow) {
  const std::string step = "@" + std::to_string(aRow);
  return "ReadParamList(handle, 5): 0:2032" + step + " 0:2038" + step + " 0:2031" + step +
         " 0:2030" + step + " 0:2212" + step;
}

struct SampleTypeRow {
  std::int32_t code;
  std::int32_t allTypes;
  const char* text;
};

constexpr SampleTypeRow cSampleTypes[] = {
    {0, 0, "Analysis"},
    {1, 0, "Calibration"},
    {2, 0, "Blank"},
    {3, 0, "Verification"},
    {4, 0, "All"},
    {-3, 0, "All"},
    {-1, 0, "None"},
    {-2, 0, "None"},
    {5, 0, "None"},
    {-4, 0, "None"},
    {0, 1, "All"},
    {5, 7, "All"},
    {1, -1, "All"},
    {INT_MAX, 0, "None"},
    {INT_MIN, 0, "None"},
    {INT_MAX, 1, "All"},
    {INT_MAX - 1, 0, "None"},
    {INT_MAX - 2, 0, "None"},
};

class AlarmReportTest : public SectionBench<SecAlarm>, public testing::Test {};
class AlarmSampleTypeTest : public AlarmReportTest,
                            public testing::WithParamInterface<SampleTypeRow> {};
class AlarmStatusTest : public AlarmReportTest,
                        public testing::WithParamInterface<unsigned long> {};
class AlarmRowFailureTest : public AlarmReportTest,
                            public testing::WithParamInterface<unsigned long> {};
}  // namespace

TEST_F(AlarmReportTest, NothingIsRegistered) {
  EXPECT_EQ(mMap.current_size(), 0U);
  setAlarms(mInstrument, 1, 2);
  document();
  EXPECT_EQ(mMap.current_size(), 0U);
}

TEST_F(AlarmReportTest, DisabledAlarmsAreZeroAndNoRows) {
  setAlarms(mInstrument, 0, 5);
  EXPECT_EQ(document(), "{\n    \"total\": 0\n}\n");
  EXPECT_THAT(mInstrument.traffic(), ElementsAre(cHead));
}

TEST_F(AlarmReportTest, NoAlarmsAreNoRows) {
  setAlarms(mInstrument, 1, 0);
  EXPECT_EQ(document(), "{\n    \"total\": 0\n}\n");
  EXPECT_THAT(mInstrument.traffic(), ElementsAre(cHead));
}

TEST_F(AlarmReportTest, NegativeTotalIsPrintedAsRead) {
  setAlarms(mInstrument, 1, INT_MIN);
  EXPECT_EQ(document(), "{\n    \"total\": -2147483648\n}\n");
  EXPECT_THAT(mInstrument.traffic(), ElementsAre(cHead));
}

TEST_F(AlarmReportTest, RowsInOrder) {
  setAlarms(mInstrument, -1, 3);
  setAlarm(mInstrument, 1, {3, 0, 8, 1, 1});
  setAlarm(mInstrument, 2, {9, 2, 2, 4, 0});
  setAlarm(mInstrument, 3, {4, 0, 13, -6, -1});
  setComponent(mInstrument, 4, "n-Butane");
  EXPECT_EQ(document(), R"({
    "total": 3,
    "rows": [
        {
            "SampleType": "Verification",
            "GroupID": 8,
            "GroupStr": "8. GC Status",
            "ParamID": 1,
            "ParamStr": "1. Instrument Error",
            "Triggered": true
        },
        {
            "SampleType": "All",
            "GroupID": 2,
            "GroupStr": "2. NORM Amounts",
            "ParamID": 4,
            "ParamStr": "4. n-Butane",
            "Triggered": false
        },
        {
            "SampleType": "All",
            "GroupID": 13,
            "GroupStr": "Unknown",
            "ParamID": -6,
            "ParamStr": "0. None",
            "Triggered": true
        }
    ]
}
)");
  EXPECT_THAT(
      mInstrument.traffic(),
      ElementsAre(
          cHead, rowBatch(1), rowBatch(2),
          "ReadParamList(handle, 20): 1:2021@4 2:2021@4 3:2021@4 4:2021@4 5:2021@4 6:2021@4 "
          "7:2021@4 8:2021@4 9:2021@4 10:2021@4 11:2021@4 12:2021@4 13:2021@4 14:2021@4 "
          "15:2021@4 16:2021@4 17:2021@4 18:2021@4 19:2021@4 20:2021@4",
          rowBatch(3)));
}

TEST_F(AlarmReportTest, AtMost38RowsAreReadAndTheTotalIsPrintedAsRead) {
  for (const std::int32_t total : {38, 39, 50, INT_MAX}) {
    const std::size_t before = mInstrument.calls().size();
    setAlarms(mInstrument, 1, total);
    EXPECT_THAT(document(), StartsWith("{\n    \"total\": " + std::to_string(total) + ",\n"));
    const std::vector<std::string> traffic = mInstrument.traffic();
    ASSERT_EQ(traffic.size() - before, 39U);
    EXPECT_EQ(traffic[before + 1], rowBatch(1));
    EXPECT_EQ(traffic.back(), rowBatch(38));
  }
}

TEST_F(AlarmReportTest, OutOfRangeAstmGpaRepeatsTheGroupText) {
  setAlarms(mInstrument, 1, 1);
  setAlarm(mInstrument, 1, {0, 0, 7, 60, 0});
  EXPECT_EQ(document(), R"({
    "total": 1,
    "rows": [
        {
            "SampleType": "Analysis",
            "GroupID": 7,
            "GroupStr": "7. ASTM/GPA Results",
            "ParamID": 60,
            "ParamStr": "7. ASTM/GPA Results",
            "Triggered": false
        }
    ]
}
)");
}

TEST_F(AlarmReportTest, NumbersAtTheLimits) {
  setAlarms(mInstrument, INT_MIN, 1);
  setAlarm(mInstrument, 1, {INT_MAX, 0, INT_MIN, INT_MAX, INT_MIN});
  EXPECT_THAT(document(), HasSubstr(R"(
            "SampleType": "None",
            "GroupID": -2147483648,
            "GroupStr": "Unknown",
            "ParamID": 2147483647,
            "ParamStr": "0. None",
            "Triggered": true
)"));
}

TEST_F(AlarmReportTest, RowsStartFromZeroEachTime) {
  setAlarms(mInstrument, 1, 2);
  setAlarm(mInstrument, 1, {1, 1, 3, 4, 1});
  EXPECT_THAT(document(), HasSubstr(R"(
            "SampleType": "Analysis",
            "GroupID": 0,
            "GroupStr": "0. None",
            "ParamID": 0,
            "ParamStr": "0. None",
            "Triggered": false
)"));
}

TEST_P(AlarmSampleTypeTest, Text) {
  setAlarms(mInstrument, 1, 1);
  setAlarm(mInstrument, 1, {GetParam().code, GetParam().allTypes, 0, 0, 0});
  EXPECT_THAT(document(), HasSubstr(std::string("\"SampleType\": \"") + GetParam().text + "\",\n"));
}

INSTANTIATE_TEST_SUITE_P(Codes, AlarmSampleTypeTest, testing::ValuesIn(cSampleTypes));

TEST_F(AlarmReportTest, ComponentNameThatIsNotUtf8IsRepaired) {
  setAlarms(mInstrument, 1, 1);
  setAlarm(mInstrument, 1, {0, 0, 1, 3, 0});
  setComponent(mInstrument, 3, "\xC4\"\xC3\xA4\xE2");
  EXPECT_THAT(document(),
              HasSubstr("\"ParamStr\": \"3. \xEF\xBF\xBD\\\"\xC3\xA4\xEF\xBF\xBD\",\n"));
}

// Rows may be incomplete, the header may not.

TEST_P(AlarmStatusTest, FailedHeadIsReturnedWithNothingPrinted) {
  setAlarms(mInstrument, 1, 2);
  mInstrument.setStatusOfCall(eFunction::eReadParamList, 1, GetParam());
  EXPECT_EQ(read(), asInt(GetParam()));
  EXPECT_EQ(mOutput.out, "");
  EXPECT_THAT(mInstrument.traffic(), ElementsAre(cHead));
}

INSTANTIATE_TEST_SUITE_P(IncompleteIncluded, AlarmStatusTest, testing::ValuesIn(cRefusals));

TEST_P(AlarmRowFailureTest, IsReturnedAndTheRowsBeforeAreDropped) {
  setAlarms(mInstrument, 1, 3);
  mInstrument.setStatusOfCall(eFunction::eReadParamList, 3, GetParam());
  EXPECT_EQ(read(), asInt(GetParam()));
  EXPECT_EQ(mOutput.out, "");
  EXPECT_THAT(mInstrument.traffic(), ElementsAre(cHead, rowBatch(1), rowBatch(2)));
}

INSTANTIATE_TEST_SUITE_P(Statuses, AlarmRowFailureTest, testing::ValuesIn(cReadFailures));

TEST_F(AlarmReportTest, IncompleteRowIsPrinted) {
  setAlarms(mInstrument, 1, 2);
  setAlarm(mInstrument, 2, {1, 0, 12, 0, 1});
  const std::string complete = document();
  mInstrument.setStatus(eFunction::eReadParamList, 28);
  mInstrument.setStatusOfCall(eFunction::eReadParamList, 4, 0);
  EXPECT_EQ(document(), complete);
  EXPECT_THAT(complete, HasSubstr("\"ParamStr\": \"0. Start failure\""));
}

TEST_F(AlarmReportTest, FailedComponentNameIsUnknownAndTheReportGoesOn) {
  setAlarms(mInstrument, 1, 2);
  setAlarm(mInstrument, 1, {0, 0, 2, 5, 0});
  mInstrument.setStatusOfCall(eFunction::eReadParamList, 3, 5);
  EXPECT_THAT(document(), HasSubstr("\"ParamStr\": \"5. Unknown\",\n"));
  EXPECT_EQ(mInstrument.traffic().back(), rowBatch(2));
}

// The reset of all alarms.

TEST_F(AlarmReportTest, ResetIsOneCommand) {
  EXPECT_EQ(write(), 0);
  EXPECT_EQ(mOutput.out, resultObject(0, "Accepted"));
  EXPECT_EQ(mOutput.err, "");
  EXPECT_THAT(mInstrument.traffic(), ElementsAre("ExecuteCommand(handle, 0, 35)"));
}

TEST_P(AlarmStatusTest, ResetThatIsRefused) {
  mInstrument.setStatus(eFunction::eExecuteCommand, GetParam());
  EXPECT_EQ(write(), asInt(GetParam()));
  EXPECT_EQ(mOutput.out, resultObject(GetParam(), "Refused"));
  EXPECT_EQ(mOutput.err, "");
  EXPECT_THAT(mInstrument.traffic(), ElementsAre("ExecuteCommand(handle, 0, 35)"));
}
