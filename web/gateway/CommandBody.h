// What a command's path and body ask for.
#pragma once

#include <optional>
#include <string>

#include "Answer.h"
#include "Operation.h"
#include "Settings.h"

enum class ePurpose {
  eTool,    ///< something for the tool to do
  eLogin,   ///< nothing, of somebody who may command
  eLogout,  ///< that the browser forgets who somebody is
  eSeen,    ///< an interrupted command has been taken note of
};

enum class eBody {
  eRun,
  eAbort,
  eStream,
  eSolution,
  eAlarmReset,
  eLogin,
  eLogout,
  eSeen,
  eSequence,
  eCalibration
};

struct CommandRow {
  const char* path;
  const char* method;
  ePurpose purpose;
  eBody body;
  const char* schema;  ///< name of its body's, in GC_WEB_SCHEMAS
};

struct Command {
  ePurpose purpose = ePurpose::eTool;
  ToolCall call;   ///< for eTool; its file is left to the caller
  std::string id;  ///< for eSeen: the interrupted command's
};

/// Null for a path that has no command.
const CommandRow* findCommand(const std::string& aPath);

/// Returns the answer to a body that does not fit.
std::optional<Answer> readCommand(const CommandRow& aRow, const std::string& aBody,
                                  const Settings& aSettings, Command& command);
