#include "RTSP_RTCPLink.h"

#include "PFAssert.h"
#include "PFHelper.h"
#include "RTSP_RTPLink.h"
#include "RTSP_SockScheduler.h"

#include <poll.h>

namespace
{

constexpr int SCRATCH_BYTES = 16384;

/// A sender report is 28 bytes, a source description at most 268.
constexpr int MAX_REPORT_BYTES = 512;

} // namespace

CRTSP_RTCPLink::CRTSP_RTCPLink(const RTCP_LINK_CFG& cfg, int receiveTimeOutMs)
    : CRTSP_SockHandler(cfg.scheduler, cfg.sock), m_ip(cfg.ip), m_port(cfg.port), m_packUp(cfg.ssrc)
{
    m_scheduler.AddSockHandler(SOCK_HANDLER_RECV, m_sock, this, receiveTimeOutMs);
    m_scheduler.AddSockHandler(SOCK_HANDLER_SEND, m_sock, this, -1);
}

int CRTSP_RTCPLink::HandleAccept()
{
    PF_ASSERT(false);
    return HANDLER_NOTHING;
}

int CRTSP_RTCPLink::HandleConnected()
{
    PF_ASSERT(false);
    return HANDLER_NOTHING;
}

int CRTSP_RTCPLink::HandleSend()
{
    PF_ASSERT(false);
    return HANDLER_NOTHING;
}

int CRTSP_RTCPLink::HandleRecv()
{
    static char scratch[SCRATCH_BYTES];
    return RecvData(scratch, SCRATCH_BYTES) < 0 ? HANDLER_GONE : HANDLER_NOTHING;
}

bool CRTSP_RTCPLink::HasDataToSend()
{
    return false;
}

void CRTSP_RTCPLink::Destroy()
{
    if (m_partner != nullptr)
        m_partner->ForgetPartner();
    CRTSP_SockHandler::Destroy();
}

void CRTSP_RTCPLink::RTSP_RTCPLink_Start(CRTSP_RTPLink* rtp)
{
    m_partner = rtp;
}

void CRTSP_RTCPLink::RTSP_RTCPLink_Stop()
{
    m_partner = nullptr;
}

unsigned short CRTSP_RTCPLink::GetPort() const
{
    unsigned short port = 0;
    GetSockName(static_cast<int*>(nullptr), &port);
    return port;
}

int CRTSP_RTCPLink::RTSP_RTCPLink_Send_SR_SDES(std::uint32_t rtpTimestamp, std::uint64_t timeUs, std::uint32_t packets,
                                               std::uint32_t octets)
{
    m_packUp.Clear();
    m_packUp.MakeSenderReport(rtpTimestamp, static_cast<long long>(timeUs), packets, octets);
    m_packUp.MakeSourceDescription();
    char report[MAX_REPORT_BYTES];
    int size = MAX_REPORT_BYTES;
    if (m_packUp.GetRTCPData(report, &size) != 0)
        return -1;

    const unsigned int startTick = CPFHelper::GetTickCount();
    for (int sent = 0; sent < size;)
    {
        const int count = SendData(report + sent, size - sent);
        if (count < 0 || (count == 0 && !WaitWritable(startTick)))
            return -1;
        sent += count;
    }
    return 0;
}

/// Waits for room until REPORT_WAIT_MS have passed since the start. @return false when the time is up
bool CRTSP_RTCPLink::WaitWritable(unsigned int startTick) const
{
    const unsigned int passed = CPFHelper::GetTickCount() - startTick;
    if (passed >= static_cast<unsigned int>(REPORT_WAIT_MS))
        return false;
    pollfd writable{m_sock, POLLOUT, 0};
    return poll(&writable, 1, REPORT_WAIT_MS - static_cast<int>(passed)) > 0;
}
