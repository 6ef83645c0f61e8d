#include "DeviceSettings.h"

#include "StreamChoices.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>

using namespace NETNS;

namespace
{

constexpr std::uint32_t DEFAULT_HOLD_SECONDS = 5;
constexpr std::uint16_t DEFAULT_NET_PORT = 5000;
constexpr std::uint8_t MIDDLE = 50;

template <std::size_t N>
void CopyText(char (&field)[N], const std::string& text)
{
    std::snprintf(field, N, "%s", text.c_str());
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

void FillAddress(char (&field)[16], const sockaddr* address)
{
    sockaddr_in inet = {};
    std::memcpy(&inet, address, sizeof(inet));
    inet_ntop(AF_INET, &inet.sin_addr, field, sizeof(field));
}

/// What the machine has: the first interface that leads somewhere.
DEV_NET_BASIC MachineAddresses()
{
    DEV_NET_BASIC net = {};
    ifaddrs* all = nullptr;
    if (getifaddrs(&all) != 0)
    {
        return net;
    }
    for (const ifaddrs* one = all; one != nullptr; one = one->ifa_next)
    {
        const bool usable = one->ifa_addr != nullptr && one->ifa_addr->sa_family == AF_INET &&
                            (one->ifa_flags & IFF_LOOPBACK) == 0 && one->ifa_netmask != nullptr;
        if (usable)
        {
            FillAddress(net.staticIp, one->ifa_addr);
            FillAddress(net.staticIpMask, one->ifa_netmask);
            break;
        }
    }
    freeifaddrs(all);
    return net;
}

DEV_IMAGE_PARAM DefaultImage()
{
    DEV_IMAGE_PARAM image = {};
    image.frequency = 1;
    image.bright = image.contrast = image.hue = image.saturation = MIDDLE;
    image.sharpenValue = MIDDLE;
    image.red = image.blue = MIDDLE;
    return image;
}

DEV_MOTION_CONFIG DefaultMotion()
{
    DEV_MOTION_CONFIG motion = {};
    motion.alarmHoldTime = DEFAULT_HOLD_SECONDS;
    motion.sensitivity = 6;
    motion.rows = MOTION_ROWS;
    motion.columns = MOTION_COLUMNS;
    for (DEV_MOTION_ROW& row : motion.area)
    {
        row.cells = (std::uint64_t{1} << MOTION_COLUMNS) - 1;
    }
    return motion;
}

void FillAlarms(DeviceSettings& settings)
{
    for (unsigned int id = 0; id < SENSOR_COUNT; ++id)
    {
        settings.sensors[id].id = id;
        CopyText(settings.sensors[id].name, "Sensor " + std::to_string(id));
        settings.sensors[id].sensorSwitch = 1;
        settings.sensors[id].alarmHoldTime = DEFAULT_HOLD_SECONDS;
    }
    for (unsigned int id = 0; id < ALARM_OUT_COUNT; ++id)
    {
        settings.alarmOuts[id].id = id;
        CopyText(settings.alarmOuts[id].name, "Output " + std::to_string(id));
        settings.alarmOuts[id].alarmHoldTime = DEFAULT_HOLD_SECONDS;
    }
}

} // namespace

DeviceSettings DefaultSettings(const CameraOptions& options)
{
    DeviceSettings settings = {};
    FillTimeZone(settings.time.timeZone);
    settings.image = DefaultImage();
    for (unsigned int stream = 0; stream < VIDEO_STREAMS; ++stream)
    {
        settings.profiles[stream] = DefaultProfile(options, stream);
    }
    settings.timeOsd = {1, 8, 8, 1};
    settings.nameOsd = {0, 8, 48, "Camera"};
    settings.motion = DefaultMotion();
    FillAlarms(settings);
    settings.net = MachineAddresses();
    settings.ports = {options.httpPort, DEFAULT_NET_PORT, options.rtspPort};
    settings.ptzProtocol = {9600, 1, 1};
    settings.focus = settings.iris = MIDDLE;
    settings.users = options.users;
    return settings;
}
