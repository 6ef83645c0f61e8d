// Notifications that cameras push.
#include "OnvifEventCtrol.h"

#include "HttpDataPacket.h"
#include "HttpExchange.h"
#include "HttpProtocolAnalyse.h"
#include "OnvifXmlParse.h"
#include "ShareSDK.h"

#include <cstdio>
#include <cstring>

namespace
{

constexpr HTTP_READ_LIMITS READ_LIMITS = {1023, 2900};
constexpr int STATUS_OK = 200;

const std::string NOTIFICATION = "s:Envelope/s:Body/wsn:Notify/wsn:NotificationMessage";
const std::string MESSAGE = NOTIFICATION + "/wsn:Message/tt:Message";

// Beside pull points: "MotionDetection" counts wherever it stands. First match wins.
// clang-format off
constexpr ONVIF_TOPIC TOPICS[] = {
    {"RuleEngine/CellMotionDetector/Motion", ONVIF_EVENT_MOTION  },
    {"MotionAlarm",                          ONVIF_EVENT_MOTION  },
    {"MotionDetection",                      ONVIF_EVENT_MOTION  },
    {"Device/Trigger/DigitalInput",          ONVIF_EVENT_ALARM_IN},
    {"Device/Trigger/Relay",                 ONVIF_EVENT_ALARM_IN},
    {"AlarmIn",                              ONVIF_EVENT_ALARM_IN},
    {nullptr,                                ONVIF_EVENT_UNKNOWN },
};
// clang-format on

/// The value of the first item of a group. It is looked for from the document's root: when several messages share one
/// notification, all of them have the items of the first.
std::string ItemValue(const COnvifXmlParse& document, const char* group)
{
    std::string value;
    const unsigned int item = document.GetFirstItem(MESSAGE + group + "/tt:SimpleItem");
    if (item != 0)
    {
        document.GetAttributeStr(item, "Value", value);
    }
    return value;
}

OnvifEvent ReadMessage(const COnvifXmlParse& document, unsigned int message)
{
    OnvifEvent event;
    std::string topic;
    if (!document.GetValueStr(message, "wsn:Topic", topic) && !document.GetValueStr(message, "wsn:topic", topic))
    {
        return event;
    }
    event.type = ClassifyTopic(TOPICS, topic);
    if (event.type == ONVIF_EVENT_ALARM_IN)
    {
        std::snprintf(event.source, sizeof(event.source), "%s", ItemValue(document, "/tt:Source").c_str());
    }
    if (event.type != ONVIF_EVENT_UNKNOWN)
    {
        event.state = IsTrueText(ItemValue(document, "/tt:Data")); // any item counts, whatever its name
    }
    return event;
}

/// How much of an address names the camera: scheme, host and port of a URL, all of anything else.
std::size_t ComparisonLength(const std::string& address)
{
    const std::size_t slash = address.compare(0, 7, "http://") == 0 ? address.find('/', 8) : std::string::npos;
    return slash == std::string::npos ? address.size() : slash;
}

bool IsFor(const OnvifEventObserver& record, const std::string& to)
{
    return to == record.localAddress || std::strncmp(to.c_str(), record.subscriptionAddress, ComparisonLength(to)) == 0;
}

} // namespace

void COnvifEventCtrol::OnAcceptCreateSocket(int handle, unsigned short /*port*/, unsigned int /*address*/)
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
    const char* const body = request->GetPayLoad(length);
    if (length == 0)
    {
        m_unanswered.Add(handle); // neither an answer nor an end
        return;
    }
    ParseWebMsg(body, length);
    CHttpProtocolAnalyse reply;
    reply.SetResPackage(STATUS_OK, nullptr, 0, ""); // whatever was found
    ReplyExecute(handle, reply);
}

bool COnvifEventCtrol::GetAcceptHttp(int handle, CHttpDataPacket& packet)
{
    return ReadHttpMessage(handle, READ_LIMITS, packet);
}

void COnvifEventCtrol::ReplyExecute(int handle, const CHttpProtocolAnalyse& reply)
{
    SendHttpMessageAndEnd(handle, reply);
}

void COnvifEventCtrol::ParseWebMsg(const char* body, int /*length*/)
{
    const COnvifXmlParse document(body);
    std::string to;
    document.GetValueStr("s:Envelope/s:Header/ad:To", to);
    unsigned int message = document.GetFirstItem(NOTIFICATION);
    for (; message != 0; message = document.GetNextSiblingItemByName(message, "wsn:NotificationMessage"))
    {
        const OnvifEvent event = ReadMessage(document, message);
        if (to.empty())
        {
            // What a message says here holds for the messages behind it too.
            document.GetValueStr(message, "wsn:SubscriptionReference/ad:Address", to);
        }
        if (!to.empty())
        {
            Route(to, event);
        }
    }
}

/// Hands an event to the first record that the address fits. One that does not take notifications drops it.
void COnvifEventCtrol::Route(const std::string& to, const OnvifEvent& event)
{
    const CMySingleLock lock(m_lock);
    for (const auto& [token, record] : m_observers)
    {
        if (!IsFor(*record, to))
        {
            continue;
        }
        if (record->subscribed)
        {
            if (!record->eventSeen.exchange(true))
            {
                record->pulling = false;
            }
            record->Push(event);
        }
        return;
    }
}
