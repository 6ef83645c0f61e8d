// RTSP_DataManagerSdp.cpp: what a stream is, and how its SDP says so.
#include "RTSP_DataManager.h"

#include "Base64Coder.h"
#include "PFHelper.h"
#include "RTSP_Console.h"
#include "ShareSDK.h"
#include "StartCode.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>

namespace
{
const char RTSP_VERSION[] = "1";
constexpr int MAX_UNITS = 512; // NAL units of a key frame that are looked at
constexpr unsigned char NAL_IDR = 0x65;
constexpr unsigned char NAL_SPS = 0x67;
constexpr unsigned char NAL_PPS = 0x68;

constexpr int TRACK_VIDEO = 0;
constexpr int TRACK_AUDIO = 1;
constexpr int TRACK_TALK = 2;

struct FormatRow
{
    NETNS::RTSP_ENCODE_TYPE encodeType;
    unsigned char payload;
    const char* name;
};

const FormatRow VIDEO_FORMATS[] = {
    {NETNS::RTSP_ENCODE_H264, 96, "H264"},
    {NETNS::RTSP_ENCODE_JPEG, 26, "JPEG"},
};

const FormatRow AUDIO_FORMATS[] = {
    {NETNS::RTSP_ENCODE_PCMA, 8, "pcma"},
    {NETNS::RTSP_ENCODE_PCMU, 0, "pcmu"},
};

template <std::size_t N>
const FormatRow* FindFormat(const FormatRow (&rows)[N], NETNS::RTSP_ENCODE_TYPE encodeType)
{
    for (const FormatRow& row : rows)
    {
        if (row.encodeType == encodeType)
            return &row;
    }
    return nullptr;
}

// A NAL unit in a frame; it ends at the frame's end at the latest.
struct NalUnit
{
    const unsigned char* data;
    unsigned int length;

    unsigned int Byte(unsigned int index) const { return index < length ? data[index] : 0; }
};

void AppendParameterSet(const NalUnit& unit, SDP_INFO_H264* info)
{
    const std::size_t used = strlen(info->spropParameterSets);
    const std::size_t comma = used != 0 ? 1 : 0;
    const std::size_t textLength = (static_cast<std::size_t>(unit.length) + 2) / 3 * 4;
    if (used + comma + textLength >= sizeof(info->spropParameterSets))
        return;
    char* out = info->spropParameterSets + used;
    if (comma != 0)
        *out++ = ',';
    unsigned long room = static_cast<unsigned long>(textLength) + 1;
    CBase64Coder::Encode(unit.data, unit.length, reinterpret_cast<unsigned char*>(out), &room);
}

void TakeUnit(const NalUnit& unit, SDP_INFO_H264* info)
{
    // The unit's header byte is part of the value that clients get: 0x67 in front of profile and constraints.
    if (unit.Byte(0) == NAL_SPS)
        info->profileLevelId = (unit.Byte(0) << 16) | (unit.Byte(1) << 8) | unit.Byte(2);
    if (unit.Byte(0) == NAL_SPS || unit.Byte(0) == NAL_PPS)
        AppendParameterSet(unit, info);
}

void FillProfile(RTSP_STREAM_CFG& track, NETNS::RTSP_FRAME_TYPE frameType, NETNS::RTSP_ENCODE_TYPE encodeType,
                 unsigned char payload, unsigned int clockRate)
{
    track.frameType = frameType;
    track.encodeType = encodeType;
    track.payloadType = payload;
    track.clockRate = clockRate;
}

// The three lines that every track has.
std::string TrackLines(const char* media, const FormatRow& format, int track, unsigned int clockRate)
{
    char lines[256];
    snprintf(lines, sizeof(lines),
             "m=%s 0 RTP/AVP %d\r\n"
             "a=control:trackID=%d\r\n"
             "a=rtpmap:%d %s/%u\r\n",
             media, format.payload, track, format.payload, format.name, clockRate);
    return lines;
}

std::string FormatLine(const FormatRow& format, const SDP_INFO_H264& h264)
{
    char line[256];
    snprintf(line, sizeof(line), "a=fmtp:%d profile-level-id=%x; sprop-parameter-sets=%s; packetization-mode=1\r\n",
             format.payload, h264.profileLevelId, h264.spropParameterSets);
    return line;
}

std::string SessionLines()
{
    char lines[256];
    snprintf(lines, sizeof(lines),
             "v=0\r\n"
             "o=- %" PRIu32 " %s IN IP4 0.0.0.0\r\n"
             "s=RTSP SESSION\r\n"
             "u=http:///\r\n"
             "e=admin@\r\n"
             "t=0 0\r\n"
             "a=control:*\r\n"
             "a=range:npt=00.000- \r\n",
             CPFHelper::GetTickCount(), RTSP_VERSION);
    return lines;
}

std::string TalkLines()
{
    char lines[256];
    snprintf(lines, sizeof(lines),
             "m=application 0 RTP/AVP \r\n"
             "a=control:trackID=%d\r\n"
             "a=rtpmap:8 pcma/8000\r\n"
             "a=ptime:40\r\n"
             "a=recvonly\r\n",
             TRACK_TALK);
    return lines;
}
} // namespace

