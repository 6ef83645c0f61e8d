#include "CameraStreams.h"

#include <algorithm>
#include <utility>

namespace
{

// A talk session ends with a close of handle 39, and 0 stands for nothing: live handles begin above both.
constexpr unsigned int FIRST_HANDLE = 1000;
constexpr unsigned int NO_HANDLE = 0;

} // namespace

std::string LivePath(unsigned int channel, int stream)
{
    return "/live/ch" + std::to_string(channel) + (stream == MAIN_STREAM ? "/main" : "/sub");
}

CCameraStreams::CCameraStreams(unsigned int channels, const CCameraUsers& users, bool login,
                               std::function<void(int stream)> onOpen)
    : m_channels(channels), m_users(users), m_login(login), m_onOpen(std::move(onOpen)),
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
    // The library lets a client pass that sends an unreadable Basic login; its user is empty then.
    if (m_login && !m_users.IsKnown(userInfoXml))
    {
        return NO_HANDLE;
    }
    const unsigned int slot = (chn - 1) * STREAM_COUNT + static_cast<unsigned int>(stream);
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        ++m_uses[slot];
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

int CCameraStreams::TalkBackStreamInput(unsigned char* /*data*/, int /*len*/, int /*encodeType*/)
{
    return -1; // a camera without a loudspeaker
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
