// DevInterface.h: what the host implements so that the library can read and change the device, and its records.
#pragma once

#include "NetTypes.h"

#include <string>

namespace NETNS
{

/// The device's identity. All texts end in a zero byte.
struct DEV_DEVICE_INFO
{
    char model[32];
    char brand[32];
    char description[32];
    char softwareVersion[32];
    DEV_DATE softwareBuildDate;
    char kernelVersion[32];
    char hardwareVersion[32];
    std::uint8_t mac[6];
    std::uint16_t audioInCount;
    std::uint16_t audioOutCount;
    std::uint16_t alarmInCount;
    std::uint16_t alarmOutCount;
};

struct DEV_TIME_CONFIG
{
    std::uint32_t synchronizeType; ///< 1: NTP, anything else: set by hand
    char ntpServer[128];
    char timeZone[128];
    std::uint32_t daylightSwitch; ///< 0 or 1
};

/// Image settings of one channel; the limits of the numbers are in DEV_IMAGE_CAPS.
struct DEV_IMAGE_PARAM
{
    std::uint8_t frequency; ///< 0: 60 Hz, 1: 50 Hz
    std::uint8_t bright;
    std::uint8_t contrast;
    std::uint8_t hue;
    std::uint8_t saturation;
    std::uint8_t mirrorSwitch;
    std::uint8_t flipSwitch;
    std::uint8_t irisSwitch;
    std::uint8_t sharpenSwitch;
    std::uint8_t sharpenValue;
    std::uint8_t denoiseValue;
    std::uint8_t denoiseSwitch;
    std::uint32_t whiteBalanceMode; ///< 0 auto, 1 manual, 2 outdoor, 3 indoor, 4 atw, 5 nalamp
    std::uint32_t red;
    std::uint32_t blue;
    std::uint8_t wdrSwitch;
    std::uint8_t wdrValue;
    std::uint32_t irCutMode; ///< 0 auto, 1 day, 2 night, 3 timer
};

/// Limits and defaults of DEV_IMAGE_PARAM.
struct DEV_IMAGE_CAPS
{
    std::uint32_t frequencyDefault;
    std::uint32_t brightMin, brightMax, brightDefault;
    std::uint32_t contrastMin, contrastMax, contrastDefault;
    std::uint32_t saturationMin, saturationMax, saturationDefault;
    std::uint32_t hueMin, hueMax, hueDefault;
    std::uint8_t mirrorDefault;
    std::uint8_t flipDefault;
    std::uint8_t wdrValueDefault;
    std::uint8_t wdrSwitchDefault;
    std::uint32_t whiteBalanceModeDefault;
    std::uint32_t redMin, redMax, redDefault;
    std::uint32_t blueMin, blueMax, blueDefault;
    std::uint8_t denoiseValueDefault;
    std::uint8_t denoiseSwitchDefault;
    std::uint8_t irisDefault;
    std::uint8_t sharpenValueDefault;
    std::uint8_t sharpenSwitchDefault;
    std::uint32_t irCutDefault;
};

struct DEV_RESOLUTION
{
    std::uint32_t width;
    std::uint32_t height;
};

/// What one video stream can do.
struct DEV_VIDEO_ENCODE_CAPS
{
    std::uint32_t encodeTypes[8]; ///< values of DEV_VIDEO_PROFILE::encodeType
    std::uint32_t encodeTypeCount;
    DEV_RESOLUTION resolutions[8];
    std::uint32_t resolutionCount;
    std::uint32_t frameRateMin; ///< frames per second
    std::uint32_t frameRateMax;
    std::uint32_t gopMin; ///< frames
    std::uint32_t gopMax;
    std::uint32_t encodeLevels[8]; ///< values of DEV_VIDEO_PROFILE::encodeLevel
    std::uint32_t encodeLevelCount;
    std::uint32_t bitRateMin; ///< kbit/s
    std::uint32_t bitRateMax;
};

/// The time burnt into the picture.
struct DEV_TIME_OSD
{
    std::uint32_t osdSwitch; ///< 0 or 1
    std::uint32_t x;
    std::uint32_t y;
    std::uint32_t dateFormat; ///< 1 year-month-day, 2 month-day-year, 3 day-month-year
};

/// The channel's name burnt into the picture.
struct DEV_CHANNEL_NAME_OSD
{
    std::uint32_t osdSwitch; ///< 0 or 1
    std::uint32_t x;
    std::uint32_t y;
    char name[64];
};

/// A rectangle hidden in the picture.
struct DEV_PRIVACY_MASK
{
    std::uint32_t maskSwitch; ///< 0 or 1
    std::uint32_t x;
    std::uint32_t y;
    std::uint32_t width;
    std::uint32_t height;
    std::uint32_t color; ///< 0 black, 1 white, 2 gray
};

/// A row of the motion grid.
struct DEV_MOTION_ROW
{
    std::uint32_t hostReserved1;
    alignas(8) std::uint64_t cells; ///< a bit for each cell
    std::uint8_t hostReserved2[16];
};

struct DEV_MOTION_CONFIG
{
    std::uint32_t motionSwitch;  ///< 0 or 1
    std::uint32_t alarmHoldTime; ///< seconds
    std::int32_t sensitivity;
    DEV_MOTION_ROW area[8];
    std::uint32_t columns; ///< cells in a row
    std::uint32_t rows;
    std::uint32_t alarmOuts[32]; ///< ids of the outputs to trigger
    std::uint32_t alarmOutCount;
};

struct DEV_MOTION_CAPS
{
    std::uint32_t sensitivityMin;
    std::uint32_t sensitivityMax;
};

/// An alarm input.
struct DEV_SENSOR_CONFIG
{
    std::uint32_t id;
    char name[128];
    std::uint32_t sensorSwitch;  ///< 0 or 1
    std::uint32_t voltage;       ///< 0 normally open, 1 normally closed
    std::uint32_t alarmHoldTime; ///< seconds
    std::uint32_t alarmOuts[32]; ///< ids of the outputs to trigger
    std::uint32_t alarmOutCount;
};

struct DEV_ALARM_OUT_CONFIG
{
    std::uint32_t id;
    char name[128];
    std::uint32_t alarmHoldTime; ///< seconds
};

struct DEV_PTZ_PRESET_CAPS
{
    std::uint32_t speedMin;
    std::uint32_t speedMax;
    std::uint32_t presetMax; ///< how many presets can be stored
};

struct DEV_PTZ_CRUISE_CAPS
{
    std::uint32_t cruiseMax; ///< how many cruises can be stored
    std::uint32_t speedMin;
    std::uint32_t speedMax;
    std::uint32_t holdTimeMax; ///< seconds at a preset
    std::uint32_t presetMax;   ///< presets in one cruise
};

struct DEV_PTZ_PROTOCOL
{
    std::uint32_t baudRate; ///< the number itself
    std::uint32_t protocol; ///< 0 PELCOP, 1 PELCOD, 2 LILIN, 3 MINKING, 4 NEON, 5 STAR, 6 VIDO, 7 DSCP, 8 VISCA
    std::uint32_t address;
};

#pragma pack(push, 1)
struct DEV_PTZ_PRESET
{
    std::uint8_t id;
    char name[12]; ///< at most 11 characters
    std::uint8_t reserved[2];
};

struct DEV_PTZ_CRUISE_POINT
{
    std::uint8_t presetId;
    char name[12];
    std::uint8_t speed;
    std::uint8_t holdTime; ///< seconds
};

struct DEV_PTZ_CRUISE
{
    std::uint8_t id;
    char name[31];
};
#pragma pack(pop)

/// The device's IPv4 settings; addresses are dotted text.
struct DEV_NET_BASIC
{
    std::uint32_t ipSettingMode; ///< 0 static, 1 DHCP
    char staticIp[16];
    char staticIpRoute[16];
    char staticIpMask[16];
    std::uint8_t dnsFromDhcpSwitch; ///< 0 or 1
    char dnsServer1[16];
    char dnsServer2[16];
};

struct DEV_PPPOE
{
    std::uint8_t pppoeSwitch; ///< 0 or 1
    char userName[64];
    char password[64]; ///< clear text
};

struct DEV_PORT_INFO
{
    std::uint16_t httpPort;
    std::uint16_t netPort;
    std::uint16_t rtspPort;
};

struct DEV_DDNS
{
    std::uint8_t ddnsSwitch; ///< 0 or 1
    char serverType[64];
    char userName[64];
    char password[64]; ///< clear text
    char domainName[64];
    char serverName[64];
};

/// A recorded section.
struct DEV_RECORD_INFO
{
    DEV_DATETIME start;
    std::uint32_t lengthSeconds;
};

static_assert(sizeof(DEV_DEVICE_INFO) == 212 && offsetof(DEV_DEVICE_INFO, mac) == 198, "record layout");
static_assert(sizeof(DEV_TIME_CONFIG) == 264 && sizeof(DEV_IMAGE_PARAM) == 32, "record layout");
static_assert(sizeof(DEV_IMAGE_CAPS) == 96 && sizeof(DEV_VIDEO_ENCODE_CAPS) == 164, "record layout");
static_assert(sizeof(DEV_TIME_OSD) == 16 && sizeof(DEV_CHANNEL_NAME_OSD) == 76, "record layout");
static_assert(sizeof(DEV_PRIVACY_MASK) == 24 && sizeof(DEV_MOTION_ROW) == 32, "record layout");
static_assert(sizeof(DEV_SENSOR_CONFIG) == 276 && sizeof(DEV_ALARM_OUT_CONFIG) == 136, "record layout");
static_assert(sizeof(DEV_PTZ_PRESET) == 15 && sizeof(DEV_PTZ_CRUISE_POINT) == 15, "record layout");
static_assert(sizeof(DEV_PTZ_CRUISE) == 32 && sizeof(DEV_PTZ_PROTOCOL) == 12, "record layout");
static_assert(sizeof(DEV_NET_BASIC) == 88 && sizeof(DEV_PPPOE) == 129 && sizeof(DEV_PORT_INFO) == 6, "record layout");
static_assert(sizeof(DEV_DDNS) == 321 && sizeof(DEV_RECORD_INFO) == 16, "record layout");

} // namespace NETNS

