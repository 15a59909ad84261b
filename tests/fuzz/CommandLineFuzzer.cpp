// The command line: one word per line, first parsed alone, then by the whole program.
#include <cctype>
#include <cstdlib>

#include "Program.h"
#include "Require.h"

namespace {

using Words = std::vector<std::string>;

/// The meaning of a command line, determined independently of the program.
struct Meaning {
  bool accepted = false;
  int exitStatus = 255;  ///< for a rejected command line
  int operation = eStatusRead;
  int number = 0;
  std::string file;
  unsigned octets[4] = {127, 0, 0, 1};
};

bool readNumber(const std::string& aText, long aHighest, int& number) {
  char* end = nullptr;
  const long value = std::strtol(aText.c_str(), &end, 10);
  if (end == aText.c_str() || value < 0 || value > aHighest) {
    return false;
  }
  number = static_cast<int>(value);
  return true;
}

/// Numbers separated by full stops; those that cannot be read stay 0.
void readAddress(const std::string& aText, unsigned (&octets)[4]) {
  const char* place = aText.c_str();
  for (unsigned& octet : octets) {
    octet = 0;
  }
  for (unsigned& octet : octets) {
    char* end = nullptr;
    const unsigned long value = std::strtoul(place, &end, 10);
    if (end == place) {
      return;
    }
    octet = value & 0xFF;
    if (*end != '.') {
      return;
    }
    place = end + 1;
  }
}

/// Reads one option. False if the program ends there.
bool takeOption(char aLetter, const std::string& aArgument, Meaning& meaning) {
  const std::string plain = "tgaqc";
  const std::size_t position = plain.find(aLetter);
  if (position != std::string::npos) {
    meaning.operation = static_cast<int>(position);
    return true;
  }
  switch (aLetter) {
    case 's':
      readAddress(aArgument, meaning.octets);
      return true;
    case 'P':
      meaning.operation = eAlarmReset;
      return true;
    case 'V':
      meaning.operation = eStreamWrite;
      return readNumber(aArgument, 46, meaning.number);
    case 'v':
      return readNumber(aArgument, 46, meaning.number);
    case 'M':
      meaning.operation = eSolutionLoad;
      return readNumber(aArgument, 10, meaning.number);
    case 'A':
      meaning.operation = eAbortRun;
      meaning.number = aArgument == "now" ? 0 : 1;
      return true;
    case 'R':
      meaning.operation = aArgument == "auto"     ? eAutomationRun
                          : aArgument == "single" ? eSingleRun
                                                  : eCalibrationRun;
      return aArgument == "auto" || aArgument == "single" || aArgument == "calib";
    case 'Q':
    case 'C':
      meaning.operation = aLetter == 'Q' ? eSequenceWrite : eCalibWrite;
      meaning.file = aArgument;
      return !aArgument.empty();
    default:
      meaning.exitStatus = aLetter == 'h' ? 0 : 255;
      return false;
  }
}

/// Options may be bundled, arguments attached or separate, operands anywhere.
Meaning understand(const Words& aWords) {
  const std::string withArgument = "svAVRMQC";
  Meaning meaning;
  bool operands = false;
  for (std::size_t i = 0; i < aWords.size(); ++i) {
    const std::string& word = aWords[i];
    if (word == "--") {
      operands = operands || i + 1 < aWords.size();
      break;
    }
    if (word.size() < 2 || word[0] != '-') {
      operands = true;
      continue;
    }
    for (std::size_t j = 1; j < word.size(); ++j) {
      std::string argument;
      const bool takesMore = withArgument.find(word[j]) != std::string::npos;
      if (takesMore && j + 1 == word.size() && i + 1 == aWords.size()) {
        return meaning;
      }
      if (takesMore) {
        argument = j + 1 < word.size() ? word.substr(j + 1) : aWords[i + 1];
      }
      if (!takeOption(word[j], argument, meaning)) {
        return meaning;
      }
      if (takesMore) {
        i += j + 1 < word.size() ? 0 : 1;
        break;
      }
    }
  }
  meaning.accepted = !operands && meaning.octets[0] != 0 && meaning.octets[0] != 255;
  return meaning;
}

void requireSameMeaning(const Meaning& aMeaning, const Request& aRequest) {
  require(aRequest.selected_sections == aMeaning.operation, "the last operation counts");
  require(aRequest.set_num == aMeaning.number, "the last number counts",
          std::to_string(aRequest.set_num));
  require(
      aRequest.filename.back() == '\0' && aRequest.filename.data() == aMeaning.file.substr(0, 256),
      "the last file counts", aRequest.filename.data());
  for (std::size_t i = 0; i < 4; ++i) {
    require(aRequest.uAddr.bAddr[i] == aMeaning.octets[i], "the last address counts");
  }
}

Words takeWords(Input& input) {
  Words words;
  std::string word;
  for (const char character : input.rest()) {
    if (character == '\n') {
      words.push_back(word.c_str());  // ends at a zero octet, like any argument
      word.clear();
    } else {
      word += character;
    }
  }
  if (!word.empty()) {
    words.push_back(word.c_str());
  }
  return words;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aOctets, std::size_t aSize) {
  Input input(aOctets, aSize);
  FakeInstrument instrument;
  const eReached reached = scriptConnection(input, instrument);
  const Words words = takeWords(input);
  const Meaning meaning = understand(words);

  Request request;
  Words copies = words;
  copies.insert(copies.begin(), "GC_Web");
  std::vector<char*> arguments = pointersTo(copies);
  int result = 0;
  const Run parsed = capture([&] {
    return parseCommandLine(static_cast<int>(copies.size()), arguments.data(), request, result) ? 1
                                                                                                : 0;
  });
  require(parsed.out.empty(), "the command line prints nothing", parsed.out);
  require((parsed.status == 1) == meaning.accepted, "it is accepted or not", parsed.err);

  const Run run = runProgram(words);
  if (!meaning.accepted) {
    require((result & 0xFF) == meaning.exitStatus, "the exit status", parsed.err);
    require(run.status == result && run.out.empty() && run.err == parsed.err && !run.err.empty(),
            "the program ends with what the command line says", run.out + run.err);
    require(instrument.calls().empty(), "nothing is called");
    return 0;
  }
  require(parsed.err.empty(), "a valid command line prints nothing on standard error", parsed.err);
  requireSameMeaning(meaning, request);
  requireOrderly(instrument, run, request.selected_sections, reached);
  const auto address = static_cast<long>(meaning.octets[0] | meaning.octets[1] << 8 |
                                         meaning.octets[2] << 16 | meaning.octets[3] << 24);
  require(instrument.calls()[1] == "startupGC(1, " + std::to_string(address) + ", 0, 0, 1, \"\")",
          "it goes to the address", instrument.calls()[1]);
  return 0;
}
