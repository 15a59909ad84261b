// Answers to requests for commands.
#include "CommandAnswer.h"

#include <sys/mman.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <optional>

#include "AbortTurn.h"
#include "Backups.h"
#include "BegunCommands.h"
#include "CommandBody.h"
#include "CommandLog.h"
#include "Descriptor.h"
#include "Diagnosis.h"
#include "FileLock.h"
#include "KeptAnswer.h"
#include "Request.h"
#include "TableFile.h"
#include "ToolProcess.h"
#include "Verdict.h"

namespace gateway {

namespace {

constexpr char cNoState[] =
    "The folder GC_WEB_STATE is not writable; nothing was done. Check that it exists, belongs to "
    "the web server, and is not full.";
constexpr char cNoLog[] =
    "The command log (GC_WEB_LOG) is not writable; nothing was done. Check that its folder exists, "
    "belongs to the web server, and that the disk is not full.";
constexpr char cNoData[] =
    "The folder GC_WEB_DATA is not writable; nothing was done. Check that it exists, belongs to "
    "the web server, and that the disk is not full.";
constexpr char cTooLate[] =
    "The machine was too slow to start the command in time; nothing was done. Try again.";

/// A requested command and everything needed to carry it out.
struct Order {
  cgicc::CgiInput& input;
  const Limits& limits;
  Clock::time_point asked = Clock::now();
  Settings settings = {};
  std::string body = {};
  CommandEntry entry = {};
};

/// Checks the whole request and reads what it asks for.
std::optional<Answer> readRequest(Order& order, Command& command) {
  const CommandRow* row = findCommand(pathOf(order.input));
  if (row == nullptr) {
    return problem(404, "There is no such command.");
  }
  if (order.input.getenv("REQUEST_METHOD") != row->method) {
    return methodNotAllowed(row->method);
  }
  std::optional<Answer> fault = readCommandSettings(order.input, order.settings);
  if (!fault) {
    fault = findHeaderFault(order.input);
  }
  if (fault) {
    return fault;
  }
  std::optional<std::string> whole = readBody(order.input);
  if (!whole) {
    return problem(400, "The body is shorter than its Content-Length.");
  }
  order.body = *whole;
  return readCommand(*row, order.body, order.settings, command);
}

/// An unnamed file, which disappears with the last process that has it open.
Descriptor makeFile(const std::string& aContent) {
  Descriptor file(::memfd_create("upload", MFD_CLOEXEC));
  if (file.isOpen() && ::write(file.get(), aContent.data(), aContent.size()) !=
                           static_cast<ssize_t>(aContent.size())) {
    file.close();
  }
  return file;
}

/// From here on the command is carried out to the end: the web server signals that the browser has
/// disconnected, a service manager that the system is stopping.
void ignoreFarewells() {
  for (const int number : {SIGPIPE, SIGTERM, SIGINT, SIGHUP}) {
    std::signal(number, SIG_IGN);
  }
}

/// Backs up the table that a download replaces. Returns the answer if that fails: no table may be
/// lost.
std::optional<Answer> keepTable(const Order& aOrder) {
  const eOperation table = tableOf(aOrder.entry.call.operation);
  ToolProcess tool(aOrder.settings, aOrder.limits, {table});
  tool.waitUntil(Clock::now() + aOrder.limits.report);
  Answer present = judge(table, tool.outcome());
  // A result object is not a table, whatever its code.
  if (present.status != 200 || present.schema != schemaOf(table)) {
    diagnose(aOrder.input, aOrder.settings, aOrder.entry.call.operation, present.status,
             tool.outcome().errors);
    // An unreachable instrument is reported in the usual way.
    return present.status == 503
               ? present
               : problem(present.status == 504 ? 504 : 502,
                         "The current table could not be read, so the new one was not sent: the "
                         "instrument still has the current one. Try again.");
  }
  const CommandEntry& entry = aOrder.entry;
  const auto download = tableFileOf(table, present.body);
  if (!download ||
      !keepBackup(aOrder.settings.data, table, {entry.id, entry.user, entry.address}, *download)) {
    return problem(500,
                   "The current table could not be backed up in GC_WEB_DATA, so the new one was "
                   "not sent: the instrument still has the current one. Is the disk full?");
  }
  return std::nullopt;
}

/// Starts the tool and makes sure that the log tells how it ended. Replies early if that takes
/// longer than the browser waits.
void carryOut(const Order& aOrder, const CommandLog& aLog, const BegunCommand& aBegun,
              const FileLock& aLock, const Reply& aReply) {
  const eOperation operation = aOrder.entry.call.operation;
  const Limits& limits = aOrder.limits;
  ToolProcess tool(aOrder.settings, limits, aOrder.entry.call, {aLock.file(), aBegun.file()});
  const bool hasEnded =
      tool.waitUntil(Clock::now() + (isAbort(operation) ? limits.abort : limits.command));
  const Answer answer = judge(operation, tool.outcome());
  if (!hasEnded) {
    aReply(render(answer));
    // A hung command would block all others for ever; an abort is ended at once.
    if (isAbort(operation) || !tool.waitUntil(Clock::now() + limits.hung)) {
      tool.end();
    }
  }
  diagnose(aOrder.input, aOrder.settings, operation, answer.status, tool.outcome().errors);
  const std::string document = judge(operation, tool.outcome()).body;
  if (aLog.add(endedLine(aOrder.entry, answer.status, document))) {
    aBegun.forget();
  } else {
    std::fputs("The end of a command could not be written to the command log.\n", stderr);
  }
  if (hasEnded) {
    aReply(render(answer));
  }
}

/// Everything from the first log line on, which is on disk before the tool is started.
void begin(Order& order, const FileLock& aLock, const Reply& aReply) {
  CommandEntry& entry = order.entry;
  if (takesFile(entry.call.operation)) {
    if (const std::optional<Answer> fault = keepTable(order)) {
      aReply(render(*fault));
      return;
    }
  }
  Descriptor file;
  if (takesFile(entry.call.operation)) {
    file = makeFile(order.body);
    if (!file.isOpen()) {
      aReply(render(problem(500, "The file could not be stored; nothing was done.")));
      return;
    }
    entry.call.file = file.get();
  }
  const CommandLog log(order.settings.log);
  const std::string line = begunLine(entry);
  const BegunCommand begun(order.settings.data, entry.id, line);
  if (!begun.isKept()) {
    aReply(render(problem(500, cNoData)));
    return;
  }
  if (!log.isOpen() || !log.addFirstOfTwo(line)) {
    begun.forget();
    aReply(render(problem(500, cNoLog)));
    return;
  }
  if (Clock::now() > order.asked + order.limits.begin) {
    // A disk can stall. By then the client has had another answer and may try again.
    const Answer late = problem(500, cTooLate);
    if (log.add(endedLine(entry, late.status, late.body))) {
      begun.forget();
    }
    aReply(render(late));
    return;
  }
  carryOut(order, log, begun, aLock, aReply);
}

/// Aborts do not wait for other commands. An abort that finds another of its kind running waits for
/// it, and shares its answer if that answer is true of both.
void abort(Order& order, const FileLock& aLock, const FileLock& aCommands, const Reply& aReply) {
  AbortTurn turn(aLock, aCommands);
  if (!aLock.tryLock()) {
    // The other one is ended within this time.
    if (!aLock.lockUntil(Clock::now() + order.limits.abort + order.limits.otherCommand)) {
      aReply(render(problem(
          504, "Another abort is still in progress, so this one was not started. Try again.")));
      return;
    }
    if (const std::optional<std::string> answer = turn.sharedAnswer()) {
      // Records who else asked. The abort is done, whether or not the log takes the line.
      CommandLog(order.settings.log).add(sharedLine(order.entry));
      aReply(*answer);
      return;
    }
  }
  ignoreFarewells();
  turn.begin();
  begin(order, aLock, [&](const std::string& aRendered) {
    turn.share(aRendered);
    aReply(aRendered);
  });
}

void command(Order& order, const FileLock& aLock, const Reply& aReply) {
  if (!aLock.lockUntil(Clock::now() + order.limits.otherCommand)) {
    aReply(render(problem(409,
                          "Another command is still in progress, so this one was not started. Try "
                          "again when it has finished.")));
    return;
  }
  ignoreFarewells();
  if (!markCommandBegun(aLock)) {
    aReply(render(problem(500, cNoState)));
    return;
  }
  begin(order, aLock, aReply);
}

/// Somebody has acknowledged an interrupted command, so it is no longer reported.
Answer takeNote(Order& order, const std::string& aId) {
  switch (findInterrupted(order.settings.data, aId)) {
    case eInterruption::eGoesOn:
      return problem(409, "The command is still in progress.");
    case eInterruption::eNone:
      return problem(404, "There is no such interrupted command.");
    case eInterruption::eFound:
      break;
  }
  order.entry.id = aId;
  const CommandLog log(order.settings.log);
  if (!log.isOpen() || !log.add(seenLine(order.entry))) {
    return problem(500, cNoLog);
  }
  forgetInterrupted(order.settings.data, aId);
  return {204, "", "", ""};
}

/// Requests that the gateway handles by itself.
Answer answerWithoutTool(Order& order, const Command& aCommand) {
  if (aCommand.command == eCommand::eSeen) {
    return takeNote(order, aCommand.id);
  }
  if (aCommand.command == eCommand::eLogout) {
    // A browser forgets a rejected password, and without a challenge asks for no other.
    return problem(401, "You are signed out.");
  }
  return {204, "", "", ""};
}

/// Adds a header with the user's name, since the browser does not tell its page whose password it
/// sent. Percent-encoded, since names may contain any octets.
std::string withUser(const std::string& aRendered, const std::string& aUser) {
  return aUser.empty() ? aRendered
                       : withHeader(aRendered, "X-GC-User: " + percentEncoded(aUser) + "\r\n");
}

}  // namespace

void answerCommand(cgicc::CgiInput& input, const Limits& aLimits, const Reply& aReply) {
  Order order{input, aLimits};
  const std::string user = input.getenv("REMOTE_USER");
  const Reply reply = [&](const std::string& aRendered) {
    const std::string named = withUser(aRendered, user);
    aReply(order.settings.data.empty() ? named : withInterruptions(named, order.settings));
  };
  Command asked;
  if (const std::optional<Answer> fault = readRequest(order, asked)) {
    reply(render(*fault));
    return;
  }
  order.entry = {newCommandId(), user, input.getenv("REMOTE_ADDR"),
                 asked.call.value_or(ToolCall())};
  if (!asked.call) {
    reply(render(answerWithoutTool(order, asked)));
    return;
  }
  const eOperation operation = asked.call->operation;
  const FileLock lock(order.settings.state + '/' + lockOf(operation));
  if (!lock.isOpen()) {
    reply(render(problem(500, cNoState)));
    return;
  }
  if (!isAbort(operation)) {
    command(order, lock, reply);
    return;
  }
  const FileLock commands(order.settings.state + '/' + lockOf(eOperation::eSingleRun));
  if (!commands.isOpen()) {
    reply(render(problem(500, cNoState)));
    return;
  }
  abort(order, lock, commands, reply);
}

}  // namespace gateway
