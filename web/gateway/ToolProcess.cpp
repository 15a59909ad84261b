// One run of the tool: started without a shell, watched, and killed or waited for.
#include "ToolProcess.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <ctime>
#include <utility>

namespace gateway {

namespace {

// Longest single wait in a system call; the loops around it check the clock.
constexpr std::chrono::milliseconds cLongestWait{1000};
constexpr int cCannotExecute = 127;
// Sent by a service manager to all processes of a service, or on a lost connection.
constexpr int cFarewells[] = {SIGPIPE, SIGTERM, SIGINT, SIGHUP};
// Higher than any descriptor number that the tool is given.
constexpr int cOutOfTheWay = 16;
// Longer than the gateway itself waits, since the gateway can explain why it killed the tool; but
// shorter than another abort waits for the previous one (Limits::otherCommand).
constexpr std::chrono::seconds cAfterTheGateway{4};

/// Milliseconds for the next wait; 0 when the time is up.
int waitBefore(Clock::time_point aTime) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(aTime - Clock::now());
  return static_cast<int>(
      std::clamp(left + std::chrono::milliseconds(1), std::chrono::milliseconds(0), cLongestWait)
          .count());
}

/// The child's end must interrupt a wait, whatever signal settings the web server passes on.
sigset_t holdChildSignal() {
  sigset_t childSignal;
  sigemptyset(&childSignal);
  sigaddset(&childSignal, SIGCHLD);
  std::signal(SIGCHLD, SIG_DFL);
  sigprocmask(SIG_BLOCK, &childSignal, nullptr);
  return childSignal;
}

/// For a command whose gateway may have been killed.
unsigned lifetimeOf(const Limits& aLimits, eOperation aCommand) {
  const auto time = isAbort(aCommand) ? aLimits.abort : aLimits.command + aLimits.hung;
  return static_cast<unsigned>(
      (std::chrono::duration_cast<std::chrono::seconds>(time) + cAfterTheGateway).count());
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

struct Start {
  char* const* arguments;
  char* const* environment;
  int output;
  int errors;
  const int* files;  ///< inherited as descriptors 3, 4, ... in addition to the outputs
  int fileCount;
  rlim_t limit;       ///< of each output
  pid_t endsWith;     ///< the tool is killed when this process ends; 0 for none
  unsigned lifetime;  ///< seconds after which the tool ends even if unattended; 0 for none
};

/// Too much output kills a report; a command continues, without its further output.
bool limitOutput(const Start& aStart) {
  rlimit size = {};
  if (::getrlimit(RLIMIT_FSIZE, &size) != 0) {
    return false;
  }
  size.rlim_cur = std::min(aStart.limit, size.rlim_max);
  std::signal(SIGXFSZ, aStart.endsWith != 0 ? SIG_DFL : SIG_IGN);
  return ::setrlimit(RLIMIT_FSIZE, &size) == 0;
}

/// Moves each file to its number, via copies above the range so that none overwrites another.
bool placeFiles(const Start& aStart) {
  int free[cOutOfTheWay] = {};
  for (int i = 0; i < aStart.fileCount; ++i) {
    free[i] = ::fcntl(aStart.files[i], F_DUPFD, cOutOfTheWay);
  }
  for (int i = 0; i < aStart.fileCount; ++i) {
    if (::dup2(free[i], cToolFile + i) < 0) {
      return false;
    }
  }
  return true;
}

/// Runs in the child up to the exec. It shares this process's memory: system calls only.
[[noreturn]] void becomeTool(const Start& aStart) {
  // The tool would inherit ignored and blocked signals. A command that has begun must finish.
  for (const int number : cFarewells) {
    std::signal(number, aStart.endsWith != 0 ? SIG_DFL : SIG_IGN);
  }
  std::signal(SIGALRM, SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  // Signals to the web server's process group must not reach the tool. A group, not a session: on a
  // busy machine the scheduler makes the first process of a new session wait.
  ::setpgid(0, 0);
  if (aStart.endsWith != 0 &&
      (::prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || ::getppid() != aStart.endsWith)) {
    ::_exit(cCannotExecute);
  }
  const int null = ::open("/dev/null", O_RDONLY);
  if (!limitOutput(aStart) || ::dup2(null, STDIN_FILENO) < 0 ||
      ::dup2(aStart.output, STDOUT_FILENO) < 0 || ::dup2(aStart.errors, STDERR_FILENO) < 0) {
    ::_exit(cCannotExecute);
  }
  if (!placeFiles(aStart)) {
    ::_exit(cCannotExecute);
  }
  ::closefrom(cToolFile + aStart.fileCount);
  // The alarm survives the exec.
  ::alarm(aStart.lifetime);
  ::execve(aStart.arguments[0], aStart.arguments, aStart.environment);
  ::_exit(cCannotExecute);
}

/// Returns after the exec. fork would cost a quarter of the gateway's whole time; posix_spawn
/// cannot make a child end with its parent.
pid_t startTool(const Start& aStart) {
  sigset_t every;
  sigset_t before;
  sigfillset(&every);
  sigprocmask(SIG_SETMASK, &every, &before);
  const pid_t process = ::vfork();
  if (process == 0) {
    becomeTool(aStart);
  }
  sigprocmask(SIG_SETMASK, &before, nullptr);
  return process;
}

}  // namespace

ToolProcess::ToolProcess(const Settings& aSettings, const Limits& aLimits, const ToolCall& aCall,
                         std::vector<int> aHeld)
    : mLimits(aLimits),
      mIsReport(isReport(aCall.operation)),
      mOutput(::memfd_create("output", MFD_CLOEXEC)),
      mErrors(::memfd_create("errors", MFD_CLOEXEC)) {
  mOutcome.started = start(aSettings, aCall, std::move(aHeld));
}

ToolProcess::~ToolProcess() {
  if (mIsReport) {
    end();
  }
  waitForEnd();
}

bool ToolProcess::start(const Settings& aSettings, const ToolCall& aCall, std::vector<int> aHeld) {
  holdChildSignal();
  std::vector<std::string> texts = {aSettings.tool, "-s", aSettings.address};
  for (const std::string& argument : argumentsOf(aCall)) {
    texts.push_back(argument);
  }
  std::vector<std::string> variables;
  if (!aSettings.libraries.empty()) {
    variables.push_back("LD_LIBRARY_PATH=" + aSettings.libraries);
  }
  const std::vector<char*> arguments = pointersTo(texts);
  const std::vector<char*> environment = pointersTo(variables);
  if (!mOutput.isOpen() || !mErrors.isOpen()) {
    return false;
  }
  if (aCall.file >= 0) {
    aHeld.insert(aHeld.begin(), aCall.file);
  }
  const Start childStart = {arguments.data(),
                            environment.data(),
                            mOutput.get(),
                            mErrors.get(),
                            aHeld.data(),
                            static_cast<int>(aHeld.size()),
                            mLimits.output,
                            mIsReport ? ::getpid() : 0,
                            mIsReport ? 0 : lifetimeOf(mLimits, aCall.operation)};
  mProcess = startTool(childStart);
  return mProcess > 0;
}

bool ToolProcess::waitUntil(Clock::time_point aTime) {
  mOutcome.late = !reapUntil(aTime);
  mOutcome.output = collect(mOutput);
  mOutcome.errors = collect(mErrors);
  return !mOutcome.late;
}

void ToolProcess::waitForEnd() {
  while (mProcess > 0) {
    waitUntil(Clock::now() + cLongestWait);
  }
}

void ToolProcess::end() {
  if (mProcess > 0) {
    ::kill(mProcess, SIGKILL);
    waitForEnd();
  }
}

/// What the tool has printed so far.
std::string ToolProcess::collect(const Descriptor& aFrom) {
  struct stat file = {};
  if (!aFrom.isOpen() || ::fstat(aFrom.get(), &file) != 0) {
    return {};
  }
  const auto size = static_cast<std::size_t>(file.st_size);
  mOutcome.tooMuch = mOutcome.tooMuch || size >= mLimits.output;
  std::string text(size, '\0');
  const ssize_t count = ::pread(aFrom.get(), text.data(), text.size(), 0);
  text.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  return text;
}

bool ToolProcess::reapUntil(Clock::time_point aTime) {
  const sigset_t childSignal = holdChildSignal();
  while (mProcess > 0 && ::waitpid(mProcess, &mOutcome.status, WNOHANG) == 0) {
    const int wait = waitBefore(aTime);
    if (wait == 0) {
      return false;
    }
    const timespec time = {wait / 1000, wait % 1000 * 1000000L};
    sigtimedwait(&childSignal, nullptr, &time);
  }
  mProcess = -1;
  return true;
}

}  // namespace gateway
