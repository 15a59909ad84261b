// The parts of the status report one by one: run time, application text, pairs, channels.
#include <gmock/gmock.h>

#include <limits>

#include "Capture.h"
#include "FakeInstrument.h"
#include "SecStatusAccess.h"
#include "TestMap.h"

using testing::ElementsAre;

namespace {
class StatusPartsTest : public testing::Test {
 protected:
  StatusPartsTest() { mDocument.SetObject(); }
  std::string printed() const {
    return capture([&] { printDocument(mDocument); }).out;
  }
  Parameter* add(const char* aName, double aReal) {
    Parameter* const lParameter = mMap.add(aName, 0, 1);
    lParameter->setIntValue(-9);
    lParameter->setRealValue(aReal);
    return lParameter;
  }

  FakeInstrument mInstrument;
  TestMap mMap;
  Document mDocument;
};

class MaxRunTimeTest : public testing::Test {
 protected:
  int maxOf(long aFirst, long aSecond, long aThird, long aFourth) {
    TestMap lMap;
    lMap.add("mRunTimeSP1", 1, 204)->setIntValue(aFirst);
    lMap.add("mRunTimeSP2", 2, 204)->setIntValue(aSecond);
    lMap.add("mRunTimeSP3", 3, 204)->setIntValue(aThird);
    lMap.add("mRunTimeSP4", 4, 204)->setIntValue(aFourth);
    return SecStatusAccess::maxRunTime(lMap);
  }
};

class ApplicationTest : public testing::Test {
 protected:
  ApplicationTest() { mSection.init(&mMap, FakeInstrument::cHandle); }
  std::string application() {
    ACE_CString lText("before");
    SecStatusAccess::application(mSection, lText);
    return lText.c_str();
  }

  FakeInstrument mInstrument;
  TestMap mMap;
  SecStatus mSection;
};
}  // namespace

TEST_F(MaxRunTimeTest, AnyChannelMayBeTheLongest) {
  EXPECT_EQ(maxOf(900, 1, 2, 3), 900);
  EXPECT_EQ(maxOf(1, 900, 2, 3), 900);
  EXPECT_EQ(maxOf(300, 0, 900, 600), 900);
  EXPECT_EQ(maxOf(1, 2, 3, 900), 900);
}

TEST_F(MaxRunTimeTest, IsNeverBelowZero) {
  EXPECT_EQ(maxOf(-5, -1, -2, -3), 0);
  EXPECT_EQ(maxOf(0, 0, 0, 0), 0);
  EXPECT_EQ(maxOf(-5, -1, 1, -3), 1);
  EXPECT_EQ(maxOf(std::numeric_limits<std::int32_t>::min(), -1, -1, -1), 0);
}

TEST_F(MaxRunTimeTest, MissingChannelsCountAsZero) {
  TestMap map;
  EXPECT_EQ(SecStatusAccess::maxRunTime(map), 0);
  map.add("mRunTimeSP4", 4, 204)->setIntValue(12);
  EXPECT_EQ(SecStatusAccess::maxRunTime(map), 12);
}

TEST_F(ApplicationTest, IsTheTagOfObject4) {
  mInstrument.setTag(3, "name");
  mInstrument.setTag(4, "Natural gas");
  mInstrument.setTag(5, "BOOTP");
  EXPECT_EQ(application(), "Natural gas");
  EXPECT_THAT(mInstrument.calls(), ElementsAre("registerObject(SiteInfoTag)", "~SiteInfoTag()",
                                               "ReadObject(handle, 4)"));
}

TEST_F(ApplicationTest, EmptyTagIsTaken) {
  mInstrument.setTag(4, "");
  EXPECT_EQ(application(), "");
}

TEST_F(ApplicationTest, AbsentObjectLeavesTheText) {
  EXPECT_EQ(application(), "before");
}

TEST_F(ApplicationTest, ObjectOfAnotherClassLeavesTheText) {
  mInstrument.setColumns(4, {"a", "b", "c", "d"});
  EXPECT_EQ(application(), "before");
}

TEST_F(ApplicationTest, StatusIsNotLookedAt) {
  mInstrument.setTag(4, "Natural gas");
  mInstrument.setStatus(eFunction::eReadObject, 5);
  EXPECT_EQ(application(), "Natural gas");
}

TEST_F(StatusPartsTest, PairHoldsTwoRealsSetpointFirst) {
  add("set", 50.5);
  add("act", 49.25);
  char name[] = "Pair";
  SecStatusAccess::addPair(mMap, name, "set", "act", mDocument);
  name[0] = 'p';  // the document holds a copy
  EXPECT_EQ(printed(), R"({
    "Pair": {
        "Setpoint": 50.5,
        "Actual": 49.25
    }
}
)");
}

