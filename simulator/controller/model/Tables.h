// What the instrument does to its tables: the automation sequence, the calibration, the solutions.
#pragma once

#include "StoredValues.h"

namespace simulator::model {

/// Leaves one line, an empty one: no sequence has none.
void clearSequence(StoredValues& stored);

/// Whether there is room for a line.
bool canInsertLine(const StoredValues& aStored);

/// Adds an empty line at the end.
void insertLine(StoredValues& stored);

/// Sets the level amounts of all peaks to 0.
void clearCalibration(StoredValues& stored);

/// Only one solution is in use.
void useSolution(StoredValues& stored, std::uint32_t aSlot);

}  // namespace simulator::model
