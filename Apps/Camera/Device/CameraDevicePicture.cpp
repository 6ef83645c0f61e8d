// What the camera sees and sends: image, streams, sound, text and masks in the picture.
#include "CameraDevice.h"

#include "StreamChoices.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

using namespace NETNS;

namespace
{

constexpr std::uint32_t IMAGE_MAX = 100;
constexpr std::uint32_t MIDDLE = 50;
constexpr std::uint32_t WHITE_BALANCE_MODES = 6;
constexpr std::uint32_t IR_CUT_MODES = 4;
constexpr std::uint32_t DATE_FORMATS = 3;
constexpr std::uint32_t MASK_COLORS = 3;
constexpr std::size_t MAX_MASKS = 8;
constexpr int ALAW = 0;
constexpr int ULAW = 1;
constexpr const char* const PROFILE_NAMES[VIDEO_STREAMS] = {"main", "sub"};

bool IsStream(int profile)
{
    return profile >= 0 && profile < static_cast<int>(VIDEO_STREAMS);
}

bool IsGood(const DEV_IMAGE_PARAM& image)
{
    const std::uint32_t levels[] = {image.bright,       image.contrast, image.hue,  image.saturation,
                                    image.sharpenValue, image.red,      image.blue, image.denoiseValue};
    return std::all_of(std::begin(levels), std::end(levels), [](std::uint32_t level) { return level <= IMAGE_MAX; }) &&
           image.frequency <= 1 && image.whiteBalanceMode < WHITE_BALANCE_MODES && image.irCutMode < IR_CUT_MODES;
}

} // namespace

DEV_RET CCameraDevice::GetImageCaps(const char* verify, unsigned int chn, DEV_IMAGE_CAPS* caps)
{
    const DEV_RET checked = Check(verify, chn);
    if (checked == DEV_RET_OK)
    {
        caps->frequencyDefault = 1;
        caps->brightMax = caps->contrastMax = caps->saturationMax = caps->hueMax = IMAGE_MAX;
        caps->brightDefault = caps->contrastDefault = caps->saturationDefault = caps->hueDefault = MIDDLE;
        caps->redMax = caps->blueMax = IMAGE_MAX;
        caps->redDefault = caps->blueDefault = MIDDLE;
        caps->sharpenValueDefault = MIDDLE;
    }
    return checked;
}

DEV_RET CCameraDevice::GetImageParam(const char* verify, unsigned int chn, DEV_IMAGE_PARAM* param)
{
    return Read(Check(verify, chn), param, &DeviceSettings::image);
}

DEV_RET CCameraDevice::SetImageParam(const char* verify, unsigned int chn, const DEV_IMAGE_PARAM* param)
{
    return Apply(Check(verify, chn), SettingsTopic::Image,
                 [param](DeviceSettings& settings)
                 {
                     settings.image = *param;
                     return IsGood(*param) ? DEV_RET_OK : DEV_RET_BAD_PARAM;
                 });
}

DEV_RET CCameraDevice::GetVideoEncodeCaps(const char* verify, unsigned int chn, int profile,
                                          DEV_VIDEO_ENCODE_CAPS* caps)
{
    DEV_RET checked = Check(verify, chn);
    checked = checked == DEV_RET_OK && !IsStream(profile) ? DEV_RET_BAD_PARAM : checked;
    if (checked == DEV_RET_OK)
    {
        *caps = EncodeCaps(m_options, static_cast<unsigned int>(profile));
    }
    return checked;
}

DEV_RET CCameraDevice::GetProfileName(const char* verify, unsigned int chn, int profile, char* name, int size, int& len)
{
    len = 0;
    DEV_RET checked = Check(verify, chn);
    checked = checked == DEV_RET_OK && (!IsStream(profile) || size < 1) ? DEV_RET_BAD_PARAM : checked;
    if (checked == DEV_RET_OK)
    {
        std::snprintf(name, static_cast<std::size_t>(size), "%s", PROFILE_NAMES[profile]);
        len = static_cast<int>(std::char_traits<char>::length(name));
    }
    return checked;
}

int CCameraDevice::GetProfileCount(unsigned int chn)
{
    return chn >= 1 && chn <= m_options.channels ? static_cast<int>(VIDEO_STREAMS) : 0;
}

bool CCameraDevice::SupportAudioEncode(unsigned int chn, int type)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    return GetProfileCount(chn) != 0 && type == static_cast<int>(m_settings.audioType);
}

DEV_RET CCameraDevice::SetAudioEncode(const char* verify, unsigned int chn, int type)
{
    return Apply(Check(verify, chn), SettingsTopic::Audio,
                 [type](DeviceSettings& settings)
                 {
                     settings.audioType = static_cast<std::uint32_t>(type);
                     return type == ALAW || type == ULAW ? DEV_RET_OK : DEV_RET_BAD_PARAM;
                 });
}

