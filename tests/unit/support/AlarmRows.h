// Alarms of a scripted instrument.
#pragma once

#include <cstdint>
#include <string>

#include "FakeInstrument.h"

/// The numbers of one alarm, as the instrument stores them.
struct AlarmNumbers {
  std::int32_t sampleType = 0;
  std::int32_t allTypes = 0;
  std::int32_t group = 0;
  std::int32_t parameter = 0;
  std::int32_t triggered = 0;
};

inline void setAlarms(FakeInstrument& aInstrument, std::int32_t aEnabled, std::int32_t aTotal) {
  aInstrument.setValue(0, 2028, {aEnabled, -77.5, 0});
  aInstrument.setValue(0, 2029, {aTotal, -77.5, 0});
}

/// Sets the alarm of a row, counted from 1.
inline void setAlarm(FakeInstrument& aInstrument, std::uint32_t aRow, const AlarmNumbers& aAlarm) {
  aInstrument.setStepValue(0, 2030, aRow, {aAlarm.sampleType, -77.5, 0});
  aInstrument.setStepValue(0, 2038, aRow, {aAlarm.allTypes, -77.5, 0});
  aInstrument.setStepValue(0, 2031, aRow, {aAlarm.group, -77.5, 0});
  aInstrument.setStepValue(0, 2032, aRow, {aAlarm.parameter, -77.5, 0});
  aInstrument.setStepValue(0, 2212, aRow, {aAlarm.triggered, -77.5, 0});
}

/// Sets the first characters of a component's name; the instrument stores character n on channel n.
inline void setComponent(FakeInstrument& aInstrument, std::uint32_t aIndex,
                         const std::string& aName) {
  std::uint32_t lChannel = 0;
  for (const char c : aName) {
    aInstrument.setStepValue(++lChannel, 2021, aIndex, {c, -77.5, 0});
  }
}
