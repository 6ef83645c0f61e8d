// NetSocketListenTest.cpp: listeners and their accept callbacks.
#include "NetSocketFixture.h"

#include <atomic>
#include <thread>
#include <vector>

#include <arpa/inet.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

using NetSocketListen = NetSocketFixture;

/// Waits in its callback until the gate opens, as for a peer that says nothing.
class WaitingObserver : public CListenSocketObserver
{
public:
    void OnAcceptCreateSocket(int handle, unsigned short, unsigned int) override
    {
        ++m_entered;
        m_mayLeave.Await();
        NET_SOCKET_DestroyHNetCommunication(handle);
        ++m_left;
    }

    std::atomic<int> m_entered{0};
    std::atomic<int> m_left{0};
    Gate m_mayLeave;
};

TEST_F(NetSocketListen, CallbackGetsHandlePortAndPeersAddress)
{
    AcceptQueue queue;
    const QuitAtEnd quit;
    const unsigned short port = Listen(queue);
    ASSERT_NE(0, port);
    TcpPeer peer = TcpPeer::Connect(port);
    const Accepted accepted = queue.Take();
    EXPECT_GT(accepted.handle, 0);
    EXPECT_EQ(port, accepted.port);
    EXPECT_EQ(htonl(INADDR_LOOPBACK), accepted.address);

    sockaddr_in address{};
    EXPECT_TRUE(NET_SOCKET_GetRemoteIP(accepted.handle, address));
    EXPECT_EQ(htonl(INADDR_LOOPBACK), address.sin_addr.s_addr);
    EXPECT_EQ(htons(peer.LocalPort()), address.sin_port);
}

TEST_F(NetSocketListen, LocalAddressIsTheOneAskedFor)
{
    AcceptQueue queue;
    const QuitAtEnd quit;
    ASSERT_TRUE(NET_SOCKET_StartListen(0, &queue, inet_addr("127.0.0.2"), true));
    EXPECT_FALSE(TcpPeer::Connect(NET_SOCKET_GetListenPort(&queue)).IsOpen());
}

TEST_F(NetSocketListen, PortThatIsTakenFails)
{
    AcceptQueue queue;
    const QuitAtEnd quit;
    const unsigned short port = Listen(queue);
    EXPECT_FALSE(NET_SOCKET_StartListen(port, &queue, 0, true));
    TcpAcceptor other;
    EXPECT_FALSE(NET_SOCKET_StartListen(other.Port(), &queue, 0, true));
    EXPECT_FALSE(NET_SOCKET_StartListen(0, nullptr, 0, true));
}

TEST_F(NetSocketListen, PortOfAnUnknownObserverIsZero)
{
    AcceptQueue queue;
    EXPECT_EQ(0, NET_SOCKET_GetListenPort(&queue));
}

TEST_F(NetSocketListen, StoppedPortRefusesAndCanBeOpenedAgainAtOnce)
{
    AcceptQueue queue;
    const QuitAtEnd quit;
    const unsigned short port = Listen(queue);
    TcpPeer peer = TcpPeer::Connect(port);
    const int handle = queue.Take().handle;
    EXPECT_TRUE(NET_SOCKET_StopListen(port));
    EXPECT_FALSE(NET_SOCKET_StopListen(port));
    EXPECT_FALSE(TcpPeer::Connect(port).IsOpen());
    EXPECT_TRUE(NET_SOCKET_StartListen(port, &queue, 0, true));
    EXPECT_TRUE(TcpPeer::Connect(port).IsOpen());
    EXPECT_GT(queue.Take().handle, 0);

    // Accepted connections stay.
    EXPECT_TRUE(SendAll(handle, "still here"));
    EXPECT_EQ("still here", peer.Read(10));
}

