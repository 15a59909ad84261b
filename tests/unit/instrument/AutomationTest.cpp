// The automation sequence: lines, replicates, repeats, flushing, delays; and how it ends.
#include <Status.h>
#include <gtest/gtest.h>

#include <chrono>

#include "Bench.h"

namespace simulator {

namespace {

constexpr std::uint32_t cStart = 0;
constexpr std::uint32_t cAbort = 1;
constexpr std::uint32_t cStartAutomation = 16;
constexpr std::uint32_t cStopAutomation = 17;

enum { eFlushing = 1, eRunning = 2, eReady = 4 };

// Runs take 180 s; 30 s lie between one run and the next unless there is flushing.
constexpr char cTwoLines[] =
    R"([{"runType": 1, "repeat": 2, "stream": 4, "slot": 1, "flushTime": 1.0},)"
    R"( {"runType": 0, "repeat": 1, "stream": 2, "slot": 0, "flushTime": 0.0}])";

Scenario twoLines(double aTableRepeat, double aContinuous = 0.0) {
  return scenarioWithTable("everyday", "sequence", cTwoLines,
                           {{"mTableRepeat", aTableRepeat}, {"mContinuous", aContinuous}});
}

struct Moment {
  double time;
  int state;
  int automation;
  int line;
  int replicate;
  int repeat;
  int stream;
  int runType;
  int counter;
};

void expect(Bench& bench, const Moment& aMoment) {
  const double now = aMoment.time;
  EXPECT_EQ(bench.state(now), aMoment.state) << now;
  EXPECT_EQ(bench.autoState(now), aMoment.automation) << now;
  EXPECT_EQ(bench.integer(now, 0, 136), aMoment.line) << now;
  EXPECT_EQ(bench.integer(now, 0, 137), aMoment.replicate) << now;
  EXPECT_EQ(bench.integer(now, 0, 135), aMoment.repeat) << now;
  EXPECT_EQ(bench.stream(now), aMoment.stream) << now;
  EXPECT_EQ(bench.runType(now), aMoment.runType) << now;
  EXPECT_EQ(bench.counter(now), aMoment.counter) << now;
}

}  // namespace

TEST(Automation, WalksThroughLinesReplicatesAndRepeats) {
  Bench bench(twoLines(2));
  EXPECT_EQ(bench.command(100.0, cStartAutomation), eSuccess);
  constexpr Moment cMoments[] = {
      {100.0, eFlushing, 6, 1, 1, 1, 4, 1, 1284}, {159.9, eFlushing, 6, 1, 1, 1, 4, 1, 1284},
      {160.0, eRunning, 2, 1, 1, 1, 4, 1, 1284},  {339.9, eRunning, 2, 1, 1, 1, 4, 1, 1284},
      {340.0, eReady, 2, 1, 2, 1, 4, 1, 1285},    {369.9, eReady, 2, 1, 2, 1, 4, 1, 1285},
      {370.0, eRunning, 2, 1, 2, 1, 4, 1, 1285},  {550.0, eReady, 2, 2, 1, 1, 2, 0, 1286},
      {580.0, eRunning, 2, 2, 1, 1, 2, 0, 1286},  {759.9, eRunning, 2, 2, 1, 1, 2, 0, 1286},
      {760.0, eFlushing, 6, 1, 1, 2, 4, 1, 1287}, {820.0, eRunning, 2, 1, 1, 2, 4, 1, 1287},
      {1240.0, eRunning, 2, 2, 1, 2, 2, 0, 1289}, {1419.9, eRunning, 2, 2, 1, 2, 2, 0, 1289},
      {1420.0, eReady, 0, 0, 0, 0, 2, 0, 1290},
  };
  for (const Moment& moment : cMoments) {
    expect(bench, moment);
  }
  EXPECT_EQ(bench.command(1420.0, cStart), eSuccess);
}

TEST(Automation, CountsFlushingDelayAndRunTime) {
  Bench bench(twoLines(1));
  EXPECT_EQ(bench.command(0.0, cStartAutomation), eSuccess);
  EXPECT_EQ(bench.real(0.0, 0, 134), 1.0);
  EXPECT_EQ(bench.real(45.0, 0, 134), 0.25);
  EXPECT_EQ(bench.real(60.0, 0, 134), 0.0);
  EXPECT_EQ(bench.runTime(60.0), 0);
  EXPECT_EQ(bench.runTime(97.5), 37);
  EXPECT_EQ(bench.real(240.0, 0, 162), 0.5);
  EXPECT_EQ(bench.real(255.0, 0, 162), 0.25);
  EXPECT_EQ(bench.runTime(255.0), 0);
  EXPECT_EQ(bench.real(270.0, 0, 162), 0.0);
}

TEST(Automation, UsesTheSolutionOfTheLine) {
  Bench bench(twoLines(1));
  EXPECT_EQ(bench.command(0.0, cStartAutomation), eSuccess);
  EXPECT_EQ(bench.integer(0.0, 0, 1003, 1), 1);
  EXPECT_EQ(bench.integer(450.0, 0, 1003, 1), 0);
  EXPECT_EQ(bench.integer(450.0, 0, 1003, 0), 1);
}

TEST(Automation, WithoutAStreamSelectorLeavesTheStreamAlone) {
  Bench bench("bare");
  EXPECT_EQ(bench.command(0.0, cStartAutomation), eSuccess);
  expect(bench, {0.0, eRunning, 2, 1, 1, 1, 0, 0, 0});
  expect(bench, {60.0, eReady, 0, 0, 0, 0, 0, 0, 1});
}

TEST(Automation, PassesOverLinesThatAreNotToBeRun) {
  Bench bench(scenarioWithTable(
      "everyday", "sequence",
      R"([{"runType": 0, "repeat": 0}, {"runType": 2, "repeat": 1, "stream": 3}])"));
  EXPECT_EQ(bench.command(0.0, cStartAutomation), eSuccess);
  expect(bench, {0.0, eRunning, 2, 2, 1, 1, 3, 2, 1284});
}

TEST(Automation, WithNothingToRunIsRefused) {
  constexpr char cNothing[] = R"([{"runType": 0, "repeat": 0}])";
  Bench noRuns(scenarioWithTable("everyday", "sequence", cNothing));
  EXPECT_EQ(noRuns.command(0.0, cStartAutomation), eStateForbids);
  Bench continuous(scenarioWithTable("everyday", "sequence", cNothing, {{"mContinuous", 1}}));
  EXPECT_EQ(continuous.command(0.0, cStartAutomation), eStateForbids);
  Bench noRepeats(twoLines(0));
  EXPECT_EQ(noRepeats.command(0.0, cStartAutomation), eStateForbids);
  EXPECT_EQ(noRepeats.state(0.0), eReady);
  Bench forEver(twoLines(0, 1));
  EXPECT_EQ(forEver.command(0.0, cStartAutomation), eSuccess);
}

TEST(Automation, StartsFromReadyOnly) {
  for (int state : {0, 1, 2, 3, 5, 6, 7, 8, 9, 10, 11, -1}) {
    Bench bench;
    bench.set(0.0, "mGC_State", state);
    EXPECT_EQ(bench.command(0.0, cStartAutomation), eStateForbids) << state;
  }
}

TEST(Automation, IsNotInterruptedByAnotherStartInItsDelay) {
  Bench bench(twoLines(2));
  EXPECT_EQ(bench.command(0.0, cStartAutomation), eSuccess);
  EXPECT_EQ(bench.state(250.0), eReady);
  EXPECT_EQ(bench.command(250.0, cStart), eStateForbids);
  EXPECT_EQ(bench.command(250.0, cStartAutomation), eStateForbids);
  EXPECT_EQ(bench.writeReal(250.0, 1, 202, 70.0), eStateForbids);
  expect(bench, {270.0, eRunning, 2, 1, 2, 1, 4, 1, 1285});
}

TEST(Automation, AbortEndsItAtOnceWhateverItIsDoing) {
  for (double when : {30.0, 100.0, 250.0}) {  // flushing, a run, the delay
    Bench bench(twoLines(2));
    EXPECT_EQ(bench.command(0.0, cStartAutomation), eSuccess);
    EXPECT_EQ(bench.command(when, cAbort), eSuccess) << when;
    EXPECT_EQ(bench.command(when, cStopAutomation), eSuccess) << when;
    expect(bench, {when, eReady, 0, 0, 0, 0, 4, 1, when < 240.0 ? 1284 : 1285});
    expect(bench, {when + 5000.0, eReady, 0, 0, 0, 0, 4, 1, when < 240.0 ? 1284 : 1285});
  }
}

TEST(Automation, StopLetsThePresentRunEnd) {
  Bench bench(twoLines(2));
  EXPECT_EQ(bench.command(0.0, cStartAutomation), eSuccess);
  EXPECT_EQ(bench.command(100.0, cStopAutomation), eSuccess);
  expect(bench, {239.9, eRunning, 2, 1, 1, 1, 4, 1, 1284});
  expect(bench, {240.0, eReady, 0, 0, 0, 0, 4, 1, 1285});
  Bench unseen(twoLines(2));
  EXPECT_EQ(unseen.command(0.0, cStartAutomation), eSuccess);
  EXPECT_EQ(unseen.command(100.0, cStopAutomation), eSuccess);
  expect(unseen, {1e9, eReady, 0, 0, 0, 0, 4, 1, 1285});
}

TEST(Automation, StopBetweenRunsEndsItAtOnce) {
  for (double when : {30.0, 250.0}) {
    Bench bench(twoLines(2));
    EXPECT_EQ(bench.command(0.0, cStartAutomation), eSuccess);
    EXPECT_EQ(bench.command(when, cStopAutomation), eSuccess) << when;
    expect(bench, {when, eReady, 0, 0, 0, 0, 4, 1, when < 240.0 ? 1284 : 1285});
  }
}

TEST(Automation, WhatAnOperatorChangesCountsFromTheNextStart) {
  Bench bench(twoLines(1));
  EXPECT_EQ(bench.command(0.0, cStartAutomation), eSuccess);
  bench.set(100.0, "mRepeat[1]", 1);
  bench.set(100.0, "mRunTimeSP2", 10);
  expect(bench, {270.0, eRunning, 2, 1, 2, 1, 4, 1, 1285});
}

// 660 s a repeat, three runs.
TEST(Automation, ContinuousGoesOnForEverAndAnswersAtOnce) {
  Bench bench(twoLines(1, 1));
  EXPECT_EQ(bench.command(0.0, cStartAutomation), eSuccess);
  expect(bench, {660.0 * 5 + 61.0, eRunning, 2, 1, 1, 6, 4, 1, 1284 + 15});
  const auto began = std::chrono::steady_clock::now();
  expect(bench, {660.0 * 1e6 + 61.0, eRunning, 2, 1, 1, 999, 4, 1, 1284 + 3000000});
  expect(bench, {660.0 * 1e9 + 61.0, eRunning, 2, 1, 1, 999, 4, 1, INT32_MAX});
  EXPECT_EQ(bench.autoState(1e300), 2);
  EXPECT_EQ(bench.command(1e300, cAbort), eSuccess);
  EXPECT_EQ(bench.state(1e300), eReady);
  EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(1));
}

