// What the tool and the library said about a failure, for the web server's error log.
#pragma once

#include <cgicc/CgiInput.h>

#include <string>

#include "Operation.h"
#include "Settings.h"

namespace gateway {

/// Writes one line to standard error if the answer is not 2xx and the tool said something: the
/// time, the request, the status of the answer, and the beginning of the tool's text. Reports are
/// requested every second: each adds at most one line a minute.
void diagnose(cgicc::CgiInput& input, const Settings& aSettings, eOperation aOperation, int aStatus,
              const std::string& aErrors);

}  // namespace gateway
