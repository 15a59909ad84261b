// The units of the instrument's values, which no report contains but the owner may configure.
#include "Units.h"

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>

#include "Json.h"

namespace gateway {

namespace {

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

constexpr std::string_view cQuantities[] = {
    "temperature",    "pressure",   "ambient_pressure", "auto_zero",
    "retention_time", "flush_time", "amount",
};

constexpr char cPair[] =
    "GC_WEB_UNITS must be a comma-separated list of pairs such as temperature=°C, each quantity at "
    "most once; invalid pair: ";

std::string_view trimmed(std::string_view aText) {
  const std::size_t begin = std::min(aText.find_first_not_of(' '), aText.size());
  const std::size_t end = aText.find_last_not_of(' ') + 1;
  return aText.substr(begin, end > begin ? end - begin : 0);
}

bool isQuantity(std::string_view aName) {
  return std::find(std::begin(cQuantities), std::end(cQuantities), aName) != std::end(cQuantities);
}

/// Adds the units to an object; returns the first invalid pair.
std::optional<std::string_view> readUnits(std::string_view aSetting, rapidjson::Document& units) {
  auto& allocator = units.GetAllocator();
  for (std::size_t begin = 0; begin <= aSetting.size();) {
    const std::size_t end = std::min(aSetting.find(',', begin), aSetting.size());
    const std::string_view pair = trimmed(aSetting.substr(begin, end - begin));
    const std::size_t equals = std::min(pair.find('='), pair.size());
    const std::string name(trimmed(pair.substr(0, equals)));
    const std::string unit(trimmed(pair.substr(std::min(equals + 1, pair.size()))));
    if (!isQuantity(name) || unit.empty() || units.HasMember(name)) {
      return pair;
    }
    units.AddMember(rapidjson::Value(name, allocator),
                    rapidjson::Value(repairUtf8(unit), allocator), allocator);
    begin = end + 1;
  }
  return std::nullopt;
}

}  // namespace

Answer withUnits(const Answer& aAnswer, const std::string& aSetting) {
  if (aSetting.empty() || aAnswer.schema != "configuration") {
    return aAnswer;
  }
  rapidjson::Document units(rapidjson::kObjectType);
  if (const auto wrong = readUnits(aSetting, units)) {
    return problem(500, cPair + std::string(*wrong));
  }
  rapidjson::StringBuffer text;
  Writer writer(text);
  units.Accept(writer);
  Answer answer = aAnswer;
  // The tool's output stays unchanged, octet for octet.
  const std::size_t end = answer.body.rfind('}');
  const bool isEmpty = answer.body[answer.body.find_last_not_of(" \t\r\n", end - 1)] == '{';
  answer.body.insert(end, std::string(isEmpty ? "" : ",") + "\"units\":" + text.GetString());
  return answer;
}

}  // namespace gateway
