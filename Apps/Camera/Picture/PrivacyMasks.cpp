#include "PrivacyMasks.h"

#include <algorithm>
#include <cstring>

namespace
{

constexpr std::uint8_t LUMA_OF_COLOR[] = {16, 235, 128}; // black, white, gray
constexpr std::uint8_t NO_COLOR = 128;

struct Range
{
    unsigned int begin;
    unsigned int end;
};

Range Cut(std::uint64_t begin, std::uint64_t length, unsigned int side)
{
    return {static_cast<unsigned int>(std::min<std::uint64_t>(begin, side)),
            static_cast<unsigned int>(std::min<std::uint64_t>(begin + length, side))};
}

void Fill(const PicturePlane& plane, Range columns, Range rows, std::uint8_t value)
{
    for (unsigned int row = rows.begin; row < rows.end; ++row)
    {
        std::memset(plane.data + static_cast<std::ptrdiff_t>(row) * plane.stride + columns.begin, value,
                    columns.end - columns.begin);
    }
}

/// The samples of a plane at half the size that touch the range.
Range Half(Range range)
{
    return {range.begin / 2, (range.end + 1) / 2};
}

} // namespace

void PaintMasks(const Picture& picture, const std::vector<NETNS::DEV_PRIVACY_MASK>& masks)
{
    for (const NETNS::DEV_PRIVACY_MASK& mask : masks)
    {
        if (mask.maskSwitch == 0 || mask.color >= std::size(LUMA_OF_COLOR))
        {
            continue;
        }
        const Range columns = Cut(mask.x, mask.width, picture.luma.width);
        const Range rows = Cut(mask.y, mask.height, picture.luma.height);
        Fill(picture.luma, columns, rows, LUMA_OF_COLOR[mask.color]);
        if (columns.begin < columns.end && rows.begin < rows.end)
        {
            Fill(picture.blue, Half(columns), Half(rows), NO_COLOR);
            Fill(picture.red, Half(columns), Half(rows), NO_COLOR);
        }
    }
}
