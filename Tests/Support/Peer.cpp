#include "Peer.h"

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace
{

constexpr std::chrono::seconds LIMIT{5};
using Clock = std::chrono::steady_clock;

sockaddr_in Loopback(unsigned short port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
}

unsigned short PortOf(int sock)
{
    sockaddr_in address{};
    socklen_t length = sizeof(address);
    getsockname(sock, reinterpret_cast<sockaddr*>(&address), &length);
    return ntohs(address.sin_port);
}

void WaitReadable(int sock, int timeoutMs)
{
    pollfd waiting{sock, POLLIN, 0};
    poll(&waiting, 1, timeoutMs);
}

} // namespace

Peer::Peer(unsigned short port, Pump pump) : m_pump(std::move(pump))
{
    m_sock = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = Loopback(port);
    if (connect(m_sock, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0)
        Close();
}

Peer::Peer(Peer&& other) noexcept
    : m_sock(std::exchange(other.m_sock, -1)), m_pump(std::move(other.m_pump)), m_buffer(std::move(other.m_buffer)),
      m_ended(other.m_ended)
{
}

Peer& Peer::operator=(Peer&& other) noexcept
{
    Close();
    m_sock = std::exchange(other.m_sock, -1);
    m_pump = std::move(other.m_pump);
    m_buffer = std::move(other.m_buffer);
    m_ended = other.m_ended;
    return *this;
}

Peer::~Peer()
{
    Close();
}

unsigned short Peer::LocalPort() const
{
    return PortOf(m_sock);
}

bool Peer::Send(const std::string& bytes)
{
    std::size_t sent = 0;
    const auto end = Clock::now() + LIMIT;
    while (sent < bytes.size() && Clock::now() < end)
    {
        const ssize_t count = send(m_sock, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count > 0)
            sent += static_cast<std::size_t>(count);
        else if (errno != EAGAIN)
            return false;
        else if (m_pump)
            m_pump();
        else
            usleep(1000);
    }
    return sent == bytes.size();
}

void Peer::ShutdownSend()
{
    shutdown(m_sock, SHUT_WR);
}

void Peer::Close()
{
    if (m_sock != -1)
        close(m_sock);
    m_sock = -1;
}

void Peer::Reset()
{
    const linger hard{1, 0};
    setsockopt(m_sock, SOL_SOCKET, SO_LINGER, &hard, sizeof(hard));
    Close();
}

/// Takes what is there. @return false at the end of the connection
bool Peer::Fill()
{
    char block[16384];
    for (;;)
    {
        const ssize_t count = recv(m_sock, block, sizeof(block), MSG_DONTWAIT);
        if (count > 0)
        {
            m_buffer.append(block, static_cast<std::size_t>(count));
            continue;
        }
        if (count == 0 || (errno != EAGAIN && errno != EINTR))
            m_ended = true;
        return !m_ended;
    }
}

bool Peer::WaitFor(const std::function<bool()>& done)
{
    const auto end = Clock::now() + LIMIT;
    for (;;)
    {
        const bool open = m_sock != -1 && Fill();
        if (done())
            return true;
        if (!open || Clock::now() >= end)
            return false;
        if (m_pump)
            m_pump();
        else
            WaitReadable(m_sock, 50);
    }
}

std::string Peer::Read(std::size_t count)
{
    WaitFor([&] { return m_buffer.size() >= count; });
    const std::string bytes = m_buffer.substr(0, count);
    m_buffer.erase(0, bytes.size());
    return bytes;
}

std::string Peer::ReadUntil(const std::string& end)
{
    std::size_t found = std::string::npos;
    WaitFor([&] { return (found = m_buffer.find(end)) != std::string::npos; });
    return Read(found == std::string::npos ? m_buffer.size() : found + end.size());
}

std::string Peer::ReadAnswer()
{
    std::string answer = ReadUntil("\r\n\r\n");
    const std::size_t length = answer.find("Content-Length:");
    if (length != std::string::npos)
        answer += Read(std::strtoul(answer.c_str() + length + 15, nullptr, 10));
    return answer;
}

std::string Peer::ReadAll()
{
    WaitFor([this] { return m_ended; });
    return std::exchange(m_buffer, std::string());
}

std::string Peer::Drain()
{
    Fill();
    return std::exchange(m_buffer, std::string());
}

bool Peer::WaitClosed()
{
    return WaitFor([this] { return m_ended; });
}

bool Peer::IsClosedNow()
{
    Fill();
    return m_ended;
}

UdpPeer::UdpPeer(Peer::Pump pump) : m_pump(std::move(pump))
{
    m_sock = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = Loopback(0);
    bind(m_sock, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
}

UdpPeer::~UdpPeer()
{
    close(m_sock);
}

unsigned short UdpPeer::Port() const
{
    return PortOf(m_sock);
}

std::string UdpPeer::Read()
{
    char datagram[65536];
    const auto end = Clock::now() + LIMIT;
    while (Clock::now() < end)
    {
        const ssize_t count = recv(m_sock, datagram, sizeof(datagram), MSG_DONTWAIT);
        if (count >= 0)
            return std::string(datagram, static_cast<std::size_t>(count));
        if (m_pump)
            m_pump();
        else
            WaitReadable(m_sock, 50);
    }
    return {};
}

bool UdpPeer::SendTo(unsigned short port, const std::string& bytes)
{
    const sockaddr_in address = Loopback(port);
    return sendto(m_sock, bytes.data(), bytes.size(), 0, reinterpret_cast<const sockaddr*>(&address),
                  sizeof(address)) == static_cast<ssize_t>(bytes.size());
}

void SendNoise(unsigned short port)
{
    unsigned int noise = 1;
    for (int i = 0; i < 50; ++i)
    {
        std::string bytes;
        for (int j = 0; j < 2000; ++j)
        {
            noise = noise * 1664525 + 1013904223;
            bytes += static_cast<char>(noise >> 24);
        }
        Peer peer(port);
        peer.Send(bytes + "\r\n\r\n");
        peer.ShutdownSend();
        peer.ReadAll();
    }
}

unsigned short FreePort()
{
    const int sock = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = Loopback(0);
    bind(sock, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
    const unsigned short port = PortOf(sock);
    close(sock);
    return port;
}
