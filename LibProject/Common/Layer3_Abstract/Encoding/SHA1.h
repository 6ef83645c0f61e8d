// SHA1.h: SHA-1 (FIPS 180-1), with the digest left in the context. Contexts live on the caller's stack; any thread.
#pragma once

#include <cstdint>

struct SHA1_CONTEXT
{
    std::uint32_t h[5];
    std::uint32_t nblocks; ///< finished blocks of 64 bytes
    unsigned char buf[64]; ///< bytes of the next block; behind sha1_final the digest stands in the first twenty
    std::uint32_t count;   ///< bytes held in `buf`
};

/// Sets the starting words and the counts; the caller zeroes the whole context first.
void sha1_init(SHA1_CONTEXT* context);
/// @param data  null: only flushes a buffer that has reached 64 bytes
void sha1_write(SHA1_CONTEXT* context, unsigned char* data, unsigned int len);
/// Pads and finishes: the digest's twenty bytes, as the standard orders them, then stand at the start of `buf`.
void sha1_final(SHA1_CONTEXT* context);
