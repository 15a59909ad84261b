// A snapshot is a scenario, whatever has been done to the instrument, and goes on where it was
// taken.
#include <ObjectTexts.h>
#include <Status.h>
#include <gtest/gtest.h>
#include <model/Parameters.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "Bench.h"
#include "ExpectedParameters.h"

namespace simulator {

namespace {

constexpr double cInfinity = std::numeric_limits<double>::infinity();
constexpr double cMax = std::numeric_limits<double>::max();
constexpr double cNaN = std::numeric_limits<double>::quiet_NaN();

/// What is loaded from a snapshot that has been saved.
Scenario saved(const std::string& aSnapshot) {
  const TemporaryFile file(aSnapshot);
  Scenario scenario;
  std::string error;
  EXPECT_TRUE(loadScenario(file.path(), scenario, error)) << error;
  return scenario;
}

rapidjson::Document parsed(const std::string& aText) {
  rapidjson::Document document;
  document.Parse<rapidjson::kParseFullPrecisionFlag | rapidjson::kParseValidateEncodingFlag>(
      aText.c_str());
  EXPECT_FALSE(document.HasParseError()) << aText.substr(0, 200);
  return document;
}

/// The snapshot of an instrument that was loaded from a snapshot.
std::string again(const std::string& aSnapshot, std::uint32_t aSeed = 1) {
  Bench loaded(saved(aSnapshot), aSeed);
  return loaded.snapshot(0.0);
}

/// All that a scenario may say, but the parameters that automation leaves behind when it ends.
std::string withoutAutomation(const std::string& aSnapshot) {
  rapidjson::Document document = parsed(aSnapshot);
  for (const char* name : {"mAutoState", "mGC_State", "mGC_WaitingBetweenRuns"}) {
    document["parameters"].RemoveMember(name);
  }
  for (const char* name : {"state", "left"}) {
    document["snapshot"].RemoveMember(name);
  }
  rapidjson::StringBuffer buffer;
  rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
  EXPECT_TRUE(document.Accept(writer));
  return buffer.GetString();
}

/// Where two texts differ first, and how; nothing when they are the same.
std::string difference(const std::string& aOne, const std::string& aOther) {
  const auto place = static_cast<std::size_t>(
      std::mismatch(aOne.begin(), aOne.end(), aOther.begin(), aOther.end()).first - aOne.begin());
  const std::size_t start = place < 40 ? 0 : place - 40;
  return aOne == aOther ? "" : aOne.substr(start, 100) + " / " + aOther.substr(start, 100);
}

std::string textOf(Bench& bench, std::uint32_t aNumber) {
  ACE_CString name;
  std::vector<char> contents;
  EXPECT_EQ(bench.instrument->object(aNumber, name, contents), eSuccess);
  ACE_InputCDR stream(contents.data(), contents.size(), ACE_CDR::BYTE_ORDER_BIG_ENDIAN);
  ACE_CString text;
  EXPECT_TRUE(wire::readText(stream, text));
  return {text.fast_rep(), text.length()};
}

/// Does anything at all to an instrument, over and over.
class Meddler {
 public:
  explicit Meddler(std::uint32_t aSeed) : mRandom(aSeed) {}

  void meddle(Bench& bench, double& now) {
    switch (upTo(9)) {
      case 0:
        now += upTo(400);
        break;
      case 1:
        now += upTo(4000000) / 1024.0;
        break;
      case 2:
        bench.command(now, cCommands[upTo(std::size(cCommands) - 1)]);
        break;
      case 3:
        bench.instrument->setText(2 + upTo(3), text());
        break;
      case 4:
      case 5:
        // In the middle of something rather than in ready.
        bench.writeReal(now, 1 + upTo(3), 202, upTo(180));
        bench.writeInteger(now, 0, 60, static_cast<int>(upTo(3)));
        bench.writeInteger(now, 0, 1003, 0, upTo(10));
        break;
      default:
        bench.instrument->set(now, name(), value());
    }
  }

 private:
  static constexpr std::uint32_t cCommands[] = {0, 0, 1, 16, 17, 19, 22, 26, 35};

  std::uint32_t upTo(std::size_t aLargest) {
    return static_cast<std::uint32_t>(mRandom() % (aLargest + 1));
  }

