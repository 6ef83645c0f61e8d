#include "OnvifEventCtrol.h"

#include "AlarmStateObserver.h"
#include "Limits.h"
#include "PullExchange.h"
#include "ShareSDK.h"

#include <algorithm>
#include <cstdio>

#include <arpa/inet.h>

namespace
{

constexpr int CONNECT_POLLS = 20;
constexpr unsigned int MESSAGE_LIMIT = 1024;
constexpr unsigned int ALARM_IN_INDEX = 1; ///< all inputs of a camera count as one

std::string AddressText(unsigned int address)
{
    char text[INET_ADDRSTRLEN] = {};
    NET_SOCKET_Inet_ntoa(address, text);
    return text;
}

/// How many characters two texts share from their start.
int SharedLength(const std::string& one, const std::string& other)
{
    const std::size_t length = std::min(one.size(), other.size());
    std::size_t shared = 0;
    while (shared < length && one[shared] == other[shared])
    {
        ++shared;
    }
    return static_cast<int>(shared);
}

} // namespace

void OnvifEventObserver::Push(const OnvifEvent& event)
{
    const CMySingleLock lock(eventLock);
    if (events != nullptr && events->size() < LIMIT_WAITING_EVENTS)
    {
        events->push_back(event);
    }
}

COnvifEventCtrol& COnvifEventCtrol::Instance()
{
    // Never destroyed: its thread may still be in it when the process ends.
    static COnvifEventCtrol& control = *new COnvifEventCtrol;
    return control;
}

COnvifEventCtrol::COnvifEventCtrol() = default;

bool COnvifEventCtrol::Start(unsigned short port)
{
    m_port = port;
    const bool isListening = NET_SOCKET_StartListen(port, this, 0, true);
    {
        const CMySingleLock lock(m_nicLock);
        CPFHelper::GetSocketEnabled_NICList(m_nicList);
    }
    if (!m_running.exchange(true))
    {
        m_thread = SHARESDK_CreateRunOneThread(CheckThread, this, false, __FILE__, __LINE__, "onvif events");
    }
    return isListening;
}

void COnvifEventCtrol::Stop()
{
    m_running = false;
    m_wake.SetEvent();
    if (m_thread != 0)
    {
        SHARESDK_DestroyThread(m_thread, __FILE__, __LINE__);
        m_thread = 0;
    }
    NET_SOCKET_StopListen(m_port);
}

std::string COnvifEventCtrol::LocalAddressFor(const std::list<CPFHelper::__TNICInfo>& interfaces,
                                              const std::string& deviceIp)
{
    if (interfaces.empty())
    {
        return AddressText(CPFHelper::GetLocalAddressTowards(inet_addr(deviceIp.c_str())));
    }
    std::string best = AddressText(interfaces.front().IP);
    int bestShared = 0;
    for (const CPFHelper::__TNICInfo& nic : interfaces)
    {
        const std::string address = AddressText(nic.IP);
        const int shared = SharedLength(address, deviceIp);
        if (shared > bestShared)
        {
            best = address;
            bestShared = shared;
        }
    }
    return best;
}

int COnvifEventCtrol::AddObserver(unsigned int token, CONVIFAlarmStateObserver* observer, const std::string& deviceIp,
                                  bool wsSubscriptionSupport, bool wsPullPointSupport)
{
    DelObserver(token);
    const RecordPtr record = std::make_shared<OnvifEventObserver>();
    record->token = token;
    {
        const CMySingleLock lock(record->eventLock);
        record->events = std::make_unique<std::list<OnvifEvent>>();
    }
    record->observer = observer;
    record->lastRenew = CPFHelper::GetTickCount();
    std::string localIp;
    {
        const CMySingleLock lock(m_nicLock);
        localIp = LocalAddressFor(m_nicList, deviceIp);
    }
    std::snprintf(record->localAddress, sizeof(record->localAddress), "http://%s:%d/subscription_%d", localIp.c_str(),
                  static_cast<int>(m_port), static_cast<int>(m_subscriptionSerial++));

    // A camera that names neither is tried with a subscription first.
    const bool mayPush = wsSubscriptionSupport || !wsPullPointSupport;
    record->subscribed = mayPush && Subscribe(token, m_termSeconds, record->localAddress, record->subscriptionAddress);
    if (!record->subscribed)
    {
        record->pulling = true;
        PullPoint(token, m_termSeconds, record->pullAddress);
        record->parser = std::make_unique<CEventParse>(record.get());
        PullMesssages(token, record->pullAddress, &record->pullSocket, record->parser.get());
    }

    const CMySingleLock lock(m_lock);
    DelObserver(token); // another thread may have added one meanwhile
    m_observers[token] = record;
    return 1;
}

void COnvifEventCtrol::DelObserver(unsigned int token)
{
    const CMySingleLock lock(m_lock);
    const auto place = m_observers.find(token);
    if (place != m_observers.end())
    {
        Remove(place);
    }
}

