// DevInterface.h: what the host implements so that the library can read and change the device, and its records.
//
// The text fields of records end in a zero byte within their size; the library never reads past a field. Numbers that
// clients send are not held against limits: a `Set` operation checks what it gets and answers DEV_RET_BAD_PARAM.
#pragma once

#include "NetTypes.h"

#include <string>

namespace NETNS
{

/// The device's identity (`GetDeviceInfo`).
struct DEV_DEVICE_INFO
{
    char model[32];              ///< model name, UTF-8, at most 31 bytes
    char brand[32];              ///< brand, UTF-8, at most 31 bytes
    char description[32];        ///< free text, UTF-8, at most 31 bytes
    char softwareVersion[32];    ///< version of the device's software, as shown to users
    DEV_DATE softwareBuildDate;  ///< shown as year-month-day without leading zeros
    char kernelVersion[32];      ///< version of the kernel, as shown to users
    char hardwareVersion[32];    ///< version of the board, as shown to users
    std::uint8_t mac[6];         ///< hardware address in the order of its text, shown in lower case
    std::uint16_t audioInCount;  ///< sound inputs
    std::uint16_t audioOutCount; ///< sound outputs
    std::uint16_t alarmInCount;  ///< alarm inputs; shown only, ids go up to what NET_SERVER_Initial got
    std::uint16_t alarmOutCount; ///< alarm outputs; shown only, ids go up to what NET_SERVER_Initial got
};

/// Time settings (`GetDateAndTime`, `SetDateAndTime`). The clock itself is set by CDevInterface::SetDateTime.
struct DEV_TIME_CONFIG
{
    std::uint32_t synchronizeType; ///< 1: by NTP ("NTP"), anything else: by hand ("manually")
    char ntpServer[128];           ///< name or address, at most 127 bytes; a longer text of a client is refused
    char timeZone[128];            ///< in the device's own notation, at most 127 bytes; a longer one is refused
    std::uint32_t daylightSwitch;  ///< daylight saving time: 0 or 1
};

/// Image settings of one channel (`GetImageConfig`, `SetImageConfig`). The limits that clients see are those of
/// DEV_IMAGE_CAPS; a number of a client is cut to the field's width and not checked.
struct DEV_IMAGE_PARAM
{
    std::uint8_t frequency;         ///< mains frequency: 0 is 60 Hz, 1 is 50 Hz; clients see the number
    std::uint8_t bright;            ///< brightness, in the range of the caps
    std::uint8_t contrast;          ///< contrast, in the range of the caps
    std::uint8_t hue;               ///< hue, in the range of the caps
    std::uint8_t saturation;        ///< saturation, in the range of the caps
    std::uint8_t mirrorSwitch;      ///< left and right exchanged: 0 or 1
    std::uint8_t flipSwitch;        ///< top and bottom exchanged: 0 or 1
    std::uint8_t irisSwitch;        ///< automatic iris: 0 or 1
    std::uint8_t sharpenSwitch;     ///< sharpening: 0 or 1
    std::uint8_t sharpenValue;      ///< its strength, 0 to 255
    std::uint8_t denoiseValue;      ///< strength of the noise reduction, 0 to 255
    std::uint8_t denoiseSwitch;     ///< noise reduction: 0 or 1
    std::uint32_t whiteBalanceMode; ///< 0 "auto", 1 "manual", 2 "outdoor", 3 "indoor", 4 "atw", 5 "nalamp"
    std::uint32_t red;              ///< red gain for "manual", in the range of the caps
    std::uint32_t blue;             ///< blue gain for "manual", in the range of the caps
    std::uint8_t wdrSwitch;         ///< wide dynamic range: 0 or 1
    std::uint8_t wdrValue;          ///< its strength, 0 to 255
    std::uint32_t irCutMode;        ///< infrared filter: 0 "auto", 1 "day", 2 "night", 3 "timer"
};

/// Limits and defaults of DEV_IMAGE_PARAM, shown to clients as the attributes `min`, `max` and `default`.
struct DEV_IMAGE_CAPS
{
    std::uint32_t frequencyDefault;        ///< 0 or 1, as DEV_IMAGE_PARAM::frequency
    std::uint32_t brightMin;               ///< least brightness
    std::uint32_t brightMax;               ///< greatest brightness, up to 255
    std::uint32_t brightDefault;           ///< brightness of a new device
    std::uint32_t contrastMin;             ///< least contrast
    std::uint32_t contrastMax;             ///< greatest contrast, up to 255
    std::uint32_t contrastDefault;         ///< contrast of a new device
    std::uint32_t saturationMin;           ///< least saturation
    std::uint32_t saturationMax;           ///< greatest saturation, up to 255
    std::uint32_t saturationDefault;       ///< saturation of a new device
    std::uint32_t hueMin;                  ///< least hue
    std::uint32_t hueMax;                  ///< greatest hue, up to 255
    std::uint32_t hueDefault;              ///< hue of a new device
    std::uint8_t mirrorDefault;            ///< 0 or 1
    std::uint8_t flipDefault;              ///< 0 or 1
    std::uint8_t wdrValueDefault;          ///< 0 to 255
    std::uint8_t wdrSwitchDefault;         ///< must be 0: with another value GetImageConfig ends the process
    std::uint32_t whiteBalanceModeDefault; ///< as DEV_IMAGE_PARAM::whiteBalanceMode
    std::uint32_t redMin;                  ///< least red gain
    std::uint32_t redMax;                  ///< greatest red gain
    std::uint32_t redDefault;              ///< red gain of a new device
    std::uint32_t blueMin;                 ///< least blue gain
    std::uint32_t blueMax;                 ///< greatest blue gain
    std::uint32_t blueDefault;             ///< blue gain of a new device
    std::uint8_t denoiseValueDefault;      ///< 0 to 255
    std::uint8_t denoiseSwitchDefault;     ///< 0 or 1
    std::uint8_t irisDefault;              ///< 0 or 1; clients find a 1 in an attribute named "true"
    std::uint8_t sharpenValueDefault;      ///< 0 to 255
    std::uint8_t sharpenSwitchDefault;     ///< 0 or 1
    std::uint32_t irCutDefault;            ///< as DEV_IMAGE_PARAM::irCutMode
};

/// The size of a picture.
struct DEV_RESOLUTION
{
    std::uint32_t width;  ///< pixels
    std::uint32_t height; ///< pixels
};

/// What one video stream can do (`GetStreamCaps`, `GetVideoStreamConfig`).
struct DEV_VIDEO_ENCODE_CAPS
{
    std::uint32_t encodeTypes[8];   ///< values of DEV_VIDEO_PROFILE::encodeType
    std::uint32_t encodeTypeCount;  ///< how many of them are set; more than 8 counts as 8
    DEV_RESOLUTION resolutions[8];  ///< sizes that the stream can have
    std::uint32_t resolutionCount;  ///< how many of them are set; more than 8 counts as 8
    std::uint32_t frameRateMin;     ///< frames per second; not shown to clients
    std::uint32_t frameRateMax;     ///< frames per second, shown with each size
    std::uint32_t gopMin;           ///< frames from one key frame to the next
    std::uint32_t gopMax;           ///< frames from one key frame to the next
    std::uint32_t encodeLevels[8];  ///< values of DEV_VIDEO_PROFILE::encodeLevel
    std::uint32_t encodeLevelCount; ///< how many of them are set; more than 8 counts as 8
    std::uint32_t bitRateMin;       ///< kbit/s
    std::uint32_t bitRateMax;       ///< kbit/s
};

/// The time burnt into the picture (`GetImageOsdConfig`, `SetImageOsdConfig`). Fields that a client leaves out come as
/// 0.
struct DEV_TIME_OSD
{
    std::uint32_t osdSwitch;  ///< shown: 0 or 1
    std::uint32_t x;          ///< left edge, in the unit that the device and its clients agree on
    std::uint32_t y;          ///< top edge, in the same unit
    std::uint32_t dateFormat; ///< 1 "year-month-day", 2 "month-day-year", 3 "day-month-year"
};

/// The channel's name burnt into the picture. Fields that a client leaves out come as 0.
struct DEV_CHANNEL_NAME_OSD
{
    std::uint32_t osdSwitch; ///< shown: 0 or 1
    std::uint32_t x;         ///< left edge, in the unit that the device and its clients agree on
    std::uint32_t y;         ///< top edge, in the same unit
    char name[64];           ///< UTF-8, at most 63 bytes; a longer text of a client is cut
};

/// A rectangle hidden in the picture (`GetPrivacyMaskConfig`, `SetPrivacyMaskConfig`).
struct DEV_PRIVACY_MASK
{
    std::uint32_t maskSwitch; ///< in force: 0 or 1
    std::uint32_t x;          ///< left edge, in the unit that the device and its clients agree on
    std::uint32_t y;          ///< top edge, in the same unit
    std::uint32_t width;      ///< in the same unit
    std::uint32_t height;     ///< in the same unit
    std::uint32_t color;      ///< 0 "black", 1 "white", 2 "gray"; another value is shown without a word
};

/// A row of the motion grid.
struct DEV_MOTION_ROW
{
    std::uint32_t hostReserved1;    ///< the host's own; the library neither reads nor writes it
    alignas(8) std::uint64_t cells; ///< a bit for each cell; clients see 64 digits, the highest bit first
    std::uint8_t hostReserved2[16]; ///< the host's own; the library neither reads nor writes it
};

/// Motion detection of one channel (`GetMotionConfig`, `SetMotionConfig`).
struct DEV_MOTION_CONFIG
{
    std::uint32_t motionSwitch;  ///< in force: 0 or 1
    std::uint32_t alarmHoldTime; ///< seconds that an alarm lasts behind its cause
    std::int32_t sensitivity;    ///< in the range of DEV_MOTION_CAPS
    DEV_MOTION_ROW area[8];      ///< the rows of the grid, from the top
    std::uint32_t columns;       ///< cells in a row, up to 64
    std::uint32_t rows;          ///< rows in `area`; more than 8 counts as 8
    std::uint32_t alarmOuts[32]; ///< ids of the outputs to trigger, from 0
    std::uint32_t alarmOutCount; ///< how many of them are set; more than 32 counts as 32
};

/// Limits of DEV_MOTION_CONFIG::sensitivity.
struct DEV_MOTION_CAPS
{
    std::uint32_t sensitivityMin; ///< least sensitive
    std::uint32_t sensitivityMax; ///< most sensitive
};

/// An alarm input (`GetAlarmInConfig`, `SetAlarmInConfig`).
struct DEV_SENSOR_CONFIG
{
    std::uint32_t id;            ///< as shown to clients, who may send another; the request's URL decides
    char name[128];              ///< UTF-8, at most 127 bytes; a longer text of a client is cut
    std::uint32_t sensorSwitch;  ///< in force: 0 or 1
    std::uint32_t voltage;       ///< 0 normally open ("NO"), 1 normally closed ("NC")
    std::uint32_t alarmHoldTime; ///< seconds that an alarm lasts behind its cause
    std::uint32_t alarmOuts[32]; ///< ids of the outputs to trigger, from 0
    std::uint32_t alarmOutCount; ///< how many of them are set; more than 32 counts as 32
};

/// An alarm output (`GetAlarmOutConfig`, `SetAlarmOutConfig`).
struct DEV_ALARM_OUT_CONFIG
{
    std::uint32_t id;            ///< as shown to clients, who may send another; the request's URL decides
    char name[128];              ///< UTF-8, at most 127 bytes; a longer text of a client is cut
    std::uint32_t alarmHoldTime; ///< seconds that the output stays on behind the alarm
};

/// What a head and its presets can do (`PtzGetCaps`, `PtzGetPresets`).
struct DEV_PTZ_PRESET_CAPS
{
    std::uint32_t speedMin;  ///< least speed of `PtzControl`
    std::uint32_t speedMax;  ///< greatest speed of `PtzControl`
    std::uint32_t presetMax; ///< how many presets can be stored
};

/// What cruises can do (`PtzGetCaps`, `PtzGetCruises`, `PtzGetCruise`).
struct DEV_PTZ_CRUISE_CAPS
{
    std::uint32_t cruiseMax;   ///< how many cruises can be stored
    std::uint32_t speedMin;    ///< least speed on the way to a preset
    std::uint32_t speedMax;    ///< greatest speed on the way to a preset
    std::uint32_t holdTimeMax; ///< longest stay at a preset, seconds
    std::uint32_t presetMax;   ///< presets in one cruise
};

/// The serial line of an external head (`PtzGetProtocolConfig`, `PtzSetProtocolConfig`). What a client leaves out comes
/// as 0.
struct DEV_PTZ_PROTOCOL
{
    std::uint32_t baudRate; ///< bits per second, the number itself
    std::uint32_t protocol; ///< 0 PELCOP, 1 PELCOD, 2 LILIN, 3 MINKING, 4 NEON, 5 STAR, 6 VIDO, 7 DSCP, 8 VISCA
    std::uint32_t address;  ///< of the head on the line
};

#pragma pack(push, 1)
/// A stored position of the head.
struct DEV_PTZ_PRESET
{
    std::uint8_t id;          ///< as clients send it to go there
    char name[12];            ///< UTF-8, at most 11 bytes
    std::uint8_t reserved[2]; ///< the host's own; the library neither reads nor writes it
};

/// One stop of a cruise.
struct DEV_PTZ_CRUISE_POINT
{
    std::uint8_t presetId; ///< where to
    char name[12];         ///< of the preset, shown to clients; empty in what clients send
    std::uint8_t speed;    ///< on the way there
    std::uint8_t holdTime; ///< seconds to stay
};

/// A stored cruise.
struct DEV_PTZ_CRUISE
{
    std::uint8_t id; ///< as clients send it to run the cruise
    char name[31];   ///< UTF-8, at most 30 bytes
};
#pragma pack(pop)

/// The device's IPv4 settings (`GetNetBasicConfig`, `SetNetBasicConfig`). Addresses are dotted text of at most 15
/// characters; what a client sends is cut there, and its form is not checked.
struct DEV_NET_BASIC
{
    std::uint32_t ipSettingMode;    ///< 0 "staticIp", 1 "dhcp"
    char staticIp[16];              ///< address; with DHCP the one in use, for display
    char staticIpRoute[16];         ///< default gateway
    char staticIpMask[16];          ///< net mask
    std::uint8_t dnsFromDhcpSwitch; ///< name servers come from DHCP: 0 or 1
    char dnsServer1[16];            ///< first name server
    char dnsServer2[16];            ///< second name server
};

/// PPPoE (`GetNetPppoeConfig`, `SetNetPppoeConfig`). Texts of clients are cut at 63 bytes.
struct DEV_PPPOE
{
    std::uint8_t pppoeSwitch; ///< in use: 0 or 1
    char userName[64];        ///< of the provider's account
    char password[64];        ///< clear text, shown to clients as it is
};

/// The device's ports (`GetPortConfig`, `SetPortConfig`, `GetStreamCaps`). The library does not move its own listeners:
/// the host does, with NET_SERVER_SetHttpPort and its like.
struct DEV_PORT_INFO
{
    std::uint16_t httpPort; ///< HTTP and XML API
    std::uint16_t netPort;  ///< of a protocol of the device's own
    std::uint16_t rtspPort; ///< RTSP
};

/// Dynamic DNS (`GetDdnsConfig`, `SetDdnsConfig`). Texts of clients are cut at 63 bytes.
struct DEV_DDNS
{
    std::uint8_t ddnsSwitch; ///< in use: 0 or 1
    char serverType[64];     ///< the provider, a word of the document's list or any other text
    char userName[64];       ///< of the provider's account
    char password[64];       ///< clear text, shown to clients as it is
    char domainName[64];     ///< the name to keep up to date
    char serverName[64];     ///< the provider's server, where it can be chosen
};

/// A recorded section (`SearchByTime`).
struct DEV_RECORD_INFO
{
    DEV_DATETIME start;          ///< local time of the device
    std::uint32_t lengthSeconds; ///< from the start to the end of the section
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
/// an implementation must be safe from several threads. No lock of the library is held. An operation may take its time;
/// with four that wait, further HTTP requests wait too. The order of the operations is fixed. The words in code type in
/// front of a description are the commands of the XML API that call the operation.
///
/// Two arguments recur. `verify` is the user verification text, XML with a zero byte behind it that names the user, the
/// password and the peer's address; nothing in it is escaped. The library decides on no right: the host judges `verify`
/// and answers DEV_RET_NO_RIGHT, which the client sees as a 401. `chn` is the channel number of the request, 1 when it
/// names none; it is not checked against the number of channels.
///
/// The result is a DEV_RET unless said otherwise; see there what clients see of it. A record is zeroed before a `Get`
/// and filled by it. Records, texts and tables that are handed in are borrowed for the call.
///
/// CDefaultDevice implements all of it for hosts that have little of it.
class CDevInterface
{
public:
    virtual ~CDevInterface() = default;

