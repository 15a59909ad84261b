// What the simulated instrument does as time passes: its states, its runs, its measured values.
#pragma once

#include <rapidjson/document.h>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "Measurement.h"
#include "Parameters.h"
#include "Plan.h"
#include "ScenarioTables.h"
#include "StateCodes.h"

namespace model {

/// How a family of measured values moves. What follows nothing else follows its own first value.
struct MeasuredRow {
  eParam actual;
  eParam follows;
  double timeConstant;  ///< seconds
  double tolerance;     ///< within this of what it follows, the part is ready
  double noise;         ///< the most that a reading is off
  double stepsPerUnit;  ///< resolution of a reading
};

/// All values are of the time that advance() was last given. Between two changes everything is a
/// function of time; what changes by itself does so at times known beforehand. So it does not
/// matter how often, or when, anybody asks.
class Behaviour {
 public:
  /// `aScenario`: its tables, its values by name, which come before the tables', and what a
  /// snapshot adds to them. A value that is missing starts at 0, a measured one at what it follows.
  Behaviour(const rapidjson::Value& aScenario, std::uint32_t aSeed);

  /// Goes on to a time, in seconds; one in the past changes nothing.
  void advance(double aNow);

  /// A parameter as the instrument shows it; whole and within 32 bits for an integer one.
  double value(std::size_t aSlot) const;

  /// The state that the instrument shows, which is the one that decides what is allowed.
  int state() const;

  /// The automation state that the instrument shows.
  int automation() const;

  /// Whether the part that a parameter belongs to (channel, sample line) is there.
  bool isFitted(std::size_t aSlot) const;

  /// How many steps (lines, peaks, rows) a table has now; `aChannel`, 1 to 4, for peaks.
  std::uint32_t stepsOf(eTable aTable, std::uint32_t aChannel = 1) const;

  /// Whether a parameter's step is one that its table has now.
  bool isThere(std::size_t aSlot) const;

  /// Whether settings, tables and run parameters can be changed: nothing runs, and no error that
  /// the instrument cannot recover from.
  bool takesSettings() const;

  /// Whether a parameter can be written now; for the valve and the solutions, whether it can move.
  bool takes(std::size_t aSlot) const;

  /// The most that a client may write.
  double highest(std::size_t aSlot) const;

  /// Changes a setting, as a client does.
  void write(std::size_t aSlot, double aValue);

  /// Changes any parameter, as an operator of the simulation does. A computed one is held until the
  /// instrument next changes its state of its own accord or at a client's request.
  void set(std::size_t aSlot, double aValue);

  // The instrument's own bookkeeping: what it stores, and what it stored.
  double stored(eParam aParam, std::uint32_t aMember = 1, std::uint32_t aStep = 1) const;
  void store(double aValue, eParam aParam, std::uint32_t aMember = 1, std::uint32_t aStep = 1);
  /// A measured value without its noise, or what it is held at.
  double undisturbed(eParam aParam) const;
  /// Ends the holding of a computed value.
  void release(eParam aParam);

  /// What the values do not say about the present: a scenario's "snapshot", with which an
  /// instrument goes on from here. Automation does not survive: its present run goes on as a single
  /// one.
  rapidjson::Value describe(rapidjson::Document::AllocatorType& aAllocator) const;

  /// Looks whether an alarm condition holds; due whenever something has changed.
  void watchAlarms();

  // What the commands do; whether it is allowed is the caller's to check.
  bool canStartRun() const;
  void startRun();
  bool canStartAutomation() const;
  void startAutomation();
  bool isBusy() const;
  void abortRun();
  bool canStopAutomation() const;
  void stopAutomation();

 private:
  enum class eActivity { eIdling, eWaiting, eOther };

  /// What the instrument is doing, and until when it does so by itself.
  struct Phase {
    int state;
    int automation;
    double since;
    double until;
    eActivity activity = eActivity::eOther;
  };
  /// What the instrument is in the middle of when time begins.
  struct Start {
    int state;
    double elapsed;  ///< seconds of a run
    double left;     ///< seconds of a state that ends by itself
  };
  /// A measured parameter, and the one that it follows.
  struct Measured {
    const MeasuredRow* row;
    std::size_t slot;
    std::size_t followed;
    Lag lag;
  };

  double bounded(eParam aParam, std::uint32_t aStep = 1) const;
  double runTime() const;
  Start givenStart() const;
  void startUp(const Start& aStart);
  void resume(const rapidjson::Value& aSnapshot);
  Phase idlePhase() const;
  void enter(const Phase& aPhase);
  void releaseAll();
  void change(std::size_t aSlot, double aValue);
  double settledAt() const;
  double measure(const Measured& aMeasured) const;

  // Runs.
  std::vector<PlannedLine> sequence() const;
  Plan singleRun(eParam aRunType, eParam aStream, double aReplicates, double aRunTime,
                 double aStart) const;
  void begin(const Plan& aPlan, bool isAutomation);
  void followPlan(double aTime);
  void show(const Plan::Step& aStep);
  void endRuns();
  void account(const RunCounts& aCompleted);
  bool isCalibrated() const;
  void calibrate(double aRuns);
  void loadSolution(std::uint32_t aSlot);
  void markSolution(std::uint32_t aSlot);

  std::uint32_t mSeed;
  double mNow = 0.0;
  double mNoiseBegin = 0.0;  ///< which of the noise's seconds time begins with
  std::vector<double> mValues;
  std::vector<std::optional<double>> mHeld;
  std::vector<Measured> mMeasured;
  PeakCounts mPeaks{};
  Phase mPhase{};

  /// The runs that a start has brought about, until the last of them is over.
  struct Course {
    Plan plan;
    bool isAutomation;
    double firstReplicate;    ///< what the first of a single run's replicates counts as
    RunCounts accounted{};    ///< runs that have had their effect
    bool isStopping = false;  ///< ends with the present run
  };
  std::optional<Course> mCourse;
  double mCalibrations = 0.0;         ///< runs completed
  std::vector<double> mCoefficients;  ///< of all peaks, before these calibrations
};

}  // namespace model
