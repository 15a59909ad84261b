// Which statuses are the client library's own word that it got no answer.
#include "LibraryStatus.h"

namespace {

struct StatusRow {
  std::uint32_t status;
  const char* reason;
};

// An assumption about a closed library, of which only 0 and 28 are documented. It rests on the
// stand-in, whose 100s are its own and whose 200s are the instrument's; of the 100s these are the
// ones that come after a call has been sent. The last rows rest on custom: 10053 is Windows' number
// of a connection that was aborted, which the tool uses too, and -1 is how a library reports a
// failure of its own; neither is a status of an instrument. Whoever knows the maker's numbers
// corrects them here; a status that is missing is taken for a refusal.
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
