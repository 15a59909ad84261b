// Sequence table and calibration table, as the commands change them.
#include "Sequence.h"

namespace model {

namespace {

constexpr eParam cLineParams[] = {eParam::eLineRunType,  eParam::eLineRepeat,
                                  eParam::eLineStream,   eParam::eLineCalib,
                                  eParam::eLineSolution, eParam::eLineFlushTime};

void emptyLine(Behaviour& behaviour, std::uint32_t aLine) {
  for (eParam param : cLineParams) {
    behaviour.store(0.0, param, 1, aLine);
  }
}

}  // namespace

void clearSequence(Behaviour& behaviour) {
  for (std::uint32_t line = 1; line <= cSequenceLines; ++line) {
    emptyLine(behaviour, line);
  }
  behaviour.store(1.0, eParam::eTotalLines);
}

bool canInsertLine(const Behaviour& aBehaviour) {
  return aBehaviour.takesSettings() && aBehaviour.stepsOf(eTable::eSequence) < cSequenceLines;
}

void insertLine(Behaviour& behaviour) {
  const std::uint32_t line = behaviour.stepsOf(eTable::eSequence) + 1;
  emptyLine(behaviour, line);
  behaviour.store(line, eParam::eTotalLines);
}

void clearCalibration(Behaviour& behaviour) {
  for (std::uint32_t channel = 1; channel <= cChannels; ++channel) {
    for (std::uint32_t peak = 1; peak <= behaviour.stepsOf(eTable::ePeaks, channel); ++peak) {
      behaviour.store(0.0, eParam::ePeakLevelAmount, channel, peak);
    }
  }
}

}  // namespace model
