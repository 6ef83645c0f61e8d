#include "RTSP_RTPLink.h"

#include "NC_Socket.h"
#include "PFAssert.h"
#include "RTSP_DataManager.h"
#include "RTSP_RTCPLink.h"
#include "RTSP_SockScheduler.h"
#include "SharedData.h"
#include "SharedDataList.h"

#include <algorithm>

namespace
{

constexpr int RTP_HEADER_BYTES = 12;
constexpr int SEND_TIMEOUT_MS = 25000;
constexpr int SCRATCH_BYTES = 16384;

/// One call takes 64 datagrams at most, and 65507 bytes (the largest UDP payload over IPv4).
constexpr int TRAIN_DATAGRAMS = 44;

void Free(SENDING_COMMON_DATA& data)
{
    delete[] data.data;
    data = {};
}

} // namespace

CRTSP_RTPLink::CRTSP_RTPLink(const RTP_LINK_CFG& cfg)
    : CRTSP_SockHandler(cfg.scheduler, cfg.sock), m_ip(cfg.ip), m_port(cfg.port),
      m_reportTimestamp(cfg.initialTimestamp),
      m_packUp(STREAMING_UDP, cfg.config.frameType, cfg.config.encodeType, cfg.config.payloadType, cfg.config.clockRate,
               cfg.ssrc, cfg.initialTimestamp, 0)
{
    m_scheduler.AddSockHandler(SOCK_HANDLER_RECV, m_sock, this, -1);
    m_scheduler.AddSockHandler(SOCK_HANDLER_SEND, m_sock, this, SEND_TIMEOUT_MS);
}

CRTSP_RTPLink::~CRTSP_RTPLink()
{
    if (m_list != nullptr)
        CRTSP_DataManager::Instance().DelSharedDataList(m_list);
    Free(m_pending);
    for (SENDING_COMMON_DATA& packet : m_packets)
        Free(packet);
}

int CRTSP_RTPLink::HandleAccept()
{
    PF_ASSERT(false);
    return HANDLER_NOTHING;
}

int CRTSP_RTPLink::HandleConnected()
{
    PF_ASSERT(false);
    return HANDLER_NOTHING;
}

int CRTSP_RTPLink::HandleRecv()
{
    // What a client sends to this port means nothing; it is read away.
    static char scratch[SCRATCH_BYTES];
    return RecvData(scratch, SCRATCH_BYTES) < 0 ? HANDLER_GONE : HANDLER_NOTHING;
}

bool CRTSP_RTPLink::HasDataToSend()
{
    return m_pending.data != nullptr || (m_list != nullptr && !m_list->IsEmpty()) || !m_packets.empty();
}

void CRTSP_RTPLink::RTSP_RTPLink_Start(CSharedDataList* list, CRTSP_RTCPLink* rtcp)
{
    if (m_list != nullptr)
        CRTSP_DataManager::Instance().DelSharedDataList(m_list);
    m_list = list;
    m_partner = rtcp;
}

void CRTSP_RTPLink::RTSP_RTPLink_Stop()
{
    if (m_list != nullptr)
        CRTSP_DataManager::Instance().DelSharedDataList(m_list);
    m_list = nullptr;
    m_partner = nullptr;
}

unsigned short CRTSP_RTPLink::GetPort() const
{
    unsigned short port = 0;
    GetSockName(static_cast<int*>(nullptr), &port);
    return port;
}

int CRTSP_RTPLink::HandleSend()
{
    int result = SendPending();
    if (result != HANDLER_NOTHING && result != HANDLER_PROGRESS)
        return result;
    bool progress = result == HANDLER_PROGRESS;
    for (;;)
    {
        result = SendQueue();
        if (result == HANDLER_WOULD_BLOCK)
            return progress ? HANDLER_PARTIAL : HANDLER_WOULD_BLOCK;
        if (result == HANDLER_GONE || result == HANDLER_PARTIAL)
            return result;
        progress = progress || result == HANDLER_PROGRESS;
        if (!TakeFrame())
            return progress ? HANDLER_PROGRESS : HANDLER_NOTHING;
    }
}

int CRTSP_RTPLink::SendPending()
{
    if (m_pending.data == nullptr)
        return HANDLER_NOTHING;
    const SENDING_COMMON_DATA pending = m_pending;
    m_pending = {};
    return SendCommonData(pending);
}

/// Sends what is queued, in order. @return a HANDLER_RESULT: would-block only when nothing went out
int CRTSP_RTPLink::SendQueue()
{
    bool progress = false;
    while (!m_packets.empty())
    {
        int result = HANDLER_NOTHING;
        // The report goes out behind the first packet alone, so that one is not joined with others.
        if (m_trains && m_reportSent)
            result = SendTrain();
        if (result == HANDLER_NOTHING)
        {
            const SENDING_COMMON_DATA packet = m_packets.front();
            m_packets.pop_front();
            result = SendCommonData(packet);
        }
        if (result == HANDLER_WOULD_BLOCK)
            return progress ? HANDLER_PARTIAL : HANDLER_WOULD_BLOCK;
        if (result == HANDLER_GONE || result == HANDLER_PARTIAL)
            return result;
        progress = true;
    }
    return progress ? HANDLER_PROGRESS : HANDLER_NOTHING;
}

