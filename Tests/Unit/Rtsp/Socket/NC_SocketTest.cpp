#include "NC_Socket.h"

#include "NetworkNamespace.h"
#include "Peer.h"
#include "ShareSDK.h"

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace
{

int OpenDescriptors()
{
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    return static_cast<int>(std::distance(begin(descriptors), end(descriptors)));
}

struct AddressCase
{
    const char* name;
    const char* text;
    bool good;
};

const AddressCase ADDRESS_CASES[] = {
    {"Plain", "192.168.1.20", true},
    {"Zeros", "0.0.0.0", true},
    {"Highest", "255.255.255.255", true},
    {"BlankBehind", "1.2.3.4 x", true},
    {"LeadingZeros", "001.002.003.004", true},
    {"TooHigh", "1.2.3.256", false},
    {"ThreeFields", "1.2.3", false},
    {"FiveFields", "1.2.3.4.5", false},
    {"EmptyField", "1..3.4", false},
    {"Letters", "1.2.3.x", false},
    {"TextBehind", "1.2.3.4x", false},
    {"Negative", "-1.2.3.4", false},
    {"Empty", "", false},
    {"LeadingBlank", " 1.2.3.4", false},
    {"ManyDigits", "9999999999999999999.1.1.1", false},
};

class NC_inet_aton_Text : public ::testing::TestWithParam<AddressCase>
{
};

TEST_P(NC_inet_aton_Text, IsJudged)
{
    EXPECT_EQ(GetParam().good ? 0 : -1, NC_inet_aton(GetParam().text, nullptr));
}

INSTANTIATE_TEST_SUITE_P(Cases, NC_inet_aton_Text, ::testing::ValuesIn(ADDRESS_CASES),
                         [](const auto& test) { return test.param.name; });

TEST(NC_Socket, AddressesAreInNetworkOrder)
{
    unsigned int ip = 0;
    ASSERT_EQ(0, NC_inet_aton("10.20.30.40", &ip));
    EXPECT_EQ(htonl(0x0A141E28), ip);
    EXPECT_EQ(ip, NC_inet_addr("10.20.30.40"));
    char text[16];
    NC_inet_ntoa(ip, text);
    EXPECT_STREQ("10.20.30.40", text);
}

TEST(NC_Socket, ABadAddressIsAllOnes)
{
    EXPECT_EQ(0xFFFFFFFFu, NC_inet_addr("10.20.30"));
    EXPECT_EQ(-1, NC_inet_aton(nullptr, nullptr));
}

class NC_Listener : public ::testing::Test
{
protected:
    NC_Listener()
    {
        NC_Init();
        sock = NC_CreateTCPSockAndListen(0, nullptr);
        NC_GetSockName(sock, static_cast<int*>(nullptr), &port);
    }
    ~NC_Listener() override
    {
        if (sock != -1)
            NC_CloseSocket(sock);
    }

    int sock = -1;
    unsigned short port = 0;
};

TEST_F(NC_Listener, AcceptTellsThePeer)
{
    const Peer peer(port);
    int ip = 0;
    unsigned short peerPort = 0;
    int accepted = NC_Accept(sock, &ip, &peerPort);
    ASSERT_GT(accepted, 0);
    EXPECT_EQ(static_cast<int>(htonl(INADDR_LOOPBACK)), ip);
    EXPECT_EQ(peer.LocalPort(), peerPort);
    char text[16];
    NC_GetPeerName(accepted, text, nullptr);
    EXPECT_STREQ("127.0.0.1", text);
    EXPECT_NE(0, fcntl(accepted, F_GETFL) & O_NONBLOCK);
    EXPECT_EQ(-1, NC_Recv(accepted, text, 1, 0));
    EXPECT_TRUE(NC_EWOULDBLOCK());
    NC_CloseSocket(accepted);
    EXPECT_EQ(-1, accepted);
}

TEST_F(NC_Listener, AcceptWithNobodyThereIsZero)
{
    EXPECT_EQ(0, NC_Accept(sock, nullptr, nullptr));
}

TEST_F(NC_Listener, AnUnknownInterfaceBindsToAny)
{
    int other = NC_CreateTCPSockAndListen(0, "nosuch0");
    ASSERT_NE(-1, other);
    int ip = -1;
    NC_GetSockName(other, &ip, nullptr);
    EXPECT_EQ(0, ip);
    NC_CloseSocket(other);
}

TEST_F(NC_Listener, APortInUseIsRefused)
{
    EXPECT_EQ(-1, NC_CreateTCPSockAndListen(port, nullptr));
}

// The listener would stay readable for ever if the connection were left in the queue.
TEST_F(NC_Listener, WithoutDescriptorsAConnectionIsTakenAndClosed)
{
    Peer peer(port);
    SHARESDK_AbnormalOutput("the log is open", __FILE__, __LINE__); // it cannot be opened later
    std::vector<int> taken;
    for (int descriptor = dup(0); descriptor != -1; descriptor = dup(0))
        taken.push_back(descriptor);
    ASSERT_EQ(EMFILE, errno);
    EXPECT_EQ(-1, NC_Accept(sock, nullptr, nullptr));
    pollfd listener{sock, POLLIN, 0};
    EXPECT_EQ(0, poll(&listener, 1, 0));
    for (const int descriptor : taken)
        close(descriptor);
    EXPECT_TRUE(peer.WaitClosed());
}

TEST_F(NC_Listener, FiveConnectionsMayWait)
{
    tcp_info info{};
    socklen_t length = sizeof(info);
    ASSERT_EQ(0, getsockopt(sock, IPPROTO_TCP, TCP_INFO, &info, &length));
    EXPECT_EQ(5u, info.tcpi_sacked); // of a listener: the backlog
}

// The error of the socket itself is told without an attempt to accept, which would be logged.
TEST(NC_Socket, AcceptOnASocketWithAPendingErrorFails)
{
    int sock = NC_CreateSocket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in closed{};
    closed.sin_family = AF_INET;
    closed.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    closed.sin_port = htons(FreePort());
    EXPECT_EQ(-1, connect(sock, reinterpret_cast<const sockaddr*>(&closed), sizeof(closed)));
    pollfd refused{sock, POLLOUT, 0};
    EXPECT_EQ(1, poll(&refused, 1, 5000));
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(-1, NC_Accept(sock, nullptr, nullptr));
    EXPECT_EQ("", ::testing::internal::GetCapturedStderr());
    EXPECT_EQ(-1, NC_Accept(sock, nullptr, nullptr)); // the error is gone, and so the accept fails
    NC_CloseSocket(sock);
}

TEST(NC_Socket, SocketsReuseTheirAddressAndDoNotWait)
{
    for (int sock : {NC_CreateSocket(AF_INET, SOCK_STREAM, 0), NC_UDP_CreateSocket()})
    {
        int reuses = 0;
        socklen_t length = sizeof(reuses);
        EXPECT_EQ(0, getsockopt(sock, SOL_SOCKET, SO_REUSEADDR, &reuses, &length));
        EXPECT_EQ(1, reuses);
        EXPECT_NE(0, fcntl(sock, F_GETFL) & O_NONBLOCK);
        NC_CloseSocket(sock);
    }
    EXPECT_EQ(-1, NC_CreateSocket(-1, SOCK_STREAM, 0));
}

TEST(NC_Socket, AListenerMayBelongToOneInterface)
{
    if (!CNetworkNamespace::Enter() || !CNetworkNamespace::AddInterface("eth7", "10.1.7.5/24"))
        GTEST_SKIP() << "no network of its own";
    int sock = NC_CreateTCPSockAndListen(0, "eth7");
    char ip[16];
    EXPECT_EQ(0, NC_GetSockName(sock, ip, nullptr));
    EXPECT_STREQ("10.1.7.5", ip);
    NC_CloseSocket(sock);
}

TEST(NC_Socket, OnlyAFullSocketAndASignalAreWaitedFor)
{
    for (const int error : {EAGAIN, EINTR})
    {
        errno = error;
        EXPECT_TRUE(NC_EWOULDBLOCK()) << error;
    }
    for (const int error : {0, EPIPE, ECONNRESET, ENOBUFS, EBADF})
    {
        errno = error;
        EXPECT_FALSE(NC_EWOULDBLOCK()) << error;
    }
}

TEST(NC_Socket, TheSignalOfABrokenConnectionIsIgnored)
{
    NC_Init();
    struct sigaction action = {};
    sigaction(SIGPIPE, nullptr, &action);
    EXPECT_EQ(SIG_IGN, action.sa_handler);
}

TEST(NC_Socket, SendingToAClosedPeerRaisesNoSignal)
{
    const auto before = std::signal(SIGPIPE, [](int) { FAIL(); });
    int pair[2];
    ASSERT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM, 0, pair));
    NC_CloseSocket(pair[1]);
    iovec byte{const_cast<char*>("x"), 1};
    EXPECT_EQ(-1, NC_Send(pair[0], "x", 1, 0));
    EXPECT_EQ(EPIPE, errno);
    EXPECT_EQ(-1, NC_SendBuffers(pair[0], &byte, 1));
    NC_CloseSocket(pair[0]);
    std::signal(SIGPIPE, before);
}

