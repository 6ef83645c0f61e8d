#include "PullSubscription.h"

#include "AlarmStateObserver.h"
#include "HttpClient.h"
#include "NetSocket.h"
#include "PFHelper.h"
#include "PullExchange.h"
#include "ShareSDK.h"
#include "XmlTransform.h"

#include <cstring>
#include <utility>

namespace
{

constexpr unsigned int TERM_SECONDS = 60;
constexpr unsigned int MESSAGE_LIMIT = 2;
constexpr int CONNECT_POLLS = 15;
constexpr unsigned int ALARM_IN_INDEX = 1;

constexpr int ANSWER_BYTES = 8192; ///< its zero byte included
constexpr const char* ANSWER_END = ":Envelope>";

// clang-format off
constexpr ONVIF_TOPIC TOPICS[] = {
    {"RuleEngine/CellMotionDetector/Motion", ONVIF_EVENT_MOTION  },
    {"MotionAlarm",                          ONVIF_EVENT_MOTION  },
    {"Device/Trigger/DigitalInput",          ONVIF_EVENT_ALARM_IN},
    {"AlarmIn",                              ONVIF_EVENT_ALARM_IN},
    {nullptr,                                ONVIF_EVENT_UNKNOWN },
};
// clang-format on

} // namespace

CPullSubscription::CPullSubscription(unsigned int token, CONVIFAlarmStateObserver* observer)
    : m_token(token), m_observer(observer)
{
}

int CPullSubscription::Start()
{
    const CMySingleLock lock(m_lock);
    if (!m_started && !m_stopped)
    {
        m_running = true;
        m_thread = SHARESDK_CreateRunOneThread(ThreadProc, this, false, __FILE__, __LINE__, "pull point");
        m_started = true;
    }
    return 1;
}

int CPullSubscription::Stop()
{
    unsigned int thread = 0;
    {
        const CMySingleLock lock(m_lock);
        m_stopped = true;
        m_running = false;
        thread = std::exchange(m_thread, 0U);
    }
    m_stop.SetEvent();
    if (thread != 0)
    {
        SHARESDK_DestroyThread(thread, __FILE__, __LINE__);
    }
    return 1;
}

void CPullSubscription::ThreadProc(void* subscription)
{
    static_cast<CPullSubscription*>(subscription)->EventCheckThread();
}

int CPullSubscription::EventCheckThread()
{
    while (m_running)
    {
        if (PullPoint(m_token, TERM_SECONDS, m_address))
        {
            PullUntilItFails();
            Pause(REOPEN_PAUSE_MS);
        }
        else
        {
            Pause(RETRY_PAUSE_MS);
        }
    }
    m_running = false;
    return 0;
}

void CPullSubscription::PullUntilItFails()
{
    while (m_running && PullMesssages(m_running, m_token, TERM_SECONDS, m_address))
    {
        Renew(m_token, m_address, TERM_SECONDS);
    }
}

void CPullSubscription::Pause(unsigned int ms)
{
    if (m_running)
    {
        m_stop.WaitEvent(ms);
    }
}

/// One pull from beginning to end. @return whether the exchange went through
bool CPullSubscription::PullMesssages(const std::atomic<bool>& running, unsigned int token, unsigned int timeoutSeconds,
                                      const char* address)
{
    PULL_REQUEST request;
    int id = 0;
    if (!MakePullRequest(token, PullMessagesDocument(address, timeoutSeconds, MESSAGE_LIMIT), request) ||
        !ConnectForPull(
            request, CONNECT_POLLS, [&running] { return running.load(); }, id))
    {
        return false;
    }
    char reply[ANSWER_BYTES] = {};
    const bool isWhole =
        SendPull(id, request) && ReceiveAnswer(running, id, timeoutSeconds, reply, static_cast<int>(sizeof(reply)));
    NET_SOCKET_DestroyHNetCommunication(id);
    if (isWhole)
    {
        Tell(reply);
    }
    return isWhole;
}

/// @return whether bytes of an answer came before the camera closed, the time was up or the subscription was stopped
bool CPullSubscription::ReceiveAnswer(const std::atomic<bool>& running, int id, unsigned int timeoutSeconds,
                                      char* buffer, int size)
{
    constexpr unsigned int WAIT_MS = 250; // a stop is seen after this time
    const unsigned int begin = CPFHelper::GetTickCount();
    int used = 0;
    bool broken = false;
    while (running && !broken && used < size - 1 && std::strstr(buffer, ANSWER_END) == nullptr &&
           CPFHelper::GetTickCount() - begin < timeoutSeconds * 1000)
    {
        const int count = NET_SOCKET_Recv_Immediate(id, buffer + used, size - 1 - used, &broken);
        if (count > 0)
        {
            used += count;
        }
        else if (!broken)
        {
            NET_SOCKET_WaitRecv(id, WAIT_MS);
        }
    }
    return used > 0;
}

/// Every event of an answer, also one that changes nothing.
void CPullSubscription::Tell(const std::string& reply)
{
    std::string soap;
    std::string answer;
    if (CHttpClient::HttpRespCheck(reply.c_str(), soap) == ONVIF_OK)
    {
        CXmlTransform::TransPullMessages(soap, answer);
    }
    ReadPullAnswer(answer, TOPICS,
                   [this](const OnvifEvent& event)
                   {
                       if (event.type == ONVIF_EVENT_MOTION)
                       {
                           m_observer->OnMotionState(m_token, event.state);
                       }
                       else if (event.type == ONVIF_EVENT_ALARM_IN)
                       {
                           m_observer->OnAlarmInState(m_token, ALARM_IN_INDEX, event.state);
                       }
                   });
}
