#include "LocalPorts.h"

#include <gtest/gtest.h>

#include <sstream>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

/// A socket on a port of the kernel's choice, which no other test can get meanwhile.
class CBoundSocket
{
public:
    CBoundSocket() : m_fd(socket(AF_INET, SOCK_STREAM, 0))
    {
        const int on = 1;
        setsockopt(m_fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        bind(m_fd, reinterpret_cast<sockaddr*>(&address), sizeof(address));
        socklen_t length = sizeof(address);
        getsockname(m_fd, reinterpret_cast<sockaddr*>(&address), &length);
        m_port = ntohs(address.sin_port);
    }
    ~CBoundSocket() { close(m_fd); }
    CBoundSocket(const CBoundSocket&) = delete;
    CBoundSocket& operator=(const CBoundSocket&) = delete;
    void Listen() const { EXPECT_EQ(0, listen(m_fd, 4)); }
    unsigned short Port() const { return m_port; }

private:
    int m_fd;
    unsigned short m_port = 0;
};

int Connect(unsigned short port)
{
    const int fd = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(0, connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)));
    return fd;
}

} // namespace

TEST(LocalPorts, APortWithAServerIsNotFree)
{
    std::string why;
    const CBoundSocket server;
    server.Listen();
    EXPECT_FALSE(IsPortFree(server.Port(), why));
    EXPECT_EQ("Address already in use", why);
    EXPECT_TRUE(DoesPortAnswer(server.Port()));
}

TEST(LocalPorts, APortWithoutAServerIsFreeAndDoesNotAnswer)
{
    std::string why;
    const CBoundSocket reserved;
    EXPECT_TRUE(IsPortFree(reserved.Port(), why)) << why;
    EXPECT_FALSE(DoesPortAnswer(reserved.Port()));
}

TEST(LocalPorts, CountsTheConnectionsOfClients)
{
    const CBoundSocket listener;
    listener.Listen();
    EXPECT_EQ(0U, CountConnections(listener.Port()));
    const int first = Connect(listener.Port());
    const int second = Connect(listener.Port());
    EXPECT_EQ(2U, CountConnections(listener.Port()));
    close(first);
    close(second);
}

// 8554 is 216A: a listening row, a client's, the client's own end, one in TIME_WAIT, and one of port 8080.
TEST(LocalPorts, CountsEstablishedRowsOfThePortOnly)
{
    std::istringstream table(
        "  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid  timeout inode\n"
        "   0: 00000000:216A 00000000:0000 0A 00000000:00000000 00:00000000 00000000     0        0 1\n"
        "   1: 0100007F:216A 0100007F:C350 01 00000000:00000000 00:00000000 00000000     0        0 2\n"
        "   2: 0100007F:C350 0100007F:216A 01 00000000:00000000 00:00000000 00000000     0        0 3\n"
        "   3: 0100007F:216A 0100007F:C351 06 00000000:00000000 00:00000000 00000000     0        0 0\n"
        "   4: 0100007F:1F90 0100007F:C352 01 00000000:00000000 00:00000000 00000000     0        0 4\n"
        "   5: 00000000000000000000000001000000:216A 00000000000000000000000001000000:C353 01 0:0 00:0 0\n"
        "cut sho");
    EXPECT_EQ(2U, CountConnections(table, 8554));
}
