// Connection.cpp: one TCP connection.
#include "Connection.h"

#include "Listener.h"

#include <cerrno>
#include <utility>

#include <netinet/tcp.h>
#include <sys/socket.h>

namespace
{

/// From the start of a connect: how long a send waits for it.
constexpr std::uint64_t SEND_CONNECT_MS = 1000;

/// How long a send waits for a peer whose window is shut.
constexpr std::uint64_t SEND_WINDOW_MS = 100;

/// What is read and dropped of a peer that still sends.
constexpr int DRAIN_BYTES = 64 * 1024;

constexpr int WOULD_BLOCK = -1;

/// @return bytes sent, WOULD_BLOCK, or 0 with `broken` set
int SendNow(int fd, const char* data, int length, int flags, bool& broken)
{
    for (;;)
    {
        const ssize_t sent = send(fd, data, static_cast<std::size_t>(length), flags | MSG_DONTWAIT | MSG_NOSIGNAL);
        if (sent >= 0)
        {
            return static_cast<int>(sent);
        }
        if (errno == EAGAIN || errno == EWOULDBLOCK || errno == ENOBUFS || errno == ENOMEM)
        {
            return WOULD_BLOCK;
        }
        if (errno != EINTR)
        {
            broken = true;
            return 0;
        }
    }
}

/// @return bytes read, WOULD_BLOCK, or 0 with `broken` set: closed by the peer, or an error
int RecvNow(int fd, char* buffer, int length, bool& broken)
{
    for (;;)
    {
        const ssize_t received = recv(fd, buffer, static_cast<std::size_t>(length), MSG_DONTWAIT);
        if (received > 0)
        {
            return static_cast<int>(received);
        }
        if (received < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == ENOBUFS || errno == ENOMEM))
        {
            return WOULD_BLOCK;
        }
        if (received == 0 || errno != EINTR)
        {
            broken = true;
            return 0;
        }
    }
}

