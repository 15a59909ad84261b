// The parts of the configuration report: gas names, texts of remote objects, the registered
// parameters.
#include <gmock/gmock.h>

#include "SecConfigAccess.h"
#include "SectionBench.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {
struct GasRow {
  int code;
  const char* text;
};

constexpr GasRow cGases[] = {
    {0, "Helium"},  {1, "Hydrogen"}, {2, "Nitrogen"},      {3, "Argon"},
    {4, "Unknown"}, {-1, "Unknown"}, {INT_MAX, "Unknown"}, {INT_MIN, "Unknown"},
};

/// A text that the section gets as a remote object, with the object's number.
struct TagRow {
  std::string (*read)(const SecConfig& aSection, const char* aBefore);
  unsigned long number;
};

constexpr TagRow cTags[] = {
    {SecConfigAccess::siteInfo, 2},
    {SecConfigAccess::instrumentName, 3},
    {SecConfigAccess::bootpName, 5},
};

struct Registered {
  const char* name;
  std::uint32_t channel;
  std::uint32_t id;
};

/// In registration order. The installed flags have one id per channel, all other families one
/// channel each.
constexpr Registered cRegistered[] = {
    {"mInstSerial", 0, 601},       {"mStreamConfigured", 0, 525},
    {"mStreamMaxNr", 0, 524},      {"mInstalled1", 0, 502},
    {"mInstalled2", 0, 503},       {"mInstalled3", 0, 504},
    {"mInstalled4", 0, 505},       {"mColumnHeader1", 1, 200},
    {"mColumnHeader2", 2, 200},    {"mColumnHeader3", 3, 200},
    {"mColumnHeader4", 4, 200},    {"mAM_SerialNumber1", 1, 826},
    {"mAM_SerialNumber2", 2, 826}, {"mAM_SerialNumber3", 3, 826},
    {"mAM_SerialNumber4", 4, 826}, {"mAM_PN1", 1, 827},
    {"mAM_PN2", 2, 827},           {"mAM_PN3", 3, 827},
    {"mAM_PN4", 4, 827},           {"mCarrierGas1", 1, 201},
    {"mCarrierGas2", 2, 201},      {"mCarrierGas3", 3, 201},
    {"mCarrierGas4", 4, 201},      {"mHeatedSampleLineInstalled", 0, 602},
};
static_assert(std::size(cRegistered) == 24);

class ConfigPartsTest : public SectionBench<SecConfig>, public testing::Test {};
class GasTest : public testing::TestWithParam<GasRow> {};
class ConfigTagTest : public ConfigPartsTest, public testing::WithParamInterface<TagRow> {};
}  // namespace

TEST_P(GasTest, Text) {
  EXPECT_EQ(SecConfigAccess::gasType(GetParam().code), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Codes, GasTest, testing::ValuesIn(cGases));

TEST_F(ConfigPartsTest, AreRegisteredInOrderWithZeroValues) {
  TestMap map(1);  // one bucket: iterated from the last parameter bound to the first
  SecConfig section;
  section.init(&map, FakeInstrument::cHandle);
  ASSERT_EQ(map.current_size(), std::size(cRegistered));
  std::size_t row = std::size(cRegistered);
  for (ParameterMapConstIter it(map); !it.done(); it.advance()) {
    const Registered& expected = cRegistered[--row];
    EXPECT_STREQ((*it).ext_id_.c_str(), expected.name);
    ParamList record = {9, 9, 9, 9, 9.5, 9, 9};
    (*it).int_id_->fill(record);
    EXPECT_EQ(record.Channel, expected.channel) << expected.name;
    EXPECT_EQ(record.ParmID, expected.id) << expected.name;
    EXPECT_EQ(record.Method, 0U) << expected.name;
    EXPECT_EQ(record.Step, 0U) << expected.name;
    EXPECT_EQ(record.realvalue, 0.0) << expected.name;
    EXPECT_EQ(record.intvalue, 0) << expected.name;
  }
  EXPECT_THAT(mInstrument.calls(), IsEmpty());
}

TEST_P(ConfigTagTest, IsTheTextOfItsObject) {
  mInstrument.setTag(GetParam().number, "lab 12");
  EXPECT_EQ(GetParam().read(mSection, "before"), "lab 12");
  EXPECT_THAT(mInstrument.calls(),
              ElementsAre("registerObject(SiteInfoTag)", "~SiteInfoTag()",
                          "ReadObject(handle, " + std::to_string(GetParam().number) + ")"));
}

TEST_P(ConfigTagTest, StaysWhenTheObjectDoesNotArrive) {
  EXPECT_EQ(GetParam().read(mSection, "before"), "before");
}

TEST_P(ConfigTagTest, StaysWhenTheObjectIsOfAnotherClass) {
  mInstrument.setColumns(GetParam().number, {"a", "b", "c", "d"});
  EXPECT_EQ(GetParam().read(mSection, "before"), "before");
}

TEST_P(ConfigTagTest, StatusIsNotLookedAt) {
  mInstrument.setTag(GetParam().number, "lab 12");
  mInstrument.setStatus(eFunction::eReadObject, 5);
  EXPECT_EQ(GetParam().read(mSection, "before"), "lab 12");
}

TEST_P(ConfigTagTest, MayBecomeEmpty) {
  mInstrument.setTag(GetParam().number, "");
  EXPECT_EQ(GetParam().read(mSection, "before"), "");
}

INSTANTIATE_TEST_SUITE_P(Tags, ConfigTagTest, testing::ValuesIn(cTags));

TEST_F(ConfigPartsTest, ColumnIsThatOfItsChannel) {
  mInstrument.setColumns(6, {"one", "two", "three", "four"});
  EXPECT_EQ(SecConfigAccess::column(mSection, 1, "before"), "one");
  EXPECT_EQ(SecConfigAccess::column(mSection, 2, "before"), "two");
  EXPECT_EQ(SecConfigAccess::column(mSection, 3, "before"), "three");
  EXPECT_EQ(SecConfigAccess::column(mSection, 4, "before"), "four");
  EXPECT_EQ(mInstrument.calls().size(), 12U);
}

TEST_F(ConfigPartsTest, ColumnOfAnyOtherChannelIsUnknown) {
  mInstrument.setColumns(6, {"one", "two", "three", "four"});
  for (const int channel : {0, 5, -1, INT_MAX, INT_MIN}) {
    EXPECT_EQ(SecConfigAccess::column(mSection, channel, "before"), "Unknown") << channel;
  }
}

TEST_F(ConfigPartsTest, ColumnStaysWhenItsObjectDoesNotArrive) {
  for (const int channel : {1, 4, 5}) {
    EXPECT_EQ(SecConfigAccess::column(mSection, channel, "before"), "before");
  }
  mInstrument.setTag(6, "no columns");
  EXPECT_EQ(SecConfigAccess::column(mSection, 1, "before"), "before");
}

TEST_F(ConfigPartsTest, ChannelOfAMapWithoutParametersShowsZeros) {
  const TestMap map;
  Document document;
  document.SetObject();
  SecConfigAccess::addChannel(mSection, map, 3, document);
  const Output output = capture([&] { printDocument(document); });
  EXPECT_EQ(output.out, R"({
    "Channel3": {
        "Installed": false,
        "Disabled": false,
        "Serial": 0,
        "PN": 0,
        "Description": "",
        "Gas": "Helium"
    }
}
)");
}
