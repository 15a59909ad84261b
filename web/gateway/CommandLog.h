// The log of commands: who has had what done, and how it went.
#pragma once

#include <string>

#include "Descriptor.h"
#include "Operation.h"

struct CommandEntry {
  std::string user;
  std::string address;  ///< the browser's
  ToolCall call;
  int status = 0;        ///< of the answer
  std::string document;  ///< how it went: JSON, or empty
};

class CommandLog {
 public:
  /// Opens the file, which is made when it is not there.
  explicit CommandLog(const std::string& aPath);

  bool isOpen() const { return mFile.isOpen(); }
  /// Adds one line of JSON, in one write so that lines of several processes never mix. False when
  /// it could not be written whole.
  bool add(const CommandEntry& aEntry) const;

 private:
  Descriptor mFile;
};
