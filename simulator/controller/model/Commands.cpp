// The command table.
#include "Commands.h"

#include <Status.h>

#include "Alarms.h"
#include "Sequence.h"

namespace model {

namespace {

struct CommandRow {
  std::uint32_t number;
  bool (*isAllowed)(const Behaviour&);
  void (*handler)(Behaviour&);
  bool isStart;  ///< that it is refused can set off an alarm
};

bool takesSettings(const Behaviour& aBehaviour) {
  return aBehaviour.takesSettings();
}

bool isAlways(const Behaviour& /*aBehaviour*/) {
  return true;
}

constexpr CommandRow cCommands[] = {
    {0, [](const Behaviour& b) { return b.canStartRun(); }, [](Behaviour& b) { b.startRun(); },
     true},
    {1, [](const Behaviour& b) { return b.isBusy(); }, [](Behaviour& b) { b.abortRun(); }, false},
    {16, [](const Behaviour& b) { return b.canStartAutomation(); },
     [](Behaviour& b) { b.startAutomation(); }, true},
    {17, [](const Behaviour& b) { return b.canStopAutomation(); },
     [](Behaviour& b) { b.stopAutomation(); }, false},
    {19, &canInsertLine, &insertLine, false},
    {22, &takesSettings, &clearSequence, false},
    {26, &takesSettings, &clearCalibration, false},
    {35, &isAlways, &resetAlarms, false},
};

}  // namespace

std::uint32_t executeCommand(Behaviour& behaviour, std::uint32_t aCommand) {
  for (const CommandRow& row : cCommands) {
    if (row.number != aCommand) {
      continue;
    }
    if (!row.isAllowed(behaviour)) {
      if (row.isStart) {
        signalEvent(behaviour, eEvent::eStartRefused,
                    static_cast<int>(behaviour.stored(eParam::eRunType)));
      }
      return eStateForbids;
    }
    row.handler(behaviour);
    return eSuccess;
  }
  return eCommandUnknown;
}

}  // namespace model
