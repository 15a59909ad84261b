// What the body of a command asks for.
#pragma once

#include <optional>
#include <string>

#include "Answer.h"
#include "CommandPath.h"
#include "Operation.h"
#include "Settings.h"

namespace gateway {

struct Command {
  eCommand command = eCommand::eLogin;
  std::optional<ToolCall> call;  ///< none if the tool is not needed; the caller fills in its file
  std::string id;                ///< for eSeen: the interrupted command's
};

/// Returns the answer to a body that is not valid.
std::optional<Answer> readCommand(const CommandRow& aRow, const std::string& aBody,
                                  const Settings& aSettings, Command& command);

}  // namespace gateway
