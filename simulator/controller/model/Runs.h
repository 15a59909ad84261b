// Runs of the simulated instrument: single ones, calibrations, the automation sequence.
#pragma once

#include <optional>

#include "Calibration.h"
#include "Phases.h"
#include "Plan.h"

namespace simulator::model {

/// What the commands do; whether it is allowed is the caller's to check.
class Runs {
 public:
  Runs(StoredValues& aStored, Holds& aHolds, Calibration& aCalibration, Alarms& aAlarms,
       Phases& aPhases);

  bool canStart() const;
  void start();
  bool canStartAutomation() const;
  void startAutomation();
  bool isBusy() const;
  void abort();
  bool canStopAutomation() const;
  void stopAutomation();

  /// Goes on with a run that is under way when time begins, in seconds.
  void resume(double aElapsed, double aLeft);

  /// Goes on from the end of a phase, to the present at most. False when there are no runs.
  bool follow(double aUntil, double aNow);

  /// Puts a solution in use, which takes its time. No run survives that.
  void loadSolution(std::uint32_t aSlot);

 private:
  /// The runs that a start has brought about, until the last of them is over.
  struct Course {
    Plan plan;
    bool isAutomation;
    double firstReplicate;    ///< what the first of a single run's replicates counts as
    RunCounts accounted{};    ///< runs that have had their effect
    bool isStopping = false;  ///< ends with the present run
  };

  void begin(const Plan& aPlan, bool isAutomation);
  void followPlan(double aTime);
  void show(const Plan::Step& aStep);
  void end();
  void account(const RunCounts& aCompleted);

  StoredValues& mStored;
  Holds& mHolds;
  Calibration& mCalibration;
  Alarms& mAlarms;
  Phases& mPhases;
  std::optional<Course> mCourse;
};

}  // namespace simulator::model
