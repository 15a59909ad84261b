// The units of the instrument's values, which no report tells and the owner may.
#pragma once

#include <string>

#include "Answer.h"

/// The answer to a request for the configuration, with the member "units" that the setting names:
/// "temperature=°C, pressure=kPa". Any other answer stays as it is, and so does the document where
/// the setting is empty. A setting that cannot be read is 500, which says what is wrong with it:
/// better no units than wrong ones.
Answer withUnits(const Answer& aAnswer, const std::string& aSetting);
