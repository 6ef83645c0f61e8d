#include "RTSP_Datagram.h"

#include "NC_Socket.h"

int RtpSendDatagram(int sock, const char* data, int length, unsigned int ip, unsigned short port)
{
    switch (NC_UDP_Sendto(sock, data, length, ip, port))
    {
    case 0:
        return length;
    case 1:
        return 0;
    default:
        return -1;
    }
}

int RtpRecvDatagram(int sock, char* buffer, int length)
{
    const int count = NC_UDP_Recvfrom(sock, buffer, length, nullptr, nullptr, 0);
    if (count >= 0)
        return count;
    return count == -1 ? 0 : -1;
}