    /// Keeps its place; nothing calls it.
    /// @param request   unused
    /// @param status    unused
    /// @param response  unused
    virtual NETNS::DEV_RET ProcHttpRequest(const std::string& request, int& status, std::string& response) = 0;

    /// Answers a request whose message holds "ORBIT-700" or "queryQRInfo" and whose first word is no API command. The
    /// result is not looked at.
    /// @param message  the message as received, header and body, with a zero byte behind its `len` bytes
    /// @param len      bytes in `message`
    /// @param body     receives null or a buffer of the host's, given back with FreeBuffer
    /// @param bodyLen  receives the bytes in `body`
    /// @param status   receives 200, 302, 400, 401, 403, 404, 408, 500 or 501; any other ends the process
    virtual NETNS::DEV_RET ProcHttpData(const char* message, int len, char*& body, int& bodyLen, int& status) = 0;

    /// A web file is missing: the host's chance to write it to `path` (to unpack it, say). What counts is that the file
    /// exists afterwards; `buffer` is handed to FreeBuffer at once and not looked at. The result is not looked at.
    /// @param path    web root and URL joined, not checked for ".."
    /// @param buffer  null before the call
    /// @param len     0 before the call, not read afterwards
    virtual NETNS::DEV_RET GetWebFile(const char* path, char*& buffer, int& len) = 0;

