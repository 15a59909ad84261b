// One run of the tool: started without a shell, watched, and killed or waited for.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "Descriptor.h"
#include "Operation.h"
#include "Settings.h"

namespace gateway {

/// The result of a run, as far as it is known.
struct Outcome {
  bool started = false;
  bool late = false;     ///< timed out
  bool tooMuch = false;  ///< printed more than the limit, which kills a report; the rest is dropped
  int status = 0;        ///< as from waitpid
  std::string output;
  std::string errors;
};

class ToolProcess {
 public:
  /// Starts the tool. A report's run ends with this process; a command's continues, whatever signal
  /// is sent to all processes, but no longer than the limits allow. `aHeld`: locked files that the
  /// tool inherits, so that the locks last as long as the tool runs.
  ToolProcess(const Settings& aSettings, const Limits& aLimits, const ToolCall& aCall,
              std::vector<int> aHeld = {});
  /// Kills a report that is still running; waits for a command.
  ~ToolProcess();
  ToolProcess(const ToolProcess&) = delete;
  ToolProcess& operator=(const ToolProcess&) = delete;

  /// Waits until the tool has ended (true) or the time is up (false, and late), and reads its
  /// output so far.
  bool waitUntil(Clock::time_point aTime);
  /// Waits without a time limit.
  void waitForEnd();
  /// Kills the tool if it is still running.
  void end();

  const Outcome& outcome() const { return mOutcome; }

 private:
  bool start(const Settings& aSettings, const ToolCall& aCall, std::vector<int> aHeld);
  std::string collect(const Descriptor& aFrom);
  bool reapUntil(Clock::time_point aTime);

  const Limits mLimits;
  const bool mIsReport;
  // Unnamed files. A pipe would wake its reader again and again, which costs more than everything
  // else that the gateway does.
  Descriptor mOutput;
  Descriptor mErrors;
  pid_t mProcess = -1;  ///< -1 if none is running
  Outcome mOutcome;
};

}  // namespace gateway
