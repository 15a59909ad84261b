// What the gateway asks of a request before it looks at the body.
#pragma once

#include <cgicc/CgiInput.h>

#include <optional>
#include <string>

#include "Answer.h"

// Of cgicc only its input is used: its CgiEnvironment reads as much of a body as the request claims
// to have, before anybody can look at the length.

/// The path of the request, wherever the web server divides it.
std::string pathOf(cgicc::CgiInput& input);

/// The answer to a method that the path does not have.
Answer methodNotAllowed(const std::string& aAllowed);

/// The answer to a command whose headers are not as they must be.
std::optional<Answer> findHeaderFault(cgicc::CgiInput& input);

/// Reads the body of a request without such a fault; none when it ends early.
std::optional<std::string> readBody(cgicc::CgiInput& input);
