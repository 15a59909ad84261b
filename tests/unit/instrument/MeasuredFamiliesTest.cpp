// Each family of measured values: how fast it follows, when it is ready, how its readings scatter.
#include <Status.h>
#include <gtest/gtest.h>
#include <model/Measurement.h>

#include <array>
#include <cmath>
#include <set>

#include "Bench.h"

namespace simulator {

namespace {

struct Family {
  const char* setpoint;
  std::uint32_t channel;
  std::uint32_t id;  ///< of what is measured
  double timeConstant;
  double tolerance;
  double noise;
  double resolution;
};

constexpr Family cFamilies[] = {
    {"mColumnTempSP2", 2, 300, 90.0, 0.5, 0.03, 0.01},
    {"mInjTempSP2", 2, 302, 60.0, 0.5, 0.05, 0.01},
    {"mPressSP2", 2, 304, 5.0, 1.0, 0.2, 0.1},
    {"mSampleLineTempSP", 0, 100, 120.0, 1.0, 0.05, 0.01},
};

/// Readings from a time on, one a second, in units of their resolution.
std::set<long> readings(Bench& bench, const Family& aFamily, double aFrom) {
  std::set<long> seen;
  for (int second = 0; second < 3000; ++second) {
    const double reading = bench.real(aFrom + second, aFamily.channel, aFamily.id);
    const double units = reading / aFamily.resolution;
    EXPECT_NEAR(units, std::round(units), 1e-6) << aFamily.setpoint;
    seen.insert(std::lround(units));
  }
  return seen;
}

}  // namespace

// From 100 below its setpoint: after one time constant 100 / e are missing.
TEST(MeasuredFamily, FollowsWithItsTimeConstant) {
  for (const Family& family : cFamilies) {
    Bench bench;
    const double before = bench.real(0.0, family.channel, family.id);
    bench.set(0.0, family.setpoint, std::round(before) + 100.0);
    const auto missing = [&](double aNow) {
      return std::round(before) + 100.0 - bench.real(aNow, family.channel, family.id);
    };
    const double bound = family.noise + family.resolution;
    EXPECT_NEAR(missing(family.timeConstant), 36.788, bound) << family.setpoint;
    EXPECT_NEAR(missing(2.0 * family.timeConstant), 13.534, bound) << family.setpoint;
  }
}

// ln(100 / tolerance) time constants.
TEST(MeasuredFamily, IsReadyWithinItsTolerance) {
  for (const Family& family : cFamilies) {
    for (double step : {100.0, -100.0}) {
      Bench bench;
      const double setpoint = std::round(bench.real(0.0, family.channel, family.id));
      bench.set(0.0, family.setpoint, setpoint + step);
      const double ready = family.timeConstant * std::log(100.0 / family.tolerance);
      EXPECT_EQ(bench.state(ready - 0.01), 3) << family.setpoint;
      EXPECT_EQ(bench.state(ready + 0.01), 4) << family.setpoint;
    }
    Bench near;
    const double setpoint = std::round(near.real(0.0, family.channel, family.id));
    near.set(0.0, family.setpoint, setpoint + family.tolerance);
    EXPECT_EQ(near.state(0.0), 4) << family.setpoint;
    near.set(0.0, family.setpoint, setpoint + family.tolerance * 1.01);
    EXPECT_EQ(near.state(0.0), 3) << family.setpoint;
  }
}

TEST(MeasuredFamily, ScattersAsFarAsItsNoise) {
  for (const Family& family : cFamilies) {
    Bench bench;
    const auto setpoint =
        std::lround(std::round(bench.real(0.0, family.channel, family.id)) / family.resolution);
    const std::set<long> seen = readings(bench, family, 0.0);
    const auto most = std::lround(family.noise / family.resolution);
    EXPECT_EQ(*seen.begin(), setpoint - most) << family.setpoint;
    EXPECT_EQ(*seen.rbegin(), setpoint + most) << family.setpoint;
  }
}

TEST(MeasuredFamily, WithoutASetpointScattersAroundItsFirstValue) {
  Bench bench;
  const std::set<long> zero = readings(bench, {"auto-zero", 2, 307, 0, 0, 0, 0.001}, 0.0);
  EXPECT_EQ(*zero.begin(), -844);
  EXPECT_EQ(*zero.rbegin(), -836);
  Bench another;
  const std::set<long> pressure =
      readings(another, {"ambient pressure", 0, 104, 0, 0, 0, 0.01}, 0.0);
  EXPECT_EQ(*pressure.begin(), 10128);
  EXPECT_EQ(*pressure.rbegin(), 10132);
  EXPECT_EQ(bench.state(3000.0), 4);
}

// Each parameter of each channel has its own.
TEST(MeasuredFamily, NoTwoScatterAlike) {
  for (std::uint32_t id : {300U, 302U, 304U, 307U}) {
    Bench bench("four-channel");
    std::array<double, 5> first{};
    std::array<int, 5> alike{};
    for (int second = 0; second < 200; ++second) {
      std::array<double, 5> gone{};
      for (std::uint32_t channel = 1; channel <= 4; ++channel) {
        const double reading = bench.real(second, channel, id);
        first.at(channel) = second == 0 ? reading : first.at(channel);
        gone.at(channel) = reading - first.at(channel);
        alike.at(channel) += std::fabs(gone.at(channel) - gone[1]) < 1e-9 ? 1 : 0;
      }
    }
    for (std::uint32_t channel = 2; channel <= 4; ++channel) {
      EXPECT_LT(alike.at(channel), 80) << channel << "/" << id;
    }
  }
}

TEST(Rounded, HasAnEndWhereDigitsHaveOne) {
  EXPECT_EQ(model::rounded(999999999999.0012, 100.0), 999999999999.0);
  EXPECT_EQ(model::rounded(-999999999999.0012, 100.0), -999999999999.0);
  EXPECT_EQ(model::rounded(1000000000000.0012, 100.0), 1000000000000.0012);
  EXPECT_EQ(model::rounded(0.5, 1.0), 1.0);
  EXPECT_EQ(model::rounded(-0.5, 1.0), -1.0);
}

TEST(Lag, BetweenInfinitiesStaysWhereItIs) {
  EXPECT_EQ(model::lagged({20.0, 5.0, HUGE_VAL}, 10.0, 5.0), 20.0);
  EXPECT_EQ(model::lagged({20.0, 5.0, HUGE_VAL}, 10.0, 6.0), HUGE_VAL);
  EXPECT_EQ(model::lagged({-HUGE_VAL, 5.0, -HUGE_VAL}, 10.0, 5.0), -HUGE_VAL);
  EXPECT_EQ(model::lagged({-HUGE_VAL, 5.0, -HUGE_VAL}, 10.0, 1e9), -HUGE_VAL);
  EXPECT_EQ(model::lagged({20.0, 5.0, std::nan("")}, 10.0, 5.0), 20.0);
  EXPECT_TRUE(std::isnan(model::lagged({20.0, 5.0, std::nan("")}, 10.0, 6.0)));
}

}  // namespace simulator
