// The download of a sequence table: what is written in which order, and every rejection.
#include <gmock/gmock.h>

#include "DownloadBench.h"
#include "SecSequenceTbl.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {
constexpr const char* cClear = "ExecuteCommand(handle, 0, 22)";
constexpr const char* cInsert = "ExecuteCommand(handle, 0, 19)";
constexpr const char* cEmptyHead = "WriteParamList(handle, 2): 0:12 0:15";

/// A line of zeros in the iteration order of a map with 20 buckets; calibration is always 1.
std::string zeroLine(int aLine) {
  const std::string step = "@" + std::to_string(aLine);
  return "WriteParamList(handle, 6): 0:23" + step + " 1:1010" + step + " 0:25" + step + "=1 0:24" +
         step + " 0:26" + step + " 0:22" + step;
}

/// A file of n rows, `aTotal` of which are to be written.
std::string fileOf(int n, const std::string& aTotal) {
  std::string lRows;
  for (int i = 0; i < n; ++i) {
    lRows += i == 0 ? "{}" : ",{}";
  }
  return R"({"Table_repeat":0,"total":)" + aTotal + R"(,"rows":[)" + lRows + "]}";
}

constexpr const char* cThreeLines = R"({
    "Table_repeat": 4, "Continuous": true, "total": 3, "rows": [
        {"Type": "Verification", "Repeat": 2, "Stream": 46, "Slot": 10, "Flush_time": 30.5},
        {"Type": "Blank", "Repeat": 3, "Stream": 5, "Slot": 6, "Flush_time": 2, "More": 7},
        {"Flush_time": -0.25, "Slot": 2147483647, "Stream": -2147483648, "Repeat": -1,
         "Type": "Calibration"}
    ]})";

class SequenceDownloadTest : public DownloadBench<SecSequenceTbl>, public testing::Test {
 protected:
  /// The traffic of a successful download.
  std::vector<std::string> written(const std::string& aContent) {
    const std::size_t lBefore = mInstrument.calls().size();
    EXPECT_EQ(download(aContent), 0);
    EXPECT_EQ(mOutput.out, resultObject(0, "Success!"));
    std::vector<std::string> lTraffic = mInstrument.traffic();
    lTraffic.erase(lTraffic.begin(), lTraffic.begin() + static_cast<std::ptrdiff_t>(lBefore));
    return lTraffic;
  }
};

struct CountRow {
  int rows;
  const char* total;
  std::size_t lines;
};

constexpr CountRow cCounts[] = {
    {5, "3", 3},
    {3, "5", 3},
    {30, "30", 20},
    {20, "20", 20},
    {19, "20", 19},
    {25, "19", 19},
    {25, "20", 20},
    {21, "21", 20},
    {3, "0", 0},
    {3, "-1", 0},
    {3, "1", 1},
    {0, "3", 0},
    {3, "2.0", 0},
    {3, "\"2\"", 0},
    {3, "true", 0},
    {3, "null", 0},
    {3, "[2]", 0},
    {3, "2147483647", 3},
    {3, "2147483648", 0},
    {3, "4294967298", 0},
    {3, "-2147483648", 0},
    {3, "-2147483649", 0},
    {3, "18446744073709551615", 0},
    {25, "2147483647", 20},
    {3, "2e0", 0},
    {3, "1e300", 0},
};

/// A row of the file, and what is written for it.
struct LineRow {
  const char* json;
  const char* line;
};

constexpr const char* cZeroLine =
    "WriteParamList(handle, 6): 0:23@1 1:1010@1 0:25@1=1 0:24@1 0:26@1 0:22@1";

