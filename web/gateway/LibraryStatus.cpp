// Statuses with which the client library itself reports that it got no answer.
#include "LibraryStatus.h"

namespace gateway {

namespace {

struct StatusRow {
  std::uint32_t status;
  const char* reason;
};

// An assumption about a closed library that documents only 0 and 28. It is based on the stand-in,
// whose own statuses are in the 100s and the instrument's in the 200s; these are the 100s that
// occur after a call has been sent. The last rows follow convention: 10053 is the Windows code for
// an aborted connection, which the tool uses too, and -1 is a common status for a library's own
// failure; neither is a status of an instrument. Correct them here if the maker's numbers are
// known; a status missing here counts as a refusal.
constexpr StatusRow cUnanswered[] = {
    {107, "it did not answer in time"},         {108, "the connection was lost"},
    {109, "its answer was not understood"},     {10053, "the connection was lost"},
    {4294967295U, "the client library failed"},
};

}  // namespace

const char* unansweredReason(std::uint32_t aStatus) {
  for (const StatusRow& row : cUnanswered) {
    if (row.status == aStatus) {
      return row.reason;
    }
  }
  return nullptr;
}

}  // namespace gateway