    /// Releases what ProcHttpData, GetWebFile or GetAlarmStatusXml handed out. The result is not looked at.
    /// @param buffer  may be null
    virtual NETNS::DEV_RET FreeBuffer(char*& buffer) = 0;

    /// `GetDeviceInfo`, every PTZ command: whether the device has a built-in head. PTZ commands answer error 1 unless
    /// this and GetSupportRS485Ptz are both true. The result is not looked at.
    /// @param supported  to be set to true or false
    virtual NETNS::DEV_RET GetIntegratedPtz(bool& supported) = 0;
    /// `GetDeviceInfo`, every PTZ command: whether a head can be driven over RS485. The result is not looked at.
    /// @param supported  to be set to true or false
    virtual NETNS::DEV_RET GetSupportRS485Ptz(bool& supported) = 0;
    /// `GetDeviceInfo`: whether the device takes an SD card. The result is not looked at.
    /// @param supported  to be set to true or false
    virtual NETNS::DEV_RET GetSupportSDCard(bool& supported) = 0;

    /// `GetAlarmStatus`, `ModifyPassword`, and the RTSP scheduler thread for each request that needs a login. The users
    /// that may log in over RTSP and read the alarm status.
    /// @param list   room for `max` rows
    /// @param max    16 for the XML API, 8 for RTSP
    /// @param count  receives the number of users; with 8 or more no RTSP client can log in, with more than 16 nobody
    ///               can read the alarm status
    virtual NETNS::DEV_RET GetUserList(NETNS::DEV_USER_INFO* list, int max, int& count) = 0;

