// The command table.
#include "Commands.h"

#include <Status.h>

#include "Tables.h"

namespace simulator::model {

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
    {0, [](const Behaviour& b) { return b.runs().canStart(); },
     [](Behaviour& b) { b.runs().start(); }, true},
    {1, [](const Behaviour& b) { return b.runs().isBusy(); },
     [](Behaviour& b) { b.runs().abort(); }, false},
    {16, [](const Behaviour& b) { return b.runs().canStartAutomation(); },
     [](Behaviour& b) { b.runs().startAutomation(); }, true},
    {17, [](const Behaviour& b) { return b.runs().canStopAutomation(); },
     [](Behaviour& b) { b.runs().stopAutomation(); }, false},
    {19, [](const Behaviour& b) { return b.takesSettings() && canInsertLine(b.stored()); },
     [](Behaviour& b) { insertLine(b.stored()); }, false},
    {22, &takesSettings, [](Behaviour& b) { clearSequence(b.stored()); }, false},
    {26, &takesSettings, [](Behaviour& b) { clearCalibration(b.stored()); }, false},
    {35, &isAlways, [](Behaviour& b) { b.resetAlarms(); }, false},
};

}  // namespace

std::uint32_t executeCommand(Behaviour& behaviour, std::uint32_t aCommand) {
  for (const CommandRow& row : cCommands) {
    if (row.number != aCommand) {
      continue;
    }
    if (!row.isAllowed(behaviour)) {
      if (row.isStart) {
        behaviour.refuseStart();
      }
      return eStateForbids;
    }
    row.handler(behaviour);
    return eSuccess;
  }
  return eCommandUnknown;
}

}  // namespace simulator::model
