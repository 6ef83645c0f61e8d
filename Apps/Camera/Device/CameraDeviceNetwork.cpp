// Network settings, which are kept and reported; only the ports are acted on. And the search for recordings.
#include "CameraDevice.h"

#include "LocalPorts.h"
#include "RecordTime.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include <arpa/inet.h>

using namespace NETNS;

namespace
{

constexpr std::int64_t SECOND_US = 1000000;
constexpr std::int64_t DAY_US = SECOND_US * 24 * 3600;

/// Empty or four numbers with dots.
bool IsAddress(const char (&text)[16])
{
    in_addr address = {};
    return text[0] == '\0' ||
           (std::memchr(text, '\0', sizeof(text)) != nullptr && inet_pton(AF_INET, text, &address) == 1);
}

template <std::size_t N>
bool EndsInField(const char (&text)[N])
{
    return std::memchr(text, '\0', N) != nullptr;
}

bool IsSameDay(const DEV_DATE& one, const DEV_DATE& other)
{
    return one.year == other.year && one.month == other.month && one.day == other.day;
}

/// The first moment of the day behind the one of `timeUs`. A day has 23 to 25 hours, so it is gone from noon to noon.
std::int64_t NextDay(std::int64_t timeUs)
{
    const std::int64_t nextNoonUs = ToRecordTime({ToLocalTime(timeUs).date, {12, 0, 0}}) + DAY_US;
    return ToRecordTime({ToLocalTime(nextNoonUs).date, {}});
}

} // namespace

DEV_RET CCameraDevice::GetNetBasic(const char* verify, DEV_NET_BASIC* config)
{
    return Read(CheckUser(verify), config, &DeviceSettings::net);
}

DEV_RET CCameraDevice::SetNetBasic(const char* verify, const DEV_NET_BASIC* config)
{
    return Apply(CheckUser(verify), SettingsTopic::Network,
                 [config](DeviceSettings& settings)
                 {
                     settings.net = *config;
                     const bool good = config->ipSettingMode <= 1 && config->dnsFromDhcpSwitch <= 1 &&
                                       IsAddress(config->staticIp) && IsAddress(config->staticIpRoute) &&
                                       IsAddress(config->staticIpMask) && IsAddress(config->dnsServer1) &&
                                       IsAddress(config->dnsServer2);
                     return good ? DEV_RET_OK : DEV_RET_BAD_PARAM;
                 });
}

DEV_RET CCameraDevice::GetPppoe(const char* verify, DEV_PPPOE* config)
{
    return Read(CheckUser(verify), config, &DeviceSettings::pppoe);
}

DEV_RET CCameraDevice::SetPppoe(const char* verify, const DEV_PPPOE* config)
{
    return Apply(CheckUser(verify), SettingsTopic::Pppoe,
                 [config](DeviceSettings& settings)
                 {
                     settings.pppoe = *config;
                     const bool good =
                         config->pppoeSwitch <= 1 && EndsInField(config->userName) && EndsInField(config->password);
                     return good ? DEV_RET_OK : DEV_RET_BAD_PARAM;
                 });
}

DEV_RET CCameraDevice::GetPortInfo(const char* verify, DEV_PORT_INFO* info)
{
    return Read(CheckUser(verify), info, &DeviceSettings::ports);
}

DEV_RET CCameraDevice::SetPortInfo(const char* verify, const DEV_PORT_INFO* info)
{
    return Apply(CheckUser(verify), SettingsTopic::Ports,
                 [info](DeviceSettings& settings)
                 {
                     std::string why;
                     const DEV_PORT_INFO before = settings.ports;
                     const auto isFree = [&](std::uint16_t port)
                     {
                         return port == before.httpPort || port == before.rtspPort || IsPortFree(port, why);
                     };
                     settings.ports = *info;
                     const bool good = info->httpPort != 0 && info->rtspPort != 0 && info->httpPort != info->rtspPort &&
                                       isFree(info->httpPort) && isFree(info->rtspPort);
                     return good ? DEV_RET_OK : DEV_RET_BAD_PARAM;
                 });
}

DEV_RET CCameraDevice::GetDdns(const char* verify, DEV_DDNS* config)
{
    return Read(CheckUser(verify), config, &DeviceSettings::ddns);
}

DEV_RET CCameraDevice::SetDdns(const char* verify, const DEV_DDNS* config)
{
    return Apply(CheckUser(verify), SettingsTopic::Ddns,
                 [config](DeviceSettings& settings)
                 {
                     settings.ddns = *config;
                     const bool good = config->ddnsSwitch <= 1 && EndsInField(config->serverType) &&
                                       EndsInField(config->userName) && EndsInField(config->password) &&
                                       EndsInField(config->domainName) && EndsInField(config->serverName);
                     return good ? DEV_RET_OK : DEV_RET_BAD_PARAM;
                 });
}

DEV_RET CCameraDevice::SearchRecordDate(const char* verify, DEV_DATE* list, int max, int& count)
{
    count = 0;
    const DEV_RET checked = CheckUser(verify);
    if (checked != DEV_RET_OK)
    {
        return checked;
    }
    for (const RecordSection& section : m_parts.records.Sections(0, std::numeric_limits<std::int64_t>::max()))
    {
        for (std::int64_t at = section.startUs; at <= section.endUs; at = NextDay(at))
        {
            const DEV_DATE day = ToLocalTime(at).date;
            if (count < max && (count == 0 || !IsSameDay(list[count - 1], day)))
            {
                list[count++] = day;
            }
        }
    }
    return DEV_RET_OK;
}

DEV_RET CCameraDevice::SearchRecord(const char* verify, const DEV_DATETIME* start, const DEV_DATETIME* end, int channel,
                                    DEV_RECORD_INFO* list, int max, int& count)
{
    count = 0;
    const DEV_RET checked = Check(verify, static_cast<unsigned int>(channel) + 1);
    if (checked != DEV_RET_OK)
    {
        return checked;
    }
    const std::int64_t endUs = end->date.year == 0 ? WallClockUs() : ToRecordTime(*end);
    for (const RecordSection& section : m_parts.records.Sections(ToRecordTime(*start), endUs))
    {
        if (count < max)
        {
            // A part of a second counts as a whole one, so that asking for the length gives all of it.
            const std::int64_t lengthUs = section.endUs - section.startUs / SECOND_US * SECOND_US;
            list[count++] = {ToLocalTime(section.startUs),
                             static_cast<std::uint32_t>((lengthUs + SECOND_US - 1) / SECOND_US)};
        }
    }
    return DEV_RET_OK;
}
