// Alarm conditions and events, and the rows that they trigger.
#include "Alarms.h"

#include <algorithm>

namespace model {

namespace {

constexpr double cLowestCabinetTemp = 0.0;
constexpr double cHighestCabinetTemp = 55.0;
constexpr double cLowestAmbientPressure = 80.0;
constexpr double cHighestAmbientPressure = 110.0;
constexpr int cEverySampleType = 4;
constexpr int cAnyAlarmGroup = 10;
constexpr int cEveryId = -1;

bool isInstrumentError(const Behaviour& aBehaviour) {
  return contains(cErrorStates, aBehaviour.state());
}

/// Of any number: NaN lies outside.
bool isOutside(double aValue, double aLowest, double aHighest) {
  return !(aValue >= aLowest && aValue <= aHighest);
}

bool isCabinetTempOff(const Behaviour& aBehaviour) {
  return isOutside(aBehaviour.stored(eParam::eAmbientTemp), cLowestCabinetTemp,
                   cHighestCabinetTemp);
}

// The pressure itself, not a reading of it: near a limit, noise would trigger now and then.
bool isAmbientPressureOff(const Behaviour& aBehaviour) {
  return isOutside(aBehaviour.undisturbed(eParam::eAmbientPressure), cLowestAmbientPressure,
                   cHighestAmbientPressure);
}

struct ConditionRow {
  int group;
  int id;
  bool (*holds)(const Behaviour&);
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

bool holds(const Behaviour& aBehaviour, int aGroup, int aId) {
  return std::any_of(std::begin(cConditions), std::end(cConditions), [&](const ConditionRow& row) {
    return matches(row.group, row.id, aGroup, aId) && row.holds(aBehaviour);
  });
}

bool isEventOf(eEvent aEvent, int aGroup, int aId) {
  return std::any_of(std::begin(cEvents), std::end(cEvents), [&](const EventRow& row) {
    return row.event == aEvent && matches(row.group, row.id, aGroup, aId);
  });
}

int storedInt(const Behaviour& aBehaviour, eParam aParam, std::uint32_t aStep) {
  return static_cast<int>(aBehaviour.stored(aParam, 1, aStep));
}

bool isTriggered(const Behaviour& aBehaviour, std::uint32_t aStep) {
  return storedInt(aBehaviour, eParam::eAlarmTriggered, aStep) != 0;
}

/// Whether a row watches runs of a type.
bool isFor(const Behaviour& aBehaviour, std::uint32_t aStep, int aRunType) {
  const int sampleType = storedInt(aBehaviour, eParam::eAlarmOn, aStep);
  return storedInt(aBehaviour, eParam::eAlarmOnAll, aStep) != 0 || sampleType == aRunType ||
         sampleType == cEverySampleType;
}

/// Triggers the rows that watch runs of a type and whose group and id a predicate picks; then,
/// if any row has triggered, those that watch for any alarm, of whatever type.
template <typename Predicate>
void trigger(Behaviour& behaviour, int aRunType, Predicate aPredicate) {
  if (behaviour.stored(eParam::eAlarmEnabled) == 0.0) {
    return;
  }
  const std::uint32_t rows = behaviour.stepsOf(eTable::eAlarms);
  for (std::uint32_t step = 1; step <= rows; ++step) {
    if (isFor(behaviour, step, aRunType) &&
        aPredicate(storedInt(behaviour, eParam::eAlarmGroup, step),
                   storedInt(behaviour, eParam::eAlarmParam, step))) {
      behaviour.store(1.0, eParam::eAlarmTriggered, 1, step);
    }
  }
  if (isAlarmOn(behaviour)) {
    for (std::uint32_t step = 1; step <= rows; ++step) {
      if (storedInt(behaviour, eParam::eAlarmGroup, step) == cAnyAlarmGroup) {
        behaviour.store(1.0, eParam::eAlarmTriggered, 1, step);
      }
    }
  }
}

}  // namespace

void watchConditions(Behaviour& behaviour, int aRunType) {
  trigger(behaviour, aRunType, [&](int aGroup, int aId) { return holds(behaviour, aGroup, aId); });
}

void signalEvent(Behaviour& behaviour, eEvent aEvent, int aRunType) {
  trigger(behaviour, aRunType,
          [aEvent](int aGroup, int aId) { return isEventOf(aEvent, aGroup, aId); });
}

bool isAlarmOn(const Behaviour& aBehaviour) {
  if (aBehaviour.stored(eParam::eAlarmEnabled) == 0.0) {
    return false;
  }
  for (std::uint32_t step = 1; step <= aBehaviour.stepsOf(eTable::eAlarms); ++step) {
    if (isTriggered(aBehaviour, step)) {
      return true;
    }
  }
  return false;
}

void resetAlarms(Behaviour& behaviour) {
  for (std::uint32_t step = 1; step <= cAlarmRows; ++step) {
    behaviour.store(0.0, eParam::eAlarmTriggered, 1, step);
  }
  behaviour.release(eParam::eAlarmOverall);
  behaviour.watchAlarms();
}

}  // namespace model
