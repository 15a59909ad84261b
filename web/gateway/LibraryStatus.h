// Statuses with which the client library itself reports that it got no answer.
#pragma once

#include <cstdint>

namespace gateway {

/// Null for a status that came from the instrument; otherwise the library's failure, as part of a
/// sentence. It is then unknown whether the instrument carried out the call.
const char* unansweredReason(std::uint32_t aStatus);

}  // namespace gateway
