// One run of the tool: started without a shell, watched, and ended or waited for.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "Descriptor.h"
#include "Operation.h"
#include "Settings.h"

/// How a run went, as far as is known.
struct Outcome {
  bool started = false;
  bool late = false;     ///< had not ended in its time
  bool tooMuch = false;  ///< printed more than is kept, which ends a report; the rest is dropped
  int status = 0;        ///< as of waitpid
  std::string output;
  std::string errors;
};

class ToolProcess {
 public:
  /// Starts the tool. A report's ends when this process does; a command's goes on, whatever signal
  /// is sent to all, but not for longer than the limits say. `aHeld`: locked files that the tool
  /// inherits, so that the locks live as long as it does.
  ToolProcess(const Settings& aSettings, const Limits& aLimits, const ToolCall& aCall,
              std::vector<int> aHeld = {});
  /// Ends a report that still runs; waits for a command.
  ~ToolProcess();
  ToolProcess(const ToolProcess&) = delete;
  ToolProcess& operator=(const ToolProcess&) = delete;

  /// Waits until the tool has ended (true) or the time is over (false, and late), and reads what it
  /// has printed.
  bool waitUntil(Clock::time_point aTime);
  /// Waits as long as it takes.
  void waitForEnd();
  /// Ends the tool if it still runs.
  void end();

  const Outcome& outcome() const { return mOutcome; }

 private:
  bool start(const Settings& aSettings, const ToolCall& aCall, std::vector<int> aHeld);
  std::string collect(const Descriptor& aFrom);
  bool reapUntil(Clock::time_point aTime);

  const Limits mLimits;
  const bool mIsReport;
  // Files without names. A pipe's reader is woken again and again, which takes longer than all else
  // that the gateway does.
  Descriptor mOutput;
  Descriptor mErrors;
  pid_t mProcess = -1;  ///< -1 when there is none, or no longer
  Outcome mOutcome;
};
