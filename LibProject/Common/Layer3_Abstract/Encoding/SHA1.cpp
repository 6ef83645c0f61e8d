#include "SHA1.h"

#include "ByteOrder.h"
#include "DigestBlocks.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace
{

const unsigned int BLOCK_BYTES = 64;
const unsigned int COUNT_OFFSET = 56; // where a padded last block holds the bit count

void Flush(SHA1_CONTEXT* context)
{
    if (context->count == BLOCK_BYTES)
    {
        DigestSHA1Block(context->h, context->buf);
        context->count = 0;
        ++context->nblocks;
    }
}

} // namespace

void sha1_init(SHA1_CONTEXT* context)
{
    static const std::uint32_t START[5] = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
    std::copy(std::begin(START), std::end(START), context->h);
    context->nblocks = 0;
    context->count = 0;
}

void sha1_write(SHA1_CONTEXT* context, unsigned char* data, unsigned int len)
{
    Flush(context);
    while (data != nullptr && len > 0)
    {
        const unsigned int taken = std::min(len, BLOCK_BYTES - context->count);
        std::memcpy(context->buf + context->count, data, taken);
        context->count += taken;
        data += taken;
        len -= taken;
        Flush(context);
    }
}

void sha1_final(SHA1_CONTEXT* context)
{
    Flush(context);
    const std::uint64_t bits = (static_cast<std::uint64_t>(context->nblocks) * BLOCK_BYTES + context->count) * 8;
    context->buf[context->count++] = 0x80;
    std::memset(context->buf + context->count, 0, BLOCK_BYTES - context->count);
    if (context->count > COUNT_OFFSET)
    {
        DigestSHA1Block(context->h, context->buf);
        std::memset(context->buf, 0, BLOCK_BYTES);
    }
    PutBE32(context->buf + COUNT_OFFSET, static_cast<std::uint32_t>(bits >> 32));
    PutBE32(context->buf + COUNT_OFFSET + 4, static_cast<std::uint32_t>(bits));
    DigestSHA1Block(context->h, context->buf);
    for (size_t i = 0; i < 5; ++i)
    {
        PutBE32(context->buf + 4 * i, context->h[i]);
    }
}
