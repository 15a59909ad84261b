// The file of a download, made of the report of its table.
#pragma once

#include <optional>
#include <string>

#include "Operation.h"

/// What a download takes of a report, as compact JSON; none when the report is no object. Numbers
/// stay as they were printed, to the last digit. `aTable`: eSequence or eCalibration.
std::optional<std::string> tableFileOf(eOperation aTable, const std::string& aReport);
