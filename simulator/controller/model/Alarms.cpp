// Alarm conditions and events, and the rows that they trigger.
#include "Alarms.h"

#include <algorithm>
#include <iterator>

#include "StateCodes.h"

namespace simulator::model {

namespace {

constexpr double cLowestCabinetTemp = 0.0;
constexpr double cHighestCabinetTemp = 55.0;
constexpr double cLowestAmbientPressure = 80.0;
constexpr double cHighestAmbientPressure = 110.0;
constexpr int cEverySampleType = 4;
constexpr int cAnyAlarmGroup = 10;
constexpr int cEveryId = -1;

bool isInstrumentError(const Conditions& aConditions) {
  return contains(cErrorStates, aConditions.state);
}

/// Of any number: NaN lies outside.
bool isOutside(double aValue, double aLowest, double aHighest) {
  return !(aValue >= aLowest && aValue <= aHighest);
}

bool isCabinetTempOff(const Conditions& aConditions) {
  return isOutside(aConditions.cabinetTemp, cLowestCabinetTemp, cHighestCabinetTemp);
}

bool isAmbientPressureOff(const Conditions& aConditions) {
  return isOutside(aConditions.ambientPressure, cLowestAmbientPressure, cHighestAmbientPressure);
}

struct ConditionRow {
  int group;
  int id;
  bool (*holds)(const Conditions&);
};

constexpr ConditionRow cConditions[] = {
    {8, 1, &isInstrumentError},
    {8, 2, &isCabinetTempOff},
    {8, 3, &isAmbientPressureOff},
};

struct EventRow {
  eEvent event;
  int group;
  int id;  ///< cEveryId: whatever id an alarm row has
};

constexpr EventRow cEvents[] = {
    {eEvent::eVerificationFailed, 4, 1},
    {eEvent::eVerificationFailed, 11, cEveryId},
    {eEvent::eStartRefused, 12, cEveryId},
};

bool matches(int aGroup, int aId, int aRowGroup, int aRowId) {
  return aGroup == aRowGroup && (aId == cEveryId || aId == aRowId);
}

bool holds(const Conditions& aConditions, int aGroup, int aId) {
  return std::any_of(std::begin(cConditions), std::end(cConditions), [&](const ConditionRow& row) {
    return matches(row.group, row.id, aGroup, aId) && row.holds(aConditions);
  });
}

bool isEventOf(eEvent aEvent, int aGroup, int aId) {
  return std::any_of(std::begin(cEvents), std::end(cEvents), [&](const EventRow& row) {
    return row.event == aEvent && matches(row.group, row.id, aGroup, aId);
  });
}

}  // namespace

void Alarms::watch(const Conditions& aConditions, int aRunType) {
  trigger(aRunType, [&](int aGroup, int aId) { return holds(aConditions, aGroup, aId); });
}

void Alarms::signal(eEvent aEvent, int aRunType) {
  trigger(aRunType, [aEvent](int aGroup, int aId) { return isEventOf(aEvent, aGroup, aId); });
}

bool Alarms::isOn() const {
  if (mStored.of(eParam::eAlarmEnabled) == 0.0) {
    return false;
  }
  for (std::uint32_t step = 1; step <= mStored.stepsOf(eTable::eAlarms); ++step) {
    if (storedInt(eParam::eAlarmTriggered, step) != 0) {
      return true;
    }
  }
  return false;
}

void Alarms::reset() {
  for (std::uint32_t step = 1; step <= cAlarmRows; ++step) {
    mStored.set(0.0, eParam::eAlarmTriggered, 1, step);
  }
}

/// Triggers the rows that watch runs of a type and whose group and id a predicate picks; then,
/// if any row has triggered, those that watch for any alarm, of whatever type.
template <typename Predicate>
void Alarms::trigger(int aRunType, Predicate aPredicate) {
  if (mStored.of(eParam::eAlarmEnabled) == 0.0) {
    return;
  }
  const std::uint32_t rows = mStored.stepsOf(eTable::eAlarms);
  for (std::uint32_t step = 1; step <= rows; ++step) {
    if (isFor(step, aRunType) &&
        aPredicate(storedInt(eParam::eAlarmGroup, step), storedInt(eParam::eAlarmParam, step))) {
      mStored.set(1.0, eParam::eAlarmTriggered, 1, step);
    }
  }
  if (isOn()) {
    for (std::uint32_t step = 1; step <= rows; ++step) {
      if (storedInt(eParam::eAlarmGroup, step) == cAnyAlarmGroup) {
        mStored.set(1.0, eParam::eAlarmTriggered, 1, step);
      }
    }
  }
}

/// Whether a row watches runs of a type.
bool Alarms::isFor(std::uint32_t aStep, int aRunType) const {
  const int sampleType = storedInt(eParam::eAlarmOn, aStep);
  return storedInt(eParam::eAlarmOnAll, aStep) != 0 || sampleType == aRunType ||
         sampleType == cEverySampleType;
}

int Alarms::storedInt(eParam aParam, std::uint32_t aStep) const {
  return static_cast<int>(mStored.of(aParam, 1, aStep));
}

}  // namespace simulator::model
