// The gateway's default timeouts.
#include <gtest/gtest.h>

#include "Settings.h"

namespace gateway {

namespace {

using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;

TEST(Limits, AreThoseOfTheManual) {
  const Limits limits;
  EXPECT_EQ(limits.report, seconds(20));
  EXPECT_EQ(limits.command, minutes(2));
  EXPECT_EQ(limits.hung, hours(1));
  EXPECT_EQ(limits.abort, seconds(20));
  EXPECT_EQ(limits.begin, seconds(29));
  // The web server gives up after 150 s.
  EXPECT_LT(limits.begin + limits.command, seconds(150));
  EXPECT_LT(limits.otherCommand + limits.report, limits.begin);
  EXPECT_LT(limits.abort + limits.otherCommand, limits.begin);
  EXPECT_EQ(limits.otherCommand, seconds(5));
  EXPECT_EQ(limits.otherStatus, seconds(25));
  EXPECT_EQ(limits.freshStatus, milliseconds(1000));
  EXPECT_EQ(limits.output, 8388608U);
}

}  // namespace

}  // namespace gateway
