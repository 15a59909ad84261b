// Scenario files: rejected in one line, or an instrument that works and can be saved.
#include <Status.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "Input.h"
#include "MemoryFile.h"
#include "Require.h"
#include "Simulation.h"

namespace simulator {

namespace {

std::string toText(const rapidjson::Document& aDocument) {
  rapidjson::StringBuffer buffer;
  rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
  require(aDocument.Accept(writer), "a snapshot has a JSON form");
  return {buffer.GetString(), buffer.GetSize()};
}

void requireReason(const std::string& aName, const std::string& aError) {
  require(aError.compare(0, aName.size() + 2, aName + ": ") == 0, "the reason names the file",
          aError);
  const std::string rest = aError.substr(aName.size() + 2);
  require(rest.find(": ") != std::string::npos && (rest[0] == '/' || rest[0] == '('),
          "the reason names a location", aError);
  require(aError.find('\n') == std::string::npos, "the reason is one line", aError);
}

/// In any state, a saved and reloaded instrument shows the same; only automation is lost.
void requireSavable(Instrument& instrument, double aNow) {
  rapidjson::Document saved;
  instrument.snapshot(aNow, saved);
  const std::string text = toText(saved);
  const MemoryFile file(text);
  Scenario scenario;
  std::string error;
  require(loadScenario(file.name(), scenario, error), "a snapshot is a scenario", error);
  Instrument loaded(scenario, 1);
  rapidjson::Document again;
  loaded.snapshot(0.0, again);
  if (saved["parameters"]["mAutoState"] == 0) {
    require(toText(again) == text, "a reloaded snapshot is the same", text);
  }
}

void play(Simulation& simulation) {
  Instrument& instrument = *simulation.instrument;
  std::vector<ParamList> records(3);
  records[0].ParmID = 102;
  records[1].ParmID = 2029;
  records[2].Channel = 1;
  records[2].ParmID = 300;
  for (const double seconds : {0.0, 0.5, 100.0, 1e4}) {
    requireSavable(instrument, seconds);
    require(instrument.read(seconds, records) == eSuccess, "an instrument says how it is");
    for (const std::uint32_t command : {16U, 0U, 35U}) {
      instrument.command(seconds, 0, command);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aOctets, std::size_t aSize) {
  Input input(aOctets, aSize);
  const MemoryFile file(input.rest());
  Simulation simulation;
  simulation.clock.pause();
  std::string error;
  if (!simulation.load(file.name(), error)) {
    require(simulation.instrument == nullptr && simulation.scenario.name.empty(),
            "a rejected scenario changes nothing");
    requireReason(file.name(), error);
    return 0;
  }
  play(simulation);
  return 0;
}

}  // namespace simulator
