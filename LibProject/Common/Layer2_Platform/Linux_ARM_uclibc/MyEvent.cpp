#include "MyEvent.h"

CMyEvent::CMyEvent(bool manualReset) : m_manualReset(manualReset), m_lock(false) {}

bool CMyEvent::SetEvent()
{
    CMySingleLock guard(m_lock);
    if (m_signalCount == 0)
    {
        m_signalCount = 1;
        m_condition.Signal();
    }
    return true;
}

bool CMyEvent::ResetEvent()
{
    CMySingleLock guard(m_lock);
    m_signalCount = 0;
    return true;
}

unsigned int CMyEvent::WaitEvent(unsigned int ms) const
{
    const timespec deadline = MonotonicDeadline(ms);
    CMySingleLock guard(m_lock);
    while (m_signalCount == 0)
    {
        if (ms == WITHOUT_LIMIT)
        {
            m_condition.Wait(m_lock);
        }
        else if (!m_condition.WaitUntil(m_lock, deadline) && m_signalCount == 0)
        {
            return EVENT_TIMED_OUT;
        }
    }
    if (!m_manualReset)
    {
        m_signalCount = 0;
    }
    else
    {
        m_condition.Signal(); // the event stays set: the next waiter goes on as well
    }
    return EVENT_SET;
}
