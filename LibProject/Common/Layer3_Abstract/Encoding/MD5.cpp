#include "MD5.h"

#include "DigestBlocks.h"

#include <algorithm>
#include <cstring>

namespace
{

const unsigned int BLOCK_BYTES = 64;
const unsigned int COUNT_OFFSET = 56; // where a padded last block holds the bit count

void Feed(PUB_MD5_CTX* context, const unsigned char* data, unsigned int len)
{
    unsigned int held = (context->count[0] >> 3) % BLOCK_BYTES;
    const std::uint64_t bits = ((static_cast<std::uint64_t>(context->count[1]) << 32) | context->count[0]) +
                               static_cast<std::uint64_t>(len) * 8;
    context->count[0] = static_cast<std::uint32_t>(bits);
    context->count[1] = static_cast<std::uint32_t>(bits >> 32);
    while (len > 0)
    {
        const unsigned int taken = std::min(len, BLOCK_BYTES - held);
        std::memcpy(context->buffer + held, data, taken);
        data += taken;
        len -= taken;
        held += taken;
        if (held == BLOCK_BYTES)
        {
            DigestMD5Block(context->state, context->buffer);
            held = 0;
        }
    }
}

void PutLE32(unsigned char* out, std::uint32_t value)
{
    for (int i = 0; i < 4; ++i)
    {
        out[i] = static_cast<unsigned char>(value >> (8 * i));
    }
}

} // namespace

void MD5Init(PUB_MD5_CTX* context)
{
    *context = PUB_MD5_CTX{{0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476}, {0, 0}, {}};
}

void MD5Update(PUB_MD5_CTX* context, unsigned char* data, unsigned int len)
{
    Feed(context, data, len);
}

void MD5Final(char* out, PUB_MD5_CTX* context, bool upper)
{
    static const unsigned char PADDING[BLOCK_BYTES] = {0x80};
    unsigned char bitCount[8];
    PutLE32(bitCount, context->count[0]);
    PutLE32(bitCount + 4, context->count[1]);

    const unsigned int held = (context->count[0] >> 3) % BLOCK_BYTES;
    Feed(context, PADDING, held < COUNT_OFFSET ? COUNT_OFFSET - held : BLOCK_BYTES + COUNT_OFFSET - held);
    Feed(context, bitCount, sizeof(bitCount));

    const char* const digits = upper ? "0123456789ABCDEF" : "0123456789abcdef";
    unsigned char digest[16];
    for (size_t i = 0; i < 4; ++i)
    {
        PutLE32(digest + 4 * i, context->state[i]);
    }
    for (const unsigned char byte : digest)
    {
        *out++ = digits[byte >> 4];
        *out++ = digits[byte & 0x0F];
    }
    *out = '\0';
    explicit_bzero(context, sizeof(*context));
}

void PUB_MD5Encrypt(const void* data, int len, char* out, bool upper)
{
    PUB_MD5_CTX context;
    MD5Init(&context);
    Feed(&context, static_cast<const unsigned char*>(data), len > 0 ? static_cast<unsigned int>(len) : 0);
    MD5Final(out, &context, upper);
}
