// StartCode.h: the four bytes in front of each unit of a frame, and the search for them. Any thread.
#pragma once

#include <cstring>

constexpr unsigned int START_CODE_BYTES = 4;
constexpr unsigned int START_CODE_NONE = 0xFFFFFFFFu;

/// What stands in front of a unit, and where in it the byte that is searched first: the rarest of the four.
struct START_CODE
{
    unsigned char bytes[START_CODE_BYTES];
    unsigned int rareIndex;
};

constexpr START_CODE NALU_BOUNDARY = {{0x00, 0x00, 0x00, 0x01}, 3};       ///< H.264 NAL unit (Annex B)
constexpr START_CODE AUDIO_NALU_BOUNDARY = {{0x00, 0x01, 0xA0, 0x00}, 2}; ///< chunk of audio

/// @return the first position at or behind `from` where the code stands whole, START_CODE_NONE when there is none
inline unsigned int FindStartCode(const unsigned char* data, unsigned int from, unsigned int length,
                                  const START_CODE& code)
{
    if (length < START_CODE_BYTES || from > length - START_CODE_BYTES)
        return START_CODE_NONE;
    const unsigned int tail = START_CODE_BYTES - 1 - code.rareIndex;
    const unsigned char* const end = data + length - tail; // behind the last place for the rare byte
    const unsigned char* next = data + from + code.rareIndex;
    while (next < end)
    {
        const void* hit = memchr(next, code.bytes[code.rareIndex], static_cast<std::size_t>(end - next));
        if (hit == nullptr)
            return START_CODE_NONE;
        const unsigned char* start = static_cast<const unsigned char*>(hit) - code.rareIndex;
        if (memcmp(start, code.bytes, START_CODE_BYTES) == 0)
            return static_cast<unsigned int>(start - data);
        next = static_cast<const unsigned char*>(hit) + 1;
    }
    return START_CODE_NONE;
}
