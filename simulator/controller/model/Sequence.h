// What the commands do to the tables: the automation sequence and the calibration.
#pragma once

#include "Behaviour.h"

namespace model {

/// Leaves one line, an empty one: no sequence has none.
void clearSequence(Behaviour& behaviour);

bool canInsertLine(const Behaviour& aBehaviour);

/// Adds an empty line at the end.
void insertLine(Behaviour& behaviour);

/// Sets the level amounts of all peaks to 0.
void clearCalibration(Behaviour& behaviour);

}  // namespace model
