// Journal lines are built with rapidjson and leave in one write each, so that readers of the file
// never see half a line.
#include "Journal.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace simulator {

JournalEntry::JournalEntry() : mWriter(mBuffer) {
  mWriter.StartObject();
}

void JournalEntry::add(const char* aKey, double aValue) {
  mWriter.Key(aKey);
  writeReal(mWriter, aValue);
}

void JournalEntry::add(const char* aKey, std::uint64_t aValue) {
  mWriter.Key(aKey);
  mWriter.Uint64(aValue);
}

void JournalEntry::add(const char* aKey, const std::string& aText) {
  mWriter.Key(aKey);
  writeText(mWriter, aText);
}

void JournalEntry::add(const char* aKey, const std::vector<ParamList>& aRecords) {
  const auto addNumber = [this](const char* aName, std::uint32_t aNumber) {
    mWriter.Key(aName);
    mWriter.Uint(aNumber);
  };
  mWriter.Key(aKey);
  mWriter.StartArray();
  for (const ParamList& record : aRecords) {
    mWriter.StartObject();
    addNumber("channel", record.Channel);
    addNumber("method", record.Method);
    addNumber("step", record.Step);
    addNumber("id", record.ParmID);
    mWriter.Key("real");
    writeReal(mWriter, record.realvalue);
    mWriter.Key("int");
    mWriter.Int(record.intvalue);
    addNumber("status", record.ServiceStatus);
    mWriter.EndObject();
  }
  mWriter.EndArray();
}

std::string JournalEntry::finish() {
  mWriter.EndObject();
  return toUtf8(std::string(mBuffer.GetString(), mBuffer.GetSize()));
}

Journal::~Journal() {
  if (mFile >= 0) {
    ::close(mFile);
  }
}

bool Journal::open(const std::string& aPath, std::string& error) {
  mFile = ::open(aPath.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
  if (mFile < 0) {
    error = aPath + ": " + std::strerror(errno);
  }
  return mFile >= 0;
}

void Journal::write(const std::string& aLine) {
  if (mFile >= 0) {
    const std::string line = aLine + '\n';
    const ssize_t written = ::write(mFile, line.data(), line.size());
    if (written != static_cast<ssize_t>(line.size()) && !mComplained) {
      mComplained = true;
      std::fprintf(stderr, "gc-sim: the journal file takes no more lines: %s\n",
                   written < 0 ? std::strerror(errno) : "it is full");
    }
  }
  mLines.push_back(aLine);
  mOctets += aLine.size();
  while (mLines.size() > cMaxLines || (mOctets > cMaxOctets && mLines.size() > 1)) {
    mOctets -= mLines.front().size();
    mLines.pop_front();
  }
}

}  // namespace simulator