TEST_F(NetSocketListen, EightSilentPeersDelayNeitherTheirPortNorAnother)
{
    WaitingObserver waiting;
    AcceptQueue queue;
    const QuitAtEnd quit;
    const unsigned short waitingPort = Listen(waiting);
    const unsigned short otherPort = Listen(queue);
    std::vector<TcpPeer> peers;
    for (int i = 0; i < 8; ++i)
    {
        peers.push_back(TcpPeer::Connect(waitingPort));
    }
    EXPECT_TRUE(Eventually([&] { return waiting.m_entered == 8; }));
    peers.push_back(TcpPeer::Connect(waitingPort));
    EXPECT_TRUE(Eventually([&] { return waiting.m_entered == 9; }));
    peers.push_back(TcpPeer::Connect(otherPort));
    EXPECT_GT(queue.Take().handle, 0);
    EXPECT_EQ(0, waiting.m_left);
    waiting.m_mayLeave.Open();
    EXPECT_TRUE(NET_SOCKET_StopListen(waitingPort));
}

// The thread that was overtaken in a slow callback comes back as a spare one; nothing is lost on the way.
TEST_F(NetSocketListen, SlowAndShortCallbacksTakeTurns)
{
    class Mixed : public AcceptQueue
    {
    public:
        void OnAcceptCreateSocket(int handle, unsigned short port, unsigned int address) override
        {
            if (++m_calls % 50 == 0)
            {
                std::this_thread::sleep_for(std::chrono::milliseconds(10)); // the slow callback
            }
            AcceptQueue::OnAcceptCreateSocket(handle, port, address);
        }

    private:
        std::atomic<int> m_calls{0};
    } mixed;
    const QuitAtEnd quit;
    const unsigned short port = Listen(mixed);
    for (int i = 0; i < 1000; ++i)
    {
        TcpPeer peer = TcpPeer::Connect(port);
        const int handle = mixed.Take().handle;
        ASSERT_GT(handle, 0);
        EXPECT_TRUE(SendAll(handle, "x"));
        EXPECT_EQ("x", peer.Read(1));
        NET_SOCKET_DestroyHNetCommunication(handle);
    }
}

TEST_F(NetSocketListen, AtMostSixteenCallbacksOfAPortRunAtOnce)
{
    WaitingObserver waiting;
    const QuitAtEnd quit;
    const unsigned short port = Listen(waiting);
    std::vector<TcpPeer> peers;
    for (int i = 0; i < 40; ++i)
    {
        peers.push_back(TcpPeer::Connect(port));
        EXPECT_TRUE(peers.back().IsOpen());
    }
    EXPECT_TRUE(Eventually([&] { return waiting.m_entered == 16; }));
    EXPECT_EQ(16, waiting.m_entered);
    waiting.m_mayLeave.Open();
    EXPECT_TRUE(Eventually([&] { return waiting.m_left == 40; }));
}

/// Counts the connections that are open at once.
class CountingObserver : public AcceptQueue
{
public:
    void OnAcceptCreateSocket(int handle, unsigned short port, unsigned int address) override
    {
        const int open = ++m_open;
        int most = m_most;
        while (open > most && !m_most.compare_exchange_weak(most, open))
        {
        }
        AcceptQueue::OnAcceptCreateSocket(handle, port, address);
    }

    std::atomic<int> m_open{0};
    std::atomic<int> m_most{0};
};

TEST_F(NetSocketListen, AtMost256ConnectionsAreOpenAndTheRestIsServedInTurn)
{
    CountingObserver counting;
    const QuitAtEnd quit;
    const unsigned short port = Listen(counting);
    std::vector<TcpPeer> peers;
    for (int i = 0; i < 300; ++i)
    {
        peers.push_back(TcpPeer::Connect(port));
        ASSERT_TRUE(peers.back().IsOpen());
    }
    EXPECT_TRUE(Eventually([&] { return counting.m_open == 256; }));
    for (int i = 0; i < 300; ++i)
    {
        const int handle = counting.Take().handle;
        ASSERT_GT(handle, 0);
        --counting.m_open;
        NET_SOCKET_DestroyHNetCommunication(handle);
    }
    EXPECT_EQ(256, counting.m_most);
}

