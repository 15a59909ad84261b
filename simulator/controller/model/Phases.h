// What the instrument is doing, and until when it does so by itself.
#pragma once

#include <rapidjson/document.h>

#include <limits>

#include "Alarms.h"
#include "Holds.h"
#include "MeasuredValues.h"
#include "StateCodes.h"
#include "StoredValues.h"

namespace simulator::model {

constexpr double cNever = std::numeric_limits<double>::infinity();
/// Time stands still here, where a second is still much more than the last bit of a number. No
/// scenario says more seconds.
constexpr double cLastMoment = 1e15;

enum class eActivity { eIdling, eWaiting, eOther };

struct Phase {
  int state{};
  int automation{};
  double since{};
  double until{};
  eActivity activity = eActivity::eOther;
};

/// The time, and the phase of it. A phase that is entered releases what is held, and may set off
/// alarms.
class Phases {
 public:
  Phases(const StoredValues& aStored, const MeasuredValues& aMeasured, Holds& aHolds,
         Alarms& aAlarms);

  double now() const { return mNow; }
  void setNow(double aNow) { mNow = aNow; }

  const Phase& current() const { return mPhase; }

  /// The state that the instrument shows, which is the one that decides what is allowed.
  int state() const;
  /// The automation state that the instrument shows.
  int automation() const;
  /// What a computed parameter tells of the phase, whatever is held; 0 for another.
  double shown(eParam aParam) const;

  void enter(const Phase& aPhase);

  /// What the instrument does when nothing is to be done.
  Phase idlePhase() const;

  /// Looks again at what idling is now.
  void idleAnew();

  /// Looks whether an alarm condition holds; due whenever something has changed.
  void watchAlarms();
  /// As during a run of a type.
  void watchAlarms(int aRunType);

  /// Adds to a snapshot what is under way.
  void describe(rapidjson::Value& snapshot, rapidjson::Document::AllocatorType& aAllocator) const;

 private:
  const StoredValues& mStored;
  const MeasuredValues& mMeasured;
  Holds& mHolds;
  Alarms& mAlarms;
  double mNow = 0.0;
  Phase mPhase{};
};

}  // namespace simulator::model
