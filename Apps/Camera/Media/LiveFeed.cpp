#include "LiveFeed.h"

#include "G711.h"
#include "NetServerSDK.h"
#include "RecordTime.h"

#include <algorithm>

using namespace NETNS;

namespace
{

constexpr std::uint32_t VIDEO_CLOCK = 90000;
constexpr std::uint32_t SOUND_RATE = 8000;
constexpr std::size_t CHUNK_MARKER = 4;
constexpr std::uint64_t REPEAT_AFTER_US = 200000;

void Deliver(unsigned int channels, int stream, const RTSP_FRAME& frame, const std::vector<unsigned char>& bytes)
{
    // The library copies the payload and does not write to it.
    void* const data = const_cast<unsigned char*>(bytes.data());
    for (unsigned int channel = 1; channel <= channels; ++channel)
    {
        NET_SERVER_LiveStreamIn(channel, stream, frame, data);
    }
}

RTSP_FRAME SoundFrame(RTSP_ENCODE_TYPE encodeType, std::size_t length, std::uint64_t presentationUs)
{
    RTSP_FRAME record = {};
    record.frameType = RTSP_FRAME_AUDIO;
    record.encodeType = encodeType;
    record.presentationUs = presentationUs;
    record.clockRate = SOUND_RATE;
    record.length = static_cast<std::uint32_t>(length);
    return record;
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
    const RTSP_FRAME talk = SoundFrame(RTSP_ENCODE_PCMA, chunk.size(), presentationUs);
    NET_SERVER_TalkBackStreamIn(talk, const_cast<unsigned char*>(chunk.data()));
    // Once a channel: both of its streams get it.
    if (m_ulaw)
    {
        std::vector<unsigned char> ulaw = chunk;
        std::transform(ulaw.begin() + CHUNK_MARKER, ulaw.end(), ulaw.begin() + CHUNK_MARKER, AlawToUlaw);
        Deliver(m_channels, MAIN_STREAM, SoundFrame(RTSP_ENCODE_PCMU, ulaw.size(), presentationUs), ulaw);
    }
    else
    {
        Deliver(m_channels, MAIN_STREAM, talk, chunk);
    }
    m_hasSound = true;
}

void CLiveFeed::PutJpeg(const std::vector<unsigned char>& picture, std::uint64_t presentationUs)
{
    const std::lock_guard<std::mutex> guard(m_snapshotLock);
    if (presentationUs >= m_snapshotsFromUs)
    {
        m_snapshot = picture;
        HandOverSnapshot();
    }
}

void CLiveFeed::ForgetSnapshot()
{
    const std::lock_guard<std::mutex> guard(m_snapshotLock);
    m_snapshotsFromUs = SteadyClockUs();
    m_snapshot.clear();
}

void CLiveFeed::RepeatSnapshot()
{
    const std::lock_guard<std::mutex> guard(m_snapshotLock);
    if (!m_snapshot.empty() && SteadyClockUs() - m_handedOverUs >= REPEAT_AFTER_US)
    {
        HandOverSnapshot();
    }
}

/// The lock is held: no snapshot that was forgotten goes out behind the change that made it old.
void CLiveFeed::HandOverSnapshot()
{
    m_handedOverUs = SteadyClockUs();
    RTSP_FRAME record = {};
    record.frameType = RTSP_FRAME_JPEG;
    record.encodeType = RTSP_ENCODE_JPEG;
    record.keyFrame = 1;
    record.presentationUs = m_handedOverUs;
    record.clockRate = VIDEO_CLOCK;
    record.length = static_cast<std::uint32_t>(m_snapshot.size());
    Deliver(m_channels, MAIN_STREAM, record, m_snapshot);
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
    ForgetSnapshot();
}
