// Scenario files: the shipped ones, and how bad ones are refused.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cctype>
#include <ctime>

#include "Bench.h"
#include "ExpectedParameters.h"

namespace simulator {

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

namespace {

std::string stepMember(const std::string& aName, std::uint32_t aStep, const std::string& aValue) {
  return "\"" + aName + "[" + std::to_string(aStep) + "]\": " + aValue;
}

/// As many lines, alarm rows, and peaks of a channel as there can be, and these parameters.
std::string withFullTables(const std::string& aMembers, int aPeakChannel) {
  const auto rows = [](int aCount, const std::string& aRow) {
    std::string all;
    for (int n = 0; n < aCount; ++n) {
      all += (n == 0 ? "" : ", ") + aRow;
    }
    return "[" + all + "]";
  };
  const std::string peak = R"({"channel": )" + std::to_string(aPeakChannel) +
                           R"(, "name": "", "retentionTime": 0, "levelAmount": 0,)" +
                           R"( "linearCoefficient": 0})";
  return "{" + std::string(cTexts) + R"(, "sequence": )" +
         rows(20, R"({"runType": 0, "repeat": 0})") + R"(, "alarms": )" +
         rows(38, R"({"group": 0, "parameter": 0})") + R"(, "peaks": )" + rows(400, peak) +
         R"(, "parameters": {)" + aMembers + "}}";
}

}  // namespace

TEST(ScenarioFile, BoundsOfLinesPeaksAndRowsAreThoseOfTheParameters) {
  for (const ExpectedSteps& row : cExpectedSteps) {
    const std::string name = row.name;
    const int channel = std::isdigit(name.back()) != 0 ? name.back() - '0' : 1;
    const std::string point = row.isReal ? ".0" : "";
    const auto number = [&](double aValue) {
      return std::to_string(static_cast<int>(aValue)) + point;
    };
    const auto full = [&](const std::string& aMembers) {
      return faultOf(withFullTables(aMembers, channel));
    };
    for (double bound : {0.0, row.highest}) {
      std::string every;
      for (std::uint32_t step = row.first; step <= row.last; ++step) {
        every += every.empty() ? "" : ", ";
        every += stepMember(name, step, number(bound));
      }
      EXPECT_EQ(full(every), "");
    }
    for (std::uint32_t step : {row.first, row.last}) {
      const std::string member = name + "[" + std::to_string(step) + "]";
      const auto with = [&](const std::string& aValue) {
        return full(stepMember(name, step, aValue));
      };
      EXPECT_EQ(with(number(-1.0)), "/parameters/" + member + ": too small");
      EXPECT_EQ(with(number(row.highest + 1.0)), "/parameters/" + member + ": too large");
      EXPECT_EQ(with("0.5"), row.isReal ? "" : "/parameters/" + member + ": wrong type");
    }
  }
  for (const char* other : {"true", "null", "\"1\"", "[]", "{}", "\"NaN\""}) {
    EXPECT_EQ(faultOf(withParameters("\"mRepeat[1]\": " + std::string(other))),
              "/parameters/mRepeat[1]: none of the allowed forms");
  }
}

TEST(ScenarioFile, KnowsNoLinePeakOrRowThatNoTableHas) {
  for (const ExpectedSteps& row : cExpectedSteps) {
    std::vector<std::string> steps{std::to_string(row.last + 1), "01", "-1", "4294967297"};
    if (row.first > 0) {
      steps.emplace_back("0");
    }
    for (const std::string& step : steps) {
      const std::string name = std::string(row.name) + "[" + step + "]";
      EXPECT_EQ(faultOf(withParameters("\"" + name + "\": 0")),
                "/parameters/" + name + ": unknown member");
    }
  }
  for (const char* name : {"mRepeat[-0]",    "mRepeat[+1]",     "mRepeat[00]",
                           "mRepeat[1.0]",   "mRepeat[1e0]",    "mRepeat[0x1]",
                           "mRepeat[ 1]",    "mRepeat[1 ]",     "mRepeat[1] ",
                           " mRepeat[1]",    "mRepeat [1]",     "mRepeat[1]]",
                           "mRepeat[[1]",    "mRepeat[a]",      "mRepeat[18446744073709551617]",
                           "mRepeat[30]",    "mRepeat[99]",     "mRepeat[100]",
                           "mRT1[401]",      "mRT1[410]",       "mRT1[499]",
                           "mRT1[500]",      "mRT1[1000]",      "mTriggered[39]",
                           "mTriggered[40]", "mTriggered[100]", "mSlotNr[11]",
                           "mSlotNr[20]",    "mSlotNr[100]",    "mRT0[1]",
                           "mRT5[1]",        "mRepeat1[1]",     "mGC_State[1]",
                           "mGC_State[0]"}) {
    EXPECT_EQ(faultOf(withParameters("\"" + std::string(name) + "\": 0")),
              "/parameters/" + std::string(name) + ": unknown member");
  }
}

// What is not there would be without effect, and nobody would learn why.
TEST(ScenarioFile, NamesOnlyLinesPeaksAndRowsThatAreThere) {
  const auto everyday = [](const std::string& aMembers) {
    return "{" + std::string(cTexts) +
           R"(, "sequence": [{"runType": 0, "repeat": 1}, {"runType": 0, "repeat": 1}],)" +
           R"( "alarms": [{"group": 8, "parameter": 1}],)" +
           R"( "peaks": [{"channel": 2, "name": "a", "retentionTime": 1, "levelAmount": 2,)" +
           R"( "linearCoefficient": 3}], "parameters": {)" + aMembers + "}}";
  };
  for (const char* name : {"mRepeat[1]", "mRepeat[2]", "mTriggered[1]", "mRT2[1]", "mLevelAmt2[1]",
                           "mSlotNr[0]", "mSlotNr[10]"}) {
    EXPECT_EQ(faultOf(everyday("\"" + std::string(name) + "\": 1")), "") << name;
  }
  for (const char* name : {"mRepeat[3]", "mFlushTime[20]", "mTriggered[2]", "mGroupID[38]",
                           "mRT2[2]", "mLevelAmt1[1]", "mLinearCoef4[400]"}) {
    EXPECT_EQ(faultOf(everyday("\"" + std::string(name) + "\": 1")),
              "/parameters/" + std::string(name) + ": beyond the end of its table");
  }
  // The numbers of lines and rows that are given come before those of the tables.
  EXPECT_EQ(faultOf(everyday(R"("mRepeat[3]": 1, "mTotalLines": 3)")), "");
  EXPECT_EQ(faultOf(everyday(R"("mRepeat[2]": 1, "mTotalLines": 1)")),
            "/parameters/mRepeat[2]: beyond the end of its table");
  EXPECT_EQ(faultOf(everyday(R"("mRepeat[1]": 1, "mTotalLines": 0)")), "");
  EXPECT_EQ(faultOf(everyday(R"("mTotal": 2, "mParamID[2]": 1)")), "");
  EXPECT_EQ(faultOf(withParameters(R"("mRepeat[1]": 1)")), "");
  EXPECT_EQ(faultOf(withParameters(R"("mRepeat[2]": 1)")),
            "/parameters/mRepeat[2]: beyond the end of its table");
  EXPECT_EQ(faultOf(withParameters(R"("mTriggered[1]": 1)")),
            "/parameters/mTriggered[1]: beyond the end of its table");
}

namespace {

std::string nested(std::size_t aLevels, const std::string& aOpen, const std::string& aClose) {
  std::string text;
  for (std::size_t n = 0; n < aLevels; ++n) {
    text += aOpen;
  }
  text += "1";
  for (std::size_t n = 0; n < aLevels; ++n) {
    text += aClose;
  }
  return text;
}

}  // namespace

// Document and parameters are two levels already.
TEST(ScenarioFile, MayBeAHundredLevelsDeepAndNoMore) {
  EXPECT_EQ(faultOf(withParameters(R"("mRepeat[1]": )" + nested(98, "[", "]"))),
            "/parameters/mRepeat[1]: none of the allowed forms");
  for (std::size_t levels : {99U, 1000U, 50000U, 490000U}) {
    EXPECT_EQ(faultOf(withParameters(R"("mRepeat[1]": )" + nested(levels, "[", "]"))),
              "/parameters/mRepeat[1]: more than 100 levels deep");
    EXPECT_EQ(faultOf(withParameters(R"("other": )" + nested(levels, "[", "]"))),
              "/parameters/other: more than 100 levels deep");
  }
  EXPECT_EQ(faultOf(withParameters(R"("a/b~c": )" + nested(150000, "{\"\":", "}"))),
            "/parameters/a~1b~0c: more than 100 levels deep");
  EXPECT_EQ(faultOf(withFault(R"("kind": "value", "records": )" + nested(400000, "[", "]"))),
            "/faults/1: more than 100 levels deep");
  EXPECT_EQ(faultOf(withMember(R"("snapshot": {"undisturbed": {"mPress1": )" +
                               nested(400000, "[", "]") + "}}")),
            "/snapshot/undisturbed: more than 100 levels deep");
  // Side by side is not deep.
  std::string wide;
  for (int n = 0; n < 200; ++n) {
    wide += (n == 0 ? "" : ", ") + std::string(R"({"kind": "value", "records": [1], "int": 1})");
  }
  EXPECT_EQ(faultOf(withMember(R"("faults": [)" + wide + "]")), "");
}

TEST(ScenarioFile, MayBeASnapshotAsTheRemoteControlAnswers) {
  EXPECT_EQ(faultOf(withMember(R"("ok": true, "time": 12.5)")), "");
  EXPECT_EQ(faultOf(withMember(R"("ok": 1)")), "/ok: wrong type");
  EXPECT_EQ(faultOf(withMember(R"("time": "12")")), "/time: wrong type");
}

TEST(ScenarioFile, OfASnapshotIsCheckedToo) {
  const auto with = [](const std::string& aParameters, const std::string& aSnapshot) {
    return faultOf("{" + std::string(cTexts) + R"(, "parameters": {)" + aParameters +
                   R"(}, "snapshot": {"time": 0, "state": 4, )" + aSnapshot + "}}");
  };
  EXPECT_EQ(with("", R"("left": 0, "elapsed": 1e15)"), "");
  EXPECT_EQ(faultOf(withMember(R"("snapshot": {"state": 4})")), "/snapshot: missing member time");
  EXPECT_EQ(faultOf(withMember(R"("snapshot": {"time": 4})")), "/snapshot: missing member state");
  EXPECT_EQ(faultOf(withMember(R"("snapshot": {"time": -1})")), "/snapshot/time: too small");
  EXPECT_EQ(faultOf(withMember(R"("snapshot": {"state": 11})")), "/snapshot/state: too large");
  EXPECT_EQ(with("", R"("left": 1.1e15)"), "/snapshot/left: too large");
  EXPECT_EQ(with("", R"("elapsed": -0.1)"), "/snapshot/elapsed: too small");
  EXPECT_EQ(with("", R"("phase": 1)"), "/snapshot/phase: unknown member");
  EXPECT_EQ(with("", R"("held": ["mGC_State", "mRepeat[1]"])"),
            "/snapshot/held/1: not of the required form");
  EXPECT_EQ(with("", R"("undisturbed": {"mPress1": "NaN", "mColumnTemp4": 1e308})"), "");
  EXPECT_EQ(with("", R"("undisturbed": {"mPressSP1": 1})"),
            "/snapshot/undisturbed/mPressSP1: unknown member");
  EXPECT_EQ(with("", R"("undisturbed": {"mPress1": "nan"})"),
            "/snapshot/undisturbed/mPress1: none of the allowed forms");
  EXPECT_EQ(with("", R"("octets": {"application": "0"})"),
            "/snapshot/octets/application: not of the required form");
  EXPECT_EQ(with("", R"("octets": {"columns": "00"})"), "/snapshot/octets/columns: unknown member");
  const auto octets = [&with](std::size_t aDigits) {
    return with("", R"("octets": {"bootpName": ")" + std::string(aDigits, 'a') + "\"}");
  };
  EXPECT_EQ(octets(8192), "");
  EXPECT_EQ(octets(8194), "/snapshot/octets/bootpName: too long");
}

