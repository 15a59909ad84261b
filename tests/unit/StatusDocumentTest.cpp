// Whole status documents, byte for byte, of realistic instruments.
#include <gtest/gtest.h>

#include <limits>

#include "Capture.h"
#include "EverydayInstrument.h"
#include "FakeInstrument.h"
#include "SecStatus.h"
#include "TestMap.h"

namespace {
class StatusDocumentTest : public testing::Test {
 protected:
  /// The document of the instrument in its present state.
  std::string document() {
    TestMap lMap;
    SecStatus lSection;
    lSection.init(&lMap, FakeInstrument::cHandle);
    const Output lOutput = capture([&] { EXPECT_EQ(lSection.readGC(), 0); });
    EXPECT_EQ(lOutput.err, "");
    return lOutput.out;
  }

  FakeInstrument mInstrument;
};

// The document of an instrument without any values.
constexpr const char* cBareStatus = R"({
    "GC_time": "5-3-2024 07:04:09",
    "Application": "",
    "Host": "online",
    "Total_run_time": 0,
    "Run_time": 0,
    "Error_code": 0,
    "Error_str": "text of error 0",
    "Alarm_overall": false,
    "Curr_stream": 0,
    "Last_counter": 0,
    "Continuous": false,
    "Seq_line": 0,
    "Line_replicate": 0,
    "Seq_replicate": 0,
    "Run_type": "Analysis",
    "GC_state": "Initializing",
    "Ext_ready_in": "Not Ready",
    "Auto_state": "Idle",
    "Service_switch": "Off",
    "Ambient_press": 0.0,
    "Ambient_temp": 0,
    "Sample_line_temp": {
        "Setpoint": "-",
        "Actual": "-"
    }
}
)";
}  // namespace

TEST_F(StatusDocumentTest, Everyday) {
  setEveryday(mInstrument);
  EXPECT_EQ(document(), cEverydayStatus);
}

TEST_F(StatusDocumentTest, NothingAnswered) {
  mInstrument.setStatus(eFunction::eReadParamList, 28);
  EXPECT_EQ(document(), cBareStatus);
}

TEST_F(StatusDocumentTest, AllValuesZero) {
  for (std::uint32_t channel = 0; channel <= 4; ++channel) {
    for (std::uint32_t id = 0; id <= 3000; ++id) {
      mInstrument.setValue(channel, id, {0, 0.0, 0});
    }
  }
  EXPECT_EQ(document(), cBareStatus);
}

TEST_F(StatusDocumentTest, IncompleteBatchShowsAllThatArrived) {
  setEveryday(mInstrument);
  mInstrument.setStatus(eFunction::eReadParamList, 28);
  EXPECT_EQ(document(), cEverydayStatus);
}

// Channels 1 and 3, no heated line; every flag and code differs from the everyday instrument's.
TEST_F(StatusDocumentTest, ChannelsOneAndThree) {
  setEveryday(mInstrument);
  setInteger(mInstrument, 0, 503, 0);
  setInteger(mInstrument, 0, 504, 5);
  setInteger(mInstrument, 0, 602, 0);
  setInteger(mInstrument, 0, 173, 2);
  setInteger(mInstrument, 0, 2211, -1);
  setInteger(mInstrument, 0, 12, 0);
  setInteger(mInstrument, 0, 131, 0);
  setInteger(mInstrument, 0, 70, 4);
  setInteger(mInstrument, 0, 141, 3);
  setInteger(mInstrument, 0, 102, 10);
  setInteger(mInstrument, 0, 138, 6);
  setReal(mInstrument, 0, 134, 2.9);
  setInteger(mInstrument, 4, 204, 900);
  setInteger(mInstrument, 0, 132, -1);
  setInteger(mInstrument, 0, 103, -40);
  mInstrument.clock = {23, 59, 0, 31, 12, 1999};
  EXPECT_EQ(document(), R"({
    "GC_time": "31-12-1999 23:59:00",
    "Application": "Natural gas",
    "Host": "monitoring",
    "Total_run_time": 900,
    "Run_time": 37,
    "Error_code": -1,
    "Error_str": "",
    "Alarm_overall": true,
    "Curr_stream": 3,
    "Last_counter": 412,
    "Continuous": false,
    "Seq_line": 5,
    "Line_replicate": 6,
    "Seq_replicate": 7,
    "Run_type": "Verification",
    "GC_state": "Cleaning 8 min",
    "Ext_ready_in": "Not Ready",
    "Auto_state": "Flushing Stream 120s",
    "Service_switch": "On",
    "Ambient_press": 101.325,
    "Ambient_temp": -40,
    "Sample_line_temp": {
        "Setpoint": "-",
        "Actual": "-"
    },
    "Channel1": {
        "Column_temp": {
            "Setpoint": 60.0,
            "Actual": 60.1
        },
        "Column_press": {
            "Setpoint": 150.0,
            "Actual": 150.25
        },
        "Injector_temp": {
            "Setpoint": 100.0,
            "Actual": 100.1
        },
        "TCD": {
            "Auto_zero": -12.5,
            "State": "On",
            "Calibrated": "X"
        }
    },
    "Channel3": {
        "Column_temp": {
            "Setpoint": 70.0,
            "Actual": 70.3
        },
        "Column_press": {
            "Setpoint": 175.0,
            "Actual": 175.3
        },
        "Injector_temp": {
            "Setpoint": 90.0,
            "Actual": 90.3
        },
        "TCD": {
            "Auto_zero": 3.0,
            "State": "On",
            "Calibrated": "OK"
        }
    }
}
)");
}

