// RTSP_ClientSessionReceive.cpp: requests, interleaved packets and Base64 messages off the socket.

#include "RTSP_ClientSession.h"

#include "Base64Coder.h"
#include "ByteOrder.h"
#include "NC_Socket.h"
#include "PFAssert.h"
#include "RTSP_Console.h"
#include "RTSP_DataManager.h"
#include "RTSP_SockScheduler.h"

#include <algorithm>
#include <cstring>

namespace
{

constexpr const char* END_OF_HEADER = "\r\n\r\n";
constexpr int END_OF_HEADER_BYTES = 4;
constexpr int DECODE_BYTES = 16384;

constexpr int RTP_HEADER_BYTES = 12;
constexpr unsigned char PAYLOAD_PCMA = 8;
constexpr unsigned char AUDIO_MARKER[4] = {0x00, 0x01, 0xA0, 0x00};

/// All sessions share it: a packet that did not come whole in one call is lost.
unsigned char g_dollarPacket[65536];

const char* EndOfMessage(const char* text)
{
    const char* headerEnd = std::strstr(text, END_OF_HEADER);
    return headerEnd == nullptr ? nullptr : headerEnd + END_OF_HEADER_BYTES;
}

} // namespace

int CRTSP_ClientSession::HandleRecv()
{
    const std::size_t fill = m_request.size();
    int count = 0;
    const int received = RecvRequest(&count);
    if (received == 0)
        return HANDLER_WOULD_BLOCK;
    if (received < 0)
    {
        Destroy();
        return HANDLER_GONE;
    }
    if (received == 2)
    {
        // On a tunnel the packet is looked for at the GET session, which has none: nothing reaches the host this way.
        CRTSP_ClientSession& reader = m_cs != nullptr ? *m_cs : *this;
        const int result = reader.HandleDollarData();
        ResetDollar();
        return result;
    }
    // Only what this call brought is looked at: a message is served when one read brings all of it.
    if (RevcAllData(m_request.c_str() + fill, count) == 0)
        return HANDLER_NOTHING;
    return ServeMessages();
}

/// Serves the messages that one read brought.
int CRTSP_ClientSession::ServeMessages()
{
    int result = HANDLER_NOTHING;
    while (!m_messages.empty())
    {
        // Out of the list first: serving it may end this session, or look for messages anew.
        REQ_CMD_INFO message = std::move(m_messages.front());
        m_messages.pop_front();
        result = ServeOneMessage(message);
        if (result == HANDLER_GONE)
            return HANDLER_GONE;
    }
    return result;
}

int CRTSP_ClientSession::ServeOneMessage(REQ_CMD_INFO& message)
{
    if (m_cs == nullptr)
        return HandRTSPCmdData(message.text.data(), message.length, message.headerEnd);

    const int result = m_cs->HandRTSPCmdData(message.text.data(), message.length, message.headerEnd);
    ResetRequest();
    if (result != HANDLER_GONE)
        return result;
    Destroy(); // the GET session is gone
    return HANDLER_GONE;
}

/// @return 0 nothing yet, 1 text, 2 bytes of an interleaved packet, -1 the connection ends
int CRTSP_ClientSession::RecvRequest(int* count)
{
    if (!m_inDollar)
    {
        const int result = RecvText(count);
        if (!m_inDollar || result != 0)
            return result;
    }
    const int result = RecvDollarData();
    if (result <= 0)
        return result;
    *count = result;
    return 2;
}

/// Takes text up to a "$" or to what is there.
/// @return 0 without text, also behind a "$"; 1 with text; -1 the connection ends
int CRTSP_ClientSession::RecvText(int* count)
{
    const std::size_t fill = m_request.size();
    char block[2048];
    for (;;)
    {
        const int room = REQUEST_LIMIT - static_cast<int>(m_request.size());
        const int seen = NC_Peek(m_sock, block, std::min(room, static_cast<int>(sizeof(block))));
        if (seen == 0 || (seen < 0 && !NC_EWOULDBLOCK()))
            return -1;
        *count = static_cast<int>(m_request.size() - fill);
        if (seen < 0)
            return *count > 0 ? 1 : 0;

        const char* dollar = static_cast<const char*>(std::memchr(block, '$', static_cast<std::size_t>(seen)));
        const int textBytes = dollar == nullptr ? seen : static_cast<int>(dollar - block);
        const int taken = dollar == nullptr ? seen : textBytes + 1;
        if (NC_Recv(m_sock, block, taken, 0) != taken)
            return -1;
        m_request.append(block, static_cast<std::size_t>(textBytes));
        if (static_cast<int>(m_request.size()) >= REQUEST_LIMIT)
            return -1;
        if (dollar == nullptr)
            continue;
        m_inDollar = true;
        *count = static_cast<int>(m_request.size() - fill);
        return m_request.empty() ? 0 : 1;
    }
}

