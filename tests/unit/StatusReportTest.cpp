// The status report and the instrument: calls, failures, and texts of any kind.
#include <gmock/gmock.h>

#include <array>

#include "Capture.h"
#include "EverydayInstrument.h"
#include "FakeInstrument.h"
#include "SecStatus.h"
#include "TestMap.h"

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {
class StatusReportTest : public testing::Test {
 protected:
  StatusReportTest() { mSection.init(&mMap, FakeInstrument::cHandle); }

  /// The status returned by the report; its output is in mOutput.
  int report() {
    int lResult = -99;
    mOutput = capture([&] { lResult = mSection.readGC(); });
    EXPECT_EQ(mOutput.err, "");
    return lResult;
  }
  /// The document of a successful report.
  std::string document() {
    EXPECT_EQ(report(), 0);
    return mOutput.out;
  }

  FakeInstrument mInstrument;
  TestMap mMap;
  SecStatus mSection;
  Output mOutput;
};

class StatusBatchFailureTest : public StatusReportTest,
                               public testing::WithParamInterface<unsigned long> {};
}  // namespace

TEST_F(StatusReportTest, CallsInOrder) {
  setEveryday(mInstrument);
  EXPECT_EQ(report(), 0);
  EXPECT_THAT(mInstrument.calls(), ElementsAre("ReadParamList(handle, 71)", "plxGetTime(null)",
                                               "registerObject(SiteInfoTag)", "~SiteInfoTag()",
                                               "ReadObject(handle, 4)", "getErrorText(17)"));
}

TEST_F(StatusReportTest, ErrorZeroHasItsText) {
  setInteger(mInstrument, 0, 132, 0);
  mInstrument.setErrorText(0, "No error");
  EXPECT_THAT(document(), HasSubstr("    \"Error_code\": 0,\n    \"Error_str\": \"No error\",\n"));
  EXPECT_EQ(mInstrument.calls().back(), "getErrorText(0)");
}

TEST_F(StatusReportTest, NegativeErrorHasNoTextAndAsksForNone) {
  setInteger(mInstrument, 0, 132, -1);
  EXPECT_THAT(document(), HasSubstr("    \"Error_code\": -1,\n    \"Error_str\": \"\",\n"));
  EXPECT_EQ(mInstrument.calls().back(), "ReadObject(handle, 4)");
}

TEST_F(StatusReportTest, MissingErrorParameterIsMinusOne) {
  delete mMap.at("mGC_Error_Status");
  mMap.unbind(ACE_CString("mGC_Error_Status"));
  EXPECT_THAT(document(), HasSubstr("    \"Error_code\": -1,\n    \"Error_str\": \"\",\n"));
}

TEST_F(StatusReportTest, MapWithoutParametersShowsZeros) {
  clearParamMap(mMap, false);
  EXPECT_EQ(document(), R"({
    "GC_time": "5-3-2024 07:04:09",
    "Application": "",
    "Host": "online",
    "Total_run_time": 0,
    "Run_time": 0,
    "Error_code": -1,
    "Error_str": "",
    "Alarm_overall": false,
    "Curr_stream": 0,
    "Last_counter": 0,
    "Continuous": false,
    "Seq_line": 0,
    "Line_replicate": 0,
    "Seq_replicate": 0,
    "Run_type": "Analysis",
    "GC_state": "Initializing",
    "Ext_ready_in": "Not Ready",
    "Auto_state": "Idle",
    "Service_switch": "Off",
    "Ambient_press": 0.0,
    "Ambient_temp": 0,
    "Sample_line_temp": {
        "Setpoint": "-",
        "Actual": "-"
    }
}
)");
}

TEST_P(StatusBatchFailureTest, IsReturnedWithNothingPrintedAndNothingAsked) {
  setEveryday(mInstrument);
  mInstrument.setStatus(eFunction::eReadParamList, GetParam());
  // The unsigned status is returned in the bits of an int.
  EXPECT_EQ(static_cast<unsigned int>(report()), GetParam());
  EXPECT_EQ(mOutput.out, "");
  EXPECT_THAT(mInstrument.calls(), ElementsAre("ReadParamList(handle, 71)"));
}

INSTANTIATE_TEST_SUITE_P(Statuses, StatusBatchFailureTest,
                         testing::Values(1UL, 2UL, 27UL, 29UL, 284UL, 10053UL, 0x7FFFFFFFUL,
                                         0x80000000UL, 0x8000001CUL, 0xFFFFFFFFUL));

TEST_F(StatusReportTest, FailureAboveTheRangeOfIntIsNegative) {
  mInstrument.setStatus(eFunction::eReadParamList, 0xFFFFFFFEUL);
  EXPECT_EQ(report(), -2);
}

TEST_F(StatusReportTest, EachReportIsAFreshSnapshot) {
  setInteger(mInstrument, 0, 58, 3);
  EXPECT_THAT(document(), HasSubstr("\"Curr_stream\": 3,"));
  setInteger(mInstrument, 0, 58, 4);
  mInstrument.setStatusOfCall(eFunction::eReadParamList, 3, 9);
  EXPECT_THAT(document(), HasSubstr("\"Curr_stream\": 4,"));
  EXPECT_EQ(report(), 9);
  EXPECT_EQ(mOutput.out, "");
}