TEST_F(NetSocketListen, StopWaitsForARunningCallback)
{
    WaitingObserver waiting;
    const QuitAtEnd quit;
    const unsigned short port = Listen(waiting);
    TcpPeer peer = TcpPeer::Connect(port);
    EXPECT_TRUE(Eventually([&] { return waiting.m_entered == 1; }));
    int leftWhenStopped = 0;
    std::thread stopper(
        [&]
        {
            NET_SOCKET_StopListen(port);
            leftWhenStopped = waiting.m_left;
        });
    // Once the port refuses, the stop is under way.
    EXPECT_TRUE(Eventually([&] { return !TcpPeer::Connect(port).IsOpen(); }));
    waiting.m_mayLeave.Open();
    stopper.join();
    EXPECT_EQ(waiting.m_entered, leftWhenStopped);
}

/// Stops a port from within its callback, which goes on behind that.
class StoppingObserver : public CListenSocketObserver
{
public:
    void OnAcceptCreateSocket(int, unsigned short port, unsigned int) override
    {
        ++m_entered;
        m_result = NET_SOCKET_StopListen(m_other != 0 ? m_other : port);
        m_done.Open();
        if (m_staysUntilQuit)
        {
            EXPECT_TRUE(Eventually([] { return NET_SOCKET_AddConnect(0, "", 0) == 0; }));
        }
        ++m_left;
    }

    unsigned short m_other = 0;
    bool m_staysUntilQuit = false;
    std::atomic<bool> m_result{false};
    std::atomic<int> m_entered{0};
    std::atomic<int> m_left{0};
    Gate m_done;
};

TEST_F(NetSocketListen, CallbackMayStopItsOwnPort)
{
    StoppingObserver observer;
    AcceptQueue queue;
    const QuitAtEnd quit;
    const unsigned short port = Listen(observer);
    TcpPeer peer = TcpPeer::Connect(port);
    observer.m_done.Await();
    EXPECT_TRUE(observer.m_result);
    EXPECT_FALSE(TcpPeer::Connect(port).IsOpen());
    EXPECT_TRUE(NET_SOCKET_StartListen(port, &queue, 0, true));
}

TEST_F(NetSocketListen, QuitWaitsForACallbackThatStoppedItsOwnPort)
{
    StoppingObserver observer;
    observer.m_staysUntilQuit = true;
    TcpPeer peer = TcpPeer::Connect(Listen(observer));
    observer.m_done.Await();
    NET_SOCKET_Quit();
    EXPECT_EQ(1, observer.m_left);
}

TEST_F(NetSocketListen, CallbacksOfTwoPortsMayStopEachOther)
{
    StoppingObserver first;
    StoppingObserver second;
    first.m_staysUntilQuit = true;
    second.m_staysUntilQuit = true;
    first.m_other = Listen(second);
    second.m_other = Listen(first);
    TcpPeer onFirst = TcpPeer::Connect(second.m_other);
    TcpPeer onSecond = TcpPeer::Connect(first.m_other);
    // Whichever runs first may end the other before its callback begins: at least one stop succeeds.
    EXPECT_TRUE(Eventually([&] { return first.m_done.IsOpen() || second.m_done.IsOpen(); }));
    NET_SOCKET_Quit();
    EXPECT_TRUE(first.m_result || second.m_result);
    EXPECT_EQ(first.m_entered, first.m_left);
    EXPECT_EQ(second.m_entered, second.m_left);
}

#ifndef __SANITIZE_ADDRESS__ // the sanitizer opens a pipe to check a pointer, and takes a failure for a bad pointer

/// The process's limit of descriptors, for as long as it lives.
class DescriptorLimit
{
public:
    explicit DescriptorLimit(rlim_t limit)
    {
        getrlimit(RLIMIT_NOFILE, &m_before);
        const rlimit lower = {limit, m_before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &lower);
    }
    ~DescriptorLimit() { setrlimit(RLIMIT_NOFILE, &m_before); }
    DescriptorLimit(const DescriptorLimit&) = delete;
    DescriptorLimit& operator=(const DescriptorLimit&) = delete;

private:
    rlimit m_before{};
};

