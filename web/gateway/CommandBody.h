// What a command's path and body ask the tool to do.
#pragma once

#include <optional>
#include <string>

#include "Answer.h"
#include "Operation.h"
#include "Settings.h"

struct CommandRow {
  const char* path;
  const char* method;
  const char* schema;  ///< of the body; name of the schema's file if the body is a file
  eOperation file;     ///< what is done with a body that is a file; else eCount
};

/// Null for a path that has no command.
const CommandRow* findCommand(const std::string& aPath);

/// Fills the operation and number of the call; the file is left to the caller. The operation is
/// eCount when there is nothing for the tool to do. Returns the answer to a body that does not fit.
std::optional<Answer> readCommand(const CommandRow& aRow, const std::string& aBody,
                                  const Settings& aSettings, ToolCall& call);