TEST(Automation, TheLongestTableEndsWhenItsTimeHasPassed) {
  Bench bench(scenarioWithTable("everyday", "sequence", R"([{"runType": 0, "repeat": 999}])",
                                {{"mTableRepeat", 999}}));
  EXPECT_EQ(bench.command(0.0, cStartAutomation), eSuccess);
  const double end = 999.0 * 999.0 * 210.0 - 30.0;
  EXPECT_EQ(bench.state(end - 0.5), eRunning);
  EXPECT_EQ(bench.integer(end - 0.5, 0, 137), 999);
  EXPECT_EQ(bench.integer(end - 0.5, 0, 135), 999);
  EXPECT_EQ(bench.state(end), eReady);
  EXPECT_EQ(bench.counter(end), 1284 + 999 * 999);
}

namespace {

/// Two days of a sequence with calibrations and verifications, alarms, an operator's doing, and a
/// stop; `aStep` seconds from one look to the next.
std::vector<std::string> twoDays(double aStep) {
  Bench bench(scenarioWithTable(
      "everyday", "alarms",
      R"([{"group": 8, "parameter": 3, "sampleType": 1}, {"group": 8, "parameter": 3,)"
      R"( "sampleType": 2}, {"group": 11, "parameter": 0, "sampleType": 3},)"
      R"( {"group": 10, "parameter": 0, "sampleType": 0}])",
      {{"mContinuous", 1}, {"mDetCalibrated2", 0}}));
  bench.set(0.0, "mRunType[3]", 3);
  std::vector<std::string> seen;
  double now = 0.0;
  const auto goTo = [&](double aNow) {
    for (; now < aNow; now += aStep) {
      bench.snapshot(now);
    }
    now = aNow;
    seen.push_back(bench.snapshot(now));
  };
  EXPECT_EQ(bench.command(now, cStartAutomation), eSuccess);
  goTo(500.7);
  bench.set(now, "mAmbientPressure", 60.0);
  goTo(20000.3);
  EXPECT_EQ(bench.command(now, 35), eSuccess);
  goTo(86400.1);
  EXPECT_EQ(bench.command(now, cStopAutomation), eSuccess);
  goTo(172800.0);
  return seen;
}

}  // namespace

TEST(Determinism, AskingMoreOftenChangesNothingInASequence) {
  const auto rarely = twoDays(1e6);
  EXPECT_EQ(twoDays(397.3), rarely);
  EXPECT_EQ(twoDays(1234.5), rarely);
}

}  // namespace simulator
