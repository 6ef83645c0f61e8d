// NC_Socket.h: the socket calls of the RTSP server, each a thin cover over POSIX.
//
// Sockets are non-blocking. Addresses are IPv4 in network order, ports in host order. Any thread.
#pragma once

#include <sys/uio.h>

/// Ignores SIGPIPE and keeps a descriptor in reserve for NC_Accept; called once, further calls do nothing.
void NC_Init();

/// A non-blocking socket with SO_REUSEADDR. @return -1 on failure
int NC_CreateSocket(int domain, int type, int protocol);

/// A TCP listener with a backlog of 5.
/// @param interfaceName  binds to that interface's address; null, or a name that is not there, binds to any
/// @return -1 on failure
int NC_CreateTCPSockAndListen(unsigned short port, const char* interfaceName);

/// Binds to the address of an interface, or to any when there is no such interface. @return 0, or -1
int NC_BindInterFace(int sock, const char* interfaceName, unsigned short port);

/// Accepts one connection.
/// When no descriptor is free, the connection is taken with a descriptor kept in reserve and closed at once, so that
/// the listener does not stay readable for ever.
/// @param ip, port  receive the peer's address; may be null
/// @return the socket; 0 when none waits; -1 on failure
int NC_Accept(int sock, int* ip, unsigned short* port);

/// @return bytes sent; -1, with NC_EWOULDBLOCK() telling whether the socket is only full. `flags` is not read.
int NC_Send(int sock, const void* data, int length, int flags);

/// Sends many buffers by one system call. @return as NC_Send
int NC_SendBuffers(int sock, const iovec* buffers, int count);

/// @return bytes read, 0 when the peer has closed, -1. `flags` is not read.
int NC_Recv(int sock, void* buffer, int length, int flags);

/// As NC_Recv, and the bytes stay to be read again.
int NC_Peek(int sock, void* buffer, int length);

int NC_CloseSocket(int& sock); ///< closes, and sets the variable to -1
int NC_Shutdown(int sock, int how);

/// Whether the last call failed only because it would have waited.
bool NC_EWOULDBLOCK();

/// A UDP socket with SO_REUSEADDR, non-blocking. @return -1 on failure
int NC_UDP_CreateSocket();

/// @return 0 sent, 1 would block, -1 error
int NC_UDP_Sendto(int sock, const void* data, int length, unsigned int ip, unsigned short port);

/// What became of a datagram train.
enum NC_TRAIN_RESULT
{
    NC_TRAIN_SENT = 0,
    NC_TRAIN_WOULD_BLOCK = 1,
    NC_TRAIN_ERROR = -1,
    NC_TRAIN_NOT_SUPPORTED = -2, ///< by this kernel or on this route: send the datagrams one by one
};

/// Sends datagrams of one size by one system call (UDP segmentation offload); the last may be shorter.
/// @param segmentBytes  size of each datagram but the last
NC_TRAIN_RESULT NC_UDP_SendTrain(int sock, const iovec* datagrams, int count, unsigned short segmentBytes,
                                 unsigned int ip, unsigned short port);

/// @param timeoutMs  how long to wait for a datagram; 0 does not wait
/// @return bytes; -1 nothing there or time-out; -3 failure
int NC_UDP_Recvfrom(int sock, void* buffer, int length, unsigned int* ip, unsigned short* port, int timeoutMs);

/// Strict dotted quad: four decimal fields of at most 255, then a blank or the end.
/// @param ip  receives the address; null only checks
/// @return 0, or -1
int NC_inet_aton(const char* text, unsigned int* ip);

/// @return the address, or all ones
unsigned int NC_inet_addr(const char* text);

/// @param text  room for 16 bytes
void NC_inet_ntoa(unsigned int ip, char* text);

/// Own and peer address; either output may be null. @return 0, or -1 with the outputs cleared
int NC_GetSockName(int sock, int* ip, unsigned short* port);
int NC_GetSockName(int sock, char* ipText, unsigned short* port);
int NC_GetPeerName(int sock, int* ip, unsigned short* port);
int NC_GetPeerName(int sock, char* ipText, unsigned short* port);
