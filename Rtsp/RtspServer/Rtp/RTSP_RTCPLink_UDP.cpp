#include "RTSP_RTCPLink_UDP.h"

#include "NC_Socket.h"
#include "RTSP_ClientSession.h"
#include "RTSP_Console.h"
#include "RTSP_Datagram.h"

CRTSP_RTCPLink* CRTSP_RTCPLink_UDP::Create_RTSP_RTCPLink_UDP(const RTCP_LINK_CFG& cfg)
{
    return new CRTSP_RTCPLink_UDP(cfg);
}

CRTSP_RTCPLink_UDP::CRTSP_RTCPLink_UDP(const RTCP_LINK_CFG& cfg) : CRTSP_RTCPLink(cfg, -1), m_session(cfg.session) {}

int CRTSP_RTCPLink_UDP::HandleTimeOut(int iTypeMask)
{
    RTSP_ConsoleLine("RTCP Time Out ");
    return m_session->HandleTimeOut(iTypeMask);
}

void CRTSP_RTCPLink_UDP::Fail()
{
    m_session->Destroy();
}

void CRTSP_RTCPLink_UDP::CloseSocket()
{
    RTSP_ConsoleLine("RTcP sock %d\n", m_sock);
    NC_CloseSocket(m_sock);
}

void CRTSP_RTCPLink_UDP::CRTSP_Erase(CRTSP_ClientSession* /*session*/) {}

int CRTSP_RTCPLink_UDP::SendData(const char* data, int length)
{
    return RtpSendDatagram(m_sock, data, length, m_ip, m_port);
}

int CRTSP_RTCPLink_UDP::RecvData(char* buffer, int length)
{
    return RtpRecvDatagram(m_sock, buffer, length);
}
