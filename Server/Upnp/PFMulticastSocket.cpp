#include "PFMulticastSocket.h"

#include <cstring>

#include <fcntl.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

sockaddr_in AnyAddress(unsigned short port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_ANY);
    return address;
}

int BindOrClose(int socket, const sockaddr_in& address)
{
    if (bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0)
    {
        return 0;
    }
    close(socket);
    return -1;
}

ifreq RequestFor(const char* nic)
{
    ifreq request{};
    std::strncpy(request.ifr_name, nic, sizeof(request.ifr_name) - 1);
    return request;
}

int ChangeMembership(int socket, int option, unsigned int group, unsigned int nicIp)
{
    ip_mreq membership{};
    membership.imr_multiaddr.s_addr = group;
    membership.imr_interface.s_addr = nicIp;
    return setsockopt(socket, IPPROTO_IP, option, &membership, sizeof(membership));
}

} // namespace

int CPFMulticastSocket::Create_UDPSocket(int& socket, const char* nic, int reuse)
{
    socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (socket == -1)
    {
        return -1;
    }
    const ifreq request = RequestFor(nic);
    if (setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &reuse, sizeof(reuse)) != 0 ||
        setsockopt(socket, SOL_SOCKET, SO_BINDTODEVICE, &request, sizeof(request)) != 0)
    {
        close(socket);
        socket = -1;
        return -1;
    }
    return 0;
}

int CPFMulticastSocket::Select_Recv(int socket, fd_set& set, timeval* timeout)
{
    FD_ZERO(&set);
    if (socket < 0 || socket >= FD_SETSIZE)
    {
        return -1;
    }
    FD_SET(socket, &set);
    return select(socket + 1, &set, nullptr, nullptr, timeout);
}

void CPFMulticastSocket::Shutdown_Socket(int& socket)
{
    if (socket != -1)
    {
        shutdown(socket, SHUT_RDWR);
        close(socket);
        socket = -1;
    }
}

bool CPFMulticastSocket::SetNonBlock(int& socket)
{
    const int flags = fcntl(socket, F_GETFL);
    return flags != -1 && fcntl(socket, F_SETFL, flags | O_NONBLOCK) == 0;
}

int CPFMulticastSocket::Multicast_PrepareSendSocket(int socket, unsigned int nicIp)
{
    if (BindOrClose(socket, AnyAddress(0)) != 0)
    {
        return -1;
    }
    in_addr interface {
    };
    interface.s_addr = nicIp;
    if (setsockopt(socket, IPPROTO_IP, IP_MULTICAST_IF, &interface, sizeof(interface)) == 0)
    {
        return 0;
    }
    close(socket);
    return -1;
}

int CPFMulticastSocket::Multicast_PrepareRecvSocket(int socket, unsigned int /*ip*/, unsigned short port)
{
    return BindOrClose(socket, AnyAddress(port));
}

int CPFMulticastSocket::Multicast_AddMemberShip(int socket, unsigned int group, unsigned int nicIp)
{
    return ChangeMembership(socket, IP_ADD_MEMBERSHIP, group, nicIp);
}

int CPFMulticastSocket::Multicast_DropMemberShip(int socket, unsigned int group, unsigned int nicIp)
{
    return ChangeMembership(socket, IP_DROP_MEMBERSHIP, group, nicIp);
}

int CPFMulticastSocket::Multicast_ReceiveFrom(int socket, unsigned int /*ip*/, unsigned short /*port*/, char* buffer,
                                              int length)
{
    return static_cast<int>(recvfrom(socket, buffer, static_cast<size_t>(length), 0, nullptr, nullptr));
}

int CPFMulticastSocket::Multicast_SetNIC_AllMulti(int socket, const char* nic, bool on)
{
    ifreq request = RequestFor(nic);
    if (ioctl(socket, SIOCGIFFLAGS, &request) != 0)
    {
        return -1;
    }
    const int flags = on ? request.ifr_flags | IFF_ALLMULTI : request.ifr_flags & ~IFF_ALLMULTI;
    request.ifr_flags = static_cast<short>(flags);
    return ioctl(socket, SIOCSIFFLAGS, &request) == 0 ? 0 : -1;
}
