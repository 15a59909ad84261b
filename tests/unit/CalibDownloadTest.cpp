// The download of calibration level amounts: what is written, what is skipped, every rejection.
#include <gmock/gmock.h>

#include "DownloadBench.h"
#include "SecCalibTbl.h"

using testing::ElementsAre;

namespace {
constexpr const char* cClear = "ExecuteCommand(handle, 0, 26)";
constexpr const char* cFirst = "WriteParamList(handle, 1): 1:1230@1~0.5";
constexpr const char* cSecond = "WriteParamList(handle, 1): 2:1230@7~5";
constexpr const char* cThird = "WriteParamList(handle, 1): 4:1230@100~-1.25";

constexpr const char* cThreeRows = R"({"total": 3, "rows": [
    {"Channel": 1, "ID": 1, "PkName": "Methane", "Ret_time": 90.0, "Level_amt": 0.5, "Linear": 1.0},
    {"Level_amt": 5, "ID": 7, "Channel": 2},
    {"Channel": 4, "ID": 100, "Level_amt": -1.25}]})";

class CalibDownloadTest : public DownloadBench<SecCalibTbl>, public testing::Test {
 protected:
  /// The traffic of a successful download.
  std::vector<std::string> written(const std::string& aContent) {
    EXPECT_EQ(download(aContent), 0);
    EXPECT_EQ(mOutput.out, resultObject(0, "Success"));
    return mInstrument.traffic();
  }
};

/// A row of the file, and what is written for it.
struct UsedRow {
  const char* json;
  const char* written;
};

// Channel and peak are not range-checked: that is up to the instrument.
constexpr UsedRow cUsed[] = {
    {R"({"Channel": 1, "ID": 1, "Level_amt": 0})", "WriteParamList(handle, 1): 1:1230@1"},
    {R"({"Channel": 0, "ID": 0, "Level_amt": 1e300})",
     "WriteParamList(handle, 1): 0:1230~1.0000000000000001e+300"},
    {R"({"Channel": 2147483647, "ID": 2147483647, "Level_amt": 2.5})",
     "WriteParamList(handle, 1): 2147483647:1230@2147483647~2.5"},
    {R"({"Channel": -1, "ID": -2147483648, "Level_amt": -2.5})",
     "WriteParamList(handle, 1): 4294967295:1230@2147483648~-2.5"},
    {R"({"Channel": 5, "ID": 101, "Level_amt": 18446744073709551616})",
     "WriteParamList(handle, 1): 5:1230@101~1.8446744073709552e+19"},
    {R"({"Channel": 3, "ID": 4, "Level_amt": 5, "Channel": "no", "ID": 6, "Level_amt": 7})",
     "WriteParamList(handle, 1): 3:1230@4~5"},
};

constexpr const char* cSkipped[] = {
    "{}",
    "5",
    "null",
    "true",
    "\"Channel\"",
    "[]",
    R"([{"Channel": 1, "ID": 2, "Level_amt": 3}])",
    R"({"ID": 2, "Level_amt": 3})",
    R"({"Channel": 1, "Level_amt": 3})",
    R"({"Channel": 1, "ID": 2})",
    R"({"Channel": 1.0, "ID": 2, "Level_amt": 3})",
    R"({"Channel": 1, "ID": 2.0, "Level_amt": 3})",
    R"({"Channel": "1", "ID": 2, "Level_amt": 3})",
    R"({"Channel": 1, "ID": null, "Level_amt": 3})",
    R"({"Channel": 1, "ID": 2, "Level_amt": "3"})",
    R"({"Channel": 1, "ID": 2, "Level_amt": "-"})",
    R"({"Channel": 1, "ID": 2, "Level_amt": null})",
    R"({"Channel": 1, "ID": 2, "Level_amt": true})",
    R"({"Channel": 1, "ID": 2, "Level_amt": [3]})",
    R"({"Channel": 2147483648, "ID": 2, "Level_amt": 3})",
    R"({"Channel": 1, "ID": 4294967297, "Level_amt": 3})",
    R"({"Channel": 1, "ID": -2147483649, "Level_amt": 3})",
    R"({"channel": 1, "id": 2, "level_amt": 3})",
    R"({"Channel": 1.0, "Channel": 1, "ID": 2, "Level_amt": 3})",
};

struct CountRow {
  int rows;
  const char* total;
  std::size_t written;
};

constexpr CountRow cCounts[] = {
    {500, "500", 400},
    {400, "400", 400},
    {401, "401", 400},
    {500, "400", 400},
    {500, "399", 399},
    {399, "400", 399},
    {5, "3", 3},
    {3, "5", 3},
    {3, "0", 0},
    {3, "-1", 0},
    {3, "2.0", 0},
    {3, "\"2\"", 0},
    {3, "null", 0},
    {3, "2147483647", 3},
    {3, "2147483648", 0},
    {3, "4294967298", 0},
    {500, "2147483647", 400},
    {3, "-2147483648", 0},
    {3, "1e2", 0},
    {0, "3", 0},
};

class CalibUsedRowTest : public CalibDownloadTest, public testing::WithParamInterface<UsedRow> {};
class CalibSkippedRowTest : public CalibDownloadTest,
                            public testing::WithParamInterface<const char*> {};
class CalibCountTest : public CalibDownloadTest, public testing::WithParamInterface<CountRow> {};
class CalibNoRowsTest : public CalibDownloadTest,
                        public testing::WithParamInterface<const char*> {};
class CalibRefusalTest : public CalibDownloadTest,
                         public testing::WithParamInterface<unsigned long> {};
}  // namespace

TEST_F(CalibDownloadTest, TableIsClearedThenEachRowWrittenInABatchOfItsOwn) {
  EXPECT_THAT(written(cThreeRows), ElementsAre(cClear, cFirst, cSecond, cThird));
  EXPECT_EQ(mMap.current_size(), 0U);
}

