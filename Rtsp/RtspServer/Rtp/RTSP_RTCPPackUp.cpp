#include "RTSP_RTCPPackUp.h"

#include "ByteOrder.h"
#include "RTSP_Console.h"
#include "ShareSDK.h"
#include "SysHelper.h"

#include <cstdio>
#include <cstring>

namespace
{
constexpr int FIRST_CAPACITY = 1024;
constexpr unsigned int NTP_OFFSET = 0x83AA7E80; // seconds from 1900 to 1970

constexpr unsigned char RTCP_SENDER_REPORT = 200;
constexpr unsigned char RTCP_SOURCE_DESCRIPTION = 202;
constexpr unsigned char RTCP_APPLICATION = 204;
constexpr unsigned char SDES_TYPE_END = 0;
constexpr unsigned char SDES_TYPE_CNAME = 1;

// The interfaces are read from files; a client's report asks for them every seven seconds.
constexpr unsigned int CNAME_LIFE_MS = 5000;

struct RTCP_HEADER
{
    unsigned char count;
    unsigned char type;
    unsigned int length; ///< of the packet in 32-bit words, less one
};

// |V=2|P|  count  |     type      |  length in 32-bit words - 1   |   RFC 3550, 6.4.1
// |                             SSRC                              |
void WriteRtcpHeader(unsigned char* out, const RTCP_HEADER& header, unsigned int ssrc)
{
    out[0] = static_cast<unsigned char>(0x80 | header.count); // version 2, no padding
    out[1] = header.type;
    PutBE16(out + 2, static_cast<std::uint16_t>(header.length));
    PutBE32(out + 4, ssrc);
}

// The name of this device, looked up again when it is some seconds old.
struct CanonicalName
{
    std::string text;
    unsigned int readAt = 0;

    const std::string& Get()
    {
        const unsigned int now = CPFHelper::GetTickCount();
        if (readAt == 0 || now - readAt >= CNAME_LIFE_MS)
        {
            std::list<CPFHelper::__TNICInfo> interfaces;
            CPFHelper::GetNICList(interfaces);
            text = RtcpCanonicalName(interfaces);
            readAt = now;
        }
        return text;
    }
};
} // namespace

std::string RtcpCanonicalName(const std::list<CPFHelper::__TNICInfo>& interfaces)
{
    static const unsigned char NO_ADDRESS[6] = {};
    const unsigned char* address = interfaces.empty() ? NO_ADDRESS : interfaces.front().MAC;
    for (const CPFHelper::__TNICInfo& entry : interfaces)
    {
        if (strcmp(entry.name, "eth0") == 0)
            address = entry.MAC;
    }
    char text[24] = "";
    CSysHelper::MACAddressToStr(address, text, sizeof(text));
    return text;
}

CRTSP_RTCPPackUp::CRTSP_RTCPPackUp(unsigned long ssrc)
    : m_ssrc(static_cast<unsigned int>(ssrc)), m_buffer(new unsigned char[FIRST_CAPACITY]), m_capacity(FIRST_CAPACITY)
{
}

CRTSP_RTCPPackUp::~CRTSP_RTCPPackUp() = default;

// |                    header, type 200, length 6                 |
// |                             SSRC                              |
// |                          NTP seconds                          |
// |                  NTP fraction: microseconds                   |
// |                         RTP timestamp                         |
// |                         packet count                          |
// |                          octet count                          |
int CRTSP_RTCPPackUp::MakeSenderReport(unsigned long rtpTimestamp, long long timeUs, unsigned long packets,
                                       unsigned long octets)
{
    unsigned char report[28];
    WriteRtcpHeader(report, {0, RTCP_SENDER_REPORT, 6}, m_ssrc);
    PutBE32(report + 8, static_cast<std::uint32_t>(timeUs / 1000000) + NTP_OFFSET);
    // Clients get the microseconds as they are, not scaled to 2^32.
    PutBE32(report + 12, static_cast<std::uint32_t>(timeUs % 1000000));
    PutBE32(report + 16, static_cast<std::uint32_t>(rtpTimestamp));
    PutBE32(report + 20, static_cast<std::uint32_t>(packets));
    PutBE32(report + 24, static_cast<std::uint32_t>(octets));
    FillContent(report, sizeof(report), false);
    return m_used;
}

// |            header, count 1, type 202, length of the rest      |
// |                             SSRC                              |
// |  CNAME = 1    |    length     | name, end, padding ...
int CRTSP_RTCPPackUp::MakeSourceDescription()
{
    static thread_local CanonicalName canonicalName;
    const std::string& name = canonicalName.Get();
    const auto length = static_cast<unsigned int>(name.size());

    unsigned char start[10];
    WriteRtcpHeader(start, {1, RTCP_SOURCE_DESCRIPTION, (length + 10) >> 2}, m_ssrc);
    start[8] = SDES_TYPE_CNAME;
    start[9] = static_cast<unsigned char>(length);
    FillContent(start, sizeof(start), false);
    FillContent(name.data(), static_cast<int>(length), false);
    FillContent(&SDES_TYPE_END, 1, true);
    return m_used;
}

int CRTSP_RTCPPackUp::MakeApplicationSpecific()
{
    static const unsigned char CONSTANTS[] = {'q',  't',  's',  'i',  0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                                              0x00, 0x02, 0x3D, 0x4A, 0x00, 0x04, 0x00, 0x00, 0x00, 0x0E};
    unsigned char start[8];
    WriteRtcpHeader(start, {1, RTCP_APPLICATION, 6}, m_ssrc);
    FillContent(start, sizeof(start), false);
    FillContent(CONSTANTS, sizeof(CONSTANTS), false);
    return m_used;
}

int CRTSP_RTCPPackUp::GetRTCPData(char* out, int* size)
{
    if (m_used == 0 || out == nullptr || size == nullptr || *size <= 0)
    {
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
        return -1;
    }
    if (*size < m_used)
    {
        RTSP_ConsoleLine("################### %d %d\n", *size, m_used);
        return -1;
    }
    memcpy(out, m_buffer.get(), static_cast<std::size_t>(m_used));
    *size = m_used;
    m_used = 0;
    return 0;
}

void CRTSP_RTCPPackUp::FillContent(const void* data, int len, bool pad)
{
    if (data == nullptr || len < 0)
    {
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
        return;
    }
    Reserve(len + 3);
    memcpy(m_buffer.get() + m_used, data, static_cast<std::size_t>(len));
    m_used += len;
    while (pad && m_used % 4 != 0)
        m_buffer[static_cast<std::size_t>(m_used++)] = 0;
}

void CRTSP_RTCPPackUp::Reserve(int more)
{
    int capacity = m_capacity;
    while (capacity - m_used < more)
        capacity *= 2;
    if (capacity == m_capacity)
        return;
    std::unique_ptr<unsigned char[]> larger(new unsigned char[static_cast<std::size_t>(capacity)]);
    memcpy(larger.get(), m_buffer.get(), static_cast<std::size_t>(m_used));
    m_buffer = std::move(larger);
    m_capacity = capacity;
}
