#include "CameraStreams.h"

#include "G711.h"
#include "RecordTime.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace
{

// A talk session ends with a close of handle 39, and 0 stands for nothing: live handles begin above both.
constexpr unsigned int FIRST_HANDLE = 1000;
constexpr unsigned int NO_HANDLE = 0;
constexpr unsigned int TALK_HANDLE = 39;
constexpr unsigned char SPEECH_MARKER[] = {0x00, 0x01, 0xa0, 0x00};

} // namespace

std::string LivePath(unsigned int channel, int stream)
{
    return "/live/ch" + std::to_string(channel) + (stream == MAIN_STREAM ? "/main" : "/sub");
}

CCameraStreams::CCameraStreams(unsigned int channels, const Parts& parts, bool login,
                               std::function<void(int stream)> onOpen)
    : m_channels(channels), m_parts(parts), m_login(login), m_onOpen(std::move(onOpen)),
      m_uses(std::size_t{channels} * STREAM_COUNT, 0)
{
}

unsigned int CCameraStreams::OpenLiveStream(const char* userInfoXml, unsigned int chn, int stream,
                                            unsigned int& /*out*/)
{
    if (chn < 1 || chn > m_channels || stream < 0 || stream >= STREAM_COUNT)
    {
        return NO_HANDLE;
    }
    if (!MayOpen(userInfoXml))
    {
        return NO_HANDLE;
    }
    const unsigned int slot = (chn - 1) * STREAM_COUNT + static_cast<unsigned int>(stream);
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        ++m_uses[slot];
        ++m_opens;
    }
    m_onOpen(stream);
    return FIRST_HANDLE + slot;
}

void CCameraStreams::CloseLiveStream(unsigned int handle)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    if (handle < FIRST_HANDLE || handle - FIRST_HANDLE >= m_uses.size())
    {
        return;
    }
    std::uint64_t& uses = m_uses[handle - FIRST_HANDLE];
    uses -= uses > 0 ? 1 : 0;
}

/// The library lets a client pass that sends an unreadable Basic login; its user is empty then.
bool CCameraStreams::MayOpen(const char* userInfoXml) const
{
    return !m_login || m_parts.users.IsKnown(userInfoXml);
}

unsigned int CCameraStreams::OpenRecStream(const char* userInfoXml, unsigned int chn, const NETNS::DEV_DATE& date,
                                           const NETNS::DEV_TIME& time, unsigned int timeLen, unsigned int& /*out*/)
{
    const std::int64_t fromUs = ToRecordTime({date, time});
    if (!MayOpen(userInfoXml) || chn < 1 || chn > m_channels || fromUs == 0)
    {
        return NO_HANDLE;
    }
    return m_parts.playbacks.Open(fromUs, timeLen);
}

void CCameraStreams::ClosePlayStream(unsigned int handle)
{
    m_parts.playbacks.Close(handle);
}

unsigned int CCameraStreams::OpenTalkBackStream(const char* userInfoXml)
{
    if (!MayOpen(userInfoXml))
    {
        return NO_HANDLE;
    }
    ++m_talkers;
    return TALK_HANDLE;
}

void CCameraStreams::CloseTalkBackStream(unsigned int handle)
{
    if (handle == TALK_HANDLE && m_talkers > 0)
    {
        --m_talkers;
        m_parts.talk.Flush();
    }
}

int CCameraStreams::TalkBackStreamInput(unsigned char* data, int len, int encodeType)
{
    constexpr int MARKER_BYTES = sizeof(SPEECH_MARKER);
    if (m_talkers == 0 || encodeType != NETNS::RTSP_ENCODE_TALK || len <= MARKER_BYTES ||
        std::memcmp(data, SPEECH_MARKER, sizeof(SPEECH_MARKER)) != 0)
    {
        return -1;
    }
    m_speech.resize(static_cast<std::size_t>(len - MARKER_BYTES));
    std::transform(data + MARKER_BYTES, data + len, m_speech.begin(), AlawToLinear);
    m_parts.talk.Put(m_speech.data(), m_speech.size());
    return 0;
}

bool CCameraStreams::IsOpen(int stream) const
{
    const std::lock_guard<std::mutex> guard(m_lock);
    for (std::size_t slot = static_cast<std::size_t>(stream); slot < m_uses.size(); slot += STREAM_COUNT)
    {
        if (m_uses[slot] > 0)
        {
            return true;
        }
    }
    return false;
}

void CCameraStreams::ForgetAll()
{
    const std::lock_guard<std::mutex> guard(m_lock);
    std::fill(m_uses.begin(), m_uses.end(), 0);
}

std::uint64_t CCameraStreams::Opens() const
{
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_opens;
}

void CCameraStreams::ForgetUnlessOpenedSince(std::uint64_t opens)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    if (m_opens == opens)
    {
        std::fill(m_uses.begin(), m_uses.end(), 0);
    }
}
