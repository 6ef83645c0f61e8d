// NetSocketConnectionTest.cpp: reading, sending and ending of accepted connections.
#include "Connection.h"
#include "NetSocketFixture.h"
#include "SocketWait.h"

#include <atomic>
#include <dirent.h>
#include <memory>
#include <thread>
#include <vector>

#include <sys/socket.h>

namespace
{

using NetSocketConnection = NetSocketPair;

int CountOpenDescriptors()
{
    int count = 0;
    DIR* directory = opendir("/proc/self/fd");
    while (readdir(directory) != nullptr)
    {
        ++count;
    }
    closedir(directory);
    return count;
}

TEST_F(NetSocketConnection, RecvOfNothingLeavesTheFlagAlone)
{
    char buffer[16];
    bool broken = false;
    EXPECT_EQ(0, NET_SOCKET_Recv_Immediate(m_handle, buffer, sizeof(buffer), &broken));
    EXPECT_FALSE(broken);
}

TEST_F(NetSocketConnection, RecvTakesNoMoreThanItsRoom)
{
    m_peer.Send("abcdef");
    ASSERT_TRUE(NET_SOCKET_WaitRecv(m_handle, 10000));
    char buffer[4] = {};
    bool broken = false;
    EXPECT_EQ(4, NET_SOCKET_Recv_Immediate(m_handle, buffer, 4, &broken));
    EXPECT_EQ("abcd", std::string(buffer, 4));
    EXPECT_EQ(2, NET_SOCKET_Recv_Immediate(m_handle, buffer, 4, &broken));
    EXPECT_EQ(0, NET_SOCKET_Recv_Immediate(m_handle, buffer, 0, &broken));
    EXPECT_EQ(0, NET_SOCKET_Recv_Immediate(m_handle, nullptr, 4, &broken));
    EXPECT_FALSE(broken);
}

// A client that sends its request and closes its sending side is still answered.
TEST_F(NetSocketConnection, DataAndEndAreToldSeparately)
{
    m_peer.Send("last words");
    m_peer.HalfClose();
    ASSERT_TRUE(NET_SOCKET_WaitRecv(m_handle, 10000));
    char buffer[64];
    bool broken = false;
    EXPECT_EQ(10, NET_SOCKET_Recv_Immediate(m_handle, buffer, sizeof(buffer), &broken));
    EXPECT_FALSE(broken);
    ASSERT_TRUE(NET_SOCKET_WaitRecv(m_handle, 10000));
    EXPECT_EQ(0, NET_SOCKET_Recv_Immediate(m_handle, buffer, sizeof(buffer), &broken));
    EXPECT_TRUE(broken);
    EXPECT_TRUE(SendAll(m_handle, "answer"));
    NET_SOCKET_DestroyHNetCommunication(m_handle);
    EXPECT_EQ("answer", m_peer.ReadAll());
}

TEST_F(NetSocketConnection, ResetSetsTheFlag)
{
    m_peer.Reset();
    ASSERT_TRUE(NET_SOCKET_WaitRecv(m_handle, 10000));
    char buffer[16];
    bool broken = false;
    EXPECT_LE(NET_SOCKET_Recv_Immediate(m_handle, buffer, sizeof(buffer), &broken), 0);
    EXPECT_TRUE(broken);
    broken = false;
    EXPECT_LE(NET_SOCKET_Send_Immediate(m_handle, "x", 1, broken), 0);
    EXPECT_TRUE(broken);
}

TEST_F(NetSocketConnection, WaitRecvEndsAfterItsTimeWithoutData)
{
    const Stopwatch watch;
    EXPECT_FALSE(NET_SOCKET_WaitRecv(m_handle, 30));
    EXPECT_GE(watch.ElapsedMs(), 30);
    EXPECT_FALSE(NET_SOCKET_WaitRecv(m_handle, 0));
}

TEST_F(NetSocketConnection, WaitRecvEndsAsSoonAsDataComes)
{
    const Stopwatch watch;
    std::thread sender([this] { m_peer.Send("x"); });
    EXPECT_TRUE(NET_SOCKET_WaitRecv(m_handle, 60000));
    sender.join();
    EXPECT_LT(watch.ElapsedMs(), 30000);
}

TEST_F(NetSocketConnection, WaitRecvIsEndedByDestroy)
{
    const Stopwatch watch;
    std::thread waiter(
        [this]
        {
            EXPECT_TRUE(NET_SOCKET_WaitRecv(m_handle, 60000));
            char buffer[16];
            bool broken = false;
            EXPECT_EQ(0, NET_SOCKET_Recv_Immediate(m_handle, buffer, sizeof(buffer), &broken));
            EXPECT_TRUE(broken);
        });
    NET_SOCKET_DestroyHNetCommunication(m_handle);
    waiter.join();
    EXPECT_LT(watch.ElapsedMs(), 30000);
}

TEST_F(NetSocketConnection, SendWaitsATenthOfASecondForAShutWindow)
{
    const std::string block(1024 * 1024, 'x');
    bool broken = false;
    int sent = 1;
    Stopwatch watch;
    while (sent > 0) // until both sides' buffers are full
    {
        watch.Restart();
        sent = NET_SOCKET_Send_Immediate(m_handle, block.data(), static_cast<int>(block.size()), broken);
    }
    EXPECT_EQ(0, sent);
    EXPECT_FALSE(broken);
    EXPECT_GE(watch.ElapsedMs(), 100);
    EXPECT_LT(watch.ElapsedMs(), 5000);
}

TEST_F(NetSocketConnection, LastBytesArriveWithTheEnd)
{
    bool broken = false;
    EXPECT_EQ(6, NET_SOCKET_Send_Last(m_handle, "answer", 6, broken));
    EXPECT_EQ(5, NET_SOCKET_Send_Last(m_handle, " last", 5, broken));
    EXPECT_FALSE(broken);
    NET_SOCKET_DestroyHNetCommunication(m_handle);
    EXPECT_EQ("answer last", m_peer.ReadAll());
    EXPECT_EQ(0, NET_SOCKET_Send_Last(m_handle, "x", 1, broken));
    EXPECT_TRUE(broken);
}

TEST_F(NetSocketConnection, SendOfNothingIsNothing)
{
    bool broken = false;
    EXPECT_EQ(0, NET_SOCKET_Send_Immediate(m_handle, "", 0, broken));
    EXPECT_EQ(0, NET_SOCKET_Send_Immediate(m_handle, nullptr, 5, broken));
    EXPECT_EQ(0, NET_SOCKET_Send_Immediate(m_handle, "x", -1, broken));
    EXPECT_FALSE(broken);
}

TEST_F(NetSocketConnection, EveryOperationOnAnUnknownHandleFails)
{
    const int stale = m_handle;
    NET_SOCKET_DestroyHNetCommunication(stale);
    for (const int handle : {stale, 0, -1, 4711, 0x7FFFFFFF})
    {
        char buffer[16];
        bool broken = false;
        EXPECT_LE(NET_SOCKET_Recv_Immediate(handle, buffer, sizeof(buffer), &broken), 0);
        EXPECT_TRUE(broken);
        broken = false;
        EXPECT_LE(NET_SOCKET_Send_Immediate(handle, "x", 1, broken), 0);
        EXPECT_TRUE(broken);
        EXPECT_LE(NET_SOCKET_Recv_Immediate(handle, buffer, sizeof(buffer), nullptr), 0);
        EXPECT_TRUE(NET_SOCKET_WaitRecv(handle, 60000));
        sockaddr_in address;
        address.sin_addr.s_addr = 1;
        EXPECT_FALSE(NET_SOCKET_GetRemoteIP(handle, address));
        EXPECT_EQ(0u, address.sin_addr.s_addr);
        int result = 0;
        EXPECT_FALSE(NET_SOCKET_PopConnectResult(handle, result, 60000));
        EXPECT_LT(result, 0);
        EXPECT_FALSE(NET_SOCKET_RegisterNode(handle, nullptr, nullptr, 1, 1));
        EXPECT_FALSE(NET_SOCKET_Start(handle));
        EXPECT_FALSE(NET_SOCKET_Stop(handle));
        EXPECT_FALSE(NET_SOCKET_UnRegisterNode(handle));
        NET_SOCKET_DelConnect(handle);
        NET_SOCKET_DestroyHNetCommunication(handle);
    }
}

TEST_F(NetSocketConnection, AddressIsWrittenAsDottedText)
{
    char text[16];
    NET_SOCKET_Inet_ntoa(htonl(0xC0A80001), text);
    EXPECT_STREQ("192.168.0.1", text);
    NET_SOCKET_Inet_ntoa(0xFFFFFFFF, text);
    EXPECT_STREQ("255.255.255.255", text);
}

// A plain close would reset the connection, since there is unread input, and the peer could lose the answer.
TEST_F(NetSocketConnection, DestroyDeliversTheAnswerInFrontOfUnreadInput)
{
    EXPECT_TRUE(m_peer.Send(std::string(40000, 'r')));
    EXPECT_TRUE(SendAll(m_handle, std::string(200000, 'a')));
    NET_SOCKET_DestroyHNetCommunication(m_handle);
    EXPECT_TRUE(m_peer.Send(std::string(10000, 'r')));
    bool reset = false;
    EXPECT_EQ(std::string(200000, 'a'), m_peer.ReadAll(&reset));
    EXPECT_FALSE(reset);
}

TEST_F(NetSocketConnection, DestroyDeliversToASlowReader)
{
    const std::string block(1024 * 1024, 'x');
    TcpPeer slow = TcpPeer::Connect(m_port, 4096);
    const int handle = m_queue.Take().handle;
    Gate sending;
    std::string received;
    std::thread reader(
        [&]
        {
            sending.Await();
            received = slow.ReadAll();
        });
    sending.Open();
    EXPECT_TRUE(SendAll(handle, block));
    NET_SOCKET_DestroyHNetCommunication(handle);
    reader.join();
    EXPECT_TRUE(received == block) << received.size();
}

TEST_F(NetSocketConnection, ClosedConnectionGoesWithItsPeer)
{
    const int before = CountOpenDescriptors();
    NET_SOCKET_DestroyHNetCommunication(m_handle);
    EXPECT_EQ("", m_peer.ReadAll());
    EXPECT_EQ(before, CountOpenDescriptors()); // it waits for the peer's end
    m_peer.Close();
    EXPECT_TRUE(Eventually([&] { return CountOpenDescriptors() == before - 2; }));
}

TEST_F(NetSocketConnection, PeerThatKeepsAClosedConnectionOpenHasASecond)
{
    const int before = CountOpenDescriptors();
    const Stopwatch watch;
    NET_SOCKET_DestroyHNetCommunication(m_handle);
    EXPECT_TRUE(Eventually([&] { return CountOpenDescriptors() == before - 1; }));
    EXPECT_GE(watch.ElapsedMs(), 1000);
    EXPECT_LT(watch.ElapsedMs(), 5000);
}

TEST_F(NetSocketConnection, PeerThatKeepsSendingIsCut)
{
    NET_SOCKET_DestroyHNetCommunication(m_handle);
    const std::string block(64 * 1024, 'x');
    EXPECT_TRUE(Eventually([&] { return !m_peer.Send(block); }));
}

TEST_F(NetSocketConnection, ClosedOneDropsWhatItsPeerSendsUpTo64KiB)
{
    int pair[2];
    ASSERT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, pair));
    CConnection connection(CFileDescriptor(pair[0]), sockaddr_in{}, std::make_shared<CQuitSignal>(), nullptr);
    const CFileDescriptor peer(pair[1]);
    ASSERT_TRUE(connection.Retire());
    const auto dropsAll = [&](std::size_t bytes)
    {
        const std::string data(bytes, 'x');
        EXPECT_EQ(static_cast<ssize_t>(bytes), send(peer.Get(), data.data(), bytes, MSG_NOSIGNAL));
        return !connection.Drain();
    };
    for (int kib = 0; kib < 63; ++kib)
    {
        ASSERT_TRUE(dropsAll(1024)) << kib;
    }
    EXPECT_TRUE(dropsAll(1023));
    EXPECT_FALSE(dropsAll(1));
}

