// What an operator of the simulation may do past access and bounds.
#include <ObjectTexts.h>
#include <Status.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "Bench.h"
#include "ExpectedParameters.h"

namespace simulator {

namespace {

constexpr double cInfinity = std::numeric_limits<double>::infinity();
constexpr double cMax = std::numeric_limits<double>::max();

/// The texts of a remote object, read back from its CDR stream.
std::vector<std::string> textsOf(Instrument& instrument, std::uint32_t aNumber,
                                 std::string& className) {
  ACE_CString name;
  std::vector<char> contents;
  EXPECT_EQ(instrument.object(aNumber, name, contents), eSuccess);
  className = name.c_str();
  ACE_InputCDR stream(contents.data(), contents.size(), ACE_CDR::BYTE_ORDER_BIG_ENDIAN);
  std::vector<std::string> texts;
  while (stream.length() > 0) {
    ACE_CString text;
    if (!wire::readText(stream, text)) {
      ADD_FAILURE() << "unreadable text";
      break;
    }
    texts.emplace_back(text.fast_rep(), text.length());
  }
  return texts;
}

}  // namespace

TEST(Set, AComputedValueIsHeldUntilTheStateChanges) {
  Bench bench;
  bench.set(0.0, "mColumnTemp1", 99.5);
  EXPECT_EQ(bench.columnTemp1(0.0), 99.5);
  EXPECT_EQ(bench.columnTemp1(1000.0), 99.5);
  EXPECT_EQ(bench.state(1000.0), 4);
  EXPECT_EQ(bench.command(1000.0, 0), eSuccess);
  EXPECT_NEAR(bench.columnTemp1(1000.0), 60.0, 0.04);
}

TEST(Set, ChangesByTimeAndByClientsReleaseIt) {
  Bench warming("warming-up");
  warming.set(0.0, "mColumnTemp1", 99.5);
  EXPECT_EQ(warming.columnTemp1(29.9), 99.5);
  EXPECT_NEAR(warming.columnTemp1(30.0), 60.0 - 38.0 * std::exp(-30.0 / 90.0), 0.04);

  Bench written;
  written.set(0.0, "mColumnTemp2", 99.5);
  EXPECT_EQ(written.writeInteger(0.0, 1, 204, 60), eSuccess);  // a setting that leaves it ready
  EXPECT_EQ(written.real(0.0, 2, 300), 99.5);
  EXPECT_EQ(written.writeReal(0.0, 1, 202, 80.0), eSuccess);  // one that it must stabilize for
  EXPECT_NEAR(written.real(0.0, 2, 300), 75.0, 0.04);
}

TEST(Set, SeveralValuesHoldInAnyOrder) {
  Bench bench;
  bench.set(0.0, "mColumnTemp1", 99.5);
  bench.set(0.0, "mExtReady", 0);
  bench.set(0.0, "mColumnTempSP1", 120.0);
  bench.set(0.0, "mInstalled2", 0);
  EXPECT_EQ(bench.columnTemp1(0.0), 99.5);
  EXPECT_EQ(bench.state(0.0), 3);
}

TEST(Set, TheShownStateDecidesWhatIsAllowed) {
  Bench bench("error");
  bench.set(0.0, "mGC_State", 4);
  EXPECT_EQ(bench.command(0.0, 0), eSuccess);
  EXPECT_EQ(bench.state(0.0), 2);
  EXPECT_EQ(bench.state(180.0), 4);
}

TEST(Set, AStoredValueStays) {
  Bench bench;
  bench.set(0.0, "mAnalysisCounter", 41);
  bench.set(0.0, "mGC_Error_Status", 301);
  bench.set(0.0, "mColumnTempSP1", 250.0);  // past the bounds of a write
  EXPECT_EQ(bench.counter(0.0), 41);
  EXPECT_EQ(bench.real(0.0, 1, 202), 250.0);
  EXPECT_EQ(bench.command(5000.0, 0), eSuccess);
  EXPECT_EQ(bench.counter(6000.0), 42);
  EXPECT_EQ(bench.integer(6000.0, 0, 132), 301);
  EXPECT_NEAR(bench.columnTemp1(6000.0), 250.0, 0.04);
}

TEST(Set, AnIntegerIsCutToWhatItHolds) {
  Bench bench;
  struct Case {
    double set;
    int shown;
  };
  constexpr Case cCases[] = {{7.9, 7},
                             {-7.9, -7},
                             {2147483647.0, INT32_MAX},
                             {2147483648.0, INT32_MAX},
                             {-2147483648.0, INT32_MIN},
                             {cMax, INT32_MAX},
                             {-cInfinity, INT32_MIN}};
  for (const char* name : {"mAnalysisCounter", "mGC_CurRunTime"}) {
    for (const Case& one : cCases) {
      bench.set(0.0, name, one.set);
      EXPECT_EQ(bench.integer(0.0, 0, std::string(name) == "mGC_CurRunTime" ? 161 : 2202),
                one.shown)
          << name << one.set;
    }
  }
}

TEST(Set, ARealIsTakenAsItIs) {
  Bench bench;
  for (double value : {cMax, -cMax, 4.9e-324, 0.1, 1.0 / 3.0, cInfinity, -cInfinity}) {
    bench.set(0.0, "mAutoZero1", value);
    EXPECT_EQ(bench.real(0.0, 1, 307), value);
    bench.set(0.0, "mPressSP1", value);
    EXPECT_EQ(bench.real(0.0, 1, 342), value);
  }
  bench.set(0.0, "mAutoZero1", std::nan(""));
  EXPECT_TRUE(std::isnan(bench.real(0.0, 1, 307)));
}

TEST(Set, UnknownNamesAreRefused) {
  Bench bench;
  for (const char* name : {"",
                           "mColumnTemp",
                           "mColumnTemp5",
                           "mColumnTemp0",
                           "mgc_state",
                           "mGC_State1",
                           "mGC_State ",
                           "mGC_State[1]",
                           "mGC_State[",
                           "mRepeat",
                           "mRepeat[0]",
                           "mRepeat[4]",
                           "mRepeat[21]",
                           "mRepeat[01]",
                           "mRepeat[1",
                           "mRepeat[1]]",
                           "mRepeat[-1]",
                           "mRepeat1[1]",
                           "mLevelAmt1[5]",
                           "mLevelAmt[1]",
                           "mLevelAmt3[1]",
                           "mTriggered[6]",
                           "mSlotNr[11]",
                           "mRepeat[4294967297]",
                           "["}) {
    EXPECT_FALSE(bench.instrument->set(0.0, name, 1.0)) << name;
  }
}

TEST(Set, ReachesEveryStepThatIsThere) {
  Bench bench;
  bench.set(0.0, "mLevelAmt1[3]", 2.5);
  bench.set(0.0, "mRT2[7]", 3.25);
  bench.set(0.0, "mRepeat[3]", 17.9);
  bench.set(0.0, "mSolution[2]", 10);
  bench.set(0.0, "mSlotNr[0]", 1);
  bench.set(0.0, "mGroupID[5]", -2147483648.0);
  EXPECT_EQ(bench.real(0.0, 1, 1230, 3), 2.5);
  EXPECT_EQ(bench.real(0.0, 2, 1196, 7), 3.25);
  EXPECT_EQ(bench.integer(0.0, 0, 24, 3), 17);
  EXPECT_EQ(bench.integer(0.0, 1, 1010, 2), 10);
  EXPECT_EQ(bench.integer(0.0, 0, 1003, 0), 1);
  EXPECT_EQ(bench.integer(0.0, 0, 2031, 5), INT32_MIN);
  const std::string snapshot = bench.snapshot(0.0);
  EXPECT_NE(snapshot.find("\"mLevelAmt1[3]\":2.5,"), std::string::npos);
  EXPECT_NE(snapshot.find("\"mRepeat[3]\":17,"), std::string::npos);
}

TEST(Set, TheCounterStaysAtTheLargestNumber) {
  Bench bench;
  bench.set(0.0, "mAnalysisCounter", 2147483647.0);
  EXPECT_EQ(bench.command(0.0, 0), eSuccess);
  EXPECT_EQ(bench.counter(1000.0), INT32_MAX);
}

TEST(Set, NothingBreaksTheInstrument) {
  const double values[] = {cMax,         -cMax,        cInfinity,     -cInfinity,
                           std::nan(""), 2147483647.0, -2147483648.0, 4.9e-324,
                           -0.0,         1e12,         1.0,           0.0};
  Bench bench("four-channel");
  double now = 0.0;
  std::vector<ParamList> records;
  for (const ExpectedParameter& parameter : cExpectedParameters) {
    records.push_back({parameter.channel, 0, 0, parameter.id, 0.0, 0, 0});
  }
  for (double value : values) {
    for (const ExpectedParameter& parameter : cExpectedParameters) {
      bench.set(now, parameter.name, value);
      EXPECT_EQ(bench.instrument->read(now, records), eSuccess);
    }
    bench.snapshot(now);
    for (const char* name : {"mRunType[1]", "mRepeat[1]", "mStream[1]", "mSolution[1]",
                             "mFlushTime[1]", "mFlushTime[2]", "mLevelAmt1[1]", "mLinearCoef1[2]",
                             "mRT1[1]", "mAlarmOn[1]", "mGroupID[1]", "mParamID[1]"}) {
      bench.instrument->set(now, name, value);
    }
    for (std::uint32_t command : {0U, 1U, 16U, 17U, 1U, 0U, 19U, 22U, 26U, 35U}) {
      bench.set(now, "mGC_State", 4.0);
      bench.set(now, "mAutoState", 0.0);
      bench.command(now, command);
      bench.snapshot(now + 1.0);
      now += 5000.0;
    }
    EXPECT_EQ(bench.instrument->read(now, records), eSuccess);
  }
  // And it still knows its way back.
  bench.set(now, "mServiceSwitch", 0);
  bench.set(now, "mHeatedSampleLineInstalled", 0);
  bench.set(now, "mExtReady", 1);
  for (const char* name : {"mInstalled1", "mInstalled2", "mInstalled3", "mInstalled4"}) {
    bench.set(now, name, 0);
  }
  EXPECT_EQ(bench.command(now, 0), eSuccess);
  EXPECT_EQ(bench.state(now + 1.0), 4);
}

TEST(Set, ASetpointComesBackFromInfinity) {
  for (double extreme : {cInfinity, -cInfinity, std::nan("")}) {
    Bench bench;
    bench.set(0.0, "mColumnTempSP1", extreme);
    EXPECT_EQ(bench.state(1e6), 3);
    bench.set(1e6, "mColumnTempSP1", 60.0);
    EXPECT_NEAR(bench.columnTemp1(2e6), 60.0, 0.04);
    EXPECT_EQ(bench.state(2e6), 4);
  }
}

TEST(Texts, AreTheScenariosInTheirObjects) {
  Bench bench;
  std::string name;
  using Texts = std::vector<std::string>;
  EXPECT_EQ(textsOf(*bench.instrument, 2, name), Texts{"Metering station 12, stream house"});
  EXPECT_EQ(name, "SiteInfoTag");
  EXPECT_EQ(textsOf(*bench.instrument, 3, name), Texts{"GC-12"});
  EXPECT_EQ(textsOf(*bench.instrument, 4, name), Texts{"Natural gas C6+ (simulated)"});
  EXPECT_EQ(textsOf(*bench.instrument, 5, name), Texts{"gc-12-simulated"});
  EXPECT_EQ(textsOf(*bench.instrument, 6, name),
            (Texts{"Porous polymer, 10 m", "Dimethylpolysiloxane, 8 m", "", ""}));
  EXPECT_EQ(name, "ColumnDescriptions");
}

TEST(Texts, OtherObjectsAreUnknown) {
  Bench bench;
  ACE_CString name;
  std::vector<char> contents;
  for (std::uint32_t number : {0U, 1U, 7U, UINT32_MAX}) {
    EXPECT_EQ(bench.instrument->object(number, name, contents), eObjectUnknown) << number;
    EXPECT_FALSE(bench.instrument->setText(number, "text")) << number;
  }
  EXPECT_FALSE(bench.instrument->setText(6, "four texts, not one"));
}

TEST(Texts, MayBeAnyOctetsUpToTheProtocolsLimit) {
  Bench bench;
  std::string name;
  for (const std::string& text : {std::string(), std::string("a\0b", 3),
                                  std::string("\xff\xfe\x80"), std::string(4096, 'x')}) {
    EXPECT_TRUE(bench.instrument->setText(4, text));
    EXPECT_EQ(textsOf(*bench.instrument, 4, name), std::vector<std::string>{text});
  }
  EXPECT_FALSE(bench.instrument->setText(4, std::string(4097, 'x')));
  EXPECT_EQ(textsOf(*bench.instrument, 4, name), std::vector<std::string>{std::string(4096, 'x')});
  EXPECT_EQ(textsOf(*bench.instrument, 5, name), std::vector<std::string>{"gc-12-simulated"});
}

TEST(Snapshot, IsJsonWhateverWasSet) {
  Bench bench;
  bench.set(0.0, "mAutoZero1", std::nan(""));
  bench.set(0.0, "mColumnTemp1", cInfinity);
  bench.set(0.0, "mColumnTemp2", -cInfinity);
  EXPECT_TRUE(bench.instrument->setText(4, "Gas \xff"));
  rapidjson::Document document;
  const std::string text = bench.snapshot(0.0);
  document.Parse<rapidjson::kParseValidateEncodingFlag>(text.c_str());
  ASSERT_FALSE(document.HasParseError()) << text;
  EXPECT_STREQ(document["parameters"]["mAutoZero1"].GetString(), "NaN");
  EXPECT_STREQ(document["parameters"]["mColumnTemp1"].GetString(), "Infinity");
  EXPECT_STREQ(document["parameters"]["mColumnTemp2"].GetString(), "-Infinity");
  EXPECT_STREQ(document["texts"]["application"].GetString(), "Gas \xEF\xBF\xBD");
}

TEST(Snapshot, IsAScenario) {
  Bench bench("warming-up");
  EXPECT_EQ(bench.state(200.0), 3);
  const TemporaryFile file(bench.snapshot(200.0));
  Scenario scenario;
  std::string error;
  ASSERT_TRUE(loadScenario(file.path(), scenario, error)) << error;
  Bench again(scenario);
  EXPECT_EQ(again.state(0.0), 3);
  EXPECT_NEAR(again.columnTemp1(0.0), bench.columnTemp1(200.0), 0.1);
  EXPECT_EQ(again.counter(0.0), 1284);
  EXPECT_EQ(again.state(260.0), 4);
}

TEST(Snapshot, HoldsTheTables) {
  Bench bench("four-channel");
  bench.set(0.0, "mTriggered[3]", 1);
  EXPECT_EQ(bench.command(0.0, 22), eSuccess);
  EXPECT_EQ(bench.command(0.0, 19), eSuccess);
  EXPECT_EQ(bench.writeInteger(0.0, 0, 24, 8, 2), eSuccess);
  EXPECT_EQ(bench.writeReal(0.0, 4, 1230, 12.5, 100), eSuccess);
  const std::string before = bench.snapshot(0.0);
  const TemporaryFile file(before);
  Scenario scenario;
  std::string error;
  ASSERT_TRUE(loadScenario(file.path(), scenario, error)) << error;
  Bench again(scenario);
  EXPECT_EQ(again.integer(0.0, 0, 144), 2);
  EXPECT_EQ(again.integer(0.0, 0, 24, 2), 8);
  EXPECT_EQ(again.integer(0.0, 0, 2212, 3), 1);
  EXPECT_EQ(again.real(0.0, 4, 1230, 100), 12.5);
  EXPECT_EQ(again.integer(0.0, 1, 1176, 5), 'M');  // Methane
}

}  // namespace simulator
