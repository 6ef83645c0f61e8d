// NetSocketConnectTest.cpp: outgoing connections.
#include "NetSocketFixture.h"

#include <thread>

namespace
{

using NetSocketConnect = NetSocketFixture;

int ResultOf(int handle, unsigned int timeoutMs)
{
    int result = 12345;
    EXPECT_TRUE(NET_SOCKET_PopConnectResult(handle, result, timeoutMs));
    return result;
}

TEST_F(NetSocketConnect, ConnectsSendsAndReceives)
{
    TcpAcceptor acceptor;
    const int handle = NET_SOCKET_AddConnect(0, "127.0.0.1", acceptor.Port());
    ASSERT_GT(handle, 0);
    TcpPeer peer = acceptor.Accept();
    EXPECT_GT(ResultOf(handle, 10000), 0);
    EXPECT_TRUE(SendAll(handle, "hello"));
    EXPECT_EQ("hello", peer.Read(5));
    peer.Send("world");
    EXPECT_EQ("world", RecvAll(handle, 5));
    sockaddr_in address{};
    EXPECT_TRUE(NET_SOCKET_GetRemoteIP(handle, address));
    EXPECT_EQ(htons(acceptor.Port()), address.sin_port);
}

TEST_F(NetSocketConnect, ConnectSendDestroyInARowDelivers)
{
    TcpAcceptor acceptor;
    const int handle = NET_SOCKET_AddConnect(0, "127.0.0.1", acceptor.Port());
    EXPECT_TRUE(SendAll(handle, "alarm"));
    NET_SOCKET_DestroyHNetCommunication(handle);
    EXPECT_EQ("alarm", acceptor.Accept().ReadAll());
}

TEST_F(NetSocketConnect, ConnectSendDestroyDeliversAMegabyteToASlowReader)
{
    TcpAcceptor acceptor;
    const std::string block(1024 * 1024, 'x');
    std::string received;
    std::thread reader([&] { received = acceptor.Accept().ReadAll(); });
    const int handle = NET_SOCKET_AddConnect(0, "127.0.0.1", acceptor.Port());
    EXPECT_TRUE(SendAll(handle, block));
    NET_SOCKET_DestroyHNetCommunication(handle);
    reader.join();
    EXPECT_TRUE(received == block) << received.size();
}

TEST_F(NetSocketConnect, TextThatIsNoAddressFailsBehindAPositiveHandle)
{
    for (const char* text : {"", "camera.local", "1.2.3", "256.1.1.1", "1.2.3.4 "})
    {
        const int handle = NET_SOCKET_AddConnect(0, text, 80);
        ASSERT_GT(handle, 0) << text;
        EXPECT_LT(ResultOf(handle, 60000), 0) << text;
        bool broken = false;
        EXPECT_LE(NET_SOCKET_Send_Immediate(handle, "x", 1, broken), 0);
        EXPECT_TRUE(broken);
        broken = false;
        char buffer[4];
        EXPECT_LE(NET_SOCKET_Recv_Immediate(handle, buffer, sizeof(buffer), &broken), 0);
        EXPECT_TRUE(broken);
        EXPECT_TRUE(NET_SOCKET_WaitRecv(handle, 60000));
        sockaddr_in address{};
        EXPECT_FALSE(NET_SOCKET_GetRemoteIP(handle, address));
        NET_SOCKET_DestroyHNetCommunication(handle);
    }
    EXPECT_GT(NET_SOCKET_AddConnect(0, nullptr, 80), 0);
}

TEST_F(NetSocketConnect, RefusedConnectFailsAtTheFirstSend)
{
    const int handle = NET_SOCKET_AddConnect(0, "127.0.0.1", FreePort());
    ASSERT_GT(handle, 0);
    bool broken = false;
    EXPECT_LE(NET_SOCKET_Send_Immediate(handle, "x", 1, broken), 0);
    EXPECT_TRUE(broken);
    EXPECT_LT(ResultOf(handle, 0), 0);
}

TEST_F(NetSocketConnect, ResultIsZeroWhileTheConnectIsUnderWay)
{
    StalledPort stalled;
    const int handle = NET_SOCKET_AddConnect(0, "127.0.0.1", stalled.Port());
    EXPECT_EQ(0, ResultOf(handle, 0));
    const Stopwatch watch;
    EXPECT_EQ(0, ResultOf(handle, 30));
    EXPECT_GE(watch.ElapsedMs(), 30);
    char buffer[4];
    bool broken = false;
    EXPECT_EQ(0, NET_SOCKET_Recv_Immediate(handle, buffer, sizeof(buffer), &broken));
    EXPECT_FALSE(broken);
}

// As an alarm is pushed to a server that is switched off: the caller is free after a second.
TEST_F(NetSocketConnect, SendsGiveAStalledConnectUpAfterASecond)
{
    StalledPort stalled;
    const Stopwatch watch;
    const int handle = NET_SOCKET_AddConnect(0, "127.0.0.1", stalled.Port());
    bool broken = false;
    for (int attempt = 0; attempt < 41 && !broken; ++attempt)
    {
        EXPECT_EQ(0, NET_SOCKET_Send_Immediate(handle, "x", 1, broken));
    }
    NET_SOCKET_DestroyHNetCommunication(handle);
    EXPECT_TRUE(broken);
    EXPECT_GE(watch.ElapsedMs(), 1000);
    EXPECT_LT(watch.ElapsedMs(), 2000);
}

TEST_F(NetSocketConnect, GivenUpConnectHasFailedAndKeepsItsHandle)
{
    StalledPort stalled;
    const int handle = NET_SOCKET_AddConnect(0, "127.0.0.1", stalled.Port());
    std::thread waiter(
        [handle]
        {
            int result = 0;
            EXPECT_TRUE(NET_SOCKET_PopConnectResult(handle, result, 60000));
            EXPECT_LT(result, 0);
        });
    NET_SOCKET_DelConnect(handle);
    waiter.join();
    EXPECT_LT(ResultOf(handle, 0), 0);
    NET_SOCKET_DestroyHNetCommunication(handle);
}

TEST_F(NetSocketConnect, GivingUpAnEstablishedConnectionChangesNothing)
{
    TcpAcceptor acceptor;
    const int handle = NET_SOCKET_AddConnect(0, "127.0.0.1", acceptor.Port());
    EXPECT_GT(ResultOf(handle, 10000), 0);
    NET_SOCKET_DelConnect(handle);
    EXPECT_TRUE(SendAll(handle, "request"));
    NET_SOCKET_DestroyHNetCommunication(handle);
    EXPECT_EQ("request", acceptor.Accept().ReadAll());
}

TEST_F(NetSocketConnect, DestroyOfAStalledConnectWakesItsSender)
{
    StalledPort stalled;
    const int handle = NET_SOCKET_AddConnect(0, "127.0.0.1", stalled.Port());
    std::thread sender(
        [handle]
        {
            bool broken = false;
            EXPECT_EQ(0, NET_SOCKET_Send_Immediate(handle, "x", 1, broken));
            EXPECT_TRUE(broken);
        });
    NET_SOCKET_DestroyHNetCommunication(handle);
    sender.join();
}

} // namespace
