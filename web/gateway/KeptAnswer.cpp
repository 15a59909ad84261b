// Answers about the gateway itself: its version, unfinished commands, backups of tables.
#include "KeptAnswer.h"

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <optional>
#include <vector>

#include "Backups.h"
#include "BegunCommands.h"
#include "Json.h"

namespace gateway {

namespace {

constexpr char cUnfinished[] = "/api/unfinished";
constexpr char cAbout[] = "/api/about";

constexpr char cVersion[] = R"({"version":")" GC_WEB_VERSION R"("})";

struct BackupsRow {
  const char* path;
  eOperation table;
};

constexpr BackupsRow cBackups[] = {
    {"/api/backups/sequence", eOperation::eSequence},
    {"/api/backups/calibration", eOperation::eCalibration},
};

bool begins(const std::string& aText, const std::string& aBeginning) {
  return aText.compare(0, aBeginning.size(), aBeginning) == 0;
}

/// The row for a list or one of its entries; null if there is none.
const BackupsRow* findBackups(const std::string& aPath) {
  for (const BackupsRow& row : cBackups) {
    if (aPath == row.path || begins(aPath, std::string(row.path) + '/')) {
      return &row;
    }
  }
  return nullptr;
}

/// Parses log lines into a list.
rapidjson::Value listOf(const std::vector<std::string>& aLines,
                        rapidjson::Document::AllocatorType& allocator) {
  rapidjson::Value list(rapidjson::kArrayType);
  for (const std::string& line : aLines) {
    rapidjson::Document entry(&allocator);
    if (parseJson(line, entry)) {
      list.PushBack(entry, allocator);
    }
  }
  return list;
}

Answer answerUnfinished(const Settings& aSettings) {
  const UnfinishedCommands unfinished = findUnfinished(aSettings.data);
  rapidjson::Document document(rapidjson::kObjectType);
  auto& allocator = document.GetAllocator();
  document.AddMember("going_on", listOf(unfinished.goingOn, allocator), allocator);
  document.AddMember("interrupted", listOf(unfinished.interrupted, allocator), allocator);
  rapidjson::StringBuffer buffer;
  rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
  document.Accept(writer);
  return {200, buffer.GetString(), "unfinished", ""};
}

}  // namespace

bool isKeptPath(const std::string& aPath) {
  return aPath == cUnfinished || aPath == cAbout || findBackups(aPath) != nullptr;
}

Answer answerKept(const std::string& aPath, const Settings& aSettings) {
  const BackupsRow* row = findBackups(aPath);
  if (row == nullptr) {
    return aPath == cAbout ? Answer{200, cVersion, "about", ""} : answerUnfinished(aSettings);
  }
  const std::string list = row->path;
  if (aPath == list) {
    return {200, listBackups(aSettings.data, row->table), "backups", ""};
  }
  const auto table = readBackup(aSettings.data, row->table, aPath.substr(list.size() + 1));
  return table ? Answer{200, *table, std::string(schemaOf(row->table)) + "-file", ""}
               : problem(404, "There is no such backup.");
}

std::string withInterruptions(const std::string& aRendered, const Settings& aSettings) {
  const std::size_t count = findUnfinished(aSettings.data).interrupted.size();
  return count == 0 ? aRendered
                    : withHeader(aRendered, "X-GC-Interrupted: " + std::to_string(count) + "\r\n");
}

}  // namespace gateway
