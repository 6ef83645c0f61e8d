#include "ClientWatch.h"

#include <utility>

CClientWatch::CClientWatch(CCameraStreams& streams, CPlaybacks& playbacks, std::function<unsigned int()> count)
    : m_streams(streams), m_playbacks(playbacks), m_count(std::move(count))
{
}

void CClientWatch::Look()
{
    // Asked in front of the count: a client may connect and open a stream between the count and what follows from it.
    const Opened opened = {m_streams.Opens(), m_playbacks.NextHandle()};
    const bool connected = m_count() > 0;
    if (!connected && !m_connected)
    {
        m_streams.ForgetUnlessOpenedSince(m_before.live);
        m_playbacks.CloseBefore(m_before.nextPlayback);
    }
    m_connected = connected;
    m_before = opened;
}
