// RTSP_RTCPLink_UDP_Multicast.h: the one RTCP link that all multicast clients share. Scheduler thread only.
#pragma once

#include "RTSP_RTCPLink.h"

#include <list>

class CRTSP_RTCPLink_UDP_Multicast : public CRTSP_RTCPLink
{
public:
    /// The shared link; a client after the first joins it, and its own socket stays open with nothing on it.
    static CRTSP_RTCPLink* Create_RTSP_RTCPLink_UDP_Multicast(const RTCP_LINK_CFG& cfg);

    void Destroy() override; ///< ends the link with its last user
    int HandleTimeOut(int iTypeMask) override;
    void Fail() override; ///< ends every user's session, and the link with the last
    void CloseSocket() override;
    void RTSP_RTCPLink_Start(CRTSP_RTPLink* rtp) override; ///< the first start counts
    void RTSP_RTCPLink_Stop() override;                    ///< the last stop counts
    void CRTSP_Erase(CRTSP_ClientSession* session) override;
    int SendData(const char* data, int length) override;
    int RecvData(char* buffer, int length) override;

private:
    explicit CRTSP_RTCPLink_UDP_Multicast(const RTCP_LINK_CFG& cfg);
    ~CRTSP_RTCPLink_UDP_Multicast() override;

    static CRTSP_RTCPLink_UDP_Multicast* m_RTCPSock; ///< the shared link, null when there is none

    std::list<CRTSP_ClientSession*> m_sessions;
    bool m_inTimeOut = false;
    int m_NuRTCPStart = 0;     ///< users that play
    int m_NURTCPMulticast = 1; ///< users
};
