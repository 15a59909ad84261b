// Answers to requests for commands.
#include "CommandAnswer.h"

#include <sys/mman.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <optional>

#include "CommandBody.h"
#include "CommandLog.h"
#include "Descriptor.h"
#include "FileLock.h"
#include "Request.h"
#include "ToolProcess.h"
#include "Verdict.h"

namespace {

/// Checks the whole request and fills what it asks for.
std::optional<Answer> readRequest(cgicc::CgiInput& input, Settings& settings, ToolCall& call,
                                  std::string& body) {
  const CommandRow* row = findCommand(pathOf(input));
  if (row == nullptr) {
    return problem(404, "There is no such command.");
  }
  if (input.getenv("REQUEST_METHOD") != row->method) {
    return methodNotAllowed(row->method);
  }
  std::optional<Answer> fault = readCommandSettings(input, settings);
  if (!fault) {
    fault = findHeaderFault(input);
  }
  if (fault) {
    return fault;
  }
  std::optional<std::string> whole = readBody(input);
  if (!whole) {
    return problem(400, "The body is shorter than its Content-Length.");
  }
  body = *whole;
  return readCommand(*row, body, settings, call);
}

/// A file without a name, which goes with the last process that has it open.
Descriptor makeFile(const std::string& aContent) {
  Descriptor file(::memfd_create("upload", MFD_CLOEXEC));
  if (file.isOpen() && ::write(file.get(), aContent.data(), aContent.size()) !=
                           static_cast<ssize_t>(aContent.size())) {
    file.close();
  }
  return file;
}

/// From here on the command is carried to its end: the web server tells with a signal that the
/// browser has gone.
void ignoreFarewells() {
  for (const int number : {SIGPIPE, SIGTERM, SIGINT, SIGHUP}) {
    std::signal(number, SIG_IGN);
  }
}

void carryOut(const Settings& aSettings, const Limits& aLimits, const CommandLog& aLog,
              CommandEntry& entry, const Reply& aReply) {
  ToolProcess tool(aSettings, aLimits, entry.call);
  const bool hasEnded = tool.waitUntil(Clock::now() + aLimits.command);
  const Answer answer = judge(entry.call.operation, tool.outcome());
  if (!hasEnded) {
    aReply(render(answer));
    // Else nobody could ever command again.
    if (!tool.waitUntil(Clock::now() + aLimits.hung)) {
      tool.end();
    }
  }
  entry.status = answer.status;
  entry.document = judge(entry.call.operation, tool.outcome()).body;
  if (!aLog.add(entry)) {
    std::fputs("The log of commands lacks a line.\n", stderr);
  }
  if (hasEnded) {
    aReply(render(answer));
  }
}

}  // namespace

void answerCommand(cgicc::CgiInput& input, const Limits& aLimits, const Reply& aReply) {
  Settings settings;
  std::string body;
  CommandEntry entry;
  if (const std::optional<Answer> fault = readRequest(input, settings, entry.call, body)) {
    aReply(render(*fault));
    return;
  }
  if (entry.call.operation == eOperation::eCount) {
    aReply(render({204, "", "", ""}));
    return;
  }
  const FileLock lock(settings.state + "/command.lock");
  if (!lock.isOpen()) {
    aReply(render(problem(500, "GC_WEB_STATE is no folder to write to.")));
    return;
  }
  if (!lock.lockUntil(Clock::now() + aLimits.otherCommand)) {
    aReply(render(problem(409, "Another command is still going on.")));
    return;
  }
  ignoreFarewells();
  const CommandLog log(settings.log);
  if (!log.isOpen()) {
    aReply(render(problem(500, "GC_WEB_LOG cannot be written to; nothing was done.")));
    return;
  }
  Descriptor file;
  if (takesFile(entry.call.operation)) {
    file = makeFile(body);
    if (!file.isOpen()) {
      aReply(render(problem(500, "The file cannot be kept; nothing was done.")));
      return;
    }
    entry.call.file = file.get();
  }
  entry.user = input.getenv("REMOTE_USER");
  entry.address = input.getenv("REMOTE_ADDR");
  carryOut(settings, aLimits, log, entry, aReply);
}
