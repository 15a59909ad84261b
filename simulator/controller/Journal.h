// The journal: one line of JSON for every call that a client made.
#pragma once

#include <InstrumentClient.h>
#include <JsonText.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace simulator {

/// One line in the making: an object whose members come in the order of the calls below.
class JournalEntry {
 public:
  JournalEntry();

  void add(const char* aKey, double aValue);
  void add(const char* aKey, std::uint64_t aValue);
  void add(const char* aKey, const std::string& aText);
  void add(const char* aKey, const std::vector<ParamList>& aRecords);

  /// Ends the object and returns it: valid JSON in one line, whatever octets the texts had.
  std::string finish();

 private:
  rapidjson::StringBuffer mBuffer;
  JsonWriter mWriter;
};

/// Keeps the last lines, and appends every line to a file when one is open.
class Journal {
 public:
  static constexpr std::size_t cMaxLines = 1000;
  static constexpr std::size_t cMaxOctets = 8'000'000;  ///< of all lines that are kept

  Journal() = default;
  ~Journal();
  Journal(const Journal&) = delete;
  Journal& operator=(const Journal&) = delete;

  /// Opens the file to append to. False, with the reason in `error`, when that is not possible.
  bool open(const std::string& aPath, std::string& error);

  /// Takes a line, without its newline, as JournalEntry::finish() returns it.
  void write(const std::string& aLine);

  /// Oldest first.
  const std::deque<std::string>& lines() const { return mLines; }

 private:
  int mFile = -1;
  bool mComplained = false;
  std::deque<std::string> mLines;
  std::size_t mOctets = 0;
};

}  // namespace simulator
