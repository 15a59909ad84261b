// The edges of the instrument's tables, and what it makes of values that no client could write.
#include <Status.h>
#include <gtest/gtest.h>
#include <model/Parameters.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "Bench.h"
#include "ExpectedParameters.h"

namespace simulator {

namespace {

constexpr double cInfinity = std::numeric_limits<double>::infinity();

enum { eFlushing = 1, eRunning = 2, eReady = 4, eNotReady = 8, eCleaning = 10 };

}  // namespace

TEST(Tables, HaveTheirStepsBoundsAndUnits) {
  for (const ExpectedSteps& expected : cExpectedSteps) {
    const std::string name = expected.name;
    for (std::uint32_t step = expected.first; step <= expected.last; ++step) {
      const auto slot = model::findName(name + "[" + std::to_string(step) + "]");
      ASSERT_TRUE(slot) << name << step;
      const model::Slot found = model::slotAt(*slot);
      EXPECT_EQ(found.step, step);
      EXPECT_EQ(model::nameOf(*slot), name + "[" + std::to_string(step) + "]");
      EXPECT_EQ(found.row->lowest, 0.0) << name;
      EXPECT_EQ(found.row->highest, expected.highest) << name;
      EXPECT_EQ(found.row->type == model::eType::eReal, expected.isReal) << name;
      EXPECT_STREQ(found.row->unit, expected.unit) << name;
    }
    EXPECT_FALSE(model::findName(name + "[" + std::to_string(expected.last + 1) + "]"));
    // The next run has a type and a stream, too.
    EXPECT_EQ(model::findName(name).has_value(), name == "mRunType" || name == "mStream") << name;
    EXPECT_FALSE(model::findName(name + "[]"));
  }
  EXPECT_FALSE(model::findName("mRepeat[0]"));
  EXPECT_FALSE(model::findName("mTriggered[0]"));
  EXPECT_FALSE(model::findName("mRT1[0]"));
}

TEST(Tables, AreTheScenarios) {
  Bench lines(scenarioWithTable(
      "everyday", "sequence",
      R"([{"runType": 1, "repeat": 2, "stream": 3, "calibrate": 1, "slot": 5, "flushTime": 0.25},)"
      R"( {"runType": 2, "repeat": 4}])"));
  struct Case {
    std::uint32_t channel;
    std::uint32_t id;
    int first;
    int second;
  };
  for (const Case& one : {Case{0, 23, 1, 2}, Case{0, 24, 2, 4}, Case{0, 22, 3, 0},
                          Case{0, 25, 1, 0}, Case{1, 1010, 5, 0}}) {
    EXPECT_EQ(lines.integer(0.0, one.channel, one.id, 1), one.first) << one.id;
    EXPECT_EQ(lines.integer(0.0, one.channel, one.id, 2), one.second) << one.id;
  }
  EXPECT_EQ(lines.real(0.0, 0, 26, 1), 0.25);
  EXPECT_EQ(lines.real(0.0, 0, 26, 2), 0.0);
  EXPECT_EQ(lines.integer(0.0, 0, 144), 2);
  Bench alarms(
      scenarioWithTable("everyday", "alarms",
                        R"([{"sampleType": 1, "allSampleTypes": 0, "group": 2, "parameter": 3},)"
                        R"( {"allSampleTypes": 1, "group": 5, "parameter": 400}])"));
  for (const Case& one : {Case{0, 2030, 1, 0}, Case{0, 2038, 0, 1}, Case{0, 2031, 2, 5},
                          Case{0, 2032, 3, 400}, Case{0, 2212, 0, 0}}) {
    EXPECT_EQ(alarms.integer(0.0, one.channel, one.id, 1), one.first) << one.id;
    EXPECT_EQ(alarms.integer(0.0, one.channel, one.id, 2), one.second) << one.id;
  }
  EXPECT_EQ(alarms.integer(0.0, 0, 2029), 2);
  Bench peaks(scenarioWithTable(
      "everyday", "peaks",
      R"([{"channel": 3, "name": "b", "retentionTime": 1.5, "levelAmount": 2.5,)"
      R"( "linearCoefficient": 3.5}, {"channel": 1, "name": "a", "retentionTime": 4.5,)"
      R"( "levelAmount": 5.5, "linearCoefficient": 6.5}])"));
  EXPECT_EQ(peaks.real(0.0, 3, 1196, 1), 1.5);
  EXPECT_EQ(peaks.real(0.0, 3, 1230, 1), 2.5);
  EXPECT_EQ(peaks.real(0.0, 3, 1242, 1), 3.5);
  EXPECT_EQ(peaks.real(0.0, 1, 1196, 1), 4.5);
  EXPECT_EQ(peaks.integer(0.0, 1, 2021, 1), 'a');  // components go by channel
  EXPECT_EQ(peaks.integer(0.0, 1, 2021, 2), 'b');
  std::uint64_t count = 0;
  std::uint64_t levels = 0;
  EXPECT_EQ(peaks.instrument->programInfo(3, count, levels), eSuccess);
  EXPECT_EQ(count, 1U);
  EXPECT_EQ(levels, 7U);
  EXPECT_EQ(peaks.instrument->programInfo(2, count, levels), eSuccess);
  EXPECT_EQ(count, 0U);
  EXPECT_EQ(peaks.instrument->programInfo(4, count, levels), eSuccess);
  EXPECT_EQ(peaks.instrument->programInfo(0, count, levels), eChannelUnknown);
  EXPECT_EQ(peaks.instrument->programInfo(5, count, levels), eChannelUnknown);
}

TEST(Names, HaveNoOtherMethod) {
  Bench bench;
  std::vector<ParamList> records{{1, 1, 1, 1176, 0, 0, 0}, {1, 2, 1, 2021, 0, 0, 0}};
  EXPECT_EQ(bench.instrument->read(0.0, records), eBatchIncomplete);
  EXPECT_EQ(records[0].ServiceStatus, eParameterUnknown);
  EXPECT_EQ(records[1].ServiceStatus, eParameterUnknown);
}

TEST(Values, AreRoundedAsTheyCountDown) {
  Bench bench(scenarioWithTable("everyday", "sequence",
                                R"([{"runType": 0, "repeat": 2, "flushTime": 1.0}])"));
  EXPECT_EQ(bench.command(0.0, 16), eSuccess);
  EXPECT_EQ(bench.real(0.7, 0, 134), 0.99);  // 59.3 s
  EXPECT_EQ(bench.real(59.6, 0, 134), 0.01);
  EXPECT_EQ(bench.real(240.7, 0, 162), 0.488);  // 29.3 s
  EXPECT_EQ(bench.real(240.7, 0, 134), 0.0);
  EXPECT_EQ(bench.real(100.0, 0, 162), 0.488);  // time does not go back
  Bench cleaning(scenarioWith("everyday", {{"mGC_State", 10}, {"mGC_CleaningTimeLeft", 3}}));
  EXPECT_EQ(cleaning.integer(0.0, 0, 96), 3);
  EXPECT_EQ(cleaning.autoState(0.0), 0);
  Bench initializing("warming-up");
  EXPECT_EQ(initializing.autoState(0.0), 0);
  EXPECT_EQ(initializing.autoState(30.0), 0);
  Bench inError("error");
  EXPECT_EQ(inError.autoState(0.0), 0);
  EXPECT_EQ(cleaning.integer(59.5, 0, 96), 3);
  EXPECT_EQ(cleaning.integer(60.0, 0, 96), 2);
  EXPECT_EQ(cleaning.integer(179.5, 0, 96), 1);
  EXPECT_EQ(cleaning.state(179.5), eCleaning);
  EXPECT_EQ(cleaning.state(180.0), eReady);
  EXPECT_EQ(cleaning.integer(180.0, 0, 96), 0);
  Bench flushing(scenarioWith("everyday", {{"mGC_State", 1}, {"mGC_FlushingStream", 2}}));
  EXPECT_EQ(flushing.autoState(0.0), 6);
  EXPECT_EQ(flushing.state(119.5), eFlushing);
  EXPECT_EQ(flushing.state(120.0), eReady);
  EXPECT_EQ(flushing.counter(120.0), 1284);
}

TEST(Start, InAnIdleStateFollowsFromTheValuesAtOnce) {
  for (int state : {3, 4, 8, 9}) {
    Bench bench(scenarioWith("everyday", {{"mGC_State", state}}));
    EXPECT_EQ(bench.state(0.0), eReady) << state;
    Bench service(scenarioWith("everyday", {{"mGC_State", state}, {"mServiceSwitch", 1}}));
    EXPECT_EQ(service.state(0.0), eNotReady) << state;
    service.set(0.0, "mServiceSwitch", 0);
    EXPECT_EQ(service.state(0.0), eReady) << state;
  }
}

TEST(Solutions, AreLoadedInIdleStatesOnly) {
  for (int state = 0; state <= 11; ++state) {
    const bool isIdle = state == 3 || state == 4 || state == 8 || state == 9;
    Bench bench;
    bench.set(0.0, "mGC_State", state);
    EXPECT_EQ(bench.writeInteger(0.0, 0, 1003, 1, 7), isIdle ? eSuccess : eStateForbids) << state;
    EXPECT_EQ(bench.integer(0.0, 0, 1003, 7), isIdle ? 1 : 0);
    if (isIdle) {
      EXPECT_EQ(bench.state(59.5), eNotReady);
      EXPECT_EQ(bench.state(60.0), eReady);
    }
  }
  Bench automatic;
  automatic.set(0.0, "mAutoState", 2);
  EXPECT_EQ(automatic.writeInteger(0.0, 0, 1003, 1, 7), eStateForbids);
}

TEST(Solutions, AreOneAtATime) {
  Bench bench;
  for (std::uint32_t slot : {0U, 10U, 4U}) {
    EXPECT_EQ(bench.writeInteger(0.0, 0, 1003, 0, slot), eSuccess);
    for (std::uint32_t other = 0; other <= 10; ++other) {
      EXPECT_EQ(bench.integer(0.0, 0, 1003, other), slot == other ? 1 : 0) << slot << "/" << other;
    }
    bench.set(0.0, "mGC_State", 4);
  }
}

TEST(Solutions, EndARunThatLooksIdle) {
  Bench bench;
  EXPECT_EQ(bench.command(0.0, 0), eSuccess);
  bench.set(10.0, "mGC_State", 4);
  bench.set(10.0, "mAutoState", 0);
  EXPECT_EQ(bench.writeInteger(10.0, 0, 1003, 1, 2), eSuccess);
  EXPECT_EQ(bench.state(10.0), eNotReady);
  EXPECT_EQ(bench.state(70.0), eReady);
  EXPECT_EQ(bench.counter(1000.0), 1284);
}

TEST(Solutions, AreNoPartOfTheirChannel) {
  Bench bench(scenarioWith("everyday", {{"mInstalled1", 0}}));
  EXPECT_EQ(bench.writeInteger(0.0, 1, 1010, 3, 1), eSuccess);
  EXPECT_EQ(bench.integer(0.0, 1, 1010, 1), 3);
}

TEST(Valve, IsTheStreamOfTheNextRunToo) {
  Bench bench;
  for (int stream : {0, 4}) {
    EXPECT_EQ(bench.writeInteger(0.0, 0, 39, stream), eSuccess);
    EXPECT_EQ(bench.stream(0.0), stream);
    EXPECT_EQ(bench.integer(0.0, 0, 62), stream);
  }
  EXPECT_EQ(bench.writeInteger(0.0, 0, 39, 5), eOutOfBounds);
  EXPECT_EQ(bench.writeInteger(0.0, 0, 39, -1), eOutOfBounds);
  EXPECT_EQ(bench.stream(0.0), 4);
  Bench many(scenarioWith("everyday", {{"mStreamMaxNr", 99}}));
  EXPECT_EQ(many.writeInteger(0.0, 0, 39, 46), eSuccess);
  EXPECT_EQ(many.writeInteger(0.0, 0, 39, 47), eOutOfBounds);
  Bench bare("bare");
  EXPECT_EQ(bare.writeInteger(0.0, 0, 39, 0), eStateForbids);
}

TEST(Runs, KeepToTheBoundsOfWhatTheyAreStartedWith) {
  struct Case {
    double type;
    int shown;
  };
  for (const Case& one : {Case{99, 3}, Case{4, 3}, Case{-1, 0}, Case{-2147483648.0, 0}}) {
    Bench bench;
    bench.set(0.0, "mStartRunType", one.type);
    EXPECT_EQ(bench.command(0.0, 0), eSuccess);
    EXPECT_EQ(bench.runType(0.0), one.shown) << one.type;
  }
  Bench streams;
  streams.set(0.0, "mStream", 47);
  EXPECT_EQ(streams.command(0.0, 0), eSuccess);
  EXPECT_EQ(streams.stream(0.0), 46);
  Bench replicates;
  replicates.set(0.0, "mStartRunType", 1);
  replicates.set(0.0, "mReplicate", 1000);
  replicates.set(0.0, "mCurrentReplicate", -5);
  EXPECT_EQ(replicates.command(0.0, 0), eSuccess);
  EXPECT_EQ(replicates.integer(0.0, 0, 74), 1);
  EXPECT_EQ(replicates.state(99 * 180.0 - 0.5), eRunning);
  EXPECT_EQ(replicates.integer(99 * 180.0 - 0.5, 0, 74), 99);
  EXPECT_EQ(replicates.state(99 * 180.0), eReady);
  EXPECT_EQ(replicates.integer(99 * 180.0, 0, 74), 1);
  Bench lines(scenarioWithTable("everyday", "sequence", R"([{"runType": 0, "repeat": 1}])"));
  lines.set(0.0, "mFlushTime[1]", cInfinity);
  lines.set(0.0, "mRunType[1]", 77);
  lines.set(0.0, "mStream[1]", 1000);
  lines.set(0.0, "mSolution[1]", 11);
  EXPECT_EQ(lines.command(0.0, 16), eSuccess);
  EXPECT_EQ(lines.runType(0.0), 3);
  EXPECT_EQ(lines.stream(0.0), 46);
  EXPECT_EQ(lines.integer(0.0, 0, 1003, 10), 1);
  EXPECT_EQ(lines.real(0.0, 0, 134), 60.0);
  EXPECT_EQ(lines.state(3599.5), eFlushing);
  EXPECT_EQ(lines.state(3600.0), eRunning);
  Bench never(scenarioWithTable("everyday", "sequence", R"([{"runType": 0, "repeat": 1}])"));
  never.set(0.0, "mFlushTime[1]", std::nan(""));
  never.set(0.0, "mTableRepeat", 2000);
  EXPECT_EQ(never.command(0.0, 16), eSuccess);
  EXPECT_EQ(never.state(0.0), eRunning);
  EXPECT_EQ(never.autoState(999 * 210.0 - 30.5), 2);
  EXPECT_EQ(never.autoState(999 * 210.0 - 30.0), 0);
}

TEST(Runs, ThatAreOnlyShownLeaveNothingWhenTheyAreAborted) {
  Bench bench;
  bench.set(0.0, "mCurrentReplicate", 5);
  bench.set(0.0, "mSeq_line", 7);
  bench.set(0.0, "mGC_State", 2);
  EXPECT_EQ(bench.command(0.0, 1), eSuccess);
  EXPECT_EQ(bench.integer(0.0, 0, 74), 5);
  EXPECT_EQ(bench.integer(0.0, 0, 136), 7);
  EXPECT_EQ(bench.command(0.0, 17), eSuccess);
  EXPECT_EQ(bench.state(0.0), eReady);
  // Busy is also what only the automation state says.
  bench.set(0.0, "mAutoState", 1);
  EXPECT_EQ(bench.command(0.0, 0), eStateForbids);
  EXPECT_EQ(bench.command(0.0, 1), eSuccess);
  EXPECT_EQ(bench.autoState(0.0), 0);
}

// Seed 1: what the first calibration of the everyday instrument makes of its coefficients.
TEST(Calibrations, ShiftEachCoefficientByItsOwnLittle) {
  Bench bench;
  bench.set(0.0, "mLinearCoef1[1]", 2.0);
  bench.set(0.0, "mLinearCoef2[7]", 4.0);
  bench.set(0.0, "mLevelAmt1[2]", 0.0);
  bench.set(0.0, "mStartRunType", 1);
  EXPECT_EQ(bench.command(0.0, 0), eSuccess);
  const double first = bench.real(180.0, 1, 1242, 1);
  const double last = bench.real(180.0, 2, 1242, 7);
  EXPECT_NE(first, 2.0);
  EXPECT_NEAR(first, 2.0, 0.004);
  EXPECT_NE(last, 4.0);
  EXPECT_NEAR(last, 4.0, 0.008);
  EXPECT_NE(first * 2.0, last);
  EXPECT_EQ(bench.real(180.0, 1, 1242, 2), 0.0000268);  // it has no amount
  EXPECT_NEAR(first * 1e9, std::round(first * 1e9), 1e-3);
  EXPECT_NEAR(last * 1e9, std::round(last * 1e9), 1e-3);
  // Always from what was given, so that a thousand of them stay as near.
  double lowest = first;
  double highest = first;
  for (int n = 1; n <= 1000; ++n) {
    const double now = n * 200.0;
    EXPECT_EQ(bench.command(now, 0), eSuccess);
    const double shifted = bench.real(now + 180.0, 1, 1242, 1);
    lowest = std::min(lowest, shifted);
    highest = std::max(highest, shifted);
  }
  EXPECT_NEAR(lowest, 1.996, 0.00005);
  EXPECT_NEAR(highest, 2.004, 0.00005);
}

TEST(Alarms, AreAllReset) {
  Bench bench(scenarioWith("everyday", {{"mEnabled", 0}}));
  bench.set(0.0, "mTotal", 38);
  for (const char* row : {"mTriggered[1]", "mTriggered[37]", "mTriggered[38]"}) {
    bench.set(0.0, row, 1);
  }
  bench.set(0.0, "mTotal", 2);  // those behind are there, if not to be seen
  EXPECT_EQ(bench.command(0.0, 35), eSuccess);
  bench.set(0.0, "mTotal", 38);
  for (std::uint32_t row : {1U, 37U, 38U}) {
    EXPECT_EQ(bench.integer(0.0, 0, 2212, row), 0) << row;
  }
  Bench held;
  held.set(0.0, "mAlarmOverall", 1);
  held.set(0.0, "mGC_CurRunTime", 9);
  EXPECT_EQ(held.integer(0.0, 0, 2211), 1);
  EXPECT_EQ(held.command(0.0, 35), eSuccess);
  EXPECT_EQ(held.integer(0.0, 0, 2211), 0);
  EXPECT_EQ(held.integer(0.0, 0, 161), 9);  // only what is about alarms
}

}  // namespace simulator
