// Which statuses are the client library's own word that it got no answer.
#pragma once

#include <cstdint>

/// Null for a status that is the instrument's word; else what the library could not do, as part of
/// a sentence. Whether the instrument has carried out the call is not known then.
const char* unansweredReason(std::uint32_t aStatus);