TEST(NC_Socket, WithoutAPeerItsNameIsEmpty)
{
    int sock = NC_CreateSocket(AF_INET, SOCK_STREAM, 0);
    int ip = 7;
    unsigned short port = 7;
    char text[16] = "7";
    EXPECT_EQ(-1, NC_GetPeerName(sock, &ip, &port));
    EXPECT_EQ(0, ip);
    EXPECT_EQ(0, port);
    EXPECT_EQ(-1, NC_GetPeerName(sock, text, nullptr));
    EXPECT_STREQ("0.0.0.0", text);
    NC_CloseSocket(sock);
}

TEST(NC_Udp, SendingWithoutASocketFails)
{
    EXPECT_EQ(-1, NC_UDP_Sendto(-1, "x", 1, htonl(INADDR_LOOPBACK), 9));
    const iovec datagrams[] = {{const_cast<char*>("x"), 1}, {const_cast<char*>("y"), 1}};
    EXPECT_EQ(NC_TRAIN_ERROR, NC_UDP_SendTrain(-1, datagrams, 2, 1, htonl(INADDR_LOOPBACK), 9));
}

TEST(NC_Udp, ADatagramIsWaitedFor)
{
    int sock = NC_UDP_CreateSocket();
    UdpPeer peer;
    EXPECT_EQ(0, NC_UDP_Sendto(sock, "hello", 5, htonl(INADDR_LOOPBACK), peer.Port()));
    unsigned short port = 0;
    NC_GetSockName(sock, static_cast<int*>(nullptr), &port);
    char buffer[16];
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(-1, NC_UDP_Recvfrom(sock, buffer, sizeof(buffer), nullptr, nullptr, 30));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(25));
    peer.SendTo(port, "answer");
    EXPECT_EQ(6, NC_UDP_Recvfrom(sock, buffer, sizeof(buffer), nullptr, nullptr, 5000));
    NC_CloseSocket(sock);
}

