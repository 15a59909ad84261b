// Switches the stream selection valve.
#pragma once

#include "Section.h"

class SecStream : public SectionBase {
 public:
  /// Registers the valve's position.
  void init(ParameterMap* aMap, unsigned long handle) override;

  /// Sets the wanted stream, 0 to 46.
  void setArgument(int arg) override;

  /// Writes the position. Returns the status; prints nothing on standard output.
  int writeGC() override;

 private:
  int stream = 0;
};