DEV_RET CCameraDevice::GetVideoProfile(const char* verify, unsigned int chn, int profile, DEV_VIDEO_PROFILE* config)
{
    const DEV_RET checked = Check(verify, chn);
    if (checked == DEV_RET_OK && !IsStream(profile))
    {
        return DEV_RET_BAD_PARAM;
    }
    if (checked == DEV_RET_OK)
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        *config = m_settings.profiles[profile];
    }
    return checked;
}

DEV_RET CCameraDevice::SetVideoProfile(const char* verify, unsigned int chn, int profile,
                                       const DEV_VIDEO_PROFILE* config)
{
    return Apply(Check(verify, chn), SettingsTopic::Streams,
                 [this, profile, config](DeviceSettings& settings)
                 {
                     if (!IsStream(profile) || !IsPossible(m_options, static_cast<unsigned int>(profile), *config))
                     {
                         return DEV_RET_BAD_PARAM;
                     }
                     settings.profiles[profile] = *config;
                     return DEV_RET_OK;
                 });
}

DEV_RET CCameraDevice::RequestKeyFrame(const char* verify, unsigned int chn)
{
    const DEV_RET checked = Check(verify, chn);
    if (checked == DEV_RET_OK)
    {
        m_parts.effects.RequestKeyFrames();
    }
    return checked;
}

DEV_RET CCameraDevice::GetTimeOsd(const char* verify, unsigned int chn, DEV_TIME_OSD* osd)
{
    return Read(Check(verify, chn), osd, &DeviceSettings::timeOsd);
}

DEV_RET CCameraDevice::GetChannelNameOsd(const char* verify, unsigned int chn, DEV_CHANNEL_NAME_OSD* osd)
{
    return Read(Check(verify, chn), osd, &DeviceSettings::nameOsd);
}

DEV_RET CCameraDevice::SetTimeOsd(const char* verify, unsigned int chn, DEV_TIME_OSD osd)
{
    return Apply(Check(verify, chn), SettingsTopic::Osd,
                 [this, osd](DeviceSettings& settings)
                 {
                     // A client that leaves the format out sends 0: it stays as it is.
                     const std::uint32_t format = osd.dateFormat == 0 ? settings.timeOsd.dateFormat : osd.dateFormat;
                     settings.timeOsd = osd;
                     settings.timeOsd.dateFormat = format;
                     const bool good = osd.osdSwitch <= 1 && osd.x < m_options.width && osd.y < m_options.height &&
                                       format <= DATE_FORMATS;
                     return good ? DEV_RET_OK : DEV_RET_BAD_PARAM;
                 });
}

DEV_RET CCameraDevice::SetChannelNameOsd(const char* verify, unsigned int chn, DEV_CHANNEL_NAME_OSD osd)
{
    return Apply(Check(verify, chn), SettingsTopic::Osd,
                 [this, &osd](DeviceSettings& settings)
                 {
                     osd.name[sizeof(osd.name) - 1] = '\0';
                     settings.nameOsd = osd;
                     const bool good = osd.osdSwitch <= 1 && osd.x < m_options.width && osd.y < m_options.height;
                     return good ? DEV_RET_OK : DEV_RET_BAD_PARAM;
                 });
}

DEV_RET CCameraDevice::GetPrivacyMask(const char* verify, unsigned int chn, DEV_PRIVACY_MASK* list, int max, int& count)
{
    count = 0;
    const DEV_RET checked = Check(verify, chn);
    if (checked == DEV_RET_OK)
    {
        for (const DEV_PRIVACY_MASK& mask : Settings().masks)
        {
            if (count < max)
            {
                list[count++] = mask;
            }
        }
    }
    return checked;
}

DEV_RET CCameraDevice::SetPrivacyMask(const char* verify, unsigned int chn, const DEV_PRIVACY_MASK* list, int count)
{
    const auto isGood = [this](const DEV_PRIVACY_MASK& mask)
    {
        return mask.maskSwitch <= 1 && mask.color < MASK_COLORS && mask.x < m_options.width &&
               mask.y < m_options.height && mask.width <= m_options.width && mask.height <= m_options.height;
    };
    return Apply(Check(verify, chn), SettingsTopic::Masks,
                 [list, count, &isGood](DeviceSettings& settings)
                 {
                     if (count < 0 || static_cast<std::size_t>(count) > MAX_MASKS ||
                         !std::all_of(list, list + count, isGood))
                     {
                         return DEV_RET_BAD_PARAM;
                     }
                     settings.masks.assign(list, list + count);
                     return DEV_RET_OK;
                 });
}
