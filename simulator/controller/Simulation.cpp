// A scenario replaces the instrument and its faults, or nothing.
#include "Simulation.h"

#include <utility>

namespace simulator {

bool Simulation::load(const std::string& aNameOrPath, std::string& error) {
  Scenario loaded;
  if (!loadScenario(aNameOrPath, loaded, error)) {
    return false;
  }
  FaultList loadedFaults;
  const auto list = loaded.document.FindMember("faults");
  if (list != loaded.document.MemberEnd()) {
    for (rapidjson::SizeType n = 0; n < list->value.Size(); ++n) {
      if (!loadedFaults.add(list->value[n], error)) {
        error.insert(0, aNameOrPath + ": /faults/" + std::to_string(n));
        return false;
      }
    }
  }
  scenario = std::move(loaded);
  instrument = std::make_unique<Instrument>(scenario, seed);
  faults = std::move(loadedFaults);
  clock.reset();
  return true;
}

}  // namespace simulator
