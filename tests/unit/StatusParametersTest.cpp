// The parameters of the status report: their addresses, their order, and the order in which the
// batch sends them.
#include <InstrumentClient.h>
#include <gmock/gmock.h>

#include "Capture.h"
#include "FakeInstrument.h"
#include "SecStatus.h"
#include "TestMap.h"

using testing::ElementsAre;

namespace {
struct Registered {
  const char* name;
  unsigned long channel;
  unsigned long id;
};

struct Sent {
  std::uint32_t channel;
  std::uint32_t id;
};

/// In registration order.
constexpr Registered cRegistered[] = {
    {"mInstalled1", 0, 502},
    {"mInstalled2", 0, 503},
    {"mInstalled3", 0, 504},
    {"mInstalled4", 0, 505},
    {"mColumnHeader1", 1, 200},
    {"mColumnHeader2", 2, 200},
    {"mColumnHeader3", 3, 200},
    {"mColumnHeader4", 4, 200},
    {"mHeatedSampleLineInstalled", 0, 602},
    {"mColumnTemp1", 1, 300},
    {"mColumnTemp2", 2, 300},
    {"mColumnTemp3", 3, 300},
    {"mColumnTemp4", 4, 300},
    {"mInjTemp1", 1, 302},
    {"mInjTemp2", 2, 302},
    {"mInjTemp3", 3, 302},
    {"mInjTemp4", 4, 302},
    {"mPress1", 1, 304},
    {"mPress2", 2, 304},
    {"mPress3", 3, 304},
    {"mPress4", 4, 304},
    {"mColumnTempSP1", 1, 202},
    {"mColumnTempSP2", 2, 202},
    {"mColumnTempSP3", 3, 202},
    {"mColumnTempSP4", 4, 202},
    {"mInjTempSP1", 1, 203},
    {"mInjTempSP2", 2, 203},
    {"mInjTempSP3", 3, 203},
    {"mInjTempSP4", 4, 203},
    {"mPressSP1", 1, 342},
    {"mPressSP2", 2, 342},
    {"mPressSP3", 3, 342},
    {"mPressSP4", 4, 342},
    {"mRunTimeSP1", 1, 204},
    {"mRunTimeSP2", 2, 204},
    {"mRunTimeSP3", 3, 204},
    {"mRunTimeSP4", 4, 204},
    {"mAutoZero1", 1, 307},
    {"mAutoZero2", 2, 307},
    {"mAutoZero3", 3, 307},
    {"mAutoZero4", 4, 307},
    {"mDetState1", 1, 215},
    {"mDetState2", 2, 215},
    {"mDetState3", 3, 215},
    {"mDetState4", 4, 215},
    {"mDetCalibrated1", 1, 323},
    {"mDetCalibrated2", 2, 323},
    {"mDetCalibrated3", 3, 323},
    {"mDetCalibrated4", 4, 323},
    {"mSampleLineTemp", 0, 100},
    {"mSampleLineTempSP", 0, 1},
    {"mAmbientTemp", 0, 103},
    {"mAmbientPressure", 0, 104},
    {"mServiceSwitch", 0, 70},
    {"mAutoState", 0, 138},
    {"mExtReady", 0, 131},
    {"mGC_State", 0, 102},
    {"mCurrentStream", 0, 58},
    {"mGC_Error_Status", 0, 132},
    {"mGC_CurRunTime", 0, 161},
    {"mGC_FlushingStream", 0, 134},
    {"mGC_WaitingBetweenRuns", 0, 162},
    {"mGC_CleaningTimeLeft", 0, 96},
    {"mAnalysisCounter", 0, 2202},
    {"mContinuous", 0, 12},
    {"mSeq_line", 0, 136},
    {"mLine_replicate", 0, 137},
    {"mSeq_replicate", 0, 135},
    {"mRunType", 0, 141},
    {"mAlarmOverall", 0, 2211},
    {"mHasController", 0, 173},
};
static_assert(std::size(cRegistered) == 71);

/// In the iteration order of a map with 128 buckets: bucket by bucket, each newest first. A name's
/// bucket is its PJW hash modulo 128, with each character weighted by 13.
constexpr Sent cSent[] = {
    {0, 102},   // mGC_State
    {0, 96},    // mGC_CleaningTimeLeft
    {4, 323},   // mDetCalibrated4
    {4, 215},   // mDetState4
    {4, 307},   // mAutoZero4
    {4, 342},   // mPressSP4
    {0, 162},   // mGC_WaitingBetweenRuns
    {3, 200},   // mColumnHeader3
    {2, 204},   // mRunTimeSP2
    {0, 2211},  // mAlarmOverall
    {4, 203},   // mInjTempSP4
    {4, 300},   // mColumnTemp4
    {3, 215},   // mDetState3
    {3, 307},   // mAutoZero3
    {3, 204},   // mRunTimeSP3
    {2, 200},   // mColumnHeader2
    {0, 502},   // mInstalled1
    {0, 161},   // mGC_CurRunTime
    {4, 204},   // mRunTimeSP4
    {0, 602},   // mHeatedSampleLineInstalled
    {3, 203},   // mInjTempSP3
    {3, 300},   // mColumnTemp3
    {2, 323},   // mDetCalibrated2
    {2, 215},   // mDetState2
    {2, 342},   // mPressSP2
    {2, 304},   // mPress2
    {1, 200},   // mColumnHeader1
    {0, 103},   // mAmbientTemp
    {0, 100},   // mSampleLineTemp
    {0, 141},   // mRunType
    {0, 138},   // mAutoState
    {0, 104},   // mAmbientPressure
    {3, 323},   // mDetCalibrated3
    {3, 342},   // mPressSP3
    {0, 58},    // mCurrentStream
    {0, 2202},  // mAnalysisCounter
    {2, 203},   // mInjTempSP2
    {2, 300},   // mColumnTemp2
    {1, 215},   // mDetState1
    {1, 202},   // mColumnTempSP1
    {1, 304},   // mPress1
    {1, 302},   // mInjTemp1
    {0, 135},   // mSeq_replicate
    {4, 304},   // mPress4
    {0, 505},   // mInstalled4
    {0, 12},    // mContinuous
    {2, 202},   // mColumnTempSP2
    {2, 302},   // mInjTemp2
    {1, 203},   // mInjTempSP1
    {1, 300},   // mColumnTemp1
    {0, 1},     // mSampleLineTempSP
    {0, 132},   // mGC_Error_Status
    {3, 202},   // mColumnTempSP3
    {3, 304},   // mPress3
    {3, 302},   // mInjTemp3
    {1, 323},   // mDetCalibrated1
    {1, 342},   // mPressSP1
    {0, 137},   // mLine_replicate
    {4, 202},   // mColumnTempSP4
    {4, 302},   // mInjTemp4
    {0, 131},   // mExtReady
    {0, 70},    // mServiceSwitch
    {0, 134},   // mGC_FlushingStream
    {0, 173},   // mHasController
    {2, 307},   // mAutoZero2
    {0, 503},   // mInstalled2
    {0, 136},   // mSeq_line
    {4, 200},   // mColumnHeader4
    {0, 504},   // mInstalled3
    {1, 307},   // mAutoZero1
    {1, 204},   // mRunTimeSP1
};
static_assert(std::size(cSent) == 71);

class StatusParametersTest : public testing::Test {
 protected:
  FakeInstrument mInstrument;
  SecStatus mSection;
};
}  // namespace

