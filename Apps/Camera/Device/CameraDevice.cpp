#include "CameraDevice.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <utility>

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

/// The machine's time zone as the API has it: "GMT+01:00".
void FillTimeZone(char (&field)[128])
{
    const std::time_t now = std::time(nullptr);
    std::tm local = {};
    localtime_r(&now, &local);
    const long minutes = local.tm_gmtoff / 60;
    const long absolute = minutes < 0 ? -minutes : minutes;
    std::snprintf(field, sizeof(field), "GMT%c%02ld:%02ld", minutes < 0 ? '-' : '+', absolute / 60, absolute % 60);
}

} // namespace

CCameraDevice::CCameraDevice(const CameraOptions& options, CCameraUsers& users, std::function<void()> requestKeyFrame,
                             std::function<void()> reboot)
    : m_channels(options.channels), m_rtspAuth(options.rtspAuth), m_users(users),
      m_requestKeyFrame(std::move(requestKeyFrame)), m_reboot(std::move(reboot))
{
    FillTimeZone(m_timeConfig.timeZone);
}

DEV_RET CCameraDevice::GetUserList(DEV_USER_INFO* list, int max, int& count)
{
    count = 0;
    for (const CameraUser& user : m_users.List())
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
    if (!m_users.IsKnown(verify))
    {
        return DEV_RET_NO_RIGHT;
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
    info->audioInCount = static_cast<std::uint16_t>(m_channels);
    return DEV_RET_OK;
}

DEV_RET CCameraDevice::GetTimeConfig(const char* verify, DEV_TIME_CONFIG* config)
{
    if (!m_users.IsKnown(verify))
    {
        return DEV_RET_NO_RIGHT;
    }
    const std::lock_guard<std::mutex> guard(m_lock);
    *config = m_timeConfig;
    return DEV_RET_OK;
}

DEV_RET CCameraDevice::SetTimeConfig(const char* verify, const DEV_TIME_CONFIG* config)
{
    if (!m_users.IsKnown(verify))
    {
        return DEV_RET_NO_RIGHT;
    }
    const std::lock_guard<std::mutex> guard(m_lock);
    m_timeConfig = *config;
    return DEV_RET_OK;
}

DEV_RET CCameraDevice::SetDateTime(const char* verify, const DEV_DATETIME* /*time*/)
{
    return m_users.IsKnown(verify) ? DEV_RET_NOT_SUPPORT : DEV_RET_NO_RIGHT;
}

DEV_RET CCameraDevice::RequestKeyFrame(const char* verify, unsigned int chn)
{
    if (!m_users.IsKnown(verify))
    {
        return DEV_RET_NO_RIGHT;
    }
    if (chn < 1 || chn > m_channels)
    {
        return DEV_RET_BAD_PARAM;
    }
    m_requestKeyFrame();
    return DEV_RET_OK;
}

bool CCameraDevice::NeedAuthorization()
{
    return m_rtspAuth;
}

DEV_RET CCameraDevice::ModifyPassword(const char* verify, const char* newPassword)
{
    if (!m_users.IsKnown(verify))
    {
        return DEV_RET_NO_RIGHT;
    }
    if (newPassword == nullptr || !PasswordProblem(newPassword).empty())
    {
        return DEV_RET_BAD_PARAM;
    }
    return m_users.ChangePassword(verify, newPassword) ? DEV_RET_OK : DEV_RET_NO_RIGHT;
}

DEV_RET CCameraDevice::Reboot(const char* verify)
{
    if (!m_users.IsKnown(verify))
    {
        return DEV_RET_NO_RIGHT;
    }
    m_reboot();
    return DEV_RET_OK;
}

DEV_RET CCameraDevice::GetChannelIdList(const char* verify, unsigned int* ids, int max, int& count)
{
    count = 0;
    if (!m_users.IsKnown(verify))
    {
        return DEV_RET_NO_RIGHT;
    }
    while (count < max && static_cast<unsigned int>(count) < m_channels)
    {
        ids[count] = static_cast<unsigned int>(count) + 1;
        ++count;
    }
    return DEV_RET_OK;
}

int CCameraDevice::GetMaxLen(int kind)
{
    return kind == 0 ? NTP_SERVER_MAX : 0;
}
