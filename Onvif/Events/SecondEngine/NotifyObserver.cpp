#include "NotifyObserver.h"

#include "AlarmStateObserver.h"
#include "HttpDataPacket.h"
#include "HttpExchange.h"
#include "HttpProtocolAnalyse.h"
#include "Limits.h"
#include "OnvifXmlParse.h"
#include "PFHelper.h"
#include "ShareSDK.h"

#include <cstdio>
#include <vector>

namespace
{

constexpr HTTP_READ_LIMITS READ_LIMITS = {1023, 2900};
constexpr int STATUS_OK = 200;
constexpr unsigned int ALARM_IN_INDEX = 1;

const std::string NOTIFICATION = "s:Envelope/s:Body/wsn:Notify/wsn:NotificationMessage";

// clang-format off
constexpr ONVIF_TOPIC TOPICS[] = {
    {"RuleEngine/CellMotionDetector/Motion", ONVIF_EVENT_MOTION  },
    {"Device/Trigger/DigitalInput",          ONVIF_EVENT_ALARM_IN},
    {nullptr,                                ONVIF_EVENT_UNKNOWN },
};
// clang-format on

std::string ItemValue(const COnvifXmlParse& document, const char* group)
{
    std::string value;
    const unsigned int item =
        document.GetFirstItem(NOTIFICATION + "/wsn:Message/tt:Message" + group + "/tt:SimpleItem");
    if (item != 0)
    {
        document.GetAttributeStr(item, "Value", value);
    }
    return value;
}

/// One event for a notification, whatever the number of its messages.
OnvifEvent ReadEvent(const COnvifXmlParse& document)
{
    OnvifEvent event;
    std::string topic;
    document.GetValueStr(NOTIFICATION + "/wsn:Topic", topic);
    event.type = ClassifyTopic(TOPICS, topic);
    if (event.type != ONVIF_EVENT_UNKNOWN)
    {
        std::snprintf(event.source, sizeof(event.source), "%s", ItemValue(document, "/tt:Source").c_str());
        event.state = ItemValue(document, "/tt:Data") == "true"; // "TRUE" and "1" are false here
    }
    return event;
}

} // namespace

CNotifyObserver& CNotifyObserver::Instance()
{
    // Never destroyed: its thread may still be in it when the process ends.
    static CNotifyObserver& observer = *new CNotifyObserver;
    return observer;
}

void CNotifyObserver::Start(int port)
{
    m_port = port;
    NET_SOCKET_StartListen(static_cast<unsigned short>(port), this, 0, true);
    {
        std::list<CPFHelper::__TNICInfo> interfaces;
        CPFHelper::GetSocketEnabled_NICList(interfaces);
        char text[16] = {};
        NET_SOCKET_Inet_ntoa(interfaces.empty() ? 0 : interfaces.front().IP, text);
        const CMySingleLock lock(m_lock);
        m_localIp = text;
    }
    if (!m_running.exchange(true))
    {
        m_thread = SHARESDK_CreateRunOneThread(CheckThread, this, false, __FILE__, __LINE__, "onvif notify");
    }
}

void CNotifyObserver::Stop()
{
    m_running = false;
    m_wake.SetEvent();
    if (m_thread != 0)
    {
        SHARESDK_DestroyThread(m_thread, __FILE__, __LINE__);
        m_thread = 0;
    }
    NET_SOCKET_StopListen(static_cast<unsigned short>(m_port));
}

void CNotifyObserver::AddObserver(unsigned int token, CONVIFAlarmStateObserver* observer)
{
    DelObserver(token);
    ObserverInfo info{};
    info.observer = observer;
    info.lastRenew = CPFHelper::GetTickCount();
    {
        const CMySingleLock lock(m_lock);
        std::snprintf(info.localAddress, sizeof(info.localAddress), "http://%s:%d/subscription_%d", m_localIp.c_str(),
                      m_port.load(), static_cast<int>(m_serial++));
    }
    Subscribe(token, m_termSeconds, info.localAddress, info.subscriptionAddress);
    const CMySingleLock lock(m_lock);
    m_observers[token] = std::move(info);
}

