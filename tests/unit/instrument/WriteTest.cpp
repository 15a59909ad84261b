// Writing settings: what is taken, what is refused, and that a refusal changes nothing.
#include <Status.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "Bench.h"
#include "ExpectedParameters.h"

namespace simulator {

namespace {

constexpr std::uint32_t cColumnTempSP = 202;
constexpr std::uint32_t cRunTimeSP = 204;
constexpr double cInfinity = std::numeric_limits<double>::infinity();

std::uint32_t write(Bench& bench, const ExpectedParameter& aParameter, double aValue) {
  return aParameter.isReal
             ? bench.writeReal(0.0, aParameter.channel, aParameter.id, aValue)
             : bench.writeInteger(0.0, aParameter.channel, aParameter.id, static_cast<int>(aValue));
}

double value(Bench& bench, const ExpectedParameter& aParameter) {
  return aParameter.isReal ? bench.real(0.0, aParameter.channel, aParameter.id)
                           : bench.integer(0.0, aParameter.channel, aParameter.id);
}

}  // namespace

TEST(Write, SettingsAreTakenUpToTheirBounds) {
  Bench bench(scenarioWith("four-channel", {{"mStreamMaxNr", 46}}));
  int settings = 0;
  for (const ExpectedParameter& parameter : cExpectedParameters) {
    if (!parameter.isSetting) {
      continue;
    }
    ++settings;
    for (double bound : {parameter.lowest, parameter.highest}) {
      EXPECT_EQ(write(bench, parameter, bound), eSuccess) << parameter.name;
      EXPECT_EQ(value(bench, parameter), bound) << parameter.name;
    }
    const double step = parameter.isReal ? 1e-9 : 1.0;
    EXPECT_EQ(write(bench, parameter, parameter.lowest - step), eOutOfBounds) << parameter.name;
    EXPECT_EQ(write(bench, parameter, parameter.highest + step), eOutOfBounds) << parameter.name;
    EXPECT_EQ(value(bench, parameter), parameter.highest) << parameter.name;
  }
  EXPECT_EQ(settings, 26);
}

TEST(Write, EverythingElseIsReadOnly) {
  Bench bench("four-channel");
  const std::string before = bench.snapshot(0.0);
  for (const ExpectedParameter& parameter : cExpectedParameters) {
    if (!parameter.isSetting) {
      EXPECT_EQ(write(bench, parameter, 1.0), eReadOnly) << parameter.name;
    }
  }
  EXPECT_EQ(bench.snapshot(0.0), before);
}

TEST(Write, WhatIsNoNumberIsOutOfBounds) {
  Bench bench;
  for (double wrong : {cInfinity, -cInfinity, std::nan(""), 1e308, -1e308}) {
    EXPECT_EQ(bench.writeReal(0.0, 1, cColumnTempSP, wrong), eOutOfBounds) << wrong;
  }
  for (std::int32_t wrong : {INT32_MIN, -1, 3601, INT32_MAX}) {
    EXPECT_EQ(bench.writeInteger(0.0, 1, cRunTimeSP, wrong), eOutOfBounds) << wrong;
  }
  EXPECT_EQ(bench.real(0.0, 1, cColumnTempSP), 60.0);
  EXPECT_EQ(bench.integer(0.0, 1, cRunTimeSP), 120);
}

TEST(Write, OnlyTheFieldOfTheTypeCounts) {
  Bench bench;
  EXPECT_EQ(bench.instrument->write(0.0, {{1, 0, 0, cColumnTempSP, 62.5, -99, 0}}), eSuccess);
  EXPECT_EQ(bench.instrument->write(0.0, {{1, 0, 0, cRunTimeSP, std::nan(""), 90, 0}}), eSuccess);
  EXPECT_EQ(bench.real(0.0, 1, cColumnTempSP), 62.5);
  EXPECT_EQ(bench.integer(0.0, 1, cRunTimeSP), 90);
}

TEST(Write, ABatchIsWrittenWholeOrNotAtAll) {
  const ParamList good{1, 0, 0, cColumnTempSP, 70.0, 0, 0};
  const ParamList goodToo{2, 0, 0, cRunTimeSP, 0.0, 100, 0};
  struct Case {
    ParamList bad;
    std::uint32_t status;
  };
  const Case cases[] = {
      {{1, 0, 0, cColumnTempSP, 180.5, 0, 0}, eOutOfBounds},
      {{0, 0, 0, 102, 0.0, 4, 0}, eReadOnly},
      {{0, 0, 0, 4711, 0.0, 4, 0}, eParameterUnknown},
      {{3, 0, 0, cColumnTempSP, 70.0, 0, 0}, eStateForbids},  // channel 3 is not installed
  };
  for (const Case& one : cases) {
    Bench bench;
    const std::string before = bench.snapshot(0.0);
    EXPECT_EQ(bench.instrument->write(0.0, {good, one.bad, goodToo}), one.status);
    EXPECT_EQ(bench.instrument->write(0.0, {good, goodToo, one.bad}), one.status);
    EXPECT_EQ(bench.instrument->write(0.0, {one.bad, good, goodToo}), one.status);
    EXPECT_EQ(bench.snapshot(0.0), before);
    EXPECT_EQ(bench.instrument->write(0.0, {good, goodToo}), eSuccess);
    EXPECT_EQ(bench.real(0.0, 1, cColumnTempSP), 70.0);
    EXPECT_EQ(bench.integer(0.0, 2, cRunTimeSP), 100);
  }
}

TEST(Write, TheFirstRefusalIsTheAnswer) {
  Bench bench;
  const ParamList readOnly{0, 0, 0, 102, 0.0, 4, 0};
  const ParamList outOfBounds{1, 0, 0, cColumnTempSP, -1.0, 0, 0};
  EXPECT_EQ(bench.instrument->write(0.0, {outOfBounds, readOnly}), eOutOfBounds);
  EXPECT_EQ(bench.instrument->write(0.0, {readOnly, outOfBounds}), eReadOnly);
}

TEST(Write, APartThatIsNotThereTakesNothing) {
  Bench bench("bare");
  EXPECT_EQ(bench.writeReal(0.0, 1, cColumnTempSP, 55.0), eSuccess);
  EXPECT_EQ(bench.writeReal(0.0, 2, cColumnTempSP, 55.0), eStateForbids);
  EXPECT_EQ(bench.writeReal(0.0, 0, 1, 55.0), eStateForbids);  // sample line
  EXPECT_EQ(bench.real(0.0, 2, cColumnTempSP), 0.0);
}

TEST(Write, TheStateDecidesWhetherSettingsAreTaken) {
  struct Case {
    int state;
    bool taken;
  };
  constexpr Case cCases[] = {{0, false},  {1, false},  {2, false},  {3, true},   {4, true},
                             {5, true},   {6, true},   {7, false},  {8, true},   {9, true},
                             {10, false}, {11, false}, {-1, false}, {32, false}, {36, false}};
  for (const Case& one : cCases) {
    Bench bench;
    bench.set(0.0, "mGC_State", one.state);
    EXPECT_EQ(bench.writeReal(0.0, 1, cColumnTempSP, 61.0), one.taken ? eSuccess : eStateForbids)
        << one.state;
    EXPECT_EQ(bench.real(0.0, 1, cColumnTempSP), one.taken ? 61.0 : 60.0) << one.state;
  }
}

}  // namespace simulator
