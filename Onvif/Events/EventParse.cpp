#include "EventParse.h"

#include "HttpClient.h"
#include "OnvifEventObserver.h"
#include "PFAssert.h"
#include "PFHelper.h"
#include "PullExchange.h"
#include "ShareSDK.h"
#include "XmlTransform.h"

#include <cstdlib>
#include <cstring>

namespace
{

constexpr const char* HEADER_END = "\r\n\r\n";

// The word is spelled so and no other way: "content-length:" is not recognised.
constexpr const char* LENGTH_WORDS[] = {"Content-Length:", "Content-length:"};

// Beside notifications: "MotionDetection" counts with "VideoAnalytics/" in front of it only. First match wins.
// clang-format off
constexpr ONVIF_TOPIC TOPICS[] = {
    {"RuleEngine/CellMotionDetector/Motion", ONVIF_EVENT_MOTION  },
    {"MotionAlarm",                          ONVIF_EVENT_MOTION  },
    {"VideoAnalytics/MotionDetection",       ONVIF_EVENT_MOTION  },
    {"Device/Trigger/DigitalInput",          ONVIF_EVENT_ALARM_IN},
    {"Device/Trigger/Relay",                 ONVIF_EVENT_ALARM_IN},
    {"AlarmIn",                              ONVIF_EVENT_ALARM_IN},
    {nullptr,                                ONVIF_EVENT_UNKNOWN },
};
// clang-format on

const char* FindLength(const char* text)
{
    for (const char* word : LENGTH_WORDS)
    {
        if (const char* const found = std::strstr(text, word))
        {
            return found + std::strlen(word);
        }
    }
    return nullptr;
}

} // namespace

CEventParse::CEventParse(OnvifEventObserver* owner) : m_owner(owner), m_buffer(new char[BUFFER_BYTES + 1]())
{
    PF_ASSERT(owner != nullptr);
}

void CEventParse::ResetBuffer()
{
    std::memset(m_buffer.get(), 0, BUFFER_BYTES + 1);
    m_used = 0;
    m_contentLength = 0;
    m_bodyReceived = 0;
}

bool CEventParse::CheckMsgPacketCompleted(const char* data, unsigned int length)
{
    if (data == nullptr || length == 0)
    {
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
        return false;
    }
    if (length > BUFFER_BYTES - m_used)
    {
        ResetBuffer();
        return false;
    }
    std::memcpy(m_buffer.get() + m_used, data, length);
    m_used += length;
    if (m_contentLength != 0)
    {
        m_bodyReceived += length;
        return m_bodyReceived >= m_contentLength;
    }
    const char* const headerEnd = std::strstr(m_buffer.get(), HEADER_END);
    if (headerEnd == nullptr)
    {
        return false;
    }
    const char* const number = FindLength(m_buffer.get());
    if (number == nullptr)
    {
        ResetBuffer();
        return false;
    }
    m_contentLength = static_cast<unsigned int>(std::atoi(number)); // NOLINT(cert-err34-c): no number counts as 0
    m_bodyReceived = m_used - static_cast<unsigned int>(headerEnd - m_buffer.get()) - 4;
    return m_bodyReceived >= m_contentLength;
}

int CEventParse::OnSocketRecvData(int /*handle*/, const char* data, unsigned int length, void* /*param*/)
{
    const int taken = static_cast<int>(length);
    if (!m_owner->pulling || length == 0) // 0: the camera has closed; the next pass asks it anew
    {
        return taken;
    }
    if (!CheckMsgPacketCompleted(data, length))
    {
        return 0;
    }
    ReadEvents();
    m_owner->lastRenew = CPFHelper::GetTickCount();
    m_owner->responseReady = true;
    return taken;
}

void CEventParse::ReadEvents()
{
    std::string soap;
    const bool isSoap = CHttpClient::HttpRespCheck(m_buffer.get(), soap) == ONVIF_OK;
    ResetBuffer();
    std::string answer;
    if (isSoap)
    {
        CXmlTransform::TransPullMessages(soap, answer);
    }
    ReadPullAnswer(answer, TOPICS,
                   [this](const OnvifEvent& event)
                   {
                       if (!m_owner->eventSeen.exchange(true))
                       {
                           m_owner->lastRenew = CPFHelper::GetTickCount();
                           m_owner->subscribed = false;
                       }
                       m_owner->Push(event);
                   });
}

void CEventParse::Clear()
{
    if (m_owner->pullSocket != 0)
    {
        NET_SOCKET_Stop(m_owner->pullSocket);
        NET_SOCKET_UnRegisterNode(m_owner->pullSocket);
        NET_SOCKET_DestroyHNetCommunication(m_owner->pullSocket);
        m_owner->pullSocket = 0;
    }
    m_owner->responseReady = false;
}
