// Values of JSON into the members of a fault.
#include "FaultReaders.h"

#include <JsonText.h>
#include <Message.h>

#include <algorithm>
#include <cctype>
#include <iterator>

#include "Calls.h"

namespace simulator {

using rapidjson::Value;

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
         fault.seconds <= Fault::cMaxSeconds;
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
  return readText(aValue, fault.text) && fault.text.size() <= Fault::cMaxTextLength;
}

bool readHex(const Value& aValue, Fault& fault) {
  std::string digits;
  if (!readText(aValue, digits) || digits.size() % 2 != 0 ||
      digits.size() / 2 > Fault::cMaxTextLength ||
      !std::all_of(digits.begin(), digits.end(),
                   [](unsigned char c) { return std::isxdigit(c); })) {
    return false;
  }
  fault.text = fromHex(digits);
  return true;
}

bool readLength(const Value& aValue, Fault& fault) {
  std::uint32_t length = 0;
  if (!readUnsigned(aValue, length) || length > Fault::cMaxTextLength) {
    return false;
  }
  fault.text.assign(length, 'x');
  return true;
}

}  // namespace simulator
