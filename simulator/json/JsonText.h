// What JSON cannot hold by itself: text of any octets, and numbers that are not finite.
#pragma once

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstdint>
#include <string>

namespace simulator {

using JsonWriter = rapidjson::Writer<rapidjson::StringBuffer>;

enum class eEncoding { eChecked, eAny };

/// Parses without recursion, each number to its last bit. Returns what is wrong, and where.
rapidjson::ParseResult parseJson(const std::string& aText, rapidjson::Document& document,
                                 eEncoding aEncoding = eEncoding::eAny);

/// How deep objects and arrays may lie within each other in what comes from outside. Nothing that
/// is understood needs ten levels; what is walked through by recursion must have an end.
constexpr int cDeepest = 100;

/// Whether a JSON text that parses goes no deeper.
bool isShallow(const std::string& aText);

/// A copy in which every octet that is not part of valid UTF-8 has become U+FFFD.
std::string toUtf8(const std::string& aText);

/// Two hexadecimal digits for each octet.
std::string toHex(const std::string& aOctets);
/// The octets of pairs of hexadecimal digits.
std::string fromHex(const std::string& aDigits);

/// A number, or "NaN", "Infinity", "-Infinity".
rapidjson::Value realValue(double aValue);

/// Writes the same.
void writeReal(JsonWriter& writer, double aValue);
void writeText(JsonWriter& writer, const std::string& aText);

// Each reads what the writers write. False, and nothing changed, for another type or range.
bool readReal(const rapidjson::Value& aValue, double& real);
bool readUnsigned(const rapidjson::Value& aValue, std::uint32_t& number);
bool readText(const rapidjson::Value& aValue, std::string& text);

}  // namespace simulator
