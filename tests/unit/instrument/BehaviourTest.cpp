// What the instrument does as simulated time passes, and what its commands do.
#include <Status.h>
#include <gtest/gtest.h>

#include "Bench.h"

namespace simulator {

namespace {

constexpr std::uint32_t cStart = 0;
constexpr std::uint32_t cAbort = 1;
constexpr std::uint32_t cStopAutomation = 17;

enum { eInitializing = 0, eFlushing, eRunning, eStabilizing, eReady };
enum { eNotReady = 8, eWaitExtReady = 9, eCleaning = 10 };

}  // namespace

// The longer of the two channels' run times, 120 s and 180 s, is the run's.
TEST(Run, CountsWholeSecondsAndEndsByItself) {
  Bench bench;
  EXPECT_EQ(bench.command(10.5, cStart), eSuccess);
  EXPECT_EQ(bench.state(10.5), eRunning);
  EXPECT_EQ(bench.autoState(10.5), 1);
  EXPECT_EQ(bench.integer(10.5, 0, 141), 0);  // an analysis
  EXPECT_EQ(bench.runTime(10.5), 0);
  EXPECT_EQ(bench.runTime(11.4), 0);
  EXPECT_EQ(bench.runTime(11.5), 1);
  EXPECT_EQ(bench.runTime(47.9), 37);
  EXPECT_EQ(bench.runTime(190.4), 179);
  EXPECT_EQ(bench.counter(190.4), 1284);
  EXPECT_EQ(bench.state(190.4), eRunning);
  EXPECT_EQ(bench.state(190.5), eReady);
  EXPECT_EQ(bench.autoState(190.5), 0);
  EXPECT_EQ(bench.runTime(190.5), 0);
  EXPECT_EQ(bench.counter(190.5), 1285);
}

TEST(Run, EndsUnseenWhenNobodyAsks) {
  Bench bench;
  EXPECT_EQ(bench.command(0.0, cStart), eSuccess);
  EXPECT_EQ(bench.state(1e9), eReady);
  EXPECT_EQ(bench.counter(1e9), 1285);
}

TEST(Run, StartsFromReadyOnly) {
  for (int state : {0, 1, 2, 3, 5, 6, 7, 8, 9, 10, 11, -1, 2147483647}) {
    Bench bench;
    bench.set(0.0, "mGC_State", state);
    EXPECT_EQ(bench.command(0.0, cStart), eStateForbids) << state;
    EXPECT_EQ(bench.state(0.0), state);
  }
  Bench bench;
  EXPECT_EQ(bench.command(0.0, cStart), eSuccess);
  EXPECT_EQ(bench.command(1.0, cStart), eStateForbids);
  EXPECT_EQ(bench.runTime(2.0), 2);
}

TEST(Run, OneAfterTheOther) {
  Bench bench;
  for (int run = 1; run <= 3; ++run) {
    EXPECT_EQ(bench.command(run * 1000.0, cStart), eSuccess);
    EXPECT_EQ(bench.state(run * 1000.0 + 179.9), eRunning);
    EXPECT_EQ(bench.counter(run * 1000.0 + 180.0), 1284 + run);
  }
}

TEST(Run, TimeSettingsWrittenBeforeItCount) {
  Bench bench;
  EXPECT_EQ(bench.writeInteger(0.0, 1, 204, 30), eSuccess);
  EXPECT_EQ(bench.writeInteger(0.0, 2, 204, 20), eSuccess);
  EXPECT_EQ(bench.command(0.0, cStart), eSuccess);
  EXPECT_EQ(bench.state(29.9), eRunning);
  EXPECT_EQ(bench.state(30.0), eReady);
}

TEST(Run, OfAChannelThatIsNotThereDoesNotCount) {
  Bench bench;
  bench.set(0.0, "mRunTimeSP3", 3000);
  EXPECT_EQ(bench.command(0.0, cStart), eSuccess);
  EXPECT_EQ(bench.state(180.0), eReady);
}

TEST(Run, LastsASecondAtLeast) {
  for (double forced : {0.0, -5.0, -2147483648.0}) {
    Bench bench("bare");
    bench.set(0.0, "mRunTimeSP1", forced);
    EXPECT_EQ(bench.command(0.0, cStart), eSuccess);
    EXPECT_EQ(bench.state(0.9), eRunning);
    EXPECT_EQ(bench.state(1.0), eReady);
  }
}

TEST(Run, AbortEndsItAtOnceUncounted) {
  Bench bench;
  EXPECT_EQ(bench.command(0.0, cStart), eSuccess);
  EXPECT_EQ(bench.command(42.0, cAbort), eSuccess);
  EXPECT_EQ(bench.state(42.0), eReady);
  EXPECT_EQ(bench.autoState(42.0), 0);
  EXPECT_EQ(bench.runTime(42.0), 0);
  EXPECT_EQ(bench.counter(500.0), 1284);
  EXPECT_EQ(bench.command(500.0, cAbort), eStateForbids);
}

TEST(Run, GoesOnToItsEndAfterStopAutomation) {
  Bench bench;
  EXPECT_EQ(bench.command(0.0, cStart), eSuccess);
  EXPECT_EQ(bench.command(60.0, cStopAutomation), eSuccess);
  EXPECT_EQ(bench.state(179.9), eRunning);
  EXPECT_EQ(bench.runTime(179.9), 179);
  EXPECT_EQ(bench.state(180.0), eReady);
  EXPECT_EQ(bench.counter(180.0), 1285);
}

TEST(Run, CanBeUnderWayInAScenario) {
  Bench bench(scenarioWith("everyday", {{"mGC_State", 2}, {"mGC_CurRunTime", 100}}));
  EXPECT_EQ(bench.state(0.0), eRunning);
  EXPECT_EQ(bench.autoState(0.0), 1);
  EXPECT_EQ(bench.runTime(0.0), 100);
  EXPECT_EQ(bench.runTime(79.9), 179);
  EXPECT_EQ(bench.state(80.0), eReady);
  EXPECT_EQ(bench.counter(80.0), 1285);
}

TEST(Commands, StopAutomationIsTakenInEveryStateButErrors) {
  for (int state = 0; state <= 10; ++state) {
    Bench bench;
    bench.set(0.0, "mGC_State", state);
    const bool isError = state == 5 || state == 6 || state == 7;
    EXPECT_EQ(bench.command(0.0, cStopAutomation), isError ? eStateForbids : eSuccess) << state;
  }
}

TEST(Commands, AbortIsTakenOnlyWhileSomethingRuns) {
  for (int state = 0; state <= 10; ++state) {
    Bench bench;
    bench.set(0.0, "mGC_State", state);
    const bool runs = state == eRunning || state == eFlushing;
    EXPECT_EQ(bench.command(0.0, cAbort), runs ? eSuccess : eStateForbids) << state;
    EXPECT_EQ(bench.state(0.0), runs ? eReady : state);
  }
}

TEST(Commands, UnknownNumbersAndChannelsAreRefused) {
  Bench bench;
  for (std::uint32_t number : {2U, 3U, 18U, 99U, UINT32_MAX}) {
    EXPECT_EQ(bench.command(0.0, number), eCommandUnknown) << number;
  }
  EXPECT_EQ(bench.instrument->command(0.0, 1, cStart), eChannelUnknown);
  EXPECT_EQ(bench.state(0.0), eReady);
}

// 30 s of self-test; then the sample line, from 22 to 65 degC with a time constant of 120 s, is the
// last to come within its degree: after 120 s * ln 43 = 451.3 s.
TEST(WarmingUp, InitializesThenStabilizesThenIsReady) {
  Bench bench("warming-up");
  EXPECT_EQ(bench.state(0.0), eInitializing);
  EXPECT_EQ(bench.state(29.9), eInitializing);
  EXPECT_EQ(bench.command(29.9, cStart), eStateForbids);
  EXPECT_EQ(bench.state(30.0), eStabilizing);
  EXPECT_EQ(bench.command(451.0, cStart), eStateForbids);
  EXPECT_EQ(bench.state(451.3), eStabilizing);
  EXPECT_EQ(bench.state(451.4), eReady);
  EXPECT_EQ(bench.command(452.0, cStart), eSuccess);
}

// From 22 towards 60 degC: one time constant of 90 s leaves 1/e of the way, 38 / 2.71828 = 13.98.
TEST(WarmingUp, TemperaturesFollowAFirstOrderLag) {
  Bench bench("warming-up");
  EXPECT_NEAR(bench.columnTemp1(0.0), 22.0, 0.04);
  EXPECT_NEAR(bench.columnTemp1(90.0), 46.02, 0.04);
  EXPECT_NEAR(bench.columnTemp1(180.0), 54.86, 0.04);
  EXPECT_NEAR(bench.columnTemp1(2000.0), 60.0, 0.04);
  EXPECT_NEAR(bench.real(2000.0, 1, 304), 180.0, 0.3);
  EXPECT_NEAR(bench.real(2000.0, 0, 100), 65.0, 0.06);
}

TEST(WarmingUp, WaitsOnlyForWhatIsThere) {
  // Without the sample line the column of channel 2 is the last: 90 s * ln 106 = 419.7 s.
  Bench bench(scenarioWith("warming-up", {{"mHeatedSampleLineInstalled", 0}}));
  EXPECT_EQ(bench.state(419.6), eStabilizing);
  EXPECT_EQ(bench.state(419.8), eReady);
}

// 60 to 70 degC, ready within half a degree: 90 s * ln 20 = 269.6 s.
TEST(Setpoint, AChangeMakesTheInstrumentStabilizeAgain) {
  Bench bench;
  EXPECT_EQ(bench.writeReal(100.0, 1, 202, 70.0), eSuccess);
  EXPECT_EQ(bench.state(100.0), eStabilizing);
  EXPECT_NEAR(bench.columnTemp1(100.0), 60.0, 0.04);
  EXPECT_NEAR(bench.columnTemp1(190.0), 66.32, 0.04);
  EXPECT_EQ(bench.state(369.5), eStabilizing);
  EXPECT_EQ(bench.state(369.7), eReady);
}

TEST(Setpoint, AChangeOnTheWayStartsFromWhereItIs) {
  Bench bench("warming-up");
  EXPECT_EQ(bench.state(90.0), eStabilizing);
  EXPECT_EQ(bench.writeReal(90.0, 1, 202, 46.0), eSuccess);
  EXPECT_NEAR(bench.columnTemp1(90.0), 46.02, 0.04);
  EXPECT_NEAR(bench.columnTemp1(300.0), 46.0, 0.04);
}

TEST(Setpoint, ASmallChangeStaysReady) {
  Bench bench;
  EXPECT_EQ(bench.writeReal(0.0, 1, 202, 60.4), eSuccess);
  EXPECT_EQ(bench.state(0.0), eReady);
}

TEST(Idle, ExternalReadyAndServiceSwitchDecide) {
  Bench bench;
  bench.set(0.0, "mExtReady", 0);
  EXPECT_EQ(bench.state(0.0), eWaitExtReady);
  EXPECT_EQ(bench.command(0.0, cStart), eStateForbids);
  bench.set(0.0, "mServiceSwitch", 1);
  EXPECT_EQ(bench.state(0.0), eNotReady);
  bench.set(0.0, "mServiceSwitch", 0);
  bench.set(0.0, "mExtReady", 1);
  EXPECT_EQ(bench.state(0.0), eReady);
}

TEST(Idle, AnInputThatChangesDuringARunCountsAfterIt) {
  Bench bench;
  EXPECT_EQ(bench.command(0.0, cStart), eSuccess);
  bench.set(1.0, "mExtReady", 0);
  EXPECT_EQ(bench.state(179.0), eRunning);
  EXPECT_EQ(bench.state(180.0), eWaitExtReady);
}

TEST(Cleaning, CountsMinutesDown) {
  Bench bench(scenarioWith("everyday", {{"mGC_State", 10}, {"mGC_CleaningTimeLeft", 3}}));
  EXPECT_EQ(bench.state(0.0), eCleaning);
  EXPECT_EQ(bench.integer(0.0, 0, 96), 3);
  EXPECT_EQ(bench.integer(59.0, 0, 96), 3);
  EXPECT_EQ(bench.integer(61.0, 0, 96), 2);
  EXPECT_EQ(bench.integer(179.0, 0, 96), 1);
  EXPECT_EQ(bench.state(179.9), eCleaning);
  EXPECT_EQ(bench.state(180.0), eReady);
  EXPECT_EQ(bench.integer(180.0, 0, 96), 0);
}

TEST(Flushing, CountsFractionsOfAMinuteDown) {
  Bench bench(scenarioWith("everyday", {{"mGC_State", 1}, {"mGC_FlushingStream", 1.5}}));
  EXPECT_EQ(bench.state(0.0), eFlushing);
  EXPECT_EQ(bench.autoState(0.0), 6);
  EXPECT_EQ(bench.real(0.0, 0, 134), 1.5);
  EXPECT_EQ(bench.real(30.0, 0, 134), 1.0);
  EXPECT_EQ(bench.real(80.0, 0, 134), 0.17);
  EXPECT_EQ(bench.state(90.0), eReady);
  EXPECT_EQ(bench.real(90.0, 0, 134), 0.0);
}

TEST(Flushing, IsAborted) {
  Bench bench(scenarioWith("everyday", {{"mGC_State", 1}, {"mGC_FlushingStream", 1.5}}));
  EXPECT_EQ(bench.command(10.0, cAbort), eSuccess);
  EXPECT_EQ(bench.state(10.0), eReady);
  EXPECT_EQ(bench.autoState(10.0), 0);
}

TEST(Errors, Stay) {
  for (int state : {5, 6, 7}) {
    Bench bench(scenarioWith("everyday", {{"mGC_State", state}, {"mGC_Error_Status", 201}}));
    EXPECT_EQ(bench.state(0.0), state);
    EXPECT_EQ(bench.state(1e6), state);
    EXPECT_EQ(bench.integer(1e6, 0, 132), 201);
    EXPECT_EQ(bench.command(1e6, cStart), eStateForbids);
    EXPECT_EQ(bench.command(1e6, cAbort), eStateForbids);
    EXPECT_EQ(bench.command(1e6, cStopAutomation), eStateForbids);
  }
}

TEST(ProgramInfo, CountsThePeaksOfAChannel) {
  Bench bench;
  const std::uint64_t expected[] = {4, 7, 0, 0};
  for (std::uint32_t channel = 1; channel <= 4; ++channel) {
    std::uint64_t peaks = 99;
    std::uint64_t levels = 99;
    EXPECT_EQ(bench.instrument->programInfo(channel, peaks, levels), eSuccess);
    EXPECT_EQ(peaks, expected[channel - 1]) << channel;
    EXPECT_EQ(levels, 7U);
  }
  std::uint64_t untouched = 99;
  EXPECT_EQ(bench.instrument->programInfo(0, untouched, untouched), eChannelUnknown);
  EXPECT_EQ(bench.instrument->programInfo(5, untouched, untouched), eChannelUnknown);
  EXPECT_EQ(untouched, 99U);
}

}  // namespace simulator
