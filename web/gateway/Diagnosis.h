// What tool and library said about a failure, for the web server's log of errors.
#pragma once

#include <cgicc/CgiInput.h>

#include <string>

#include "Operation.h"
#include "Settings.h"

/// Writes one line on standard error if the answer is not 2xx and something was said: the time, the
/// request, the answer's status, and the beginning of what was said. A report is asked for every
/// second: the same one adds a line a minute at most.
void diagnose(cgicc::CgiInput& input, const Settings& aSettings, eOperation aOperation, int aStatus,
              const std::string& aErrors);
