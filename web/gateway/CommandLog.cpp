// The log of commands: who has had what done, and how it went.
#include "CommandLog.h"

#include <fcntl.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <unistd.h>

#include <ctime>
#include <vector>

#include "Json.h"

namespace {

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

// A verdict is a tenth of that at most.
constexpr std::size_t cLongestDocument = 2000;

void addText(Writer& writer, const char* aKey, const std::string& aText) {
  writer.Key(aKey);
  writer.String(repairUtf8(aText));
}

/// The present time, UTC, as in ISO 8601.
std::string timeNow() {
  const std::time_t now = std::time(nullptr);
  std::tm parts = {};
  ::gmtime_r(&now, &parts);
  char text[sizeof "2026-11-21T07:31:35Z"] = "";
  std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
  return text;
}

/// Without a file's name, which is only the tool's.
void addCommand(Writer& writer, const ToolCall& aCall) {
  writer.Key("command");
  writer.StartArray();
  for (const std::string& argument :
       aCall.file < 0 ? argumentsOf(aCall) : optionsOf(aCall.operation)) {
    writer.String(argument);
  }
  writer.EndArray();
}

/// Nothing becomes null. What is no verdict of the tool may be of any length: its beginning is
/// kept, as a text.
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

}  // namespace

CommandLog::CommandLog(const std::string& aPath)
    : mFile(::open(aPath.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0640)) {}

bool CommandLog::add(const CommandEntry& aEntry) const {
  rapidjson::StringBuffer line;
  Writer writer(line);
  writer.StartObject();
  addText(writer, "time", timeNow());
  addText(writer, "user", aEntry.user);
  addText(writer, "address", aEntry.address);
  addCommand(writer, aEntry.call);
  writer.Key("status");
  writer.Int(aEntry.status);
  addDocument(writer, aEntry.document);
  writer.EndObject();
  line.Put('\n');
  return ::write(mFile.get(), line.GetString(), line.GetSize()) ==
         static_cast<ssize_t>(line.GetSize());
}
