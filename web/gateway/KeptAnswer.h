// Answers about the gateway itself: its version, unfinished commands, backups of tables.
#pragma once

#include <string>

#include "Answer.h"
#include "Settings.h"

/// Whether the path is one of these, or may be: a backup that is not there is answered with 404.
bool isKeptPath(const std::string& aPath);

Answer answerKept(const std::string& aPath, const Settings& aSettings);

/// The rendered answer, with the number of commands that were interrupted if there are any: whoever
/// asks for anything learns of them.
std::string withInterruptions(const std::string& aRendered, const Settings& aSettings);