void CNotifyObserver::DelObserver(unsigned int token)
{
    const CMySingleLock lock(m_lock);
    const auto place = m_observers.find(token);
    if (place != m_observers.end())
    {
        Unsubscribe(token, place->second.subscriptionAddress);
        m_observers.erase(place);
    }
}

void CNotifyObserver::OnAcceptCreateSocket(int handle, unsigned short /*port*/, unsigned int /*address*/)
{
    CHttpDataPacket packet;
    if (!GetAcceptHttp(handle, packet))
    {
        NET_SOCKET_DestroyHNetCommunication(handle);
        return;
    }
    const std::optional<CHttpProtocolAnalyse> request = TakeHttpRequest(packet);
    if (!request.has_value())
    {
        NET_SOCKET_DestroyHNetCommunication(handle);
        return;
    }
    int length = 0;
    request->GetPayLoad(length);
    if (length == 0)
    {
        m_unanswered.Add(handle); // neither an answer nor an end
        return;
    }
    ParseWebMsg(*request);
    CHttpProtocolAnalyse reply;
    reply.SetResPackage(STATUS_OK, nullptr, 0, "");
    ReplyExecute(handle, reply);
}

bool CNotifyObserver::GetAcceptHttp(int handle, CHttpDataPacket& packet)
{
    return ReadHttpMessage(handle, READ_LIMITS, packet);
}

void CNotifyObserver::ReplyExecute(int handle, const CHttpProtocolAnalyse& reply)
{
    SendHttpMessageAndEnd(handle, reply);
}

void CNotifyObserver::ParseWebMsg(const CHttpProtocolAnalyse& request)
{
    int length = 0;
    const char* const body = request.GetPayLoad(length);
    if (length == 0)
    {
        return;
    }
    const COnvifXmlParse document(body);
    std::string to;
    if (!document.GetValueStr("s:Envelope/s:Header/ad:To", to))
    {
        return;
    }
    const OnvifEvent event = ReadEvent(document);
    const CMySingleLock lock(m_lock);
    for (auto& [token, info] : m_observers)
    {
        if (to == info.localAddress)
        {
            if (info.events.size() < LIMIT_WAITING_EVENTS)
            {
                info.events.push_back(event);
            }
            return;
        }
    }
}

void CNotifyObserver::CheckThread(void* self)
{
    static_cast<CNotifyObserver*>(self)->CheckThreadRun();
}

int CNotifyObserver::CheckThreadRun()
{
    while (m_running)
    {
        CheckPass();
        m_wake.WaitEvent(PASS_MS);
    }
    return -1;
}

/// The host may add and remove cameras from its callback: tokens are looked up again.
void CNotifyObserver::CheckPass()
{
    const CMySingleLock lock(m_lock);
    std::vector<unsigned int> tokens;
    for (const auto& [token, info] : m_observers)
    {
        tokens.push_back(token);
    }
    for (const unsigned int token : tokens)
    {
        CheckCamera(token);
    }
}

void CNotifyObserver::CheckCamera(unsigned int token)
{
    for (auto place = m_observers.find(token); place != m_observers.end() && !place->second.events.empty();
         place = m_observers.find(token))
    {
        const OnvifEvent event = place->second.events.front();
        place->second.events.pop_front();
        if (event.type == ONVIF_EVENT_MOTION)
        {
            place->second.observer->OnMotionState(token, event.state);
        }
        else if (event.type == ONVIF_EVENT_ALARM_IN)
        {
            place->second.observer->OnAlarmInState(token, ALARM_IN_INDEX, event.state);
        }
    }
    const auto place = m_observers.find(token);
    if (place != m_observers.end() &&
        CPFHelper::GetTickCount() - place->second.lastRenew > 1000 * m_termSeconds - RENEW_MARGIN_MS)
    {
        Renew(token, place->second.subscriptionAddress, m_termSeconds);
        place->second.lastRenew = CPFHelper::GetTickCount();
    }
}
