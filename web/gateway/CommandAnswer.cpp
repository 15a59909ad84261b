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

namespace {

constexpr char cNoState[] =
    "The folder GC_WEB_STATE cannot be written to; nothing was done. Is it there, the web server's "
    "own, and not full?";
constexpr char cNoLog[] =
    "The log of commands (GC_WEB_LOG) cannot be written to; nothing was done. Is its folder there, "
    "the web server's own, and the disk not full?";
constexpr char cNoData[] =
    "The folder GC_WEB_DATA cannot be written to; nothing was done. Is it there, the web server's "
    "own, and the disk not full?";
constexpr char cTooLate[] =
    "The machine was so slow that the command could not begin in time; nothing was done. Try "
    "again.";

/// A command that is asked for, and all that it needs on its way.
struct Order {
  cgicc::CgiInput& input;
  const Limits& limits;
  Clock::time_point asked = Clock::now();
  Settings settings = {};
  std::string body = {};
  CommandEntry entry = {};
};

/// Checks the whole request and fills what it asks for.
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
/// browser has gone, and a service manager that the system stops.
void ignoreFarewells() {
  for (const int number : {SIGPIPE, SIGTERM, SIGINT, SIGHUP}) {
    std::signal(number, SIG_IGN);
  }
}

/// Keeps the table that a download replaces. Returns the answer when that fails: nothing may be
/// lost.
std::optional<Answer> keepTable(const Order& aOrder) {
  const eOperation table = tableOf(aOrder.entry.call.operation);
  ToolProcess tool(aOrder.settings, aOrder.limits, {table});
  tool.waitUntil(Clock::now() + aOrder.limits.report);
  Answer present = judge(table, tool.outcome());
  // A result object is no table, whatever its code.
  if (present.status != 200 || present.schema != schemaOf(table)) {
    diagnose(aOrder.input, aOrder.settings, aOrder.entry.call.operation, present.status,
             tool.outcome().errors);
    // That the instrument is not there is told as always.
    return present.status == 503
               ? present
               : problem(present.status == 504 ? 504 : 502,
                         "The present table could not be read, so none was sent: the instrument "
                         "keeps the one that it has. Try again.");
  }
  const CommandEntry& entry = aOrder.entry;
  const auto download = tableFileOf(table, present.body);
  if (!download ||
      !keepBackup(aOrder.settings.data, table, {entry.id, entry.user, entry.address}, *download)) {
    return problem(500,
                   "The present table cannot be kept in GC_WEB_DATA, so none was sent: the "
                   "instrument keeps the one that it has. Is the disk full?");
  }
  return std::nullopt;
}

/// Starts the tool and sees to it that the log tells how it ended. Replies in between when that
/// takes longer than the browser waits.
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
    // Else nobody could ever command again; an abort is not waited for at all.
    if (isAbort(operation) || !tool.waitUntil(Clock::now() + limits.hung)) {
      tool.end();
    }
  }
  diagnose(aOrder.input, aOrder.settings, operation, answer.status, tool.outcome().errors);
  const std::string document = judge(operation, tool.outcome()).body;
  if (aLog.add(endedLine(aOrder.entry, answer.status, document))) {
    aBegun.forget();
  } else {
    std::fputs("The log of commands lacks a line about the end of one.\n", stderr);
  }
  if (hasEnded) {
    aReply(render(answer));
  }
}

/// Everything from the log's first line on, which is on the disk before the tool is started.
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
      aReply(render(problem(500, "The file cannot be kept; nothing was done.")));
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
    // A disk can hold everything up. Who asked is told something else by then, and may ask again.
    const Answer late = problem(500, cTooLate);
    if (log.add(endedLine(entry, late.status, late.body))) {
      begun.forget();
    }
    aReply(render(late));
    return;
  }
  carryOut(order, log, begun, aLock, aReply);
}

/// Aborts go beside everything else. One that finds another of its kind waits for it, and has its
/// answer if that is true of both.
void abort(Order& order, const FileLock& aLock, const FileLock& aCommands, const Reply& aReply) {
  AbortTurn turn(aLock, aCommands);
  if (!aLock.tryLock()) {
    // The other is ended in that time.
    if (!aLock.lockUntil(Clock::now() + order.limits.abort + order.limits.otherCommand)) {
      aReply(render(
          problem(504, "Another abort is still going on, so this one was not begun. Try again.")));
      return;
    }
    if (const std::optional<std::string> answer = turn.sharedAnswer()) {
      // Who asked for it too. It has been done, whether the log takes that or not.
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
                          "Another command is still going on, so this one was not begun. Try "
                          "again when it has ended.")));
    return;
  }
  ignoreFarewells();
  if (!markCommandBegun(aLock)) {
    aReply(render(problem(500, cNoState)));
    return;
  }
  begin(order, aLock, aReply);
}

/// Somebody has taken note of an interrupted command, which is not told any more.
Answer takeNote(Order& order, const std::string& aId) {
  switch (findInterrupted(order.settings.data, aId)) {
    case eInterruption::eGoesOn:
      return problem(409, "The command is still going on.");
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

/// What is for the gateway itself to do.
Answer answerWithoutTool(Order& order, const Command& aCommand) {
  switch (aCommand.purpose) {
    case ePurpose::eSeen:
      return takeNote(order, aCommand.id);
    case ePurpose::eLogout:
      // A browser forgets a password that was refused, and without a challenge asks for no other.
      return problem(401, "You are signed out.");
    case ePurpose::eLogin:
    case ePurpose::eTool:
      break;
  }
  return {204, "", "", ""};
}

/// The rendered answer, which tells the browser whom it has sent the password of: it does not say
/// so itself. Names in percent-encoding, as they may hold any octets.
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
  order.entry = {newCommandId(), user, input.getenv("REMOTE_ADDR"), asked.call};
  if (asked.purpose != ePurpose::eTool) {
    reply(render(answerWithoutTool(order, asked)));
    return;
  }
  const eOperation operation = asked.call.operation;
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
