// PFMulticastSocket.h: thin calls on datagram sockets for IPv4 multicast. All operations are static, take a socket
// number and leave its ownership with the caller, except where they say that they close it. Any thread.
#pragma once

#include <sys/select.h>

class CPFMulticastSocket
{
public:
    /// Makes a datagram socket that is bound to one interface (SO_BINDTODEVICE, which needs rights).
    /// @param socket  receives the number
    /// @param nic     the interface's name
    /// @param reuse   SO_REUSEADDR
    /// @return 0; -1 on failure
    static int Create_UDPSocket(int& socket, const char* nic, int reuse);

    /// Waits until the socket is readable. @param timeout  null: without a limit
    /// @return as select; -1 for a number that no fd_set can hold
    static int Select_Recv(int socket, fd_set& set, timeval* timeout);

    /// Shuts the socket down both ways, closes it and sets it to -1. Does nothing for -1.
    static void Shutdown_Socket(int& socket);

    /// @return true on success
    static bool SetNonBlock(int& socket);

    /// Binds to any address and port and sends multicasts through the interface with this address (network order).
    /// @return 0; -1 on failure, with the socket closed
    static int Multicast_PrepareSendSocket(int socket, unsigned int nicIp);

    /// Binds to any address and this port (host order). @param ip  not looked at
    /// @return 0; -1 on failure, with the socket closed
    static int Multicast_PrepareRecvSocket(int socket, unsigned int ip, unsigned short port);

    /// Joins a group on the interface with an address, both in network order. @return as setsockopt
    static int Multicast_AddMemberShip(int socket, unsigned int group, unsigned int nicIp);
    static int Multicast_DropMemberShip(int socket, unsigned int group, unsigned int nicIp);

    /// One datagram. @param ip, port  not looked at. @return as recvfrom
    static int Multicast_ReceiveFrom(int socket, unsigned int ip, unsigned short port, char* buffer, int length);

    /// Sets or clears IFF_ALLMULTI of an interface, which needs rights. @return 0; -1 on failure
    static int Multicast_SetNIC_AllMulti(int socket, const char* nic, bool on);

    CPFMulticastSocket() = delete;
};
