// What the browser is told of a run of the tool.
#pragma once

#include "Answer.h"
#include "Operation.h"
#include "ToolProcess.h"

Answer judge(eOperation aOperation, const Outcome& aOutcome);
