// RTSP_RTPLink_UDP.h: the RTP link of one client. Scheduler thread only.
#pragma once

#include "RTSP_RTPLink.h"

class CRTSP_RTPLink_UDP : public CRTSP_RTPLink
{
public:
    static CRTSP_RTPLink* Create_RTSP_RTPLink_UDP(const RTP_LINK_CFG& cfg);

    int HandleTimeOut(int iTypeMask) override;
    void Fail() override; ///< ends the session, which ends the link
    void CloseSocket() override;
    void CRTSP_Erase(CRTSP_ClientSession* session) override;
    int SendData(const char* data, int length) override;
    int RecvData(char* buffer, int length) override;

private:
    explicit CRTSP_RTPLink_UDP(const RTP_LINK_CFG& cfg);
    ~CRTSP_RTPLink_UDP() override = default;

    CRTSP_ClientSession* const m_session; ///< owns this link
};