TEST_F(CalibDownloadTest, PrintedReportIsAValidFile) {
  mInstrument.setProgramInfo(3, 1, 0);
  mInstrument.setStepValue(3, 1230, 1, {0, 12.25});
  const std::string report = document();
  EXPECT_EQ(download(report), 0);
  EXPECT_EQ(mInstrument.traffic().back(), "WriteParamList(handle, 1): 3:1230@1~12.25");
}

TEST_P(CalibUsedRowTest, IsWritten) {
  EXPECT_THAT(written(std::string(R"({"total": 1, "rows": [)") + GetParam().json + "]}"),
              ElementsAre(cClear, GetParam().written));
}

INSTANTIATE_TEST_SUITE_P(Rows, CalibUsedRowTest, testing::ValuesIn(cUsed));

TEST_P(CalibSkippedRowTest, UsesUpItsPlace) {
  const std::string first = R"({"Channel": 1, "ID": 1, "Level_amt": 0.5})";
  const std::string second = R"({"Channel": 2, "ID": 7, "Level_amt": 5})";
  const std::string rows = first + "," + GetParam() + "," + second + "]}";
  EXPECT_THAT(written("{\"total\": 2, \"rows\": [" + rows), ElementsAre(cClear, cFirst));
  EXPECT_THAT(written("{\"total\": 3, \"rows\": [" + rows),
              ElementsAre(cClear, cFirst, cClear, cFirst, cSecond));
}

INSTANTIATE_TEST_SUITE_P(Rows, CalibSkippedRowTest, testing::ValuesIn(cSkipped));

TEST_P(CalibCountTest, Rows) {
  std::string rows;
  std::vector<std::string> expected = {cClear};
  for (int i = 1; i <= GetParam().rows; ++i) {
    rows += std::string(i > 1 ? "," : "") + R"({"Channel":2,"ID":)" + std::to_string(i) +
            R"(,"Level_amt":1})";
    if (static_cast<std::size_t>(i) <= GetParam().written) {
      expected.push_back("WriteParamList(handle, 1): 2:1230@" + std::to_string(i) + "~1");
    }
  }
  EXPECT_EQ(written(std::string("{\"total\":") + GetParam().total + ",\"rows\":[" + rows + "]}"),
            expected);
}

INSTANTIATE_TEST_SUITE_P(Totals, CalibCountTest, testing::ValuesIn(cCounts));

TEST_F(CalibDownloadTest, SkippedRowsCountTowards400) {
  std::string rows = "{\"Channel\": 1, \"ID\": 1, \"Level_amt\": 0.5}";
  for (int i = 0; i < 398; ++i) {
    rows += ",{}";
  }
  rows += R"(,{"Channel": 2, "ID": 7, "Level_amt": 5},{"Channel": 4, "ID": 100, "Level_amt": 1}]})";
  EXPECT_THAT(written("{\"total\": 401, \"rows\": [" + rows), ElementsAre(cClear, cFirst, cSecond));
}

TEST_P(CalibNoRowsTest, OnlyTheClearCommandIsSent) {
  EXPECT_THAT(written(GetParam()), ElementsAre(cClear));
}

INSTANTIATE_TEST_SUITE_P(
    Files, CalibNoRowsTest,
    testing::Values(
        R"({"total": 3})", R"({"total": null})", R"({"total": 3, "rows": null})",
        R"({"total": 3, "rows": {}})", R"({"total": 3, "rows": 5})",
        R"({"total": 3, "rows": "[]"})", R"({"total": 3, "rows": []})",
        R"({"total": 1, "Rows": [{"Channel": 1, "ID": 1, "Level_amt": 1}]})",
        R"({"total": 0, "total": 1, "rows": [{"Channel": 1, "ID": 1, "Level_amt": 1}]})",
        R"({"total": 1, "rows": 0, "rows": [{"Channel": 1, "ID": 1, "Level_amt": 1}]})"));

TEST_P(CalibRefusalTest, FailedClearDoesNotStopTheDownload) {
  mInstrument.setStatus(eFunction::eExecuteCommand, GetParam());
  EXPECT_THAT(written(cThreeRows), ElementsAre(cClear, cFirst, cSecond, cThird));
}

TEST_P(CalibRefusalTest, FailedClearOfAFileWithoutRowsIsASuccess) {
  mInstrument.setStatus(eFunction::eExecuteCommand, GetParam());
  EXPECT_THAT(written(R"({"total": 0})"), ElementsAre(cClear));
}

TEST_P(CalibRefusalTest, RefusedRowIsNamedAndTheRowsAfterItAreNotWritten) {
  mInstrument.setStatusOfCall(eFunction::eWriteParamList, 2, GetParam());
  EXPECT_EQ(download(cThreeRows), asInt(GetParam()));
  EXPECT_EQ(mOutput.out,
            resultObject(GetParam(), "Refused: Unable to set new level for chan[2] peak[7]"));
  EXPECT_THAT(mInstrument.traffic(), ElementsAre(cClear, cFirst, cSecond));
}

INSTANTIATE_TEST_SUITE_P(Statuses, CalibRefusalTest, testing::ValuesIn(cRefusals));

TEST_F(CalibDownloadTest, RefusedRowAtTheLimitsIsNamed) {
  mInstrument.setStatus(eFunction::eWriteParamList, 5);
  EXPECT_EQ(download(R"({"total": 1, "rows": [
      {"Channel": -2147483648, "ID": -2147483648, "Level_amt": 1}]})"),
            5);
  EXPECT_EQ(mOutput.out, resultObject(5,
                                      "Refused: Unable to set new level for chan[-2147483648] "
                                      "peak[-2147483648]"));
}
