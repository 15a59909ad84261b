// The log of commands: who ordered what, written before it begins and after it ends.
#pragma once

#include <string>

#include "Descriptor.h"
#include "Operation.h"

namespace gateway {

struct CommandEntry {
  std::string id;  ///< the same in all lines about one command
  std::string user;
  std::string address;  ///< the browser's
  ToolCall call;
};

/// A unique command identifier: 16 hexadecimal digits.
std::string newCommandId();

// Each is one line of JSON, including its newline.

std::string begunLine(const CommandEntry& aEntry);

/// `aStatus`: of the answer. `aDocument`: the result as JSON, or empty.
std::string endedLine(const CommandEntry& aEntry, int aStatus, const std::string& aDocument);

/// An abort that was requested while one of the same kind was running, and shares its answer.
std::string sharedLine(const CommandEntry& aEntry);

/// Somebody has acknowledged that the command was interrupted. The entry has no call.
std::string seenLine(const CommandEntry& aEntry);

class CommandLog {
 public:
  /// Opens the file, or creates it.
  explicit CommandLog(const std::string& aPath);

  bool isOpen() const { return mFile.isOpen(); }
  /// Appends a line, never to an incomplete line left by an interruption; to the new file if the
  /// log has been rotated. True if the line is on disk; otherwise none of it is in the file.
  bool add(const std::string& aLine) const;
  /// The same, and makes sure that there will be room for the line about the end.
  bool addFirstOfTwo(const std::string& aLine) const;

 private:
  /// Also false if the file is not open.
  bool write(const std::string& aLine, std::size_t aRoom) const;

  std::string mPath;
  Descriptor mFile;
};

}  // namespace gateway
