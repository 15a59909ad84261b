// Alarms: what triggers them, that they stay, and how they are taken back.
#include <Status.h>
#include <gtest/gtest.h>

#include <cmath>

#include "Bench.h"

namespace simulator {

namespace {

constexpr std::uint32_t cStart = 0;
constexpr std::uint32_t cResetAlarms = 35;

// Instrument error, cabinet temperature, ambient pressure, verification (two ways), start of a run,
// any alarm, the amount of a component: each for all sample types.
constexpr char cEveryKind[] = R"([{"group": 8, "parameter": 1, "allSampleTypes": 1},)"
                              R"( {"group": 8, "parameter": 2, "sampleType": 4},)"
                              R"( {"group": 8, "parameter": 3, "allSampleTypes": 1},)"
                              R"( {"group": 4, "parameter": 1, "allSampleTypes": 1},)"
                              R"( {"group": 11, "parameter": 0, "allSampleTypes": 1},)"
                              R"( {"group": 12, "parameter": 0, "allSampleTypes": 1},)"
                              R"( {"group": 10, "parameter": 0, "allSampleTypes": 1},)"
                              R"( {"group": 1, "parameter": 2, "allSampleTypes": 1}])";

Bench everyKind(const std::vector<std::pair<std::string, double>>& aValues = {}) {
  return Bench(scenarioWithTable("everyday", "alarms", cEveryKind, aValues));
}

/// The rows that are on, as "1, 7".
std::string triggered(Bench& bench, double aNow) {
  std::string rows;
  const int total = bench.integer(aNow, 0, 2029);
  for (int row = 1; row <= total; ++row) {
    if (bench.integer(aNow, 0, 2212, static_cast<std::uint32_t>(row)) != 0) {
      rows += (rows.empty() ? "" : ", ") + std::to_string(row);
    }
  }
  EXPECT_EQ(bench.integer(aNow, 0, 2211), rows.empty() ? 0 : 1);
  return rows;
}

}  // namespace

TEST(Alarms, AreTheScenariosRows) {
  Bench bench("four-channel");
  EXPECT_EQ(bench.integer(0.0, 0, 2028), 1);
  EXPECT_EQ(bench.integer(0.0, 0, 2029), 38);
  EXPECT_EQ(bench.integer(0.0, 0, 2031, 1), 8);
  EXPECT_EQ(bench.integer(0.0, 0, 2032, 1), 1);
  EXPECT_EQ(bench.integer(0.0, 0, 2038, 1), 1);
  EXPECT_EQ(bench.integer(0.0, 0, 2030, 1), 4);
  EXPECT_EQ(triggered(bench, 0.0), "");
  for (std::uint32_t id : {2028U, 2029U, 2211U}) {
    EXPECT_EQ(bench.writeInteger(0.0, 0, id, 1), eReadOnly) << id;
  }
  for (std::uint32_t id : {2030U, 2031U, 2032U, 2038U, 2212U}) {
    EXPECT_EQ(bench.writeInteger(0.0, 0, id, 1, 1), eReadOnly) << id;
    EXPECT_EQ(bench.writeInteger(0.0, 0, id, 1, 39), eParameterUnknown) << id;
    EXPECT_EQ(bench.writeInteger(0.0, 0, id, 1, 0), eParameterUnknown) << id;
  }
}

TEST(Alarms, ErrorStatesTriggerTheInstrumentError) {
  for (int state = 0; state <= 10; ++state) {
    Bench bench = everyKind();
    EXPECT_EQ(triggered(bench, 0.0), "");
    bench.set(0.0, "mGC_State", state);
    const bool isError = state == 5 || state == 6 || state == 7;
    EXPECT_EQ(triggered(bench, 0.0), isError ? "1, 7" : "") << state;
  }
  Bench inError("error");
  EXPECT_EQ(triggered(inError, 0.0), "1, 4");
}

TEST(Alarms, CabinetTemperatureAndAmbientPressureHaveLimits) {
  struct Case {
    const char* name;
    double value;
    const char* rows;
  };
  constexpr Case cCases[] = {{"mAmbientTemp", 0, ""},          {"mAmbientTemp", -1, "2, 7"},
                             {"mAmbientTemp", 55, ""},         {"mAmbientTemp", 56, "2, 7"},
                             {"mAmbientTemp", 1e300, "2, 7"},  {"mAmbientPressure", 80.0, ""},
                             {"mAmbientPressure", 110.0, ""},  {"mAmbientPressure", 79.9, "3, 7"},
                             {"mAmbientPressure", 1e9, "3, 7"}};
  for (const Case& one : cCases) {
    Bench bench = everyKind();
    bench.set(0.0, one.name, one.value);
    EXPECT_EQ(triggered(bench, 0.0), one.rows) << one.name << one.value;
  }
  Bench bench = everyKind();
  bench.set(0.0, "mAmbientPressure", std::nan(""));
  EXPECT_EQ(triggered(bench, 0.0), "3, 7");
  Bench fromTheStart = everyKind({{"mAmbientPressure", 120.0}});
  EXPECT_EQ(triggered(fromTheStart, 0.0), "3, 7");
}

TEST(Alarms, StayUntilTheyAreReset) {
  Bench bench = everyKind();
  bench.set(0.0, "mAmbientTemp", 60);
  bench.set(1.0, "mAmbientTemp", 23);
  EXPECT_EQ(triggered(bench, 1e6), "2, 7");
  EXPECT_EQ(bench.command(1e6, cResetAlarms), eSuccess);
  EXPECT_EQ(triggered(bench, 1e6), "");
  EXPECT_EQ(triggered(bench, 2e6), "");
}

TEST(Alarms, WhoseConditionHoldsAreOnAgainAfterTheReset) {
  Bench bench = everyKind();
  bench.set(0.0, "mAmbientTemp", 60);
  EXPECT_EQ(bench.command(1.0, cResetAlarms), eSuccess);
  EXPECT_EQ(triggered(bench, 1.0), "2, 7");
  bench.set(2.0, "mAmbientTemp", 23);
  EXPECT_EQ(bench.command(3.0, cResetAlarms), eSuccess);
  EXPECT_EQ(triggered(bench, 3.0), "");
}

TEST(Alarms, AreResetInEveryState) {
  for (int state = 0; state <= 11; ++state) {
    Bench bench = everyKind();
    bench.set(0.0, "mTriggered[8]", 1);
    bench.set(0.0, "mGC_State", state);
    EXPECT_EQ(bench.command(0.0, cResetAlarms), eSuccess) << state;
    EXPECT_EQ(bench.integer(0.0, 0, 2212, 8), 0);
  }
}

// A channel that is in use and not calibrated cannot pass.
TEST(Alarms, AVerificationFailsWithoutCalibration) {
  struct Case {
    double calibrated;
    double disabled;
    int runType;
    const char* rows;
  };
  for (const Case& one : {Case{0, 0, 3, "4, 5, 7"}, Case{1, 0, 3, ""}, Case{0, 1, 3, ""},
                          Case{0, 0, 0, ""}, Case{0, 0, 1, ""}, Case{0, 0, 2, ""}}) {
    Bench bench =
        everyKind({{"mDetCalibrated2", one.calibrated}, {"mColumnHeader2", one.disabled}});
    EXPECT_EQ(bench.writeInteger(0.0, 0, 60, one.runType), eSuccess);
    EXPECT_EQ(bench.command(0.0, cStart), eSuccess);
    EXPECT_EQ(triggered(bench, 179.9), "");
    EXPECT_EQ(triggered(bench, 180.0), one.rows);
    EXPECT_EQ(bench.command(180.0, cResetAlarms), eSuccess);
    EXPECT_EQ(triggered(bench, 180.0), "");
  }
}

TEST(Alarms, ARefusedStartTriggers) {
  for (std::uint32_t start : {0U, 16U}) {
    Bench bench = everyKind({{"mExtReady", 0}});
    EXPECT_EQ(bench.command(0.0, start), eStateForbids);
    EXPECT_EQ(triggered(bench, 0.0), "6, 7");
  }
  Bench bench = everyKind();
  EXPECT_EQ(bench.command(0.0, 1), eStateForbids);  // nothing to abort is no start
  EXPECT_EQ(bench.command(0.0, 99), eCommandUnknown);
  EXPECT_EQ(triggered(bench, 0.0), "");
}

TEST(Alarms, OfASampleTypeWatchItsRuns) {
  Bench bench(scenarioWithTable("everyday", "alarms",
                                R"([{"group": 8, "parameter": 2, "sampleType": 2},)"
                                R"( {"group": 8, "parameter": 2, "sampleType": 0}])"));
  bench.set(0.0, "mAmbientTemp", 60);
  EXPECT_EQ(triggered(bench, 0.0), "2");
  EXPECT_EQ(bench.writeInteger(0.0, 0, 60, 2), eSuccess);
  EXPECT_EQ(bench.command(0.0, cStart), eSuccess);
  EXPECT_EQ(triggered(bench, 0.0), "1, 2");
}

TEST(Alarms, ThatAreDisabledDoNothing) {
  Bench bench = everyKind({{"mEnabled", 0}});
  bench.set(0.0, "mAmbientTemp", 60);
  bench.set(0.0, "mGC_State", 5);
  EXPECT_EQ(triggered(bench, 0.0), "");
  bench.set(0.0, "mTriggered[1]", 1);
  EXPECT_EQ(bench.integer(0.0, 0, 2211), 0);
  bench.set(0.0, "mEnabled", 1);
  EXPECT_EQ(triggered(bench, 0.0), "1, 2, 7");
}

TEST(Alarms, CountsThatAnOperatorSetsAreTakenAsFarAsTheyGo) {
  Bench bench = everyKind();
  bench.set(0.0, "mAmbientTemp", 60);
  for (double total : {0.0, -5.0, -2147483648.0}) {
    bench.set(0.0, "mTotal", total);
    EXPECT_EQ(bench.integer(0.0, 0, 2211), 0) << total;
  }
  for (double total : {38.0, 50.0, 2147483647.0}) {
    bench.set(0.0, "mTotal", total);
    EXPECT_EQ(bench.integer(0.0, 0, 2212, 38), 0) << total;
    EXPECT_EQ(bench.integer(0.0, 0, 2211), 1) << total;
  }
}

}  // namespace simulator