TEST_F(NetSocketConnection, ClosedOnesWithoutTheirPeersEndAre256AtMost)
{
    AcceptQueue otherQueue; // a listener hands out 256
    const QuitAtEnd quit;
    const unsigned short otherPort = Listen(otherQueue);
    std::vector<TcpPeer> peers;
    std::vector<int> handles;
    for (int i = 0; i < 150; ++i)
    {
        peers.push_back(TcpPeer::Connect(m_port));
        handles.push_back(m_queue.Take().handle);
        peers.push_back(TcpPeer::Connect(otherPort));
        handles.push_back(otherQueue.Take().handle);
    }
    const int before = CountOpenDescriptors();
    const Stopwatch watch;
    for (const int handle : handles)
    {
        NET_SOCKET_DestroyHNetCommunication(handle);
    }
    EXPECT_TRUE(Eventually([&] { return CountOpenDescriptors() <= before - (300 - 256); }));
    EXPECT_LT(watch.ElapsedMs(), 1000); // then the time of all of them is over
}

TEST_F(NetSocketConnection, OperationsOnOtherThreadsSurviveDestroy)
{
    for (int round = 0; round < 100; ++round)
    {
        TcpPeer peer = TcpPeer::Connect(m_port);
        const int handle = m_queue.Take().handle;
        std::vector<std::thread> users;
        users.emplace_back(
            [handle]
            {
                bool broken = false;
                while (!broken)
                {
                    NET_SOCKET_Send_Immediate(handle, "abc", 3, broken);
                }
            });
        users.emplace_back(
            [handle]
            {
                bool broken = false;
                char buffer[16];
                while (!broken)
                {
                    NET_SOCKET_WaitRecv(handle, 1000);
                    NET_SOCKET_Recv_Immediate(handle, buffer, sizeof(buffer), &broken);
                }
            });
        users.emplace_back([&peer] { peer.Send("hello"); });
        EXPECT_EQ("abc", peer.Read(3));
        NET_SOCKET_DestroyHNetCommunication(handle);
        for (std::thread& user : users)
        {
            user.join();
        }
    }
}

} // namespace
