// Faults are read by a table: each kind is a row of the calls that it hits and its fields.
#include "FaultKinds.h"

#include <Message.h>

#include <algorithm>
#include <iterator>

#include "Calls.h"
#include "FaultReaders.h"

namespace simulator {

using rapidjson::Value;

namespace {

struct Field {
  const char* name;
  bool (*read)(const Value&, Fault&);
  const char* expected;
};

}  // namespace

/// The first `required` fields have to be there, and of the others `least` to `most`.
struct FaultKind {
  const char* name;
  eFault kind;
  std::uint32_t calls;
  const Field* fields;
  std::size_t count;
  std::size_t required;
  std::size_t least;
  std::size_t most;
};

namespace {

constexpr Field cCommonFields[] = {
    {"call", &readCall, "\"Any\" or a call that faults of this kind can hit"},
    {"nth", &readNth, "a whole number from 1"},
    {"times", &readTimes, "a whole number from 0"},
};

constexpr Field cDrop[] = {{"when", &readWhen, "\"before\" or \"after\""}};
constexpr Field cDelay[] = {{"seconds", &readSeconds, "a number from 0 to 3600"}};
constexpr Field cStatus[] = {{"status", &readStatus, "an unsigned 32-bit number"}};
constexpr Field cUnanswered[] = {{"records", &readRecords, "an array of indices, or \"all\""}};
constexpr Field cSwap[] = {{"a", &readFirst, "an index"}, {"b", &readSecond, "an index"}};
constexpr Field cValue[] = {
    {"records", &readRecords, "an array of indices, or \"all\""},
    {"real", &readRealValue, "a number, \"NaN\", \"Infinity\" or \"-Infinity\""},
    {"int", &readInteger, "a signed 32-bit number"},
};
constexpr Field cText[] = {
    {"text", &readPlainText, "a text of at most 65536 octets"},
    {"hex", &readHex, "pairs of hexadecimal digits, at most 65536"},
    {"length", &readLength, "a whole number from 0 to 65536"},
};

constexpr std::uint32_t cReads = callBit(wire::eType::eRead);
constexpr std::uint32_t cWrites = callBit(wire::eType::eWrite);
constexpr std::uint32_t cCommands = callBit(wire::eType::eCommand);

constexpr FaultKind cKinds[] = {
    {"refuse", eFault::eRefuse, callBit(wire::eType::eConnect), nullptr, 0, 0, 0, 0},
    {"drop", eFault::eDrop, cEveryCall, cDrop, 1, 0, 0, 1},
    {"delay", eFault::eDelay, cEveryCall, cDelay, 1, 1, 0, 0},
    {"hang", eFault::eHang, cEveryCall, nullptr, 0, 0, 0, 0},
    {"status", eFault::eStatus, cEveryCall, cStatus, 1, 1, 0, 0},
    {"unanswered", eFault::eUnanswered, cReads, cUnanswered, 1, 1, 0, 0},
    {"swap", eFault::eSwap, cReads | cWrites, cSwap, 2, 2, 0, 0},
    {"short", eFault::eShort, cEveryCall, nullptr, 0, 0, 0, 0},
    {"truncate", eFault::eTruncate, cEveryCall, nullptr, 0, 0, 0, 0},
    {"value", eFault::eValue, cReads, cValue, 3, 1, 1, 2},
    {"text", eFault::eText, callBit(wire::eType::eObject), cText, 3, 0, 1, 1},
    {"ignore", eFault::eIgnore, cWrites | cCommands, nullptr, 0, 0, 0, 0},
};

/// Null when there is none of that name.
const Field* findField(const Field* aFields, std::size_t aCount, const Value& aName) {
  const Field* found =
      std::find_if(aFields, aFields + aCount, [&](const Field& f) { return aName == f.name; });
  return found == aFields + aCount ? nullptr : found;
}

bool readField(const Field& aField, const Value& aValue, Fault& fault, std::string& error) {
  if (aField.read(aValue, fault)) {
    return true;
  }
  error = std::string("/") + aField.name + ": " + aField.expected + " expected";
  return false;
}

/// Whether the kind's own fields are all there, and no two that exclude each other.
bool isComplete(const FaultKind& aKind, const Value& aFault, std::string& error) {
  std::size_t chosen = 0;
  std::string choice;
  for (std::size_t n = 0; n < aKind.count; ++n) {
    const char* name = aKind.fields[n].name;
    const bool given = aFault.HasMember(name);
    if (n < aKind.required) {
      if (!given) {
        error = std::string("/") + name + ": missing";
        return false;
      }
      continue;
    }
    chosen += given ? 1 : 0;
    choice += choice.empty() ? name : std::string(", ") + name;
  }
  if (chosen < aKind.least || chosen > aKind.most) {
    error = std::string(": ") + (aKind.most == 1 ? "one" : "one or more") + " of " + choice +
            " expected";
    return false;
  }
  return true;
}

}  // namespace

const FaultKind* findKind(const Value& aFault, std::string& error) {
  if (!aFault.IsObject()) {
    error = ": an object expected";
    return nullptr;
  }
  const auto kind = aFault.FindMember("kind");
  const auto* found =
      kind == aFault.MemberEnd()
          ? std::end(cKinds)
          : std::find_if(std::begin(cKinds), std::end(cKinds),
                         [&](const FaultKind& aKind) { return kind->value == aKind.name; });
  if (found == std::end(cKinds)) {
    error = "/kind: the name of a kind of fault expected";
    return nullptr;
  }
  return found;
}

bool readFault(const FaultKind& aKind, const Value& aFault, Fault& fault, std::string& error) {
  fault.kind = aKind.kind;
  fault.name = aKind.name;
  fault.calls = aKind.calls;
  for (const auto& member : aFault.GetObject()) {
    if (member.name == "kind") {
      continue;
    }
    const Field* field = findField(cCommonFields, std::size(cCommonFields), member.name);
    if (field == nullptr) {
      field = findField(aKind.fields, aKind.count, member.name);
    }
    if (field == nullptr) {
      error = std::string("/") + member.name.GetString() + ": no field of \"" + aKind.name + "\"";
      return false;
    }
    if (!readField(*field, member.value, fault, error)) {
      return false;
    }
  }
  return isComplete(aKind, aFault, error);
}

}  // namespace simulator
