// RTSP_ClientSessionSend.cpp: answers and interleaved packets onto the socket, answers first.

#include "RTSP_ClientSession.h"

#include "NC_Socket.h"
#include "PFAssert.h"
#include "RTSP_Console.h"
#include "RTSP_DataManager.h"
#include "RTSP_SessionTexts.h"
#include "RTSP_SockScheduler.h"
#include "ShareSDK.h"
#include "SharedData.h"
#include "SharedDataList.h"

#include <cstring>

namespace
{

/// Packets handed to the kernel by one call: a frame of 370 kB.
constexpr int BUFFERS_PER_SEND = 256;

SENDING_COMMON_DATA Copy(const char* text, int len)
{
    SENDING_COMMON_DATA data;
    data.data = new char[static_cast<std::size_t>(len)];
    std::memcpy(data.data, text, static_cast<std::size_t>(len));
    data.length = len;
    return data;
}

void Free(SENDING_COMMON_DATA& data)
{
    delete[] data.data;
    data = {};
}

} // namespace

/// Sends an answer at once, or queues it behind what has not gone yet.
/// @return 0; -1 when the connection is broken
int CRTSP_ClientSession::SendCmdData(const char* text, int len)
{
    PF_ASSERT(0 != len);
    if (m_dynamicRate != DYNAMIC_RATE_ASKED)
        RTSP_LogLine(__FILE__, __LINE__, "send data :\n%s\n", TextForLog(text).c_str());
    if (m_hasPending)
    {
        QueueCommand(text, len);
        return 0;
    }
    int sent = NC_Send(m_sock, text, len, 0);
    if (sent < 0)
    {
        if (!NC_EWOULDBLOCK())
            return -1;
        sent = 0;
    }
    if (sent < len)
    {
        m_pending = Copy(text + sent, len - sent);
        m_hasPending = true;
    }
    return 0;
}

void CRTSP_ClientSession::QueueCommand(const char* text, int len)
{
    m_commands.push_back({});
    m_commands.back() = Copy(text, len);
    m_commandBytes += static_cast<std::size_t>(len);
}

bool CRTSP_ClientSession::HasDataToSend()
{
    if (m_hasPending)
        return true;
    if (!m_tcpData)
        return false;
    for (const auto& [type, track] : m_subSessionStreamMap)
    {
        const RTP_RTCP_LINK_TCP_OVER_RTSP_OBJ& tcp = track->tcp;
        if (!tcp.packets.empty() || (tcp.list != nullptr && !tcp.list->IsEmpty()))
            return true;
    }
    return false;
}

int CRTSP_ClientSession::HandleSend()
{
    bool progress = false;
    for (int (CRTSP_ClientSession::*step)() : {&CRTSP_ClientSession::SendPending, &CRTSP_ClientSession::SendCmdListData,
                                               &CRTSP_ClientSession::SendRTPDataOverTCP})
    {
        const int result = (this->*step)();
        if (result == HANDLER_GONE)
        {
            Destroy();
            return HANDLER_GONE;
        }
        if (result == HANDLER_WOULD_BLOCK || result == HANDLER_PARTIAL)
            return result;
        progress = progress || result == HANDLER_PROGRESS;
    }
    return progress ? HANDLER_PROGRESS : HANDLER_NOTHING;
}

int CRTSP_ClientSession::SendPending()
{
    if (!m_hasPending)
        return HANDLER_NOTHING;
    SENDING_COMMON_DATA pending = m_pending;
    m_pending = {};
    const int result = SendCommonData(&pending);
    if (result == HANDLER_WOULD_BLOCK)
        m_pending = pending;
    else if (result == HANDLER_GONE)
        Free(pending);
    return result;
}

/// Sends the rest of one buffer. What goes out in part becomes the pending send.
/// @return a HANDLER_RESULT; on would-block and on an error the buffer stays the caller's
int CRTSP_ClientSession::SendCommonData(SENDING_COMMON_DATA* data)
{
    if (data->data == nullptr)
        return HANDLER_NOTHING;
    const int sent = NC_Send(m_sock, data->data + data->sent, data->length - data->sent, 0);
    if (sent < 0)
        return NC_EWOULDBLOCK() ? HANDLER_WOULD_BLOCK : HANDLER_GONE;
    data->sent += sent;
    if (data->sent == data->length)
    {
        Free(*data);
        return HANDLER_PROGRESS;
    }
    m_pending = *data;
    m_hasPending = true;
    *data = {};
    return HANDLER_PARTIAL;
}

