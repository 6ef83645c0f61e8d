// ImageAdjust.h: white balance, day and night, sharpness. Brightness, contrast, hue, saturation and the turning of the
// picture are GStreamer's.
//
// Local to one thread.
#pragma once

#include "DevInterface.h"
#include "Picture.h"

#include <vector>

class CImageAdjust
{
public:
    /// @param hour  local time, 0 to 23, for the day and night timer
    void Apply(const Picture& picture, const NETNS::DEV_IMAGE_PARAM& image, int hour);

    /// Whether the last picture was made one of the night, without colour.
    bool IsNight() const { return m_night; }

private:
    void DecideNight(const Picture& picture, std::uint32_t irCutMode, int hour);
    void Balance(const Picture& picture, const NETNS::DEV_IMAGE_PARAM& image);
    void TrackWhite(const Picture& picture);
    void Sharpen(const PicturePlane& luma, unsigned int value);

    bool m_night = false;
    double m_meanBlue = 0; // of the colour differences, over the last seconds
    double m_meanRed = 0;
    std::vector<std::uint8_t> m_above; // rows as they were in front of the change
    std::vector<std::uint8_t> m_here;
};
