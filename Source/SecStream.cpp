// Switches the stream selection valve: one write.
#include "SecStream.h"

#include "Common.h"
#include "ParameterTable.h"
#include "RunCommand.h"

namespace {

constexpr ParameterRow cStream[] = {{39, "mStreamNr"}};

}  // namespace

void SecStream::init(ParameterMap* aMap, unsigned long handle) {
  mMap = aMap;
  mHandle = handle;
  registerParameters(*aMap, cStream);
}

void SecStream::setArgument(int arg) {
  stream = arg;
  if (Parameter* parameter = findParameter(*mMap, "mStreamNr")) {
    parameter->setIntValue(stream);
  }
}

int SecStream::writeGC() {
  // Kept odd: no verdict. The status shows the stream.
  return static_cast<int>(writeAndReport(*mMap, mHandle));
}
