#include "LocalPorts.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

constexpr unsigned short FIRST_FREE_PORT = 1024;
constexpr const char* STATE_ESTABLISHED = "01";

sockaddr_in Address(in_addr_t host, unsigned short port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(host);
    address.sin_port = htons(port);
    return address;
}

/// A TCP socket that is closed when it goes.
class CSocket
{
public:
    CSocket() : m_fd(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {}
    ~CSocket()
    {
        if (m_fd >= 0)
        {
            close(m_fd);
        }
    }
    CSocket(const CSocket&) = delete;
    CSocket& operator=(const CSocket&) = delete;

    int Fd() const { return m_fd; }

private:
    const int m_fd;
};

} // namespace

bool IsPortFree(unsigned short port, std::string& why)
{
    const CSocket probe;
    const int on = 1;
    const sockaddr_in address = Address(INADDR_ANY, port);
    // As a server does it: connections of an earlier run that still fade away do not take the port.
    const bool free = setsockopt(probe.Fd(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on)) == 0 &&
                      bind(probe.Fd(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0 &&
                      listen(probe.Fd(), 1) == 0;
    if (!free)
    {
        why = std::strerror(errno);
    }
    return free;
}

bool IsPrivileged(unsigned short port)
{
    const CSocket probe;
    const sockaddr_in address = Address(INADDR_ANY, port);
    return port < FIRST_FREE_PORT &&
           bind(probe.Fd(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 && errno == EACCES;
}

bool DoesPortAnswer(unsigned short port)
{
    const CSocket probe;
    const sockaddr_in address = Address(INADDR_LOOPBACK, port);
    return connect(probe.Fd(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
}

unsigned int CountConnections(unsigned short port)
{
    unsigned int count = 0;
    for (const char* path : {"/proc/self/net/tcp", "/proc/self/net/tcp6"})
    {
        std::ifstream table(path);
        count += CountConnections(table, port);
    }
    return count;
}

unsigned int CountConnections(std::istream& table, unsigned short port)
{
    unsigned int count = 0;
    std::string line;
    while (std::getline(table, line))
    {
        // Number of the row, local address:port, remote address:port, state; all but the first in hexadecimal.
        std::istringstream row(line);
        std::string number;
        std::string local;
        std::string remote;
        std::string state;
        row >> number >> local >> remote >> state;
        const std::size_t colon = local.find(':');
        const bool ours = colon != std::string::npos && std::strtoul(local.c_str() + colon + 1, nullptr, 16) == port;
        count += ours && state == STATE_ESTABLISHED ? 1 : 0;
    }
    return count;
}
