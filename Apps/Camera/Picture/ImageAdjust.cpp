#include "ImageAdjust.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

using namespace NETNS;

namespace
{

constexpr std::uint8_t NO_COLOR = 128;
constexpr unsigned int SAMPLE_STEP = 8; // every eighth sample of every eighth row is enough for a mean
// Between the two the camera stays what it is.
constexpr double NIGHT_BELOW = 40;
constexpr double DAY_ABOVE = 60;
constexpr int NIGHT_BEGINS = 18; // hours of the timer
constexpr int NIGHT_ENDS = 6;

enum IrCutMode : std::uint32_t
{
    IR_CUT_AUTO,
    IR_CUT_DAY,
    IR_CUT_NIGHT,
    IR_CUT_TIMER,
};

enum WhiteBalance : std::uint32_t
{
    WHITE_AUTO,
    WHITE_MANUAL,
    WHITE_OUTDOOR,
    WHITE_INDOOR,
    WHITE_ATW,
    WHITE_NALAMP,
};

/// Gains in the hundredth; 100 leaves the colour alone.
struct Gains
{
    int red;
    int blue;
};

// clang-format off
constexpr Gains GAINS[] = { // by white balance mode
    {100, 100}, // auto: the source is balanced
    {100, 100}, // manual: of the settings
    {108,  92}, // outdoor: the sky is blue
    { 85, 118}, // indoor: lamps are yellow
    {100, 100}, // atw: tracked
    { 75, 130}, // nalamp: sodium is orange
};
// clang-format on

std::uint8_t Clamp(int value)
{
    return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

std::uint8_t* Row(const PicturePlane& plane, unsigned int row)
{
    return plane.data + static_cast<std::ptrdiff_t>(row) * plane.stride;
}

double Mean(const PicturePlane& plane)
{
    std::uint64_t sum = 0;
    std::uint64_t count = 0;
    for (unsigned int row = 0; row < plane.height; row += SAMPLE_STEP)
    {
        const std::uint8_t* const samples = Row(plane, row);
        for (unsigned int column = 0; column < plane.width; column += SAMPLE_STEP)
        {
            sum += samples[column];
            ++count;
        }
    }
    return count == 0 ? 0 : static_cast<double>(sum) / static_cast<double>(count);
}

/// A colour's gain moves its difference from the brightness: with g the gain, K and D the factors of ITU-R BT.601,
/// difference' = difference + D * (g - 1) * (brightness + K * difference).
void Gain(const PicturePlane& luma, const PicturePlane& difference, int gain, int k, int d)
{
    const int factor = d * (gain - 100); // in 1/25600
    for (unsigned int row = 0; row < difference.height; ++row)
    {
        const std::uint8_t* const brightness = Row(luma, std::min(2 * row, luma.height - 1));
        std::uint8_t* const samples = Row(difference, row);
        for (std::size_t column = 0; column < difference.width; ++column)
        {
            const int sample = samples[column] - NO_COLOR;
            const int colour = std::max(brightness[2 * column] - 16 + k * sample / 256, 0);
            samples[column] = Clamp(NO_COLOR + sample + factor * colour / 25600);
        }
    }
}

void Shift(const PicturePlane& plane, int offset)
{
    for (unsigned int row = 0; row < plane.height; ++row)
    {
        std::uint8_t* const samples = Row(plane, row);
        for (unsigned int column = 0; column < plane.width; ++column)
        {
            samples[column] = Clamp(samples[column] + offset);
        }
    }
}

void RemoveColor(const PicturePlane& plane)
{
    for (unsigned int row = 0; row < plane.height; ++row)
    {
        std::memset(Row(plane, row), NO_COLOR, plane.width);
    }
}

} // namespace

void CImageAdjust::Apply(const Picture& picture, const DEV_IMAGE_PARAM& image, int hour)
{
    DecideNight(picture, image.irCutMode, hour);
    if (m_night)
    {
        RemoveColor(picture.blue);
        RemoveColor(picture.red);
    }
    else
    {
        Balance(picture, image);
    }
    if (image.sharpenSwitch != 0 && image.sharpenValue > 0)
    {
        Sharpen(picture.luma, image.sharpenValue);
    }
}

void CImageAdjust::DecideNight(const Picture& picture, std::uint32_t irCutMode, int hour)
{
    switch (irCutMode)
    {
    case IR_CUT_DAY:
        m_night = false;
        return;
    case IR_CUT_NIGHT:
        m_night = true;
        return;
    case IR_CUT_TIMER:
        m_night = hour >= NIGHT_BEGINS || hour < NIGHT_ENDS;
        return;
    default:
        m_night = Mean(picture.luma) < (m_night ? DAY_ABOVE : NIGHT_BELOW);
        return;
    }
}

void CImageAdjust::Balance(const Picture& picture, const DEV_IMAGE_PARAM& image)
{
    constexpr int K_BLUE = 454; // 1.772, in 1/256
    constexpr int K_RED = 359;  // 1.402
    constexpr int D_BLUE = 144; // 0.564
    constexpr int D_RED = 183;  // 0.713
    if (image.whiteBalanceMode == WHITE_ATW)
    {
        TrackWhite(picture);
        return;
    }
    m_meanBlue = m_meanRed = 0;
    Gains gains = GAINS[image.whiteBalanceMode <= WHITE_NALAMP ? image.whiteBalanceMode : WHITE_AUTO];
    if (image.whiteBalanceMode == WHITE_MANUAL)
    {
        gains = {50 + static_cast<int>(image.red), 50 + static_cast<int>(image.blue)}; // from a half to one and a half
    }
    if (gains.blue != 100)
    {
        Gain(picture.luma, picture.blue, gains.blue, K_BLUE, D_BLUE);
    }
    if (gains.red != 100)
    {
        Gain(picture.luma, picture.red, gains.red, K_RED, D_RED);
    }
}

/// Takes the mean of all colours for white.
void CImageAdjust::TrackWhite(const Picture& picture)
{
    constexpr double PACE = 0.1; // of the way in each picture
    m_meanBlue += PACE * (Mean(picture.blue) - NO_COLOR - m_meanBlue);
    m_meanRed += PACE * (Mean(picture.red) - NO_COLOR - m_meanRed);
    Shift(picture.blue, -static_cast<int>(m_meanBlue));
    Shift(picture.red, -static_cast<int>(m_meanRed));
}

/// Adds to each sample what it differs from its four neighbours.
void CImageAdjust::Sharpen(const PicturePlane& luma, unsigned int value)
{
    const int amount = static_cast<int>(value); // 100 adds the whole mean difference
    m_above.resize(luma.width);
    m_here.resize(luma.width);
    std::memcpy(m_above.data(), Row(luma, 0), luma.width);
    for (unsigned int row = 1; row + 1 < luma.height; ++row)
    {
        std::uint8_t* const samples = Row(luma, row);
        const std::uint8_t* const below = Row(luma, row + 1);
        std::memcpy(m_here.data(), samples, luma.width);
        for (unsigned int column = 1; column + 1 < luma.width; ++column)
        {
            const int here = m_here[column];
            const int difference = 4 * here - m_above[column] - below[column] - m_here[column - 1] - m_here[column + 1];
            samples[column] = Clamp(here + amount * difference / 400);
        }
        std::swap(m_above, m_here);
    }
}