/// @return the bytes taken, 0 when nothing is there, -1 when the connection ends
int CRTSP_ClientSession::RecvDollarData()
{
    PF_ASSERT(m_ucRecvedHead <= 3);
    int taken = 0;
    if (m_ucRecvedHead < 3)
    {
        const int count = NC_Recv(m_sock, m_dollarHead + m_ucRecvedHead, 3 - m_ucRecvedHead, 0);
        if (count <= 0)
            return count < 0 && NC_EWOULDBLOCK() ? 0 : -1;
        m_ucRecvedHead += count;
        taken = count;
        if (m_ucRecvedHead < 3)
            return taken;
        m_dollarLength = GetBE16(m_dollarHead + 1);
        m_dollarReceived = 0;
    }
    if (m_dollarReceived < m_dollarLength)
    {
        const int count = NC_Recv(m_sock, g_dollarPacket + m_dollarReceived, m_dollarLength - m_dollarReceived, 0);
        if (count == 0 || (count < 0 && !NC_EWOULDBLOCK()))
            return -1;
        if (count > 0)
        {
            m_dollarReceived += count;
            taken += count;
        }
    }
    return taken;
}

/// Hands a talk packet to the host; whatever else clients send this way is dropped.
int CRTSP_ClientSession::HandleDollarData()
{
    const bool complete = m_inDollar && m_ucRecvedHead == 3 && m_dollarReceived == m_dollarLength;
    if (complete && m_dollarLength > 11 && (g_dollarPacket[1] & 0x7F) == PAYLOAD_PCMA)
        HandleTalkData();
    ResetDollar();
    return HANDLER_NOTHING;
}

void CRTSP_ClientSession::HandleTalkData()
{
    // The marker takes the place of the last four bytes of the RTP header.
    const int payloadBytes = m_dollarLength - RTP_HEADER_BYTES;
    unsigned char* speech = g_dollarPacket + RTP_HEADER_BYTES - sizeof(AUDIO_MARKER);
    std::memcpy(speech, AUDIO_MARKER, sizeof(AUDIO_MARKER));
    const int bytes = payloadBytes + static_cast<int>(sizeof(AUDIO_MARKER));
    CRTSP_DataManager::Instance().TalkBackStremInput(speech, bytes, NETNS::RTSP_ENCODE_TALK);
    RTSP_ConsoleLine("  ----- CRTSP_ClientSession::HandleTalkData, len:%d  \n", bytes);
}

void CRTSP_ClientSession::ResetDollar()
{
    m_inDollar = false;
    m_ucRecvedHead = 0;
    m_dollarLength = 0;
    m_dollarReceived = 0;
}

void CRTSP_ClientSession::ResetRequest()
{
    m_request = std::string();
}

/// Finds the whole messages in received text, plain or in Base64, two at most.
/// @return the first one's header end; 0 when there is none to serve
int CRTSP_ClientSession::RevcAllData(const char* text, int len)
{
    m_messages.clear();
    const char* headerEnd = EndOfMessage(text);
    if (headerEnd != nullptr)
        TakePlainMessages(text, headerEnd);
    else
        TakeBase64Messages(text, len);

    if (m_iNeedMoreContentData > 0)
    {
        m_iNeedMoreContentData -= m_messages.empty() ? len : m_messages.front().length;
        if (m_iNeedMoreContentData < 0)
            RTSP_ConsoleLine("error recv more data~   m_iNeedMoreContentData = %d %s %d\n", m_iNeedMoreContentData,
                             __FILE__, __LINE__);
        return 0;
    }
    for (REQ_CMD_INFO& message : m_messages)
    {
        const std::size_t index = message.text.find(END_OF_HEADER);
        if (index == std::string::npos)
            return 0;
        message.headerEnd = static_cast<int>(index);
    }
    if (m_messages.empty())
    {
        RTSP_LogLine(__FILE__, __LINE__, " warning --rtsp data has exception! ");
        return 0;
    }
    return m_messages.front().headerEnd;
}

/// The first message and, behind it, a second one, plain or in Base64.
void CRTSP_ClientSession::TakePlainMessages(const char* text, const char* headerEnd)
{
    m_messages.push_back({std::string(text, headerEnd), static_cast<int>(headerEnd - text), 0});
    if (*headerEnd == '\0')
        return;
    const char* secondEnd = EndOfMessage(headerEnd);
    if (secondEnd != nullptr)
    {
        m_messages.push_back({std::string(headerEnd, secondEnd), static_cast<int>(secondEnd - headerEnd), 0});
        return;
    }
    char decoded[DECODE_BYTES];
    CBase64Coder().base64decone(headerEnd, decoded, sizeof(decoded));
    secondEnd = EndOfMessage(decoded);
    if (secondEnd != nullptr)
        m_messages.push_back(
            {std::string(static_cast<const char*>(decoded), secondEnd), static_cast<int>(std::strlen(headerEnd)), 0});
}

/// One or two messages in Base64, as tunnels send them; each counts all the encoded bytes as its length.
void CRTSP_ClientSession::TakeBase64Messages(const char* text, int len)
{
    char decoded[DECODE_BYTES];
    CBase64Coder().base64decone(text, decoded, sizeof(decoded));
    const char* begin = decoded;
    for (int i = 0; i < 2; ++i)
    {
        const char* end = EndOfMessage(begin);
        if (end == nullptr)
            return;
        m_messages.push_back({std::string(begin, end), len, 0});
        begin = end;
    }
}