/// How many packets at the head of the queue one call can take: those as long as the first, and one shorter behind.
int CRTSP_RTPLink::TrainLength() const
{
    const int segmentBytes = m_packets.front().length;
    int count = 0;
    for (const SENDING_COMMON_DATA& packet : m_packets)
    {
        if (packet.length > segmentBytes || packet.sent != 0 || count == TRAIN_DATAGRAMS)
            break;
        ++count;
        if (packet.length < segmentBytes)
            break;
    }
    return count;
}

/// Sends several packets by one call. @return HANDLER_NOTHING when they have to go one by one
int CRTSP_RTPLink::SendTrain()
{
    const int count = TrainLength();
    if (count < 2)
        return HANDLER_NOTHING;
    iovec datagrams[TRAIN_DATAGRAMS];
    auto packet = m_packets.begin();
    for (int i = 0; i < count; ++i, ++packet)
        datagrams[i] = {packet->data, static_cast<std::size_t>(packet->length)};

    const unsigned short segmentBytes = static_cast<unsigned short>(m_packets.front().length);
    switch (NC_UDP_SendTrain(m_sock, datagrams, count, segmentBytes, m_ip, m_port))
    {
    case NC_TRAIN_SENT:
        for (int i = 0; i < count; ++i)
        {
            AddOctets(0, m_packets.front().length);
            CountSent();
            PopPacket();
        }
        return HANDLER_PROGRESS;
    case NC_TRAIN_WOULD_BLOCK:
        PopPacket(); // UDP does not repeat: the packet is lost, those behind it wait
        return HANDLER_WOULD_BLOCK;
    case NC_TRAIN_NOT_SUPPORTED:
        m_trains = false;
        return HANDLER_NOTHING;
    case NC_TRAIN_ERROR:
        break;
    }
    PopPacket();
    return HANDLER_GONE;
}

void CRTSP_RTPLink::PopPacket()
{
    Free(m_packets.front());
    m_packets.pop_front();
}

/// Sends one packet, which is owned here. @return HANDLER_GONE tells of an error; the link lives on
int CRTSP_RTPLink::SendCommonData(SENDING_COMMON_DATA data)
{
    if (data.data == nullptr)
        return HANDLER_NOTHING;
    const int sent = SendData(data.data + data.sent, data.length - data.sent);
    if (sent <= 0)
    {
        Free(data);
        return sent < 0 ? HANDLER_GONE : HANDLER_WOULD_BLOCK;
    }
    AddOctets(data.sent, data.sent + sent);
    data.sent += sent;
    if (data.sent < data.length)
    {
        m_pending = data;
        return HANDLER_PARTIAL;
    }
    Free(data);
    return CountSent() ? HANDLER_PROGRESS : HANDLER_GONE;
}

/// Counts the bytes of a packet from one place to another; those of its RTP header do not count.
void CRTSP_RTPLink::AddOctets(int from, int to)
{
    m_octetCount += static_cast<std::uint32_t>(std::max(to, RTP_HEADER_BYTES) - std::max(from, RTP_HEADER_BYTES));
}

/// Counts a packet that went out whole, and reports when a report is due. @return false when the report failed
bool CRTSP_RTPLink::CountSent()
{
    ++m_packetCount;
    if (m_reportSent)
        return true;
    if (m_partner == nullptr ||
        m_partner->RTSP_RTCPLink_Send_SR_SDES(m_reportTimestamp, m_reportBaseUs, m_packetCount, m_octetCount) != 0)
        return false;
    m_reportSent = true;
    return true;
}

/// Packetises the next frame. @return false when none waits
bool CRTSP_RTPLink::TakeFrame()
{
    for (;;)
    {
        const SharedDataHolder frame(m_list == nullptr ? nullptr : m_list->GetFirstData());
        if (frame == nullptr)
            return false;
        const std::uint64_t frameUs = frame->GetFrameInfo()->presentationUs;
        if (m_reportBaseUs == 0)
            m_reportBaseUs = frameUs;
        unsigned int timestamp = 0;
        if (m_packUp.MakeUpPacket(frame.get(), &m_packets, &timestamp) == -1)
        {
            m_list->DeleteUntilKeyFrame();
            continue;
        }
        if (static_cast<std::int64_t>(frameUs - m_reportBaseUs) > REPORT_INTERVAL_US)
        {
            m_reportBaseUs = frameUs;
            m_reportSent = false;
            m_reportTimestamp = timestamp;
        }
        return true;
    }
}