/// The device, as the host implements it.
///
/// Called on up to four HTTP worker threads at once and on the RTSP scheduler thread (GetUserList, NeedAuthorization):
/// an implementation must be safe from several threads. The order of the operations is fixed.
///
/// Two arguments recur. `verify` is the user verification text, XML with a zero byte behind it that names the user, the
/// password and the peer's address. The library decides on no right: the host judges `verify` and answers
/// DEV_RET_NO_RIGHT, which the client sees as a 401. `chn` is the channel number of the request, 1 when it names none;
/// it is not checked against the number of channels.
///
/// The result is a DEV_RET unless said otherwise. A record is zeroed before a `Get` and filled by it.
class CDevInterface
{
public:
    virtual ~CDevInterface() = default;

    /// Keeps its place; nothing calls it.
    virtual NETNS::DEV_RET ProcHttpRequest(const std::string& request, int& status, std::string& response) = 0;

    /// Answers a request whose message holds "ORBIT-700" or "queryQRInfo".
    /// @param message  the message as received, header and body, with a zero byte behind its `len` bytes
    /// @param body     null or a buffer of the host's, given back with FreeBuffer
    /// @param bodyLen  bytes in `body`
    /// @param status   200, 302, 400, 401, 403, 404, 408, 500 or 501; any other ends the process
    virtual NETNS::DEV_RET ProcHttpData(const char* message, int len, char*& body, int& bodyLen, int& status) = 0;