CFileDescriptor OpenSocket()
{
    CFileDescriptor fd(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    const int on = 1;
    setsockopt(fd.Get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
    return fd;
}

} // namespace

CConnection::CConnection(CFileDescriptor socket, const sockaddr_in& peer, std::shared_ptr<CQuitSignal> quit,
                         std::shared_ptr<CListener> listener)
    : m_socket(std::move(socket)), m_peer(peer), m_quit(std::move(quit)), m_listener(std::move(listener)),
      m_state(State::Connected), m_node(*this)
{
}

CConnection::CConnection(const in_addr* address, unsigned short port, std::shared_ptr<CQuitSignal> quit)
    : m_socket(address != nullptr ? OpenSocket() : CFileDescriptor()), m_quit(std::move(quit)),
      m_connectDeadlineMs(DeadlineAfter(SEND_CONNECT_MS)), m_state(State::Failed), m_node(*this)
{
    if (address == nullptr)
    {
        return;
    }
    m_peer.sin_family = AF_INET;
    m_peer.sin_port = htons(port);
    m_peer.sin_addr = *address;
    if (m_socket.IsOpen())
    {
        BeginConnect();
    }
}

CConnection::~CConnection() = default;

void CConnection::BeginConnect()
{
    if (connect(m_socket.Get(), reinterpret_cast<const sockaddr*>(&m_peer), sizeof(m_peer)) == 0)
    {
        m_state = State::Connected;
    }
    else if (errno == EINPROGRESS || errno == EINTR)
    {
        m_state = State::Connecting;
    }
}

CConnection::State CConnection::ResolveConnect(std::uint64_t deadlineMs)
{
    if (m_state != State::Connecting || !Wait(POLLOUT, deadlineMs))
    {
        return m_state;
    }
    std::lock_guard<std::mutex> lock(m_connectLock);
    if (m_state != State::Connecting)
    {
        return m_state;
    }
    pollfd outcome = {m_socket.Get(), POLLOUT, 0};
    if (poll(&outcome, 1, 0) != 1)
    {
        return m_state; // woken by the connection's end
    }
    int error = 0;
    socklen_t size = sizeof(error);
    getsockopt(m_socket.Get(), SOL_SOCKET, SO_ERROR, &error, &size);
    m_state = error == 0 ? State::Connected : State::Failed;
    return m_state;
}

int CConnection::ConnectResult(unsigned int timeoutMs)
{
    switch (ResolveConnect(DeadlineAfter(timeoutMs)))
    {
    case State::Connecting:
        return 0;
    case State::Connected:
        return 1;
    default:
        return -1;
    }
}

void CConnection::GiveUpConnect()
{
    std::lock_guard<std::mutex> lock(m_connectLock);
    if (m_state == State::Connecting)
    {
        m_state = State::Failed;
        shutdown(m_socket.Get(), SHUT_RDWR);
    }
}

bool CConnection::Wait(short events, std::uint64_t deadlineMs)
{
    ++m_waiting;
    bool ready = true;
    if (!m_retired)
    {
        pollfd descriptor = {m_socket.Get(), events, 0};
        ready = PollUntil(&descriptor, 1, deadlineMs) != 0;
    }
    --m_waiting;
    return ready;
}

int CConnection::Recv(char* buffer, int length, bool* broken)
{
    bool ended = false;
    int received = WOULD_BLOCK;
    const State state = ResolveConnect(0);
    if (state == State::Failed || m_retired)
    {
        ended = true;
    }
    else if (state == State::Connected && buffer != nullptr && length > 0)
    {
        received = RecvNow(m_socket.Get(), buffer, length, ended);
        ended = ended || (received == WOULD_BLOCK && m_quit->IsGiven());
    }
    if (ended && broken != nullptr)
    {
        *broken = true;
    }
    return received > 0 ? received : 0;
}

bool CConnection::WaitRecv(unsigned int timeoutMs)
{
    return m_state == State::Failed || Wait(POLLIN, DeadlineAfter(timeoutMs));
}

int CConnection::Send(const char* data, int length, SendKind kind, bool& broken)
{
    if (ResolveConnect(m_connectDeadlineMs) != State::Connected)
    {
        GiveUpConnect();
        broken = true;
        return 0;
    }
    if (data == nullptr || length <= 0)
    {
        return 0;
    }
    const int flags = kind == SendKind::Last ? MSG_MORE : 0;
    int sent = SendNow(m_socket.Get(), data, length, flags, broken);
    if (sent == WOULD_BLOCK && Wait(POLLOUT, DeadlineAfter(SEND_WINDOW_MS)))
    {
        sent = SendNow(m_socket.Get(), data, length, flags, broken);
    }
    broken = broken || (sent == WOULD_BLOCK && m_quit->IsGiven());
    return sent > 0 ? sent : 0;
}

bool CConnection::EndUse()
{
    if (m_retired.exchange(true))
    {
        return false;
    }
    m_node.End();
    if (m_listener != nullptr)
    {
        m_listener->ConnectionEnded();
    }
    return true;
}

bool CConnection::Retire()
{
    if (!EndUse())
    {
        return false;
    }
    if (ResolveConnect(0) != State::Connected)
    {
        GiveUpConnect();
        return false;
    }
    // A thread that waits for this connection is woken by shutting down both sides, at the price of the draining.
    shutdown(m_socket.Get(), m_waiting > 0 ? SHUT_RDWR : SHUT_WR);
    return true;
}

bool CConnection::Drain()
{
    char dropped[4096];
    bool ended = false;
    while (m_drainedBytes < DRAIN_BYTES)
    {
        const int received = RecvNow(m_socket.Get(), dropped, sizeof(dropped), ended);
        if (received <= 0)
        {
            return ended;
        }
        m_drainedBytes += received;
    }
    return true;
}

void CConnection::Cut()
{
    EndUse();
    shutdown(m_socket.Get(), SHUT_RDWR);
}
