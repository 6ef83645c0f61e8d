#include "MotionDetector.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

using namespace NETNS;

namespace
{

constexpr unsigned int STEP = 4;
constexpr std::uint64_t COMPARE_EVERY_US = 180000; // slow movements show between pictures that lie apart
constexpr unsigned int MAX_ROWS = 8;
constexpr unsigned int MAX_COLUMNS = 64;
constexpr int THRESHOLDS[] = {40, 40, 30, 22, 16, 11, 7, 4, 2}; // in brightness steps, by sensitivity 0 to 8

} // namespace

bool CMotionDetector::Look(const Picture& picture, const DEV_MOTION_CONFIG& config)
{
    if (!m_before.empty() && picture.timeUs - m_beforeUs < COMPARE_EVERY_US)
    {
        return m_moving;
    }
    TakeSamples(picture);
    m_moving = m_before.size() == m_now.size() && IsMoving(config);
    std::swap(m_now, m_before);
    m_beforeUs = picture.timeUs;
    return m_moving;
}

void CMotionDetector::TakeSamples(const Picture& picture)
{
    m_width = picture.luma.width / STEP;
    m_height = picture.luma.height / STEP;
    m_now.resize(std::size_t{m_width} * m_height);
    std::uint8_t* out = m_now.data();
    for (unsigned int row = 0; row < m_height; ++row)
    {
        const std::uint8_t* const samples =
            picture.luma.data + static_cast<std::ptrdiff_t>(std::size_t{row} * STEP) * picture.luma.stride;
        for (unsigned int column = 0; column < m_width; ++column)
        {
            *out++ = samples[std::size_t{column} * STEP];
        }
    }
}

bool CMotionDetector::IsMoving(const DEV_MOTION_CONFIG& config) const
{
    const unsigned int rows = std::min(config.rows, MAX_ROWS);
    const unsigned int columns = std::min(config.columns, MAX_COLUMNS);
    const int threshold =
        THRESHOLDS[std::clamp(config.sensitivity, 0, static_cast<std::int32_t>(std::size(THRESHOLDS)) - 1)];
    for (unsigned int row = 0; row < rows; ++row)
    {
        for (unsigned int column = 0; column < columns; ++column)
        {
            const bool isInArea = ((config.area[row].cells >> (columns - 1 - column)) & 1) != 0;
            if (isInArea && MeanDifference(row, column, rows, columns) > threshold)
            {
                return true;
            }
        }
    }
    return false;
}

int CMotionDetector::MeanDifference(unsigned int row, unsigned int column, unsigned int rows,
                                    unsigned int columns) const
{
    const unsigned int left = m_width * column / columns;
    const unsigned int right = m_width * (column + 1) / columns;
    const unsigned int top = m_height * row / rows;
    const unsigned int bottom = m_height * (row + 1) / rows;
    const unsigned int count = (right - left) * (bottom - top);
    unsigned int sum = 0;
    for (unsigned int y = top; y < bottom; ++y)
    {
        const std::size_t begin = std::size_t{y} * m_width;
        for (unsigned int x = left; x < right; ++x)
        {
            sum += static_cast<unsigned int>(std::abs(m_now[begin + x] - m_before[begin + x]));
        }
    }
    return count == 0 ? 0 : static_cast<int>(sum / count);
}
