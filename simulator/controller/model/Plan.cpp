// Where a plan of runs stands, computed from the time alone.
#include "Plan.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace simulator::model {

namespace {

/// How many periods, `aMost` at most, are over at `aTime`: the largest n for which
/// aStart + n * aPeriod, as it is computed, is not later.
double wholePeriods(double aStart, double aPeriod, double aMost, double aTime) {
  const double guess = std::clamp(std::floor((aTime - aStart) / aPeriod), 0.0, aMost);
  if (guess > 0.0 && aStart + guess * aPeriod > aTime) {
    return guess - 1.0;
  }
  return guess < aMost && aStart + (guess + 1.0) * aPeriod <= aTime ? guess + 1.0 : guess;
}

}  // namespace

Plan::Plan(std::vector<PlannedLine> aLines, double aRepeats, double aRunTime, double aDelay,
           double aStart)
    : mLines(std::move(aLines)),
      mRepeats(aRepeats),
      mRunTime(aRunTime),
      mDelay(aDelay),
      mBegin(aStart),
      // So the delay that the first run has like any other is over when it begins.
      mStart(aStart - (mLines.front().flushTime > 0.0 ? 0.0 : aDelay)) {
  for (const PlannedLine& line : mLines) {
    const double lead = line.flushTime > 0.0 ? line.flushTime : mDelay;
    mPlaces.push_back({mLength, lead});
    mLength += lead + mRunTime + (line.replicates - 1.0) * (mDelay + mRunTime);
  }
}

Plan::Step Plan::at(double aTime) const {
  const double repeats = wholePeriods(mStart, mLength, mRepeats, aTime);
  Step step{eDoing::eNothing, mStart + repeats * mLength, 0.0, nullptr, 0.0, repeats + 1.0, {}};
  for (const PlannedLine& line : mLines) {
    step.completed[line.runType] += repeats * line.replicates;
  }
  if (repeats >= mRepeats) {
    step.until = step.since;
    return step;
  }
  const double begin = step.since;
  std::size_t n = 0;
  for (; n + 1 < mLines.size() && begin + mPlaces[n + 1].begin <= aTime; ++n) {
    step.completed[mLines[n].runType] += mLines[n].replicates;
  }
  const PlannedLine& line = mLines[n];
  const double period = mDelay + mRunTime;
  const double firstEnd = begin + mPlaces[n].begin + mPlaces[n].lead + mRunTime;
  const double lineEnd =
      n + 1 < mLines.size() ? begin + mPlaces[n + 1].begin : mStart + (repeats + 1.0) * mLength;
  double done = 0.0;
  if (line.replicates > 1.0 && firstEnd <= aTime) {
    done = 1.0 + wholePeriods(firstEnd, period, line.replicates - 2.0, aTime);
  }
  step.completed[line.runType] += done;
  step.line = &line;
  step.replicate = done + 1.0;

  // The last run ends when the next line begins, to the last bit: no moment belongs to neither.
  const double runEnd = step.replicate < line.replicates ? firstEnd + done * period : lineEnd;
  const double leadBegin =
      done == 0.0 ? begin + mPlaces[n].begin : firstEnd + (done - 1.0) * period;
  const bool flushes = done == 0.0 && line.flushTime > 0.0;
  const bool isVeryFirst = step.repeat == 1.0 && n == 0 && done == 0.0 && !flushes;
  const double runBegin =
      isVeryFirst ? mBegin : leadBegin + (done == 0.0 ? mPlaces[n].lead : mDelay);
  if (aTime >= runBegin) {
    step.doing = eDoing::eRunning;
    step.since = runBegin;
    step.until = runEnd;
  } else {
    step.doing = flushes ? eDoing::eFlushing : eDoing::eWaiting;
    step.since = leadBegin;
    step.until = runBegin;
  }
  return step;
}

}  // namespace simulator::model
