#include "RTSP_Server.h"

#include "NC_Socket.h"
#include "PFAssert.h"
#include "PFHelper.h"
#include "PubHelper.h"
#include "RTSP_ClientSession.h"
#include "RTSP_Console.h"
#include "RTSP_RTCPLink_UDP.h"
#include "RTSP_RTCPLink_UDP_Multicast.h"
#include "RTSP_RTPLink_UDP.h"
#include "RTSP_RTPLink_UDP_Multicast.h"
#include "RTSP_SockScheduler.h"
#include "ShareSDK.h"

#include <cerrno>
#include <cstring>
#include <exception>
#include <memory>
#include <netinet/in.h>
#include <sys/socket.h>

namespace
{

/// Connections taken in one call; what is left is taken in the next round.
constexpr int ACCEPTS_PER_ROUND = 64;

/// Without a pause after a failure the loop would turn as fast as it can: the connection still waits.
constexpr unsigned int REST_MS = 50;

/// Every port of the range once.
constexpr int BIND_ATTEMPTS = CRTSP_Server::LAST_UDP_PORT - CRTSP_Server::FIRST_UDP_PORT + 1;

bool SetBuffer(int sock, int option)
{
    const int bytes = CRTSP_Server::SOCKET_BUFFER_BYTES;
    return setsockopt(sock, SOL_SOCKET, option, &bytes, sizeof(bytes)) == 0;
}

/// Makes what owns a socket from then on; without memory the socket is closed.
template <class Make>
auto MakeOrClose(int sock, Make make)
{
    try
    {
        return make();
    }
    catch (const std::exception&)
    {
        NC_CloseSocket(sock);
        throw;
    }
}

/// Ends a link that its session does not get; a shared one lives on.
struct LinkEnd
{
    CRTSP_ClientSession* session;

    void operator()(CRTSP_RTPLink* link) const
    {
        link->CRTSP_Erase(session);
        link->Destroy();
    }
};

} // namespace

CRTSP_Server::CRTSP_Server(CRTSP_SockScheduler& scheduler) : CRTSP_SockHandler(scheduler, -1) {}

CRTSP_Server* CRTSP_Server::Create_RTSP_Server(CRTSP_SockScheduler& scheduler, const char* /*unused*/)
{
    return new CRTSP_Server(scheduler);
}

int CRTSP_Server::Start_RTSP_Server(unsigned short port)
{
    if (m_started)
    {
        SHARESDK_AbnormalOutput("rtsp server is started already", __FILE__, __LINE__);
        return 0;
    }
    m_started = true;
    m_sock = NC_CreateTCPSockAndListen(port, nullptr);
    if (m_sock == -1)
    {
        RTSP_ConsoleLine("creat listen socket error %s %s %d \n", __FILE__, __func__, __LINE__);
        m_started = false;
        return -1;
    }
    m_scheduler.AddSockHandler(SOCK_HANDLER_ACCEPT, m_sock, this, -1);
    return 0;
}

int CRTSP_Server::Stop_RTSP_Server()
{
    if (!m_started)
        return 0;
    m_stopping = true;
    while (!m_sessionList.empty())
    {
        CRTSP_ClientSession* session = m_sessionList.front();
        m_sessionList.pop_front();
        session->Destroy();
    }
    m_stopping = false;
    m_scheduler.DelWaiter(this);
    m_scheduler.DelSockHandler(m_sock);
    NC_CloseSocket(m_sock);
    m_started = false;
    return 0;
}

unsigned short CRTSP_Server::GetPort() const
{
    unsigned short port = 0;
    if (m_started)
        GetSockName(static_cast<int*>(nullptr), &port);
    return port;
}

int CRTSP_Server::HandleAccept()
{
    for (int i = 0; i < ACCEPTS_PER_ROUND; ++i)
    {
        if (!AcceptOne())
            return -1;
    }
    return 0;
}

