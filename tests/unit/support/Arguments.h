// Command lines for the tests of the front end.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "Capture.h"
#include "GC_Web.h"

/// The words of a command line in the form of main's arguments.
class Arguments {
 public:
  explicit Arguments(std::initializer_list<std::string> aWords) : Arguments(std::vector(aWords)) {}
  explicit Arguments(std::vector<std::string> aWords) : mWords(std::move(aWords)) {
    for (std::string& word : mWords) {
      mPointers.push_back(word.data());
    }
    mPointers.push_back(nullptr);
  }
  Arguments(const Arguments&) = delete;
  Arguments& operator=(const Arguments&) = delete;

  int count() const { return static_cast<int>(mWords.size()); }
  char** words() { return mPointers.data(); }

 private:
  std::vector<std::string> mWords;
  std::vector<char*> mPointers;
};

struct Parsed {
  bool accepted = false;
  int result = 99;  // not an exit status of the program
  Request request;
  Output output;
};

/// Parses a command line of the program "GC_Web".
inline Parsed parse(std::vector<std::string> aOptions) {
  aOptions.insert(aOptions.begin(), "GC_Web");
  Arguments lArguments(std::move(aOptions));
  Parsed lParsed;
  lParsed.output = capture([&] {
    lParsed.accepted =
        parseCommandLine(lArguments.count(), lArguments.words(), lParsed.request, lParsed.result);
  });
  return lParsed;
}