constexpr LineRow cLines[] = {
    {"{}", cZeroLine},
    {"5", cZeroLine},
    {"null", cZeroLine},
    {"true", cZeroLine},
    {"\"Repeat\"", cZeroLine},
    {"[]", cZeroLine},
    {R"([{"Repeat": 5}])", cZeroLine},
    {R"({"Type": "None"})", cZeroLine},
    {R"({"Type": "calibration"})", cZeroLine},
    {R"({"Type": "CALIBRATION"})", cZeroLine},
    {R"({"Type": "Blank "})", cZeroLine},
    {R"({"Type": 2})", cZeroLine},
    {R"({"Type": ""})", cZeroLine},
    {R"({"Type": "Analysis"})", cZeroLine},
    {R"({"Repeat": 1.5, "Stream": 2.0, "Slot": "3", "Flush_time": "4"})", cZeroLine},
    {R"({"Repeat": 2147483648, "Stream": -2147483649, "Slot": 1e2, "Flush_time": null})",
     cZeroLine},
    {R"({"repeat": 5, "STREAM": 6, "slot": 7, "Calib": 0, "mCalib": 5})", cZeroLine},
    {R"({"Flush_time": 2})",
     "WriteParamList(handle, 6): 0:23@1 1:1010@1 0:25@1=1 0:24@1 0:26@1~2 0:22@1"},
    {R"({"Flush_time": 1e300})",
     "WriteParamList(handle, 6): 0:23@1 1:1010@1 0:25@1=1 0:24@1 0:26@1~1.0000000000000001e+300 "
     "0:22@1"},
    {R"({"Flush_time": 1e-400, "Stream": 3})",
     "WriteParamList(handle, 6): 0:23@1 1:1010@1 0:25@1=1 0:24@1 0:26@1 0:22@1=3"},
    {R"({"Repeat": 2147483647, "Stream": -2147483648, "Slot": -1})",
     "WriteParamList(handle, 6): 0:23@1 1:1010@1=-1 0:25@1=1 0:24@1=2147483647 0:26@1 "
     "0:22@1=-2147483648"},
    {R"({"Repeat": 5, "Repeat": 6, "Type": "Blank", "Type": 7})",
     "WriteParamList(handle, 6): 0:23@1=2 1:1010@1 0:25@1=1 0:24@1=5 0:26@1 0:22@1"},
    {R"({"Type": "Verification"})",
     "WriteParamList(handle, 6): 0:23@1=3 1:1010@1 0:25@1=1 0:24@1 0:26@1 0:22@1"},
};

struct HeadRow {
  const char* json;
  const char* head;
};

constexpr HeadRow cHeads[] = {
    {R"({"Table_repeat": 4, "Continuous": true, "total": 0})",
     "WriteParamList(handle, 2): 0:12=1 0:15=4"},
    {R"({"total": 0, "Continuous": false, "Table_repeat": -2147483648})",
     "WriteParamList(handle, 2): 0:12 0:15=-2147483648"},
    {R"({"Table_repeat": 2147483647, "total": 0})",
     "WriteParamList(handle, 2): 0:12 0:15=2147483647"},
    {R"({"Table_repeat": 2147483648, "total": 0, "Continuous": 1})", cEmptyHead},
    {R"({"Table_repeat": 4.0, "total": null, "Continuous": "true"})", cEmptyHead},
    {R"({"Table_repeat": null, "total": {}, "Continuous": null})", cEmptyHead},
    {R"({"Table_repeat": "4", "total": [], "rows": {}})", cEmptyHead},
    {R"({"Table_repeat": 0, "total": 3, "rows": null})", cEmptyHead},
    {R"({"Table_repeat": 0, "total": 3, "rows": {"0": {}}})", cEmptyHead},
    {R"({"Table_repeat": 0, "total": 3, "rows": 3})", cEmptyHead},
    {R"({"Table_repeat": 0, "total": 3, "Rows": [{}]})", cEmptyHead},
    {R"({"Table_repeat": 0, "total": 3, "rows": null, "rows": [{}]})", cEmptyHead},
    {R"({"Table_repeat": 5, "Table_repeat": 6, "total": 0, "total": 1, "rows": [{}]})",
     "WriteParamList(handle, 2): 0:12 0:15=5"},
};

class SequenceCountTest : public SequenceDownloadTest,
                          public testing::WithParamInterface<CountRow> {};
class SequenceLineTest : public SequenceDownloadTest,
                         public testing::WithParamInterface<LineRow> {};
class SequenceHeadTest : public SequenceDownloadTest,
                         public testing::WithParamInterface<HeadRow> {};
class SequenceRefusalTest : public SequenceDownloadTest,
                            public testing::WithParamInterface<unsigned long> {};
}  // namespace

TEST_F(SequenceDownloadTest, LinesAreWrittenInOrderWithAnInsertBeforeAllButTheFirst) {
  EXPECT_THAT(
      written(cThreeLines),
      ElementsAre("WriteParamList(handle, 2): 0:12=1 0:15=4", cClear,
                  "WriteParamList(handle, 6): 0:23@1=3 1:1010@1=10 0:25@1=1 0:24@1=2 0:26@1~30.5 "
                  "0:22@1=46",
                  cInsert,
                  "WriteParamList(handle, 6): 0:23@2=2 1:1010@2=6 0:25@2=1 0:24@2=3 0:26@2~2 "
                  "0:22@2=5",
                  cInsert,
                  "WriteParamList(handle, 6): 0:23@3=1 1:1010@3=2147483647 0:25@3=1 0:24@3=-1 "
                  "0:26@3~-0.25 0:22@3=-2147483648"));
  EXPECT_EQ(mMap.current_size(), 0U);
}

