// One run of the tool for all who ask for the status at about the same time.
#pragma once

#include <functional>
#include <string>

#include "Settings.h"

/// The answer that another process has just got, with its Age; else what `aAsk` returns, which is
/// called by one process at a time and kept for the others. Both are rendered answers.
std::string shareStatus(const std::string& aStateFolder, const Limits& aLimits,
                        const std::function<std::string()>& aAsk);
