// An everyday instrument, two of four channels installed, in the middle of a sequence, with the
// status document it must produce.
#pragma once

#include "FakeInstrument.h"

/// A parameter that is read as an integer: its real value differs, so that a mix-up is seen.
inline void setInteger(FakeInstrument& aInstrument, std::uint32_t aChannel, std::uint32_t aId,
                       std::int32_t aValue) {
  aInstrument.setValue(aChannel, aId, {aValue, -7777.5, 0});
}

/// A parameter that is read as a real: its integer value differs, so that a mix-up is seen.
inline void setReal(FakeInstrument& aInstrument, std::uint32_t aChannel, std::uint32_t aId,
                    double aValue) {
  aInstrument.setValue(aChannel, aId, {-7777, aValue, 0});
}

inline void setEveryday(FakeInstrument& aInstrument) {
  struct IntegerRow {
    std::uint32_t channel;
    std::uint32_t id;
    std::int32_t value;
  };
  struct RealRow {
    std::uint32_t channel;
    std::uint32_t id;
    double value;
  };
  // Values are unique where possible, so that a mix-up is seen.
  constexpr IntegerRow cIntegers[] = {
      {0, 502, 1},   {0, 503, 1},   {0, 504, 0},   {0, 505, 0},    // installed
      {1, 200, 801}, {2, 200, 802}, {3, 200, 803}, {4, 200, 804},  // not shown
      {1, 204, 180}, {2, 204, 240}, {3, 204, 120}, {4, 204, 90},   // run time
      {1, 215, 1},   {2, 215, 0},   {3, 215, 1},   {4, 215, 1},    // detector state
      {1, 323, 0},   {2, 323, 1},   {3, 323, 1},   {4, 323, 1},    // detector calibrated
      {0, 602, 1},   {0, 103, 23},  {0, 70, 0},    {0, 138, 2},   {0, 131, 1},    {0, 102, 2},
      {0, 58, 3},    {0, 132, 17},  {0, 161, 37},  {0, 96, 8},    {0, 2202, 412}, {0, 12, 1},
      {0, 136, 5},   {0, 137, 6},   {0, 135, 7},   {0, 141, 1},   {0, 2211, 0},   {0, 173, 0},
  };
  constexpr RealRow cReals[] = {
      {1, 300, 60.1},   {2, 300, 80.2},    {3, 300, 70.3},    {4, 300, 70.4},   // column
      {1, 302, 100.1},  {2, 302, 110.2},   {3, 302, 90.3},    {4, 302, 90.4},   // injector
      {1, 304, 150.25}, {2, 304, 200.125}, {3, 304, 175.3},   {4, 304, 175.4},  // pressure
      {1, 202, 60.0},   {2, 202, 80.0},    {3, 202, 70.0},    {4, 202, 71.0},    {1, 203, 100.0},
      {2, 203, 110.0},  {3, 203, 90.0},    {4, 203, 91.0},    {1, 342, 150.0},   {2, 342, 200.0},
      {3, 342, 175.0},  {4, 342, 176.0},   {1, 307, -12.5},   {2, 307, 1024.75}, {3, 307, 3.0},
      {4, 307, 4.0},  // auto-zero
      {0, 100, 49.875}, {0, 1, 50.0},      {0, 104, 101.325}, {0, 134, 0.5},     {0, 162, 1.5},
  };
  for (const IntegerRow& row : cIntegers) {
    setInteger(aInstrument, row.channel, row.id, row.value);
  }
  for (const RealRow& row : cReals) {
    setReal(aInstrument, row.channel, row.id, row.value);
  }
  aInstrument.setTag(2, "Site 12");
  aInstrument.setTag(4, "Natural gas");
  aInstrument.setErrorText(17, "Carrier pressure low");
}

constexpr const char* cEverydayStatus = R"({
    "GC_time": "5-3-2024 07:04:09",
    "Application": "Natural gas",
    "Host": "online",
    "Total_run_time": 240,
    "Run_time": 37,
    "Error_code": 17,
    "Error_str": "Carrier pressure low",
    "Alarm_overall": false,
    "Curr_stream": 3,
    "Last_counter": 412,
    "Continuous": true,
    "Seq_line": 5,
    "Line_replicate": 6,
    "Seq_replicate": 7,
    "Run_type": "Calibration",
    "GC_state": "Running 37s",
    "Ext_ready_in": "Ready",
    "Auto_state": "Run Delay 90s",
    "Service_switch": "Off",
    "Ambient_press": 101.325,
    "Ambient_temp": 23,
    "Sample_line_temp": {
        "Setpoint": 50.0,
        "Actual": 49.875
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
    "Channel2": {
        "Column_temp": {
            "Setpoint": 80.0,
            "Actual": 80.2
        },
        "Column_press": {
            "Setpoint": 200.0,
            "Actual": 200.125
        },
        "Injector_temp": {
            "Setpoint": 110.0,
            "Actual": 110.2
        },
        "TCD": {
            "Auto_zero": 1024.75,
            "State": "Off",
            "Calibrated": "OK"
        }
    }
}
)";
