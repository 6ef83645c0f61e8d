// PullSubscription.h: asks one camera's pull point for its events, on a thread of its own (ONVIF Core, 9.2).
//
// Blocking and simple: a camera that is gone holds up nobody else, and a lost pull point is opened anew. Every event is
// told, whether or not it is a change. The host is called on the subscription's thread.
#pragma once

#include "Lock.h"
#include "MyEvent.h"
#include "SubscriptionRequests.h"
#include "ThreadAnnotations.h"

#include <atomic>

class CONVIFAlarmStateObserver;

class CPullSubscription
{
public:
    static constexpr unsigned int REOPEN_PAUSE_MS = 200;  ///< behind a pull point that was lost
    static constexpr unsigned int RETRY_PAUSE_MS = 10000; ///< behind one that the camera did not open

    /// @param observer  borrowed until Stop
    CPullSubscription(unsigned int token, CONVIFAlarmStateObserver* observer);
    virtual ~CPullSubscription() = default;
    CPullSubscription(const CPullSubscription&) = delete;
    CPullSubscription& operator=(const CPullSubscription&) = delete;

    /// Once; a subscription that was stopped does not start, whichever of two threads came first. @return 1
    int Start();
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
    CONVIFAlarmStateObserver* const m_observer;
    std::atomic<bool> m_running{false};
    char m_address[ONVIF_ADDRESS_BYTES] = {}; ///< the thread's
    CMyEvent m_stop{true};                    ///< ends a pause

    CLock m_lock; ///< never held while the thread is waited for
    unsigned int m_thread GUARDED_BY(m_lock) = 0;
    bool m_started GUARDED_BY(m_lock) = false;
    bool m_stopped GUARDED_BY(m_lock) = false;
};
