// Run types, as named in the status and the sequence table.
#include "RunType.h"

#include <cstring>

#include "CodeText.h"

namespace {

// The instrument's run type codes (parameters 141 and 23).
constexpr CodeText cRunTypes[] = {
    {0, "Analysis"},
    {1, "Calibration"},
    {2, "Blank"},
    {3, "Verification"},
};
static_assert(isIndexedByCode(cRunTypes));

}  // namespace

const char* runTypeText(int aCode) {
  return textOfCode(cRunTypes, aCode, "None");
}

int runTypeCode(const char* aText) {
  for (const CodeText& row : cRunTypes) {
    if (std::strcmp(row.text, aText) == 0) {
      return row.code;
    }
  }
  return 0;
}
