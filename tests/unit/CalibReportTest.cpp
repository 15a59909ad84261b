// The report of the calibration table.
#include <gmock/gmock.h>

#include <limits>

#include "SecCalibTbl.h"
#include "SectionBench.h"

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {
/// Exposes the section's state.
class OpenCalibTbl : public SecCalibTbl {
 public:
  ParameterMap* map() const { return mMap; }
  unsigned long handle() const { return mHandle; }
};

/// The call for the number of peaks on a channel.
std::string infoCall(int aChannel) {
  return "ReadProgramInfo(handle, 0, " + std::to_string(aChannel) + ", 1)";
}

/// The records of a peak in the iteration order of a map with 25 buckets.
std::string peakBatch(int aChannel, int aPeak) {
  std::string lText = "ReadParamList(handle, 23):";
  for (const int id : {1196, 1188, 1185, 1179, 1190, 1181, 1183, 1176, 1178, 1192, 1186, 1230,
                       1194, 1193, 1184, 1195, 1180, 1182, 1177, 1242, 1191, 1187, 1189}) {
    lText +=
        " " + std::to_string(aChannel) + ":" + std::to_string(id) + "@" + std::to_string(aPeak);
  }
  return lText;
}

class CalibReportTest : public SectionBench<OpenCalibTbl>, public testing::Test {
 protected:
  /// The second result differs from the first, so that a mix-up is seen.
  void setPeaks(unsigned long a1, unsigned long a2, unsigned long a3, unsigned long a4) {
    unsigned long lChannel = 0;
    for (const unsigned long peaks : {a1, a2, a3, a4}) {
      mInstrument.setProgramInfo(++lChannel, peaks, 7);
    }
  }
  void setPeak(std::uint32_t aChannel, std::uint32_t aPeak, const std::string& aName, double aTime,
               double aAmount, double aLinear) {
    std::uint32_t lId = 1176;
    for (const char c : aName) {
      mInstrument.setStepValue(aChannel, lId++, aPeak, {c, -77.5, 0});
    }
    mInstrument.setStepValue(aChannel, 1196, aPeak, {-77, aTime, 0});
    mInstrument.setStepValue(aChannel, 1230, aPeak, {-77, aAmount, 0});
    mInstrument.setStepValue(aChannel, 1242, aPeak, {-77, aLinear, 0});
  }
  /// The number of batches of the last report.
  std::size_t batches(std::size_t aBefore) const {
    return mInstrument.calls().size() - aBefore - 4;
  }
};

class CalibReportFailureTest : public CalibReportTest,
                               public testing::WithParamInterface<unsigned long> {};
}  // namespace

TEST_F(CalibReportTest, LentMapIsNotKept) {
  EXPECT_EQ(mSection.map(), nullptr);
  EXPECT_EQ(mSection.handle(), FakeInstrument::cHandle);
  EXPECT_EQ(mMap.current_size(), 0U);
  setPeaks(1, 0, 0, 0);
  document();
  EXPECT_EQ(mSection.map(), nullptr);
  EXPECT_EQ(mMap.current_size(), 0U);
}

TEST_F(CalibReportTest, NoPeaksAreAnEmptyArray) {
  setPeaks(0, 0, 0, 0);
  EXPECT_EQ(document(), "{\n    \"total\": 0,\n    \"rows\": []\n}\n");
  EXPECT_THAT(mInstrument.traffic(),
              ElementsAre(infoCall(1), infoCall(2), infoCall(3), infoCall(4)));
}

