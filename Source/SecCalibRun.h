// Starts a calibration run.
#pragma once

#include "Parameter.h"
#include "SecSingleRun.h"

/// A single run with other parameters: always level 1, calibration type 1, the first of two
/// replicates.
class SecCalibRun : public SecSingleRun {
 public:
  void init(ParameterMap* aMap, unsigned long handle) override;
};
