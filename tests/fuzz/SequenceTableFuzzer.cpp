// The file of a sequence download, generated as a table with faults.
#include "Download.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aOctets, std::size_t aSize) {
  Input input(aOctets, aSize);
  const std::string content = makeTable(eDownload::eSequence, input);
  requireDownload(eDownload::eSequence, content, input);
  return 0;
}
