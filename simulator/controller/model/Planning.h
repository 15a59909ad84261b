// Plans of runs from what is stored.
#pragma once

#include <vector>

#include "Plan.h"
#include "StoredValues.h"

namespace simulator::model {

/// Seconds: the longest run time of the installed channels.
double runTime(const StoredValues& aStored);

/// The replicate that the first run of the next start counts as.
double firstReplicate(const StoredValues& aStored);

/// What a start from the front panel brings about.
Plan planRun(const StoredValues& aStored, double aStart);

/// A run that is under way when time begins, with what it has done and has left, in seconds.
Plan planRunUnderWay(const StoredValues& aStored, double aElapsed, double aLeft);

/// Whether the sequence has anything to run.
bool hasSequence(const StoredValues& aStored);

/// The automation sequence; it has something to run.
Plan planSequence(const StoredValues& aStored, double aStart);

}  // namespace simulator::model
