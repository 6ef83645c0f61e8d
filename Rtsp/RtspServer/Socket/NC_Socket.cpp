#include "NC_Socket.h"

#include "PFHelper.h"
#include "ShareSDK.h"

#include <arpa/inet.h>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <list>
#include <mutex>
#include <netinet/in.h>
#include <netinet/udp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#ifndef UDP_SEGMENT
#define UDP_SEGMENT 103 // Linux 4.18; older C library headers lack it
#endif

namespace
{

constexpr int LISTEN_BACKLOG = 5;

/// Given up for a moment when no descriptor is free. Scheduler thread only, after NC_Init.
int g_reserveDescriptor = -1;

sockaddr_in Address(unsigned int ip, unsigned short port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = ip;
    address.sin_port = htons(port);
    return address;
}

bool SetNonBlocking(int sock)
{
    const int flags = fcntl(sock, F_GETFL, 0);
    return flags != -1 && fcntl(sock, F_SETFL, flags | O_NONBLOCK) == 0;
}

void OpenReserve()
{
    g_reserveDescriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
}

void RefuseWithReserve(int sock)
{
    // Another thread may have been quicker the last time to take the descriptor that was given up.
    if (g_reserveDescriptor == -1)
        OpenReserve();
    if (g_reserveDescriptor == -1)
        return;
    close(g_reserveDescriptor);
    const int refused = accept(sock, nullptr, nullptr);
    if (refused != -1)
        close(refused);
    OpenReserve();
}

using NameCall = int (*)(int, sockaddr*, socklen_t*);

int GetName(NameCall call, int sock, int* ip, unsigned short* port)
{
    sockaddr_in address{};
    socklen_t length = sizeof(address);
    const int result = call(sock, reinterpret_cast<sockaddr*>(&address), &length);
    if (result != 0)
        address = {};
    if (ip != nullptr)
        *ip = static_cast<int>(address.sin_addr.s_addr);
    if (port != nullptr)
        *port = ntohs(address.sin_port);
    return result == 0 ? 0 : -1;
}

int GetName(NameCall call, int sock, char* ipText, unsigned short* port)
{
    int ip = 0;
    const int result = GetName(call, sock, &ip, port);
    if (ipText != nullptr)
        NC_inet_ntoa(static_cast<unsigned int>(ip), ipText);
    return result;
}

} // namespace

void NC_Init()
{
    static std::once_flag once;
    std::call_once(once,
                   []
                   {
                       std::signal(SIGPIPE, SIG_IGN);
                       OpenReserve();
                   });
}

int NC_CreateSocket(int domain, int type, int protocol)
{
    int sock = socket(domain, type | SOCK_CLOEXEC, protocol);
    if (sock == -1)
        return -1;
    const int on = 1;
    if (setsockopt(sock, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on)) != 0 || !SetNonBlocking(sock))
        NC_CloseSocket(sock);
    return sock;
}

int NC_CreateTCPSockAndListen(unsigned short port, const char* interfaceName)
{
    int sock = NC_CreateSocket(AF_INET, SOCK_STREAM, 0);
    if (sock == -1)
        return -1;
    if (NC_BindInterFace(sock, interfaceName, port) != 0 || listen(sock, LISTEN_BACKLOG) != 0)
        NC_CloseSocket(sock);
    return sock;
}

