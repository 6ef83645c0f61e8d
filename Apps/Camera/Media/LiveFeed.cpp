#include "LiveFeed.h"

#include "NetServerSDK.h"

using namespace NETNS;

namespace
{

constexpr std::uint32_t VIDEO_CLOCK = 90000;
constexpr std::uint32_t SOUND_RATE = 8000;

void Deliver(unsigned int channels, int stream, const RTSP_FRAME& frame, const std::vector<unsigned char>& bytes)
{
    // The library copies the payload and does not write to it.
    void* const data = const_cast<unsigned char*>(bytes.data());
    for (unsigned int channel = 1; channel <= channels; ++channel)
    {
        NET_SERVER_LiveStreamIn(channel, stream, frame, data);
    }
}

} // namespace

void CLiveFeed::PutVideo(int stream, const std::vector<unsigned char>& frame, bool keyFrame,
                         std::uint64_t presentationUs)
{
    RTSP_FRAME record = {};
    record.frameType = RTSP_FRAME_VIDEO;
    record.encodeType = RTSP_ENCODE_H264;
    record.keyFrame = keyFrame ? 1 : 0;
    record.presentationUs = presentationUs;
    record.clockRate = VIDEO_CLOCK;
    record.length = static_cast<std::uint32_t>(frame.size());
    Deliver(m_channels, stream, record, frame);
    if (keyFrame)
    {
        m_hasKeyFrame[stream] = true;
    }
}

void CLiveFeed::PutAudio(const std::vector<unsigned char>& chunk, std::uint64_t presentationUs)
{
    RTSP_FRAME record = {};
    record.frameType = RTSP_FRAME_AUDIO;
    record.encodeType = RTSP_ENCODE_PCMA;
    record.presentationUs = presentationUs;
    record.clockRate = SOUND_RATE;
    record.length = static_cast<std::uint32_t>(chunk.size());
    Deliver(m_channels, MAIN_STREAM, record, chunk); // once a channel: both of its streams get it
    m_hasSound = true;
}

bool CLiveFeed::HasAll() const
{
    return m_hasKeyFrame[MAIN_STREAM] && m_hasKeyFrame[SUB_STREAM] && m_hasSound;
}

void CLiveFeed::Restart()
{
    m_hasKeyFrame[MAIN_STREAM] = false;
    m_hasKeyFrame[SUB_STREAM] = false;
    m_hasSound = false;
}