    /// A web file is missing: the host's chance to write it to `path` (to unpack it, say). What counts is that the file
    /// exists afterwards; `buffer` is handed to FreeBuffer at once and not looked at.
    virtual NETNS::DEV_RET GetWebFile(const char* path, char*& buffer, int& len) = 0;

    /// Releases what ProcHttpData, GetWebFile or GetAlarmStatusXml handed out; may get null.
    virtual NETNS::DEV_RET FreeBuffer(char*& buffer) = 0;

    /// @param supported  set true when the device has a built-in PTZ
    virtual NETNS::DEV_RET GetIntegratedPtz(bool& supported) = 0;
    /// @param supported  set true when a PTZ head can be driven over RS485
    virtual NETNS::DEV_RET GetSupportRS485Ptz(bool& supported) = 0;
    /// @param supported  set true when the device takes an SD card
    virtual NETNS::DEV_RET GetSupportSDCard(bool& supported) = 0;

    /// @param list   room for `max` rows: 16 for the XML API, 8 for RTSP
    /// @param count  receives the number of users; with 8 or more no RTSP client can log in
    virtual NETNS::DEV_RET GetUserList(NETNS::DEV_USER_INFO* list, int max, int& count) = 0;

    virtual NETNS::DEV_RET GetDevInfo(const char* verify, NETNS::DEV_DEVICE_INFO* info) = 0;
    virtual NETNS::DEV_RET GetTimeConfig(const char* verify, NETNS::DEV_TIME_CONFIG* config) = 0;
    virtual NETNS::DEV_RET SetTimeConfig(const char* verify, const NETNS::DEV_TIME_CONFIG* config) = 0;
    /// Sets the clock. Called before SetTimeConfig of the same request; the result is not looked at.
    virtual NETNS::DEV_RET SetDateTime(const char* verify, const NETNS::DEV_DATETIME* time) = 0;

