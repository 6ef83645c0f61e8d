// ListenerTest.cpp: the threads of one port.
#include "Listener.h"

#include "ConnectionTable.h"
#include "TcpPeer.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace
{

/// Its callbacks last until they are let go.
class CHoldingObserver : public CListenSocketObserver
{
public:
    explicit CHoldingObserver(CConnectionTable& table) : m_table(table) {}

    void OnAcceptCreateSocket(int handle, unsigned short /*port*/, unsigned int /*address*/) override
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        ++m_running;
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return !m_isHolding; });
        --m_running;
        m_changed.notify_all();
        m_table.Take(handle);
    }
    void Hold() { Set(true); }
    void LetGo() { Set(false); }
    bool AwaitRunning(int count)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::seconds(10), [this, count] { return m_running == count; });
    }

private:
    void Set(bool isHolding)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isHolding = isHolding;
        m_changed.notify_all();
    }

    CConnectionTable& m_table;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isHolding = true;
    int m_running = 0;
};

class Listener : public testing::Test
{
protected:
    void Open(std::chrono::milliseconds spareLife)
    {
        m_listener = CListener::Open(0, &m_observer, 0, true, m_table, std::make_shared<CQuitSignal>(), spareLife);
    }
    void TearDown() override
    {
        m_observer.LetGo();
        m_listener->Stop();
    }
    /// So many callbacks at once, which need a thread each.
    void Crowd(int count)
    {
        std::vector<TcpPeer> peers;
        for (int i = 0; i < count; ++i)
        {
            peers.push_back(TcpPeer::Connect(m_listener->Port()));
        }
        EXPECT_TRUE(m_observer.AwaitRunning(count));
        EXPECT_GE(m_listener->Threads(), static_cast<std::size_t>(count));
        m_observer.LetGo();
        EXPECT_TRUE(m_observer.AwaitRunning(0));
        m_observer.Hold();
    }
    bool AwaitThreads(std::size_t count)
    {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (m_listener->Threads() != count && std::chrono::steady_clock::now() < deadline)
        {
            std::this_thread::yield();
        }
        return m_listener->Threads() == count;
    }

    CConnectionTable m_table;
    CHoldingObserver m_observer{m_table};
    std::shared_ptr<CListener> m_listener;
};

TEST_F(Listener, ThreadsThatACrowdNeededEndBehindIt)
{
    Open(std::chrono::milliseconds(1));
    Crowd(8);
    EXPECT_TRUE(AwaitThreads(2)); // one that accepts, and a spare one
    Crowd(8);
    EXPECT_TRUE(AwaitThreads(2));
}

TEST_F(Listener, ThreadsThatACrowdNeededStayForAWhile)
{
    Open(CListener::SPARE_LIFE);
    Crowd(8);
    EXPECT_GE(m_listener->Threads(), 8u);
}

TEST_F(Listener, ThreadsMayEndWhileItStops)
{
    for (int i = 0; i < 50; ++i)
    {
        Open(std::chrono::milliseconds(1));
        Crowd(4);
        m_listener->Stop();
        EXPECT_EQ(0u, m_listener->Threads());
    }
    Open(std::chrono::milliseconds(1));
}

} // namespace
