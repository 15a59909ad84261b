// The version, for a person who starts a program by hand.
#pragma once

namespace gateway {

/// Always false for a program that a web server has started: a query may become an argument.
bool isAskedForVersion(int argc, const char* const argv[]);

/// Returns the program's exit status.
int printVersion(const char* aProgram);

}  // namespace gateway