    virtual NETNS::DEV_RET GetImageCaps(const char* verify, unsigned int chn, NETNS::DEV_IMAGE_CAPS* caps) = 0;
    virtual NETNS::DEV_RET GetImageParam(const char* verify, unsigned int chn, NETNS::DEV_IMAGE_PARAM* param) = 0;
    virtual NETNS::DEV_RET SetImageParam(const char* verify, unsigned int chn, const NETNS::DEV_IMAGE_PARAM* param) = 0;
    /// Keeps its place; nothing calls it.
    virtual NETNS::DEV_RET ImageReserved() = 0;

    /// @param profile  index of the video stream, from 0
    virtual NETNS::DEV_RET GetVideoEncodeCaps(const char* verify, unsigned int chn, int profile,
                                              NETNS::DEV_VIDEO_ENCODE_CAPS* caps) = 0;
    /// @param name  room for `size` (128) bytes
    /// @param len   receives the length of the name
    virtual NETNS::DEV_RET GetProfileName(const char* verify, unsigned int chn, int profile, char* name, int size,
                                          int& len) = 0;
    /// @return the number of video streams of the channel, 0 for none
    virtual int GetProfileCount(unsigned int chn) = 0;
    /// @param type  0 G.711 A-law, 1 G.711 mu-law
    /// @return true when that encoding is the one in use
    virtual bool SupportAudioEncode(unsigned int chn, int type) = 0;
    /// The result is not looked at.
    virtual NETNS::DEV_RET SetAudioEncode(const char* verify, unsigned int chn, int type) = 0;
    virtual NETNS::DEV_RET GetVideoProfile(const char* verify, unsigned int chn, int profile,
                                           NETNS::DEV_VIDEO_PROFILE* config) = 0;
    /// The result is not looked at.
    virtual NETNS::DEV_RET SetVideoProfile(const char* verify, unsigned int chn, int profile,
                                           const NETNS::DEV_VIDEO_PROFILE* config) = 0;
    /// The next frame of every stream of the channel shall be a key frame.
    virtual NETNS::DEV_RET RequestKeyFrame(const char* verify, unsigned int chn) = 0;
    /// @return whether RTSP clients must log in. Asked on the RTSP scheduler thread for each request.
    virtual bool NeedAuthorization() = 0;

