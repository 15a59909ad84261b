// Abort, stream switch and solution load, whose outputs deliberately differ.
#include <gmock/gmock.h>

#include "RunCommand.h"
#include "SecAbortRun.h"
#include "SecSolutionLoad.h"
#include "SecStream.h"
#include "SectionBench.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {
constexpr const char* cAbort = "ExecuteCommand(handle, 0, 1)";
constexpr const char* cStopSequence = "ExecuteCommand(handle, 0, 17)";

class AbortRun : public SectionBench<SecAbortRun>, public testing::Test {};
class StreamSwitch : public SectionBench<SecStream>, public testing::Test {};
class SolutionLoad : public SectionBench<SecSolutionLoad>, public testing::Test {};

class AbortRunStatus : public AbortRun, public testing::WithParamInterface<unsigned long> {};
class StreamSwitchStatus : public StreamSwitch,
                           public testing::WithParamInterface<unsigned long> {};
class SolutionLoadStatus : public SolutionLoad,
                           public testing::WithParamInterface<unsigned long> {};

std::string written(unsigned long aStatus) {
  return "writeParam. return " + std::to_string(asInt(aStatus)) + ".\n";
}
}  // namespace

TEST_F(AbortRun, NowAbortsTheRunThenStopsTheSequence) {
  mSection.setArgument(0);
  EXPECT_EQ(mMap.current_size(), 0U);
  EXPECT_EQ(write(), 0);
  EXPECT_THAT(mInstrument.traffic(), ElementsAre(cAbort, cStopSequence));
  EXPECT_EQ(mOutput.out, resultObject(0, "Accepted"));
  EXPECT_EQ(mOutput.err, "");
}

TEST_F(AbortRun, IsNowUnlessToldOtherwise) {
  EXPECT_EQ(write(), 0);
  EXPECT_THAT(mInstrument.traffic(), ElementsAre(cAbort, cStopSequence));
}

TEST_F(AbortRun, AnyOtherModeOnlyStopsTheSequence) {
  for (const int mode : {1, 2, -1, INT_MAX, INT_MIN}) {
    const std::size_t before = mInstrument.calls().size();
    mSection.setArgument(mode);
    EXPECT_EQ(write(), 0);
    EXPECT_EQ(mInstrument.calls().size() - before, 1U) << mode;
    EXPECT_EQ(mInstrument.traffic().back(), cStopSequence);
    EXPECT_EQ(mOutput.out, resultObject(0, "Accepted"));
    EXPECT_EQ(mOutput.err, "");
  }
}

TEST_P(AbortRunStatus, RefusedAbortLeavesTheSequence) {
  mInstrument.setStatusOfCall(eFunction::eExecuteCommand, 1, GetParam());
  EXPECT_EQ(write(), asInt(GetParam()));
  EXPECT_THAT(mInstrument.traffic(), ElementsAre(cAbort));
  EXPECT_EQ(mOutput.out, resultObject(GetParam(), "Refused"));
  EXPECT_EQ(mOutput.err, "");
}

TEST_P(AbortRunStatus, RefusedStopAfterTheAbort) {
  mInstrument.setStatusOfCall(eFunction::eExecuteCommand, 2, GetParam());
  EXPECT_EQ(write(), asInt(GetParam()));
  EXPECT_THAT(mInstrument.traffic(), ElementsAre(cAbort, cStopSequence));
  EXPECT_EQ(mOutput.out, resultObject(GetParam(), "Refused"));
  EXPECT_EQ(mOutput.err, "");
}

TEST_P(AbortRunStatus, RefusedStop) {
  mSection.setArgument(1);
  mInstrument.setStatus(eFunction::eExecuteCommand, GetParam());
  EXPECT_EQ(write(), asInt(GetParam()));
  EXPECT_THAT(mInstrument.traffic(), ElementsAre(cStopSequence));
  EXPECT_EQ(mOutput.out, resultObject(GetParam(), "Refused"));
  EXPECT_EQ(mOutput.err, "");
}

INSTANTIATE_TEST_SUITE_P(Statuses, AbortRunStatus, testing::ValuesIn(cRefusals));

TEST_F(StreamSwitch, IsOneParameterInItsIntegerValue) {
  EXPECT_EQ(mMap.current_size(), 1U);
  EXPECT_NE(mMap.at("mStreamNr"), nullptr);
  EXPECT_THAT(mInstrument.calls(), IsEmpty());
  mSection.setArgument(46);
  EXPECT_EQ(write(), 0);
  EXPECT_THAT(mInstrument.traffic(), ElementsAre("WriteParamList(handle, 1): 0:39=46"));
}

