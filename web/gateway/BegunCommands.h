// Commands that have begun and are not known to have ended, kept on disk across restarts.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Descriptor.h"

namespace gateway {

/// A file with the command's first log line. It stays locked while the command runs: by the
/// gateway, and by the tool, which inherits it and may outlive the gateway.
class BegunCommand {
 public:
  /// Writes the line; see isKept.
  BegunCommand(const std::string& aDataFolder, const std::string& aId, const std::string& aLine);

  /// Whether the line is on disk.
  bool isKept() const { return mIsKept; }
  int file() const { return mFile.get(); }
  /// Removes the file, once the log tells how the command ended or that it was never started.
  void forget() const;

 private:
  std::string mPath;
  Descriptor mFile;
  bool mIsKept = false;
};

struct UnfinishedCommands {
  std::vector<std::string> goingOn;      ///< lines of the log
  std::vector<std::string> interrupted;  ///< no process is left that could tell how they ended
};

UnfinishedCommands findUnfinished(const std::string& aDataFolder);

/// The state of a command that somebody has acknowledged.
enum class eInterruption { eFound, eGoesOn, eNone };

/// `aId` in the form of newCommandId. Removes nothing.
eInterruption findInterrupted(const std::string& aDataFolder, const std::string& aId);
void forgetInterrupted(const std::string& aDataFolder, const std::string& aId);

}  // namespace gateway
