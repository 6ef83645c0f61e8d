#include "MulticastService.h"

#include "PFHelper.h"
#include "PFMulticastSocket.h"
#include "ShareSDK.h"

#include <algorithm>
#include <cstdio>
#include <list>

#include <arpa/inet.h>
#include <sys/socket.h>

namespace
{

constexpr int RECEIVE_BYTES = 10240;

int OpenNonBlocking()
{
    int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (socket == -1)
    {
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
    }
    else if (!CPFMulticastSocket::SetNonBlock(socket))
    {
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
        CPFMulticastSocket::Shutdown_Socket(socket);
    }
    return socket;
}

} // namespace

CMulticastService::CMulticastService()
{
    std::fill(std::begin(m_sendSockets), std::end(m_sendSockets), -1);
}

CMulticastService::~CMulticastService()
{
    for (int& socket : m_sendSockets)
    {
        CPFMulticastSocket::Shutdown_Socket(socket);
    }
    CPFMulticastSocket::Shutdown_Socket(m_receiveSocket);
}

void CMulticastService::Initial(const char* group, unsigned short port)
{
    if (m_receiveSocket != -1)
    {
        return;
    }
    const unsigned int groupAddress = inet_addr(group);
    std::list<CPFHelper::__TNICInfo> interfaces;
    CPFHelper::GetSocketEnabled_NICList(interfaces);
    for (const CPFHelper::__TNICInfo& nic : interfaces)
    {
        if (m_sendSocketCount == SOCKETS_MAX)
        {
            break;
        }
        const int socket = OpenSendSocket(groupAddress, nic.IP);
        if (socket != -1)
        {
            m_sendSockets[m_sendSocketCount] = socket;
            ++m_sendSocketCount;
        }
    }
    OpenReceiveSocket(groupAddress, port);
    m_destination.sin_family = AF_INET;
    m_destination.sin_addr.s_addr = groupAddress;
    m_destination.sin_port = htons(port);
}

/// @return -1 when the interface cannot be had
int CMulticastService::OpenSendSocket(unsigned int group, unsigned int nicIp)
{
    const int socket = OpenNonBlocking();
    if (socket == -1 || CPFMulticastSocket::Multicast_PrepareSendSocket(socket, nicIp) != 0)
    {
        return -1;
    }
    CPFMulticastSocket::Multicast_AddMemberShip(socket, group, nicIp);
    return socket;
}

/// The port stands in the interface's place and the socket is bound to none, so that nothing ever comes: the device
/// announces itself and answers nobody.
void CMulticastService::OpenReceiveSocket(unsigned int group, unsigned short port)
{
    m_receiveSocket = OpenNonBlocking();
    if (m_receiveSocket != -1)
    {
        CPFMulticastSocket::Multicast_AddMemberShip(m_receiveSocket, group, port);
    }
}

int CMulticastService::Start()
{
    m_thread = SHARESDK_CreateRunOneThread(RecvThread, this, false, __FILE__, __LINE__, "multicast thread!");
    return 1;
}

void CMulticastService::Stop()
{
    if (m_thread != 0)
    {
        SHARESDK_DestroyThread(m_thread, __FILE__, __LINE__);
        m_thread = 0;
    }
}

void CMulticastService::RecvThread(void* service)
{
    static_cast<CMulticastService*>(service)->RecvThreadRun();
}

void CMulticastService::RecvThreadRun()
{
    InvokeSend();
    RecvMsg();
}

void CMulticastService::InvokeSend()
{
    SendCmd("", 0);
}

void CMulticastService::SendCmd(const char* data, int length)
{
    for (int i = 0; i < m_sendSocketCount; ++i)
    {
        if (sendto(m_sendSockets[i], data, static_cast<size_t>(length), 0,
                   reinterpret_cast<const sockaddr*>(&m_destination), sizeof(m_destination)) < 0)
        {
            SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
        }
    }
}

void CMulticastService::RecvMsg()
{
    char buffer[RECEIVE_BYTES] = {};
    const int length = static_cast<int>(recvfrom(m_receiveSocket, buffer, sizeof(buffer) - 1, 0, nullptr, nullptr));
    ParseResp(buffer, length);
}

void CMulticastService::ParseResp(const char* data, int length)
{
    // The length is printed as it came, -1 as an unsigned number too.
    std::fprintf(stderr, " len:%u, msg:%.*s.\n", static_cast<unsigned int>(length), std::max(length, 0), data);
}