  std::string name() { return model::nameOf(upTo(model::slotCount() - 1) / (1 + upTo(60))); }

  double value() {
    constexpr double cValues[] = {
        0.0,      1.0,          2.0,           4.0,       -1.0, 0.1,   -0.0,      1e-300,
        4.9e-324, 2147483647.0, -2147483648.0, 1e12,      cMax, -cMax, cInfinity, -cInfinity,
        cNaN,     46.0,         999.0,         1e6 + 0.5, 20.0, 38.0,  60.0,      1.0 / 3};
    return upTo(2) == 0 ? upTo(400000) / 1024.0 - 200.0 : cValues[upTo(std::size(cValues) - 1)];
  }

  std::string text() {
    std::string text(upTo(3) == 0 ? upTo(4096) : upTo(30), '\0');
    const bool isPlain = upTo(1) == 0;
    for (char& octet : text) {
      octet = static_cast<char>(isPlain ? ' ' + upTo(94) : upTo(255));
    }
    return text;
  }

  std::mt19937 mRandom;
};

}  // namespace

class ASnapshot : public ::testing::TestWithParam<const char*> {};

// The text of the scenario that was saved is the text of the next one, to the last digit.
TEST_P(ASnapshot, OfAnyStateIsAScenarioThatShowsTheSame) {
  int automatic = 0;
  for (std::uint32_t seed = 1; seed <= 15; ++seed) {
    Bench bench(std::string(GetParam()), seed);
    Meddler meddler(seed);
    double now = 0.0;
    for (int n = 0; n < 8; ++n) {
      for (std::uint32_t times = 0; times <= seed % 7; ++times) {
        meddler.meddle(bench, now);
      }
      const std::string snapshot = bench.snapshot(now);
      const std::string next = again(snapshot, seed);
      if (next != snapshot) {
        // Automation does not survive; everything else does.
        ++automatic;
        ASSERT_EQ(difference(withoutAutomation(snapshot), withoutAutomation(next)), "")
            << seed << "/" << n;
        ASSERT_NE(parsed(snapshot)["parameters"]["mAutoState"].GetInt(), 0) << seed << "/" << n;
        ASSERT_EQ(difference(next, again(next, seed)), "") << seed << "/" << n;
      }
    }
  }
  EXPECT_LT(automatic, 15 * 8 / 4);
}

INSTANTIATE_TEST_SUITE_P(Scenarios, ASnapshot,
                         ::testing::Values("everyday", "bare", "error", "warming-up"));

TEST(Snapshot, KnowsEveryOctetOfATextThatItCannotShow) {
  const std::string euro = "\xE2\x82\xAC";
  std::string thousand;
  for (int n = 0; n < 1000; ++n) {
    thousand += euro;
  }
  struct Case {
    std::string text;
    std::string shown;
    bool isExact;
  };
  const Case cases[] = {
      {"", "", true},
      {std::string("a\0b\x1f\"\\", 6), std::string("a\0b\x1f\"\\", 6), true},
      {"Gas \xff\x80", "Gas \xEF\xBF\xBD\xEF\xBF\xBD", false},
      {std::string(1000, 'x'), std::string(1000, 'x'), true},
      {std::string(1001, 'x'), std::string(1000, 'x'), false},
      {std::string(4096, 'x'), std::string(1000, 'x'), false},
      {thousand, thousand, true},
      {thousand + euro, thousand, false},
      {thousand + "x", thousand, false},
      {"x" + thousand, "x" + thousand.substr(0, 2997), false},
  };
  for (std::uint32_t number = 2; number <= 5; ++number) {
    constexpr const char* cNames[] = {"siteInformation", "instrumentName", "application",
                                      "bootpName"};
    for (const Case& one : cases) {
      Bench bench;
      ASSERT_TRUE(bench.instrument->setText(number, one.text));
      const std::string snapshot = bench.snapshot(0.0);
      const rapidjson::Document document = parsed(snapshot);
      const rapidjson::Value& text = document["texts"][cNames[number - 2]];
      EXPECT_EQ(std::string(text.GetString(), text.GetStringLength()), one.shown);
      EXPECT_EQ(document["snapshot"]["octets"].MemberCount(), one.isExact ? 0U : 1U);
      Bench loaded(saved(snapshot));
      EXPECT_EQ(textOf(loaded, number), one.text) << number;
      EXPECT_EQ(difference(snapshot, loaded.snapshot(0.0)), "");
    }
  }
  Bench bench;
  ASSERT_TRUE(bench.instrument->setText(3, "\x01\xfe\xA5"));
  EXPECT_STREQ(parsed(bench.snapshot(0.0))["snapshot"]["octets"]["instrumentName"].GetString(),
               "01fea5");
}

TEST(Snapshot, NamesWhatIsBeyondItsBounds) {
  Bench bench;
  const auto unchecked = [&bench] {
    std::string names;
    const rapidjson::Document document = parsed(bench.snapshot(0.0));
    for (const auto& name : document["snapshot"]["unchecked"].GetArray()) {
      names += (names.empty() ? "" : " ") + std::string(name.GetString());
    }
    return names;
  };
  EXPECT_EQ(unchecked(), "");
  bench.set(0.0, "mColumnTempSP1", 180.0);
  bench.set(0.0, "mAmbientTemp", -40);
  EXPECT_EQ(unchecked(), "");
  bench.set(0.0, "mColumnTempSP1", 180.001);
  bench.set(0.0, "mAmbientTemp", -41);
  bench.set(0.0, "mPressSP2", cNaN);
  bench.set(0.0, "mRepeat[3]", 1000);
  bench.set(0.0, "mLevelAmt2[7]", cInfinity);
  EXPECT_EQ(unchecked(), "mColumnTempSP1 mPressSP2 mAmbientTemp mRepeat[3] mLevelAmt2[7]");
  const std::string snapshot = bench.snapshot(0.0);
  // The table, which is without effect there, has another value.
  EXPECT_EQ(parsed(snapshot)["peaks"][10]["levelAmount"].GetDouble(), 0.0);
  Bench loaded(saved(snapshot));
  EXPECT_EQ(loaded.real(0.0, 1, 202), 180.001);
  EXPECT_EQ(loaded.integer(0.0, 0, 103), -41);
  EXPECT_TRUE(std::isnan(loaded.real(0.0, 2, 342)));
  EXPECT_EQ(loaded.integer(0.0, 0, 24, 3), 1000);
  EXPECT_EQ(loaded.real(0.0, 2, 1230, 7), cInfinity);
}

// A scenario of nothing: all is 0, the ambient pressure too, which is no pressure of this world.
TEST(Snapshot, OfWhatWasLeftOutIsAScenario) {
  Bench nothing(saved(R"({"parameters": {}, "texts": {"siteInformation": "",)"
                      R"( "instrumentName": "", "application": "", "bootpName": "",)"
                      R"( "columns": ["", "", "", ""]}})"));
  for (double now : {0.0, 29.0, 30.0, 1e6}) {
    const std::string snapshot = nothing.snapshot(now);
    EXPECT_EQ(difference(snapshot, again(snapshot)), "") << now;
    EXPECT_EQ(parsed(snapshot)["snapshot"]["unchecked"][0], "mAmbientPressure") << now;
  }
}

TEST(Snapshot, ShowsPeaksAsTheScenarioHasThem) {
  Bench bench;
  const rapidjson::Document document = parsed(bench.snapshot(0.0));
  const rapidjson::Value& peaks = document["peaks"];
  ASSERT_EQ(peaks.Size(), 11U);
  EXPECT_STREQ(peaks[10]["name"].GetString(), "n-Hexane");
  EXPECT_EQ(peaks[10]["channel"].GetInt(), 2);
  EXPECT_EQ(peaks[10]["retentionTime"].GetDouble(), 2.62);
  EXPECT_EQ(peaks[1]["levelAmount"].GetDouble(), 84.95);
  EXPECT_EQ(peaks[0]["linearCoefficient"].GetDouble(), 0.0000214);
}

TEST(Snapshot, HoldsWhatAnOperatorHolds) {
  Bench bench;
  bench.set(0.0, "mColumnTemp1", 99.5);
  bench.set(0.0, "mGC_State", 77);
  bench.set(0.0, "mAlarmOverall", 1);
  Bench loaded(saved(bench.snapshot(100.0)));
  EXPECT_EQ(loaded.columnTemp1(1000.0), 99.5);
  EXPECT_EQ(loaded.state(1000.0), 77);
  EXPECT_EQ(loaded.integer(1000.0, 0, 2211), 1);
  loaded.set(1000.0, "mGC_State", 4);
  EXPECT_EQ(loaded.command(1000.0, 0), eSuccess);
  EXPECT_NEAR(loaded.columnTemp1(1000.0), 60.0, 0.04);
  EXPECT_EQ(loaded.state(1180.0), 4);
}

/// From snapshot to snapshot, what was loaded is what it was taken from, for so many seconds.
void compare(Bench& bench, double aNow, double aSeconds) {
  Bench loaded(saved(bench.snapshot(aNow)));
  for (double after = 0.0; after <= aSeconds; after += aSeconds / 16.0) {
    rapidjson::Document one = parsed(bench.snapshot(aNow + after));
    rapidjson::Document other = parsed(loaded.snapshot(after));
    EXPECT_EQ(one["parameters"], other["parameters"]) << aNow << "+" << after;
    EXPECT_EQ(one["texts"], other["texts"]);
    EXPECT_EQ(one["peaks"], other["peaks"]);
    EXPECT_EQ(one["snapshot"]["time"], other["snapshot"]["time"]);
  }
}

// With its noise, to the second in which a state ends.
TEST(Snapshot, GoesOnWhereItWasTaken) {
  Bench warming("warming-up");
  compare(warming, 12.0, 32.0);
  compare(warming, 203.0, 320.0);
  Bench running;
  EXPECT_EQ(running.command(5.0, 0), eSuccess);
  running.set(30.0, "mRunTimeSP2", 20);  // the run under way keeps its time
  compare(running, 77.0, 320.0);
  Bench solution;
  EXPECT_EQ(solution.writeInteger(0.0, 0, 1003, 1, 3), eSuccess);
  compare(solution, 40.0, 64.0);
  Bench cleaning(scenarioWith("everyday", {{"mGC_State", 10}, {"mGC_CleaningTimeLeft", 3}}));
  compare(cleaning, 61.0, 160.0);
  Bench flushing(scenarioWith("everyday", {{"mGC_State", 1}, {"mGC_FlushingStream", 2.5}}));
  compare(flushing, 7.0, 160.0);
  Bench setpoint;
  EXPECT_EQ(setpoint.writeReal(3.0, 1, 202, 100.0), eSuccess);
  compare(setpoint, 50.0, 640.0);
  Bench inError("error");
  compare(inError, 9.0, 64.0);
}

TEST(Snapshot, OfASnapshotKeepsItsTime) {
  Bench bench;
  Bench second(saved(bench.snapshot(1000.75)));
  EXPECT_EQ(parsed(second.snapshot(0.0))["snapshot"]["time"].GetDouble(), 1000.0);
  EXPECT_EQ(parsed(second.snapshot(234.5))["snapshot"]["time"].GetDouble(), 1234.0);
  compare(second, 235.0, 32.0);
  Bench atTheEnd(saved(bench.snapshot(1e300)));
  EXPECT_EQ(parsed(atTheEnd.snapshot(1e300))["snapshot"]["time"].GetDouble(), 1e15);
  saved(atTheEnd.snapshot(1e300));
}

// In its noise only: the values beneath it are the same.
TEST(Snapshot, DependsOnTheSeedOfWhoLoadsIt) {
  Bench bench("everyday", 7);
  const std::string snapshot = bench.snapshot(100.0);
  EXPECT_EQ(difference(snapshot, again(snapshot, 7)), "");
  const std::string other = again(snapshot, 8);
  EXPECT_NE(other, snapshot);
  EXPECT_EQ(parsed(other)["snapshot"], parsed(snapshot)["snapshot"]);
}

TEST(Snapshot, OfAutomationGoesOnWithItsPresentRun) {
  Bench bench;
  EXPECT_EQ(bench.command(0.0, 16), eSuccess);
  Bench flushing(saved(bench.snapshot(30.0)));
  EXPECT_EQ(flushing.state(59.5), 1);
  EXPECT_EQ(flushing.state(60.0), 4);
  EXPECT_EQ(flushing.autoState(60.0), 0);
  Bench running(saved(bench.snapshot(100.0)));
  EXPECT_EQ(running.state(169.5), 2);
  EXPECT_EQ(running.autoState(0.0), 3);  // a calibration
  EXPECT_EQ(running.state(170.0), 4);
  EXPECT_EQ(running.counter(170.0), 1285);
  Bench waiting(saved(bench.snapshot(280.0)));
  EXPECT_EQ(waiting.state(0.0), 4);
  EXPECT_EQ(waiting.autoState(0.0), 0);
  EXPECT_EQ(waiting.command(0.0, 0), eSuccess);
}

// An alarm that the operator has reset stays off, whatever goes on beneath what is shown.
TEST(Snapshot, SetsOffNoAlarm) {
  Bench bench("error");
  bench.set(0.0, "mGC_State", 4);
  EXPECT_EQ(bench.command(0.0, 35), eSuccess);
  EXPECT_EQ(bench.integer(0.0, 0, 2211), 0);
  Bench loaded(saved(bench.snapshot(10.0)));
  EXPECT_EQ(loaded.integer(0.0, 0, 2211), 0);
}

TEST(Snapshot, OfOneThatHoldsNothingMayLeaveTheRestOut) {
  const std::string texts =
      R"("texts": {"siteInformation": "a", "instrumentName": "", "application": "",)"
      R"( "bootpName": "", "columns": ["", "", "", ""]})";
  const auto with = [&texts](const std::string& aSnapshot) {
    return saved("{" + texts + R"(, "parameters": {"mInstalled1": 1, "mRunTimeSP1": 40,)" +
                 R"( "mExtReady": 1, "mGC_CurRunTime": 11}, "snapshot": )" + aSnapshot + "}");
  };
  Bench idle(with(R"({"time": 0, "state": 4})"));
  EXPECT_EQ(idle.state(0.0), 4);
  EXPECT_EQ(textOf(idle, 2), "a");
  Bench running(with(R"({"time": 0, "state": 2, "elapsed": 10.5, "left": 4.25})"));
  EXPECT_EQ(running.runTime(0.0), 10);
  EXPECT_EQ(running.runTime(0.5), 11);
  EXPECT_EQ(running.state(4.0), 2);
  EXPECT_EQ(running.state(4.25), 4);
  Bench over(with(R"({"time": 0, "state": 2, "elapsed": 10.5})"));
  EXPECT_EQ(over.state(0.0), 4);
  EXPECT_EQ(over.counter(0.0), 1);
  Bench busy(with(R"({"time": 0, "state": 8, "left": 7})"));
  EXPECT_EQ(busy.state(6.5), 8);
  EXPECT_EQ(busy.state(7.0), 4);
  Bench soon(with(R"({"time": 0, "state": 8, "left": 0.5})"));
  EXPECT_EQ(soon.state(0.25), 8);
  EXPECT_EQ(soon.state(0.5), 4);
  Bench stabilizing(with(R"({"time": 0, "state": 3, "left": 0.5})"));
  EXPECT_EQ(stabilizing.state(0.25), 3);
  EXPECT_EQ(stabilizing.state(0.5), 4);
  Bench never(with(R"({"time": 0, "state": 3})"));
  EXPECT_EQ(never.state(1e12), 3);
  never.set(1e12, "mServiceSwitch", 1);  // what is set decides anew
  EXPECT_EQ(never.state(1e12), 8);
  // Nothing ends at once that would release what is held.
  for (const char* start : {R"("state": 8)", R"("state": 3, "left": 0)", R"("state": 4)"}) {
    Bench held(with(R"({"time": 0, "held": ["mGC_CurRunTime"], )" + std::string(start) + "}"));
    EXPECT_EQ(held.runTime(5.0), 11) << start;
    EXPECT_EQ(held.state(5.0), 4) << start;
  }
  Bench octets(with(R"({"time": 0, "state": 4, "octets": {"siteInformation": "41ff"}})"));
  EXPECT_EQ(textOf(octets, 2), "A\xff");
}

}  // namespace simulator