    virtual NETNS::DEV_RET GetTimeOsd(const char* verify, unsigned int chn, NETNS::DEV_TIME_OSD* osd) = 0;
    virtual NETNS::DEV_RET GetChannelNameOsd(const char* verify, unsigned int chn,
                                             NETNS::DEV_CHANNEL_NAME_OSD* osd) = 0;
    virtual NETNS::DEV_RET SetTimeOsd(const char* verify, unsigned int chn, NETNS::DEV_TIME_OSD osd) = 0;
    virtual NETNS::DEV_RET SetChannelNameOsd(const char* verify, unsigned int chn, NETNS::DEV_CHANNEL_NAME_OSD osd) = 0;
    /// @param list  room for `max` (8) masks
    virtual NETNS::DEV_RET GetPrivacyMask(const char* verify, unsigned int chn, NETNS::DEV_PRIVACY_MASK* list, int max,
                                          int& count) = 0;
    virtual NETNS::DEV_RET SetPrivacyMask(const char* verify, unsigned int chn, const NETNS::DEV_PRIVACY_MASK* list,
                                          int count) = 0;

    virtual NETNS::DEV_RET GetPtzPresetCaps(const char* verify, unsigned int chn, NETNS::DEV_PTZ_PRESET_CAPS* caps) = 0;
    virtual NETNS::DEV_RET GetPtzCruiseCaps(const char* verify, unsigned int chn, NETNS::DEV_PTZ_CRUISE_CAPS* caps) = 0;
    virtual NETNS::DEV_RET GetPtzProtocol(const char* verify, unsigned int chn, NETNS::DEV_PTZ_PROTOCOL* protocol) = 0;
    virtual NETNS::DEV_RET SetPtzProtocol(const char* verify, unsigned int chn,
                                          const NETNS::DEV_PTZ_PROTOCOL* protocol) = 0;
    virtual NETNS::DEV_RET PtzControl(const char* verify, unsigned int chn, int command, int speed) = 0;
    virtual NETNS::DEV_RET PtzGotoPreset(const char* verify, unsigned int chn, int index) = 0;
    virtual NETNS::DEV_RET PtzGetPresets(const char* verify, unsigned int chn, NETNS::DEV_PTZ_PRESET* list, int max,
                                         int& count) = 0;
    /// Keeps its place; nothing calls it.
    virtual NETNS::DEV_RET PtzReserved() = 0;
    virtual NETNS::DEV_RET PtzAddPreset(const char* verify, unsigned int chn, const char* name) = 0;
    virtual NETNS::DEV_RET PtzModifyPresetName(const char* verify, unsigned int chn, int index, const char* name) = 0;
    virtual NETNS::DEV_RET PtzDeletePreset(const char* verify, unsigned int chn, int index) = 0;
    virtual NETNS::DEV_RET PtzModifyPresetPosition(const char* verify, unsigned int chn, int index) = 0;
    virtual NETNS::DEV_RET PtzGetCruises(const char* verify, unsigned int chn, NETNS::DEV_PTZ_CRUISE* list, int max,
                                         int& count) = 0;
    virtual NETNS::DEV_RET PtzGetCruisePoints(const char* verify, unsigned int chn, int index,
                                              NETNS::DEV_PTZ_CRUISE_POINT* list, int max, int& count) = 0;
    virtual NETNS::DEV_RET PtzAddCruise(const char* verify, unsigned int chn, const char* name,
                                        const NETNS::DEV_PTZ_CRUISE_POINT* list, int count) = 0;
    virtual NETNS::DEV_RET PtzModifyCruise(const char* verify, unsigned int chn, int index, const char* name,
                                           const NETNS::DEV_PTZ_CRUISE_POINT* list, int count) = 0;
    virtual NETNS::DEV_RET PtzDeleteCruise(const char* verify, unsigned int chn, int index) = 0;
    virtual NETNS::DEV_RET PtzRunCruise(const char* verify, unsigned int chn, int index) = 0;
    virtual NETNS::DEV_RET PtzStopCruise(const char* verify, unsigned int chn) = 0;

