// Where the remote control of a simulated controller is found.
#pragma once

#include <string>

namespace simulator {

/// The socket of the controller at `aAddress`: in $XDG_RUNTIME_DIR or, without, in a folder of the
/// user's own under /tmp.
std::string defaultControlPath(const std::string& aAddress);

/// Makes the user's own folder under /tmp when `aPath` is in it. False, as makePrivateFolder().
bool prepareControlFolder(const std::string& aPath, std::string& error);

/// Makes a folder that only its user can enter, or finds it made. False, with the reason in
/// `error`, when something else is there.
bool makePrivateFolder(const std::string& aFolder, std::string& error);

}  // namespace simulator
