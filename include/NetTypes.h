// NetTypes.h: the plain types that cross the boundary between the library and its host.
//
// Every record has a fixed layout, the same on 32-bit ARM and on 64-bit machines: fixed-width fields, enumerations of
// 32 bits, text fields of fixed size that end in a zero byte.
#pragma once

#include <cstddef>
#include <cstdint>

/// The types that cross the boundary between the library and its host.
namespace NETNS
{

/// Result of nearly every host operation, and what clients of the XML API see of it. Any value not listed counts like
/// DEV_RET_NOT_SUPPORTED.
enum DEV_RET : std::uint32_t
{
    DEV_RET_OK = 0,            ///< done: status 200 with the document, or with the success document
    DEV_RET_FAILED = 1,        ///< the device failed to do it: status 400 with errorCode 4
    DEV_RET_NO_RIGHT = 2,      ///< unknown user, wrong password or missing right: status 401 with a Basic challenge
    DEV_RET_BAD_PARAM = 3,     ///< a value in the request is not acceptable: status 400 with errorCode 3
    DEV_RET_NOT_SUPPORTED = 4, ///< the device has no such function: status 400 with errorCode 1
};

/// Kind of device, for the network announcement. 0 is the value in use.
enum DEV_TYPE : std::uint32_t
{
    DEV_TYPE_DEFAULT = 0, ///< an IP camera
};

/// A calendar day.
struct DEV_DATE
{
    std::uint16_t year;  ///< in full, 2026
    std::uint16_t month; ///< 1 to 12
    std::uint16_t day;   ///< 1 to 31
};

/// A time of day on the 24-hour clock.
struct DEV_TIME
{
    std::uint16_t hour;   ///< 0 to 23
    std::uint16_t minute; ///< 0 to 59
    std::uint16_t second; ///< 0 to 59
};

/// A day and a time of day, in the device's local time.
struct DEV_DATETIME
{
    DEV_DATE date; ///< the day
    DEV_TIME time; ///< the time of that day
};

/// One user. Texts end in a zero byte within their field.
struct DEV_USER_INFO
{
    std::uint32_t reserved; ///< the host's own; the library neither reads nor writes it
    char userName[20];      ///< at most 19 bytes; no colon, no double quote and no blank, which no login can carry
    char password[20];      ///< clear text, at most 19 bytes; no blank
};

/// Encoder settings of one video stream.
struct DEV_VIDEO_PROFILE
{
    std::uint32_t width;       ///< pixels
    std::uint32_t height;      ///< pixels
    std::uint32_t frameRate;   ///< frames per second
    std::uint32_t maxBitRate;  ///< kbit/s
    std::uint32_t quality;     ///< 1 lowest, 2 lower, 3 medium, 4 higher, 5 highest
    std::uint32_t encodeType;  ///< 0 mjpeg, 1 mpeg4, 2 h264
    std::uint32_t encodeLevel; ///< 1 baseline, 2 main, 3 extended, 4 high profile
    std::uint32_t gop;         ///< frames from one key frame to the next
};

/// What a frame holds.
enum RTSP_FRAME_TYPE : std::uint32_t
{
    RTSP_FRAME_VIDEO = 0, ///< an H.264 access unit
    RTSP_FRAME_AUDIO = 1, ///< one or more chunks of G.711
    RTSP_FRAME_JPEG = 2,  ///< a picture for a snapshot; never streamed
};

/// How a frame is encoded; the meaning of 2 depends on the frame type.
enum RTSP_ENCODE_TYPE : std::uint32_t
{
    RTSP_ENCODE_H264 = 0,  ///< video: H.264, the one video format that reaches clients
    RTSP_ENCODE_JPEG = 2,  ///< video: described to clients as JPEG, but no packet of it is sent
    RTSP_ENCODE_PCMA = 2,  ///< audio: G.711 A-law
    RTSP_ENCODE_PCMU = 4,  ///< audio: G.711 mu-law
    RTSP_ENCODE_TALK = 11, ///< speech that a client sends, as handed to CStreamCtrl::TalkBackStreamInput
};

/// How a stream would come from a camera; live streaming from cameras is not in service.
enum RTSP_NETPROTOCOL : std::uint32_t
{
    RTSP_NETPROTOCOL_DEFAULT = 0, ///< not looked at
};

/// What of a camera's stream would be wanted; live streaming from cameras is not in service.
enum RTSP_MEDIADATA_TYPE : std::uint32_t
{
    RTSP_MEDIADATA_DEFAULT = 0, ///< not looked at
};

/// One encoded frame's description; its payload is handed over beside it and copied once.
///
/// Video is one H.264 access unit in Annex B form: each NAL unit behind the four bytes 00 00 00 01, SPS and PPS in
/// front of every key frame, one slice per frame, no access unit delimiters. Audio is one or more chunks of G.711,
/// each behind the four bytes 00 01 A0 00. A picture for a snapshot is a whole JPEG file of at most 64 MiB.
struct RTSP_FRAME
{
    RTSP_FRAME_TYPE frameType;               ///< what it holds
    RTSP_ENCODE_TYPE encodeType;             ///< how it is encoded
    std::uint8_t keyFrame;                   ///< not 0 on a key frame; looked at for video alone
    std::uint8_t hostReserved1[19];          ///< the host's own; the library neither reads nor writes it
    alignas(8) std::uint64_t presentationUs; ///< microseconds on a clock of the host's choice, one for all its streams
    std::uint32_t clockRate;                 ///< Hz: the RTP clock of video (90000), the sample rate of audio (8000)
    std::uint8_t hostReserved2[4];           ///< the host's own; the library neither reads nor writes it
    std::uint32_t length;                    ///< bytes of payload, above 0
};

static_assert(sizeof(DEV_DATE) == 6 && sizeof(DEV_TIME) == 6 && sizeof(DEV_DATETIME) == 12, "record layout");
static_assert(sizeof(DEV_USER_INFO) == 44 && offsetof(DEV_USER_INFO, password) == 24, "record layout");
static_assert(sizeof(DEV_VIDEO_PROFILE) == 32, "record layout");
static_assert(offsetof(RTSP_FRAME, hostReserved1) == 9 && offsetof(RTSP_FRAME, presentationUs) == 32, "record layout");
static_assert(offsetof(RTSP_FRAME, clockRate) == 40 && offsetof(RTSP_FRAME, length) == 48, "record layout");
static_assert(sizeof(RTSP_FRAME) == 56, "record layout");

} // namespace NETNS