/// @return false when no further connection waits, or one could not be taken
bool CRTSP_Server::AcceptOne()
{
    int ip = 0;
    unsigned short port = 0;
    int sock = NC_Accept(m_sock, &ip, &port);
    if (sock < 0)
        Rest();
    if (sock < 1)
        return false;
    char ipText[16];
    NC_inet_ntoa(static_cast<unsigned int>(ip), ipText);
    RTSP_ConsoleLine("rtsp accept %s:%d  sock = %d\n", ipText, port, sock);
    if (!SetBuffer(sock, SO_SNDBUF) || !SetBuffer(sock, SO_RCVBUF))
    {
        NC_CloseSocket(sock);
        return false;
    }
    try
    {
        m_sessionList.push_back(nullptr);
        m_sessionList.back() = CRTSP_ClientSession::Create_RTSP_ClientSession(m_scheduler, *this, sock, m_localAddress);
    }
    catch (const std::exception& failure)
    {
        SHARESDK_AbnormalOutput(failure.what(), __FILE__, __LINE__);
        m_sessionList.remove(nullptr);
        m_scheduler.DelSockHandler(sock);
        NC_CloseSocket(sock);
        return false;
    }
    RTSP_ConsoleLine("+++++++++++++++++++++m_sessionList.size() = %d\n", static_cast<int>(m_sessionList.size()));
    return true;
}

void CRTSP_Server::Rest()
{
    m_restEnd = CPFHelper::GetTickCount() + REST_MS;
    m_scheduler.DelSockHandler(SOCK_HANDLER_ACCEPT, m_sock);
    m_scheduler.AddWaiter(this, m_restEnd);
}

int CRTSP_Server::HandleWait(unsigned int now)
{
    if (static_cast<int>(now - m_restEnd) < 0)
        return HANDLER_NOTHING;
    m_scheduler.DelWaiter(this);
    m_scheduler.AddSockHandler(SOCK_HANDLER_ACCEPT, m_sock, this, -1);
    return HANDLER_NOTHING;
}

int CRTSP_Server::HandleRecv()
{
    PF_ASSERT(false);
    return HANDLER_NOTHING;
}

bool CRTSP_Server::HasDataToSend()
{
    PF_ASSERT(false);
    return false;
}

int CRTSP_Server::HandleSend()
{
    PF_ASSERT(false);
    return HANDLER_NOTHING;
}

int CRTSP_Server::HandleConnected()
{
    PF_ASSERT(false);
    return HANDLER_NOTHING;
}

int CRTSP_Server::HandleTimeOut(int iTypeMask)
{
    PF_ASSERT(SOCK_HANDLER_ACCEPT == iTypeMask);
    Destroy();
    return HANDLER_GONE;
}

void CRTSP_Server::Fail() {}

void CRTSP_Server::CloseSocket()
{
    // The listening socket is closed by Stop_RTSP_Server alone, so an open one stays open here.
    if (m_sock == -1)
        NC_CloseSocket(m_sock);
}

CRTSP_ClientSession* CRTSP_Server::GetClientSession(const char* cookie, const CRTSP_ClientSession* asking)
{
    if (*cookie == '\0')
        return nullptr;
    for (CRTSP_ClientSession* session : m_sessionList)
    {
        if (session != asking && std::strcmp(session->GetCookie(), cookie) == 0)
            return session;
    }
    return nullptr;
}

int CRTSP_Server::GetPostSession(const char* cookie)
{
    for (CRTSP_ClientSession* session : m_sessionList)
    {
        if (*session->GetPostCookie() != '\0' && std::strcmp(session->GetPostCookie(), cookie) == 0)
        {
            session->SetMcsNull();
            return 0;
        }
    }
    return -1;
}

void CRTSP_Server::DetachFrom(const CRTSP_ClientSession* session)
{
    for (CRTSP_ClientSession* other : m_sessionList)
    {
        if (other->GetMcs() == session)
            other->SetMcsNull();
    }
}

void CRTSP_Server::CRTSP_Erase(CRTSP_ClientSession* session)
{
    RTSP_LogLine(__FILE__, __LINE__, "m_sessionList.size = %d ", static_cast<int>(m_sessionList.size()));
    if (!m_stopping)
        m_sessionList.remove(session);
}

int CRTSP_Server::GetPasswordByUser()
{
    return 0;
}

void CRTSP_Server::IncreasePort()
{
    m_nextPort = m_nextPort >= LAST_UDP_PORT ? FIRST_UDP_PORT : static_cast<unsigned short>(m_nextPort + 1);
}

