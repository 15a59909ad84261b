// Answers to requests for reports.
#pragma once

#include <cgicc/CgiInput.h>

#include <string>

#include "Settings.h"

namespace gateway {

/// The whole output of the CGI program.
std::string answerReport(cgicc::CgiInput& input, const Limits& aLimits);

}  // namespace gateway