TEST_F(StatusPartsTest, PairOfUnknownNamesIsZero) {
  SecStatusAccess::addPair(mMap, "Pair", "set", "act", mDocument);
  EXPECT_EQ(printed(), R"({
    "Pair": {
        "Setpoint": 0.0,
        "Actual": 0.0
    }
}
)");
}

TEST_F(StatusPartsTest, PairShowsWhatIsNotFiniteAsADash) {
  add("set", std::numeric_limits<double>::infinity());
  add("act", std::numeric_limits<double>::quiet_NaN());
  SecStatusAccess::addPair(mMap, "Pair", "set", "act", mDocument);
  EXPECT_EQ(printed(), R"({
    "Pair": {
        "Setpoint": "-",
        "Actual": "-"
    }
}
)");
}

TEST_F(StatusPartsTest, EmptyPairHoldsTwoDashes) {
  char name[] = "Pair";
  SecStatusAccess::addEmptyPair(name, mDocument);
  name[0] = 'p';
  EXPECT_EQ(printed(), R"({
    "Pair": {
        "Setpoint": "-",
        "Actual": "-"
    }
}
)");
}

TEST_F(StatusPartsTest, ChannelThatIsNotInstalledIsNotAdded) {
  SecStatusAccess::addChannel(mMap, 1, mDocument);
  mMap.add("mInstalled2", 0, 503)->setRealValue(1.0);
  SecStatusAccess::addChannel(mMap, 2, mDocument);
  EXPECT_EQ(printed(), "{}\n");
}

TEST_F(StatusPartsTest, ChannelShowsTheValuesOfItsOwnNumber) {
  mMap.add("mInstalled3", 0, 504)->setIntValue(-1);
  add("mColumnTempSP3", 1.5);
  add("mColumnTemp3", 2.5);
  add("mPressSP3", 3.5);
  add("mPress3", 4.5);
  add("mInjTempSP3", 5.5);
  add("mInjTemp3", 6.5);
  add("mAutoZero3", 7.5);
  add("mDetState3", 0.0);
  add("mDetCalibrated3", 0.0);
  SecStatusAccess::addChannel(mMap, 3, mDocument);
  EXPECT_EQ(printed(), R"({
    "Channel3": {
        "Column_temp": {
            "Setpoint": 1.5,
            "Actual": 2.5
        },
        "Column_press": {
            "Setpoint": 3.5,
            "Actual": 4.5
        },
        "Injector_temp": {
            "Setpoint": 5.5,
            "Actual": 6.5
        },
        "TCD": {
            "Auto_zero": 7.5,
            "State": "On",
            "Calibrated": "OK"
        }
    }
}
)");
}

TEST_F(StatusPartsTest, DetectorThatIsOffAndNotCalibrated) {
  mMap.add("mInstalled4", 0, 505)->setIntValue(1);
  add("mDetState4", 1.0)->setIntValue(0);
  add("mDetCalibrated4", 1.0)->setIntValue(0);
  add("mAutoZero4", -std::numeric_limits<double>::infinity());
  SecStatusAccess::addChannel(mMap, 4, mDocument);
  EXPECT_EQ(printed(), R"({
    "Channel4": {
        "Column_temp": {
            "Setpoint": 0.0,
            "Actual": 0.0
        },
        "Column_press": {
            "Setpoint": 0.0,
            "Actual": 0.0
        },
        "Injector_temp": {
            "Setpoint": 0.0,
            "Actual": 0.0
        },
        "TCD": {
            "Auto_zero": "-",
            "State": "Off",
            "Calibrated": "X"
        }
    }
}
)");
}

TEST_F(StatusPartsTest, ChannelOfUnknownNamesIsZeroAndOff) {
  mMap.add("mInstalled2", 0, 503)->setIntValue(1);
  SecStatusAccess::addChannel(mMap, 2, mDocument);
  EXPECT_EQ(printed(), R"({
    "Channel2": {
        "Column_temp": {
            "Setpoint": 0.0,
            "Actual": 0.0
        },
        "Column_press": {
            "Setpoint": 0.0,
            "Actual": 0.0
        },
        "Injector_temp": {
            "Setpoint": 0.0,
            "Actual": 0.0
        },
        "TCD": {
            "Auto_zero": 0.0,
            "State": "Off",
            "Calibrated": "X"
        }
    }
}
)");
}
