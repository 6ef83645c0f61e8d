// MD5.h: MD5 (RFC 1321) that yields hexadecimal text. Contexts live on the caller's stack; any thread.
#pragma once

#include <cstdint>

struct PUB_MD5_CTX
{
    std::uint32_t state[4];
    std::uint32_t count[2]; ///< bits fed so far, low word first
    unsigned char buffer[64];
};

/// Digest of `len` bytes. @param out  room for 33 bytes: 32 hexadecimal digits and a zero byte
void PUB_MD5Encrypt(const void* data, int len, char* out, bool upper);

void MD5Init(PUB_MD5_CTX* context);
void MD5Update(PUB_MD5_CTX* context, unsigned char* data, unsigned int len);
/// Writes the digest as PUB_MD5Encrypt does and wipes the context, so that no input stays in memory.
void MD5Final(char* out, PUB_MD5_CTX* context, bool upper);
