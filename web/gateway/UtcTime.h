// The present time, as logs tell it.
#pragma once

#include <string>

/// UTC, to the second, as in ISO 8601: 2026-11-21T07:31:35Z.
std::string utcNow();
