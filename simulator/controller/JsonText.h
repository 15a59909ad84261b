// What JSON cannot hold by itself: text of any octets, and numbers that are not finite.
#pragma once

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstdint>
#include <string>

using JsonWriter = rapidjson::Writer<rapidjson::StringBuffer>;

/// A copy in which every octet that is not part of valid UTF-8 has become U+FFFD.
std::string toUtf8(const std::string& aText);

/// Writes a number, or "NaN", "Infinity", "-Infinity".
void writeReal(JsonWriter& writer, double aValue);
void writeText(JsonWriter& writer, const std::string& aText);

// Each reads what the writers write. False, and nothing changed, for another type or range.
bool readReal(const rapidjson::Value& aValue, double& real);
bool readUnsigned(const rapidjson::Value& aValue, std::uint32_t& number);
bool readText(const rapidjson::Value& aValue, std::string& text);
