// Scenario files: the shipped ones, and how bad ones are refused.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Bench.h"
#include "ExpectedParameters.h"

using ::testing::HasSubstr;

namespace {

constexpr char cTexts[] =
    R"("texts": {"siteInformation": "", "instrumentName": "", "application": "", "bootpName": "",)"
    R"( "columns": ["", "", "", ""]})";

std::string withParameters(const std::string& aMembers) {
  return std::string("{") + cTexts + R"(, "parameters": {)" + aMembers + "}}";
}

std::string withMember(const std::string& aMember) {
  return std::string("{") + cTexts + R"(, "parameters": {}, )" + aMember + "}";
}

std::string withFault(const std::string& aMembers) {
  return withMember(R"("faults": [{"kind": "hang"}, {)" + aMembers + "}]");
}

/// What is said about a file of these contents: pointer and reason, or nothing when it is taken.
std::string faultOf(const std::string& aContents) {
  const TemporaryFile file(aContents);
  Scenario scenario;
  std::string error;
  if (loadScenario(file.path(), scenario, error)) {
    return "";
  }
  const std::string prefix = file.path() + ": ";
  EXPECT_EQ(error.compare(0, prefix.size(), prefix), 0) << error;
  EXPECT_EQ(error.find('\n'), std::string::npos) << error;
  return error.substr(prefix.size());
}

}  // namespace

class Shipped : public ::testing::TestWithParam<const char*> {};

TEST_P(Shipped, LoadsAndSaysThatItIsSimulated) {
  Scenario scenario;
  std::string error;
  ASSERT_TRUE(loadScenario(GetParam(), scenario, error)) << error;
  EXPECT_EQ(scenario.name, GetParam());
  EXPECT_THAT(scenario.document["texts"]["application"].GetString(), HasSubstr("simulated"));
}

TEST_P(Shipped, BecomesReadyOrStaysInError) {
  Bench bench{std::string(GetParam())};
  const int expected = std::string(GetParam()) == "error" ? 6 : 4;
  EXPECT_EQ(bench.state(480.0), expected);
}

TEST_P(Shipped, ShowsWhatItsChannelsShouldShow) {
  Bench bench{std::string(GetParam())};
  for (std::uint32_t n = 1; n <= 4; ++n) {
    const bool isInstalled = bench.integer(600.0, 0, 501 + n) != 0;
    EXPECT_EQ(bench.integer(600.0, n, 204) > 0, isInstalled) << n;
    EXPECT_NEAR(bench.real(600.0, n, 300), bench.real(600.0, n, 202), 0.5) << n;
    EXPECT_NEAR(bench.real(600.0, n, 302), bench.real(600.0, n, 203), 0.5) << n;
    EXPECT_NEAR(bench.real(600.0, n, 304), bench.real(600.0, n, 342), 1.0) << n;
  }
}

INSTANTIATE_TEST_SUITE_P(Scenarios, Shipped,
                         ::testing::Values("everyday", "four-channel", "bare", "error",
                                           "warming-up"));

TEST(ShippedScenarios, AreWhatTheirNamesSay) {
  const auto installed = [](Bench& bench) {
    std::string channels;
    for (std::uint32_t n = 1; n <= 4; ++n) {
      channels += bench.integer(0.0, 0, 501 + n) != 0 ? static_cast<char>('0' + n) : '-';
    }
    return channels;
  };
  Bench everyday("everyday");
  EXPECT_EQ(installed(everyday), "12--");
  EXPECT_EQ(everyday.state(0.0), 4);
  EXPECT_EQ(everyday.autoState(0.0), 0);
  EXPECT_EQ(everyday.integer(0.0, 0, 602), 1);
  EXPECT_EQ(everyday.integer(0.0, 0, 132), 0);
  Bench four("four-channel");
  EXPECT_EQ(installed(four), "1234");
  EXPECT_EQ(four.state(0.0), 4);
  Bench bare("bare");
  EXPECT_EQ(installed(bare), "1---");
  EXPECT_EQ(bare.integer(0.0, 0, 602), 0);
  EXPECT_EQ(bare.integer(0.0, 0, 58), 0);
  EXPECT_EQ(bare.state(0.0), 4);
  Bench error("error");
  EXPECT_EQ(error.state(0.0), 6);
  EXPECT_EQ(error.integer(0.0, 0, 132), 502);
  EXPECT_EQ(error.integer(0.0, 0, 2211), 1);
  Bench warming("warming-up");
  EXPECT_EQ(warming.state(0.0), 0);
  EXPECT_NEAR(warming.columnTemp1(0.0), 22.0, 0.04);
}

