// One run of the tool: started without a shell, watched, and ended or waited for.
#include "ToolProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <ctime>
#include <vector>

namespace {

// Longest single wait in a system call; the loops around it look at the clock.
constexpr std::chrono::milliseconds cLongestWait{1000};
constexpr int cCannotExecute = 127;

struct Pipe {
  Descriptor reader;
  Descriptor writer;
};

bool open(Pipe& aPipe) {
  int ends[2] = {-1, -1};
  if (::pipe2(ends, O_CLOEXEC) != 0) {
    return false;
  }
  aPipe.reader = Descriptor(ends[0]);
  aPipe.writer = Descriptor(ends[1]);
  return true;
}

/// Milliseconds that may be waited in one go; 0 when the time is over.
int waitBefore(Clock::time_point aTime) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(aTime - Clock::now());
  return static_cast<int>(
      std::clamp(left + std::chrono::milliseconds(1), std::chrono::milliseconds(0), cLongestWait)
          .count());
}

/// Its end must interrupt a wait, whatever the web server has set.
sigset_t holdChildSignal() {
  sigset_t childSignal;
  sigemptyset(&childSignal);
  sigaddset(&childSignal, SIGCHLD);
  std::signal(SIGCHLD, SIG_DFL);
  sigprocmask(SIG_BLOCK, &childSignal, nullptr);
  return childSignal;
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
  int file;
  pid_t endsWith;  ///< the process whose end is the tool's too; 0 for none
};

/// The child's way to the tool. Between fork and exec nothing may allocate.
[[noreturn]] void becomeTool(const Start& aStart) {
  // What this process ignores or holds the tool would inherit.
  for (const int number : {SIGPIPE, SIGTERM, SIGINT, SIGHUP}) {
    std::signal(number, SIG_DFL);
  }
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  // A signal to the web server's group is not for the tool. Not a session of its own: on a busy
  // machine the scheduler lets the first process of a new one wait for its turn.
  ::setpgid(0, 0);
  if (aStart.endsWith != 0 &&
      (::prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || ::getppid() != aStart.endsWith)) {
    ::_exit(cCannotExecute);
  }
  const int null = ::open("/dev/null", O_RDONLY);
  if (::dup2(null, STDIN_FILENO) < 0 || ::dup2(aStart.output, STDOUT_FILENO) < 0 ||
      ::dup2(aStart.errors, STDERR_FILENO) < 0) {
    ::_exit(cCannotExecute);
  }
  int firstToClose = STDERR_FILENO + 1;
  if (aStart.file >= 0) {
    // Where it has this number already, dup2 would leave it to be closed.
    if (::dup2(aStart.file, cToolFile) < 0 || ::fcntl(cToolFile, F_SETFD, 0) != 0) {
      ::_exit(cCannotExecute);
    }
    firstToClose = cToolFile + 1;
  }
  ::closefrom(firstToClose);
  ::execve(aStart.arguments[0], aStart.arguments, aStart.environment);
  ::_exit(cCannotExecute);
}

}  // namespace

ToolProcess::ToolProcess(const Settings& aSettings, const Limits& aLimits, const ToolCall& aCall)
    : mLimits(aLimits), mIsReport(isReport(aCall.operation)) {
  mOutcome.started = start(aSettings, aCall);
}

ToolProcess::~ToolProcess() {
  if (mProcess > 0 && mIsReport) {
    ::kill(mProcess, SIGKILL);
    ::waitpid(mProcess, nullptr, 0);
    mProcess = -1;
  }
  waitForEnd();
}

bool ToolProcess::start(const Settings& aSettings, const ToolCall& aCall) {
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
  Pipe output;
  Pipe errors;
  if (!open(output) || !open(errors)) {
    return false;
  }
  const Start childStart = {arguments.data(),    environment.data(), output.writer.get(),
                            errors.writer.get(), aCall.file,         mIsReport ? ::getpid() : 0};
  mProcess = ::fork();
  if (mProcess == 0) {
    becomeTool(childStart);
  }
  mOutput = std::move(output.reader);
  mErrors = std::move(errors.reader);
  return mProcess > 0;
}

bool ToolProcess::waitUntil(Clock::time_point aTime) {
  const bool hasEnded = readUntil(aTime) && reapUntil(aTime);
  mOutcome.late = !hasEnded && !isGivenUp();
  return hasEnded;
}

void ToolProcess::waitForEnd() {
  while (mProcess > 0) {
    waitUntil(Clock::now() + cLongestWait);
  }
}

void ToolProcess::collect(Descriptor& from, std::string& text, std::size_t aLimit) {
  char buffer[16384];
  const ssize_t count = ::read(from.get(), buffer, sizeof buffer);
  if (count > 0) {
    const auto size = static_cast<std::size_t>(count);
    mOutcome.tooMuch = mOutcome.tooMuch || size > aLimit - text.size();
    text.append(buffer, std::min(size, aLimit - text.size()));
  } else if (count == 0 || errno != EINTR) {
    from.close();
  }
}

/// True when the tool has closed both outputs.
bool ToolProcess::readUntil(Clock::time_point aTime) {
  while (mOutput.isOpen() || mErrors.isOpen()) {
    const int wait = waitBefore(aTime);
    if (wait == 0 || isGivenUp()) {
      return false;
    }
    pollfd ends[] = {{mOutput.get(), POLLIN, 0}, {mErrors.get(), POLLIN, 0}};
    if (::poll(ends, 2, wait) <= 0) {
      continue;
    }
    if (ends[0].revents != 0) {
      collect(mOutput, mOutcome.output, mLimits.output);
    }
    if (ends[1].revents != 0) {
      collect(mErrors, mOutcome.errors, mLimits.errors);
    }
  }
  return true;
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
