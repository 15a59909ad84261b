// Turns a run of the tool into the answer for the browser.
#pragma once

#include "Answer.h"
#include "Operation.h"
#include "ToolProcess.h"

namespace gateway {

Answer judge(eOperation aOperation, const Outcome& aOutcome);

}  // namespace gateway
