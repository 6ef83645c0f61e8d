#include "PFMulticastSocket.h"

#include "NetworkNamespace.h"

#include <cstring>

#include <arpa/inet.h>
#include <fcntl.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace
{

constexpr const char* GROUP = "239.255.255.250";

class PFMulticastSocket : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!CNetworkNamespace::Enter() || !CNetworkNamespace::AddInterface("eth0", "10.1.0.5/24"))
        {
            GTEST_SKIP() << "the kernel does not allow a network namespace here";
        }
        m_socket = socket(AF_INET, SOCK_DGRAM, 0);
    }
    void TearDown() override
    {
        if (m_socket != -1)
        {
            close(m_socket);
        }
    }

    /// Whether the socket's number is still an open descriptor; a closed one is forgotten.
    bool IsOpen()
    {
        const bool isOpen = fcntl(m_socket, F_GETFD) != -1;
        m_socket = isOpen ? m_socket : -1;
        return isOpen;
    }

    int m_socket = -1;
};

TEST_F(PFMulticastSocket, CreateBindsToTheInterface)
{
    int made = -1;
    ASSERT_EQ(0, CPFMulticastSocket::Create_UDPSocket(made, "eth0", 1));
    char device[IFNAMSIZ] = {};
    socklen_t size = sizeof(device);
    getsockopt(made, SOL_SOCKET, SO_BINDTODEVICE, device, &size);
    EXPECT_STREQ("eth0", device);
    int reuse = 0;
    size = sizeof(reuse);
    getsockopt(made, SOL_SOCKET, SO_REUSEADDR, &reuse, &size);
    EXPECT_EQ(1, reuse);
    close(made);
}

TEST_F(PFMulticastSocket, CreateOnAnUnknownInterfaceLeavesNoSocket)
{
    int made = 0;
    EXPECT_EQ(-1, CPFMulticastSocket::Create_UDPSocket(made, "eth7", 1));
    EXPECT_EQ(-1, made);
}

TEST_F(PFMulticastSocket, SelectTellsThatBytesAreThere)
{
    ASSERT_EQ(0, CPFMulticastSocket::Multicast_PrepareRecvSocket(m_socket, 0, 4711));
    fd_set set;
    timeval none = {0, 0};
    EXPECT_EQ(0, CPFMulticastSocket::Select_Recv(m_socket, set, &none));

    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(4711);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ASSERT_EQ(3, sendto(m_socket, "abc", 3, 0, reinterpret_cast<const sockaddr*>(&address), sizeof(address)));
    EXPECT_EQ(1, CPFMulticastSocket::Select_Recv(m_socket, set, nullptr));
    EXPECT_TRUE(FD_ISSET(m_socket, &set));
    char buffer[8] = {};
    EXPECT_EQ(3, CPFMulticastSocket::Multicast_ReceiveFrom(m_socket, 0, 0, buffer, sizeof(buffer)));
    EXPECT_STREQ("abc", buffer);
}

TEST_F(PFMulticastSocket, SelectRefusesWhatNoSetCanHold)
{
    fd_set set;
    timeval none = {0, 0};
    EXPECT_EQ(-1, CPFMulticastSocket::Select_Recv(-1, set, &none));
    EXPECT_EQ(-1, CPFMulticastSocket::Select_Recv(FD_SETSIZE, set, &none));
}

TEST_F(PFMulticastSocket, ShutdownClosesAndForgets)
{
    int closed = m_socket;
    CPFMulticastSocket::Shutdown_Socket(closed);
    EXPECT_EQ(-1, closed);
    EXPECT_FALSE(IsOpen());
    CPFMulticastSocket::Shutdown_Socket(closed); // does nothing
    EXPECT_EQ(-1, closed);
}

TEST_F(PFMulticastSocket, NonBlockKeepsTheOtherFlags)
{
    fcntl(m_socket, F_SETFL, O_APPEND);
    EXPECT_TRUE(CPFMulticastSocket::SetNonBlock(m_socket));
    EXPECT_EQ(O_NONBLOCK | O_APPEND, fcntl(m_socket, F_GETFL) & (O_NONBLOCK | O_APPEND));
    int none = -1;
    EXPECT_FALSE(CPFMulticastSocket::SetNonBlock(none));
}

TEST_F(PFMulticastSocket, SendSocketUsesTheInterface)
{
    ASSERT_EQ(0, CPFMulticastSocket::Multicast_PrepareSendSocket(m_socket, inet_addr("10.1.0.5")));
    in_addr interface {
    };
    socklen_t size = sizeof(interface);
    getsockopt(m_socket, IPPROTO_IP, IP_MULTICAST_IF, &interface, &size);
    EXPECT_STREQ("10.1.0.5", inet_ntoa(interface));
}

TEST_F(PFMulticastSocket, SendSocketOfAForeignAddressIsClosed)
{
    EXPECT_EQ(-1, CPFMulticastSocket::Multicast_PrepareSendSocket(m_socket, inet_addr("10.9.9.9")));
    EXPECT_FALSE(IsOpen());
}

TEST_F(PFMulticastSocket, ReceiveSocketOfATakenPortIsClosed)
{
    int first = socket(AF_INET, SOCK_DGRAM, 0);
    ASSERT_EQ(0, CPFMulticastSocket::Multicast_PrepareRecvSocket(first, 0, 4711));
    EXPECT_EQ(-1, CPFMulticastSocket::Multicast_PrepareRecvSocket(m_socket, 0, 4711));
    EXPECT_FALSE(IsOpen());
    close(first);
}

TEST_F(PFMulticastSocket, MembershipIsTakenAndGivenBackOnce)
{
    const unsigned int group = inet_addr(GROUP);
    const unsigned int nic = inet_addr("10.1.0.5");
    EXPECT_EQ(-1, CPFMulticastSocket::Multicast_DropMemberShip(m_socket, group, nic));
    EXPECT_EQ(0, CPFMulticastSocket::Multicast_AddMemberShip(m_socket, group, nic));
    EXPECT_EQ(0, CPFMulticastSocket::Multicast_DropMemberShip(m_socket, group, nic));
    EXPECT_EQ(-1, CPFMulticastSocket::Multicast_DropMemberShip(m_socket, group, nic));
}

TEST_F(PFMulticastSocket, AllMultiIsSwitchedWithoutTouchingOtherFlags)
{
    ifreq request{};
    std::strcpy(request.ifr_name, "eth0");
    EXPECT_EQ(0, CPFMulticastSocket::Multicast_SetNIC_AllMulti(m_socket, "eth0", true));
    ioctl(m_socket, SIOCGIFFLAGS, &request);
    EXPECT_EQ(IFF_ALLMULTI | IFF_UP, request.ifr_flags & (IFF_ALLMULTI | IFF_UP));
    EXPECT_EQ(0, CPFMulticastSocket::Multicast_SetNIC_AllMulti(m_socket, "eth0", false));
    ioctl(m_socket, SIOCGIFFLAGS, &request);
    EXPECT_EQ(IFF_UP, request.ifr_flags & (IFF_ALLMULTI | IFF_UP));
    EXPECT_EQ(-1, CPFMulticastSocket::Multicast_SetNIC_AllMulti(m_socket, "eth7", true));
}

} // namespace
