// The status report: one batch, one object, one clock query, one document.
#include "SecStatus.h"

#include <ErrorText.h>
#include <PlatformLayer.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

#include "CodeText.h"
#include "FetchObject.h"
#include "ParameterTable.h"
#include "RunType.h"

namespace {

constexpr std::size_t cTextSize = 128;

// The instrument's parameter table, in registration order.
constexpr ParameterRow cStatusParameters[] = {
    // Fitted parts. The four installed flags belong to the instrument, not to the channels.
    {502, "mInstalled", 0, eSpan::eById},
    {200, "mColumnHeader", 1, eSpan::eByChannel},
    {602, "mHeatedSampleLineInstalled"},
    // Channels.
    {300, "mColumnTemp", 1, eSpan::eByChannel},
    {302, "mInjTemp", 1, eSpan::eByChannel},
    {304, "mPress", 1, eSpan::eByChannel},
    {202, "mColumnTempSP", 1, eSpan::eByChannel},
    {203, "mInjTempSP", 1, eSpan::eByChannel},
    {342, "mPressSP", 1, eSpan::eByChannel},
    {204, "mRunTimeSP", 1, eSpan::eByChannel},
    {307, "mAutoZero", 1, eSpan::eByChannel},
    {215, "mDetState", 1, eSpan::eByChannel},
    {323, "mDetCalibrated", 1, eSpan::eByChannel},
    // Instrument.
    {100, "mSampleLineTemp"},
    {1, "mSampleLineTempSP"},
    {103, "mAmbientTemp"},
    {104, "mAmbientPressure"},
    {70, "mServiceSwitch"},
    {138, "mAutoState"},
    {131, "mExtReady"},
    {102, "mGC_State"},
    {58, "mCurrentStream"},
    {132, "mGC_Error_Status"},
    {161, "mGC_CurRunTime"},
    {134, "mGC_FlushingStream"},
    {162, "mGC_WaitingBetweenRuns"},
    {96, "mGC_CleaningTimeLeft"},
    {2202, "mAnalysisCounter"},
    {12, "mContinuous"},
    {136, "mSeq_line"},
    {137, "mLine_replicate"},
    {135, "mSeq_replicate"},
    {141, "mRunType"},
    {2211, "mAlarmOverall"},
    {173, "mHasController"},
};
static_assert(countParameters(cStatusParameters) == 71, "48 channel and 23 instrument parameters");

// Instrument state codes (parameter 102). Running carries a live count when there is one, cleaning
// always does.
constexpr CodeText cStates[] = {
    {0, "Initializing"}, {1, "Flushing"},     {2, "Running"},           {3, "Stabilizing"},
    {4, "Ready"},        {5, "Error"},        {6, "Recoverable Error"}, {7, "Unrecoverable Error"},
    {8, "Not Ready"},    {9, "Wait Ext Rdy"}, {10, "Cleaning"},
};
static_assert(isIndexedByCode(cStates));
constexpr int cStateRunning = 2;
constexpr int cStateCleaning = 10;

// Automation state codes (parameter 138). Two of them carry a live count when there is one.
constexpr CodeText cAutoStates[] = {
    {0, "Idle"},
    {1, "Running - Single Run"},
    {2, "Running Sequence"},
    {3, "Running Calibration"},
    {4, "Running Verification"},
    {5, "Recalculating"},
    {6, "Flushing Stream"},
};
static_assert(isIndexedByCode(cAutoStates));
constexpr int cAutoStateSequence = 2;
constexpr int cAutoStateFlushing = 6;

constexpr char cUnknown[] = "Unknown";

/// Truncates toward zero. A value out of range becomes the nearest int: the instrument may send any
/// double, and converting one out of range is undefined behaviour. Not for NaN.
int truncateToInt(double value) {
  constexpr double cLowest = std::numeric_limits<int>::min();
  constexpr double cHighest = std::numeric_limits<int>::max();
  return static_cast<int>(std::clamp(value, cLowest, cHighest));
}

void copyText(char* buffer, const char* text) {
  std::snprintf(buffer, cTextSize, "%s", text);
}

Value::StringRefType choose(bool flag, const char* set, const char* clear) {
  return Value::StringRefType(flag ? set : clear);
}

/// The controller's clock, as "5-3-2024 07:04:09": day first, the date without leading zeros.
void formatClock(char* buffer) {
  unsigned int hour = 0;
  unsigned int minute = 0;
  unsigned int second = 0;
  unsigned int day = 0;
  unsigned int month = 0;
  unsigned int year = 0;
  plxGetTime(&hour, &minute, &second, &day, &month, &year, nullptr);
  std::snprintf(buffer, cTextSize, "%d-%d-%d %02d:%02d:%02d", static_cast<int>(day),
                static_cast<int>(month), static_cast<int>(year), static_cast<int>(hour),
                static_cast<int>(minute), static_cast<int>(second));
}

}  // namespace

