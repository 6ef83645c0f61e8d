// RTSP_RTCPPackUp.h: builds compound RTCP packets for one link (RFC 3550, 6.4.1 and 6.5).
//
// Sender report and source description; nothing else is sent. Scheduler thread only, so there is no lock.
#pragma once

#include "PFHelper.h"

#include <list>
#include <memory>
#include <string>

class CRTSP_RTCPPackUp
{
public:
    /// @param ssrc  32 bits
    explicit CRTSP_RTCPPackUp(unsigned long ssrc);
    virtual ~CRTSP_RTCPPackUp();
    CRTSP_RTCPPackUp(const CRTSP_RTCPPackUp&) = delete;
    CRTSP_RTCPPackUp& operator=(const CRTSP_RTCPPackUp&) = delete;

    void Clear() { m_used = 0; } ///< begins a new compound packet

    // Each appends one packet. @return the bytes built so far

    /// @param rtpTimestamp     32 bits, the same moment as `timeUs`
    /// @param timeUs           microseconds since 1970; its fraction goes out as microseconds, not scaled to 2^32
    /// @param packets, octets  32 bits
    int MakeSenderReport(unsigned long rtpTimestamp, long long timeUs, unsigned long packets, unsigned long octets);
    int MakeSourceDescription();
    int MakeApplicationSpecific(); ///< a fixed "qtsi" packet; no path sends it

    /// Takes what is built.
    /// @param size  room in `out`; receives the bytes copied
    /// @return 0, and nothing is built any more; -1 when there is nothing, or not enough room: what is built stays
    int GetRTCPData(char* out, int* size);

    /// Appends bytes. @param pad  appends zero bytes until all that is built is a multiple of four
    void FillContent(const void* data, int len, bool pad);

private:
    void Reserve(int more);

    const unsigned int m_ssrc;
    std::unique_ptr<unsigned char[]> m_buffer;
    int m_capacity;
    int m_used = 0;
};

/// The canonical name that the reports carry: the hardware address of "eth0", without one that of the first interface,
/// without any "00:00:00:00:00:00".
std::string RtcpCanonicalName(const std::list<CPFHelper::__TNICInfo>& interfaces);
