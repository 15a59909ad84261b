// Answers about the gateway itself: its version, unfinished commands, backups of tables.
#pragma once

#include <string>

#include "Answer.h"
#include "Settings.h"

namespace gateway {

/// Whether the path belongs to these, even if it names a backup that does not exist (404).
bool isKeptPath(const std::string& aPath);

Answer answerKept(const std::string& aPath, const Settings& aSettings);

/// The rendered answer with the number of interrupted commands, if there are any, so that every
/// client learns of them.
std::string withInterruptions(const std::string& aRendered, const Settings& aSettings);

}  // namespace gateway
