// NetSocketLifeTest.cpp: the service's start and end.
#include "NetSocketFixture.h"

#include <dirent.h>
#include <thread>

namespace
{

int CountEntries(const char* path)
{
    int count = 0;
    DIR* directory = opendir(path);
    while (readdir(directory) != nullptr)
    {
        ++count;
    }
    closedir(directory);
    return count;
}

TEST(NetSocketLife, QuitWithoutInitialIsFine)
{
    NET_SOCKET_Quit();
    NET_SOCKET_Quit();
}

TEST(NetSocketLife, InitialMayComeSeveralTimesAndOneQuitEndsAll)
{
    EXPECT_TRUE(NET_SOCKET_Initial(nullptr));
    EXPECT_TRUE(NET_SOCKET_Initial(nullptr));
    NET_SOCKET_Quit();
    EXPECT_LT(NET_SOCKET_AddConnect(0, "127.0.0.1", 80), 1);
}

TEST(NetSocketLife, EverythingFailsFastWhileTheServiceIsDown)
{
    AcceptQueue queue;
    char buffer[16];
    EXPECT_FALSE(NET_SOCKET_StartListen(0, &queue, 0, true));
    EXPECT_FALSE(NET_SOCKET_StopListen(80));
    EXPECT_LT(NET_SOCKET_AddConnect(0, "127.0.0.1", 80), 1);
    EXPECT_EQ(-1, NET_SOCKET_SimpleClientComm("127.0.0.1", 80, "x", 1, buffer, sizeof(buffer), "", 60000));
    bool broken = false;
    EXPECT_EQ(0, NET_SOCKET_Recv_Immediate(1, buffer, sizeof(buffer), &broken));
    EXPECT_TRUE(broken);
}

TEST(NetSocketLife, QuitEndsThreadsListenersAndConnections)
{
    // A first run, so that what stays for ever is there.
    ASSERT_TRUE(NET_SOCKET_Initial(nullptr));
    NET_SOCKET_Quit();
    const int threads = CountEntries("/proc/self/task");
    const int descriptors = CountEntries("/proc/self/fd");

    for (int round = 0; round < 20; ++round)
    {
        ASSERT_TRUE(NET_SOCKET_Initial(nullptr));
        AcceptQueue queue;
        ASSERT_TRUE(NET_SOCKET_StartListen(0, &queue, 0, true));
        const unsigned short port = NET_SOCKET_GetListenPort(&queue);
        TcpPeer peer = TcpPeer::Connect(port);
        const int accepted = queue.Take().handle;
        const int outgoing = NET_SOCKET_AddConnect(0, "127.0.0.1", port);
        EXPECT_GT(queue.Take().handle, 0);
        NET_SOCKET_Quit();

        EXPECT_FALSE(TcpPeer::Connect(port).IsOpen());
        EXPECT_EQ("", peer.ReadAll());
        for (const int handle : {accepted, outgoing})
        {
            bool broken = false;
            EXPECT_LE(NET_SOCKET_Send_Immediate(handle, "x", 1, broken), 0);
            EXPECT_TRUE(broken);
        }
    }
    // Not more: one of the first run may have been counted though it had ended.
    EXPECT_TRUE(Eventually([&] { return CountEntries("/proc/self/task") <= threads; }));
    EXPECT_EQ(descriptors, CountEntries("/proc/self/fd"));
}

TEST(NetSocketLife, HandlesOfAnEarlierRunStayStale)
{
    ASSERT_TRUE(NET_SOCKET_Initial(nullptr));
    const int old = NET_SOCKET_AddConnect(0, "", 0);
    NET_SOCKET_Quit();
    ASSERT_TRUE(NET_SOCKET_Initial(nullptr));
    int result = 0;
    EXPECT_FALSE(NET_SOCKET_PopConnectResult(old, result, 0));
    NET_SOCKET_Quit();
}

TEST(NetSocketLife, QuitWakesThoseWhoWait)
{
    ASSERT_TRUE(NET_SOCKET_Initial(nullptr));
    TcpAcceptor acceptor;
    StalledPort stalled;
    const int connected = NET_SOCKET_AddConnect(0, "127.0.0.1", acceptor.Port());
    TcpPeer peer = acceptor.Accept();
    const int connecting = NET_SOCKET_AddConnect(0, "127.0.0.1", stalled.Port());
    const Stopwatch watch;
    std::thread reader(
        [connected]
        {
            bool broken = false;
            char buffer[16];
            while (!broken)
            {
                NET_SOCKET_WaitRecv(connected, 60000);
                NET_SOCKET_Recv_Immediate(connected, buffer, sizeof(buffer), &broken);
            }
        });
    std::thread connector(
        [connecting]
        {
            int result = 0;
            NET_SOCKET_PopConnectResult(connecting, result, 60000);
        });
    std::thread client(
        [&stalled]
        {
            char buffer[16];
            EXPECT_EQ(-1, NET_SOCKET_SimpleClientComm("127.0.0.1", stalled.Port(), "x", 1, buffer, sizeof(buffer), "",
                                                      60000));
        });
    NET_SOCKET_Quit();
    reader.join();
    connector.join();
    client.join();
    EXPECT_LT(watch.ElapsedMs(), 30000);
}

TEST(NetSocketLife, QuitFinishesClosingsWithinASecond)
{
    ASSERT_TRUE(NET_SOCKET_Initial(nullptr));
    TcpAcceptor acceptor;
    const int handle = NET_SOCKET_AddConnect(0, "127.0.0.1", acceptor.Port());
    TcpPeer peer = acceptor.Accept();
    peer.Send("unread");
    bool broken = false;
    EXPECT_EQ(6, NET_SOCKET_Send_Immediate(handle, "answer", 6, broken));
    NET_SOCKET_DestroyHNetCommunication(handle);
    const Stopwatch watch;
    NET_SOCKET_Quit(); // the peer does not close
    EXPECT_LT(watch.ElapsedMs(), 3000);
    bool reset = false;
    EXPECT_EQ("answer", peer.ReadAll(&reset));
    EXPECT_FALSE(reset);
}

/// Answers with an endless text, to a peer that does not read.
class StallingObserver : public CListenSocketObserver
{
public:
    void OnAcceptCreateSocket(int handle, unsigned short, unsigned int) override
    {
        const std::string block(100000, 'x');
        bool broken = false;
        while (!broken)
        {
            m_stalled = NET_SOCKET_Send_Immediate(handle, block.data(), static_cast<int>(block.size()), broken) == 0;
        }
        NET_SOCKET_DestroyHNetCommunication(handle);
    }

    std::atomic<bool> m_stalled{false};
};

TEST(NetSocketLife, QuitEndsACallbackThatWaitsForAStalledPeer)
{
    ASSERT_TRUE(NET_SOCKET_Initial(nullptr));
    StallingObserver observer;
    ASSERT_TRUE(NET_SOCKET_StartListen(0, &observer, 0, true));
    TcpPeer peer = TcpPeer::Connect(NET_SOCKET_GetListenPort(&observer));
    EXPECT_TRUE(Eventually([&] { return observer.m_stalled.load(); }));
    NET_SOCKET_Quit();
}

TEST(NetSocketLife, QuitAndInitialOnSeveralThreads)
{
    std::thread threads[4];
    for (std::thread& thread : threads)
    {
        thread = std::thread(
            []
            {
                for (int i = 0; i < 25; ++i)
                {
                    NET_SOCKET_Initial(nullptr);
                    AcceptQueue queue;
                    NET_SOCKET_StartListen(0, &queue, 0, true);
                    NET_SOCKET_AddConnect(0, "127.0.0.1", 1);
                    NET_SOCKET_Quit();
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
}

} // namespace
