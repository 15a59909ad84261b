// Aborts a run or sequence.
#pragma once

#include "Section.h"

class SecAbortRun : public SectionBase {
 public:
  void init(ParameterMap* aMap, unsigned long handle) override;

  /// 0: abort the run at once, then stop the automation; otherwise only stop the automation.
  void setArgument(int arg) override;

  /// Sends the commands, prints the verdict and returns its status.
  int writeGC() override;

 private:
  int mode = 0;
};
