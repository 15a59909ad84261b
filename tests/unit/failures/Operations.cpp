// The operations of the tool, and the instrument that they run against.
#include "Operations.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

#include "AceBlocks.h"
#include "AlarmRows.h"
#include "EverydayInstrument.h"
#include "FailureTable.h"
#include "TemporaryFile.h"

/// The program's main function.
int gcWebMain(int argc, char* argv[]);

namespace {

constexpr std::pair<const char*, eSections> cCodes[] = {
    {"live status", eStatusRead},
    {"configuration", eConfigRead},
    {"alarms", eAlarmRead},
    {"alarm reset", eAlarmReset},
    {"sequence report", eSequenceRead},
    {"sequence download", eSequenceWrite},
    {"calibration report", eCalibRead},
    {"calibration download", eCalibWrite},
    {"run single", eSingleRun},
    {"run calib", eCalibrationRun},
    {"run auto", eAutomationRun},
    {"abort now", eAbortRun},
    {"abort auto", eAbortRun},
    {"stream", eStreamWrite},
    {"solution", eSolutionLoad},
};

eSections codeOf(const std::string& aName) {
  const auto* row = std::find_if(std::begin(cCodes), std::end(cCodes),
                                 [&](const auto& code) { return aName == code.first; });
  return row == std::end(cCodes) ? NR_OF_SECTIONS : row->second;
}

std::string textOf(const rapidjson::Value& aValue) {
  rapidjson::StringBuffer text;
  rapidjson::Writer<rapidjson::StringBuffer> writer(text);
  aValue.Accept(writer);
  return text.GetString();
}

void setConfiguration(FakeInstrument& aInstrument) {
  setInteger(aInstrument, 0, 601, 120033);
  setInteger(aInstrument, 0, 525, 1);
  setInteger(aInstrument, 0, 524, 4);
  for (std::uint32_t channel = 1; channel <= 4; ++channel) {
    const auto number = static_cast<std::int32_t>(channel);
    setInteger(aInstrument, channel, 826, 210410 + number);
    setInteger(aInstrument, channel, 827, 7300 + number);
    setInteger(aInstrument, channel, 201, number % 3 + 1);
  }
  aInstrument.setTag(5, "gc-12");
  aInstrument.setColumns(6, {"first", "second", "third", "fourth"});
}

void setSequence(FakeInstrument& aInstrument) {
  setInteger(aInstrument, 0, 15, 3);
  setInteger(aInstrument, 0, 144, 2);
  for (std::uint32_t line = 1; line <= 2; ++line) {
    const auto number = static_cast<std::int32_t>(line);
    aInstrument.setStepValue(0, 23, line, {number, -77.5, 0});
    aInstrument.setStepValue(0, 24, line, {number + 10, -77.5, 0});
    aInstrument.setStepValue(0, 22, line, {number + 20, -77.5, 0});
    aInstrument.setStepValue(1, 1010, line, {number + 30, -77.5, 0});
    aInstrument.setStepValue(0, 26, line, {-77, number + 0.25, 0});
  }
}

void setPeaks(FakeInstrument& aInstrument) {
  aInstrument.setProgramInfo(1, 2, 0);
  for (std::uint32_t peak = 1; peak <= 2; ++peak) {
    const std::string name = peak == 1 ? "Methane" : "Ethane";
    for (std::uint32_t i = 0; i < 20; ++i) {
      aInstrument.setStepValue(1, 1176 + i, peak, {i < name.size() ? name[i] : 0, -77.5, 0});
    }
    aInstrument.setStepValue(1, 1196, peak, {-77, peak + 0.5, 0});
    aInstrument.setStepValue(1, 1230, peak, {-77, peak + 80.5, 0});
    aInstrument.setStepValue(1, 1242, peak, {-77, peak + 0.125, 0});
  }
}

}  // namespace

const std::vector<Operation>& operations() {
  static const std::vector<Operation> cOperations = [] {
    std::vector<Operation> all;
    for (const auto& [name, value] : operationTable().GetObject()) {
      Operation operation = {name.GetString(), codeOf(name.GetString()), {}, ""};
      for (const rapidjson::Value& word : value["arguments"].GetArray()) {
        operation.words.emplace_back(word.GetString());
      }
      if (value.HasMember("file")) {
        operation.file = textOf(value["file"]);
      }
      all.push_back(operation);
    }
    return all;
  }();
  return cOperations;
}

void setAnswers(FakeInstrument& aInstrument) {
  setEveryday(aInstrument);
  for (const std::uint32_t id : {70U, 173U, 2211U}) {
    setInteger(aInstrument, 0, id, 1);
  }
  // Only one channel has a run time, so that no other replaces it when it is missing.
  for (const std::uint32_t channel : {1U, 3U, 4U}) {
    setInteger(aInstrument, channel, 204, 0);
  }
  setConfiguration(aInstrument);
  setSequence(aInstrument);
  setPeaks(aInstrument);
  setAlarms(aInstrument, 1, 2);
  setAlarm(aInstrument, 1, {0, 1, 8, 2, 1});
  setAlarm(aInstrument, 2, {1, 0, 2, 3, 1});
  setComponent(aInstrument, 3, "2-Methylpentane, all");
}

Outcome run(const Operation& aOperation) {
  std::vector<std::string> words = aOperation.words;
  words.insert(words.begin(), "GC_Web");
  std::unique_ptr<TemporaryFile> file;
  if (!aOperation.file.empty()) {
    file = std::make_unique<TemporaryFile>(aOperation.file);
    words.emplace_back(file->name());
  }
  Arguments arguments(std::move(words));
  Outcome outcome;
  const AceBlocks blocks;
  outcome.output =
      capture([&] { outcome.status = gcWebMain(arguments.count(), arguments.words()); });
  outcome.aceBlocks = blocks.held();
  return outcome;
}
