// MyEvent.h: an event that one thread sets and others wait for. Any thread.
#pragma once

#include "Lock.h"
#include "MonotonicCondition.h"

class CMyEvent
{
public:
    enum : unsigned int
    {
        EVENT_SET = 0,         // the value of WAIT_OBJECT_0
        EVENT_TIMED_OUT = 258, // the value of WAIT_TIMEOUT
    };

    /// @param manualReset  true: stays set until ResetEvent; false: a successful wait clears it. Starts unset.
    explicit CMyEvent(bool manualReset);

    /// Sets the event and wakes one waiter; does nothing to an event that is set. @return true
    bool SetEvent();
    /// @return true
    bool ResetEvent();

    static constexpr unsigned int WITHOUT_LIMIT = 0xFFFFFFFF;

    /// @param ms  WITHOUT_LIMIT waits for ever
    /// @return 0 once the event is set, 258 when `ms` milliseconds have passed
    unsigned int WaitEvent(unsigned int ms) const;

private:
    const bool m_manualReset; // constant after construction

    // Held for a few instructions only; nothing is called under it.
    mutable CLock m_lock;
    mutable CMonotonicCondition m_condition;
    mutable int m_signalCount GUARDED_BY(m_lock) = 0; // 0 or 1
};