/// A pass that works on the record holds a reference, so it may end here only in part.
void COnvifEventCtrol::Remove(std::map<unsigned int, RecordPtr>::iterator place)
{
    const RecordPtr record = place->second;
    m_observers.erase(place);
    record->removed = true;
    if (record->subscribed)
    {
        Unsubscribe(record->token, record->subscriptionAddress);
    }
    if (record->parser != nullptr)
    {
        record->parser->Clear();
    }
    const CMySingleLock lock(record->eventLock);
    record->events.reset();
}

void COnvifEventCtrol::CheckThread(void* control)
{
    static_cast<COnvifEventCtrol*>(control)->CheckThreadRun();
}

int COnvifEventCtrol::CheckThreadRun()
{
    while (m_running)
    {
        CheckPass();
        m_wake.WaitEvent(PASS_MS);
    }
    return -1;
}

/// The host may add and remove cameras during a pass, so that each step looks for the next token anew.
void COnvifEventCtrol::CheckPass()
{
    const CMySingleLock lock(m_lock);
    for (RecordPtr record = NextRecord(0, true); record != nullptr; record = NextRecord(record->token, false))
    {
        CheckRecord(*record);
    }
}

COnvifEventCtrol::RecordPtr COnvifEventCtrol::NextRecord(unsigned int after, bool isFirst)
{
    const CMySingleLock lock(m_lock);
    const auto place = isFirst ? m_observers.begin() : m_observers.upper_bound(after);
    return place != m_observers.end() ? place->second : nullptr;
}

void COnvifEventCtrol::CheckRecord(OnvifEventObserver& record)
{
    Deliver(record);
    if (!record.removed)
    {
        KeepAlive(record);
    }
    EndSilentAlarms(record);
}

void COnvifEventCtrol::Deliver(OnvifEventObserver& record)
{
    std::list<OnvifEvent> events;
    {
        const CMySingleLock lock(record.eventLock);
        if (record.events != nullptr)
        {
            events.swap(*record.events);
        }
    }
    const unsigned int now = CPFHelper::GetTickCount();
    for (const OnvifEvent& event : events)
    {
        if (event.type == ONVIF_EVENT_MOTION)
        {
            record.motionTick = now;
        }
        else if (event.type == ONVIF_EVENT_ALARM_IN)
        {
            record.alarmInTick = now;
        }
        Tell(record, event.type, event.state);
    }
}

/// Calls the host on a change; a state that stays only keeps the alarm.
void COnvifEventCtrol::Tell(OnvifEventObserver& record, ONVIF_EVENT_TYPE type, bool state)
{
    if (record.removed || record.observer == nullptr || type == ONVIF_EVENT_UNKNOWN)
    {
        return;
    }
    bool& told = type == ONVIF_EVENT_MOTION ? record.motionState : record.alarmInState;
    if (told == state)
    {
        return;
    }
    told = state;
    if (type == ONVIF_EVENT_MOTION)
    {
        record.observer->OnMotionState(record.token, state);
    }
    else
    {
        record.observer->OnAlarmInState(record.token, ALARM_IN_INDEX, state);
    }
}

void COnvifEventCtrol::KeepAlive(OnvifEventObserver& record)
{
    const unsigned int sinceRenewal = CPFHelper::GetTickCount() - record.lastRenew;
    if (record.subscribed && sinceRenewal > 1000 * m_termSeconds - RENEW_MARGIN_MS)
    {
        Renew(record.token, record.subscriptionAddress, m_termSeconds);
        record.lastRenew = CPFHelper::GetTickCount();
    }
    // Milliseconds beside a number of seconds: a pull that is not answered at the next pass is dropped and sent anew,
    // so that cameras are asked at the pace of the passes and not of the term.
    if (record.pulling && (record.responseReady || sinceRenewal > m_termSeconds))
    {
        Renew(record.token, record.pullAddress, m_termSeconds);
        record.parser->Clear();
        PullMesssages(record.token, record.pullAddress, &record.pullSocket, record.parser.get());
        record.lastRenew = CPFHelper::GetTickCount();
    }
}

void COnvifEventCtrol::EndSilentAlarms(OnvifEventObserver& record)
{
    const unsigned int now = CPFHelper::GetTickCount();
    if (record.alarmInState && now - record.alarmInTick > SILENCE_MS)
    {
        Tell(record, ONVIF_EVENT_ALARM_IN, false);
    }
    if (record.motionState && now - record.motionTick > SILENCE_MS)
    {
        Tell(record, ONVIF_EVENT_MOTION, false);
    }
}

/// Asks a pull point, without waiting for its answer, which comes to the parser. @return 0
int COnvifEventCtrol::PullMesssages(unsigned int token, const char* pullAddress, int* pullSocket, CEventParse* parser)
{
    PULL_REQUEST request;
    if (!MakePullRequest(token, PullMessagesDocument(pullAddress, m_termSeconds, MESSAGE_LIMIT), request) ||
        !ConnectForPull(
            request, CONNECT_POLLS, [] { return true; }, *pullSocket))
    {
        return 0;
    }
    if (!NET_SOCKET_RegisterNode(*pullSocket, parser, parser, 1, 1))
    {
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
    }
    NET_SOCKET_Start(*pullSocket);
    SendPull(*pullSocket, request);
    return 0;
}
