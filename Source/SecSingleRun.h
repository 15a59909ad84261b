// Starts a single run.
#pragma once

#include "Section.h"

class SecSingleRun : public SectionBase {
 public:
  /// Registers run type, level and stream of an analysis.
  void init(ParameterMap* aMap, unsigned long handle) override;

  /// Sets the stream position shown in the run's report, 0 to 46.
  void setArgument(int arg) override;

  /// Writes the run's parameters, then sends the start command unless they were refused. Prints the
  /// verdict and returns its status.
  int writeGC() override;

 protected:
  int stream = 0;
};