TEST(ScenarioFile, BoundsDoNotHoldForWhatASnapshotExempts) {
  const auto with = [](const std::string& aParameters, const std::string& aNames) {
    return faultOf("{" + std::string(cTexts) + R"(, "parameters": {)" + aParameters +
                   R"(}, "snapshot": {"time": 0, "state": 4, "unchecked": )" + aNames + "}}");
  };
  EXPECT_EQ(
      with(R"("mPressSP1": 1e308, "mGC_State": -2147483648)", R"(["mGC_State", "mPressSP1"])"), "");
  EXPECT_EQ(with(R"("mPressSP1": "NaN")", R"(["mPressSP1"])"), "");
  EXPECT_EQ(
      with(R"("mPressSP1": "-Infinity", "mRepeat[1]": 1000)", R"(["mPressSP1", "mRepeat[1]"])"),
      "");
  EXPECT_EQ(with(R"("mPressSP1": "NaN", "mPressSP2": "NaN")", R"(["mPressSP1"])"),
            "/parameters/mPressSP2: wrong type");
  EXPECT_EQ(with(R"("mPressSP1": "nan")", R"(["mPressSP1"])"), "/parameters/mPressSP1: wrong type");
  EXPECT_EQ(with(R"("mPressSP1": true)", R"(["mPressSP1"])"), "/parameters/mPressSP1: wrong type");
  // An integer is still one that the instrument can hold.
  EXPECT_EQ(with(R"("mGC_State": 4.5)", R"(["mGC_State"])"), "/parameters/mGC_State: wrong type");
  EXPECT_EQ(with(R"("mGC_State": "NaN")", R"(["mGC_State"])"), "/parameters/mGC_State: wrong type");
  EXPECT_EQ(with(R"("mGC_State": 2147483648)", R"(["mGC_State"])"),
            "/parameters/mGC_State: too large");
  EXPECT_EQ(with(R"("mColumnTemp5": 1)", R"(["mColumnTemp5"])"),
            "/parameters/mColumnTemp5: unknown member");
  EXPECT_EQ(with(R"("mRepeat[2]": 1000)", R"(["mRepeat[2]"])"),
            "/parameters/mRepeat[2]: beyond the end of its table");
  EXPECT_EQ(with(R"("mPressSP1": 1)", R"(["mPressSP1", "mPressSP2"])"),
            "/snapshot/unchecked/1: not one of the parameters");
  EXPECT_EQ(with("", R"(["mColumnTemp5"])"), "/snapshot/unchecked/0: not one of the parameters");
  EXPECT_EQ(with(R"("mPressSP1": 1e308)", "[1]"), "/parameters/mPressSP1: too large");
  EXPECT_EQ(with("", "[1]"), "/snapshot/unchecked/0: wrong type");
  EXPECT_EQ(with("", R"("mPressSP1")"), "/snapshot/unchecked: wrong type");
  EXPECT_EQ(faultOf(R"({"parameters": [], "snapshot": {"unchecked": ["mPressSP1"]}})"),
            "/parameters: wrong type");
  EXPECT_EQ(faultOf(R"({"snapshot": {"unchecked": ["mPressSP1"]}})"),
            "/snapshot: missing member time");
  EXPECT_EQ(faultOf(R"({"snapshot": []})"), "/snapshot: wrong type");
}

// All of them: what is looked up for each must not take its time for each.
TEST(ScenarioFile, OfAMegabyteIsReadInNoTime) {
  std::string names;
  std::string parameters;
  for (int n = 0; n < 25000; ++n) {
    names += (n == 0 ? "\"" : ", \"") + std::to_string(n) + "\"";
    parameters += (n == 0 ? "" : ", ") + std::string(R"("mPressSP1": 1)");
  }
  const std::clock_t began = std::clock();
  EXPECT_EQ(faultOf("{" + std::string(cTexts) + R"(, "parameters": {)" + parameters +
                    R"(}, "snapshot": {"time": 0, "state": 4, "unchecked": [)" + names + "]}}"),
            "/snapshot/unchecked/0: not one of the parameters");
  EXPECT_LT(std::clock() - began, 10 * CLOCKS_PER_SEC);
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

}  // namespace simulator
