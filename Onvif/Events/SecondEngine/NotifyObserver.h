// NotifyObserver.h: takes the notifications of cameras that push, in the second engine.
//
// One check thread tells the host of every event, whether or not it is a change, and renews subscriptions. Threads: the
// check thread, the socket service's accepting threads, host threads. The host is called on the check thread with the
// lock held, so that no call runs any more when DelObserver has returned to another thread.
#pragma once

#include "AbandonedConnections.h"
#include "Lock.h"
#include "MyEvent.h"
#include "NetSocket.h"
#include "OnvifEventTypes.h"
#include "SubscriptionRequests.h"
#include "ThreadAnnotations.h"

#include <atomic>
#include <list>
#include <map>
#include <string>

class CHttpDataPacket;
class CHttpProtocolAnalyse;
class CONVIFAlarmStateObserver;

class CNotifyObserver : public CListenSocketObserver
{
public:
    static constexpr unsigned int PASS_MS = 100;
    static constexpr unsigned int RENEW_MARGIN_MS = 5000;

    static CNotifyObserver& Instance();
    CNotifyObserver() = default;
    ~CNotifyObserver() override = default;

    /// Opens the port and starts the check thread, unless it runs.
    void Start(int port);
    void Stop();

    /// Subscribes at a camera. The record stands whatever the camera answers.
    void AddObserver(unsigned int token, CONVIFAlarmStateObserver* observer);
    void DelObserver(unsigned int token);

    void OnAcceptCreateSocket(int handle, unsigned short port, unsigned int address) override;

    /// One pass over all cameras. The check thread's work.
    void CheckPass();

private:
    struct ObserverInfo
    {
        char localAddress[ONVIF_ADDRESS_BYTES];
        char subscriptionAddress[ONVIF_ADDRESS_BYTES];
        unsigned int lastRenew;
        CONVIFAlarmStateObserver* observer;
        std::list<OnvifEvent> events;
    };

    static void CheckThread(void* self);
    int CheckThreadRun();
    void CheckCamera(unsigned int token) REQUIRES(m_lock);
    static bool GetAcceptHttp(int handle, CHttpDataPacket& packet);
    static void ReplyExecute(int handle, const CHttpProtocolAnalyse& reply);
    void ParseWebMsg(const CHttpProtocolAnalyse& request);

    std::atomic<bool> m_running{false};
    unsigned int m_thread = 0;
    const unsigned int m_termSeconds = 60;
    std::atomic<unsigned int> m_serial{0};
    std::atomic<int> m_port{0};
    CMyEvent m_wake{false}; ///< ends the wait between two passes

    CLock m_lock; // recursive: the host's callbacks may come back
    std::map<unsigned int, ObserverInfo> m_observers GUARDED_BY(m_lock);
    std::string m_localIp GUARDED_BY(m_lock);

    CAbandonedConnections m_unanswered;
};