void Create_SPS_PPS_INFO(const unsigned char* data, unsigned int length, SDP_INFO_H264* info)
{
    unsigned int start = FindStartCode(data, 0, length, NALU_BOUNDARY);
    for (int count = 0; count < MAX_UNITS && start != START_CODE_NONE; ++count)
    {
        start += START_CODE_BYTES;
        const bool isSlice = start < length && data[start] == NAL_IDR;
        // A start code right behind another is not seen: between two there is at least one byte.
        const unsigned int next = isSlice ? START_CODE_NONE : FindStartCode(data, start + 1, length, NALU_BOUNDARY);
        TakeUnit({data + start, (next != START_CODE_NONE ? next : length) - start}, info);
        start = next;
    }
    info->valid = true;
}

bool CRTSP_DataManager::GetSDPInfo(unsigned int id, int stream, std::string& sdp, RTSP_PROFILE_CFG& profile,
                                   CPolicy policy)
{
    CMySingleLock lock(m_dataLock);
    sdp = SessionLines();
    const bool hasVideo = WriteVideo(id, stream, sdp, profile);
    if (id == static_cast<unsigned int>(RTSP_STREAM_TALKBACK))
    {
        sdp += TalkLines();
        FillProfile(profile.audio, NETNS::RTSP_FRAME_AUDIO, NETNS::RTSP_ENCODE_PCMA, 8, 8000);
        return true;
    }
    WriteAudio(id, stream, sdp, profile, policy);
    return hasVideo;
}

bool CRTSP_DataManager::WriteVideo(unsigned int id, int stream, std::string& sdp, RTSP_PROFILE_CFG& profile)
{
    const auto found = m_records.find(RTSP_MANAGER_KEY{id, stream, NETNS::RTSP_FRAME_VIDEO});
    if (found == m_records.end())
    {
        RTSP_ConsoleLine("CRTSP_DataManager::GetSDPInfo failed, %s:%d, size:%u, id:%u, streamidx:%d. type:%d \n",
                         __FILE__, __LINE__, static_cast<unsigned int>(m_records.size()), id, stream,
                         NETNS::RTSP_FRAME_VIDEO);
        return false;
    }
    const StreamRecord& record = found->second;
    const FormatRow* format = FindFormat(VIDEO_FORMATS, record.videoEncodeType);
    if (format == nullptr)
    {
        SHARESDK_AbnormalOutput("a video encode type that RTSP does not know", __FILE__, __LINE__);
        return true;
    }
    sdp += TrackLines("video", *format, TRACK_VIDEO, record.videoClockRate);
    if (record.videoEncodeType == NETNS::RTSP_ENCODE_H264)
        sdp += FormatLine(*format, record.h264);
    FillProfile(profile.video, NETNS::RTSP_FRAME_VIDEO, record.videoEncodeType, format->payload, record.videoClockRate);
    return true;
}

void CRTSP_DataManager::WriteAudio(unsigned int id, int stream, std::string& sdp, RTSP_PROFILE_CFG& profile,
                                   CPolicy policy)
{
    const StreamRecord* record = FindAudio(id, stream);
    if (record == nullptr || !record->hasAudio)
        return;
    const FormatRow* format = FindFormat(AUDIO_FORMATS, record->audioEncodeType);
    if (format == nullptr)
    {
        RTSP_ConsoleLine("unknown audio encode type %u\n", static_cast<unsigned int>(record->audioEncodeType));
        SHARESDK_AbnormalOutput("an audio encode type that RTSP does not know", __FILE__, __LINE__);
        return;
    }
    sdp += TrackLines("audio", *format, TRACK_AUDIO, record->audioSampleRate);
    sdp += "a=ptime:40\r\n";
    // By default the track runs on the record's video clock, which an audio record has not: its time stamps stand
    // still. Clients in the field see it so.
    const unsigned int clockRate = policy.StandardRtsp() ? record->audioSampleRate : record->videoClockRate;
    FillProfile(profile.audio, NETNS::RTSP_FRAME_AUDIO, record->audioEncodeType, format->payload, clockRate);
}

// The stream's own sound, else that of the first stream of the same id.
const CRTSP_DataManager::StreamRecord* CRTSP_DataManager::FindAudio(unsigned int id, int stream) const
{
    const auto own = m_records.find(RTSP_MANAGER_KEY{id, stream, NETNS::RTSP_FRAME_AUDIO});
    if (own != m_records.end())
        return &own->second;
    for (const auto& entry : m_records)
    {
        if (entry.first.id == id && entry.first.type == NETNS::RTSP_FRAME_AUDIO)
            return &entry.second;
    }
    return nullptr;
}