    /// `GetDeviceInfo`: who the device is.
    /// @param info  to be filled
    virtual NETNS::DEV_RET GetDevInfo(const char* verify, NETNS::DEV_DEVICE_INFO* info) = 0;
    /// `GetDateAndTime`, `SetDateAndTime` (to keep what a client leaves out): the time settings.
    /// @param config  to be filled
    virtual NETNS::DEV_RET GetTimeConfig(const char* verify, NETNS::DEV_TIME_CONFIG* config) = 0;
    /// `SetDateAndTime`: changes the time settings.
    /// @param config  what shall hold
    virtual NETNS::DEV_RET SetTimeConfig(const char* verify, const NETNS::DEV_TIME_CONFIG* config) = 0;
    /// `SetDateAndTime` with a current time: sets the clock. Called before SetTimeConfig of the same request; the
    /// result is not looked at.
    /// @param time  local time; month and day may be 0
    virtual NETNS::DEV_RET SetDateTime(const char* verify, const NETNS::DEV_DATETIME* time) = 0;

    /// `GetImageConfig`, `SetImageConfig`: the limits and defaults of the image settings.
    /// @param caps  to be filled
    virtual NETNS::DEV_RET GetImageCaps(const char* verify, unsigned int chn, NETNS::DEV_IMAGE_CAPS* caps) = 0;
    /// `GetImageConfig`, `SetImageConfig` (to keep what a client leaves out): the image settings.
    /// @param param  to be filled
    virtual NETNS::DEV_RET GetImageParam(const char* verify, unsigned int chn, NETNS::DEV_IMAGE_PARAM* param) = 0;
    /// `SetImageConfig`: changes the image settings.
    /// @param param  what shall hold; numbers are not held against the limits
    virtual NETNS::DEV_RET SetImageParam(const char* verify, unsigned int chn, const NETNS::DEV_IMAGE_PARAM* param) = 0;
    /// Keeps its place; nothing calls it.
    virtual NETNS::DEV_RET ImageReserved() = 0;