// Channels 2 and 4 with extreme values, and a heated line whose setpoint is NaN.
TEST_F(StatusDocumentTest, Extremes) {
  constexpr double cNaN = std::numeric_limits<double>::quiet_NaN();
  constexpr double cInfinity = std::numeric_limits<double>::infinity();
  constexpr std::int32_t cMost = std::numeric_limits<std::int32_t>::max();
  constexpr std::int32_t cLeast = std::numeric_limits<std::int32_t>::min();
  for (const std::uint32_t id : {503U, 505U, 602U, 173U, 2211U, 12U, 131U, 70U}) {
    setInteger(mInstrument, 0, id, cLeast);
  }
  for (const std::uint32_t id : {161U, 58U, 2202U, 136U, 141U, 138U}) {
    setInteger(mInstrument, 0, id, cMost);
  }
  for (const std::uint32_t id : {137U, 135U, 102U, 103U, 132U}) {
    setInteger(mInstrument, 0, id, cLeast);
  }
  setReal(mInstrument, 0, 104, -cInfinity);
  setReal(mInstrument, 0, 1, cNaN);
  setReal(mInstrument, 0, 100, -17.5);
  setInteger(mInstrument, 2, 204, cMost);
  setReal(mInstrument, 2, 202, cNaN);
  setReal(mInstrument, 2, 300, 1e300);
  setReal(mInstrument, 2, 342, 5e-324);
  setReal(mInstrument, 2, 304, -0.0);
  setReal(mInstrument, 2, 203, -cInfinity);
  setReal(mInstrument, 2, 302, 0.1);
  setReal(mInstrument, 2, 307, cNaN);
  setInteger(mInstrument, 4, 215, cLeast);
  setInteger(mInstrument, 4, 323, cMost);
  mInstrument.clock = {0, 0, 0, 0, 0, 0};
  EXPECT_EQ(document(), R"({
    "GC_time": "0-0-0 00:00:00",
    "Application": "",
    "Host": "monitoring",
    "Total_run_time": 2147483647,
    "Run_time": 2147483647,
    "Error_code": -2147483648,
    "Error_str": "",
    "Alarm_overall": true,
    "Curr_stream": 2147483647,
    "Last_counter": 2147483647,
    "Continuous": true,
    "Seq_line": 2147483647,
    "Line_replicate": -2147483648,
    "Seq_replicate": -2147483648,
    "Run_type": "None",
    "GC_state": "Unknown",
    "Ext_ready_in": "Ready",
    "Auto_state": "Unknown",
    "Service_switch": "On",
    "Ambient_press": "-",
    "Ambient_temp": -2147483648,
    "Sample_line_temp": {
        "Setpoint": "-",
        "Actual": -17.5
    },
    "Channel2": {
        "Column_temp": {
            "Setpoint": "-",
            "Actual": 1e300
        },
        "Column_press": {
            "Setpoint": 5e-324,
            "Actual": -0.0
        },
        "Injector_temp": {
            "Setpoint": "-",
            "Actual": 0.1
        },
        "TCD": {
            "Auto_zero": "-",
            "State": "Off",
            "Calibrated": "X"
        }
    },
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
            "Auto_zero": 0.0,
            "State": "On",
            "Calibrated": "OK"
        }
    }
}
)");
}