TEST(ShippedScenarios, FourChannelIsFull) {
  Bench bench("four-channel");
  for (std::uint32_t channel = 1; channel <= 4; ++channel) {
    std::uint64_t peaks = 0;
    std::uint64_t levels = 0;
    EXPECT_EQ(bench.instrument->programInfo(channel, peaks, levels), 0U);
    EXPECT_EQ(peaks, 100U) << channel;
    double last = 0.0;
    for (std::uint32_t peak = 1; peak <= 100; ++peak) {
      const double retention = bench.real(0.0, channel, 1196, peak);
      EXPECT_GT(retention, last) << channel << "/" << peak;
      EXPECT_LT(retention * 60.0, bench.integer(0.0, channel, 204)) << channel << "/" << peak;
      EXPECT_GT(bench.real(0.0, channel, 1242, peak), 0.0);
      EXPECT_NE(bench.integer(0.0, channel, 1176, peak), 0);
      last = retention;
    }
  }
  EXPECT_EQ(bench.integer(0.0, 0, 144), 20);
  EXPECT_EQ(bench.integer(0.0, 0, 2029), 38);
  EXPECT_EQ(bench.integer(0.0, 0, 2028), 1);
}

TEST(ShippedScenarios, BareHasNothingToChooseFrom) {
  Bench bench("bare");
  EXPECT_EQ(bench.integer(0.0, 0, 525), 0);
  EXPECT_EQ(bench.integer(0.0, 0, 524), 0);
  EXPECT_EQ(bench.integer(0.0, 0, 144), 1);
  EXPECT_EQ(bench.integer(0.0, 0, 2028), 0);
  EXPECT_EQ(bench.integer(0.0, 0, 2029), 0);
  std::uint64_t peaks = 99;
  std::uint64_t levels = 0;
  EXPECT_EQ(bench.instrument->programInfo(1, peaks, levels), 0U);
  EXPECT_EQ(peaks, 0U);
}

// The first second of the everyday instrument, with seed 1: what every example shows.
TEST(ShippedScenarios, EverydayStartsWithTheseReadings) {
  Bench bench;
  struct Reading {
    std::uint32_t channel;
    std::uint32_t id;
    double value;
  };
  constexpr Reading cReadings[] = {
      {1, 300, 59.98}, {2, 300, 75.01}, {1, 302, 69.97},  {2, 302, 79.96}, {1, 304, 180.1},
      {2, 304, 150.1}, {1, 307, 1.248}, {2, 307, -0.843}, {0, 100, 64.97}, {0, 104, 101.32},
      {1, 202, 60.0},  {2, 202, 75.0},  {1, 203, 70.0},   {2, 203, 80.0},  {1, 342, 180.0},
      {2, 342, 150.0}, {0, 1, 65.0},
  };
  for (const Reading& reading : cReadings) {
    EXPECT_EQ(bench.real(0.0, reading.channel, reading.id), reading.value)
        << reading.channel << "/" << reading.id;
  }
}

TEST(ScenarioFile, MayBeAsSmallAsThis) {
  EXPECT_EQ(faultOf(withParameters("")), "");
  Scenario scenario;
  std::string error;
  const TemporaryFile file(withParameters(""));
  ASSERT_TRUE(loadScenario(file.path(), scenario, error)) << error;
  EXPECT_EQ(scenario.name, file.path());
  Bench nothing(scenario);
  EXPECT_EQ(nothing.state(0.0), 0);
  EXPECT_EQ(nothing.integer(0.0, 0, 502), 0);
}

TEST(ScenarioFile, BoundsAreThoseOfTheParameters) {
  for (const ExpectedParameter& parameter : cExpectedParameters) {
    const auto with = [&parameter](double aValue) {
      char number[40];
      std::snprintf(number, sizeof number, "%.0f%s", aValue, parameter.isReal ? ".0" : "");
      return withParameters("\"" + std::string(parameter.name) + "\": " + number);
    };
    const std::string pointer = "/parameters/" + std::string(parameter.name);
    EXPECT_EQ(faultOf(with(parameter.lowest)), "") << parameter.name;
    EXPECT_EQ(faultOf(with(parameter.highest)), "") << parameter.name;
    EXPECT_EQ(faultOf(with(parameter.lowest - 1)), pointer + ": too small");
    EXPECT_EQ(faultOf(with(parameter.highest + 1)), pointer + ": too large");
    EXPECT_EQ(faultOf(withParameters("\"" + std::string(parameter.name) + "\": \"1\"")),
              pointer + ": wrong type");
  }
}

struct BadFile {
  std::string contents;
  const char* fault;
};

