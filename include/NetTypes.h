// NetTypes.h: the plain types that cross the boundary between the library and its host.
//
// Every record has a fixed layout, the same on 32-bit ARM and on 64-bit machines: fixed-width fields, enumerations of
// 32 bits, text fields of fixed size that end in a zero byte.
#pragma once

#include <cstddef>
#include <cstdint>

namespace NETNS
{

/// Result of nearly every host operation. Any value not listed counts like DEV_RET_NOT_SUPPORTED.
enum DEV_RET : std::uint32_t
{
    DEV_RET_OK = 0,            ///< done
    DEV_RET_FAILED = 1,        ///< the device failed to do it
    DEV_RET_NO_RIGHT = 2,      ///< unknown user, wrong password or missing right: the client gets a 401
    DEV_RET_BAD_PARAM = 3,     ///< a value in the request is not acceptable
    DEV_RET_NOT_SUPPORTED = 4, ///< the device has no such function
};

/// Kind of device, for the network announcement. 0 is the value in use.
enum DEV_TYPE : std::uint32_t
{
    DEV_TYPE_DEFAULT = 0,
};

/// A calendar day; month counts from 1.
struct DEV_DATE
{
    std::uint16_t year;
    std::uint16_t month;
    std::uint16_t day;
};

/// A time of day on the 24-hour clock.
struct DEV_TIME
{
    std::uint16_t hour;
    std::uint16_t minute;
    std::uint16_t second;
};

struct DEV_DATETIME
{
    DEV_DATE date;
    DEV_TIME time;
};

/// One user. Texts end in a zero byte within their field.
struct DEV_USER_INFO
{
    std::uint32_t reserved; ///< the host's own; the library neither reads nor writes it
    char userName[20];
    char password[20]; ///< clear text
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
    RTSP_FRAME_VIDEO = 0,
    RTSP_FRAME_AUDIO = 1,
    RTSP_FRAME_JPEG = 2, ///< a picture for a snapshot; never streamed
};

/// How a frame is encoded; the meaning of 2 depends on the frame type.
enum RTSP_ENCODE_TYPE : std::uint32_t
{
    RTSP_ENCODE_H264 = 0,
    RTSP_ENCODE_JPEG = 2,  ///< video
    RTSP_ENCODE_PCMA = 2,  ///< audio: G.711 A-law
    RTSP_ENCODE_PCMU = 4,  ///< audio: G.711 mu-law
    RTSP_ENCODE_TALK = 11, ///< speech that a client sends, as handed to CStreamCtrl::TalkBackStreamInput
};

/// How a stream would come from a camera; live streaming from cameras is not in service.
enum RTSP_NETPROTOCOL : std::uint32_t
{
    RTSP_NETPROTOCOL_DEFAULT = 0,
};

/// What of a camera's stream would be wanted; live streaming from cameras is not in service.
enum RTSP_MEDIADATA_TYPE : std::uint32_t
{
    RTSP_MEDIADATA_DEFAULT = 0,
};

/// One encoded frame's description; its payload is handed over beside it and copied once.
///
/// Video is one H.264 access unit in Annex B form: each NAL unit behind the four bytes 00 00 00 01, SPS and PPS in
/// front of every key frame, one slice per frame, no access unit delimiters. Audio is one or more chunks of G.711,
/// each behind the four bytes 00 01 A0 00.
struct RTSP_FRAME
{
    RTSP_FRAME_TYPE frameType;
    RTSP_ENCODE_TYPE encodeType;
    std::uint8_t keyFrame; ///< not 0 on a key frame
    std::uint8_t hostReserved1[19];
    alignas(8) std::uint64_t presentationUs; ///< microseconds on a clock of the host's choice
    std::uint32_t clockRate;                 ///< Hz: the RTP clock of video (90000), the sample rate of audio
    std::uint8_t hostReserved2[4];
    std::uint32_t length; ///< bytes of payload
};

static_assert(sizeof(DEV_DATE) == 6 && sizeof(DEV_TIME) == 6 && sizeof(DEV_DATETIME) == 12, "record layout");
static_assert(sizeof(DEV_USER_INFO) == 44 && offsetof(DEV_USER_INFO, password) == 24, "record layout");
static_assert(sizeof(DEV_VIDEO_PROFILE) == 32, "record layout");
static_assert(offsetof(RTSP_FRAME, hostReserved1) == 9 && offsetof(RTSP_FRAME, presentationUs) == 32, "record layout");
static_assert(offsetof(RTSP_FRAME, clockRate) == 40 && offsetof(RTSP_FRAME, length) == 48, "record layout");
static_assert(sizeof(RTSP_FRAME) == 56, "record layout");

} // namespace NETNS
