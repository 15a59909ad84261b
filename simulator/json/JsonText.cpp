// Octets and numbers on their way into JSON and out of it.
#include "JsonText.h"

#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <system_error>

namespace simulator {

namespace {

struct NamedReal {
  const char* name;
  double value;
};

constexpr NamedReal cNamedReals[] = {
    {"NaN", std::numeric_limits<double>::quiet_NaN()},
    {"Infinity", std::numeric_limits<double>::infinity()},
    {"-Infinity", -std::numeric_limits<double>::infinity()},
};

/// Stops a reader that goes too deep.
class DepthGuard : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, DepthGuard> {
 public:
  bool StartObject() { return ++mDepth <= cDeepest; }
  bool StartArray() { return ++mDepth <= cDeepest; }
  bool EndObject(rapidjson::SizeType) { return --mDepth >= 0; }
  bool EndArray(rapidjson::SizeType) { return --mDepth >= 0; }

 private:
  int mDepth = 0;
};

/// Builds a document as its own parser would, but for the numbers, which come as texts. rapidjson's
/// other parser for full precision reads outside its tables for some of them.
class ExactNumbers : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, ExactNumbers> {
 public:
  explicit ExactNumbers(rapidjson::Document& document) : mDocument(document) {}

  bool Null() { return mDocument.Null(); }
  bool Bool(bool aValue) { return mDocument.Bool(aValue); }
  bool String(const char* aText, rapidjson::SizeType aLength, bool aCopy) {
    return mDocument.String(aText, aLength, aCopy);
  }
  bool Key(const char* aText, rapidjson::SizeType aLength, bool aCopy) {
    return mDocument.Key(aText, aLength, aCopy);
  }
  bool StartObject() { return mDocument.StartObject(); }
  bool EndObject(rapidjson::SizeType aCount) { return mDocument.EndObject(aCount); }
  bool StartArray() { return mDocument.StartArray(); }
  bool EndArray(rapidjson::SizeType aCount) { return mDocument.EndArray(aCount); }

  /// Of JSON's form; a whole number that 64 bits can hold stays one.
  bool RawNumber(const char* aText, rapidjson::SizeType aLength, bool /*aCopy*/) {
    const char* end = aText + aLength;
    std::int64_t whole = 0;
    std::uint64_t natural = 0;
    if (isRead(std::from_chars(aText, end, natural), end)) {
      return natural <= UINT32_MAX ? mDocument.Uint(static_cast<std::uint32_t>(natural))
                                   : mDocument.Uint64(natural);
    }
    if (isRead(std::from_chars(aText, end, whole), end)) {
      return whole >= INT32_MIN ? mDocument.Int(static_cast<std::int32_t>(whole))
                                : mDocument.Int64(whole);
    }
    const double real = std::strtod(std::string(aText, aLength).c_str(), nullptr);
    mIsTooBig = std::isinf(real);
    return !mIsTooBig && mDocument.Double(real);
  }

  bool isTooBig() const { return mIsTooBig; }

 private:
  static bool isRead(const std::from_chars_result& aResult, const char* aEnd) {
    return aResult.ec == std::errc() && aResult.ptr == aEnd;
  }

  rapidjson::Document& mDocument;
  bool mIsTooBig = false;
};

template <unsigned flags>
rapidjson::ParseResult parseWith(const std::string& aText, rapidjson::Document& document) {
  rapidjson::ParseResult result;
  const auto generate = [&](rapidjson::Document& target) {
    constexpr unsigned cFlags =
        flags | rapidjson::kParseIterativeFlag | rapidjson::kParseNumbersAsStringsFlag;
    rapidjson::MemoryStream stream(aText.data(), aText.size());
    rapidjson::Reader reader;
    ExactNumbers handler(target);
    result = reader.Parse<cFlags>(stream, handler);
    if (handler.isTooBig()) {
      result.Set(rapidjson::kParseErrorNumberTooBig, result.Offset());
    }
    return !result.IsError();
  };
  document.Populate(generate);
  return result;
}

}  // namespace

rapidjson::ParseResult parseJson(const std::string& aText, rapidjson::Document& document,
                                 eEncoding aEncoding) {
  return aEncoding == eEncoding::eChecked
             ? parseWith<rapidjson::kParseValidateEncodingFlag>(aText, document)
             : parseWith<rapidjson::kParseNoFlags>(aText, document);
}

bool isShallow(const std::string& aText) {
  DepthGuard guard;
  rapidjson::Reader reader;
  rapidjson::MemoryStream stream(aText.data(), aText.size());
  return !reader.Parse<rapidjson::kParseIterativeFlag>(stream, guard).IsError();
}

std::string toUtf8(const std::string& aText) {
  std::string valid;
  valid.reserve(aText.size());
  std::size_t position = 0;
  while (position < aText.size()) {
    rapidjson::MemoryStream stream(aText.data() + position, aText.size() - position);
    unsigned codePoint = 0;
    // A sequence that the text's end cuts off reads zeros, which no sequence continues with.
    if (rapidjson::UTF8<>::Decode(stream, &codePoint)) {
      valid.append(aText, position, stream.Tell());
      position += stream.Tell();
    } else {
      valid += "\xEF\xBF\xBD";
      ++position;
    }
  }
  return valid;
}

std::string toHex(const std::string& aOctets) {
  constexpr char cDigits[] = "0123456789abcdef";
  std::string digits;
  digits.reserve(2 * aOctets.size());
  for (const char octet : aOctets) {
    const auto value = static_cast<unsigned char>(octet);
    digits += cDigits[value >> 4U];
    digits += cDigits[value & 15U];
  }
  return digits;
}

std::string fromHex(const std::string& aDigits) {
  std::string octets;
  octets.reserve(aDigits.size() / 2);
  for (std::size_t n = 0; n + 1 < aDigits.size(); n += 2) {
    octets += static_cast<char>(std::stoi(aDigits.substr(n, 2), nullptr, 16));
  }
  return octets;
}

rapidjson::Value realValue(double aValue) {
  if (std::isfinite(aValue)) {
    return rapidjson::Value(aValue);
  }
  const std::size_t row = std::isnan(aValue) ? 0 : (aValue > 0 ? 1 : 2);
  return rapidjson::Value(rapidjson::StringRef(cNamedReals[row].name));
}

void writeReal(JsonWriter& writer, double aValue) {
  realValue(aValue).Accept(writer);
}

void writeText(JsonWriter& writer, const std::string& aText) {
  writer.String(aText.data(), static_cast<rapidjson::SizeType>(aText.size()));
}

bool readReal(const rapidjson::Value& aValue, double& real) {
  if (aValue.IsNumber()) {
    real = aValue.GetDouble();
    return true;
  }
  for (const NamedReal& named : cNamedReals) {
    if (aValue == named.name) {
      real = named.value;
      return true;
    }
  }
  return false;
}

bool readUnsigned(const rapidjson::Value& aValue, std::uint32_t& number) {
  if (!aValue.IsUint()) {
    return false;
  }
  number = aValue.GetUint();
  return true;
}

bool readText(const rapidjson::Value& aValue, std::string& text) {
  if (!aValue.IsString()) {
    return false;
  }
  text.assign(aValue.GetString(), aValue.GetStringLength());
  return true;
}

}  // namespace simulator
