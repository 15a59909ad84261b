// Faults at work: what they do to the answers of calls.
#pragma once

#include <Message.h>

#include "Faults.h"

namespace simulator {

/// What becomes of a request.
struct Reply {
  wire::Frame octets;    ///< nothing is sent when empty
  double seconds = 0.0;  ///< real time to wait before they are sent
  bool close = false;    ///< close the connection once they are sent
  bool hang = false;     ///< the client is meant to wait for ever
};

/// Does the call take effect in spite of the fault?
bool takesEffect(const Fault& aFault);

/// What a call that takes no effect is answered with; none when it is not answered.
std::optional<std::uint32_t> statusInstead(const Fault& aFault);

/// Alters the records that a batch is answered with. Indices past the last record alter nothing.
void alter(const Fault& aFault, const wire::Batch& aRequest, wire::Batch& answer);
/// Alters the text of a SiteInfoTag.
void alter(const Fault& aFault, const wire::ObjectRequest& aRequest, wire::ObjectReply& answer);
/// Other answers hold nothing that a fault could alter.
template <class Request, class Answer>
void alter(const Fault& /*aFault*/, const Request& /*aRequest*/, Answer& /*answer*/) {}

/// Alters the frame of an answer, or what is done with it.
void alter(const Fault& aFault, Reply& reply);

}  // namespace simulator
