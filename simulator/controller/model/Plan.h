// A plan of runs: which run is under way, or being prepared, at any time after the start.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace simulator::model {

/// By run type: 0 analysis, 1 calibration, 2 blank, 3 verification.
using RunCounts = std::array<double, 4>;

/// Runs of one kind, one after the other.
struct PlannedLine {
  std::uint32_t number;    ///< of the line in the sequence table
  std::uint32_t runType;   ///< 0 to 3
  std::uint32_t stream;    ///< where the sample comes from
  std::uint32_t solution;  ///< slot of the solution
  double flushTime;        ///< before the first of the runs, seconds; 0 for no flushing
  double replicates;       ///< at least 1
};

/// Fixed when it is made; nothing but the time decides where it stands, however far ahead that is.
class Plan {
 public:
  enum class eDoing { eFlushing, eWaiting, eRunning, eNothing };

  /// Where a plan stands.
  struct Step {
    eDoing doing;  ///< eNothing: the plan is over
    double since;
    double until;             ///< later than the time asked for
    const PlannedLine* line;  ///< null when the plan is over
    double replicate;         ///< of the line, from 1
    double repeat;            ///< of the whole plan, from 1
    RunCounts completed;      ///< since the plan began
  };

  /// `aLines`: at least one. `aRepeats`: how often all of them are run, at least 1; infinity for
  /// ever. Before each run there is its line's flushing or, where there is none, the delay; before
  /// the very first run no delay. Times are in seconds; `aRunTime` is at least 1.
  Plan(std::vector<PlannedLine> aLines, double aRepeats, double aRunTime, double aDelay,
       double aStart);

  double start() const { return mBegin; }

  /// For any time from the start on.
  Step at(double aTime) const;

 private:
  /// A line within one repeat.
  struct Place {
    double begin;  ///< seconds since the repeat began
    double lead;   ///< flushing or delay before its first run
  };

  std::vector<PlannedLine> mLines;
  std::vector<Place> mPlaces;
  double mRepeats;
  double mRunTime;
  double mDelay;
  double mBegin;
  double mStart;         ///< of the first repeat, its first delay included
  double mLength = 0.0;  ///< of one repeat
};

}  // namespace simulator::model
