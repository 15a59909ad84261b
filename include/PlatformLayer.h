// The platform layer library: the ACE environment of a process, and the controller's clock.
#pragma once

#pragma GCC visibility push(default)

/// Call before anything else.
void initializeACE();

/// Call after everything else.
void finishACE();

/// Reads the controller's clock: hour 0 to 23, minute and second 0 to 59, day 1 to 31, month 1 to
/// 12, four-digit year. The seventh pointer may be null.
unsigned long plxGetTime(unsigned int* hour, unsigned int* minute, unsigned int* second,
                         unsigned int* day, unsigned int* month, unsigned int* year, long*);

#pragma GCC visibility pop
