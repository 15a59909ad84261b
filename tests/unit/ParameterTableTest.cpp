// Tables of parameters, and how their rows are registered.
#include "ParameterTable.h"

#include <InstrumentClient.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TestMap.h"

namespace {
struct Registered {
  std::string name;
  unsigned long channel;
  unsigned long id;

  bool operator==(const Registered& aOther) const {
    return name == aOther.name && channel == aOther.channel && id == aOther.id;
  }
};

/// What a map of one bucket holds, in the order of registration: it keeps the last one first.
std::vector<Registered> registered(const ParameterMap& aMap) {
  std::vector<Registered> lAll;
  for (ParameterMapConstIter it(aMap); !it.done(); it.advance()) {
    ParamList lRecord = {};
    (*it).int_id_->fill(lRecord);
    lAll.insert(lAll.begin(), {(*it).ext_id_.c_str(), lRecord.Channel, lRecord.ParmID});
  }
  return lAll;
}

constexpr ParameterRow cRows[] = {
    {602, "mSingle", eSpan::eSingle, 0},   {300, "mFamily", eSpan::eByChannel, 1},
    {502, "mFlag", eSpan::eById, 0},       {1010, "mOther", eSpan::eSingle, 1},
    {2212, "mLast", eSpan::eByChannel, 1},
};
constexpr ParameterRow cOneRow[] = {{5, "m", eSpan::eSingle, 3}};
}  // namespace

static_assert(cChannels == 4);
static_assert(countParameters(cRows) == 14);
static_assert(countParameters(cOneRow) == 1);

TEST(ParameterTableTest, RowsAreRegisteredInOrderFamiliesChannelByChannel) {
  TestMap map(1);
  registerParameters(map, cRows);
  const std::vector<Registered> expected = {
      {"mSingle", 0, 602},  {"mFamily1", 1, 300}, {"mFamily2", 2, 300}, {"mFamily3", 3, 300},
      {"mFamily4", 4, 300}, {"mFlag1", 0, 502},   {"mFlag2", 0, 503},   {"mFlag3", 0, 504},
      {"mFlag4", 0, 505},   {"mOther", 1, 1010},  {"mLast1", 1, 2212},  {"mLast2", 2, 2212},
      {"mLast3", 3, 2212},  {"mLast4", 4, 2212},
  };
  EXPECT_TRUE(registered(map) == expected);
}

TEST(ParameterTableTest, OnlyTheCountedRowsAreRegistered) {
  TestMap map(1);
  registerParameters(map, cRows, 1);
  EXPECT_TRUE(registered(map) == (std::vector<Registered>{{"mSingle", 0, 602}}));
  registerParameters(map, cRows, 0);
  EXPECT_EQ(map.current_size(), 1U);
}

TEST(ParameterTableTest, RowKeepsItsChannel) {
  TestMap map(1);
  registerParameters(map, cOneRow);
  EXPECT_TRUE(registered(map) == (std::vector<Registered>{{"m", 3, 5}}));
}

TEST(ParameterTableTest, NewParameterIsAllZeroButItsAddress) {
  TestMap map;
  registerParameter(map, "mPress3", 3, 304);
  ASSERT_NE(map.at("mPress3"), nullptr);
  ParamList record = {9, 9, 9, 9, 9.5, 9, 9};
  map.at("mPress3")->fill(record);
  EXPECT_EQ(record.Channel, 3U);
  EXPECT_EQ(record.ParmID, 304U);
  EXPECT_EQ(record.Method, 0U);
  EXPECT_EQ(record.Step, 0U);
  EXPECT_EQ(record.realvalue, 0.0);
  EXPECT_EQ(record.intvalue, 0);
  EXPECT_EQ(record.ServiceStatus, 0U);
}

TEST(ParameterTableTest, BoundNameKeepsItsFirstParameter) {
  TestMap map(1);
  registerParameter(map, "m", 1, 300);
  Parameter* const first = map.at("m");
  registerParameter(map, "m", 2, 301);
  EXPECT_EQ(map.at("m"), first);
  EXPECT_TRUE(registered(map) == (std::vector<Registered>{{"m", 1, 300}}));
}

TEST(ParameterTableTest, NameIsCopied) {
  TestMap map;
  char name[] = "mAutoZero1";
  registerParameter(map, name, 1, 307);
  name[9] = '2';
  EXPECT_NE(map.at("mAutoZero1"), nullptr);
  EXPECT_EQ(map.at("mAutoZero2"), nullptr);
}

TEST(ChannelNameTest, DigitIsAppended) {
  EXPECT_STREQ(ChannelName("mPress", 1), "mPress1");
  EXPECT_STREQ(ChannelName("mPress", 2), "mPress2");
  EXPECT_STREQ(ChannelName("mPress", 3), "mPress3");
  EXPECT_STREQ(ChannelName("mPress", 4), "mPress4");
  EXPECT_STREQ(ChannelName("", 4), "4");
}

TEST(ChannelNameTest, LongestFamilyKeepsItsDigit) {
  const std::string family(30, 'f');
  EXPECT_STREQ(ChannelName(family.c_str(), 4), (family + "4").c_str());
}