void SecStatus::init(ParameterMap* aMap, unsigned long handle) {
  mMap = aMap;
  mHandle = handle;
  registerParameters(*aMap, cStatusParameters);
}

int SecStatus::readGC() {
  const ParameterMap& aMap = *mMap;
  const unsigned int ulResult = readParams(aMap, mHandle);
  if (!hasArrived(ulResult)) {
    return static_cast<int>(ulResult);
  }

  Document document;
  document.SetObject();
  AllocatorType& al = document.GetAllocator();
  const auto addInt = [&](const Value::StringRefType& key, const char* name) {
    document.AddMember(key, getIntValue(aMap, name, 0), al);
  };

  char buffer[cTextSize] = "";
  formatClock(buffer);
  addText(document, "GC_time", buffer, al);
  ACE_CString application;
  GetInstrumentApplication(application);
  addText(document, "Application", application.c_str(), al);
  document.AddMember("Host", choose(isSet(aMap, "mHasController"), "monitoring", "online"), al);
  document.AddMember("Total_run_time", GetMaxRunTime(aMap), al);
  addInt("Run_time", "mGC_CurRunTime");

  const int errorCode = getIntValue(aMap, "mGC_Error_Status", -1);
  document.AddMember("Error_code", errorCode, al);
  if (errorCode < 0) {
    document.AddMember("Error_str", "", al);
  } else {
    getErrorText(errorCode, buffer);
    buffer[cTextSize - 1] = '\0';
    addText(document, "Error_str", buffer, al);
  }

  document.AddMember("Alarm_overall", isSet(aMap, "mAlarmOverall"), al);
  addInt("Curr_stream", "mCurrentStream");
  addInt("Last_counter", "mAnalysisCounter");
  document.AddMember("Continuous", isSet(aMap, "mContinuous"), al);
  addInt("Seq_line", "mSeq_line");
  addInt("Line_replicate", "mLine_replicate");
  addInt("Seq_replicate", "mSeq_replicate");
  printRun_Type(getIntValue(aMap, "mRunType", 0), buffer, aMap);
  addText(document, "Run_type", buffer, al);
  printGC_State(getIntValue(aMap, "mGC_State", 0), buffer, aMap);
  addText(document, "GC_state", buffer, al);
  document.AddMember("Ext_ready_in", choose(isSet(aMap, "mExtReady"), "Ready", "Not Ready"), al);
  printAutoState(getIntValue(aMap, "mAutoState", 0), buffer, aMap);
  addText(document, "Auto_state", buffer, al);
  document.AddMember("Service_switch", choose(isSet(aMap, "mServiceSwitch"), "On", "Off"), al);
  addReal(document, "Ambient_press", getRealValue(aMap, "mAmbientPressure", 0.0), al);
  addInt("Ambient_temp", "mAmbientTemp");

  if (isSet(aMap, "mHeatedSampleLineInstalled")) {
    AddSetpointAndActual(aMap, "Sample_line_temp", "mSampleLineTempSP", "mSampleLineTemp", document,
                         al);
  } else {
    AddEmptySetpointAndActual("Sample_line_temp", document, al);
  }
  for (int n = 1; n <= cChannels; ++n) {
    AddChannel(aMap, n, document, al);
  }
  printDocument(document);
  return 0;
}

