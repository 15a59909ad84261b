// Single runs, calibrations and the automation sequence as plans.
#include "Planning.h"

#include <algorithm>
#include <limits>

#include "StateCodes.h"

namespace simulator::model {

namespace {

constexpr double cForEver = std::numeric_limits<double>::infinity();
constexpr double cShortestRun = 1.0;
constexpr double cDelayBetweenRuns = 30.0;  ///< in a sequence

Plan planSingleRun(const StoredValues& aStored, eParam aRunType, eParam aStream, double aReplicates,
                   double aRunTime, double aStart) {
  const auto runType = static_cast<std::uint32_t>(aStored.bounded(aRunType));
  const auto stream = static_cast<std::uint32_t>(aStored.bounded(aStream));
  return {{{0, runType, stream, 0, 0.0, aReplicates}},
          1.0,
          std::max(aRunTime, cShortestRun),
          0.0,
          aStart};
}

/// The lines that are run at all.
std::vector<PlannedLine> linesOf(const StoredValues& aStored) {
  const auto whole = [&aStored](eParam aParam, std::uint32_t aStep) {
    return static_cast<std::uint32_t>(aStored.bounded(aParam, aStep));
  };
  const bool hasStreams = aStored.of(eParam::eStreamConfigured) != 0.0;
  std::vector<PlannedLine> lines;
  for (std::uint32_t n = 1; n <= aStored.stepsOf(eTable::eSequence); ++n) {
    const double replicates = aStored.bounded(eParam::eLineRepeat, n);
    if (replicates >= 1.0) {
      lines.push_back(
          {n, whole(eParam::eLineRunType, n),
           hasStreams ? whole(eParam::eLineStream, n) : whole(eParam::eCurrentStream, 1),
           whole(eParam::eLineSolution, n), aStored.bounded(eParam::eLineFlushTime, n) * cMinute,
           replicates});
    }
  }
  return lines;
}

}  // namespace

double runTime(const StoredValues& aStored) {
  double longest = cShortestRun;
  for (std::uint32_t n = 1; n <= cChannels; ++n) {
    if (aStored.of(eParam::eInstalled, n) != 0.0) {
      longest = std::max(longest, aStored.of(eParam::eRunTimeSP, n));
    }
  }
  return longest;
}

double firstReplicate(const StoredValues& aStored) {
  return std::max(aStored.bounded(eParam::eStartReplicate), 1.0);
}

Plan planRun(const StoredValues& aStored, double aStart) {
  const bool isCalibration =
      static_cast<int>(aStored.bounded(eParam::eStartRunType)) == eCalibration;
  const double replicates =
      isCalibration
          ? std::max(aStored.bounded(eParam::eStartReplicates) - firstReplicate(aStored) + 1.0, 1.0)
          : 1.0;
  return planSingleRun(aStored, eParam::eStartRunType, eParam::eStartStream, replicates,
                       runTime(aStored), aStart);
}

Plan planRunUnderWay(const StoredValues& aStored, double aElapsed, double aLeft) {
  return planSingleRun(aStored, eParam::eRunType, eParam::eCurrentStream, 1.0, aElapsed + aLeft,
                       -aElapsed);
}

bool hasSequence(const StoredValues& aStored) {
  return !linesOf(aStored).empty() &&
         (aStored.of(eParam::eContinuous) != 0.0 || aStored.bounded(eParam::eTableRepeat) >= 1.0);
}

Plan planSequence(const StoredValues& aStored, double aStart) {
  const bool isContinuous = aStored.of(eParam::eContinuous) != 0.0;
  return {linesOf(aStored), isContinuous ? cForEver : aStored.bounded(eParam::eTableRepeat),
          runTime(aStored), cDelayBetweenRuns, aStart};
}

}  // namespace simulator::model
