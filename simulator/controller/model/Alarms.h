// The alarm rows: what they watch, and when they trigger.
#pragma once

#include "Behaviour.h"

namespace model {

/// What happens in a moment and can set off alarms.
enum class eEvent { eVerificationFailed, eStartRefused };

/// Triggers each row whose condition holds and whose sample type is `aRunType`. A row that has
/// triggered stays so until it is reset.
void watchConditions(Behaviour& behaviour, int aRunType);

/// Triggers each row that watches for an event and whose sample type is `aRunType`.
void signalEvent(Behaviour& behaviour, eEvent aEvent, int aRunType);

/// Whether any alarm is on.
bool isAlarmOn(const Behaviour& aBehaviour);

/// Takes all rows back; one whose condition still holds triggers again at once.
void resetAlarms(Behaviour& behaviour);

}  // namespace model
