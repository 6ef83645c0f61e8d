// RTSP_RTCPLink.h: one UDP socket that reports on one track (RFC 3550, 6.4).
//
// Sends a sender report with a source description when its RTP partner asks for it. What clients send is read and
// thrown away: their silence has no effect. Scheduler thread only.
#pragma once

#include "RTSP_RTCPPackUp.h"
#include "RTSP_SockHandler.h"

#include <cstdint>

class CRTSP_ClientSession;
class CRTSP_RTPLink;

/// What an RTCP link is made from.
struct RTCP_LINK_CFG
{
    CRTSP_ClientSession* session;
    unsigned int ip; ///< destination, network order
    unsigned short port;
    unsigned char frameType;
    unsigned int ssrc;
    CRTSP_SockScheduler& scheduler;
    int sock;      ///< owned by the link
    int timeOutMs; ///< silence after which a multicast link ends; 0 and -1: none
};

class CRTSP_RTCPLink : public CRTSP_SockHandler
{
public:
    static constexpr int REPORT_WAIT_MS = 1000; ///< for room in the socket's buffer

    int HandleAccept() override;
    int HandleRecv() override;
    bool HasDataToSend() override; ///< never: reports go out at once
    int HandleSend() override;
    int HandleConnected() override;
    void Destroy() override;

    virtual void RTSP_RTCPLink_Start(CRTSP_RTPLink* rtp);
    virtual void RTSP_RTCPLink_Stop();
    virtual void CRTSP_Erase(CRTSP_ClientSession* session) = 0;
    virtual int SendData(const char* data, int length) = 0; ///< as in CRTSP_RTPLink
    virtual int RecvData(char* buffer, int length) = 0;     ///< as in CRTSP_RTPLink

    /// Sends a report, waiting for room for REPORT_WAIT_MS at most.
    /// @param timeUs  presentation time that belongs to `rtpTimestamp`, microseconds
    /// @return 0; -1 when it could not be sent
    int RTSP_RTCPLink_Send_SR_SDES(std::uint32_t rtpTimestamp, std::uint64_t timeUs, std::uint32_t packets,
                                   std::uint32_t octets);

    unsigned short GetPort() const; ///< local

protected:
    CRTSP_RTCPLink(const RTCP_LINK_CFG& cfg, int receiveTimeOutMs);
    ~CRTSP_RTCPLink() override = default;

    const unsigned int m_ip; ///< destination, network order
    const unsigned short m_port;

private:
    bool WaitWritable(unsigned int startTick) const;

    CRTSP_RTCPPackUp m_packUp;
    CRTSP_RTPLink* m_partner = nullptr; ///< while started
};