int CRTSP_Server::BindUnicast(int sock)
{
    // Two UDP sockets that both reuse their address would get the same port without an error.
    const int off = 0;
    setsockopt(sock, SOL_SOCKET, SO_REUSEADDR, &off, sizeof(off));
    for (int attempt = 0; attempt < BIND_ATTEMPTS; ++attempt)
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(m_nextPort);
        const int result = bind(sock, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
        const int failure = errno;
        IncreasePort();
        if (result == 0)
            return 0;
        RTSP_LogLine(__FILE__, __LINE__, "rtp port in use, errno %d", failure);
        if (failure != EADDRINUSE)
            return -1;
    }
    return -1;
}

int CRTSP_Server::JoinMulticast(int sock, const char* group, unsigned short port)
{
    ip_mreq membership{};
    membership.imr_multiaddr.s_addr = NC_inet_addr(group);
    membership.imr_interface.s_addr = INADDR_ANY;
    if (setsockopt(sock, IPPROTO_IP, IP_ADD_MEMBERSHIP, &membership, sizeof(membership)) != 0)
        return -1;
    const unsigned char loop = 0;
    if (setsockopt(sock, IPPROTO_IP, IP_MULTICAST_LOOP, &loop, sizeof(loop)) != 0)
        return -1;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr = membership.imr_multiaddr;
    address.sin_port = htons(port);
    return bind(sock, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
}

int CRTSP_Server::Create_A_Valid_Sock(int unicast, const char* address, unsigned short port)
{
    int sock = NC_UDP_CreateSocket();
    if (sock == -1)
        return -1;
    const bool bound =
        SetBuffer(sock, SO_SNDBUF) && (unicast != 0 ? BindUnicast(sock) : JoinMulticast(sock, address, port)) == 0;
    if (!bound)
        NC_CloseSocket(sock);
    return sock;
}

int CRTSP_Server::Create_RTP_RTCP_Link_UDP(CRTSP_ClientSession* session, int unicast, CRTSP_RTCPLink** ppRTCPLnk,
                                           CRTSP_RTPLink** ppRTPLnk, const char* address, unsigned short rtpPort,
                                           unsigned short rtcpPort, const RTSP_STREAM_CFG* config)
{
    PF_ASSERT(nullptr != ppRTCPLnk);
    PF_ASSERT(nullptr != ppRTPLnk);
    *ppRTCPLnk = nullptr;
    *ppRTPLnk = nullptr;

    const int rtpSock = Create_A_Valid_Sock(unicast, address, rtpPort);
    if (rtpSock == -1)
        return -1;
    const unsigned int ssrc = static_cast<unsigned int>(PUB_Rand());
    const unsigned int initialTimestamp = static_cast<unsigned int>(PUB_Rand());
    const unsigned int ip = NC_inet_addr(address);
    const RTP_LINK_CFG link{session, ip, rtpPort, *config, ssrc, initialTimestamp, m_scheduler, rtpSock};
    std::unique_ptr<CRTSP_RTPLink, LinkEnd> rtp(
        MakeOrClose(rtpSock,
                    [&]
                    {
                        return unicast != 0 ? CRTSP_RTPLink_UDP::Create_RTSP_RTPLink_UDP(link)
                                            : CRTSP_RTPLink_UDP_Multicast::Create_RTSP_RTPLink_UDP_Multicast(link);
                    }),
        LinkEnd{session});

    const int rtcpSock = Create_A_Valid_Sock(unicast, address, rtcpPort);
    if (rtcpSock == -1)
        return -1;
    const RTCP_LINK_CFG rtcpLink{session, ip,          rtcpPort, static_cast<unsigned char>(config->frameType),
                                 ssrc,    m_scheduler, rtcpSock, config->linkTimeOutMs};
    *ppRTCPLnk =
        MakeOrClose(rtcpSock,
                    [&]
                    {
                        return unicast != 0
                                   ? CRTSP_RTCPLink_UDP::Create_RTSP_RTCPLink_UDP(rtcpLink)
                                   : CRTSP_RTCPLink_UDP_Multicast::Create_RTSP_RTCPLink_UDP_Multicast(rtcpLink);
                    });
    *ppRTPLnk = rtp.release();
    return 0;
}
