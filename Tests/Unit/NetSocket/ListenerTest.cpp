// ListenerTest.cpp: the threads of one port.
#include "Listener.h"

#include "ConnectionTable.h"
#include "TcpPeer.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>

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

#ifndef __SANITIZE_ADDRESS__ // the sanitizer opens a pipe to check a pointer, and takes a failure for a bad pointer

/// Takes no descriptor itself.
int OpenDescriptors()
{
    int count = 0;
    for (int descriptor = 0; descriptor < 1024; ++descriptor)
    {
        count += fcntl(descriptor, F_GETFD) != -1 ? 1 : 0;
    }
    return count;
}

bool AwaitDescriptors(int count)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (OpenDescriptors() != count && std::chrono::steady_clock::now() < deadline)
    {
        std::this_thread::yield();
    }
    return OpenDescriptors() == count;
}

// Another thread may take the descriptor in the moment in which it is given up; here the limit is below it.
TEST_F(Listener, TheReserveComesBackWhenDescriptorsAreThereAgain)
{
    constexpr int PEERS = 4;
    Open(CListener::SPARE_LIFE);
    m_observer.LetGo();
    TcpPeer::Connect(m_listener->Port()).ReadAll();
    const int before = OpenDescriptors();
    std::vector<TcpPeer> peers;
    for (int i = 0; i < PEERS; ++i)
    {
        peers.emplace_back(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    }
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit none = {3, limit.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(m_listener->Port());
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    for (TcpPeer& peer : peers)
    {
        EXPECT_EQ(0, connect(peer.Descriptor(), reinterpret_cast<sockaddr*>(&address), sizeof(address)));
    }
    EXPECT_TRUE(AwaitDescriptors(before + PEERS - 1));
    setrlimit(RLIMIT_NOFILE, &limit);
    for (TcpPeer& peer : peers)
    {
        peer.ReadAll();
    }
    EXPECT_TRUE(AwaitDescriptors(before + PEERS));
}

#endif

} // namespace
