// The verbs of the remote control.
#pragma once

#include <string>

#include "Simulation.h"

namespace simulator {

/// Answers one request: a JSON object {"verb": "...", ...} in one line, without its newline. The
/// answer is one line too, with {"ok": true, ...} or {"ok": false, "error": "..."}.
std::string answerControl(Simulation& simulation, const std::string& aRequest);

/// The answer to a request that is refused.
std::string refuseControl(const std::string& aReason);

}  // namespace simulator
