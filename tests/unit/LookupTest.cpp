// Look-ups of values by name.
#include <gtest/gtest.h>

#include "Capture.h"
#include "TestMap.h"

namespace {
class LookupTest : public testing::Test {
 protected:
  TestMap mMap;
};
}  // namespace

TEST_F(LookupTest, UnknownNameYieldsTheDefault) {
  EXPECT_EQ(getIntValue(mMap, "unknown", -5), -5);
  EXPECT_EQ(getRealValue(mMap, "unknown", 1.5), 1.5);
}

TEST_F(LookupTest, UnknownNameIsSilentAndBindsNothing) {
  const Output output = capture([&] {
    getIntValue(mMap, "unknown", 0);
    getRealValue(mMap, "unknown", 0.0);
  });
  EXPECT_EQ(output.out, "");
  EXPECT_EQ(output.err, "");
  EXPECT_EQ(mMap.current_size(), 0U);
}

TEST_F(LookupTest, BoundNameYieldsItsValuesAndNotTheDefault) {
  Parameter* const parameter = mMap.add("mSeq_line", 0, 136);
  EXPECT_EQ(getIntValue(mMap, "mSeq_line", -5), 0);
  EXPECT_EQ(getRealValue(mMap, "mSeq_line", 1.5), 0.0);
  parameter->setIntValue(-12);
  parameter->setRealValue(0.75);
  EXPECT_EQ(getIntValue(mMap, "mSeq_line", -5), -12);
  EXPECT_EQ(getRealValue(mMap, "mSeq_line", 1.5), 0.75);
}

TEST_F(LookupTest, NamesAreComparedWhole) {
  mMap.add("mPress1", 1, 304)->setIntValue(1);
  mMap.add("mPressSP1", 1, 342)->setIntValue(2);
  EXPECT_EQ(getIntValue(mMap, "mPress1", -1), 1);
  EXPECT_EQ(getIntValue(mMap, "mPressSP1", -1), 2);
  EXPECT_EQ(getIntValue(mMap, "mPress", -1), -1);
  EXPECT_EQ(getIntValue(mMap, "mpress1", -1), -1);
  EXPECT_EQ(getIntValue(mMap, "mPress11", -1), -1);
  EXPECT_EQ(getIntValue(mMap, "", -1), -1);
}

TEST_F(LookupTest, ExtremesPass) {
  Parameter* const parameter = mMap.add("m", 0, 1);
  parameter->setIntValue(2147483647);
  EXPECT_EQ(getIntValue(mMap, "m", 0), 2147483647);
  parameter->setIntValue(-2147483647 - 1);
  EXPECT_EQ(getIntValue(mMap, "m", 0), -2147483647 - 1);
}

TEST_F(LookupTest, FlagIsSetUnlessItIsZero) {
  Parameter* const parameter = mMap.add("mContinuous", 0, 12);
  EXPECT_FALSE(isSet(mMap, "mContinuous"));
  for (const long flag : {1L, 2L, -1L, 2147483647L, -2147483647L - 1}) {
    parameter->setIntValue(flag);
    EXPECT_TRUE(isSet(mMap, "mContinuous")) << flag;
  }
  parameter->setIntValue(0);
  parameter->setRealValue(1.0);
  EXPECT_FALSE(isSet(mMap, "mContinuous"));
}

TEST_F(LookupTest, UnknownFlagIsNotSet) {
  mMap.add("mContinuous", 0, 12)->setIntValue(1);
  EXPECT_FALSE(isSet(mMap, "mcontinuous"));
  EXPECT_EQ(mMap.current_size(), 1U);
}

TEST_F(LookupTest, ParameterIsFoundByItsName) {
  Parameter* const parameter = mMap.add("mStream", 0, 62);
  EXPECT_EQ(findParameter(mMap, "mStream"), parameter);
  EXPECT_EQ(findParameter(mMap, "mStreamNr"), nullptr);
  EXPECT_EQ(findParameter(mMap, ""), nullptr);
  EXPECT_EQ(mMap.current_size(), 1U);
}

TEST_F(LookupTest, ClosedMapKnowsNoName) {
  mMap.add("m", 0, 1);
  clearParamMap(mMap, true);
  EXPECT_EQ(findParameter(mMap, "m"), nullptr);
  EXPECT_FALSE(isSet(mMap, "m"));
  EXPECT_EQ(getIntValue(mMap, "m", 3), 3);
  EXPECT_EQ(getRealValue(mMap, "m", 3.5), 3.5);
}
