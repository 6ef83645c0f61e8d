// DigestBlocks.h: the block functions of MD5 (RFC 1321) and SHA-1 (FIPS 180-1). Any thread.
//
// In a file of their own because the library behind them defines macros with the names of our operations.
#pragma once

#include <cstdint>

/// Feeds one block into the four chaining words.
void DigestMD5Block(std::uint32_t* state, const unsigned char block[64]);
/// Feeds one block into the five chaining words.
void DigestSHA1Block(std::uint32_t* state, const unsigned char block[64]);
