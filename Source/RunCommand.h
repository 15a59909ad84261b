// What the command operations share: writing and reporting their parameters.
#pragma once

#include "Parameter.h"

/// Writes the map in one batch, and its status to standard error. Returns the status.
unsigned int writeAndReport(const ParameterMap& aMap, unsigned long aHandle);