TEST_F(SequenceDownloadTest, PrintedReportIsAValidFile) {
  mInstrument.setValue(0, 15, {4});
  mInstrument.setValue(0, 144, {1});
  mInstrument.setStepValue(0, 23, 1, {9});  // prints "None", which downloads as an analysis
  mInstrument.setStepValue(0, 24, 1, {7});
  mInstrument.setStepValue(0, 26, 1, {0, 12.25});
  const std::string report = document();
  EXPECT_THAT(report, HasSubstr("\"Type\": \"None\""));
  EXPECT_THAT(written(report),
              ElementsAre("WriteParamList(handle, 2): 0:12 0:15=4", cClear,
                          "WriteParamList(handle, 6): 0:23@1 1:1010@1 0:25@1=1 0:24@1=7 "
                          "0:26@1~12.25 0:22@1"));
}

TEST_P(SequenceHeadTest, IsWrittenThenTheTableClearedAndNoLineWritten) {
  EXPECT_THAT(written(GetParam().json), ElementsAre(GetParam().head, cClear));
}

INSTANTIATE_TEST_SUITE_P(Heads, SequenceHeadTest, testing::ValuesIn(cHeads));

TEST_P(SequenceCountTest, Lines) {
  const std::vector<std::string> traffic = written(fileOf(GetParam().rows, GetParam().total));
  std::vector<std::string> expected = {cEmptyHead, cClear};
  for (std::size_t line = 1; line <= GetParam().lines; ++line) {
    if (line > 1) {
      expected.emplace_back(cInsert);
    }
    expected.push_back(zeroLine(static_cast<int>(line)));
  }
  EXPECT_EQ(traffic, expected);
}

INSTANTIATE_TEST_SUITE_P(Totals, SequenceCountTest, testing::ValuesIn(cCounts));

TEST_P(SequenceLineTest, IsWrittenWithDefaultsForWhatItLacks) {
  EXPECT_THAT(
      written(std::string(R"({"Table_repeat": 0, "total": 1, "rows": [)") + GetParam().json + "]}"),
      ElementsAre(cEmptyHead, cClear, GetParam().line));
}

INSTANTIATE_TEST_SUITE_P(Rows, SequenceLineTest, testing::ValuesIn(cLines));

// Any status but 0 is a refusal, 28 included; earlier steps are not undone.

TEST_P(SequenceRefusalTest, Head) {
  mInstrument.setStatusOfCall(eFunction::eWriteParamList, 1, GetParam());
  EXPECT_EQ(download(cThreeLines), asInt(GetParam()));
  EXPECT_EQ(mOutput.out, resultObject(GetParam(), "Refused: unable to set table repeat"));
  EXPECT_EQ(mInstrument.calls().size(), 1U);
}

TEST_P(SequenceRefusalTest, Clear) {
  mInstrument.setStatusOfCall(eFunction::eExecuteCommand, 1, GetParam());
  EXPECT_EQ(download(cThreeLines), asInt(GetParam()));
  EXPECT_EQ(mOutput.out, resultObject(GetParam(), "Refused: unabled to clear orignal table"));
  EXPECT_THAT(mInstrument.calls(), ElementsAre("WriteParamList(handle, 2)", cClear));
}

TEST_P(SequenceRefusalTest, FirstLine) {
  mInstrument.setStatusOfCall(eFunction::eWriteParamList, 2, GetParam());
  EXPECT_EQ(download(cThreeLines), asInt(GetParam()));
  EXPECT_EQ(mOutput.out, resultObject(GetParam(), "Refused: unable to set sequence line params"));
  EXPECT_THAT(mInstrument.calls(),
              ElementsAre("WriteParamList(handle, 2)", cClear, "WriteParamList(handle, 6)"));
}

TEST_P(SequenceRefusalTest, InsertOfTheThirdLine) {
  mInstrument.setStatusOfCall(eFunction::eExecuteCommand, 3, GetParam());
  EXPECT_EQ(download(cThreeLines), asInt(GetParam()));
  EXPECT_EQ(mOutput.out, resultObject(GetParam(), "Refused: unable to insert new sequence"));
  EXPECT_THAT(mInstrument.calls(),
              ElementsAre("WriteParamList(handle, 2)", cClear, "WriteParamList(handle, 6)", cInsert,
                          "WriteParamList(handle, 6)", cInsert));
}

TEST_P(SequenceRefusalTest, SecondLineAfterItsInsert) {
  mInstrument.setStatusOfCall(eFunction::eWriteParamList, 3, GetParam());
  EXPECT_EQ(download(cThreeLines), asInt(GetParam()));
  EXPECT_EQ(mOutput.out, resultObject(GetParam(), "Refused: unable to set sequence line params"));
  EXPECT_THAT(mInstrument.calls(),
              ElementsAre("WriteParamList(handle, 2)", cClear, "WriteParamList(handle, 6)", cInsert,
                          "WriteParamList(handle, 6)"));
}

INSTANTIATE_TEST_SUITE_P(Statuses, SequenceRefusalTest, testing::ValuesIn(cRefusals));
