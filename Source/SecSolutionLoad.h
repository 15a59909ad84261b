// Loads a stored solution.
#pragma once

#include "Section.h"

class SecSolutionLoad : public SectionBase {
 public:
  /// Registers the slot.
  void init(ParameterMap* aMap, unsigned long handle) override;

  /// Sets the slot, 0 to 10.
  void setArgument(int arg) override;

  /// Writes the slot, which loads its solution. Prints the verdict, with its texts swapped, and
  /// returns the status.
  int writeGC() override;

 private:
  int slot = 0;
};
