// The current time, as written to logs.
#include "UtcTime.h"

#include <ctime>

namespace gateway {

std::string utcNow() {
  const std::time_t now = std::time(nullptr);
  std::tm parts = {};
  ::gmtime_r(&now, &parts);
  char text[sizeof "2026-11-21T07:31:35Z"] = "";
  std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
  return text;
}

}  // namespace gateway
