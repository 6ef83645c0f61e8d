// MySemaphore.h: a counting semaphore. Any thread.
#pragma once

#include "Lock.h"
#include "MonotonicCondition.h"

class CMySemaphore
{
public:
    /// @param initial  the count at the start
    /// @param maximum  above 0; kept, and not enforced
    CMySemaphore(unsigned int initial, unsigned int maximum);

    /// Waits until the count is not 0 and takes one.
    void lock();
    /// The same for at most `ms` milliseconds. @return whether one was taken
    bool lock(unsigned int ms);
    /// Takes one if there is one. @return whether there was
    bool trylock();

    /// Adds one and wakes one waiter.
    void unlock();
    /// Adds `count` and wakes one waiter only. @param previous  may be null; receives the count before
    void unlock(int count, int* previous);

private:
    const unsigned int m_maximum; // constant after construction

    // Held for a few instructions only; nothing is called under it.
    CLock m_lock;
    CMonotonicCondition m_condition;
    unsigned int m_count GUARDED_BY(m_lock);
};
