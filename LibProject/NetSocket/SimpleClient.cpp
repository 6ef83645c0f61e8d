// SimpleClient.cpp: one request and its answer.
#include "SimpleClient.h"

#include <algorithm>
#include <cerrno>

#include <sys/socket.h>

namespace
{

bool IsTransient(int error)
{
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

/// Whether the mark is in the text; `fresh` bytes at its end have not been searched yet.
bool HasMark(const char* text, std::size_t length, std::size_t fresh, const std::string& mark)
{
    const std::size_t overlap = mark.empty() ? 0 : mark.size() - 1;
    const char* from = text + (length - std::min(length, fresh + overlap));
    return !mark.empty() && std::search(from, text + length, mark.begin(), mark.end()) != text + length;
}

} // namespace

bool CSimpleClient::Wait(short events, short& ready)
{
    pollfd descriptors[] = {{m_socket.Get(), events, 0}, {m_quit.Descriptor(), POLLIN, 0}};
    const int count = PollUntil(descriptors, 2, m_deadlineMs);
    ready = descriptors[0].revents;
    return count > 0 && descriptors[1].revents == 0;
}

bool CSimpleClient::Connect(in_addr address, unsigned short port)
{
    m_socket = CFileDescriptor(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_port = htons(port);
    peer.sin_addr = address;
    if (connect(m_socket.Get(), reinterpret_cast<const sockaddr*>(&peer), sizeof(peer)) == 0)
    {
        return true;
    }
    short ready = 0;
    if (errno != EINPROGRESS || !Wait(POLLOUT, ready))
    {
        return false;
    }
    int error = 0;
    socklen_t size = sizeof(error);
    return getsockopt(m_socket.Get(), SOL_SOCKET, SO_ERROR, &error, &size) == 0 && error == 0;
}

std::size_t CSimpleClient::Exchange(const char* send, std::size_t sendLength, char* recv, std::size_t room,
                                    const std::string& endMark)
{
    std::size_t sent = 0;
    std::size_t received = 0;
    bool complete = room == 0;
    short ready = 0;
    while (!complete && Wait(static_cast<short>(sent < sendLength ? POLLIN | POLLOUT : POLLIN), ready))
    {
        if ((ready & POLLOUT) != 0)
        {
            const ssize_t count = ::send(m_socket.Get(), send + sent, sendLength - sent, MSG_NOSIGNAL);
            if (count > 0)
            {
                sent += static_cast<std::size_t>(count);
            }
            else if (!IsTransient(errno))
            {
                sent = sendLength; // the peer takes no more; what it has answered still counts
            }
        }
        if ((ready & (POLLIN | POLLHUP | POLLERR)) != 0)
        {
            const ssize_t count = ::recv(m_socket.Get(), recv + received, room - received, 0);
            if (count > 0)
            {
                received += static_cast<std::size_t>(count);
                complete = received == room || HasMark(recv, received, static_cast<std::size_t>(count), endMark);
            }
            else if (count == 0 || !IsTransient(errno))
            {
                complete = true;
            }
        }
    }
    return received;
}
