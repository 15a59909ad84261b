// The tables of a scenario: sequence lines, alarm rows, calibrated peaks.
#pragma once

#include <rapidjson/document.h>

#include <array>
#include <cstdint>
#include <vector>

#include "Parameters.h"

namespace simulator::model {

/// How many peaks are calibrated, by channel.
using PeakCounts = std::array<std::uint32_t, cChannels>;

/// Puts a scenario's tables into `values`, which has a place for every slot, and the numbers of
/// lines and alarm rows with them. A sequence has at least one line, if an empty one.
PeakCounts loadTables(const rapidjson::Value& aScenario, std::vector<double>& values);

}  // namespace simulator::model
