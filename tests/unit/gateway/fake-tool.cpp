// Stands in for the tool: carries out the lines passed as its address.
#include <dirent.h>
#include <fcntl.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>

namespace {

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

std::string contentOf(const std::string& aPath) {
  std::ifstream input(aPath, std::ios::binary);
  return {std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>()};
}

void addTexts(Writer& writer, const char* aKey, char** aTexts) {
  writer.Key(aKey);
  writer.StartArray();
  for (; *aTexts != nullptr; ++aTexts) {
    writer.String(*aTexts);
  }
  writer.EndArray();
}

void addDescriptors(Writer& writer) {
  std::set<int> numbers;
  DIR* folder = ::opendir("/proc/self/fd");
  while (const dirent* entry = ::readdir(folder)) {  // NOLINT(concurrency-mt-unsafe)
    if (entry->d_name[0] != '.' && std::atoi(entry->d_name) != ::dirfd(folder)) {
      numbers.insert(std::atoi(entry->d_name));
    }
  }
  ::closedir(folder);
  writer.Key("descriptors");
  writer.StartArray();
  for (const int number : numbers) {
    writer.Int(number);
  }
  writer.EndArray();
}

/// The targets of the open descriptors, from the lowest on.
void addFiles(Writer& writer) {
  writer.Key("files");
  writer.StartArray();
  for (int number = 0; number < 10; ++number) {
    std::array<char, 256> target = {};
    const std::string name = "/proc/self/fd/" + std::to_string(number);
    static_cast<void>(::readlink(name.c_str(), target.data(), target.size() - 1) + 1);
    writer.String(target.data());
  }
  writer.EndArray();
}

/// The ignored or blocked signals, as shown by /proc.
void addSignals(Writer& writer) {
  std::istringstream lines(contentOf("/proc/self/status"));
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("SigIgn:", 0) == 0 || line.rfind("SigBlk:", 0) == 0) {
      writer.Key(line.substr(0, 6).c_str());
      writer.Uint64(std::stoull(line.substr(8), nullptr, 16));
    }
  }
}

/// A document about how this process was started; for a command it needs a code.
void describe(char** aArguments, const std::string& aCode) {
  rapidjson::StringBuffer buffer;
  Writer writer(buffer);
  std::array<char, 256> input = {};
  const ssize_t length = ::readlink("/proc/self/fd/0", input.data(), input.size() - 1);
  writer.StartObject();
  if (!aCode.empty()) {
    writer.Key("ErrorCode");
    writer.Int(std::stoi(aCode));
  }
  addTexts(writer, "arguments", aArguments + 3);
  addTexts(writer, "environment", environ);
  addDescriptors(writer);
  addSignals(writer);
  addFiles(writer);
  writer.Key("alarm");
  writer.Uint(::alarm(0));
  writer.Key("input");
  writer.String(length > 0 ? input.data() : "");
  writer.Key("leads");
  writer.Bool(::getpgrp() == ::getpid());
  writer.EndObject();
  std::cout << buffer.GetString() << std::flush;
}

void obey(const std::string& aVerb, const std::string& aWhat, char** aArguments, int aCount) {
  if (aVerb == "out") {
    std::cout << aWhat << std::flush;
  } else if (aVerb == "err") {
    std::cerr << aWhat << '\n';
  } else if (aVerb == "flood") {
    std::cout << std::string(std::stoul(aWhat), ' ') << std::flush;
  } else if (aVerb == "flood-errors") {
    std::cerr << std::string(std::stoul(aWhat), ' ');
  } else if (aVerb == "exit") {
    std::exit(std::stoi(aWhat));  // NOLINT(concurrency-mt-unsafe)
  } else if (aVerb == "signal") {
    std::raise(std::stoi(aWhat));
  } else if (aVerb == "describe") {
    describe(aArguments, aWhat);
  } else if (aVerb == "note") {
    std::ofstream(aWhat, std::ios::app) << "run\n";
  } else if (aVerb == "await") {  // an octet from the test
    std::ifstream(aWhat).get();
  } else if (aVerb == "hang") {  // with an open end that closes when this process ends
    ::open(aWhat.c_str(), O_WRONLY);
    ::pause();
  } else if (aVerb == "close") {
    ::close(STDOUT_FILENO);
    ::close(STDERR_FILENO);
  } else if (aVerb == "keep") {  // the file of a download
    std::ofstream(aWhat, std::ios::binary) << contentOf(aArguments[aCount - 1]);
  } else if (aVerb == "keep-log") {  // in its present state: its path, and the path of the copy
    const std::size_t blank = aWhat.find(' ');
    std::ofstream(aWhat.substr(blank + 1), std::ios::binary) << contentOf(aWhat.substr(0, blank));
  } else if (aVerb == "files") {  // of a folder in its present state, and the file to list them in
    const std::size_t blank = aWhat.find(' ');
    std::ofstream names(aWhat.substr(blank + 1));
    for (const auto& entry : std::filesystem::directory_iterator(aWhat.substr(0, blank))) {
      names << entry.path().filename().string() << '\n';
    }
  } else if (aVerb == "say-pid") {
    std::ofstream(aWhat) << ::getpid();
  } else if (aVerb == "table") {  // and nothing else, when a table is requested
    if (aCount == 4 && (std::string(aArguments[3]) == "-q" || std::string(aArguments[3]) == "-c")) {
      std::cout << aWhat << std::flush;
      std::exit(0);  // NOLINT(concurrency-mt-unsafe)
    }
  } else {
    std::cerr << "what is " << aVerb << "?\n";
    std::exit(99);  // NOLINT(concurrency-mt-unsafe)
  }
}

}  // namespace

int main(int argc, char* argv[]) {
  std::istringstream lines(argc > 2 ? argv[2] : "");
  for (std::string line; std::getline(lines, line);) {
    const std::size_t blank = line.find(' ');
    obey(line.substr(0, blank), blank == std::string::npos ? "" : line.substr(blank + 1), argv,
         argc);
  }
  return 0;
}
