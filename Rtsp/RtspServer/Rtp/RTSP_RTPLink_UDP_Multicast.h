// RTSP_RTPLink_UDP_Multicast.h: the one RTP link that all multicast clients share. Scheduler thread only.
#pragma once

#include "RTSP_RTPLink.h"

#include <list>

class CRTSP_RTPLink_UDP_Multicast : public CRTSP_RTPLink
{
public:
    /// The shared link; a client after the first joins it, and its own socket stays open with nothing on it.
    static CRTSP_RTPLink* Create_RTSP_RTPLink_UDP_Multicast(const RTP_LINK_CFG& cfg);

    void Destroy() override; ///< ends the link with its last user
    int HandleTimeOut(int iTypeMask) override;
    void Fail() override; ///< ends every user's session, and the link with the last
    void CloseSocket() override;
    void RTSP_RTPLink_Start(CSharedDataList* list, CRTSP_RTCPLink* rtcp) override; ///< the first start counts
    void RTSP_RTPLink_Stop() override;                                             ///< the last stop counts
    void CRTSP_Erase(CRTSP_ClientSession* session) override;
    int SendData(const char* data, int length) override;
    int RecvData(char* buffer, int length) override;

private:
    explicit CRTSP_RTPLink_UDP_Multicast(const RTP_LINK_CFG& cfg);
    ~CRTSP_RTPLink_UDP_Multicast() override;

    static CRTSP_RTPLink_UDP_Multicast* m_RTPSock; ///< the shared link, null when there is none

    std::list<CRTSP_ClientSession*> m_sessions;
    bool m_inTimeOut = false;
    int m_NuRTPStart = 0;     ///< users that play
    int m_NURTPMulticast = 1; ///< users
};
