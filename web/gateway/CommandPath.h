// The paths of the commands.
#pragma once

#include <string>

namespace gateway {

enum class eCommand {
  eRun,
  eAbort,
  eStream,
  eSolution,
  eAlarmReset,
  eLogin,   ///< checks that the user may send commands; does nothing
  eLogout,  ///< makes the browser forget the user's password
  eSeen,    ///< acknowledges an interrupted command
  eSequence,
  eCalibration
};

struct CommandRow {
  const char* path;
  const char* method;
  eCommand command;
  const char* schema;  ///< name of the body's schema in GC_WEB_SCHEMAS
};

/// Null if there is no command with this path.
const CommandRow* findCommand(const std::string& aPath);

}  // namespace gateway
