// The operations of the tool, and the instrument that they run against.
#include "Operations.h"

#include <memory>

#include "AceBlocks.h"
#include "AlarmRows.h"
#include "EverydayInstrument.h"
#include "TemporaryFile.h"

/// The program's main function.
int gcWebMain(int argc, char* argv[]);

namespace {

constexpr const char* cSequenceFile =
    R"({"Table_repeat": 4, "Continuous": true, "total": 3, "rows": [
  {"Type": "Blank", "Repeat": 2, "Stream": 5, "Slot": 1, "Flush_time": 0.5},
  {"Type": "Analysis", "Repeat": 3, "Stream": 6, "Slot": 2, "Flush_time": 1.5},
  {"Type": "Analysis", "Repeat": 4, "Stream": 7, "Slot": 3, "Flush_time": 2.5}]})";
constexpr const char* cCalibrationFile = R"({"total": 3, "rows": [
  {"Channel": 1, "ID": 2, "Level_amt": 84.95},
  {"Channel": 2, "ID": 7, "Level_amt": 2.5},
  {"Channel": 1, "ID": 3, "Level_amt": 1}]})";

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
  static const std::vector<Operation> cOperations = {
      {"live status", eStatusRead, {"-t"}, nullptr},
      {"configuration", eConfigRead, {"-g"}, nullptr},
      {"alarms", eAlarmRead, {"-a"}, nullptr},
      {"alarm reset", eAlarmReset, {"-P"}, nullptr},
      {"sequence report", eSequenceRead, {"-q"}, nullptr},
      {"sequence download", eSequenceWrite, {"-Q"}, cSequenceFile},
      {"calibration report", eCalibRead, {"-c"}, nullptr},
      {"calibration download", eCalibWrite, {"-C"}, cCalibrationFile},
      {"run single", eSingleRun, {"-R", "single", "-v", "3"}, nullptr},
      {"run calib", eCalibrationRun, {"-R", "calib", "-v", "3"}, nullptr},
      {"run auto", eAutomationRun, {"-R", "auto"}, nullptr},
      {"abort now", eAbortRun, {"-A", "now"}, nullptr},
      {"abort auto", eAbortRun, {"-A", "auto"}, nullptr},
      {"stream", eStreamWrite, {"-V", "7"}, nullptr},
      {"solution", eSolutionLoad, {"-M", "2"}, nullptr},
  };
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
  if (aOperation.file != nullptr) {
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
