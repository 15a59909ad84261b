// The remote control's end of its conversation with a simulated controller.
#pragma once

#include <string>

namespace simulator {

/// Sends a line and takes the line that answers it, both without their newline. False, with the
/// reason in `error`, when nobody answers within some seconds.
bool askController(const std::string& aPath, const std::string& aRequest, std::string& answer,
                   std::string& error);

}  // namespace simulator
