// What a command's path and body ask for.
#pragma once

#include <optional>
#include <string>

#include "Answer.h"
#include "Operation.h"
#include "Settings.h"

enum class ePurpose {
  eTool,    ///< something for the tool to do
  eLogin,   ///< checks that the user may send commands; does nothing
  eLogout,  ///< makes the browser forget the user's password
  eSeen,    ///< acknowledges an interrupted command
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
  const char* schema;  ///< name of the body's schema in GC_WEB_SCHEMAS
};

struct Command {
  ePurpose purpose = ePurpose::eTool;
  ToolCall call;   ///< for eTool; the caller fills in its file
  std::string id;  ///< for eSeen: the interrupted command's
};

/// Null if there is no command with this path.
const CommandRow* findCommand(const std::string& aPath);

/// Returns the answer to a body that is not valid.
std::optional<Answer> readCommand(const CommandRow& aRow, const std::string& aBody,
                                  const Settings& aSettings, Command& command);
