// Parameter tables, and how their rows are registered.
#include "ParameterTable.h"

#include <InstrumentClient.h>
#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>
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

/// The contents of a map with one bucket, which iterates backwards, in registration order.
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
    {602, "mSingle"},    {300, "mFamily", 1, eSpan::eByChannel}, {502, "mFlag", 0, eSpan::eById},
    {1010, "mOther", 1}, {2212, "mLast", 1, eSpan::eByChannel},
};
constexpr ParameterRow cRowsWithValues[] = {
    {73, "mReplicate", 0, eSpan::eSingle, 2},
    {61, "mPlain"},
    {300, "mByChannel", 1, eSpan::eByChannel, -5},
    {502, "mById", 1, eSpan::eById, 7},
};
constexpr ParameterRow cOneRow[] = {{5, "m", 3}};

void expectRecord(const Parameter* aParameter, const ParamList& aExpected) {
  ASSERT_NE(aParameter, nullptr);
  ParamList lRecord = {9, 9, 9, 9, 9.5, 9, 9};
  aParameter->fill(lRecord);
  EXPECT_EQ(lRecord.Channel, aExpected.Channel);
  EXPECT_EQ(lRecord.Method, aExpected.Method);
  EXPECT_EQ(lRecord.Step, aExpected.Step);
  EXPECT_EQ(lRecord.ParmID, aExpected.ParmID);
  EXPECT_EQ(lRecord.realvalue, aExpected.realvalue);
  EXPECT_EQ(lRecord.intvalue, aExpected.intvalue);
  EXPECT_EQ(lRecord.ServiceStatus, aExpected.ServiceStatus);
}
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
  registerParameters(map, cRows, 1, 0);
  EXPECT_TRUE(registered(map) == (std::vector<Registered>{{"mSingle", 0, 602}}));
  registerParameters(map, cRows, 0, 0);
  EXPECT_EQ(map.current_size(), 1U);
}

TEST(ParameterTableTest, RowKeepsItsChannel) {
  TestMap map(1);
  registerParameters(map, cOneRow);
  EXPECT_TRUE(registered(map) == (std::vector<Registered>{{"m", 3, 5}}));
}

TEST(ParameterTableTest, NewParameterIsAllZeroButItsAddress) {
  TestMap map;
  registerParameters(map, cRows);
  expectRecord(map.at("mFamily3"), {3, 0, 0, 300, 0.0, 0, 0});
  expectRecord(map.at("mFlag3"), {0, 0, 0, 504, 0.0, 0, 0});
}

TEST(ParameterTableTest, RowsStartWithTheirValuesInFamiliesToo) {
  TestMap map;
  registerParameters(map, cRowsWithValues);
  expectRecord(map.at("mReplicate"), {0, 0, 0, 73, 0.0, 2, 0});
  expectRecord(map.at("mPlain"), {0, 0, 0, 61, 0.0, 0, 0});
  expectRecord(map.at("mByChannel4"), {4, 0, 0, 300, 0.0, -5, 0});
  expectRecord(map.at("mById4"), {1, 0, 0, 505, 0.0, 7, 0});
}

TEST(ParameterTableTest, AllRowsBelongToTheLineThatIsAskedFor) {
  TestMap map;
  registerParameters(map, cRowsWithValues, 20);
  expectRecord(map.at("mReplicate"), {0, 0, 20, 73, 0.0, 2, 0});
  expectRecord(map.at("mPlain"), {0, 0, 20, 61, 0.0, 0, 0});
  expectRecord(map.at("mByChannel1"), {1, 0, 20, 300, 0.0, -5, 0});
  expectRecord(map.at("mById2"), {1, 0, 20, 503, 0.0, 7, 0});
}

TEST(ParameterTableTest, BoundNameKeepsItsFirstParameter) {
  TestMap map(1);
  registerParameters(map, cOneRow);
  Parameter* const first = map.at("m");
  registerParameters(map, cOneRow, 5);
  bindParameter(map, "m", std::make_unique<Parameter>(2, 301));
  EXPECT_EQ(map.at("m"), first);
  expectRecord(first, {3, 0, 0, 5, 0.0, 0, 0});
  EXPECT_EQ(map.current_size(), 1U);
}

TEST(ParameterTableTest, BoundParameterIsTheMaps) {
  TestMap map;
  auto parameter = std::make_unique<Parameter>(1, 300);
  Parameter* const address = parameter.get();
  bindParameter(map, "m", std::move(parameter));
  EXPECT_EQ(map.at("m"), address);
}

TEST(ParameterTableTest, NameIsCopied) {
  TestMap map;
  char name[] = "mAutoZero1";
  bindParameter(map, name, std::make_unique<Parameter>(1, 307));
  name[9] = '2';
  EXPECT_NE(map.at("mAutoZero1"), nullptr);
  EXPECT_EQ(map.at("mAutoZero2"), nullptr);
}

// The sanitizers check that the map's contents are deleted on every return path.
TEST(LocalMapTest, OwnsWhatIsBoundIntoIt) {
  LocalMap map(20);
  EXPECT_EQ((*map).total_size(), 20U);
  EXPECT_EQ((*map).current_size(), 0U);
  registerParameters(*map, cRows);
  EXPECT_EQ((*map).current_size(), 14U);
}

TEST(LocalMapTest, CanBeClearedAndFilledAgain) {
  LocalMap map(40);
  for (unsigned long step = 1; step <= 3; ++step) {
    clearParamMap(*map, false);
    registerParameters(*map, cOneRow, step);
    expectRecord(findParameter(*map, "m"), {3, 0, static_cast<std::uint32_t>(step), 5, 0.0, 0, 0});
  }
}

static_assert(!std::is_copy_constructible_v<LocalMap>);
static_assert(!std::is_copy_assignable_v<LocalMap>);

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

TEST(ChannelNameTest, LongerFamilyIsCutAndTheDigitStays) {
  for (const std::size_t length : {31U, 32U, 34U, 1000U}) {
    const std::string family(length, 'f');
    EXPECT_EQ(ChannelName(family.c_str(), 4).text(), std::string(30, 'f') + "4") << length;
  }
}
