// Commands that have begun and are not known to have ended, on the disk: a restart loses none.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Descriptor.h"

/// A file with the line that the log has about the beginning. It is locked as long as the command
/// goes on: by the gateway, and by the tool, which inherits it and may live longer.
class BegunCommand {
 public:
  /// Keeps the line; see isKept.
  BegunCommand(const std::string& aDataFolder, const std::string& aId, const std::string& aLine);

  /// Whether it is on the disk.
  bool isKept() const { return mIsKept; }
  int file() const { return mFile.get(); }
  /// Removes the file, when the log tells how the command ended or that it was not begun.
  void forget() const;

 private:
  std::string mPath;
  Descriptor mFile;
  bool mIsKept = false;
};

struct UnfinishedCommands {
  std::vector<std::string> goingOn;      ///< lines of the log
  std::vector<std::string> interrupted;  ///< nobody is left who could tell how they ended
};

UnfinishedCommands findUnfinished(const std::string& aDataFolder);

/// How it is with a command that somebody has taken note of.
enum class eInterruption { eFound, eGoesOn, eNone };

/// `aId` as newCommandId makes them. Removes nothing.
eInterruption findInterrupted(const std::string& aDataFolder, const std::string& aId);
void forgetInterrupted(const std::string& aDataFolder, const std::string& aId);
