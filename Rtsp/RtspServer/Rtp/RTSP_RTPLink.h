// RTSP_RTPLink.h: one UDP socket that sends one track as RTP (RFC 3550).
//
// Takes frames from its list, packetises and sends them, and has its RTCP partner report after the first packet and
// every seven seconds of media time. Scheduler thread only.
#pragma once

#include "RTSP_RTPPackUp.h"
#include "RTSP_SockHandler.h"
#include "RTSP_StreamCfg.h"
#include "SendingCommonData.h"

#include <cstdint>
#include <list>
#include <memory>

class CRTSP_ClientSession;
class CRTSP_RTCPLink;
class CSharedDataList;

/// What an RTP link is made from.
struct RTP_LINK_CFG
{
    CRTSP_ClientSession* session;
    unsigned int ip; ///< destination, network order
    unsigned short port;
    RTSP_STREAM_CFG config;
    unsigned int ssrc;
    unsigned int initialTimestamp;
    CRTSP_SockScheduler& scheduler;
    int sock; ///< owned by the link
};

class CRTSP_RTPLink : public CRTSP_SockHandler
{
public:
    /// Media time from one report to the next, microseconds: a report is due when more than this has passed.
    static constexpr std::int64_t REPORT_INTERVAL_US = 6999999;

    int HandleAccept() override;
    int HandleRecv() override;
    bool HasDataToSend() override;
    int HandleSend() override;
    int HandleConnected() override;

    /// Begins to send. @param list  owned from here on; one held already is deleted
    virtual void RTSP_RTPLink_Start(CSharedDataList* list, CRTSP_RTCPLink* rtcp);
    virtual void RTSP_RTPLink_Stop();
    /// A session that uses the link is about to go.
    virtual void CRTSP_Erase(CRTSP_ClientSession* session) = 0;
    /// @return the length when sent, 0 when it would block, -1 on error
    virtual int SendData(const char* data, int length) = 0;
    /// @return bytes, 0 when nothing is there, -1 on error
    virtual int RecvData(char* buffer, int length) = 0;

    void ForgetPartner() { m_partner = nullptr; } ///< the RTCP link is about to go
    unsigned short GetPort() const;               ///< local
    unsigned short GetCurrentSeqNo() const { return m_packUp.GetCurrentSeqNo(); }
    unsigned int GetNextTimestamp() const { return m_packUp.GetNextTimestamp(); }
    unsigned int GetSSRC() const { return m_packUp.GetSSRC(); }

protected:
    explicit CRTSP_RTPLink(const RTP_LINK_CFG& cfg);
    ~CRTSP_RTPLink() override;

    const unsigned int m_ip; ///< destination, network order
    const unsigned short m_port;

private:
    int SendPending();
    int SendQueue();
    int SendTrain();
    int SendCommonData(SENDING_COMMON_DATA data);
    bool TakeFrame();
    void AddOctets(int from, int to);
    bool CountSent();
    int TrainLength() const;
    void PopPacket();

    std::uint32_t m_reportTimestamp;     ///< RTP timestamp that belongs to m_reportBaseUs
    std::uint64_t m_reportBaseUs = 0;    ///< presentation time of the report's frame, 0 before the first
    CRTSP_RTCPLink* m_partner = nullptr; ///< while started
    SENDING_COMMON_DATA m_pending{};     ///< a packet of which a part went out
    CSharedDataList* m_list = nullptr;   ///< owned by the data manager, removed by this link
    CRTSP_RTPPackUp m_packUp;
    std::list<SENDING_COMMON_DATA> m_packets; ///< ready to go, in order
    std::uint32_t m_packetCount = 0;
    std::uint32_t m_octetCount = 0;
    bool m_reportSent = false;
    bool m_trains = true; ///< the kernel and the route take several datagrams in one call
};