TEST_F(CalibReportTest, ChannelByChannelAndPeakByPeak) {
  setPeaks(2, 0, 1, 0);
  setPeak(1, 1, "Methane", 1.5, 92.25, 1000.0);
  setPeak(1, 2, "", 0.0, 0.0, -0.125);
  setPeak(3, 1, "abcdefghijklmnopqrst", 0.25, 5e-324, 1e21);
  EXPECT_EQ(document(), R"({
    "total": 3,
    "rows": [
        {
            "Channel": 1,
            "ID": 1,
            "PkName": "Methane",
            "Ret_time": 90.0,
            "Level_amt": 92.25,
            "Linear": 1000.0
        },
        {
            "Channel": 1,
            "ID": 2,
            "PkName": "",
            "Ret_time": 0.0,
            "Level_amt": 0.0,
            "Linear": -0.125
        },
        {
            "Channel": 3,
            "ID": 1,
            "PkName": "abcdefghijklmnopqrst",
            "Ret_time": 15.0,
            "Level_amt": 5e-324,
            "Linear": 1e21
        }
    ]
}
)");
  EXPECT_THAT(mInstrument.traffic(),
              ElementsAre(infoCall(1), infoCall(2), infoCall(3), infoCall(4), peakBatch(1, 1),
                          peakBatch(1, 2), peakBatch(3, 1)));
}

TEST_F(CalibReportTest, AtMost100PeaksOfAChannel) {
  setPeaks(0, 250, 99, 100);
  EXPECT_THAT(document(), StartsWith("{\n    \"total\": 299,\n"));
  EXPECT_EQ(batches(0), 299U);
  EXPECT_THAT(mInstrument.traffic()[4 + 99], StartsWith(peakBatch(2, 100)));
  EXPECT_THAT(mInstrument.traffic()[4 + 100], StartsWith(peakBatch(3, 1)));
  setPeaks(101, 0xFFFFFFFFUL, 0x80000000UL, ~0UL);
  EXPECT_THAT(document(), StartsWith("{\n    \"total\": 400,\n"));
  EXPECT_EQ(batches(303), 400U);
}

TEST_F(CalibReportTest, CountsAbove32BitsAre100Too) {
  if constexpr (sizeof(unsigned long) > 4) {
    constexpr auto cBeyond = static_cast<unsigned long>(0x100000000ULL);
    setPeaks(cBeyond, cBeyond + 5, 0, cBeyond * 0x100);
    EXPECT_THAT(document(), StartsWith("{\n    \"total\": 300,\n"));
    EXPECT_EQ(batches(0), 300U);
  } else {
    GTEST_SKIP() << "long has 32 bits";
  }
}

TEST_F(CalibReportTest, CountThatIsNotDeliveredIsZero) {
  mInstrument.setProgramInfo(1, 2, 9);
  mInstrument.setProgramInfo(3, 1, 9);
  EXPECT_THAT(document(), StartsWith("{\n    \"total\": 3,\n"));
  EXPECT_EQ(batches(0), 3U);
}

TEST_F(CalibReportTest, StatusOfTheCountIsNotLookedAt) {
  setPeaks(1, 0, 0, 1);
  mInstrument.setStatus(eFunction::eReadProgramInfo, 5);
  EXPECT_THAT(document(), StartsWith("{\n    \"total\": 2,\n"));
  EXPECT_EQ(batches(0), 2U);
}

TEST_F(CalibReportTest, EachReportCountsAnew) {
  setPeaks(3, 2, 1, 1);
  EXPECT_THAT(document(), StartsWith("{\n    \"total\": 7,\n"));
  setPeaks(1, 0, 0, 0);
  EXPECT_THAT(document(), StartsWith("{\n    \"total\": 1,\n"));
  EXPECT_EQ(mInstrument.traffic().back(), peakBatch(1, 1));
}

TEST_F(CalibReportTest, ZeroEndsAName) {
  setPeaks(1, 0, 0, 0);
  setPeak(1, 1, std::string("C6+\0xyz", 7), 0.0, 0.0, 0.0);
  EXPECT_THAT(document(), HasSubstr("\"PkName\": \"C6+\",\n"));
}

