// The error text library: display texts of instrument error codes.
#pragma once

#pragma GCC visibility push(default)

/// Writes the text of an instrument error code, zero-terminated, into a buffer of 128 characters.
void getErrorText(int code, char* buffer);

#pragma GCC visibility pop
