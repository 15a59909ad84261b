// The report of the automation sequence table.
#include <gmock/gmock.h>

#include <array>
#include <limits>

#include "SecSequenceTbl.h"
#include "SectionBench.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// Gives tests access to the run types of the sequence table.
class SecSequenceTblAccess {
 public:
  /// The text left in a used buffer of the minimum size.
  static std::string text(int aCode) {
    std::array<char, 30> lBuffer = {};
    lBuffer.fill('#');
    SecSequenceTbl::printRun_Type(aCode, lBuffer.data());
    return std::string(lBuffer.data());
  }
  static int code(const char* aText) {
    return SecSequenceTbl::getRunTypeFromString(ACE_CString(aText));
  }
};

namespace {
// In the iteration order of a map with 20 buckets.
constexpr const char* cHead = "ReadParamList(handle, 4): 0:12 0:525 0:15 0:144";

std::string lineBatch(int aLine) {
  const std::string step = "@" + std::to_string(aLine);
  return "ReadParamList(handle, 5): 0:23" + step + " 1:1010" + step + " 0:24" + step + " 0:26" +
         step + " 0:22" + step;
}

class SequenceReportTest : public SectionBench<SecSequenceTbl>, public testing::Test {
 protected:
  void setHead(std::int32_t aRepeat, std::int32_t aContinuous, std::int32_t aStreams,
               std::int32_t aLines) {
    mInstrument.setValue(0, 15, {aRepeat, -77.5, 0});
    mInstrument.setValue(0, 12, {aContinuous, -77.5, 0});
    mInstrument.setValue(0, 525, {aStreams, -77.5, 0});
    mInstrument.setValue(0, 144, {aLines, -77.5, 0});
  }
  void setLine(std::uint32_t aLine, std::int32_t aType, std::int32_t aRepeat, std::int32_t aStream,
               std::int32_t aSlot, double aFlushTime) {
    mInstrument.setStepValue(0, 23, aLine, {aType, -77.5, 0});
    mInstrument.setStepValue(0, 24, aLine, {aRepeat, -77.5, 0});
    mInstrument.setStepValue(0, 22, aLine, {aStream, -77.5, 0});
    mInstrument.setStepValue(1, 1010, aLine, {aSlot, -77.5, 0});
    mInstrument.setStepValue(0, 1010, aLine, {-77, -77.5, 0});
    mInstrument.setStepValue(0, 26, aLine, {-77, aFlushTime, 0});
  }
};

class SequenceReportFailureTest : public SequenceReportTest,
                                  public testing::WithParamInterface<unsigned long> {};
}  // namespace

TEST_F(SequenceReportTest, WholeDocument) {
  setHead(4, 2, 1, 3);
  setLine(1, 1, 2, 46, 3, 30.5);
  setLine(2, 3, 5, 6, 7, 0.0);
  setLine(3, -1, INT_MAX, INT_MIN, -8, 1e-7);
  EXPECT_EQ(document(), R"({
    "Table_repeat": 4,
    "Continuous": true,
    "total": 3,
    "rows": [
        {
            "Type": "Calibration",
            "Repeat": 2,
            "Stream": 46,
            "Slot": 3,
            "Flush_time": 30.5
        },
        {
            "Type": "Verification",
            "Repeat": 5,
            "Stream": 6,
            "Slot": 7,
            "Flush_time": 0.0
        },
        {
            "Type": "None",
            "Repeat": 2147483647,
            "Stream": -2147483648,
            "Slot": -8,
            "Flush_time": 1e-7
        }
    ]
}
)");
}

TEST_F(SequenceReportTest, CallsInOrderTheSolutionOnChannelOne) {
  setHead(1, 0, 1, 2);
  document();
  EXPECT_THAT(mInstrument.traffic(), ElementsAre(cHead, lineBatch(1), lineBatch(2)));
  EXPECT_EQ(lineBatch(2), "ReadParamList(handle, 5): 0:23@2 1:1010@2 0:24@2 0:26@2 0:22@2");
}

TEST_F(SequenceReportTest, LentMapIsNotUsed) {
  EXPECT_EQ(mMap.current_size(), 0U);
  mMap.add("mTotalLines", 0, 144)->setIntValue(9);
  setHead(1, 0, 1, 0);
  document();
  EXPECT_EQ(mMap.current_size(), 1U);
  EXPECT_EQ(mInstrument.traffic()[0], cHead);
}

TEST_F(SequenceReportTest, WithoutStreamsThereIsOneLineWhateverTheTotal) {
  for (const std::int32_t streams : {0, -1, INT_MIN}) {
    for (const std::int32_t lines : {7, 0, -1, INT_MAX}) {
      const std::size_t before = mInstrument.calls().size();
      setHead(0, 0, streams, lines);
      EXPECT_EQ(document(), R"({
    "Table_repeat": 0,
    "Continuous": false,
    "total": 1,
    "rows": [
        {
            "Type": "Analysis",
            "Repeat": 0,
            "Stream": 0,
            "Slot": 0,
            "Flush_time": 0.0
        }
    ]
}
)");
      EXPECT_EQ(mInstrument.calls().size() - before, 2U);
      EXPECT_EQ(mInstrument.traffic().back(), lineBatch(1));
    }
  }
}

