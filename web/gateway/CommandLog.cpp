// The log of commands: who ordered what, written before it begins and after it ends.
#include "CommandLog.h"

#include <fcntl.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <vector>

#include "Json.h"
#include "StoredFile.h"
#include "UtcTime.h"

namespace gateway {

namespace {

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

// A verdict is at most a tenth of that.
constexpr std::size_t cLongestDocument = 2000;
// What the second line has in addition to the first, with every octet of a text escaped.
constexpr std::size_t cRoomForTheEnd = 16384;

void addText(Writer& writer, const char* aKey, const std::string& aText) {
  writer.Key(aKey);
  writer.String(repairUtf8(aText));
}

/// Without a file name, which only the tool can use.
void addCommand(Writer& writer, const ToolCall& aCall) {
  writer.Key("command");
  writer.StartArray();
  for (const std::string& argument :
       takesFile(aCall.operation) ? optionsOf(aCall.operation) : argumentsOf(aCall)) {
    writer.String(argument);
  }
  writer.EndArray();
}

/// An empty document becomes null. Output that is not a verdict of the tool may be of any length:
/// its beginning is kept as a text.
void addDocument(Writer& writer, const std::string& aDocument) {
  if (aDocument.size() > cLongestDocument) {
    addText(writer, "document", aDocument.substr(0, cLongestDocument));
    return;
  }
  const std::string& text = aDocument.empty() ? "null" : aDocument;
  writer.Key("document");
  rapidjson::Reader reader;
  rapidjson::MemoryStream stream(text.data(), text.size());
  reader.Parse<cParseFlags>(stream, writer);
}

/// The members common to all lines.
void beginLine(Writer& writer, const char* aEvent, const CommandEntry& aEntry) {
  writer.StartObject();
  addText(writer, "time", utcNow());
  addText(writer, "id", aEntry.id);
  addText(writer, "event", aEvent);
  addText(writer, "user", aEntry.user);
  addText(writer, "address", aEntry.address);
}

std::string endLine(Writer& writer, rapidjson::StringBuffer& line) {
  writer.EndObject();
  line.Put('\n');
  return line.GetString();
}

std::string lineAbout(const char* aEvent, const CommandEntry& aEntry) {
  rapidjson::StringBuffer line;
  Writer writer(line);
  beginLine(writer, aEvent, aEntry);
  addCommand(writer, aEntry.call);
  return endLine(writer, line);
}

/// Whether the last line has no newline.
bool isTorn(int aFile, off_t aSize) {
  char last = '\n';
  return aSize > 0 && (::pread(aFile, &last, 1, aSize - 1) != 1 || last != '\n');
}

/// Reserves space for the file to grow into, if the file system supports it.
bool setAside(int aFile, off_t aFrom, std::size_t aSize) {
  return ::fallocate(aFile, FALLOC_FL_KEEP_SIZE, aFrom, static_cast<off_t>(aSize)) == 0 ||
         errno == EOPNOTSUPP || errno == ENOSYS;
}

}  // namespace

std::string newCommandId() {
  std::array<unsigned char, 8> octets = {};
  // Eight octets always arrive at once, unless the system has no random source and nothing would be
  // safe.
  while (::getrandom(octets.data(), octets.size(), 0) != static_cast<ssize_t>(octets.size())) {
  }
  std::string id;
  for (const unsigned octet : octets) {
    id += "0123456789abcdef"[octet / 16];
    id += "0123456789abcdef"[octet % 16];
  }
  return id;
}

std::string begunLine(const CommandEntry& aEntry) {
  return lineAbout("begun", aEntry);
}

std::string sharedLine(const CommandEntry& aEntry) {
  return lineAbout("shared", aEntry);
}

std::string endedLine(const CommandEntry& aEntry, int aStatus, const std::string& aDocument) {
  rapidjson::StringBuffer line;
  Writer writer(line);
  beginLine(writer, "ended", aEntry);
  addCommand(writer, aEntry.call);
  writer.Key("status");
  writer.Int(aStatus);
  addDocument(writer, aDocument);
  return endLine(writer, line);
}

std::string seenLine(const CommandEntry& aEntry) {
  rapidjson::StringBuffer line;
  Writer writer(line);
  beginLine(writer, "seen", aEntry);
  return endLine(writer, line);
}

CommandLog::CommandLog(const std::string& aPath)
    : mPath(aPath), mFile(::open(aPath.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC, 0640)) {}

bool CommandLog::add(const std::string& aLine) const {
  // By its name: after a rotation the open file may be in the middle of compression, and lines
  // added to it would be removed with it.
  return CommandLog(mPath).write(aLine, 0) || write(aLine, 0);
}

bool CommandLog::addFirstOfTwo(const std::string& aLine) const {
  return write(aLine, aLine.size() + cRoomForTheEnd);
}

bool CommandLog::write(const std::string& aLine, std::size_t aRoom) const {
  struct stat file = {};
  // An abort is logged in parallel with another command; each holds the lock for one line.
  if (::flock(mFile.get(), LOCK_EX) != 0 || ::fstat(mFile.get(), &file) != 0 ||
      file.st_nlink == 0) {
    return false;
  }
  const std::string text = isTorn(mFile.get(), file.st_size) ? '\n' + aLine : aLine;
  const bool isWritten =
      setAside(mFile.get(), file.st_size, text.size() + aRoom) &&
      ::write(mFile.get(), text.data(), text.size()) == static_cast<ssize_t>(text.size()) &&
      ::fdatasync(mFile.get()) == 0 && (file.st_size > 0 || syncFolder(parentOf(mPath)));
  if (!isWritten) {
    static_cast<void>(::ftruncate(mFile.get(), file.st_size));
  }
  ::flock(mFile.get(), LOCK_UN);
  return isWritten;
}

}  // namespace gateway
