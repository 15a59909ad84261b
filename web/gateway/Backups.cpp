// Backups on disk of the last tables that downloads replaced.
#include "Backups.h"

#include <fcntl.h>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <system_error>
#include <vector>

#include "Descriptor.h"
#include "Json.h"
#include "StoredFile.h"
#include "UtcTime.h"

namespace gateway {

namespace {

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

// Numbers sort in order even if the clock is set back, and are never reused.
constexpr int cDigits = 10;

std::string textOf(const rapidjson::Value& aDocument) {
  rapidjson::StringBuffer buffer;
  Writer writer(buffer);
  aDocument.Accept(writer);
  return buffer.GetString();
}

std::string folderOf(const std::string& aDataFolder, eOperation aTable) {
  return aDataFolder + "/backups/" + schemaOf(aTable);
}

/// Numbers of the files, newest first; files with other names are skipped.
std::vector<unsigned long> numbersIn(const std::string& aFolder) {
  std::vector<unsigned long> numbers;
  for (const std::string& name : namesIn(aFolder)) {
    unsigned long number = 0;
    const auto [end, fault] = std::from_chars(name.data(), name.data() + name.size(), number);
    if (fault == std::errc() && *end == '\0') {
      numbers.push_back(number);
    }
  }
  std::sort(numbers.rbegin(), numbers.rend());
  return numbers;
}

std::string pathOf(const std::string& aFolder, unsigned long aNumber) {
  char name[24] = "";
  std::snprintf(name, sizeof name, "/%0*lu", cDigits, aNumber);
  return aFolder + name;
}

/// A file is a line about the replacement, followed by the table.
struct Backup {
  std::string about;
  std::string table;
};

Backup readFile(const std::string& aPath) {
  const Descriptor file(::open(aPath.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
  const std::string content = file.isOpen() ? contentOf(file.get()) : "";
  const std::size_t line = content.find('\n');
  return line == std::string::npos ? Backup()
                                   : Backup{content.substr(0, line), content.substr(line + 1)};
}

std::string describe(unsigned long aNumber, const Replacement& aBy) {
  rapidjson::StringBuffer buffer;
  Writer writer(buffer);
  writer.StartObject();
  writer.Key("number");
  writer.Uint64(aNumber);
  const struct {
    const char* key;
    std::string text;
  } cTexts[] = {
      {"time", utcNow()}, {"user", aBy.user}, {"address", aBy.address}, {"command", aBy.id}};
  for (const auto& row : cTexts) {
    writer.Key(row.key);
    writer.String(repairUtf8(row.text));
  }
  writer.EndObject();
  return buffer.GetString();
}

/// The file appears under its name complete, or not at all.
bool storeFile(const std::string& aFolder, unsigned long aNumber, const std::string& aContent) {
  const std::string path = pathOf(aFolder, aNumber);
  const std::string unfinished = aFolder + "/.unfinished";
  Descriptor file(
      ::open(unfinished.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600));
  const bool isWritten = file.isOpen() && writeToDisk(file.get(), aContent) &&
                         ::rename(unfinished.c_str(), path.c_str()) == 0 && syncFolder(aFolder);
  if (!isWritten) {
    ::unlink(unfinished.c_str());
  }
  return isWritten;
}

}  // namespace

bool keepBackup(const std::string& aDataFolder, eOperation aTable, const Replacement& aBy,
                const std::string& aDownload) {
  const std::string folder = folderOf(aDataFolder, aTable);
  makeFolder(aDataFolder + "/backups");
  makeFolder(folder);
  const std::vector<unsigned long> numbers = numbersIn(folder);
  // Repeated attempts must not push out the older backups.
  if (!numbers.empty() && readFile(pathOf(folder, numbers.front())).table == aDownload) {
    return true;
  }
  const unsigned long number = numbers.empty() ? 1 : numbers.front() + 1;
  if (!storeFile(folder, number, describe(number, aBy) + '\n' + aDownload)) {
    return false;
  }
  for (std::size_t i = cMostBackups - 1; i < numbers.size(); ++i) {
    ::unlink(pathOf(folder, numbers[i]).c_str());
  }
  return true;
}

std::string listBackups(const std::string& aDataFolder, eOperation aTable) {
  const std::string folder = folderOf(aDataFolder, aTable);
  rapidjson::Document list(rapidjson::kObjectType);
  rapidjson::Value backups(rapidjson::kArrayType);
  for (const unsigned long number : numbersIn(folder)) {
    rapidjson::Document about(&list.GetAllocator());
    const std::string text = readFile(pathOf(folder, number)).about;
    if (parseJson(text, about) && about.IsObject()) {
      backups.PushBack(about, list.GetAllocator());
    }
  }
  list.AddMember("backups", backups, list.GetAllocator());
  return textOf(list);
}

std::optional<std::string> readBackup(const std::string& aDataFolder, eOperation aTable,
                                      const std::string& aNumber) {
  unsigned long number = 0;
  const auto [end, fault] =
      std::from_chars(aNumber.data(), aNumber.data() + aNumber.size(), number);
  if (fault != std::errc() || *end != '\0') {
    return std::nullopt;
  }
  const std::string table = readFile(pathOf(folderOf(aDataFolder, aTable), number)).table;
  return table.empty() ? std::nullopt : std::optional(table);
}

}  // namespace gateway
