// PubHelper.h: small free helpers. Any thread.
#pragma once

/// Prints the place and the text of errno to standard error. A diagnostic only.
void PUB_PrintError(const char* file, int line);

/// A number from 0 to 2147483647. The process-wide generator is seeded from the tick counter at every call, so two
/// calls within one tick return the same number.
unsigned int PUB_Rand();

/// @return how many bits are set
unsigned int PUB_GetBitCount(unsigned int value);
