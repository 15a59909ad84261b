// Runs of the simulated instrument: single ones, calibrations, the automation sequence.
#include <algorithm>
#include <cmath>
#include <limits>

#include "Alarms.h"
#include "Behaviour.h"

namespace model {

namespace {

constexpr double cForEver = std::numeric_limits<double>::infinity();
constexpr double cMinute = 60.0;
constexpr double cShortestRun = 1.0;
constexpr double cDelayBetweenRuns = 30.0;  ///< in a sequence
constexpr double cSolutionLoadTime = 60.0;
constexpr double cLargestShift = 0.002;    ///< of a coefficient by a calibration, relative
constexpr double cCoefficientSteps = 1e9;  ///< resolution of a coefficient: so many a unit

/// Automation states of a run that belongs to no sequence, by run type.
constexpr int cSingleRunStates[] = {eAutoSingleRun, eAutoCalibration, eAutoSingleRun,
                                    eAutoVerification};

}  // namespace

bool Behaviour::canStartRun() const {
  return state() == eReady && automation() == eAutoIdle;
}

void Behaviour::startRun() {
  const double first = std::max(bounded(eParam::eStartReplicate), 1.0);
  const bool isCalibration = static_cast<int>(bounded(eParam::eStartRunType)) == eCalibration;
  const double replicates =
      isCalibration ? std::max(bounded(eParam::eStartReplicates) - first + 1.0, 1.0) : 1.0;
  begin(singleRun(eParam::eStartRunType, eParam::eStartStream, replicates, runTime(), mNow), false);
}

bool Behaviour::canStartAutomation() const {
  return canStartRun() && !sequence().empty() &&
         (stored(eParam::eContinuous) != 0.0 || bounded(eParam::eTableRepeat) >= 1.0);
}

void Behaviour::startAutomation() {
  const bool isContinuous = stored(eParam::eContinuous) != 0.0;
  begin(Plan(sequence(), isContinuous ? cForEver : bounded(eParam::eTableRepeat), runTime(),
             cDelayBetweenRuns, mNow),
        true);
}

bool Behaviour::isBusy() const {
  return contains(statesOf(eFlushing, eRunning), state()) || automation() != eAutoIdle;
}

void Behaviour::abortRun() {
  endRuns();
}

bool Behaviour::canStopAutomation() const {
  return contains(cAllStates & ~cErrorStates, state());
}

void Behaviour::stopAutomation() {
  if (!mCourse) {
    return;
  }
  if (mPhase.state == eRunning) {
    mCourse->isStopping = true;
  } else {
    endRuns();
  }
}

double Behaviour::runTime() const {
  double longest = cShortestRun;
  for (std::uint32_t n = 1; n <= cChannels; ++n) {
    if (stored(eParam::eInstalled, n) != 0.0) {
      longest = std::max(longest, stored(eParam::eRunTimeSP, n));
    }
  }
  return longest;
}

/// A value as far as its bounds allow, whatever an operator has set.
double Behaviour::bounded(eParam aParam, std::uint32_t aStep) const {
  const std::size_t slot = slotOf(aParam, 1, aStep);
  const ParameterRow& row = *slotAt(slot).row;
  const double value = mValues[slot];
  return std::isnan(value) ? row.lowest : std::clamp(value, row.lowest, row.highest);
}

/// The lines that are run at all.
std::vector<PlannedLine> Behaviour::sequence() const {
  const auto whole = [this](eParam aParam, std::uint32_t aStep) {
    return static_cast<std::uint32_t>(bounded(aParam, aStep));
  };
  const bool hasStreams = stored(eParam::eStreamConfigured) != 0.0;
  std::vector<PlannedLine> lines;
  for (std::uint32_t n = 1; n <= stepsOf(eTable::eSequence); ++n) {
    const double replicates = bounded(eParam::eLineRepeat, n);
    if (replicates >= 1.0) {
      lines.push_back(
          {n, whole(eParam::eLineRunType, n),
           hasStreams ? whole(eParam::eLineStream, n) : whole(eParam::eCurrentStream, 1),
           whole(eParam::eLineSolution, n), bounded(eParam::eLineFlushTime, n) * cMinute,
           replicates});
    }
  }
  return lines;
}

Plan Behaviour::singleRun(eParam aRunType, eParam aStream, double aReplicates, double aRunTime,
                          double aStart) const {
  const auto runType = static_cast<std::uint32_t>(bounded(aRunType));
  const auto stream = static_cast<std::uint32_t>(bounded(aStream));
  return {{{0, runType, stream, 0, 0.0, aReplicates}},
          1.0,
          std::max(aRunTime, cShortestRun),
          0.0,
          aStart};
}

void Behaviour::begin(const Plan& aPlan, bool isAutomation) {
  mCourse = {aPlan, isAutomation, std::max(bounded(eParam::eStartReplicate), 1.0)};
  // A scenario may begin behind the end of its run, which then ends at once.
  show(aPlan.at(aPlan.start()));
}

void Behaviour::followPlan(double aTime) {
  // Before the runs have their effect: what was held when the first of them ended is held no more
  // when the next one begins, even if nobody looks in between.
  releaseAll();
  const Plan::Step step = mCourse->plan.at(aTime);
  const bool isOver = mCourse->isStopping || step.doing == Plan::eDoing::eNothing;
  mNow = std::max(mNow, step.since);
  account(step.completed);
  if (isOver) {
    endRuns();
  } else {
    show(step);
  }
}

void Behaviour::show(const Plan::Step& aStep) {
  const PlannedLine& line = *aStep.line;
  const bool isAutomation = mCourse->isAutomation;
  store(line.runType, eParam::eRunType);
  store(line.stream, eParam::eCurrentStream);
  if (isAutomation) {
    store(line.number, eParam::eSeqLine);
    store(aStep.replicate, eParam::eLineReplicate);
    store(std::min(aStep.repeat, slotAt(slotOf(eParam::eSeqReplicate)).row->highest),
          eParam::eSeqReplicate);
    markSolution(line.solution);
  } else if (line.runType == eCalibration) {
    store(mCourse->firstReplicate + aStep.replicate - 1.0, eParam::eStartReplicate);
  }
  switch (aStep.doing) {
    case Plan::eDoing::eFlushing:
      return enter({eFlushing, eAutoFlushing, aStep.since, aStep.until});
    case Plan::eDoing::eWaiting:
      return enter({eReady, eAutoSequence, aStep.since, aStep.until, eActivity::eWaiting});
    default:
      return enter({eRunning, isAutomation ? int{eAutoSequence} : cSingleRunStates[line.runType],
                    aStep.since, aStep.until});
  }
}

void Behaviour::endRuns() {
  if (mCourse && mCourse->isAutomation) {
    store(0.0, eParam::eSeqLine);
    store(0.0, eParam::eLineReplicate);
    store(0.0, eParam::eSeqReplicate);
  } else if (mCourse) {
    store(mCourse->firstReplicate, eParam::eStartReplicate);  // the same again at the next start
  }
  mCourse.reset();
  enter(idlePhase());
}

/// Gives effect to the runs completed since the last time.
void Behaviour::account(const RunCounts& aCompleted) {
  double counter = stored(eParam::eAnalysisCounter);
  for (std::size_t type = 0; type < aCompleted.size(); ++type) {
    const double runs = aCompleted[type] - mCourse->accounted[type];
    if (runs <= 0.0) {
      continue;
    }
    counter += runs;
    // Nobody may have looked while a run of this type was under way.
    watchConditions(*this, static_cast<int>(type));
    if (type == eCalibration) {
      calibrate(runs);
    } else if (type == eVerification && !isCalibrated()) {
      signalEvent(*this, eEvent::eVerificationFailed, eVerification);
    }
  }
  store(integral(counter), eParam::eAnalysisCounter);
  mCourse->accounted = aCompleted;
}

/// Whether every channel in use has been.
bool Behaviour::isCalibrated() const {
  for (std::uint32_t n = 1; n <= cChannels; ++n) {
    if (stored(eParam::eInstalled, n) != 0.0 && stored(eParam::eColumnHeader, n) == 0.0 &&
        stored(eParam::eDetCalibrated, n) == 0.0) {
      return false;
    }
  }
  return true;
}

/// Each calibration shifts a coefficient away from the first one, not from the last: so a thousand
/// of them can be passed over, and no coefficient drifts away.
void Behaviour::calibrate(double aRuns) {
  mCalibrations += aRuns;
  for (std::uint32_t n = 1; n <= cChannels; ++n) {
    if (stored(eParam::eInstalled, n) == 0.0) {
      continue;
    }
    for (std::uint32_t peak = 1; peak <= mPeaks[n - 1]; ++peak) {
      if (stored(eParam::ePeakLevelAmount, n, peak) == 0.0) {
        continue;  // no amount, nothing to calibrate with
      }
      const std::size_t slot = slotOf(eParam::ePeakLinear, n, peak);
      const double shift = cLargestShift * noise(mSeed, slot, mCalibrations);
      mValues[slot] = rounded(mCoefficients[slot - slotOf(eParam::ePeakLinear)] * (1.0 + shift),
                              cCoefficientSteps);
    }
  }
}

void Behaviour::loadSolution(std::uint32_t aSlot) {
  mCourse.reset();  // there is one only if an operator has made its run look idle
  markSolution(aSlot);
  enter({eNotReady, eAutoIdle, mNow, mNow + cSolutionLoadTime});
}

/// Only one solution is in use.
void Behaviour::markSolution(std::uint32_t aSlot) {
  for (std::uint32_t slot = 0; slot < cSolutionSlots; ++slot) {
    store(slot == aSlot ? 1.0 : 0.0, eParam::eSlotNr, 1, slot);
  }
}

}  // namespace model
