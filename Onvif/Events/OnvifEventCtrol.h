// OnvifEventCtrol.h: how a host hears of motion and alarm inputs of the cameras it has logged in to.
//
// A camera pushes its events to a port of ours (Web Services Base Notification 1.3), or is asked for them at a pull
// point (ONVIF Core, 9.2). One thread checks all cameras every 300 ms: it tells the host of changes, keeps
// subscriptions alive, asks pull points, and ends an alarm of which nothing was heard for ten seconds.
//
// Threads: the check thread; host threads that add and remove; the socket service's accepting threads with
// notifications; its event thread with answers of pull points (CEventParse). The host is called on the check thread,
// with the map's lock held, so that no call of it runs any more when DelObserver has returned to another thread. From
// its own callback a host may add and remove cameras. A camera that does not answer holds up the pass, and with it the
// others and DelObserver.
//
// The sources are split by topic: OnvifEventCtrol.cpp (records, check thread), OnvifEventCtrolNotify.cpp
// (notifications).
#pragma once

#include "AbandonedConnections.h"
#include "Lock.h"
#include "MyEvent.h"
#include "NetSocket.h"
#include "OnvifEventObserver.h"
#include "PFHelper.h"
#include "ThreadAnnotations.h"

#include <atomic>
#include <list>
#include <map>
#include <memory>
#include <string>

class CHttpDataPacket;
class CHttpProtocolAnalyse;

class COnvifEventCtrol : public CListenSocketObserver
{
public:
    static constexpr unsigned int PASS_MS = 300;          ///< between two passes
    static constexpr unsigned int RENEW_MARGIN_MS = 8000; ///< before the end of a subscription's term
    static constexpr unsigned int SILENCE_MS = 10000;     ///< that ends an alarm

    static COnvifEventCtrol& Instance();
    COnvifEventCtrol();
    ~COnvifEventCtrol() override = default;

    /// Opens the port for notifications and starts the check thread, unless it runs.
    /// @return whether the port is open; the thread runs all the same
    bool Start(unsigned short port);
    /// Waits for the check thread and closes the port. The records stay. Not to be called from the host's callback.
    void Stop();

    /// Begins to watch a camera; a second call for one replaces the first. Lasts as long as its exchanges.
    /// @param observer  borrowed until DelObserver
    /// @param wsSubscriptionSupport, wsPullPointSupport  what the camera says that it can do
    /// @return 1
    int AddObserver(unsigned int token, CONVIFAlarmStateObserver* observer, const std::string& deviceIp,
                    bool wsSubscriptionSupport, bool wsPullPointSupport);
    /// Does nothing for an unknown token.
    void DelObserver(unsigned int token);

    /// Reads one notification and answers it.
    void OnAcceptCreateSocket(int handle, unsigned short port, unsigned int address) override;

    /// Takes the messages of a notification to the records that they are for.
    /// @param body  text with a zero byte at its end; the length is not looked at
    void ParseWebMsg(const char* body, int length);

    /// One pass over all cameras, by ascending token. The check thread's work.
    void CheckPass();

    /// The address that a camera is likely to reach: of the interface whose address begins most like the camera's, the
    /// first one on a tie. Without an interface that which the system's routing uses towards the camera.
    static std::string LocalAddressFor(const std::list<CPFHelper::__TNICInfo>& interfaces, const std::string& deviceIp);

private:
    using RecordPtr = std::shared_ptr<OnvifEventObserver>;

    static void CheckThread(void* control);
    int CheckThreadRun();
    RecordPtr NextRecord(unsigned int after, bool isFirst);
    void CheckRecord(OnvifEventObserver& record);
    void Deliver(OnvifEventObserver& record);
    void Tell(OnvifEventObserver& record, ONVIF_EVENT_TYPE type, bool state);
    void KeepAlive(OnvifEventObserver& record);
    void EndSilentAlarms(OnvifEventObserver& record);
    int PullMesssages(unsigned int token, const char* pullAddress, int* pullSocket, CEventParse* parser);
    void Remove(std::map<unsigned int, RecordPtr>::iterator place) REQUIRES(m_lock);

    static bool GetAcceptHttp(int handle, CHttpDataPacket& packet);
    static void ReplyExecute(int handle, const CHttpProtocolAnalyse& reply);
    void Route(const std::string& to, const OnvifEvent& event);

    // Recursive: the host's callbacks come back. Before a record's lock, and that before the client manager's.
    CLock m_lock;
    std::map<unsigned int, RecordPtr> m_observers GUARDED_BY(m_lock);

    std::atomic<unsigned short> m_port{0};
    std::atomic<unsigned int> m_subscriptionSerial{0}; ///< of the next local address
    const unsigned int m_termSeconds = 60;
    std::atomic<bool> m_running{false};
    CMyEvent m_wake{false}; ///< ends the wait between two passes
    unsigned int m_thread = 0;
    CLock m_nicLock;
    std::list<CPFHelper::__TNICInfo> m_nicList GUARDED_BY(m_nicLock); ///< as they were at Start
    CAbandonedConnections m_unanswered;
};
