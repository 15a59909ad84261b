// The platform layer library: the ACE environment of a run, and the controller's clock.
#pragma once

#pragma GCC visibility push(default)

/// Call before everything else.
void initializeACE();

/// Call after everything else.
void finishACE();

/// Reads the controller's clock: hour 0 to 23, minute and second 0 to 59, day 1 to 31, month 1 to
/// 12, year in full. The seventh pointer may be null.
unsigned long plxGetTime(unsigned int* hour, unsigned int* minute, unsigned int* second,
                         unsigned int* day, unsigned int* month, unsigned int* year, long*);

#pragma GCC visibility pop
