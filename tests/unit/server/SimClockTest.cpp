// Simulated time against a clock that the test moves.
#include "SimClock.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace simulator {

namespace {

double realSeconds = 0.0;

double testSeconds() {
  return realSeconds;
}

class SimClockTest : public ::testing::Test {
 protected:
  void SetUp() override { realSeconds = 1000.0; }
};

TEST_F(SimClockTest, StartsAtZeroAndGoesOn) {
  const SimClock clock(1.0, false, &testSeconds);
  EXPECT_EQ(clock.now(), 0.0);
  realSeconds += 2.5;
  EXPECT_EQ(clock.now(), 2.5);
}

TEST_F(SimClockTest, GoesAtItsSpeed) {
  SimClock clock(100.0, false, &testSeconds);
  realSeconds += 0.5;
  EXPECT_EQ(clock.now(), 50.0);
  EXPECT_TRUE(clock.setSpeed(0.25));
  EXPECT_EQ(clock.now(), 50.0);
  realSeconds += 4.0;
  EXPECT_EQ(clock.now(), 51.0);
  EXPECT_EQ(clock.speed(), 0.25);
}

TEST_F(SimClockTest, RefusesSpeeds) {
  SimClock clock(2.0, false, &testSeconds);
  for (const double speed : {0.0, -1.0, 1000001.0, std::numeric_limits<double>::infinity(),
                             std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_FALSE(clock.setSpeed(speed)) << speed;
  }
  EXPECT_EQ(clock.speed(), 2.0);
  EXPECT_TRUE(clock.setSpeed(1000000.0));
}

TEST_F(SimClockTest, StandsStillWhilePaused) {
  SimClock clock(2.0, true, &testSeconds);
  realSeconds += 10.0;
  EXPECT_EQ(clock.now(), 0.0);
  clock.resume();
  realSeconds += 1.0;
  EXPECT_EQ(clock.now(), 2.0);
  clock.pause();
  clock.pause();
  realSeconds += 10.0;
  EXPECT_EQ(clock.now(), 2.0);
  EXPECT_TRUE(clock.isPaused());
  EXPECT_TRUE(clock.setSpeed(5.0));
  EXPECT_EQ(clock.now(), 2.0);
}

TEST_F(SimClockTest, ResumingTwiceChangesNothing) {
  SimClock clock(1.0, false, &testSeconds);
  realSeconds += 3.0;
  clock.resume();
  realSeconds += 3.0;
  EXPECT_EQ(clock.now(), 6.0);
}

TEST_F(SimClockTest, Steps) {
  SimClock clock(1.0, true, &testSeconds);
  EXPECT_TRUE(clock.step(0.0));
  EXPECT_TRUE(clock.step(90.5));
  EXPECT_EQ(clock.now(), 90.5);
  clock.resume();
  realSeconds += 1.0;
  EXPECT_TRUE(clock.step(10.0));
  EXPECT_EQ(clock.now(), 101.5);
  for (const double seconds : {-0.001, 31622401.0, std::numeric_limits<double>::infinity(),
                               std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_FALSE(clock.step(seconds)) << seconds;
  }
  EXPECT_EQ(clock.now(), 101.5);
  EXPECT_TRUE(clock.step(31622400.0));
}

TEST_F(SimClockTest, ResetKeepsSpeedAndPause) {
  SimClock clock(3.0, false, &testSeconds);
  realSeconds += 1.0;
  clock.reset();
  EXPECT_EQ(clock.now(), 0.0);
  realSeconds += 1.0;
  EXPECT_EQ(clock.now(), 3.0);
  clock.pause();
  clock.reset();
  realSeconds += 1.0;
  EXPECT_EQ(clock.now(), 0.0);
  EXPECT_TRUE(clock.isPaused());
}

TEST_F(SimClockTest, RealTimeGoesOn) {
  const double before = monotonicSeconds();
  EXPECT_GE(monotonicSeconds(), before);
}

}  // namespace

}  // namespace simulator
