// The command table.
#include "Commands.h"

#include <Status.h>

namespace model {

namespace {

struct CommandRow {
  std::uint32_t number;
  const char* name;
  void (Behaviour::*handler)();
  StateSet states;  ///< in which the instrument accepts it
};

constexpr CommandRow cCommands[] = {
    {0, "start run", &Behaviour::startRun, statesOf(eReady)},
    {1, "abort run", &Behaviour::abortRun, statesOf(eFlushing, eRunning)},
    {17, "stop automation", &Behaviour::stopAutomation, cAllStates & ~cErrorStates},
};

}  // namespace

std::uint32_t executeCommand(Behaviour& behaviour, std::uint32_t aCommand) {
  for (const CommandRow& row : cCommands) {
    if (row.number == aCommand) {
      if (!contains(row.states, behaviour.state())) {
        return eStateForbids;
      }
      (behaviour.*row.handler)();
      return eSuccess;
    }
  }
  return eCommandUnknown;
}

}  // namespace model
