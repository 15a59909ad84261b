// The file of a sequence download, octet by octet.
#include "Download.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aOctets, std::size_t aSize) {
  Input input(aOctets, aSize);
  const std::string content = input.rest();
  requireDownload(eDownload::eSequence, content, input);
  return 0;
}
