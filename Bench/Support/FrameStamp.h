// FrameStamp.h: the time at which a frame was handed to the library, written into the frame itself.
//
// The frame can no longer be decoded; it is as long as before and no start code comes into being.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

constexpr unsigned char FRAME_STAMP_MARK[4] = {0xA5, 0x5A, 0xC3, 0x3C};
constexpr std::size_t FRAME_STAMP_BYTES = sizeof(FRAME_STAMP_MARK) + 16; // the mark and a nibble of the time a byte

inline void WriteFrameStamp(unsigned char* out, std::uint64_t ns)
{
    memcpy(out, FRAME_STAMP_MARK, sizeof(FRAME_STAMP_MARK));
    for (unsigned int i = 0; i < 16; ++i)
        out[sizeof(FRAME_STAMP_MARK) + i] = static_cast<unsigned char>(0x10 | ((ns >> (60 - 4 * i)) & 0x0F));
}

/// @return 0 when no stamp stands there
inline std::uint64_t ReadFrameStamp(const unsigned char* in)
{
    if (memcmp(in, FRAME_STAMP_MARK, sizeof(FRAME_STAMP_MARK)) != 0)
        return 0;
    std::uint64_t ns = 0;
    for (unsigned int i = 0; i < 16; ++i)
        ns = (ns << 4) | (in[sizeof(FRAME_STAMP_MARK) + i] & 0x0F);
    return ns;
}
