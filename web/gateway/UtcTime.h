// The current time, as written to logs.
#pragma once

#include <string>

namespace gateway {

/// UTC in ISO 8601, to the second: 2026-11-21T07:31:35Z.
std::string utcNow();

}  // namespace gateway