TEST_F(SequenceReportTest, WithoutLinesThereAreNoRows) {
  setHead(-3, INT_MIN, 1, 0);
  EXPECT_EQ(document(),
            "{\n    \"Table_repeat\": -3,\n    \"Continuous\": true,\n"
            "    \"total\": 0\n}\n");
  setHead(INT_MIN, 0, INT_MAX, INT_MIN);
  EXPECT_EQ(document(),
            "{\n    \"Table_repeat\": -2147483648,\n    \"Continuous\": false,\n"
            "    \"total\": -2147483648\n}\n");
  EXPECT_THAT(mInstrument.traffic(), ElementsAre(cHead, cHead));
}

TEST_F(SequenceReportTest, AtMostTwentyLinesAreReadAndTheTotalIsPrintedAsRead) {
  for (const std::int32_t lines : {20, 21, 25, INT_MAX}) {
    const std::size_t before = mInstrument.calls().size();
    setHead(1, 0, 1, lines);
    EXPECT_THAT(document(), HasSubstr("    \"total\": " + std::to_string(lines) + ",\n"));
    EXPECT_EQ(mInstrument.calls().size() - before, 21U);
    EXPECT_EQ(mInstrument.traffic().back(), lineBatch(20));
  }
}

TEST_F(SequenceReportTest, LineWithoutAnswerShowsZerosAndNotTheLineBefore) {
  setHead(1, 0, 1, 2);
  setLine(1, 1, 2, 3, 4, 5.5);
  EXPECT_THAT(document(), HasSubstr(R"(
            "Type": "Analysis",
            "Repeat": 0,
            "Stream": 0,
            "Slot": 0,
            "Flush_time": 0.0
)"));
}

TEST_F(SequenceReportTest, FlushTimeThatIsNoNumberIsADash) {
  setHead(1, 0, 0, 0);
  for (const double time :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::infinity()}) {
    setLine(1, 0, 0, 0, 0, time);
    EXPECT_THAT(document(), HasSubstr("            \"Flush_time\": \"-\"\n"));
  }
}

TEST_F(SequenceReportTest, IncompleteBatchesArePrinted) {
  setHead(4, 1, 1, 2);
  setLine(2, 2, 1, 2, 3, 4.5);
  const std::string complete = document();
  EXPECT_THAT(complete, StartsWith("{\n    \"Table_repeat\": 4,\n"));
  EXPECT_THAT(complete, HasSubstr("\"Type\": \"Blank\""));
  EXPECT_THAT(complete, Not(HasSubstr("None")));
  mInstrument.setStatus(eFunction::eReadParamList, 28);
  EXPECT_EQ(document(), complete);
}

TEST_P(SequenceReportFailureTest, FailedHeadIsReturnedWithNothingPrinted) {
  setHead(1, 0, 1, 3);
  mInstrument.setStatusOfCall(eFunction::eReadParamList, 1, GetParam());
  EXPECT_EQ(read(), asInt(GetParam()));
  EXPECT_EQ(mOutput.out, "");
  EXPECT_THAT(mInstrument.traffic(), ElementsAre(cHead));
}

TEST_P(SequenceReportFailureTest, FailedLineIsReturnedAndTheLinesBeforeAreDropped) {
  setHead(1, 0, 1, 5);
  mInstrument.setStatusOfCall(eFunction::eReadParamList, 4, GetParam());
  EXPECT_EQ(read(), asInt(GetParam()));
  EXPECT_EQ(mOutput.out, "");
  EXPECT_THAT(mInstrument.traffic(), ElementsAre(cHead, lineBatch(1), lineBatch(2), lineBatch(3)));
}

INSTANTIATE_TEST_SUITE_P(Statuses, SequenceReportFailureTest, testing::ValuesIn(cReadFailures));

TEST(SequenceRunTypeTest, Texts) {
  EXPECT_EQ(SecSequenceTblAccess::text(0), "Analysis");
  EXPECT_EQ(SecSequenceTblAccess::text(1), "Calibration");
  EXPECT_EQ(SecSequenceTblAccess::text(2), "Blank");
  EXPECT_EQ(SecSequenceTblAccess::text(3), "Verification");
  for (const int code : {4, -1, INT_MAX, INT_MIN}) {
    EXPECT_EQ(SecSequenceTblAccess::text(code), "None") << code;
  }
}

TEST(SequenceRunTypeTest, CodesOfTextsAnythingElseIsAnAnalysis) {
  EXPECT_EQ(SecSequenceTblAccess::code("Analysis"), 0);
  EXPECT_EQ(SecSequenceTblAccess::code("Calibration"), 1);
  EXPECT_EQ(SecSequenceTblAccess::code("Blank"), 2);
  EXPECT_EQ(SecSequenceTblAccess::code("Verification"), 3);
  for (const char* const text : {"None", "", "calibration", "BLANK", "Blank ", " Blank", "Blan",
                                 "Verification1", "1", "3"}) {
    EXPECT_EQ(SecSequenceTblAccess::code(text), 0) << text;
  }
}
