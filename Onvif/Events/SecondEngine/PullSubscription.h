// PullSubscription.h: asks one camera's pull point for its events, on a thread of its own (ONVIF Core, 9.2).
//
// Blocking and simple: a camera that is gone holds up nobody else, and a lost pull point is opened anew. Every event is
// told, whether or not it is a change. The host is called on the subscription's thread.
#pragma once

#include "MyEvent.h"
#include "SubscriptionRequests.h"

#include <atomic>

class CONVIFAlarmStateObserver;

class CPullSubscription
{
public:
    /// @param observer  borrowed until Stop
    CPullSubscription(unsigned int token, CONVIFAlarmStateObserver* observer);
    virtual ~CPullSubscription() = default;
    CPullSubscription(const CPullSubscription&) = delete;
    CPullSubscription& operator=(const CPullSubscription&) = delete;

    int Start(); ///< @return 1
    /// Waits for the thread; not to be called from the host's callback. @return 1
    int Stop();

protected:
    /// The thread's work. @return 0
    virtual int EventCheckThread();

private:
    static void ThreadProc(void* subscription);
    void PullUntilItFails();
    bool PullMesssages(const std::atomic<bool>& running, unsigned int token, unsigned int timeoutSeconds,
                       const char* address);
    bool ReceiveAnswer(const std::atomic<bool>& running, int id, unsigned int timeoutSeconds, char* buffer, int size);
    void Tell(const std::string& reply);
    void Pause(unsigned int ms);

    const unsigned int m_token;
    unsigned int m_thread = 0;
    CONVIFAlarmStateObserver* const m_observer;
    std::atomic<bool> m_running{false};
    bool m_started = false;
    char m_address[ONVIF_ADDRESS_BYTES] = {};
    CMyEvent m_stop{true}; ///< ends a pause
};