int CRTSP_ClientSession::SendCmdListData()
{
    bool progress = false;
    while (!m_commands.empty())
    {
        const std::size_t length = static_cast<std::size_t>(m_commands.front().length);
        const int result = SendCommonData(&m_commands.front());
        if (result == HANDLER_GONE)
            return HANDLER_GONE;
        if (result == HANDLER_WOULD_BLOCK)
            return progress ? HANDLER_PARTIAL : HANDLER_WOULD_BLOCK;
        m_commands.pop_front();
        m_commandBytes -= length;
        if (result == HANDLER_PARTIAL)
            return HANDLER_PARTIAL;
        progress = true;
    }
    m_hasPending = false;
    return progress ? HANDLER_PROGRESS : HANDLER_NOTHING;
}

/// Sends what the interleaved tracks have, one track after the other.
int CRTSP_ClientSession::SendRTPDataOverTCP()
{
    if (!m_tcpData)
        return HANDLER_NOTHING;
    bool progress = false;
    for (auto& [type, track] : m_subSessionStreamMap)
    {
        RTP_RTCP_LINK_TCP_OVER_RTSP_OBJ& tcp = track->tcp;
        for (;;)
        {
            const int result = SendPackets(tcp.packets);
            if (result == HANDLER_WOULD_BLOCK)
                return progress ? HANDLER_PARTIAL : HANDLER_WOULD_BLOCK;
            if (result == HANDLER_GONE || result == HANDLER_PARTIAL)
                return result;
            progress = progress || result == HANDLER_PROGRESS;

            const SharedDataHolder frame(tcp.list == nullptr ? nullptr : tcp.list->GetFirstData());
            if (frame == nullptr)
                break;
            unsigned int timestamp = 0;
            if (tcp.packUp->MakeUpPacket(frame.get(), &tcp.packets, &timestamp) == -1)
                tcp.list->DeleteUntilKeyFrame();
        }
    }
    return progress ? HANDLER_PROGRESS : HANDLER_NOTHING;
}

/// Sends queued packets, many by one call. A packet of which a part went out becomes the pending send.
int CRTSP_ClientSession::SendPackets(std::list<SENDING_COMMON_DATA>& packets)
{
    bool progress = false;
    while (!packets.empty())
    {
        iovec buffers[BUFFERS_PER_SEND];
        int count = 0;
        for (const SENDING_COMMON_DATA& packet : packets)
        {
            if (count == BUFFERS_PER_SEND)
                break;
            buffers[count++] = {packet.data + packet.sent, static_cast<std::size_t>(packet.length - packet.sent)};
        }
        const int sent = NC_SendBuffers(m_sock, buffers, count);
        if (sent < 0)
        {
            if (!NC_EWOULDBLOCK())
                return HANDLER_GONE;
            return progress ? HANDLER_PARTIAL : HANDLER_WOULD_BLOCK;
        }
        if (ConsumeSent(packets, sent) == HANDLER_PARTIAL)
            return HANDLER_PARTIAL;
        progress = true;
    }
    return progress ? HANDLER_PROGRESS : HANDLER_NOTHING;
}

/// Takes what went out off the queue. @return HANDLER_PARTIAL when it ended within a packet
int CRTSP_ClientSession::ConsumeSent(std::list<SENDING_COMMON_DATA>& packets, int sent)
{
    while (sent > 0)
    {
        SENDING_COMMON_DATA& packet = packets.front();
        const int left = packet.length - packet.sent;
        if (sent < left)
        {
            packet.sent += sent;
            m_pending = packet;
            m_hasPending = true;
            packets.pop_front();
            return HANDLER_PARTIAL;
        }
        sent -= left;
        Free(packet);
        packets.pop_front();
    }
    return HANDLER_PROGRESS;
}