TEST_F(StatusReportTest, RecordsOutOfPlaceShowAsZeros) {
  setEveryday(mInstrument);
  mInstrument.tamper = [](ParamList* records, unsigned long count) {
    for (unsigned long i = 0; i + 1 < count; i += 2) {
      std::swap(records[i], records[i + 1]);
    }
    records[count - 1].Channel = 7;
  };
  EXPECT_THAT(document(), HasSubstr("\"Curr_stream\": 0,"));
  EXPECT_THAT(mOutput.out, EndsWith("    \"Sample_line_temp\": {\n        \"Setpoint\": \"-\",\n"
                                    "        \"Actual\": \"-\"\n    }\n}\n"));
}

TEST_F(StatusReportTest, ClockStatusIsNotLookedAt) {
  mInstrument.setStatus(eFunction::eGetTime, 1);
  EXPECT_THAT(document(), StartsWith("{\n    \"GC_time\": \"5-3-2024 07:04:09\",\n"));
}

TEST_F(StatusReportTest, ClockIsPaddedInTheTimeOnly) {
  mInstrument.clock = {10, 20, 30, 21, 11, 31};
  EXPECT_THAT(document(), StartsWith("{\n    \"GC_time\": \"21-11-31 10:20:30\",\n"));
  mInstrument.clock = {1, 2, 3, 4, 5, 6};
  EXPECT_THAT(document(), StartsWith("{\n    \"GC_time\": \"4-5-6 01:02:03\",\n"));
}

TEST_F(StatusReportTest, ClockBeyondAllBoundsStillFits) {
  constexpr unsigned int cMost = 2147483647U;
  mInstrument.clock = {cMost, cMost, cMost, cMost, cMost, cMost};
  EXPECT_THAT(document(), StartsWith("{\n    \"GC_time\": \"2147483647-2147483647-2147483647 "
                                     "2147483647:2147483647:2147483647\",\n"));
}

// Anything that the clock leaves unset reads as 0; an error text left unset shows the clock's text,
// which the buffer held before.
TEST_F(StatusReportTest, LibrariesThatWriteNothing) {
  mInstrument.setTag(4, "Natural gas");
  mInstrument.silent = true;
  EXPECT_THAT(document(), StartsWith(R"({
    "GC_time": "0-0-0 00:00:00",
    "Application": "",
    "Host": "online",
    "Total_run_time": 0,
    "Run_time": 0,
    "Error_code": 0,
    "Error_str": "0-0-0 00:00:00",
)"));
}

TEST_F(StatusReportTest, ApplicationOfAnotherClassIsEmpty) {
  mInstrument.setColumns(4, {"a", "b", "c", "d"});
  EXPECT_THAT(document(), HasSubstr("\"Application\": \"\",\n"));
}

TEST_F(StatusReportTest, ApplicationOfFailedReadIsTakenIfItArrives) {
  mInstrument.setTag(4, "Natural gas");
  mInstrument.setStatus(eFunction::eReadObject, 3);
  EXPECT_THAT(document(), HasSubstr("\"Application\": \"Natural gas\",\n"));
}

TEST_F(StatusReportTest, ApplicationThatIsNotUtf8IsRepaired) {
  mInstrument.setTag(4, "Erdgas 20\xB0\"H\xE2\x82");
  EXPECT_THAT(document(), HasSubstr("    \"Application\": \"Erdgas 20\xEF\xBF\xBD\\\"H"
                                    "\xEF\xBF\xBD\xEF\xBF\xBD\",\n"));
}

TEST_F(StatusReportTest, LongApplicationIsWhole) {
  const std::string text(20000, 'a');
  mInstrument.setTag(4, text);
  EXPECT_THAT(document(), HasSubstr("\"Application\": \"" + text + "\",\n"));
}

TEST_F(StatusReportTest, ErrorTextThatIsNotUtf8IsRepaired) {
  mInstrument.setErrorText(0, "\xC4rger");
  EXPECT_THAT(document(), HasSubstr("\"Error_str\": \"\xEF\xBF\xBDrger\",\n"));
}

TEST_F(StatusReportTest, LongestErrorTextIsWhole) {
  const std::string text(FakeInstrument::cErrorTextSize - 1, 'e');
  mInstrument.setErrorText(0, text);
  EXPECT_THAT(document(), HasSubstr("\"Error_str\": \"" + text + "\",\n"));
}

TEST_F(StatusReportTest, ErrorTextWithoutItsZeroEndsWithTheBuffer) {
  const std::string text(FakeInstrument::cErrorTextSize, 'e');
  mInstrument.setErrorText(0, text);
  EXPECT_THAT(document(),
              HasSubstr("\"Error_str\": \"" + text.substr(0, text.size() - 1) + "\",\n"));
}

TEST_F(StatusReportTest, ErrorTextDoesNotReachTheStateTexts) {
  mInstrument.setErrorText(0, std::string(100, 'e'));
  setInteger(mInstrument, 0, 102, 4);
  EXPECT_THAT(document(), HasSubstr("    \"GC_state\": \"Ready\",\n"));
  EXPECT_THAT(mOutput.out, Not(HasSubstr("Readye")));
}
