#include "RTSP_RTPLink_UDP.h"

#include "NC_Socket.h"
#include "RTSP_ClientSession.h"
#include "RTSP_Console.h"
#include "RTSP_Datagram.h"

CRTSP_RTPLink* CRTSP_RTPLink_UDP::Create_RTSP_RTPLink_UDP(const RTP_LINK_CFG& cfg)
{
    return new CRTSP_RTPLink_UDP(cfg);
}

CRTSP_RTPLink_UDP::CRTSP_RTPLink_UDP(const RTP_LINK_CFG& cfg) : CRTSP_RTPLink(cfg), m_session(cfg.session) {}

int CRTSP_RTPLink_UDP::HandleTimeOut(int iTypeMask)
{
    RTSP_ConsoleLine("RTP Time Out ");
    return m_session->HandleTimeOut(iTypeMask);
}

void CRTSP_RTPLink_UDP::Fail()
{
    m_session->Destroy();
}

void CRTSP_RTPLink_UDP::CloseSocket()
{
    RTSP_ConsoleLine("RTP sock %d\n", m_sock);
    NC_CloseSocket(m_sock);
}

void CRTSP_RTPLink_UDP::CRTSP_Erase(CRTSP_ClientSession* /*session*/) {}

int CRTSP_RTPLink_UDP::SendData(const char* data, int length)
{
    return RtpSendDatagram(m_sock, data, length, m_ip, m_port);
}

int CRTSP_RTPLink_UDP::RecvData(char* buffer, int length)
{
    RTSP_ConsoleLine("warning: %s %d %s   why recv data? \n", __FILE__, __LINE__, __func__);
    return RtpRecvDatagram(m_sock, buffer, length);
}
