// What is written before a run, and what the run makes of it; valve and solutions.
#include <Status.h>
#include <gtest/gtest.h>

#include "Bench.h"

namespace simulator {

namespace {

constexpr std::uint32_t cStart = 0;
constexpr std::uint32_t cAbort = 1;

enum { eRunning = 2, eReady = 4, eNotReady = 8 };

ParamList setting(std::uint32_t aId, std::int32_t aValue) {
  return {0, 0, 0, aId, 0.0, aValue, 0};
}

std::uint32_t prepareCalibration(Bench& bench, double aNow, int aStream, int aReplicates,
                                 int aFirst) {
  return bench.instrument->write(
      aNow, {setting(60, 1), setting(61, 1), setting(62, aStream), setting(75, 1),
             setting(73, aReplicates), setting(74, aFirst)});
}

std::string coefficients(Bench& bench, double aNow) {
  std::string all;
  for (std::uint32_t peak = 1; peak <= 4; ++peak) {
    all += std::to_string(bench.real(aNow, 1, 1242, peak) * 1e9) + " ";
  }
  return all;
}

}  // namespace

TEST(RunParameters, OfASingleRunAreTakenOver) {
  Bench bench;
  EXPECT_EQ(bench.instrument->write(0.0, {setting(60, 2), setting(61, 0), setting(62, 7)}),
            eSuccess);
  EXPECT_EQ(bench.stream(0.0), 1);
  EXPECT_EQ(bench.runType(0.0), 0);
  EXPECT_EQ(bench.command(0.0, cStart), eSuccess);
  EXPECT_EQ(bench.stream(0.0), 7);
  EXPECT_EQ(bench.runType(0.0), 2);
  EXPECT_EQ(bench.stream(180.0), 7);
  EXPECT_EQ(bench.runType(180.0), 2);
  EXPECT_EQ(bench.counter(180.0), 1285);
}

TEST(RunParameters, AreTheScenariosStreamUntilWritten) {
  Bench bench("four-channel");
  EXPECT_EQ(bench.integer(0.0, 0, 62), 3);
  EXPECT_EQ(bench.command(0.0, cStart), eSuccess);
  EXPECT_EQ(bench.stream(0.0), 3);
}

TEST(RunParameters, TheRunTypeShowsAsAutomationState) {
  constexpr int cAutomation[] = {1, 3, 1, 4};
  for (int type = 0; type < 4; ++type) {
    Bench bench;
    EXPECT_EQ(bench.writeInteger(0.0, 0, 60, type), eSuccess);
    EXPECT_EQ(bench.command(0.0, cStart), eSuccess);
    EXPECT_EQ(bench.autoState(0.0), cAutomation[type]) << type;
    EXPECT_EQ(bench.autoState(180.0), 0);
  }
}

TEST(RunParameters, AreRefusedInARun) {
  Bench bench;
  EXPECT_EQ(bench.command(0.0, cStart), eSuccess);
  EXPECT_EQ(prepareCalibration(bench, 10.0, 3, 2, 1), eStateForbids);
  EXPECT_EQ(bench.runType(10.0), 0);
}

TEST(CalibrationRun, MakesItsReplicates) {
  Bench bench;
  EXPECT_EQ(prepareCalibration(bench, 0.0, 4, 3, 1), eSuccess);
  EXPECT_EQ(bench.command(0.0, cStart), eSuccess);
  for (int replicate = 1; replicate <= 3; ++replicate) {
    const double begin = (replicate - 1) * 180.0;
    EXPECT_EQ(bench.state(begin), eRunning);
    EXPECT_EQ(bench.integer(begin, 0, 74), replicate);
    EXPECT_EQ(bench.counter(begin), 1283 + replicate);
    EXPECT_EQ(bench.runTime(begin + 37.0), 37);
    EXPECT_EQ(bench.autoState(begin + 179.9), 3);
  }
  EXPECT_EQ(bench.state(540.0), eReady);
  EXPECT_EQ(bench.counter(540.0), 1287);
  EXPECT_EQ(bench.integer(540.0, 0, 74), 1);
  EXPECT_EQ(bench.command(600.0, cStart), eSuccess);  // the same again
  EXPECT_EQ(bench.counter(600.0 + 540.0), 1290);
}

TEST(CalibrationRun, BeginsWithTheReplicateThatWasWritten) {
  Bench bench;
  EXPECT_EQ(prepareCalibration(bench, 0.0, 4, 3, 3), eSuccess);
  EXPECT_EQ(bench.command(0.0, cStart), eSuccess);
  EXPECT_EQ(bench.integer(0.0, 0, 74), 3);
  EXPECT_EQ(bench.state(180.0), eReady);
  for (int first : {0, 1, 99}) {  // none written, and more than there are: one run
    Bench one;
    EXPECT_EQ(prepareCalibration(one, 0.0, 4, 0, first), eSuccess);
    EXPECT_EQ(one.command(0.0, cStart), eSuccess);
    EXPECT_EQ(one.state(180.0), eReady) << first;
  }
}

TEST(CalibrationRun, ShiftsTheCoefficientsALittleWhenItIsComplete) {
  Bench bench;
  constexpr double cBefore[] = {0.0000214, 0.0000268, 0.0000186, 0.0000173};
  EXPECT_EQ(prepareCalibration(bench, 0.0, 4, 2, 1), eSuccess);
  EXPECT_EQ(bench.command(0.0, cStart), eSuccess);
  const std::string before = coefficients(bench, 179.9);
  const std::string between = coefficients(bench, 180.0);
  const std::string after = coefficients(bench, 360.0);
  EXPECT_NE(before, between);
  EXPECT_NE(between, after);
  for (std::uint32_t peak = 1; peak <= 4; ++peak) {
    EXPECT_NEAR(bench.real(360.0, 1, 1242, peak) / cBefore[peak - 1], 1.0, 0.0021) << peak;
  }
  // The same again, unwatched; and another seed.
  Bench again;
  EXPECT_EQ(prepareCalibration(again, 0.0, 4, 2, 1), eSuccess);
  EXPECT_EQ(again.command(0.0, cStart), eSuccess);
  EXPECT_EQ(coefficients(again, 9999.0), after);
  Bench other("everyday", 2);
  EXPECT_EQ(prepareCalibration(other, 0.0, 4, 2, 1), eSuccess);
  EXPECT_EQ(other.command(0.0, cStart), eSuccess);
  EXPECT_NE(coefficients(other, 9999.0), after);
}

TEST(CalibrationRun, LeavesCoefficientsAloneWhenAbortedOrOfAnotherType) {
  Bench bench;
  const std::string before = coefficients(bench, 0.0);
  EXPECT_EQ(prepareCalibration(bench, 0.0, 4, 2, 1), eSuccess);
  EXPECT_EQ(bench.command(0.0, cStart), eSuccess);
  EXPECT_EQ(bench.command(179.0, cAbort), eSuccess);
  EXPECT_EQ(coefficients(bench, 5000.0), before);
  EXPECT_EQ(bench.writeInteger(5000.0, 0, 60, 0), eSuccess);
  EXPECT_EQ(bench.command(5000.0, cStart), eSuccess);
  EXPECT_EQ(coefficients(bench, 6000.0), before);
}

TEST(CalibrationRun, PassesOverPeaksWithoutAnAmount) {
  Bench bench;
  EXPECT_EQ(bench.writeReal(0.0, 1, 1230, 0.0, 2), eSuccess);
  EXPECT_EQ(prepareCalibration(bench, 0.0, 4, 1, 1), eSuccess);
  EXPECT_EQ(bench.command(0.0, cStart), eSuccess);
  EXPECT_EQ(bench.real(180.0, 1, 1242, 2), 0.0000268);
  EXPECT_NE(bench.real(180.0, 1, 1242, 3), 0.0000186);
}

TEST(CalibrationRun, StartsFromTheCoefficientThatAnOperatorSet) {
  Bench bench;
  bench.set(0.0, "mLinearCoef1[1]", 0.5);
  EXPECT_EQ(bench.real(0.0, 1, 1242, 1), 0.5);
  EXPECT_EQ(prepareCalibration(bench, 0.0, 4, 1, 1), eSuccess);
  EXPECT_EQ(bench.command(0.0, cStart), eSuccess);
  EXPECT_NE(bench.real(180.0, 1, 1242, 1), 0.5);
  EXPECT_NEAR(bench.real(180.0, 1, 1242, 1), 0.5, 0.00101);
}

TEST(Stream, IsSwitchedWithinTheConfiguredMaximum) {
  Bench bench;  // 4 streams
  for (int stream : {0, 4, 2}) {
    EXPECT_EQ(bench.writeInteger(0.0, 0, 39, stream), eSuccess) << stream;
    EXPECT_EQ(bench.stream(0.0), stream);
    EXPECT_EQ(bench.integer(0.0, 0, 39), stream);
    EXPECT_EQ(bench.integer(0.0, 0, 62), stream);
  }
  for (int stream : {5, 46, -1, INT32_MAX, INT32_MIN}) {
    EXPECT_EQ(bench.writeInteger(0.0, 0, 39, stream), eOutOfBounds) << stream;
    EXPECT_EQ(bench.stream(0.0), 2);
  }
  EXPECT_EQ(bench.state(0.0), eReady);
}

TEST(Stream, IsNotSwitchedWithoutASelectorOrInARun) {
  Bench bare("bare");
  EXPECT_EQ(bare.writeInteger(0.0, 0, 39, 0), eStateForbids);
  Bench bench;
  EXPECT_EQ(bench.command(0.0, cStart), eSuccess);
  EXPECT_EQ(bench.writeInteger(1.0, 0, 39, 2), eStateForbids);
  EXPECT_EQ(bench.stream(1.0), 1);
}

TEST(Solution, TakesAMinuteToLoad) {
  for (std::uint32_t slot : {0U, 4U, 10U}) {
    Bench bench;
    EXPECT_EQ(bench.writeInteger(5.0, 0, 1003, 0, slot), eSuccess) << slot;
    EXPECT_EQ(bench.state(5.0), eNotReady);
    EXPECT_EQ(bench.command(64.9, cStart), eStateForbids);
    EXPECT_EQ(bench.writeReal(64.9, 1, 202, 60.1), eSuccess);  // does not shorten it
    EXPECT_EQ(bench.state(64.9), eNotReady);
    EXPECT_EQ(bench.state(65.0), eReady);
    for (std::uint32_t other = 0; other <= 10; ++other) {
      EXPECT_EQ(bench.integer(65.0, 0, 1003, other), other == slot ? 1 : 0) << other;
    }
  }
}

TEST(Solution, IsLoadedOnlyWhileNothingElseGoesOn) {
  for (int state = 0; state <= 10; ++state) {
    Bench bench;
    bench.set(0.0, "mGC_State", state);
    const bool isIdle = state == 3 || state == 4 || state == 8 || state == 9;
    EXPECT_EQ(bench.writeInteger(0.0, 0, 1003, 0, 1), isIdle ? eSuccess : eStateForbids) << state;
  }
  Bench bench;
  EXPECT_EQ(bench.writeInteger(0.0, 0, 1003, 0, 11), eParameterUnknown);
  EXPECT_EQ(bench.command(0.0, cStart), eSuccess);
  EXPECT_EQ(bench.writeInteger(1.0, 0, 1003, 0, 1), eStateForbids);
  EXPECT_EQ(bench.runTime(2.0), 2);
}

}  // namespace simulator
