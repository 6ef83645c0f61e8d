#include "AbandonedConnections.h"

#include "FakeClock.h"
#include "Peer.h"
#include "ShareSDK.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

#include <gtest/gtest.h>

namespace
{

/// Abandons every connection.
class AbandonedConnections : public testing::Test, public CListenSocketObserver
{
protected:
    void SetUp() override
    {
        SHARESDK_SetLogLevel(SHARESDK_LOG_NONE);
        NET_SOCKET_Initial(nullptr);
        ASSERT_TRUE(NET_SOCKET_StartListen(0, this, htonl(INADDR_LOOPBACK), true));
    }
    void TearDown() override
    {
        NET_SOCKET_Quit();
        m_connections.Clear();
    }

    void OnAcceptCreateSocket(int handle, unsigned short /*port*/, unsigned int /*address*/) override
    {
        m_connections.Add(handle);
        const std::lock_guard<std::mutex> lock(m_lock);
        m_handles.push_back(handle);
        m_changed.notify_all();
    }

    /// Connects, and waits until the connection is abandoned.
    std::unique_ptr<Peer> Connect()
    {
        const std::size_t wanted = ++m_connected;
        auto peer = std::make_unique<Peer>(NET_SOCKET_GetListenPort(this));
        std::unique_lock<std::mutex> lock(m_lock);
        m_changed.wait_for(lock, std::chrono::seconds(5), [&] { return m_handles.size() == wanted; });
        return peer;
    }

    CAbandonedConnections m_connections;
    std::mutex m_lock;
    std::condition_variable m_changed;
    std::vector<int> m_handles;
    std::size_t m_connected = 0;
};

TEST_F(AbandonedConnections, StayOpenWhateverThePeerSends)
{
    const auto peer = Connect();
    peer->Send("bytes");
    EXPECT_FALSE(Connect()->IsClosedNow());
    EXPECT_FALSE(peer->IsClosedNow());
}

TEST_F(AbandonedConnections, EndWhenThePeerCloses)
{
    const auto peer = Connect();
    peer->Send("bytes");
    peer->ShutdownSend();
    EXPECT_TRUE(peer->WaitClosed());
    bool broken = false;
    NET_SOCKET_Recv_Immediate(m_handles[0], nullptr, 0, &broken);
    EXPECT_TRUE(broken); // the handle is nobody's
}

TEST_F(AbandonedConnections, OldestIsPushedOutByTheThirtyThird)
{
    std::vector<std::unique_ptr<Peer>> peers;
    for (std::size_t i = 0; i < 32; ++i)
    {
        peers.push_back(Connect());
    }
    EXPECT_FALSE(peers[0]->IsClosedNow());
    peers.push_back(Connect());
    EXPECT_TRUE(peers[0]->WaitClosed());
    EXPECT_FALSE(peers[1]->IsClosedNow());
}

TEST_F(AbandonedConnections, NewOneEndsThoseOfFiveMinutesAgo)
{
    FakeClock clock;
    const auto old = Connect();
    clock.Advance(5 * 60 * 1000);
    const auto younger = Connect();
    EXPECT_FALSE(old->IsClosedNow());
    clock.Advance(1);
    const auto newest = Connect();
    EXPECT_TRUE(old->WaitClosed());
    EXPECT_FALSE(younger->IsClosedNow());
}

TEST_F(AbandonedConnections, ClearEndsAll)
{
    const auto first = Connect();
    const auto second = Connect();
    m_connections.Clear();
    EXPECT_TRUE(first->WaitClosed());
    EXPECT_TRUE(second->WaitClosed());
}

} // namespace