int NC_BindInterFace(int sock, const char* interfaceName, unsigned short port)
{
    unsigned int ip = INADDR_ANY;
    if (interfaceName != nullptr)
    {
        std::list<CPFHelper::__TNICInfo> interfaces;
        CPFHelper::GetSocketEnabled_NICList(interfaces);
        for (const CPFHelper::__TNICInfo& candidate : interfaces)
        {
            if (std::strcmp(candidate.name, interfaceName) == 0)
            {
                ip = candidate.IP;
                break;
            }
        }
    }
    const sockaddr_in address = Address(ip, port);
    return bind(sock, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0 ? 0 : -1;
}

int NC_Accept(int sock, int* ip, unsigned short* port)
{
    int pending = 0;
    socklen_t length = sizeof(pending);
    if (getsockopt(sock, SOL_SOCKET, SO_ERROR, &pending, &length) != 0 || pending != 0)
        return -1;

    sockaddr_in peer{};
    socklen_t peerLength = sizeof(peer);
    const int accepted = accept4(sock, reinterpret_cast<sockaddr*>(&peer), &peerLength, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (accepted == -1)
    {
        if (NC_EWOULDBLOCK())
            return 0;
        const bool descriptorsUsedUp = errno == EMFILE || errno == ENFILE;
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
        if (descriptorsUsedUp)
            RefuseWithReserve(sock);
        return -1;
    }
    if (g_reserveDescriptor == -1)
        OpenReserve(); // lost while there was none
    if (ip != nullptr)
        *ip = static_cast<int>(peer.sin_addr.s_addr);
    if (port != nullptr)
        *port = ntohs(peer.sin_port);
    return accepted;
}

int NC_Send(int sock, const void* data, int length, int /*flags*/)
{
    return static_cast<int>(send(sock, data, static_cast<size_t>(length), MSG_DONTWAIT | MSG_NOSIGNAL));
}

int NC_SendBuffers(int sock, const iovec* buffers, int count)
{
    msghdr message{};
    message.msg_iov = const_cast<iovec*>(buffers);
    message.msg_iovlen = static_cast<size_t>(count);
    return static_cast<int>(sendmsg(sock, &message, MSG_DONTWAIT | MSG_NOSIGNAL));
}

int NC_Recv(int sock, void* buffer, int length, int /*flags*/)
{
    return static_cast<int>(recv(sock, buffer, static_cast<size_t>(length), MSG_DONTWAIT));
}

int NC_Peek(int sock, void* buffer, int length)
{
    return static_cast<int>(recv(sock, buffer, static_cast<size_t>(length), MSG_DONTWAIT | MSG_PEEK));
}

int NC_CloseSocket(int& sock)
{
    const int result = close(sock);
    sock = -1;
    return result;
}

int NC_Shutdown(int sock, int how)
{
    return shutdown(sock, how);
}

bool NC_EWOULDBLOCK()
{
    return errno == EAGAIN || errno == EINTR;
}

int NC_UDP_CreateSocket()
{
    return NC_CreateSocket(AF_INET, SOCK_DGRAM, 0);
}

int NC_UDP_Sendto(int sock, const void* data, int length, unsigned int ip, unsigned short port)
{
    const sockaddr_in address = Address(ip, port);
    if (sendto(sock, data, static_cast<size_t>(length), MSG_DONTWAIT | MSG_NOSIGNAL,
               reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != -1)
        return 0;
    return NC_EWOULDBLOCK() ? 1 : -1;
}

NC_TRAIN_RESULT NC_UDP_SendTrain(int sock, const iovec* datagrams, int count, unsigned short segmentBytes,
                                 unsigned int ip, unsigned short port)
{
    sockaddr_in address = Address(ip, port);
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(segmentBytes))] = {};
    msghdr message{};
    message.msg_name = &address;
    message.msg_namelen = sizeof(address);
    message.msg_iov = const_cast<iovec*>(datagrams);
    message.msg_iovlen = static_cast<size_t>(count);
    message.msg_control = control;
    message.msg_controllen = sizeof(control);

    cmsghdr* header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = IPPROTO_UDP;
    header->cmsg_type = UDP_SEGMENT;
    header->cmsg_len = CMSG_LEN(sizeof(segmentBytes));
    std::memcpy(CMSG_DATA(header), &segmentBytes, sizeof(segmentBytes));

    if (sendmsg(sock, &message, MSG_DONTWAIT | MSG_NOSIGNAL) != -1)
        return NC_TRAIN_SENT;
    if (NC_EWOULDBLOCK())
        return NC_TRAIN_WOULD_BLOCK;
    const bool refused =
        errno == EINVAL || errno == EIO || errno == EMSGSIZE || errno == ENOPROTOOPT || errno == EOPNOTSUPP;
    return refused ? NC_TRAIN_NOT_SUPPORTED : NC_TRAIN_ERROR;
}

int NC_UDP_Recvfrom(int sock, void* buffer, int length, unsigned int* ip, unsigned short* port, int timeoutMs)
{
    if (timeoutMs != 0)
    {
        pollfd waiting{sock, POLLIN, 0};
        const int ready = poll(&waiting, 1, timeoutMs);
        if (ready <= 0)
            return ready == 0 ? -1 : -3;
    }
    sockaddr_in peer{};
    socklen_t peerLength = sizeof(peer);
    const ssize_t count = recvfrom(sock, buffer, static_cast<size_t>(length), MSG_DONTWAIT,
                                   reinterpret_cast<sockaddr*>(&peer), &peerLength);
    if (count == -1)
        return NC_EWOULDBLOCK() ? -1 : -3;
    if (ip != nullptr)
        *ip = peer.sin_addr.s_addr;
    if (port != nullptr)
        *port = ntohs(peer.sin_port);
    return static_cast<int>(count);
}

int NC_inet_aton(const char* text, unsigned int* ip)
{
    if (text == nullptr)
        return -1;
    unsigned char address[4];
    const char* cursor = text;
    for (int field = 0; field < 4; ++field)
    {
        if (field > 0 && *cursor++ != '.')
            return -1;
        unsigned int value = 0;
        int digits = 0;
        for (; *cursor >= '0' && *cursor <= '9'; ++cursor, ++digits)
        {
            value = value * 10 + static_cast<unsigned int>(*cursor - '0');
            if (value > 255)
                return -1;
        }
        if (digits == 0)
            return -1;
        address[field] = static_cast<unsigned char>(value);
    }
    if (*cursor != '\0' && *cursor != ' ')
        return -1;
    if (ip != nullptr)
        std::memcpy(ip, address, sizeof(address));
    return 0;
}

unsigned int NC_inet_addr(const char* text)
{
    unsigned int ip = 0xFFFFFFFFu;
    return NC_inet_aton(text, &ip) == 0 ? ip : 0xFFFFFFFFu;
}

void NC_inet_ntoa(unsigned int ip, char* text)
{
    unsigned char address[4];
    std::memcpy(address, &ip, sizeof(address));
    std::snprintf(text, 16, "%u.%u.%u.%u", address[0], address[1], address[2], address[3]);
}

int NC_GetSockName(int sock, int* ip, unsigned short* port)
{
    return GetName(getsockname, sock, ip, port);
}

int NC_GetSockName(int sock, char* ipText, unsigned short* port)
{
    return GetName(getsockname, sock, ipText, port);
}

int NC_GetPeerName(int sock, int* ip, unsigned short* port)
{
    return GetName(getpeername, sock, ip, port);
}

int NC_GetPeerName(int sock, char* ipText, unsigned short* port)
{
    return GetName(getpeername, sock, ipText, port);
}
