// The units of the instrument's values, which no report contains but the owner may configure.
#pragma once

#include <string>

#include "Answer.h"

namespace gateway {

/// The answer to a configuration request, with a member "units" from the setting: "temperature=°C,
/// pressure=kPa". Any other answer stays unchanged, and so does the document if the setting is
/// empty. An invalid setting is answered with 500 and the reason: better no units than wrong ones.
Answer withUnits(const Answer& aAnswer, const std::string& aSetting);

}  // namespace gateway