TEST_F(CalibReportTest, LowEightBitsAreTheCharacter) {
  setPeaks(1, 0, 0, 0);
  mInstrument.setStepValue(1, 1176, 1, {0x7FFFFF43});
  mInstrument.setStepValue(1, 1177, 1, {-177});  // ...FF4F
  mInstrument.setStepValue(1, 1178, 1, {INT_MIN + 0x32});
  mInstrument.setStepValue(1, 1179, 1, {0x100});
  mInstrument.setStepValue(1, 1180, 1, {'x'});
  EXPECT_THAT(document(), HasSubstr("\"PkName\": \"CO2\",\n"));
}

TEST_F(CalibReportTest, NameThatIsNotUtf8IsRepaired) {
  setPeaks(1, 0, 0, 0);
  setPeak(1, 1, "\xC4thyl\"\xC3\xA4\xE2\x82", 0.0, 0.0, 0.0);
  EXPECT_THAT(document(),
              HasSubstr("\"PkName\": \"\xEF\xBF\xBDthyl\\\"\xC3\xA4\xEF\xBF\xBD\xEF\xBF\xBD\",\n"));
}

TEST_F(CalibReportTest, NumbersThatHaveNoJsonFormAreDashes) {
  constexpr double cInfinity = std::numeric_limits<double>::infinity();
  setPeaks(2, 0, 0, 0);
  // The time in seconds overflows although the time in minutes does not.
  setPeak(1, 1, "", 1e308, std::numeric_limits<double>::quiet_NaN(), -cInfinity);
  setPeak(1, 2, "", -cInfinity, cInfinity, std::numeric_limits<double>::max());
  EXPECT_THAT(document(),
              AllOf(HasSubstr("            \"Ret_time\": \"-\",\n            \"Level_amt\": "
                              "\"-\",\n            \"Linear\": \"-\"\n        },\n"),
                    HasSubstr("            \"Ret_time\": \"-\",\n            \"Level_amt\": "
                              "\"-\",\n            \"Linear\": 1.7976931348623157e308\n")));
}

TEST_F(CalibReportTest, PeakWithoutAnswerShowsZerosAndNotThePeakBefore) {
  setPeaks(2, 0, 0, 0);
  setPeak(1, 1, "Methane", 1.5, 92.25, 1000.0);
  EXPECT_THAT(document(), EndsWith(R"(
            "Channel": 1,
            "ID": 2,
            "PkName": "",
            "Ret_time": 0.0,
            "Level_amt": 0.0,
            "Linear": 0.0
        }
    ]
}
)"));
}

TEST_F(CalibReportTest, IncompletePeaksArePrinted) {
  setPeaks(1, 1, 0, 0);
  setPeak(2, 1, "Ethane", 0.5, 1.5, 2.5);
  const std::string complete = document();
  EXPECT_THAT(complete, HasSubstr("\"PkName\": \"Ethane\",\n            \"Ret_time\": 30.0,\n"));
  mInstrument.setStatus(eFunction::eReadParamList, 28);
  EXPECT_EQ(document(), complete);
}

TEST_P(CalibReportFailureTest, FailedLastPeakIsReturnedAndThePeaksBeforeAreDropped) {
  setPeaks(1, 2, 0, 0);
  mInstrument.setStatusOfCall(eFunction::eReadParamList, 3, GetParam());
  EXPECT_EQ(read(), asInt(GetParam()));
  EXPECT_EQ(mOutput.out, "");
  EXPECT_EQ(mInstrument.traffic().back(), peakBatch(2, 2));
}

TEST_P(CalibReportFailureTest, FailedPeakIsTheLastThatIsAsked) {
  setPeaks(3, 2, 0, 0);
  mInstrument.setStatusOfCall(eFunction::eReadParamList, 1, GetParam());
  EXPECT_EQ(read(), asInt(GetParam()));
  EXPECT_EQ(mOutput.out, "");
  EXPECT_EQ(batches(0), 1U);
}

INSTANTIATE_TEST_SUITE_P(Statuses, CalibReportFailureTest, testing::ValuesIn(cReadFailures));