/// Sockets that are made before descriptors run out, and connected afterwards.
std::vector<TcpPeer> MakeUnconnected(int count)
{
    std::vector<TcpPeer> peers;
    for (int i = 0; i < count; ++i)
    {
        peers.emplace_back(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    }
    return peers;
}

void ConnectAll(std::vector<TcpPeer>& peers, unsigned short port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    for (TcpPeer& peer : peers)
    {
        EXPECT_EQ(0, connect(peer.Descriptor(), reinterpret_cast<sockaddr*>(&address), sizeof(address)));
    }
}

/// Takes connections until one brings the text.
bool IsServed(AcceptQueue& queue, const std::string& text)
{
    for (int handle = queue.Take().handle; handle > 0; handle = queue.Take().handle)
    {
        char buffer[16];
        bool broken = false;
        if (NET_SOCKET_WaitRecv(handle, 100) &&
            NET_SOCKET_Recv_Immediate(handle, buffer, sizeof(buffer), &broken) == static_cast<int>(text.size()))
        {
            return true;
        }
    }
    return false;
}

TEST_F(NetSocketListen, WithoutDescriptorsPeersAreClosedAndLaterOnesAreServed)
{
    AcceptQueue queue;
    const QuitAtEnd quit;
    const unsigned short port = Listen(queue);
    TcpPeer first = TcpPeer::Connect(port);
    EXPECT_GT(queue.Take().handle, 0);
    std::vector<TcpPeer> peers = MakeUnconnected(6);
    {
        const DescriptorLimit limit(64);
        std::vector<TcpPeer> fillers;
        do
        {
            fillers.emplace_back(dup(0));
        } while (fillers.back().IsOpen());

        // A thread in accept has its descriptor already; the peers behind find none.
        ConnectAll(peers, port);
        const auto closedPeers = [&peers]
        {
            int closed = 0;
            char byte;
            for (const TcpPeer& peer : peers)
            {
                closed += recv(peer.Descriptor(), &byte, 1, MSG_PEEK | MSG_DONTWAIT) == 0 ? 1 : 0;
            }
            return closed;
        };
        EXPECT_TRUE(Eventually([&] { return closedPeers() >= 4; }));
    }
    TcpPeer later = TcpPeer::Connect(port);
    EXPECT_TRUE(later.Send("x"));
    EXPECT_TRUE(IsServed(queue, "x"));
}

TEST_F(NetSocketListen, WithoutEvenAReserveDescriptorPeersWait)
{
    AcceptQueue queue;
    const QuitAtEnd quit;
    const unsigned short port = Listen(queue);
    TcpPeer first = TcpPeer::Connect(port);
    EXPECT_GT(queue.Take().handle, 0);
    std::vector<TcpPeer> peers = MakeUnconnected(6);
    {
        const DescriptorLimit limit(3); // lower than every descriptor in use
        ConnectAll(peers, port);
    }
    for (TcpPeer& peer : peers)
    {
        EXPECT_TRUE(peer.Send("x"));
    }
    EXPECT_TRUE(IsServed(queue, "x"));
}

#endif

TEST_F(NetSocketListen, ThousandsOfConnectsAndDisconnects)
{
    AcceptQueue queue;
    const QuitAtEnd quit;
    const unsigned short port = Listen(queue);
    for (int i = 0; i < 3000; ++i)
    {
        TcpPeer peer = TcpPeer::Connect(port);
        ASSERT_TRUE(peer.IsOpen());
        if (i % 3 == 0)
        {
            peer.Reset();
        }
        else if (i % 3 == 1)
        {
            peer.Close();
        }
        NET_SOCKET_DestroyHNetCommunication(queue.Take().handle);
    }
}

} // namespace
