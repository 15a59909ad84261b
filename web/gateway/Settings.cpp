// The gateway's settings, which come from the web server.
#include "Settings.h"

#include <cstddef>

namespace gateway {

namespace {

struct SettingRow {
  const char* variable;
  std::string Settings::*member;
};

constexpr SettingRow cReportSettings[] = {
    {"GC_WEB_TOOL", &Settings::tool},
    {"GC_WEB_ADDRESS", &Settings::address},
    {"GC_WEB_STATE", &Settings::state},
    {"GC_WEB_DATA", &Settings::data},
};

constexpr SettingRow cCommandSettings[] = {
    {"GC_WEB_LOG", &Settings::log},
    {"GC_WEB_SCHEMAS", &Settings::schemas},
};

template <std::size_t tCount>
std::optional<Answer> readRows(cgicc::CgiInput& input, const SettingRow (&aRows)[tCount],
                               Settings& settings) {
  for (const SettingRow& row : aRows) {
    settings.*row.member = input.getenv(row.variable);
    if ((settings.*row.member).empty()) {
      return problem(500, std::string(row.variable) + " is not set.");
    }
  }
  return std::nullopt;
}

}  // namespace

std::optional<Answer> readReportSettings(cgicc::CgiInput& input, Settings& settings) {
  settings.libraries = input.getenv("GC_WEB_LIBRARY_PATH");
  settings.units = input.getenv("GC_WEB_UNITS");
  return readRows(input, cReportSettings, settings);
}

std::optional<Answer> readCommandSettings(cgicc::CgiInput& input, Settings& settings) {
  if (std::optional<Answer> fault = readReportSettings(input, settings)) {
    return fault;
  }
  return readRows(input, cCommandSettings, settings);
}

}  // namespace gateway