TEST_F(StatusParametersTest, AreRegisteredInOrderWithZeroValues) {
  TestMap map(1);  // one bucket: iterated from the last parameter bound to the first
  mSection.init(&map, FakeInstrument::cHandle);
  ASSERT_EQ(map.current_size(), std::size(cRegistered));
  std::size_t row = std::size(cRegistered);
  for (ParameterMapConstIter it(map); !it.done(); it.advance()) {
    const Registered& expected = cRegistered[--row];
    EXPECT_STREQ((*it).ext_id_.c_str(), expected.name);
    ParamList record = {9, 9, 9, 9, 9.5, 9, 9};
    (*it).int_id_->fill(record);
    EXPECT_EQ(record.Channel, expected.channel) << expected.name;
    EXPECT_EQ(record.ParmID, expected.id) << expected.name;
    EXPECT_EQ(record.Method, 0U) << expected.name;
    EXPECT_EQ(record.Step, 0U) << expected.name;
    EXPECT_EQ(record.realvalue, 0.0) << expected.name;
    EXPECT_EQ(record.intvalue, 0) << expected.name;
    EXPECT_EQ(record.ServiceStatus, 0U) << expected.name;
  }
}

TEST_F(StatusParametersTest, RegistrationSendsAndPrintsNothing) {
  TestMap map;
  const Output output = capture([&] { mSection.init(&map, FakeInstrument::cHandle); });
  EXPECT_THAT(mInstrument.calls(), ElementsAre());
  EXPECT_EQ(output.out, "");
  EXPECT_EQ(output.err, "");
}

TEST_F(StatusParametersTest, BoundNameKeepsItsParameter) {
  TestMap map;
  Parameter* const first = map.add("mGC_State", 3, 7);
  mSection.init(&map, FakeInstrument::cHandle);
  EXPECT_EQ(map.current_size(), 71U);
  EXPECT_EQ(map.at("mGC_State"), first);
}

TEST_F(StatusParametersTest, AreSentInOneBatchInTheOrderOfTheMap) {
  TestMap map(128);
  mSection.init(&map, FakeInstrument::cHandle);
  capture([&] { mSection.readGC(); });
  ASSERT_FALSE(mInstrument.log().empty());
  EXPECT_EQ(mInstrument.log().front().text, "ReadParamList(handle, 71)");
  const std::vector<ParamList> sent = mInstrument.batch(0);
  ASSERT_EQ(sent.size(), std::size(cSent));
  for (std::size_t i = 0; i < sent.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(sent[i].Channel, cSent[i].channel);
    EXPECT_EQ(sent[i].ParmID, cSent[i].id);
    EXPECT_EQ(sent[i].Method, 0U);
    EXPECT_EQ(sent[i].Step, 0U);
    EXPECT_EQ(sent[i].realvalue, 0.0);
    EXPECT_EQ(sent[i].intvalue, 0);
    EXPECT_EQ(sent[i].ServiceStatus, 0U);
  }
  EXPECT_TRUE(mInstrument.batch(1).empty());
}

TEST_F(StatusParametersTest, AllAreSentWhateverIsInstalled) {
  TestMap map;
  mInstrument.setValue(0, 502, {1});
  mSection.init(&map, FakeInstrument::cHandle);
  capture([&] { mSection.readGC(); });
  EXPECT_EQ(mInstrument.batch(0).size(), 71U);
  EXPECT_TRUE(mInstrument.batch(1).empty());
}
