// What the instrument is in the middle of when time begins.
#pragma once

#include <rapidjson/document.h>

#include "Phases.h"
#include "Runs.h"

namespace simulator::model {

struct Start {
  int state;
  double elapsed;  ///< seconds of a run
  double left;     ///< seconds of a state that ends by itself
};

/// As the values of a scenario say.
Start givenStart(const StoredValues& aStored);

/// As a snapshot says.
Start snapshotStart(const rapidjson::Value& aSnapshot);

void startUp(const Start& aStart, Phases& phases, Runs& runs);

}  // namespace simulator::model