// Another thread may take the descriptor in the moment in which it is given up; here the limit is below it.
TEST_F(NC_Listener, TheReserveComesBackWhenDescriptorsAreThereAgain)
{
    Peer refused(port);
    Peer served(port);
    SHARESDK_AbnormalOutput("the log is open", __FILE__, __LINE__); // it cannot be opened later
    const int before = OpenDescriptors();
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit none = {3, limit.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    EXPECT_EQ(-1, NC_Accept(sock, nullptr, nullptr));
    setrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_EQ(before - 1, OpenDescriptors());
    int accepted = NC_Accept(sock, nullptr, nullptr);
    EXPECT_GT(accepted, 0);
    NC_CloseSocket(accepted);
    EXPECT_EQ(before, OpenDescriptors());
}

TEST(NC_Udp, SendsAndReceives)
{
    int sender = NC_UDP_CreateSocket();
    UdpPeer receiver;
    EXPECT_EQ(0, NC_UDP_Sendto(sender, "hello", 5, htonl(INADDR_LOOPBACK), receiver.Port()));
    EXPECT_EQ("hello", receiver.Read());
    unsigned short port = 0;
    NC_GetSockName(sender, static_cast<int*>(nullptr), &port);
    receiver.SendTo(port, "answer");
    char buffer[16];
    unsigned int ip = 0;
    unsigned short from = 0;
    EXPECT_EQ(6, NC_UDP_Recvfrom(sender, buffer, sizeof(buffer), &ip, &from, 1000));
    EXPECT_EQ(htonl(INADDR_LOOPBACK), ip);
    EXPECT_EQ(receiver.Port(), from);
    NC_CloseSocket(sender);
}

TEST(NC_Udp, NothingThereIsMinusOneWithAndWithoutWaiting)
{
    int sock = NC_UDP_CreateSocket();
    char buffer[16];
    EXPECT_EQ(-1, NC_UDP_Recvfrom(sock, buffer, sizeof(buffer), nullptr, nullptr, 0));
    EXPECT_EQ(-1, NC_UDP_Recvfrom(sock, buffer, sizeof(buffer), nullptr, nullptr, 1));
    NC_CloseSocket(sock);
    EXPECT_EQ(-3, NC_UDP_Recvfrom(sock, buffer, sizeof(buffer), nullptr, nullptr, 0));
}

TEST(NC_Udp, ATrainArrivesAsItsDatagrams)
{
    int sender = NC_UDP_CreateSocket();
    UdpPeer receiver;
    std::string first(100, '1');
    std::string second(100, '2');
    std::string third(40, '3');
    const iovec datagrams[] = {{first.data(), 100}, {second.data(), 100}, {third.data(), 40}};
    const NC_TRAIN_RESULT result = NC_UDP_SendTrain(sender, datagrams, 3, 100, htonl(INADDR_LOOPBACK), receiver.Port());
    if (result == NC_TRAIN_NOT_SUPPORTED)
        GTEST_SKIP() << "this kernel has no UDP segmentation offload";
    ASSERT_EQ(NC_TRAIN_SENT, result);
    EXPECT_EQ(first, receiver.Read());
    EXPECT_EQ(second, receiver.Read());
    EXPECT_EQ(third, receiver.Read());
    NC_CloseSocket(sender);
}

} // namespace
