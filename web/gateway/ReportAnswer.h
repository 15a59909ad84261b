// Answers to requests for reports.
#pragma once

#include <cgicc/CgiInput.h>

#include <string>

#include "Settings.h"

/// The whole output of the CGI program.
std::string answerReport(cgicc::CgiInput& input, const Limits& aLimits);
