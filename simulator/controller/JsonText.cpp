// Octets and numbers on their way into JSON and out of it.
#include "JsonText.h"

#include <rapidjson/memorystream.h>

#include <cmath>
#include <iterator>
#include <limits>

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

}  // namespace

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

void writeReal(JsonWriter& writer, double aValue) {
  if (std::isfinite(aValue)) {
    writer.Double(aValue);
  } else if (std::isnan(aValue)) {
    writer.String(cNamedReals[0].name);
  } else {
    writer.String(cNamedReals[aValue > 0 ? 1 : 2].name);
  }
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
