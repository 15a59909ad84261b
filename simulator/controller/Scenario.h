// A scenario: the instrument that a simulation starts with.
#pragma once

#include <rapidjson/document.h>

#include <string>

namespace simulator {

/// A scenario file that has passed its schema, scenarios/scenario.schema.json.
struct Scenario {
  std::string name;  ///< as it was asked for
  rapidjson::Document document;
};

/// Loads a scenario: a path, or the name of a shipped one, without '/' and ".json" ("everyday").
/// Returns false, with one line "FILE: JSON-POINTER: reason" in `error` and `scenario` unchanged,
/// when it cannot be read, is over 1 MB, not JSON, or does not fit its schema; the pointer is
/// "(document)" where the whole is at fault.
bool loadScenario(const std::string& aNameOrPath, Scenario& scenario, std::string& error);

}  // namespace simulator
