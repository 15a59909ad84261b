// Converts the report of a table into the file of a download.
#pragma once

#include <optional>
#include <string>

#include "Operation.h"

namespace gateway {

/// The part of a report that a download takes, as compact JSON; none if the report is not an
/// object. Numbers keep every printed digit. `aTable`: eSequence or eCalibration.
std::optional<std::string> tableFileOf(eOperation aTable, const std::string& aReport);

}  // namespace gateway
