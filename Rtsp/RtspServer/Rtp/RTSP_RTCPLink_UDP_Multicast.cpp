#include "RTSP_RTCPLink_UDP_Multicast.h"

#include "NC_Socket.h"
#include "RTSP_Console.h"
#include "RTSP_Datagram.h"
#include "RTSP_MulticastSessions.h"

CRTSP_RTCPLink_UDP_Multicast* CRTSP_RTCPLink_UDP_Multicast::m_RTCPSock = nullptr;

CRTSP_RTCPLink* CRTSP_RTCPLink_UDP_Multicast::Create_RTSP_RTCPLink_UDP_Multicast(const RTCP_LINK_CFG& cfg)
{
    if (m_RTCPSock != nullptr)
    {
        m_RTCPSock->m_sessions.push_back(cfg.session);
        ++m_RTCPSock->m_NURTCPMulticast;
        return m_RTCPSock;
    }
    m_RTCPSock = new CRTSP_RTCPLink_UDP_Multicast(cfg);
    return m_RTCPSock;
}

CRTSP_RTCPLink_UDP_Multicast::CRTSP_RTCPLink_UDP_Multicast(const RTCP_LINK_CFG& cfg)
    : CRTSP_RTCPLink(cfg, cfg.timeOutMs == 0 ? -1 : cfg.timeOutMs), m_sessions{cfg.session}
{
}

CRTSP_RTCPLink_UDP_Multicast::~CRTSP_RTCPLink_UDP_Multicast()
{
    m_RTCPSock = nullptr;
}

void CRTSP_RTCPLink_UDP_Multicast::Destroy()
{
    --m_NURTCPMulticast;
    if (m_NURTCPMulticast != 0 && m_sock != -1)
    {
        RTSP_ConsoleLine("m_NURTCPMulticast = %d\n", m_NURTCPMulticast);
        return;
    }
    CRTSP_RTCPLink::Destroy();
}

int CRTSP_RTCPLink_UDP_Multicast::HandleTimeOut(int iTypeMask)
{
    RTSP_ConsoleLine("Multicast RTCP Time Out ");
    m_inTimeOut = true;
    RtpTimeOutSessions(m_sessions, iTypeMask);
    return HANDLER_GONE;
}

void CRTSP_RTCPLink_UDP_Multicast::Fail()
{
    HandleTimeOut(SOCK_HANDLER_SEND);
}

void CRTSP_RTCPLink_UDP_Multicast::CloseSocket()
{
    RTSP_ConsoleLine("Multicast RTcP sock %d\n", m_sock);
    NC_CloseSocket(m_sock);
}

void CRTSP_RTCPLink_UDP_Multicast::RTSP_RTCPLink_Start(CRTSP_RTPLink* rtp)
{
    if (m_NuRTCPStart == 0)
        CRTSP_RTCPLink::RTSP_RTCPLink_Start(rtp);
    ++m_NuRTCPStart;
    RTSP_ConsoleLine("m_NuRTCPStart = %d\n", m_NuRTCPStart);
}

void CRTSP_RTCPLink_UDP_Multicast::RTSP_RTCPLink_Stop()
{
    --m_NuRTCPStart;
    if (m_NuRTCPStart == 0)
        CRTSP_RTCPLink::RTSP_RTCPLink_Stop();
    RTSP_ConsoleLine("m_NuRTCPStart = %d\n", m_NuRTCPStart);
}

void CRTSP_RTCPLink_UDP_Multicast::CRTSP_Erase(CRTSP_ClientSession* session)
{
    if (!m_inTimeOut)
        m_sessions.remove(session);
}

int CRTSP_RTCPLink_UDP_Multicast::SendData(const char* data, int length)
{
    return RtpSendDatagram(m_sock, data, length, m_ip, m_port);
}

int CRTSP_RTCPLink_UDP_Multicast::RecvData(char* buffer, int length)
{
    RTSP_ConsoleLine("%s %d %s   recv RTCP data \n", __FILE__, __LINE__, __func__);
    return RtpRecvDatagram(m_sock, buffer, length);
}
