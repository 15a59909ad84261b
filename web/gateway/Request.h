// Checks on a request before its body is read.
#pragma once

#include <cgicc/CgiInput.h>

#include <optional>
#include <string>

#include "Answer.h"

namespace gateway {

// Only cgicc's input class is used: its CgiEnvironment reads as much of a body as the request
// claims to have, before anything can check the length.

/// The path of the request, however the web server splits it.
std::string pathOf(cgicc::CgiInput& input);

/// The answer to a method that the path does not support.
Answer methodNotAllowed(const std::string& aAllowed);

/// The answer to a command with a missing or invalid header.
std::optional<Answer> findHeaderFault(cgicc::CgiInput& input);

/// Reads the body of a request that passed those checks; none if it ends early.
std::optional<std::string> readBody(cgicc::CgiInput& input);

}  // namespace gateway
