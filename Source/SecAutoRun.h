// Starts the automation sequence.
#pragma once

#include "Section.h"

class SecAutoRun : public SectionBase {
 public:
  void init(ParameterMap* aMap, unsigned long handle) override;

  /// Sends the start command, prints the verdict and returns its status.
  int writeGC() override;
};
