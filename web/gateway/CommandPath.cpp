// The paths of the commands.
#include "CommandPath.h"

#include <algorithm>
#include <iterator>

namespace gateway {

namespace {

constexpr CommandRow cCommands[] = {
    {"/api/command/run", "POST", eCommand::eRun, "command-run"},
    {"/api/command/abort", "POST", eCommand::eAbort, "command-abort"},
    {"/api/command/stream", "PUT", eCommand::eStream, "command-stream"},
    {"/api/command/solution", "PUT", eCommand::eSolution, "command-solution"},
    {"/api/command/alarm-reset", "POST", eCommand::eAlarmReset, "command-nothing"},
    {"/api/command/login", "POST", eCommand::eLogin, "command-nothing"},
    {"/api/command/logout", "POST", eCommand::eLogout, "command-nothing"},
    {"/api/command/seen", "POST", eCommand::eSeen, "command-seen"},
    {"/api/command/sequence", "PUT", eCommand::eSequence, "sequence-file"},
    {"/api/command/calibration", "PUT", eCommand::eCalibration, "calibration-file"},
};

}  // namespace

const CommandRow* findCommand(const std::string& aPath) {
  const auto* row = std::find_if(std::begin(cCommands), std::end(cCommands),
                                 [&](const CommandRow& command) { return aPath == command.path; });
  return row == std::end(cCommands) ? nullptr : row;
}

}  // namespace gateway
