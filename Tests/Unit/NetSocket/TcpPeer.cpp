// TcpPeer.cpp: the other end of a connection, for tests.
#include "TcpPeer.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <thread>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace
{

constexpr timeval LIMIT = {10, 0};

sockaddr_in Loopback(unsigned short port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

unsigned short PortOf(int fd)
{
    sockaddr_in address{};
    socklen_t size = sizeof(address);
    getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size);
    return ntohs(address.sin_port);
}

bool ConnectTo(int fd, unsigned short port)
{
    const sockaddr_in address = Loopback(port);
    return connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
}

} // namespace

TcpPeer::TcpPeer(int fd) : m_fd(fd)
{
    if (fd != -1)
    {
        setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &LIMIT, sizeof(LIMIT));
        setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &LIMIT, sizeof(LIMIT));
    }
}

TcpPeer& TcpPeer::operator=(TcpPeer&& other) noexcept
{
    std::swap(m_fd, other.m_fd);
    return *this;
}

TcpPeer TcpPeer::Connect(unsigned short port, int receiveBufferBytes)
{
    TcpPeer peer(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (receiveBufferBytes > 0)
    {
        setsockopt(peer.m_fd, SOL_SOCKET, SO_RCVBUF, &receiveBufferBytes, sizeof(receiveBufferBytes));
    }
    if (!ConnectTo(peer.m_fd, port))
    {
        peer.Close();
    }
    return peer;
}

unsigned short TcpPeer::LocalPort() const
{
    return PortOf(m_fd);
}

bool TcpPeer::Send(const std::string& data)
{
    std::size_t sent = 0;
    while (sent < data.size())
    {
        const ssize_t count = send(m_fd, data.data() + sent, data.size() - sent, MSG_NOSIGNAL);
        if (count <= 0)
        {
            return false;
        }
        sent += static_cast<std::size_t>(count);
    }
    return true;
}

std::string TcpPeer::Read(std::size_t length)
{
    std::string data(length, '\0');
    std::size_t received = 0;
    while (received < length)
    {
        const ssize_t count = recv(m_fd, &data[received], length - received, 0);
        if (count <= 0)
        {
            break;
        }
        received += static_cast<std::size_t>(count);
    }
    data.resize(received);
    return data;
}

std::string TcpPeer::ReadAll(bool* reset)
{
    std::string data;
    char buffer[4096];
    ssize_t count = 0;
    while ((count = recv(m_fd, buffer, sizeof(buffer), 0)) > 0)
    {
        data.append(buffer, static_cast<std::size_t>(count));
    }
    if (reset != nullptr)
    {
        *reset = count < 0;
    }
    return data;
}

void TcpPeer::HalfClose()
{
    shutdown(m_fd, SHUT_WR);
}

void TcpPeer::Close()
{
    if (m_fd != -1)
    {
        close(m_fd);
        m_fd = -1;
    }
}

void TcpPeer::Reset()
{
    const linger hard = {1, 0};
    setsockopt(m_fd, SOL_SOCKET, SO_LINGER, &hard, sizeof(hard));
    Close();
}

TcpAcceptor::TcpAcceptor(int backlog) : m_fd(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    const sockaddr_in address = Loopback(0);
    bind(m_fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
    listen(m_fd, backlog);
    setsockopt(m_fd, SOL_SOCKET, SO_RCVTIMEO, &LIMIT, sizeof(LIMIT));
    m_port = PortOf(m_fd);
}

TcpPeer TcpAcceptor::Accept()
{
    return TcpPeer(accept4(m_fd, nullptr, nullptr, SOCK_CLOEXEC));
}

void TcpAcceptor::Close()
{
    if (m_fd != -1)
    {
        close(m_fd);
        m_fd = -1;
    }
}

StalledPort::StalledPort() : m_acceptor(0)
{
    for (int& filler : m_fillers)
    {
        filler = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        ConnectTo(filler, Port());
    }
}

StalledPort::~StalledPort()
{
    for (const int filler : m_fillers)
    {
        close(filler);
    }
}

bool Eventually(const std::function<bool()>& condition)
{
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition())
    {
        if (std::chrono::steady_clock::now() > limit)
        {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}
