#include "ViewScaler.h"

#include <algorithm>
#include <cmath>
#include <cstring>

void CViewScaler::Apply(const Picture& picture, const PtzView& view)
{
    if (view.zoom > 1)
    {
        ScalePlane(picture.luma, view);
        ScalePlane(picture.blue, view);
        ScalePlane(picture.red, view);
    }
}

void CViewScaler::MakeTaps(std::vector<Tap>& taps, unsigned int side, double middle, double zoom)
{
    const double begin = middle * side - side / (2 * zoom);
    taps.resize(side);
    for (unsigned int index = 0; index < side; ++index)
    {
        const double place = std::clamp(begin + (index + 0.5) / zoom - 0.5, 0.0, static_cast<double>(side - 1));
        const double whole = std::floor(place);
        taps[index].first = static_cast<unsigned int>(whole);
        taps[index].second = std::min(taps[index].first + 1, side - 1);
        taps[index].weight = static_cast<int>((place - whole) * 256);
    }
}

void CViewScaler::ScalePlane(const PicturePlane& plane, const PtzView& view)
{
    if (plane.width == 0 || plane.height == 0)
    {
        return;
    }
    MakeTaps(m_columns, plane.width, view.x, view.zoom);
    MakeTaps(m_rows, plane.height, view.y, view.zoom);
    m_source.resize(std::size_t{plane.width} * plane.height);
    for (unsigned int row = 0; row < plane.height; ++row)
    {
        std::memcpy(&m_source[std::size_t{row} * plane.width],
                    plane.data + static_cast<std::ptrdiff_t>(row) * plane.stride, plane.width);
    }
    for (unsigned int row = 0; row < plane.height; ++row)
    {
        const Tap& vertical = m_rows[row];
        const std::uint8_t* const upper = &m_source[std::size_t{vertical.first} * plane.width];
        const std::uint8_t* const lower = &m_source[std::size_t{vertical.second} * plane.width];
        std::uint8_t* const out = plane.data + static_cast<std::ptrdiff_t>(row) * plane.stride;
        for (unsigned int column = 0; column < plane.width; ++column)
        {
            const Tap& tap = m_columns[column];
            const int above = upper[tap.first] * (256 - tap.weight) + upper[tap.second] * tap.weight;
            const int below = lower[tap.first] * (256 - tap.weight) + lower[tap.second] * tap.weight;
            out[column] = static_cast<std::uint8_t>((above * (256 - vertical.weight) + below * vertical.weight) >> 16);
        }
    }
}