TEST(ScenarioFile, IsRefusedWithThePointerOfTheFault) {
  const BadFile files[] = {
      {"[]", "(document): wrong type"},
      {"null", "(document): wrong type"},
      {"{}", "(document): missing member parameters"},
      {R"({"parameters": {}})", "(document): missing member texts"},
      {withMember(R"("extra": 1)"), "/extra: unknown member"},
      {withMember(R"("description": 1)"), "/description: wrong type"},
      {withParameters(R"("mColumnTemp5": 1)"), "/parameters/mColumnTemp5: unknown member"},
      {withParameters(R"("mColumnTemp": 1)"), "/parameters/mColumnTemp: unknown member"},
      {withParameters(R"("mRepeat": 1)"), "/parameters/mRepeat: unknown member"},
      {withParameters(R"("mRepeat[]": 1)"), "/parameters/mRepeat[]: unknown member"},
      {withParameters(R"("mLevelAmt5[1]": 1)"), "/parameters/mLevelAmt5[1]: unknown member"},
      {withParameters(R"("mRepeat[1]": "1")"), "/parameters/mRepeat[1]: none of the allowed forms"},
      {withMember(R"("sequence": [{"runType": 4}])"), "/sequence/0/runType: too large"},
      {withMember(R"("sequence": [{"runType": 0}])"), "/sequence/0: missing member repeat"},
      {withMember(R"("sequence": [{"repeat": 1000}])"), "/sequence/0/repeat: too large"},
      {withMember(R"("sequence": [{"flushTime": 60.5}])"), "/sequence/0/flushTime: too large"},
      {withMember(R"("sequence": [{"solution": 1}])"), "/sequence/0/solution: unknown member"},
      {withMember(R"("alarms": [{"group": 13}])"), "/alarms/0/group: too large"},
      {withMember(R"("alarms": [{"group": 1}])"), "/alarms/0: missing member parameter"},
      {withMember(R"("alarms": 1)"), "/alarms: wrong type"},
      {withParameters(R"("mGC_State": 4.5)"), "/parameters/mGC_State: wrong type"},
      {withParameters(R"("mGC_State": true)"), "/parameters/mGC_State: wrong type"},
      {withParameters(R"("mGC_State": null)"), "/parameters/mGC_State: wrong type"},
      {withParameters(R"("mAnalysisCounter": 99999999999999999999)"),
       "/parameters/mAnalysisCounter: wrong type"},
      {withParameters(R"("mPressSP1": 1e308)"), "/parameters/mPressSP1: too large"},
      {withParameters(R"("mPressSP1": {})"), "/parameters/mPressSP1: wrong type"},
      {R"({"parameters": {}, "texts": {}})", "/texts: missing member siteInformation"},
      {R"({"parameters": {}, "texts": {"siteInformation": 1}})",
       "/texts/siteInformation: wrong type"},
      {R"({"parameters": {}, "texts": {"application": ")" + std::string(1001, 'x') + R"("}})",
       "/texts/application: too long"},
      {R"({"parameters": {}, "texts": {"columns": ["", "", ""]}})", "/texts/columns: too few"},
      {R"({"parameters": {}, "texts": {"columns": ["", "", "", "", ""]}})",
       "/texts/columns: too many"},
      {R"({"parameters": {}, "texts": {"columns": ["", "", 3, ""]}})",
       "/texts/columns/2: wrong type"},
      {R"({"parameters": {}, "texts": {"a/b~c": ""}})", "/texts/a~1b~0c: unknown member"},
      {withMember(R"("peaks": [{}])"), "/peaks/0: missing member channel"},
      {withMember(R"("peaks": [{"channel": 5}])"), "/peaks/0/channel: too large"},
      {withMember(R"("peaks": [{"name": "123456789012345678901"}])"), "/peaks/0/name: too long"},
      {withMember(R"("peaks": [{"name": "\u00e9"}])"), "/peaks/0/name: not of the required form"},
      {withMember(R"("faults": {})"), "/faults: wrong type"},
      {withFault(""), "/faults/1: missing member kind"},
      {withFault(R"("kind": "explode")"), "/faults/1/kind: none of the allowed values"},
      {withFault(R"("kind": "hang", "call": "read")"),
       "/faults/1/call: none of the allowed values"},
      {withFault(R"("kind": "hang", "nth": 0)"), "/faults/1/nth: too small"},
      {withFault(R"("kind": "hang", "times": -1)"), "/faults/1/times: too small"},
      {withFault(R"("kind": "drop", "when": "now")"), "/faults/1/when: none of the allowed values"},
      {withFault(R"("kind": "delay", "seconds": -0.1)"), "/faults/1/seconds: too small"},
      {withFault(R"("kind": "status", "status": 4294967296)"), "/faults/1/status: too large"},
      {withFault(R"("kind": "unanswered", "records": "some")"),
       "/faults/1/records: none of the allowed forms"},
      {withFault(R"("kind": "unanswered", "records": [0, -1])"),
       "/faults/1/records: none of the allowed forms"},
      {withFault(R"("kind": "swap", "a": "first")"), "/faults/1/a: wrong type"},
      {withFault(R"("kind": "value", "real": "huge")"),
       "/faults/1/real: none of the allowed forms"},
      {withFault(R"("kind": "value", "int": 2147483648)"), "/faults/1/int: too large"},
      {withFault(R"("kind": "text", "hex": "ff0")"), "/faults/1/hex: not of the required form"},
      {withFault(R"("kind": "text", "length": 65537)"), "/faults/1/length: too large"},
      {withFault(R"("kind": "hang", "color": "red")"), "/faults/1/color: unknown member"},
  };
  for (const BadFile& file : files) {
    EXPECT_EQ(faultOf(file.contents), file.fault) << file.contents.substr(0, 200);
  }
}