    virtual NETNS::DEV_RET GetMotionParam(const char* verify, unsigned int chn, NETNS::DEV_MOTION_CONFIG* config) = 0;
    virtual NETNS::DEV_RET GetMotionCaps(const char* verify, unsigned int chn, NETNS::DEV_MOTION_CAPS* caps) = 0;
    virtual NETNS::DEV_RET SetMotionParam(const char* verify, unsigned int chn,
                                          const NETNS::DEV_MOTION_CONFIG* config) = 0;
    virtual NETNS::DEV_RET GetSensorConfig(const char* verify, int id, NETNS::DEV_SENSOR_CONFIG* config) = 0;
    virtual NETNS::DEV_RET SetSensorConfig(const char* verify, int id, const NETNS::DEV_SENSOR_CONFIG* config) = 0;
    virtual NETNS::DEV_RET ManualAlarmOut(const char* verify, int id, bool on) = 0;
    virtual NETNS::DEV_RET GetAlarmOutConfig(const char* verify, int id, NETNS::DEV_ALARM_OUT_CONFIG* config) = 0;
    virtual NETNS::DEV_RET SetAlarmOutConfig(const char* verify, int id, const NETNS::DEV_ALARM_OUT_CONFIG* config) = 0;
    /// The answer to a status request while no alarm is active. @param xml  given back with FreeBuffer
    virtual NETNS::DEV_RET GetAlarmStatusXml(const char* verify, char*& xml, int& len) = 0;

    virtual NETNS::DEV_RET GetNetBasic(const char* verify, NETNS::DEV_NET_BASIC* config) = 0;
    virtual NETNS::DEV_RET SetNetBasic(const char* verify, const NETNS::DEV_NET_BASIC* config) = 0;
    virtual NETNS::DEV_RET GetPppoe(const char* verify, NETNS::DEV_PPPOE* config) = 0;
    virtual NETNS::DEV_RET SetPppoe(const char* verify, const NETNS::DEV_PPPOE* config) = 0;
    virtual NETNS::DEV_RET GetPortInfo(const char* verify, NETNS::DEV_PORT_INFO* info) = 0;
    virtual NETNS::DEV_RET SetPortInfo(const char* verify, const NETNS::DEV_PORT_INFO* info) = 0;
    virtual NETNS::DEV_RET GetDdns(const char* verify, NETNS::DEV_DDNS* config) = 0;
    virtual NETNS::DEV_RET SetDdns(const char* verify, const NETNS::DEV_DDNS* config) = 0;

    /// Changes the password of the user named in `verify`.
    virtual NETNS::DEV_RET ModifyPassword(const char* verify, const char* newPassword) = 0;
    virtual NETNS::DEV_RET Reboot(const char* verify) = 0;
    /// @param ids  room for `max` (128) ids
    virtual NETNS::DEV_RET GetChannelIdList(const char* verify, unsigned int* ids, int max, int& count) = 0;

    /// Days with recordings on any channel. @param list  room for `max` (256) days
    virtual NETNS::DEV_RET SearchRecordDate(const char* verify, NETNS::DEV_DATE* list, int max, int& count) = 0;
    /// Recorded sections of one channel between two times.
    virtual NETNS::DEV_RET SearchRecord(const char* verify, const NETNS::DEV_DATETIME* start,
                                        const NETNS::DEV_DATETIME* end, int channel, NETNS::DEV_RECORD_INFO* list,
                                        int max, int& count) = 0;

    /// @param kind  0: the name of the NTP server; no other is asked for
    /// @return longest text that clients may send for the field
    virtual int GetMaxLen(int kind) = 0;
};
