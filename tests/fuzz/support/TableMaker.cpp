// Files of the downloads, correct except for faults taken from the input.
#include <string>

#include "Download.h"

namespace {

constexpr const char* cNumbers[] = {
    "0",
    "1",
    "-1",
    "2147483647",
    "-2147483648",
    "2147483648",
    "4294967297",
    "-2147483649",
    "3.0",
    "0.5",
    "9223372036854775808",
    "-0",
    "1e308",
    "-1e308",
    "4.9406e-324",
    "1e-400",
    "1.7976931348623157e308",
    "1e3",
    "0.1",
    "12345678901234567890123",
    "1e400",
    "2E-2",
    "00",
    "-",
    "NaN",
    ".5",
    "0x10",
    "1.",
    "+1",
};
constexpr const char* cTypes[] = {"Analysis", "Calibration", "Blank", "Verification",
                                  "None",     "calibration", ""};

struct Key {
  const char* name;
  bool isText;
};
constexpr Key cSequenceKeys[] = {
    {"Type", true}, {"Repeat", false}, {"Stream", false}, {"Slot", false}, {"Flush_time", false}};
constexpr Key cCalibrationKeys[] = {
    {"Channel", false}, {"ID", false}, {"Level_amt", false}, {"PkName", true}};

/// A text in JSON; octets that are not UTF-8 stay unchanged.
std::string quoted(const std::string& aText) {
  std::string text = "\"";
  for (const char character : aText) {
    if (character == '"' || character == '\\') {
      text += '\\';
    }
    if (static_cast<unsigned char>(character) < 0x20) {
      constexpr char cDigits[] = "0123456789abcdef";
      text += "\\u00";
      text += cDigits[character / 16];
      text += cDigits[character % 16];
    } else {
      text += character;
    }
  }
  return text + '"';
}

std::string makeNumber(Input& input) {
  switch (input.below(4)) {
    case 0:
      return input.oneOf(cNumbers);
    case 1:
      return std::to_string(input.number<std::int32_t>());
    default:
      return std::to_string(input.number<std::int8_t>());
  }
}

/// A value of an unexpected type.
std::string makeOddity(Input& input) {
  switch (input.below(8)) {
    case 0:
      return "null";
    case 1:
      return "true";
    case 2:
      return "[1,[2]]";
    case 3:
      return R"({"total":1,"rows":[]})";
    case 4:
      return makeNumber(input);
    case 5: {
      const std::size_t depth = input.below(256);
      return std::string(depth, '[') + std::string(depth, ']');
    }
    case 6:
      return input.text();  // usually not JSON
    default:
      return quoted(input.text());
  }
}

std::string makeValue(Input& input, bool aIsText) {
  if (input.octet() >= 0xD0) {
    return makeOddity(input);
  }
  return aIsText ? quoted(input.oneOf(cTypes)) : makeNumber(input);
}

/// A member; occasionally missing, duplicated, or followed by another one.
std::string makeMember(Input& input, const char* aName, bool aIsText) {
  const std::uint8_t fate = input.octet();
  if (fate >= 0xF8) {
    return "";
  }
  std::string member = quoted(aName) + ':' + makeValue(input, aIsText) + ',';
  if (fate >= 0xF0) {
    member += quoted(aName) + ':' + makeValue(input, aIsText) + ',';
  } else if (fate >= 0xE8) {
    member += quoted(input.text()) + ':';
    member += makeOddity(input) + ',';
  }
  return member;
}

std::string closed(std::string aOpen, char aEnd) {
  if (aOpen.back() == ',') {
    aOpen.pop_back();
  }
  return aOpen + aEnd;
}

template <std::size_t size>
std::string makeRow(Input& input, const Key (&aKeys)[size]) {
  std::string row = "{";
  for (const Key& key : aKeys) {
    row += makeMember(input, key.name, key.isText);
  }
  return closed(row, '}');
}

/// Different rows; for a few inputs, the last one is repeated some hundred times.
std::string makeRows(eDownload aDownload, Input& input) {
  std::string rows = "[";
  std::string row;
  for (std::size_t left = input.below(24); left > 0; --left) {
    if (input.octet() >= 0xF0) {
      row = makeOddity(input);
    } else {
      row = aDownload == eDownload::eSequence ? makeRow(input, cSequenceKeys)
                                              : makeRow(input, cCalibrationKeys);
    }
    rows += row + ',';
  }
  if (input.octet() >= 0xF8 && row.size() < 200) {
    for (int i = 0; i < 450; ++i) {
      rows += row + (row.empty() ? "" : ",");
    }
  }
  return closed(rows, ']');
}

}  // namespace

std::string makeTable(eDownload aDownload, Input& input) {
  std::string table = "{";
  if (input.octet() >= 0xF8) {
    // Up to the end of the buffer through which the file is read.
    table.insert(0, 65536 - 64 + input.below(128), ' ');
  }
  if (aDownload == eDownload::eSequence) {
    table += makeMember(input, "Table_repeat", false);
    table += makeMember(input, "Continuous", false);
  }
  table += makeMember(input, "total", false);
  const std::uint8_t fate = input.octet();
  table += fate >= 0xF8   ? ""
           : fate >= 0xF0 ? "\"rows\":" + makeOddity(input) + ','
                          : "\"rows\":" + makeRows(aDownload, input) + ',';
  table = closed(table, '}');
  return input.octet() >= 0xF0 ? table + input.text() : table;
}
