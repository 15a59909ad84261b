// What the simulated instrument does as time passes, and what its clients and operators do to it.
#pragma once

#include <rapidjson/document.h>

#include <cstdint>

#include "Alarms.h"
#include "Calibration.h"
#include "Holds.h"
#include "MeasuredValues.h"
#include "Phases.h"
#include "Runs.h"
#include "StoredValues.h"

namespace simulator::model {

/// All values are of the time that advance() was last given. Between two changes everything is a
/// function of time; what changes by itself does so at times known beforehand. So it does not
/// matter how often, or when, anybody asks.
class Behaviour {
 public:
  /// `aScenario`: what is stored, and what a snapshot adds to that. A measured value that is
  /// missing starts at what it follows.
  Behaviour(const rapidjson::Value& aScenario, std::uint32_t aSeed);
  Behaviour(const Behaviour&) = delete;
  Behaviour& operator=(const Behaviour&) = delete;

  const StoredValues& stored() const { return mStored; }
  StoredValues& stored() { return mStored; }
  const Runs& runs() const { return mRuns; }
  Runs& runs() { return mRuns; }

  /// Goes on to a time, in seconds; one in the past changes nothing.
  void advance(double aNow);

  /// A parameter as the instrument shows it; whole and within 32 bits for an integer one.
  double value(std::size_t aSlot) const;

  /// Whether settings, tables and run parameters can be changed: nothing runs, and no error that
  /// the instrument cannot recover from.
  bool takesSettings() const;

  /// Whether a parameter can be written now; for the valve and the solutions, whether it can move.
  bool takes(std::size_t aSlot) const;

  /// Changes a setting, as a client does.
  void write(std::size_t aSlot, double aValue);

  /// Changes any parameter, as an operator of the simulation does. A computed one is held until the
  /// instrument next changes its state of its own accord or at a client's request.
  void set(std::size_t aSlot, double aValue);

  /// Takes all alarms back; one whose condition still holds triggers again at once.
  void resetAlarms();

  /// What happens when a client's start is refused.
  void refuseStart();

  /// What the values do not say about the present: a scenario's "snapshot", with which an
  /// instrument goes on from here. Automation does not survive: its present run goes on as a single
  /// one.
  rapidjson::Value describe(rapidjson::Document::AllocatorType& aAllocator) const;

 private:
  void resume(const rapidjson::Value& aSnapshot);
  void change(std::size_t aSlot, double aValue);

  // Each knows those above it.
  StoredValues mStored;
  Holds mHolds;
  MeasuredValues mMeasured;
  Calibration mCalibration;
  Alarms mAlarms;
  Phases mPhases;
  Runs mRuns;
};

}  // namespace simulator::model