int SecStatus::GetMaxRunTime(const ParameterMap& aMap) {
  int longest = 0;
  for (int n = 1; n <= cChannels; ++n) {
    longest = std::max(longest, getIntValue(aMap, ChannelName("mRunTimeSP", n), 0));
  }
  return longest;
}

void SecStatus::GetInstrumentApplication(ACE_CString& aTagName) const {
  fetchText(mHandle, eInstrumentApplication, aTagName);
}

void SecStatus::AddSetpointAndActual(const ParameterMap& aMap, const char* name,
                                     const char* set_key, const char* act_key, Value& parent,
                                     AllocatorType& al) {
  Value pair(rapidjson::kObjectType);
  addReal(pair, "Setpoint", getRealValue(aMap, set_key, 0.0), al);
  addReal(pair, "Actual", getRealValue(aMap, act_key, 0.0), al);
  parent.AddMember(Value(name, al), pair, al);
}

void SecStatus::AddEmptySetpointAndActual(const char* name, Value& parent, AllocatorType& al) {
  Value pair(rapidjson::kObjectType);
  pair.AddMember("Setpoint", "-", al);
  pair.AddMember("Actual", "-", al);
  parent.AddMember(Value(name, al), pair, al);
}

void SecStatus::AddChannel(const ParameterMap& aMap, int channel, Value& parent,
                           AllocatorType& al) {
  if (!isSet(aMap, ChannelName("mInstalled", channel))) {
    return;
  }
  const auto addPair = [&](Value& object, const char* name, const char* set, const char* actual) {
    AddSetpointAndActual(aMap, name, ChannelName(set, channel), ChannelName(actual, channel),
                         object, al);
  };
  Value object(rapidjson::kObjectType);
  addPair(object, "Column_temp", "mColumnTempSP", "mColumnTemp");
  addPair(object, "Column_press", "mPressSP", "mPress");
  addPair(object, "Injector_temp", "mInjTempSP", "mInjTemp");

  Value detector(rapidjson::kObjectType);
  addReal(detector, "Auto_zero", getRealValue(aMap, ChannelName("mAutoZero", channel), 0.0), al);
  detector.AddMember("State", choose(isSet(aMap, ChannelName("mDetState", channel)), "On", "Off"),
                     al);
  detector.AddMember("Calibrated",
                     choose(isSet(aMap, ChannelName("mDetCalibrated", channel)), "OK", "X"), al);
  object.AddMember("TCD", detector, al);

  parent.AddMember(Value(ChannelName("Channel", channel).text(), al), object, al);
}

void SecStatus::printGC_State(int aValue, char* mGC_State, const ParameterMap& aMap) {
  const int runTime = getIntValue(aMap, "mGC_CurRunTime", 0);
  if (aValue == cStateRunning && runTime != 0) {
    std::snprintf(mGC_State, cTextSize, "Running %ds", runTime);
  } else if (aValue == cStateCleaning) {
    std::snprintf(mGC_State, cTextSize, "Cleaning %d min",
                  getIntValue(aMap, "mGC_CleaningTimeLeft", 0));
  } else {
    copyText(mGC_State, textOfCode(cStates, aValue, cUnknown));
  }
}

void SecStatus::printAutoState(int aValue, char* mAutoState, const ParameterMap& aMap) {
  const double delay = getRealValue(aMap, "mGC_WaitingBetweenRuns", 0.0);
  const double flushing = getRealValue(aMap, "mGC_FlushingStream", 0.0);
  // Both counts are in minutes. Kept odd: the delay is shown to the second, the flushing time in
  // whole minutes, converted to seconds.
  if (aValue == cAutoStateSequence && delay > 0.0) {
    std::snprintf(mAutoState, cTextSize, "Run Delay %ds", truncateToInt(delay * 60.0));
  } else if (aValue == cAutoStateFlushing && flushing > 0.0) {
    std::snprintf(mAutoState, cTextSize, "Flushing Stream %ds",
                  truncateToInt(std::trunc(flushing) * 60.0));
  } else {
    copyText(mAutoState, textOfCode(cAutoStates, aValue, cUnknown));
  }
}

void SecStatus::printRun_Type(int aValue, char* sRun_type, const ParameterMap& /*aMap*/) {
  copyText(sRun_type, runTypeText(aValue));
}
