// The configuration report: its document byte for byte, its calls, its failures.
#include <gmock/gmock.h>

#include "EverydayInstrument.h"
#include "SecConfig.h"
#include "SectionBench.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {
// In the iteration order of a map with 128 buckets.
constexpr const char* cBatch =
    "ReadParamList(handle, 24): 3:201 3:200 4:201 4:826 2:200 1:827 0:502 0:602 2:827 0:524 "
    "1:200 3:827 4:827 0:505 1:826 0:525 0:601 3:826 0:503 1:201 4:200 0:504 2:201 2:826";

constexpr const char* cBareChannels = R"(
    "Channel1": {
        "Installed": false,
        "Disabled": false,
        "Serial": 0,
        "PN": 0,
        "Description": "",
        "Gas": "Helium"
    },
    "Channel2": {
        "Installed": false,
        "Disabled": false,
        "Serial": 0,
        "PN": 0,
        "Description": "",
        "Gas": "Helium"
    },
    "Channel3": {
        "Installed": false,
        "Disabled": false,
        "Serial": 0,
        "PN": 0,
        "Description": "",
        "Gas": "Helium"
    },
    "Channel4": {
        "Installed": false,
        "Disabled": false,
        "Serial": 0,
        "PN": 0,
        "Description": "",
        "Gas": "Helium"
    }
}
)";

constexpr const char* cBareHead = R"({
    "Inst_name": "",
    "Site_info": "",
    "Inst_serial": 0,
    "Stream_configured": false,
    "Stream_max": 0,)";

constexpr const char* cFullConfig = R"({
    "Inst_name": "gc-12",
    "Site_info": "Site 12",
    "Inst_serial": 70012,
    "Stream_configured": true,
    "Stream_max": 16,
    "Channel1": {
        "Installed": true,
        "Disabled": false,
        "Serial": 8261,
        "PN": 8271,
        "Description": "MS5A 10m",
        "Gas": "Argon"
    },
    "Channel2": {
        "Installed": true,
        "Disabled": true,
        "Serial": 8262,
        "PN": 8272,
        "Description": "PPU 8m",
        "Gas": "Nitrogen"
    },
    "Channel3": {
        "Installed": false,
        "Disabled": true,
        "Serial": 2147483647,
        "PN": -2147483648,
        "Description": "5CB",
        "Gas": "Hydrogen"
    },
    "Channel4": {
        "Installed": true,
        "Disabled": true,
        "Serial": 8264,
        "PN": 8274,
        "Description": "",
        "Gas": "Unknown"
    }
}
)";

class ConfigReportTest : public SectionBench<SecConfig>, public testing::Test {
 protected:
  void setFull() {
    struct Row {
      std::uint32_t channel;
      std::uint32_t id;
      std::int32_t value;
    };
    constexpr Row cValues[] = {
        {0, 601, 70012}, {0, 525, 7},    {0, 524, 16},      {0, 502, 1},       {0, 503, -1},
        {0, 504, 0},     {0, 505, 2},    {1, 200, 0},       {2, 200, 1},       {3, 200, -1},
        {4, 200, 802},   {1, 826, 8261}, {2, 826, 8262},    {3, 826, INT_MAX}, {4, 826, 8264},
        {1, 827, 8271},  {2, 827, 8272}, {3, 827, INT_MIN}, {4, 827, 8274},    {1, 201, 3},
        {2, 201, 2},     {3, 201, 1},    {4, 201, 4},       {0, 602, 1},
    };
    for (const Row& row : cValues) {
      setInteger(mInstrument, row.channel, row.id, row.value);
    }
    mInstrument.setTag(2, "Site 12");
    mInstrument.setTag(3, "not shown");
    mInstrument.setTag(4, "not shown");
    mInstrument.setTag(5, "gc-12");
    mInstrument.setColumns(6, {"MS5A 10m", "PPU 8m", "5CB", ""});
  }
};

class ConfigFailureTest : public ConfigReportTest,
                          public testing::WithParamInterface<unsigned long> {};
}  // namespace

TEST_F(ConfigReportTest, WholeDocument) {
  setFull();
  EXPECT_EQ(document(), cFullConfig);
}

