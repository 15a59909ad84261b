// Tables, as commands and runs change them.
#include "Tables.h"

namespace simulator::model {

namespace {

constexpr eParam cLineParams[] = {eParam::eLineRunType,  eParam::eLineRepeat,
                                  eParam::eLineStream,   eParam::eLineCalib,
                                  eParam::eLineSolution, eParam::eLineFlushTime};

void emptyLine(StoredValues& stored, std::uint32_t aLine) {
  for (eParam param : cLineParams) {
    stored.set(0.0, param, 1, aLine);
  }
}

}  // namespace

void clearSequence(StoredValues& stored) {
  for (std::uint32_t line = 1; line <= cSequenceLines; ++line) {
    emptyLine(stored, line);
  }
  stored.set(1.0, eParam::eTotalLines);
}

bool canInsertLine(const StoredValues& aStored) {
  return aStored.stepsOf(eTable::eSequence) < cSequenceLines;
}

void insertLine(StoredValues& stored) {
  const std::uint32_t line = stored.stepsOf(eTable::eSequence) + 1;
  emptyLine(stored, line);
  stored.set(line, eParam::eTotalLines);
}

void clearCalibration(StoredValues& stored) {
  for (std::uint32_t channel = 1; channel <= cChannels; ++channel) {
    for (std::uint32_t peak = 1; peak <= stored.stepsOf(eTable::ePeaks, channel); ++peak) {
      stored.set(0.0, eParam::ePeakLevelAmount, channel, peak);
    }
  }
}

void useSolution(StoredValues& stored, std::uint32_t aSlot) {
  for (std::uint32_t slot = 0; slot < cSolutionSlots; ++slot) {
    stored.set(slot == aSlot ? 1.0 : 0.0, eParam::eSlotNr, 1, slot);
  }
}

}  // namespace simulator::model
