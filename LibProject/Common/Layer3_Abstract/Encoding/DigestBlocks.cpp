#include "DigestBlocks.h"

#include <nettle/md5.h>
#include <nettle/sha1.h>

void DigestMD5Block(std::uint32_t* state, const unsigned char block[64])
{
    nettle_md5_compress(state, block);
}

void DigestSHA1Block(std::uint32_t* state, const unsigned char block[64])
{
    nettle_sha1_compress(state, block);
}