TEST_F(ConfigReportTest, CallsInOrderTheColumnsAnewForEachChannel) {
  setFull();
  document();
  EXPECT_THAT(
      mInstrument.traffic(),
      ElementsAre(
          cBatch, "registerObject(SiteInfoTag)", "~SiteInfoTag()", "ReadObject(handle, 5)",
          "registerObject(SiteInfoTag)", "~SiteInfoTag()", "ReadObject(handle, 2)",
          "registerObject(ColumnDescriptions)", "~ColumnDescriptions()", "ReadObject(handle, 6)",
          "registerObject(ColumnDescriptions)", "~ColumnDescriptions()", "ReadObject(handle, 6)",
          "registerObject(ColumnDescriptions)", "~ColumnDescriptions()", "ReadObject(handle, 6)",
          "registerObject(ColumnDescriptions)", "~ColumnDescriptions()", "ReadObject(handle, 6)"));
}

TEST_F(ConfigReportTest, NothingAnswered) {
  mInstrument.setStatus(eFunction::eReadParamList, 28);
  EXPECT_EQ(document(), std::string(cBareHead) + cBareChannels);
}

TEST_F(ConfigReportTest, UnknownNamesAreZero) {
  clearParamMap(mMap, false);
  EXPECT_EQ(document(), std::string(cBareHead) + cBareChannels);
}

TEST_F(ConfigReportTest, IncompleteBatchIsPrintedWhole) {
  setFull();
  mInstrument.setStatus(eFunction::eReadParamList, 28);
  EXPECT_EQ(document(), cFullConfig);
}

TEST_F(ConfigReportTest, MissingSiteInfoRepeatsTheInstrumentName) {
  setFull();
  mInstrument.setObject(2, nullptr);
  EXPECT_THAT(document(),
              StartsWith("{\n    \"Inst_name\": \"gc-12\",\n    \"Site_info\": \"gc-12\",\n"));
}

TEST_F(ConfigReportTest, SiteInfoOfAnotherClassRepeatsTheInstrumentName) {
  setFull();
  mInstrument.setColumns(2, {"a", "b", "c", "d"});
  EXPECT_THAT(document(),
              StartsWith("{\n    \"Inst_name\": \"gc-12\",\n    \"Site_info\": \"gc-12\",\n"));
}

TEST_F(ConfigReportTest, MissingInstrumentNameIsEmpty) {
  setFull();
  mInstrument.setObject(5, nullptr);
  EXPECT_THAT(document(),
              StartsWith("{\n    \"Inst_name\": \"\",\n    \"Site_info\": \"Site 12\",\n"));
}

TEST_F(ConfigReportTest, TextsThatAreNotUtf8AreRepaired) {
  setFull();
  mInstrument.setTag(5, "\xC4gc");
  mInstrument.setTag(2, "\"\xE2\x82");
  mInstrument.setColumns(6, {"10 \xB5m", "", "", ""});
  EXPECT_THAT(document(), StartsWith("{\n    \"Inst_name\": \"\xEF\xBF\xBDgc\",\n"
                                     "    \"Site_info\": \"\\\"\xEF\xBF\xBD\xEF\xBF\xBD\",\n"));
  EXPECT_THAT(mOutput.out, HasSubstr("\"Description\": \"10 \xEF\xBF\xBDm\",\n"));
}

TEST_F(ConfigReportTest, StreamIsConfiguredForAnyFlagThatIsNotZero) {
  for (const std::int32_t flag : {1, 7, -1, INT_MAX, INT_MIN}) {
    setInteger(mInstrument, 0, 525, flag);
    EXPECT_THAT(document(), HasSubstr("    \"Stream_configured\": true,\n")) << flag;
  }
}

TEST_P(ConfigFailureTest, IsReturnedWithNothingPrintedAndNothingAsked) {
  setFull();
  mInstrument.setStatus(eFunction::eReadParamList, GetParam());
  EXPECT_EQ(read(), asInt(GetParam()));
  EXPECT_EQ(mOutput.out, "");
  EXPECT_THAT(mInstrument.traffic(), ElementsAre(cBatch));
}

INSTANTIATE_TEST_SUITE_P(Statuses, ConfigFailureTest, testing::ValuesIn(cReadFailures));
