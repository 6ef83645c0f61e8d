#include "RTSP_RTPLink_UDP_Multicast.h"

#include "NC_Socket.h"
#include "RTSP_Console.h"
#include "RTSP_DataManager.h"
#include "RTSP_Datagram.h"
#include "RTSP_MulticastSessions.h"

CRTSP_RTPLink_UDP_Multicast* CRTSP_RTPLink_UDP_Multicast::m_RTPSock = nullptr;

CRTSP_RTPLink* CRTSP_RTPLink_UDP_Multicast::Create_RTSP_RTPLink_UDP_Multicast(const RTP_LINK_CFG& cfg)
{
    if (m_RTPSock != nullptr)
    {
        m_RTPSock->m_sessions.push_back(cfg.session);
        ++m_RTPSock->m_NURTPMulticast;
        return m_RTPSock;
    }
    m_RTPSock = new CRTSP_RTPLink_UDP_Multicast(cfg);
    return m_RTPSock;
}

CRTSP_RTPLink_UDP_Multicast::CRTSP_RTPLink_UDP_Multicast(const RTP_LINK_CFG& cfg)
    : CRTSP_RTPLink(cfg), m_sessions{cfg.session}
{
}

CRTSP_RTPLink_UDP_Multicast::~CRTSP_RTPLink_UDP_Multicast()
{
    m_RTPSock = nullptr;
}

void CRTSP_RTPLink_UDP_Multicast::Destroy()
{
    --m_NURTPMulticast;
    if (m_NURTPMulticast != 0 && m_sock != -1)
    {
        RTSP_ConsoleLine("m_NURTPMulticast = %d\n", m_NURTPMulticast);
        return;
    }
    CRTSP_RTPLink::Destroy();
}

int CRTSP_RTPLink_UDP_Multicast::HandleTimeOut(int iTypeMask)
{
    RTSP_ConsoleLine("Multicast RTP Time Out ");
    m_inTimeOut = true;
    RtpTimeOutSessions(m_sessions, iTypeMask);
    return HANDLER_GONE;
}

void CRTSP_RTPLink_UDP_Multicast::Fail()
{
    HandleTimeOut(SOCK_HANDLER_SEND);
}

void CRTSP_RTPLink_UDP_Multicast::CloseSocket()
{
    RTSP_ConsoleLine("Multicast RTP sock %d\n", m_sock);
    NC_CloseSocket(m_sock);
}

void CRTSP_RTPLink_UDP_Multicast::RTSP_RTPLink_Start(CSharedDataList* list, CRTSP_RTCPLink* rtcp)
{
    if (m_NuRTPStart == 0)
        CRTSP_RTPLink::RTSP_RTPLink_Start(list, rtcp);
    else
        CRTSP_DataManager::Instance().DelSharedDataList(list); // one list feeds all, so a further one would only fill
    ++m_NuRTPStart;
    RTSP_ConsoleLine("m_NuRTPStart = %d\n", m_NuRTPStart);
}

void CRTSP_RTPLink_UDP_Multicast::RTSP_RTPLink_Stop()
{
    --m_NuRTPStart;
    if (m_NuRTPStart == 0)
        CRTSP_RTPLink::RTSP_RTPLink_Stop();
    RTSP_ConsoleLine("m_NuRTPStart = %d\n", m_NuRTPStart);
}

void CRTSP_RTPLink_UDP_Multicast::CRTSP_Erase(CRTSP_ClientSession* session)
{
    if (!m_inTimeOut)
        m_sessions.remove(session);
}

int CRTSP_RTPLink_UDP_Multicast::SendData(const char* data, int length)
{
    return RtpSendDatagram(m_sock, data, length, m_ip, m_port);
}

int CRTSP_RTPLink_UDP_Multicast::RecvData(char* buffer, int length)
{
    RTSP_ConsoleLine("warning: %s %d %s   why recv data? \n", __FILE__, __LINE__, __func__);
    return RtpRecvDatagram(m_sock, buffer, length);
}