TEST(ScenarioFile, FaultsOfEveryKindAreTaken) {
  for (const char* members : {
           R"("kind": "refuse", "call": "Any", "nth": 2, "times": 0)",
           R"("kind": "drop", "when": "after", "call": "Write")",
           R"("kind": "delay", "seconds": 0.25)",
           R"("kind": "hang", "call": "Connect")",
           R"("kind": "status", "status": 4294967295)",
           R"("kind": "unanswered", "records": [0, 70])",
           R"("kind": "unanswered", "records": "all")",
           R"("kind": "swap", "a": 0, "b": 1)",
           R"("kind": "short")",
           R"("kind": "truncate")",
           R"("kind": "value", "records": "all", "real": "NaN", "int": -2147483648)",
           R"("kind": "value", "records": [3], "real": -1.5e300)",
           R"("kind": "text", "text": "x")",
           R"("kind": "text", "hex": "00ffAb")",
           R"("kind": "text", "length": 5000)",
           R"("kind": "ignore", "call": "Command")",
       }) {
    EXPECT_EQ(faultOf(withFault(members)), "") << members;
  }
}

TEST(ScenarioFile, MustBeJson) {
  EXPECT_EQ(faultOf(""), "(document): line 1: The document is empty.");
  EXPECT_EQ(faultOf("{\n\n  \"texts\": }"), "(document): line 3: Invalid value.");
  EXPECT_EQ(faultOf("{} x"),
            "(document): line 1: The document root must not be followed by other values.");
  EXPECT_EQ(faultOf(withMember("\"description\": \"\xff\"")),
            "(document): line 1: Invalid encoding in string.");
  EXPECT_EQ(faultOf(withParameters(R"("mPressSP1": 1e999)")),
            "(document): line 1: Number too big to be stored in double.");
}

TEST(ScenarioFile, OfAnySizeAndDepthIsRefusedInPeace) {
  constexpr std::size_t cMegabyte = 1024UL * 1024UL;
  EXPECT_THAT(faultOf(std::string(cMegabyte, '[')), HasSubstr("(document): line 1: "));
  EXPECT_THAT(faultOf(R"({"texts": )" + std::string(cMegabyte / 2, '[')),
              HasSubstr("(document): line 1: "));
  const std::string half(cMegabyte / 2 - 10, '[');
  EXPECT_EQ(faultOf(half + std::string(half.size(), ']')), "(document): wrong type");
  EXPECT_EQ(
      faultOf(withMember(R"("faults": )" + half.substr(200) + std::string(half.size() - 200, ']'))),
      "/faults/0: wrong type");
  EXPECT_EQ(faultOf(std::string(cMegabyte + 1, ' ')), "(document): larger than 1 MB");
  std::string padded = withParameters("");
  padded.resize(cMegabyte, ' ');
  EXPECT_EQ(faultOf(padded), "");
}

TEST(ScenarioFile, ThatIsNotThereIsNamed) {
  Scenario scenario;
  std::string error;
  EXPECT_FALSE(loadScenario("no-such-scenario", scenario, error));
  EXPECT_THAT(error,
              ::testing::EndsWith("/scenarios/no-such-scenario.json: (document): cannot be read"));
  EXPECT_FALSE(loadScenario("/no/such/file", scenario, error));
  EXPECT_EQ(error, "/no/such/file: (document): cannot be read");
  EXPECT_FALSE(loadScenario("no-such-file.json", scenario, error));
  EXPECT_EQ(error, "no-such-file.json: (document): cannot be read");
  EXPECT_FALSE(loadScenario("/", scenario, error));
  EXPECT_EQ(error, "/: (document): cannot be read");
  EXPECT_FALSE(loadScenario("", scenario, error));
  EXPECT_THAT(error, ::testing::EndsWith("(document): cannot be read"));
}

TEST(ScenarioFile, ThatIsBadLeavesTheOldOneAlone) {
  Scenario scenario;
  std::string error;
  ASSERT_TRUE(loadScenario("bare", scenario, error));
  EXPECT_FALSE(loadScenario("/no/such/file", scenario, error));
  EXPECT_EQ(scenario.name, "bare");
  EXPECT_TRUE(scenario.document.HasMember("texts"));
}
