// Clearing a map: parameters deleted once (checked by the sanitizers), names unbound, map open or
// not.
#include <gtest/gtest.h>

#include "TestMap.h"

TEST(ClearMapTest, ClearedMapIsEmptyAndCanBeFilledAgain) {
  ParameterMap map(128);
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(map.bind(ACE_CString("a"), new Parameter(1, 300)), 0);
    EXPECT_EQ(map.bind(ACE_CString("b"), new Parameter(2, 300)), 0);
    clearParamMap(map, false);
    EXPECT_EQ(map.current_size(), 0U);
    EXPECT_EQ(map.total_size(), 128U);
    EXPECT_EQ(map.find(ACE_CString("a")), -1);
  }
}

TEST(ClearMapTest, ClosedMapHasNoBucketsLeft) {
  ParameterMap map(128);
  map.bind(ACE_CString("a"), new Parameter(1, 300));
  clearParamMap(map, true);
  EXPECT_EQ(map.current_size(), 0U);
  EXPECT_EQ(map.total_size(), 0U);
  EXPECT_EQ(map.find(ACE_CString("a")), -1);
}

TEST(ClearMapTest, EmptyMapCanBeCleared) {
  ParameterMap map(4);
  clearParamMap(map, false);
  EXPECT_EQ(map.total_size(), 4U);
  clearParamMap(map, true);
  EXPECT_EQ(map.total_size(), 0U);
}

TEST(ClearMapTest, ClearingTwiceDeletesNothingTwice) {
  ParameterMap map(4);
  map.bind(ACE_CString("a"), new Parameter(1, 300));
  clearParamMap(map, false);
  clearParamMap(map, false);
  clearParamMap(map, true);
  clearParamMap(map, true);
  EXPECT_EQ(map.current_size(), 0U);
}

TEST(ClearMapTest, NullValuesArePassedOver) {
  ParameterMap map(1);
  map.bind(ACE_CString("a"), new Parameter(1, 300));
  map.bind(ACE_CString("b"), nullptr);
  map.bind(ACE_CString("c"), new Parameter(2, 300));
  clearParamMap(map, false);
  EXPECT_EQ(map.current_size(), 0U);
}
