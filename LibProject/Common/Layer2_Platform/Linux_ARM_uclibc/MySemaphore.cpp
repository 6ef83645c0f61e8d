#include "MySemaphore.h"

#include "PFAssert.h"

CMySemaphore::CMySemaphore(unsigned int initial, unsigned int maximum)
    : m_maximum(maximum), m_lock(false), m_count(initial)
{
    PF_ASSERT_TEXT(m_maximum > 0, "lMaxCount > 0");
}

void CMySemaphore::lock()
{
    CMySingleLock guard(m_lock);
    while (m_count == 0)
    {
        m_condition.Wait(m_lock);
    }
    --m_count;
}

bool CMySemaphore::lock(unsigned int ms)
{
    const timespec deadline = MonotonicDeadline(ms);
    CMySingleLock guard(m_lock);
    while (m_count == 0)
    {
        if (!m_condition.WaitUntil(m_lock, deadline) && m_count == 0)
        {
            return false;
        }
    }
    --m_count;
    return true;
}

bool CMySemaphore::trylock()
{
    CMySingleLock guard(m_lock);
    if (m_count == 0)
    {
        return false;
    }
    --m_count;
    return true;
}

void CMySemaphore::unlock()
{
    unlock(1, nullptr);
}

void CMySemaphore::unlock(int count, int* previous)
{
    CMySingleLock guard(m_lock);
    if (previous != nullptr)
    {
        *previous = static_cast<int>(m_count);
    }
    m_count += static_cast<unsigned int>(count);
    m_condition.Signal();
}
