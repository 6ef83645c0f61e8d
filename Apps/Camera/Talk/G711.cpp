#include "G711.h"

#include <algorithm>

std::int16_t AlawToLinear(std::uint8_t code)
{
    // Sign, three bits of segment, four bits of step; every other bit is inverted on the line.
    const unsigned int bits = code ^ 0x55U;
    const unsigned int segment = (bits >> 4) & 7;
    unsigned int magnitude = ((bits & 0x0f) << 4) + 8;
    if (segment > 0)
    {
        magnitude = (magnitude + 0x100) << (segment - 1);
    }
    const int value = static_cast<int>(magnitude);
    return static_cast<std::int16_t>((bits & 0x80) != 0 ? value : -value);
}

std::uint8_t LinearToUlaw(std::int16_t sample)
{
    constexpr int BIAS = 0x84;
    constexpr int CLIP = 32635;
    const int magnitude = std::min(sample < 0 ? -int{sample} : int{sample}, CLIP) + BIAS;
    int segment = 7;
    while (segment > 0 && (magnitude & (1 << (segment + 7))) == 0)
    {
        --segment;
    }
    const int step = (magnitude >> (segment + 3)) & 0x0f;
    const int code = (sample < 0 ? 0x80 : 0) | (segment << 4) | step;
    return static_cast<std::uint8_t>(~code); // all bits are inverted on the line
}

std::uint8_t AlawToUlaw(std::uint8_t code)
{
    return LinearToUlaw(AlawToLinear(code));
}
