// The front end's command line.
#include <getopt.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "GC_Web.h"

namespace {

/// What kind of argument an option takes.
enum class eTakes { eNothing, eAddress, eNumber, eAbortWord, eRunWord, eFile, eHelp };

struct OptionRow {
  int letter;
  eTakes takes;
  eSections section;         ///< the operation it selects; NR_OF_SECTIONS if it selects none
  int highest;               ///< largest number allowed; the smallest is 0
  const char* rangeMessage;  ///< printed for a number out of range
};

constexpr char cOptionLetters[] = "s:htgaqcv:A:V:R:M:Q:C:P";

constexpr int cHighestStream = 46;
constexpr int cHighestSlot = 10;  // of a solution
constexpr char cStreamRange[] = "ERROR: number out of range for stream\n";
constexpr char cSlotRange[] = "ERROR: number out of range for slot\n";
constexpr OptionRow cOptions[] = {
    {'s', eTakes::eAddress, NR_OF_SECTIONS, 0, nullptr},
    {'t', eTakes::eNothing, eStatusRead, 0, nullptr},
    {'g', eTakes::eNothing, eConfigRead, 0, nullptr},
    {'a', eTakes::eNothing, eAlarmRead, 0, nullptr},
    {'q', eTakes::eNothing, eSequenceRead, 0, nullptr},
    {'c', eTakes::eNothing, eCalibRead, 0, nullptr},
    {'P', eTakes::eNothing, eAlarmReset, 0, nullptr},
    {'V', eTakes::eNumber, eStreamWrite, cHighestStream, cStreamRange},
    {'v', eTakes::eNumber, NR_OF_SECTIONS, cHighestStream, cStreamRange},
    {'M', eTakes::eNumber, eSolutionLoad, cHighestSlot, cSlotRange},
    {'A', eTakes::eAbortWord, eAbortRun, 0, nullptr},
    {'R', eTakes::eRunWord, NR_OF_SECTIONS, 0, nullptr},
    {'Q', eTakes::eFile, eSequenceWrite, 0, nullptr},
    {'C', eTakes::eFile, eCalibWrite, 0, nullptr},
    {'h', eTakes::eHelp, NR_OF_SECTIONS, 0, nullptr},
};
static_assert(sizeof cOptions / sizeof cOptions[0] == 15);

struct RunWord {
  const char* word;
  eSections section;
};

constexpr RunWord cRunWords[] = {
    {"auto", eAutomationRun},
    {"single", eSingleRun},
    {"calib", eCalibrationRun},
};

const OptionRow* findOption(int letter) {
  for (const OptionRow& row : cOptions) {
    if (row.letter == letter) {
      return &row;
    }
  }
  return nullptr;
}

/// Octets that cannot be read stay 0; the check of the first octet rejects an invalid address.
void readAddress(const char* text, InstrumentAddress& uAddr) {
  unsigned int octet[4] = {0, 0, 0, 0};
  std::sscanf(text, "%u.%u.%u.%u", &octet[0], &octet[1], &octet[2], &octet[3]);
  for (std::size_t i = 0; i < uAddr.bAddr.size(); ++i) {
    uAddr.bAddr[i] = static_cast<unsigned char>(octet[i] & 0xFF);
  }
}

/// Ignores whatever follows the number: "5x" is 5.
bool readNumber(const char* text, const OptionRow& row, int& set_num) {
  char* end = nullptr;
  const long number = std::strtol(text, &end, 10);
  if (end == text) {
    std::fputs("ERROR: can't convert string to number\n", stderr);
    return false;
  }
  if (number > row.highest || number < 0) {
    std::fputs(row.rangeMessage, stderr);
    return false;
  }
  set_num = static_cast<int>(number);
  return true;
}

bool readRunWord(const char* word, eSections& section) {
  for (const RunWord& row : cRunWords) {
    if (std::strcmp(word, row.word) == 0) {
      section = row.section;
      return true;
    }
  }
  std::fprintf(stderr, "Operation '%s' unknown\n", word);
  return false;
}

bool readFileName(const char* name, Request& aRequest) {
  if (*name == '\0') {
    std::fputs("No file specified\n", stderr);
    return false;
  }
  std::strncpy(aRequest.filename.data(), name, aRequest.filename.size() - 1);
  return true;
}

/// Reads the option's argument into the request; false when it is rejected.
bool readArgument(const OptionRow& row, const char* argument, Request& aRequest) {
  switch (row.takes) {
    case eTakes::eAddress:
      readAddress(argument, aRequest.uAddr);
      return true;
    case eTakes::eNumber:
      return readNumber(argument, row, aRequest.set_num);
    case eTakes::eAbortWord:
      // Any word but "now" means "auto".
      aRequest.set_num = std::strcmp(argument, "now") == 0 ? 0 : 1;
      return true;
    case eTakes::eRunWord:
      return readRunWord(argument, aRequest.selected_sections);
    case eTakes::eFile:
      return readFileName(argument, aRequest);
    case eTakes::eNothing:
    case eTakes::eHelp:
      break;
  }
  return true;
}

}  // namespace

bool parseCommandLine(int argc, char* argv[], Request& aRequest, int& result) {
  result = -1;
  optind = 0;
  for (int letter = getopt(argc, argv, cOptionLetters); letter != -1;
       letter = getopt(argc, argv, cOptionLetters)) {
    const OptionRow* row = findOption(letter);
    if (row == nullptr || row->takes == eTakes::eHelp) {
      print_usage(argv[0]);
      result = row == nullptr ? -1 : 0;
      return false;
    }
    if (row->section != NR_OF_SECTIONS) {
      aRequest.selected_sections = row->section;
    }
    if (!readArgument(*row, optarg, aRequest)) {
      return false;
    }
  }
  if (optind < argc) {
    std::fputs("Stdin not supported\n", stderr);
    return false;
  }
  const unsigned char first = aRequest.uAddr.bAddr[0];
  if (first == 0 || first == 255) {
    std::fputs("Invalid IP address\n", stderr);
    return false;
  }
  return true;
}

void print_usage(char* app) {
  std::fprintf(stderr,
               "Usage: %s\n"
               "-s server ip       Specify server IP address.\n"
               "-t                 Output GC status only.\n"
               "-g                 Output GC config only.\n"
               "-a                 Output Alarm status.\n"
               "-P                 Reset all anyapp alarms.\n"
               "-V NUM             Switch VICI to Stream NUM.\n"
               "-R {auto/single/calib} [-v NUM] \n"
               "   auto            Start automation runs.\n"
               "   single          Start a single run.\n"
               "   calib           Start a calibration run (level 1).\n"
               "   -v NUM          Only meaningful for a single/calibraion run.\n"
               "                   Indicate the stream position shown in report.\n"
               "-A {now/auto}      Abort the current single run/sequence.\n"
               "-M NUM             Load the Solution from slot NUM.\n"
               "-q                 Output current GC sequence table.\n"
               "-Q file            Read the sequence table from file, and\n"
               "                   download it to micro GC.\n"
               "-c                 Output current GC calibration results.\n"
               "-C file            Read the calibration level amounts from file,\n"
               "                   and download it to micro GC.\n"
               "\n"
               "-h                 Show this help\n",
               app);
}
