// The instrument's commands: what each does, and in which states.
#pragma once

#include <cstdint>

#include "Behaviour.h"

namespace simulator::model {

/// Executes command `aCommand`. Returns eSuccess, eCommandUnknown, or eStateForbids.
std::uint32_t executeCommand(Behaviour& behaviour, std::uint32_t aCommand);

}  // namespace simulator::model