TEST_F(StreamSwitch, SuccessIsSilentOnStandardOutput) {
  mSection.setArgument(0);
  EXPECT_EQ(write(), 0);
  EXPECT_THAT(mInstrument.traffic(), ElementsAre("WriteParamList(handle, 1): 0:39"));
  EXPECT_EQ(mOutput.out, "");
  EXPECT_EQ(mOutput.err, "writeParam. return 0.\n");
}

TEST_F(StreamSwitch, MissingParameterIsPassedOver) {
  clearParamMap(mMap, false);
  mSection.setArgument(46);
  EXPECT_EQ(mMap.current_size(), 0U);
  EXPECT_EQ(write(), 0);
  EXPECT_THAT(mInstrument.traffic(), ElementsAre("WriteParamList(handle, 0)"));
}

TEST_P(StreamSwitchStatus, FailureIsSilentOnStandardOutputToo) {
  mSection.setArgument(7);
  mInstrument.setStatus(eFunction::eWriteParamList, GetParam());
  EXPECT_EQ(write(), asInt(GetParam()));
  EXPECT_THAT(mInstrument.traffic(), ElementsAre("WriteParamList(handle, 1): 0:39=7"));
  EXPECT_EQ(mOutput.out, "");
  EXPECT_EQ(mOutput.err, written(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Statuses, StreamSwitchStatus, testing::ValuesIn(cRefusals));

TEST_F(SolutionLoad, SlotIsTheStepAndNotTheValue) {
  EXPECT_EQ(mMap.current_size(), 1U);
  EXPECT_NE(mMap.at("mSlotNr"), nullptr);
  EXPECT_THAT(mInstrument.calls(), IsEmpty());
  mSection.setArgument(10);
  EXPECT_EQ(write(), 0);
  EXPECT_THAT(mInstrument.traffic(), ElementsAre("WriteParamList(handle, 1): 0:1003@10"));
}

TEST_F(SolutionLoad, SuccessIsCalledRefused) {
  mSection.setArgument(0);
  EXPECT_EQ(write(), 0);
  EXPECT_THAT(mInstrument.traffic(), ElementsAre("WriteParamList(handle, 1): 0:1003"));
  EXPECT_EQ(mOutput.out, resultObject(0, "Refused"));
  EXPECT_EQ(mOutput.err, "writeParam. return 0.\n");
}

TEST_F(SolutionLoad, MissingParameterIsPassedOver) {
  clearParamMap(mMap, false);
  mSection.setArgument(10);
  EXPECT_EQ(mMap.current_size(), 0U);
  EXPECT_EQ(write(), 0);
  EXPECT_THAT(mInstrument.traffic(), ElementsAre("WriteParamList(handle, 0)"));
}

TEST_P(SolutionLoadStatus, FailureIsCalledAccepted) {
  mSection.setArgument(10);
  mInstrument.setStatus(eFunction::eWriteParamList, GetParam());
  EXPECT_EQ(write(), asInt(GetParam()));
  EXPECT_THAT(mInstrument.traffic(), ElementsAre("WriteParamList(handle, 1): 0:1003@10"));
  EXPECT_EQ(mOutput.out, resultObject(GetParam(), "Accepted"));
  EXPECT_EQ(mOutput.err, written(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Statuses, SolutionLoadStatus, testing::ValuesIn(cRefusals));

// What they have in common: the write with its line on standard error.

TEST(WriteAndReportTest, StatusIsReportedOnStandardErrorAndReturned) {
  FakeInstrument instrument;
  TestMap map;
  map.add("m", 2, 5)->setRealValue(0.5);
  for (const unsigned long status : {0UL, 5UL, 28UL, 0x80000000UL, 0xFFFFFFFFUL}) {
    instrument.setStatus(eFunction::eWriteParamList, status);
    unsigned int result = 99;
    const Output output = capture([&] { result = writeAndReport(map, FakeInstrument::cHandle); });
    EXPECT_EQ(result, status);
    EXPECT_EQ(output.out, "");
    EXPECT_EQ(output.err, written(status));
    EXPECT_EQ(instrument.traffic().back(), "WriteParamList(handle, 1): 2:5~0.5");
  }
}
