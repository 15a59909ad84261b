// One run of the tool for all who ask for the status at about the same time.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "Settings.h"

/// One moment on two clocks, in milliseconds.
struct Moment {
  std::int64_t sinceStart;  ///< of the system, the time it slept included; nobody sets this clock
  std::int64_t date;        ///< since 1970, as files have it
};

Moment momentNow();

/// The answer that another process has just got, with its Age; else what `aAsk` returns, which is
/// called by one process at a time and kept for the others. Both are rendered answers.
std::string shareStatus(const std::string& aStateFolder, const Limits& aLimits,
                        const std::function<std::string()>& aAsk,
                        const std::function<Moment()>& aNow = momentNow);