    /// `GetStreamCaps`, `GetVideoStreamConfig`: what a video stream can do.
    /// @param profile  index of the video stream, from 0
    /// @param caps     to be filled
    virtual NETNS::DEV_RET GetVideoEncodeCaps(const char* verify, unsigned int chn, int profile,
                                              NETNS::DEV_VIDEO_ENCODE_CAPS* caps) = 0;
    /// `GetStreamCaps`, `GetVideoStreamConfig`: the name of a video stream.
    /// @param profile  index of the video stream, from 0
    /// @param name     room for `size` bytes; to be filled with UTF-8 and a zero byte
    /// @param size     128
    /// @param len      receives the length of the name; the zero byte tells it as well
    virtual NETNS::DEV_RET GetProfileName(const char* verify, unsigned int chn, int profile, char* name, int size,
                                          int& len) = 0;
    /// `GetStreamCaps`, `GetVideoStreamConfig`: how many video streams there are.
    /// @return the number of video streams of the channel; 0 for none, and clients get error 1. More than 64 count as
    /// 64
    virtual int GetProfileCount(unsigned int chn) = 0;
    /// `GetAudioStreamConfig`: which encoding the sound has; asked with 0, then with 1. When both are false clients get
    /// error 3.
    /// @param type  0 G.711 A-law, 1 G.711 mu-law
    /// @return true when that encoding is the one in use
    virtual bool SupportAudioEncode(unsigned int chn, int type) = 0;
    /// `SetAudioStreamConfig`: chooses the encoding of the sound. The result is not looked at: clients get success.
    /// @param type  0 G.711 A-law, 1 G.711 mu-law
    virtual NETNS::DEV_RET SetAudioEncode(const char* verify, unsigned int chn, int type) = 0;
    /// `GetVideoStreamConfig`, `SetVideoStreamConfig` (to keep what a client leaves out): the settings of a stream.
    /// @param profile  index of the video stream, from 0; as the client sent it, not checked
    /// @param config   to be filled
    virtual NETNS::DEV_RET GetVideoProfile(const char* verify, unsigned int chn, int profile,
                                           NETNS::DEV_VIDEO_PROFILE* config) = 0;
    /// `SetVideoStreamConfig`, once for each stream in the request: changes it. The result is not looked at: clients
    /// get success.
    /// @param profile  index of the video stream, from 0; as the client sent it, not checked
    /// @param config   what shall hold
    virtual NETNS::DEV_RET SetVideoProfile(const char* verify, unsigned int chn, int profile,
                                           const NETNS::DEV_VIDEO_PROFILE* config) = 0;
    /// `RequestKeyFrame`: the next frame of every stream of the channel shall be a key frame.
    virtual NETNS::DEV_RET RequestKeyFrame(const char* verify, unsigned int chn) = 0;
    /// Asked on the RTSP scheduler thread for each DESCRIBE, SETUP, PLAY, TEARDOWN, GET_PARAMETER and SET_PARAMETER: it
    /// must return at once.
    /// @return whether RTSP clients must log in
    virtual bool NeedAuthorization() = 0;

