// The log of commands: who had what done, before it began and after it ended.
#pragma once

#include <string>

#include "Descriptor.h"
#include "Operation.h"

struct CommandEntry {
  std::string id;  ///< the same in all lines about a command
  std::string user;
  std::string address;  ///< the browser's
  ToolCall call;
};

/// An identifier that no other command has: 16 hexadecimal digits.
std::string newCommandId();

// Each is one line of JSON, with its end.

std::string begunLine(const CommandEntry& aEntry);

/// `aStatus`: of the answer. `aDocument`: how it went; JSON, or empty.
std::string endedLine(const CommandEntry& aEntry, int aStatus, const std::string& aDocument);

/// An abort that was asked for while the same was being done, and has its answer.
std::string sharedLine(const CommandEntry& aEntry);

/// Somebody has taken note that the command was interrupted. The entry has no call.
std::string seenLine(const CommandEntry& aEntry);

class CommandLog {
 public:
  /// Opens the file, which is made when it is not there.
  explicit CommandLog(const std::string& aPath);

  bool isOpen() const { return mFile.isOpen(); }
  /// Adds a line behind all others, and to none that an interruption has left torn; in the new file
  /// when the log has been rotated meanwhile. True when it is on the disk; otherwise nothing of it
  /// is in the file.
  bool add(const std::string& aLine) const;
  /// The same, and sees to it that the line about the end will have room.
  bool addFirstOfTwo(const std::string& aLine) const;

 private:
  bool write(const std::string& aLine, std::size_t aRoom) const;

  bool isRotated() const;

  std::string mPath;
  Descriptor mFile;
};
