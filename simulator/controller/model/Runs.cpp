// Where the runs under way stand, what they show, and what they leave behind.
#include "Runs.h"

#include <algorithm>

#include "Measurement.h"
#include "Planning.h"
#include "Tables.h"

namespace simulator::model {

namespace {

constexpr double cSolutionLoadTime = 60.0;

/// Automation states of a run that belongs to no sequence, by run type.
constexpr int cSingleRunStates[] = {eAutoSingleRun, eAutoCalibration, eAutoSingleRun,
                                    eAutoVerification};

}  // namespace

Runs::Runs(StoredValues& aStored, Holds& aHolds, Calibration& aCalibration, Alarms& aAlarms,
           Phases& aPhases)
    : mStored(aStored),
      mHolds(aHolds),
      mCalibration(aCalibration),
      mAlarms(aAlarms),
      mPhases(aPhases) {}

bool Runs::canStart() const {
  return mPhases.state() == eReady && mPhases.automation() == eAutoIdle;
}

void Runs::start() {
  begin(planRun(mStored, mPhases.now()), false);
}

bool Runs::canStartAutomation() const {
  return canStart() && hasSequence(mStored);
}

void Runs::startAutomation() {
  begin(planSequence(mStored, mPhases.now()), true);
}

bool Runs::isBusy() const {
  return contains(statesOf(eFlushing, eRunning), mPhases.state()) ||
         mPhases.automation() != eAutoIdle;
}

void Runs::abort() {
  end();
}

bool Runs::canStopAutomation() const {
  return contains(cAllStates & ~cErrorStates, mPhases.state());
}

void Runs::stopAutomation() {
  if (!mCourse) {
    return;
  }
  if (mPhases.current().state == eRunning) {
    mCourse->isStopping = true;
  } else {
    end();
  }
}

void Runs::resume(double aElapsed, double aLeft) {
  begin(planRunUnderWay(mStored, aElapsed, aLeft), false);
}

bool Runs::follow(double aUntil, double aNow) {
  if (!mCourse) {
    return false;
  }
  // Straight to where the plan stands now, however many runs that passes over.
  followPlan(mCourse->isStopping ? aUntil : aNow);
  return true;
}

void Runs::loadSolution(std::uint32_t aSlot) {
  mCourse.reset();  // there is one only if an operator has made its run look idle
  useSolution(mStored, aSlot);
  mPhases.enter({eNotReady, eAutoIdle, mPhases.now(), mPhases.now() + cSolutionLoadTime});
}

void Runs::begin(const Plan& aPlan, bool isAutomation) {
  mCourse = {aPlan, isAutomation, firstReplicate(mStored)};
  // A scenario may begin behind the end of its run, which then ends at once.
  show(aPlan.at(aPlan.start()));
}

void Runs::followPlan(double aTime) {
  // Before the runs have their effect: what was held when the first of them ended is held no more
  // when the next one begins, even if nobody looks in between.
  mHolds.releaseAll();
  const Plan::Step step = mCourse->plan.at(aTime);
  const bool isOver = mCourse->isStopping || step.doing == Plan::eDoing::eNothing;
  mPhases.setNow(std::max(mPhases.now(), step.since));
  account(step.completed);
  if (isOver) {
    end();
  } else {
    show(step);
  }
}

void Runs::show(const Plan::Step& aStep) {
  const PlannedLine& line = *aStep.line;
  const bool isAutomation = mCourse->isAutomation;
  mStored.set(line.runType, eParam::eRunType);
  mStored.set(line.stream, eParam::eCurrentStream);
  if (isAutomation) {
    mStored.set(line.number, eParam::eSeqLine);
    mStored.set(aStep.replicate, eParam::eLineReplicate);
    mStored.set(std::min(aStep.repeat, slotAt(slotOf(eParam::eSeqReplicate)).row->highest),
                eParam::eSeqReplicate);
    useSolution(mStored, line.solution);
  } else if (line.runType == eCalibration) {
    mStored.set(mCourse->firstReplicate + aStep.replicate - 1.0, eParam::eStartReplicate);
  }
  switch (aStep.doing) {
    case Plan::eDoing::eFlushing:
      return mPhases.enter({eFlushing, eAutoFlushing, aStep.since, aStep.until});
    case Plan::eDoing::eWaiting:
      return mPhases.enter({eReady, eAutoSequence, aStep.since, aStep.until, eActivity::eWaiting});
    default:
      return mPhases.enter({eRunning,
                            isAutomation ? int{eAutoSequence} : cSingleRunStates[line.runType],
                            aStep.since, aStep.until});
  }
}

void Runs::end() {
  if (mCourse && mCourse->isAutomation) {
    mStored.set(0.0, eParam::eSeqLine);
    mStored.set(0.0, eParam::eLineReplicate);
    mStored.set(0.0, eParam::eSeqReplicate);
  } else if (mCourse) {
    // The same again at the next start.
    mStored.set(mCourse->firstReplicate, eParam::eStartReplicate);
  }
  mCourse.reset();
  mPhases.enter(mPhases.idlePhase());
}

/// Gives effect to the runs completed since the last time.
void Runs::account(const RunCounts& aCompleted) {
  double counter = mStored.of(eParam::eAnalysisCounter);
  for (std::size_t type = 0; type < aCompleted.size(); ++type) {
    const double runs = aCompleted[type] - mCourse->accounted[type];
    if (runs <= 0.0) {
      continue;
    }
    counter += runs;
    // Nobody may have looked while a run of this type was under way.
    mPhases.watchAlarms(static_cast<int>(type));
    if (type == eCalibration) {
      mCalibration.complete(runs);
    } else if (type == eVerification && !mCalibration.isDone()) {
      mAlarms.signal(eEvent::eVerificationFailed, eVerification);
    }
  }
  mStored.set(integral(counter), eParam::eAnalysisCounter);
  mCourse->accounted = aCompleted;
}

}  // namespace simulator::model