    /// `GetImageOsdConfig`: the time in the picture.
    /// @param osd  to be filled
    virtual NETNS::DEV_RET GetTimeOsd(const char* verify, unsigned int chn, NETNS::DEV_TIME_OSD* osd) = 0;
    /// `GetImageOsdConfig`: the name in the picture.
    /// @param osd  to be filled
    virtual NETNS::DEV_RET GetChannelNameOsd(const char* verify, unsigned int chn,
                                             NETNS::DEV_CHANNEL_NAME_OSD* osd) = 0;
    /// `SetImageOsdConfig`: changes the time in the picture.
    /// @param osd  what shall hold; what the client left out is 0
    virtual NETNS::DEV_RET SetTimeOsd(const char* verify, unsigned int chn, NETNS::DEV_TIME_OSD osd) = 0;
    /// `SetImageOsdConfig`: changes the name in the picture. Not called when SetTimeOsd of the same request failed.
    /// @param osd  what shall hold; what the client left out is 0
    virtual NETNS::DEV_RET SetChannelNameOsd(const char* verify, unsigned int chn, NETNS::DEV_CHANNEL_NAME_OSD osd) = 0;
    /// `GetPrivacyMaskConfig`: the masks in the picture.
    /// @param list   room for `max` masks
    /// @param max    8
    /// @param count  receives the number of masks; with more than `max` clients get an answer without a list
    virtual NETNS::DEV_RET GetPrivacyMask(const char* verify, unsigned int chn, NETNS::DEV_PRIVACY_MASK* list, int max,
                                          int& count) = 0;
    /// `SetPrivacyMaskConfig`: replaces all masks.
    /// @param list   the masks that shall hold
    /// @param count  how many there are, 0 to 256
    virtual NETNS::DEV_RET SetPrivacyMask(const char* verify, unsigned int chn, const NETNS::DEV_PRIVACY_MASK* list,
                                          int count) = 0;

    /// `PtzGetCaps`, `PtzGetPresets`: what the head can do. For `PtzGetPresets` the result is not looked at.
    /// @param caps  to be filled
    virtual NETNS::DEV_RET GetPtzPresetCaps(const char* verify, unsigned int chn, NETNS::DEV_PTZ_PRESET_CAPS* caps) = 0;
    /// `PtzGetCaps`, `PtzGetCruises`, `PtzGetCruise`: what cruises can do. For `PtzGetCruises` the result is not looked
    /// at.
    /// @param caps  to be filled
    virtual NETNS::DEV_RET GetPtzCruiseCaps(const char* verify, unsigned int chn, NETNS::DEV_PTZ_CRUISE_CAPS* caps) = 0;
    /// `PtzGetProtocolConfig`: how the external head is driven.
    /// @param protocol  to be filled
    virtual NETNS::DEV_RET GetPtzProtocol(const char* verify, unsigned int chn, NETNS::DEV_PTZ_PROTOCOL* protocol) = 0;
    /// `PtzSetProtocolConfig`: changes how the external head is driven.
    /// @param protocol  what shall hold; what the client left out is 0
    virtual NETNS::DEV_RET SetPtzProtocol(const char* verify, unsigned int chn,
                                          const NETNS::DEV_PTZ_PROTOCOL* protocol) = 0;
    /// `PtzControl`: moves the head until `stop`.
    /// @param command  0 up, 1 down, 2 left, 3 right, 4 left up, 5 left down, 6 right up, 7 right down, 8 focus near,
    ///                 9 focus far, 10 zoom in, 11 zoom out, 12 iris open, 13 iris close, 14 stop
    /// @param speed    as the client sent it, not held against the caps; 0 when it sent none
    virtual NETNS::DEV_RET PtzControl(const char* verify, unsigned int chn, int command, int speed) = 0;
    /// `PtzGotoPreset`: moves the head to a stored position.
    /// @param index  id of the preset; 0 when the client sent none
    virtual NETNS::DEV_RET PtzGotoPreset(const char* verify, unsigned int chn, int index) = 0;
    /// `PtzGetPresets`: the stored positions.
    /// @param list   room for `max` presets
    /// @param max    256
    /// @param count  receives the number of presets; with more than `max` clients get an answer without a list
    virtual NETNS::DEV_RET PtzGetPresets(const char* verify, unsigned int chn, NETNS::DEV_PTZ_PRESET* list, int max,
                                         int& count) = 0;
    /// Keeps its place; nothing calls it.
    virtual NETNS::DEV_RET PtzReserved() = 0;
    /// `PtzAddPreset`: stores the present position under an id of the device's choice.
    /// @param name  as the client sent it, of any length
    virtual NETNS::DEV_RET PtzAddPreset(const char* verify, unsigned int chn, const char* name) = 0;
    /// `PtzModifyPresetName`: renames a preset.
    /// @param index  id of the preset
    /// @param name   as the client sent it, of any length
    virtual NETNS::DEV_RET PtzModifyPresetName(const char* verify, unsigned int chn, int index, const char* name) = 0;
    /// `PtzDeletePreset`: forgets a preset.
    /// @param index  id of the preset
    virtual NETNS::DEV_RET PtzDeletePreset(const char* verify, unsigned int chn, int index) = 0;
    /// `PtzModifyPresetPosition`: stores the present position in an existing preset.
    /// @param index  id of the preset
    virtual NETNS::DEV_RET PtzModifyPresetPosition(const char* verify, unsigned int chn, int index) = 0;
    /// `PtzGetCruises`, `PtzGetCruise` (for the name): the stored cruises.
    /// @param list   room for `max` cruises
    /// @param max    12
    /// @param count  receives the number of cruises; with more than `max`, `PtzGetCruises` answers without a list
    virtual NETNS::DEV_RET PtzGetCruises(const char* verify, unsigned int chn, NETNS::DEV_PTZ_CRUISE* list, int max,
                                         int& count) = 0;
    /// `PtzGetCruise`: the stops of a cruise, in order.
    /// @param index  id of the cruise
    /// @param list   room for `max` points
    /// @param max    256
    /// @param count  receives the number of points; more than `max` count as `max`
    virtual NETNS::DEV_RET PtzGetCruisePoints(const char* verify, unsigned int chn, int index,
                                              NETNS::DEV_PTZ_CRUISE_POINT* list, int max, int& count) = 0;
    /// `PtzAddCruise`: stores a cruise under an id of the device's choice.
    /// @param name   as the client sent it, of any length
    /// @param list   its stops, in order; their names are empty
    /// @param count  how many there are, 0 to 64
    virtual NETNS::DEV_RET PtzAddCruise(const char* verify, unsigned int chn, const char* name,
                                        const NETNS::DEV_PTZ_CRUISE_POINT* list, int count) = 0;
    /// `PtzModifyCruise`: replaces name and stops of a cruise.
    /// @param index  id of the cruise
    /// @param name   as the client sent it, of any length
    /// @param list   its stops, in order; their names are empty
    /// @param count  how many there are, 0 to 64
    virtual NETNS::DEV_RET PtzModifyCruise(const char* verify, unsigned int chn, int index, const char* name,
                                           const NETNS::DEV_PTZ_CRUISE_POINT* list, int count) = 0;
    /// `PtzDeleteCruise`: forgets a cruise.
    /// @param index  id of the cruise
    virtual NETNS::DEV_RET PtzDeleteCruise(const char* verify, unsigned int chn, int index) = 0;
    /// `PtzRunCruise`: starts a cruise.
    /// @param index  id of the cruise; 0 when the client sent none
    virtual NETNS::DEV_RET PtzRunCruise(const char* verify, unsigned int chn, int index) = 0;
    /// `PtzStopCruise`: ends the cruise that runs.
    virtual NETNS::DEV_RET PtzStopCruise(const char* verify, unsigned int chn) = 0;

