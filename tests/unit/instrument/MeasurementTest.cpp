// Lag, noise and rounding of measured values, and that asking changes nothing.
#include <gtest/gtest.h>
#include <model/Measurement.h>

#include <cmath>
#include <limits>
#include <set>

#include "Bench.h"

namespace simulator {

namespace {

constexpr double cInfinity = std::numeric_limits<double>::infinity();
constexpr double cMax = std::numeric_limits<double>::max();
constexpr double cNaN = std::numeric_limits<double>::quiet_NaN();

}  // namespace

TEST(Lag, StartsWhereItWasAndEndsAtItsTarget) {
  const model::Lag lag{20.0, 5.0, 80.0};
  EXPECT_EQ(model::lagged(lag, 10.0, 5.0), 20.0);
  EXPECT_NEAR(model::lagged(lag, 10.0, 15.0), 57.927, 0.001);
  EXPECT_EQ(model::lagged(lag, 10.0, 1e9), 80.0);
  EXPECT_EQ(model::lagged(lag, 10.0, cMax), 80.0);
}

TEST(Lag, KnowsWhenItSettles) {
  EXPECT_NEAR(model::settledAt({20.0, 5.0, 80.0}, 10.0, 0.6), 5.0 + 46.0517, 0.001);
  EXPECT_EQ(model::settledAt({79.5, 5.0, 80.0}, 10.0, 0.5), 5.0);
  EXPECT_EQ(model::settledAt({cNaN, 5.0, 80.0}, 10.0, 0.5), cInfinity);
  EXPECT_EQ(model::settledAt({0.0, 5.0, cInfinity}, 10.0, 0.5), cInfinity);
}

TEST(Lag, StaysFiniteBetweenTheLargestNumbers) {
  const model::Lag lag{-cMax, 0.0, cMax};
  EXPECT_EQ(model::lagged(lag, 10.0, 0.0), -cMax);
  EXPECT_TRUE(std::isfinite(model::lagged(lag, 10.0, 7.0)));
  EXPECT_EQ(model::lagged(lag, 10.0, 1e9), cMax);
}

TEST(Noise, IsEvenlySpreadAndRepeats) {
  double sum = 0.0;
  std::set<double> seen;
  for (int second = 0; second < 1000; ++second) {
    const double value = model::noise(1, 42, second);
    EXPECT_GE(value, -1.0);
    EXPECT_LT(value, 1.0);
    EXPECT_EQ(model::noise(1, 42, second + 0.999), value);
    sum += value;
    seen.insert(value);
  }
  EXPECT_NEAR(sum / 1000.0, 0.0, 0.1);
  EXPECT_EQ(seen.size(), 1000U);
}

TEST(Noise, DependsOnSeedAndSource) {
  EXPECT_NE(model::noise(1, 42, 7.0), model::noise(2, 42, 7.0));
  EXPECT_NE(model::noise(1, 42, 7.0), model::noise(1, 43, 7.0));
}

TEST(Noise, TakesAnyTime) {
  for (double now : {-1.0, 1e300, cMax, cInfinity, cNaN}) {
    EXPECT_LE(std::fabs(model::noise(UINT32_MAX, UINT64_MAX, now)), 1.0);
  }
}

TEST(Rounded, PrintsShort) {
  EXPECT_EQ(model::rounded(60.0149, 100.0), 60.01);
  EXPECT_EQ(model::rounded(60.015001, 100.0), 60.02);
  EXPECT_EQ(model::rounded(-0.8449, 1000.0), -0.845);
  EXPECT_EQ(model::rounded(180.04, 10.0), 180.0);
  EXPECT_FALSE(std::signbit(model::rounded(-0.001, 100.0)));
}

TEST(Rounded, LeavesAloneWhatHasNoSuchDigits) {
  for (double value : {cMax, -cMax, 1e12, cInfinity, -cInfinity}) {
    EXPECT_EQ(model::rounded(value, 100.0), value);
  }
  EXPECT_TRUE(std::isnan(model::rounded(cNaN, 100.0)));
}

TEST(Integral, CutsToWhatAnIntHolds) {
  EXPECT_EQ(model::integral(7.9), 7.0);
  EXPECT_EQ(model::integral(-7.9), -7.0);
  EXPECT_EQ(model::integral(1e300), 2147483647.0);
  EXPECT_EQ(model::integral(-cInfinity), -2147483648.0);
  EXPECT_EQ(model::integral(cNaN), 0.0);
}

TEST(MeasuredValues, StayCloseToTheirSetpointsAndMove) {
  Bench bench;
  std::set<double> temperatures;
  std::set<double> pressures;
  for (int second = 0; second < 500; ++second) {
    temperatures.insert(bench.columnTemp1(second));
    pressures.insert(bench.real(second, 1, 304));
  }
  EXPECT_NEAR(*temperatures.begin(), 59.97, 0.011);
  EXPECT_NEAR(*temperatures.rbegin(), 60.03, 0.011);
  EXPECT_NEAR(*pressures.begin(), 179.8, 0.11);
  EXPECT_NEAR(*pressures.rbegin(), 180.2, 0.11);
  EXPECT_EQ(temperatures.size(), 7U);  // 59.97 to 60.03 in hundredths
  EXPECT_EQ(pressures.size(), 5U);     // 179.8 to 180.2 in tenths
}

TEST(MeasuredValues, DoNotChangeWithinASecond) {
  Bench bench;
  for (double second : {0.0, 1.0, 77.0, 3600.0}) {
    const std::string first = bench.snapshot(second);
    EXPECT_EQ(bench.snapshot(second), first);
    EXPECT_EQ(bench.snapshot(second + 0.25), first);
    EXPECT_EQ(bench.snapshot(second + 0.99), first);
  }
}

TEST(Time, DoesNotGoBack) {
  Bench bench("warming-up");
  const std::string late = bench.snapshot(500.0);
  for (double earlier : {499.0, 0.0, -1.0, -cInfinity, cNaN}) {
    EXPECT_EQ(bench.snapshot(earlier), late);
  }
}

TEST(Time, MayReachTheEnd) {
  Bench bench;
  EXPECT_EQ(bench.command(0.0, 0), 0U);
  EXPECT_EQ(bench.state(cInfinity), 4);
  EXPECT_EQ(bench.counter(cInfinity), 1285);
}

namespace {

/// A morning's work; `aCurious` asks for everything every quarter of a second in between.
std::vector<std::string> morning(std::uint32_t aSeed, bool aCurious) {
  Bench bench("warming-up", aSeed);
  std::vector<std::string> seen;
  double now = 0.0;
  const auto goTo = [&](double aNow) {
    for (; aCurious && now < aNow; now += 1.3) {
      bench.snapshot(now);
    }
    now = aNow;
    seen.push_back(bench.snapshot(now));
  };
  goTo(33.3);
  seen.push_back(std::to_string(bench.writeReal(now, 1, 202, 66.6)));
  goTo(500.1);
  seen.push_back(std::to_string(bench.command(now, 0)));
  goTo(555.5);
  seen.push_back(std::to_string(bench.command(now, 1)));
  goTo(600.0);
  seen.push_back(std::to_string(bench.writeReal(now, 2, 342, 111.1)));
  goTo(601.7);
  bench.set(now, "mInjTemp1", 12.25);
  goTo(700.0);
  seen.push_back(std::to_string(bench.command(now, 0)));
  goTo(1000.0);
  return seen;
}

}  // namespace

TEST(Determinism, SameSeedAndCallsGiveTheSameAnswers) {
  EXPECT_EQ(morning(7, false), morning(7, false));
  EXPECT_NE(morning(7, false), morning(8, false));
}

TEST(Determinism, AskingMoreOftenChangesNothing) {
  EXPECT_EQ(morning(7, true), morning(7, false));
}

}  // namespace simulator
