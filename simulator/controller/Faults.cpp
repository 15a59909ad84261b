// Faults are read by a table: each kind is a row of the calls that it hits and its fields.
#include "Faults.h"

#include <algorithm>
#include <cctype>

#include "Calls.h"

using rapidjson::Value;

namespace {

bool readCall(const Value& aValue, Fault& fault) {
  if (aValue == "Any") {
    return true;  // the kind's own set stays
  }
  for (std::uint32_t n = 0; n < std::size(cCallNames); ++n) {
    if (aValue == cCallNames[n]) {
      const std::uint32_t calls = fault.calls & callBit(static_cast<wire::eType>(n + 1));
      fault.calls = calls;
      return calls != 0;
    }
  }
  return false;
}

bool readNth(const Value& aValue, Fault& fault) {
  return readUnsigned(aValue, fault.nth) && fault.nth >= 1;
}

bool readTimes(const Value& aValue, Fault& fault) {
  return readUnsigned(aValue, fault.times);
}

bool readWhen(const Value& aValue, Fault& fault) {
  fault.after = aValue == "after";
  return fault.after || aValue == "before";
}

bool readSeconds(const Value& aValue, Fault& fault) {
  return readReal(aValue, fault.seconds) && fault.seconds >= 0.0 &&
         fault.seconds <= FaultList::cMaxSeconds;
}

bool readStatus(const Value& aValue, Fault& fault) {
  return readUnsigned(aValue, fault.status);
}

bool readRecords(const Value& aValue, Fault& fault) {
  fault.allRecords = aValue == "all";
  if (fault.allRecords) {
    return true;
  }
  if (!aValue.IsArray() || aValue.Size() > wire::cMaxRecords) {
    return false;
  }
  return std::all_of(aValue.Begin(), aValue.End(), [&fault](const Value& aIndex) {
    return readUnsigned(aIndex, fault.records.emplace_back());
  });
}

bool readFirst(const Value& aValue, Fault& fault) {
  return readUnsigned(aValue, fault.first);
}

bool readSecond(const Value& aValue, Fault& fault) {
  return readUnsigned(aValue, fault.second);
}

bool readRealValue(const Value& aValue, Fault& fault) {
  double real = 0.0;
  if (!readReal(aValue, real)) {
    return false;
  }
  fault.real = real;
  return true;
}

bool readInteger(const Value& aValue, Fault& fault) {
  if (!aValue.IsInt()) {
    return false;
  }
  fault.integer = aValue.GetInt();
  return true;
}

bool readPlainText(const Value& aValue, Fault& fault) {
  return readText(aValue, fault.text) && fault.text.size() <= FaultList::cMaxTextLength;
}

bool readHex(const Value& aValue, Fault& fault) {
  std::string digits;
  if (!readText(aValue, digits) || digits.size() % 2 != 0 ||
      digits.size() / 2 > FaultList::cMaxTextLength ||
      !std::all_of(digits.begin(), digits.end(),
                   [](unsigned char c) { return std::isxdigit(c); })) {
    return false;
  }
  fault.text = fromHex(digits);
  return true;
}

bool readLength(const Value& aValue, Fault& fault) {
  std::uint32_t length = 0;
  if (!readUnsigned(aValue, length) || length > FaultList::cMaxTextLength) {
    return false;
  }
  fault.text.assign(length, 'x');
  return true;
}

struct Field {
  const char* name;
  bool (*read)(const Value&, Fault&);
  const char* expected;
};

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

/// The first `required` fields have to be there, and of the others `least` to `most`.
struct Kind {
  const char* name;
  eFault kind;
  std::uint32_t calls;
  const Field* fields;
  std::size_t count;
  std::size_t required;
  std::size_t least;
  std::size_t most;
};

constexpr Kind cKinds[] = {
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

const Kind* findKind(const Value& aFault) {
  const auto kind = aFault.FindMember("kind");
  if (kind == aFault.MemberEnd()) {
    return nullptr;
  }
  const auto* found = std::find_if(std::begin(cKinds), std::end(cKinds),
                                   [&](const Kind& aKind) { return kind->value == aKind.name; });
  return found == std::end(cKinds) ? nullptr : found;
}

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
bool isComplete(const Kind& aKind, const Value& aFault, std::string& error) {
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

std::string toJson(const Value& aValue) {
  rapidjson::StringBuffer buffer;
  JsonWriter writer(buffer);
  aValue.Accept(writer);
  return buffer.GetString();
}

}  // namespace

bool FaultList::add(const Value& aFault, std::string& error) {
  if (!aFault.IsObject()) {
    error = ": an object expected";
    return false;
  }
  const Kind* kind = findKind(aFault);
  if (kind == nullptr) {
    error = "/kind: the name of a kind of fault expected";
    return false;
  }
  if (mFaults.size() >= cMaxFaults) {
    error = ": too many faults wait already";
    return false;
  }
  Fault fault;
  fault.kind = kind->kind;
  fault.name = kind->name;
  fault.calls = kind->calls;
  for (const auto& member : aFault.GetObject()) {
    if (member.name == "kind") {
      continue;
    }
    const Field* field = findField(cCommonFields, std::size(cCommonFields), member.name);
    if (field == nullptr) {
      field = findField(kind->fields, kind->count, member.name);
    }
    if (field == nullptr) {
      error = std::string("/") + member.name.GetString() + ": no field of \"" + kind->name + "\"";
      return false;
    }
    if (!readField(*field, member.value, fault, error)) {
      return false;
    }
  }
  if (!isComplete(*kind, aFault, error)) {
    return false;
  }
  fault.source = toJson(aFault);
  mFaults.push_back(std::move(fault));
  return true;
}

std::optional<Fault> FaultList::match(wire::eType aCall) {
  return matchBit(callBit(aCall), false);
}

bool FaultList::matchAccepted() {
  return matchBit(callBit(wire::eType::eConnect), true).has_value();
}

std::optional<Fault> FaultList::matchBit(std::uint32_t aCall, bool aAccepted) {
  std::optional<Fault> acting;
  for (auto fault = mFaults.begin(); fault != mFaults.end();) {
    const auto current = fault++;
    if ((current->kind == eFault::eRefuse) != aAccepted || (current->calls & aCall) == 0) {
      continue;
    }
    ++current->seen;
    if (acting || current->seen < current->nth) {
      continue;
    }
    ++current->hits;
    acting = *current;
    if (current->hits == current->times) {
      mFaults.erase(current);
    }
  }
  return acting;
}

void FaultList::describe(JsonWriter& writer) const {
  writer.StartArray();
  for (const Fault& fault : mFaults) {
    writer.StartObject();
    writer.Key("fault");
    writer.RawValue(fault.source.data(), fault.source.size(), rapidjson::kObjectType);
    writer.Key("seen");
    writer.Uint64(fault.seen);
    writer.Key("hits");
    writer.Uint64(fault.hits);
    writer.EndObject();
  }
  writer.EndArray();
}