    /// `GetMotionConfig`, `SetMotionConfig` (to keep what a client leaves out): the motion detection.
    /// @param config  to be filled
    virtual NETNS::DEV_RET GetMotionParam(const char* verify, unsigned int chn, NETNS::DEV_MOTION_CONFIG* config) = 0;
    /// `GetMotionConfig`: the limits of the sensitivity.
    /// @param caps  to be filled
    virtual NETNS::DEV_RET GetMotionCaps(const char* verify, unsigned int chn, NETNS::DEV_MOTION_CAPS* caps) = 0;
    /// `SetMotionConfig`: changes the motion detection. The result is not looked at: clients get success.
    /// @param config  what shall hold; the outputs to trigger are those of the request alone
    virtual NETNS::DEV_RET SetMotionParam(const char* verify, unsigned int chn,
                                          const NETNS::DEV_MOTION_CONFIG* config) = 0;
    /// `GetAlarmInConfig`, `SetAlarmInConfig` (to keep what a client leaves out): an alarm input.
    /// @param id      the number behind the command, 1 when there is none; the host decides where ids begin
    /// @param config  to be filled
    virtual NETNS::DEV_RET GetSensorConfig(const char* verify, int id, NETNS::DEV_SENSOR_CONFIG* config) = 0;
    /// `SetAlarmInConfig`: changes an alarm input. Any result but DEV_RET_OK is error 3 to clients.
    /// @param id      the number behind the command, 1 when there is none
    /// @param config  what shall hold; the outputs to trigger are those of the request alone
    virtual NETNS::DEV_RET SetSensorConfig(const char* verify, int id, const NETNS::DEV_SENSOR_CONFIG* config) = 0;
    /// `ManualAlarmOut`: switches an alarm output by hand. Any result but DEV_RET_OK is error 3 to clients.
    /// @param id  the number behind the command, 1 when there is none
    /// @param on  true: on
    virtual NETNS::DEV_RET ManualAlarmOut(const char* verify, int id, bool on) = 0;
    /// `GetAlarmOutConfig`, `SetAlarmOutConfig` (to keep what a client leaves out): an alarm output.
    /// @param id      the number behind the command, 1 when there is none
    /// @param config  to be filled
    virtual NETNS::DEV_RET GetAlarmOutConfig(const char* verify, int id, NETNS::DEV_ALARM_OUT_CONFIG* config) = 0;
    /// `SetAlarmOutConfig`: changes an alarm output. Any result but DEV_RET_OK is error 3 to clients.
    /// @param id      the number behind the command, 1 when there is none
    /// @param config  what shall hold
    virtual NETNS::DEV_RET SetAlarmOutConfig(const char* verify, int id, const NETNS::DEV_ALARM_OUT_CONFIG* config) = 0;
    /// `GetAlarmStatus` while no alarm is active: the document that clients get. Any result but DEV_RET_OK is error 3
    /// to them.
    /// @param xml  receives a buffer of the host's, given back with FreeBuffer
    /// @param len  receives the bytes in `xml`
    virtual NETNS::DEV_RET GetAlarmStatusXml(const char* verify, char*& xml, int& len) = 0;

