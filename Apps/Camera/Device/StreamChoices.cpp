#include "StreamChoices.h"

#include <algorithm>
#include <iterator>

using namespace NETNS;

namespace
{

constexpr unsigned int MAIN = 0;
constexpr std::uint32_t MIN_BITRATE = 16; // kbit/s
constexpr std::uint32_t MAX_BITRATE = 100000;
constexpr std::uint32_t MAX_GOP = 1000;
constexpr std::uint32_t H264 = 2;
constexpr std::uint32_t LEVELS[] = {1, 2, 4}; // baseline, main, high
constexpr std::uint32_t MAIN_LEVEL = 2;
constexpr std::uint32_t HIGHEST_QUALITY = 5;

struct Scale
{
    unsigned int numerator;
    unsigned int denominator;
};
constexpr Scale SCALES[] = {{1, 1}, {3, 4}, {1, 2}, {1, 4}};

unsigned int Even(unsigned int side)
{
    return side - side % 2;
}

} // namespace

DEV_VIDEO_PROFILE DefaultProfile(const CameraOptions& options, unsigned int stream)
{
    DEV_VIDEO_PROFILE profile = {};
    const unsigned int divisor = stream == MAIN ? 1 : 2;
    profile.width = options.width / divisor;
    profile.height = options.height / divisor;
    profile.frameRate = options.fps;
    profile.maxBitRate = stream == MAIN ? options.bitrate : std::max(options.bitrate / 4, MIN_BITRATE);
    profile.quality = HIGHEST_QUALITY;
    profile.encodeType = H264;
    profile.encodeLevel = MAIN_LEVEL;
    profile.gop = options.gop;
    return profile;
}

std::vector<DEV_RESOLUTION> Resolutions(const CameraOptions& options, unsigned int stream)
{
    std::vector<DEV_RESOLUTION> list;
    for (const Scale& scale : SCALES)
    {
        if (stream == MAIN || scale.denominator != 1)
        {
            list.push_back({Even(options.width * scale.numerator / scale.denominator),
                            Even(options.height * scale.numerator / scale.denominator)});
        }
    }
    return list;
}

DEV_VIDEO_ENCODE_CAPS EncodeCaps(const CameraOptions& options, unsigned int stream)
{
    DEV_VIDEO_ENCODE_CAPS caps = {};
    caps.encodeTypes[0] = H264;
    caps.encodeTypeCount = 1;
    const std::vector<DEV_RESOLUTION> resolutions = Resolutions(options, stream);
    std::copy(resolutions.begin(), resolutions.end(), caps.resolutions);
    caps.resolutionCount = static_cast<std::uint32_t>(resolutions.size());
    caps.frameRateMin = 1;
    caps.frameRateMax = options.fps;
    caps.gopMin = 1;
    caps.gopMax = MAX_GOP;
    std::copy(std::begin(LEVELS), std::end(LEVELS), caps.encodeLevels);
    caps.encodeLevelCount = static_cast<std::uint32_t>(std::size(LEVELS));
    caps.bitRateMin = MIN_BITRATE;
    caps.bitRateMax = MAX_BITRATE;
    return caps;
}

bool IsPossible(const CameraOptions& options, unsigned int stream, const DEV_VIDEO_PROFILE& profile)
{
    const auto within = [](std::uint32_t value, std::uint32_t least, std::uint32_t most)
    {
        return value >= least && value <= most;
    };
    const std::vector<DEV_RESOLUTION> resolutions = Resolutions(options, stream);
    const bool sizeKnown = std::any_of(resolutions.begin(), resolutions.end(),
                                       [&profile](const DEV_RESOLUTION& one)
                                       { return one.width == profile.width && one.height == profile.height; });
    const bool levelKnown = std::find(std::begin(LEVELS), std::end(LEVELS), profile.encodeLevel) != std::end(LEVELS);
    return sizeKnown && levelKnown && profile.encodeType == H264 && within(profile.frameRate, 1, options.fps) &&
           within(profile.maxBitRate, MIN_BITRATE, MAX_BITRATE) && within(profile.quality, 1, HIGHEST_QUALITY) &&
           within(profile.gop, 1, MAX_GOP);
}
