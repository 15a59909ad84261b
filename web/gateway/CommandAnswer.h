// Answers to requests for commands.
#pragma once

#include <cgicc/CgiInput.h>

#include <functional>
#include <string>

#include "Settings.h"

namespace gateway {

/// Takes the whole output of the CGI program and sends it at once, so that nobody waits for more.
using Reply = std::function<void(const std::string&)>;

/// Replies exactly once, and returns when the command has ended, which may be after the reply if
/// the command took longer than the browser waits.
void answerCommand(cgicc::CgiInput& input, const Limits& aLimits, const Reply& aReply);

}  // namespace gateway
