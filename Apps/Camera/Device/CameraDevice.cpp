// The device itself: identity, users, time, restart.
#include "CameraDevice.h"

#include "CameraLog.h"
#include "RecordTime.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include <ifaddrs.h>
#include <net/if.h>
#include <netpacket/packet.h>
#include <sys/utsname.h>

using namespace NETNS;

namespace
{

constexpr int NTP_SERVER_MAX = 127;

template <std::size_t N>
void CopyText(char (&field)[N], const char* text)
{
    std::snprintf(field, N, "%s", text);
}

/// The address of the first Ethernet interface; all zero on a machine without one.
void FillMac(std::uint8_t (&mac)[6])
{
    ifaddrs* all = nullptr;
    if (getifaddrs(&all) != 0)
    {
        return;
    }
    for (const ifaddrs* one = all; one != nullptr; one = one->ifa_next)
    {
        if (one->ifa_addr == nullptr || one->ifa_addr->sa_family != AF_PACKET || (one->ifa_flags & IFF_LOOPBACK) != 0)
        {
            continue;
        }
        sockaddr_ll link = {};
        std::memcpy(&link, one->ifa_addr, sizeof(link));
        if (link.sll_halen == sizeof(mac))
        {
            std::memcpy(mac, link.sll_addr, sizeof(mac));
            break;
        }
    }
    freeifaddrs(all);
}

} // namespace

CCameraDevice::CCameraDevice(const CameraOptions& options, const Parts& parts, const DeviceSettings& settings)
    : m_options(options), m_parts(parts), m_settings(settings), m_tour(parts.head, SteadyClockUs)
{
}

DeviceSettings CCameraDevice::Settings() const
{
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_settings;
}

void CCameraDevice::RepeatPictureEffects()
{
    const std::lock_guard<std::mutex> guard(m_lock);
    for (const SettingsTopic topic : {SettingsTopic::Image, SettingsTopic::Osd, SettingsTopic::Masks,
                                      SettingsTopic::Motion, SettingsTopic::Streams})
    {
        m_parts.effects.SettingsChanged(topic, m_settings);
    }
}

DEV_RET CCameraDevice::CheckUser(const char* verify) const
{
    return m_parts.users.IsKnown(verify) ? DEV_RET_OK : DEV_RET_NO_RIGHT;
}

DEV_RET CCameraDevice::Check(const char* verify, unsigned int chn) const
{
    if (!m_parts.users.IsKnown(verify))
    {
        return DEV_RET_NO_RIGHT;
    }
    return chn >= 1 && chn <= m_options.channels ? DEV_RET_OK : DEV_RET_BAD_PARAM;
}

DEV_RET CCameraDevice::Apply(DEV_RET checked, SettingsTopic topic, const Change& change)
{
    if (checked != DEV_RET_OK)
    {
        return checked;
    }
    const std::lock_guard<std::mutex> guard(m_lock);
    DeviceSettings changed = m_settings;
    const DEV_RET result = change(changed);
    if (result != DEV_RET_OK)
    {
        return result;
    }
    if (!m_parts.store.Save(topic, changed))
    {
        Say("a setting could not be stored and stays as it was; check the free space in the data directory, and its "
            "rights");
        return DEV_RET_FAILED;
    }
    m_settings = changed;
    if (topic == SettingsTopic::Users)
    {
        m_parts.users.Replace(m_settings.users);
    }
    m_parts.effects.SettingsChanged(topic, m_settings);
    return DEV_RET_OK;
}

DEV_RET CCameraDevice::GetUserList(DEV_USER_INFO* list, int max, int& count)
{
    count = 0;
    for (const CameraUser& user : m_parts.users.List())
    {
        if (count < max)
        {
            DEV_USER_INFO& row = list[count];
            row = {};
            CopyText(row.userName, user.name.c_str());
            CopyText(row.password, user.password.c_str());
            ++count;
        }
    }
    return DEV_RET_OK;
}

DEV_RET CCameraDevice::GetDevInfo(const char* verify, DEV_DEVICE_INFO* info)
{
    const DEV_RET checked = CheckUser(verify);
    if (checked != DEV_RET_OK)
    {
        return checked;
    }
    utsname machine = {};
    uname(&machine);
    CopyText(info->model, "netserver-camera");
    CopyText(info->brand, "netserver");
    CopyText(info->description, "Reference camera");
    CopyText(info->softwareVersion, CAMERA_VERSION);
    info->softwareBuildDate = {CAMERA_BUILD_YEAR, CAMERA_BUILD_MONTH, CAMERA_BUILD_DAY};
    CopyText(info->kernelVersion, machine.release);
    CopyText(info->hardwareVersion, machine.machine);
    FillMac(info->mac);
    info->audioInCount = static_cast<std::uint16_t>(m_options.channels);
    info->audioOutCount = 1;
    info->alarmInCount = SENSOR_COUNT;
    info->alarmOutCount = ALARM_OUT_COUNT;
    return DEV_RET_OK;
}

DEV_RET CCameraDevice::GetTimeConfig(const char* verify, DEV_TIME_CONFIG* config)
{
    return Read(CheckUser(verify), config, &DeviceSettings::time);
}

DEV_RET CCameraDevice::SetTimeConfig(const char* verify, const DEV_TIME_CONFIG* config)
{
    return Apply(CheckUser(verify), SettingsTopic::Time,
                 [config](DeviceSettings& settings)
                 {
                     settings.time = *config;
                     return DEV_RET_OK;
                 });
}

DEV_RET CCameraDevice::SetDateTime(const char* verify, const DEV_DATETIME* /*time*/)
{
    const DEV_RET checked = CheckUser(verify);
    return checked == DEV_RET_OK ? DEV_RET_NOT_SUPPORTED : checked;
}

bool CCameraDevice::NeedAuthorization()
{
    return m_options.rtspAuth;
}

DEV_RET CCameraDevice::ModifyPassword(const char* verify, const char* newPassword)
{
    DEV_RET checked = CheckUser(verify);
    if (checked == DEV_RET_OK && (newPassword == nullptr || !PasswordProblem(newPassword).empty()))
    {
        checked = DEV_RET_BAD_PARAM;
    }
    const auto change = [this, verify, newPassword](DeviceSettings& settings)
    {
        const std::string name = m_parts.users.NameOf(verify);
        const auto found = std::find_if(settings.users.begin(), settings.users.end(),
                                        [&name](const CameraUser& user) { return user.name == name; });
        if (found == settings.users.end())
        {
            return DEV_RET_NO_RIGHT; // the same user has changed it in this moment
        }
        found->password = newPassword;
        return DEV_RET_OK;
    };
    return Apply(checked, SettingsTopic::Users, change);
}

DEV_RET CCameraDevice::Reboot(const char* verify)
{
    const DEV_RET checked = CheckUser(verify);
    if (checked == DEV_RET_OK)
    {
        m_parts.effects.Reboot();
    }
    return checked;
}

DEV_RET CCameraDevice::GetChannelIdList(const char* verify, unsigned int* ids, int max, int& count)
{
    count = 0;
    const DEV_RET checked = CheckUser(verify);
    while (checked == DEV_RET_OK && count < max && static_cast<unsigned int>(count) < m_options.channels)
    {
        ids[count] = static_cast<unsigned int>(count) + 1;
        ++count;
    }
    return checked;
}

int CCameraDevice::GetMaxLen(int kind)
{
    return kind == 0 ? NTP_SERVER_MAX : 0;
}