    /// `GetNetBasicConfig`, `SetNetBasicConfig` (to keep what a client leaves out): the IPv4 settings.
    /// @param config  to be filled
    virtual NETNS::DEV_RET GetNetBasic(const char* verify, NETNS::DEV_NET_BASIC* config) = 0;
    /// `SetNetBasicConfig`: changes the IPv4 settings. The answer goes out on the old connection, if that still stands.
    /// @param config  what shall hold
    virtual NETNS::DEV_RET SetNetBasic(const char* verify, const NETNS::DEV_NET_BASIC* config) = 0;
    /// `GetNetPppoeConfig`, `SetNetPppoeConfig` (to keep what a client leaves out): PPPoE.
    /// @param config  to be filled
    virtual NETNS::DEV_RET GetPppoe(const char* verify, NETNS::DEV_PPPOE* config) = 0;
    /// `SetNetPppoeConfig`: changes PPPoE.
    /// @param config  what shall hold
    virtual NETNS::DEV_RET SetPppoe(const char* verify, const NETNS::DEV_PPPOE* config) = 0;
    /// `GetPortConfig`, `SetPortConfig` (to keep what a client leaves out), `GetStreamCaps` (for the RTSP port): the
    /// ports.
    /// @param info  to be filled
    virtual NETNS::DEV_RET GetPortInfo(const char* verify, NETNS::DEV_PORT_INFO* info) = 0;
    /// `SetPortConfig`: changes the ports. To move the HTTP port the host calls NET_SERVER_SetHttpPort, from another
    /// thread than this call's.
    /// @param info  what shall hold; 0 and equal ports are not refused by the library
    virtual NETNS::DEV_RET SetPortInfo(const char* verify, const NETNS::DEV_PORT_INFO* info) = 0;
    /// `GetDdnsConfig`, `SetDdnsConfig` (to keep what a client leaves out): dynamic DNS.
    /// @param config  to be filled
    virtual NETNS::DEV_RET GetDdns(const char* verify, NETNS::DEV_DDNS* config) = 0;
    /// `SetDdnsConfig`: changes dynamic DNS.
    /// @param config  what shall hold; the provider may be one that is in no list
    virtual NETNS::DEV_RET SetDdns(const char* verify, const NETNS::DEV_DDNS* config) = 0;

    /// `ModifyPassword`: changes the password of the user named in `verify`.
    /// @param newPassword  decoded, at most 64 bytes; may be empty
    virtual NETNS::DEV_RET ModifyPassword(const char* verify, const char* newPassword) = 0;
    /// `Reboot`: the answer goes out when the operation returns, so begin to reboot a moment later.
    virtual NETNS::DEV_RET Reboot(const char* verify) = 0;
    /// `GetChannelList`: the channels.
    /// @param ids    room for `max` ids, as clients put them behind a command
    /// @param max    128
    /// @param count  receives the number of channels; more than `max` count as `max`
    virtual NETNS::DEV_RET GetChannelIdList(const char* verify, unsigned int* ids, int max, int& count) = 0;

    /// `SearchRecordDate`: the days with recordings on any channel.
    /// @param list   room for `max` days
    /// @param max    256
    /// @param count  receives the number of days; more than `max` count as `max`
    virtual NETNS::DEV_RET SearchRecordDate(const char* verify, NETNS::DEV_DATE* list, int max, int& count) = 0;
    /// `SearchByTime`: the recorded sections of one channel between two times.
    /// @param start    local time; all zero when the client sent none
    /// @param end      local time; all zero when the client sent none
    /// @param channel  counted from 0, unlike everywhere else
    /// @param list     room for `max` sections
    /// @param max      256
    /// @param count    receives the number of sections; more than `max` count as `max`
    virtual NETNS::DEV_RET SearchRecord(const char* verify, const NETNS::DEV_DATETIME* start,
                                        const NETNS::DEV_DATETIME* end, int channel, NETNS::DEV_RECORD_INFO* list,
                                        int max, int& count) = 0;

    /// `GetDateAndTime`: how long a text clients may send for a field; only shown to them.
    /// @param kind  0: the name of the NTP server; no other is asked for
    /// @return bytes without the zero byte
    virtual int GetMaxLen(int kind) = 0;
};
