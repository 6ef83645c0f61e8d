// DeviceSettings.h: everything about the camera that clients can change, as one record.
#pragma once

#include "CameraOptions.h"
#include "DevInterface.h"

#include <string>
#include <vector>

constexpr unsigned int SENSOR_COUNT = 2;    ///< alarm inputs, ids from 0
constexpr unsigned int ALARM_OUT_COUNT = 2; ///< alarm outputs, ids from 0
constexpr unsigned int MOTION_ROWS = 8;
constexpr unsigned int MOTION_COLUMNS = 16;
constexpr unsigned int VIDEO_STREAMS = 2;

/// Where the digital head looks: the middle of the view in the picture, both from 0 to 1, and how much it enlarges.
struct PtzView
{
    double x = 0.5;
    double y = 0.5;
    double zoom = 1;
};

struct PtzPreset
{
    unsigned int id = 0; ///< from 1
    std::string name;    ///< up to 11 bytes
    PtzView view;
};

struct PtzCruisePoint
{
    unsigned int preset = 0;
    unsigned int speed = 0;
    unsigned int holdTime = 0; ///< seconds
};

struct PtzCruise
{
    unsigned int id = 0; ///< from 1
    std::string name;    ///< up to 30 bytes
    std::vector<PtzCruisePoint> points;
};

/// All channels show the same source, so there is one set of settings for all of them.
struct DeviceSettings
{
    NETNS::DEV_TIME_CONFIG time;
    NETNS::DEV_IMAGE_PARAM image;
    NETNS::DEV_VIDEO_PROFILE profiles[VIDEO_STREAMS];
    std::uint32_t audioType; ///< 0 G.711 A-law, 1 G.711 mu-law
    NETNS::DEV_TIME_OSD timeOsd;
    NETNS::DEV_CHANNEL_NAME_OSD nameOsd;
    std::vector<NETNS::DEV_PRIVACY_MASK> masks;
    NETNS::DEV_MOTION_CONFIG motion;
    NETNS::DEV_SENSOR_CONFIG sensors[SENSOR_COUNT];
    NETNS::DEV_ALARM_OUT_CONFIG alarmOuts[ALARM_OUT_COUNT];
    NETNS::DEV_NET_BASIC net;
    NETNS::DEV_PPPOE pppoe;
    NETNS::DEV_PORT_INFO ports;
    NETNS::DEV_DDNS ddns;
    NETNS::DEV_PTZ_PROTOCOL ptzProtocol;
    std::uint32_t focus; ///< 0 to 100: kept, the digital head has no lens
    std::uint32_t iris;  ///< 0 to 100: kept
    std::vector<PtzPreset> presets;
    std::vector<PtzCruise> cruises;
    std::vector<CameraUser> users;
};

/// What a camera has that nobody has changed yet.
DeviceSettings DefaultSettings(const CameraOptions& options);
