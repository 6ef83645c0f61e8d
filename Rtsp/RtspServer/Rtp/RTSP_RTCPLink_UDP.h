// RTSP_RTCPLink_UDP.h: the RTCP link of one client. Scheduler thread only.
#pragma once

#include "RTSP_RTCPLink.h"

class CRTSP_RTCPLink_UDP : public CRTSP_RTCPLink
{
public:
    static CRTSP_RTCPLink* Create_RTSP_RTCPLink_UDP(const RTCP_LINK_CFG& cfg);

    int HandleTimeOut(int iTypeMask) override;
    void Fail() override; ///< ends the session, which ends the link
    void CloseSocket() override;
    void CRTSP_Erase(CRTSP_ClientSession* session) override;
    int SendData(const char* data, int length) override;
    int RecvData(char* buffer, int length) override;

private:
    explicit CRTSP_RTCPLink_UDP(const RTCP_LINK_CFG& cfg);
    ~CRTSP_RTCPLink_UDP() override = default;

    CRTSP_ClientSession* const m_session; ///< owns this link
};
