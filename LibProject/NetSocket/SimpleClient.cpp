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

/// Whether the tag that ends with the text at `tail` is a closing one: "</s:Envelope>".
bool ClosesElement(const char* text, const char* tail)
{
    while (tail > text && tail[-1] != '<' && tail[-1] != '>')
    {
        --tail;
    }
    return tail > text && tail[-1] == '<' && *tail == '/';
}

/// Looks for the mark; `fresh` bytes at the text's end have not been searched yet. A mark such as ":Envelope>" is the
/// tail of a tag, which an opening tag without attributes has too, so it counts in a closing one only.
/// @return the bytes up to the mark's end; 0 when it is not there
std::size_t EndOfMark(const char* text, std::size_t length, std::size_t fresh, const std::string& mark)
{
    if (mark.empty())
    {
        return 0;
    }
    const bool isTagTail = mark.front() == ':' && mark.back() == '>';
    const char* const end = text + length;
    const char* found = end - std::min(length, fresh + mark.size() - 1);
    while ((found = std::search(found, end, mark.begin(), mark.end())) != end)
    {
        if (!isTagTail || ClosesElement(text, found))
        {
            return static_cast<std::size_t>(found - text) + mark.size();
        }
        ++found;
    }
    return 0;
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
                const std::size_t marked = EndOfMark(recv, received, static_cast<std::size_t>(count), endMark);
                received = marked != 0 ? marked : received;
                complete = marked != 0 || received == room;
            }
            else if (count == 0 || !IsTransient(errno))
            {
                complete = true;
            }
        }
    }
    return received;
}
