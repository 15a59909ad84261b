// One run of the tool for all clients that request the status at about the same time.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "Settings.h"

namespace gateway {

/// The same moment on two clocks, in milliseconds.
struct Moment {
  std::int64_t sinceStart;  ///< since boot, including sleep; nobody can set this clock
  std::int64_t date;        ///< since 1970, like file times
};

Moment momentNow();

/// The answer that another process has just received, with its Age; otherwise the result of `aAsk`,
/// which only one process at a time calls and shares with the others. Both are rendered answers.
std::string shareStatus(const std::string& aStateFolder, const Limits& aLimits,
                        const std::function<std::string()>& aAsk,
                        const std::function<Moment()>& aNow = momentNow);

}  // namespace gateway
