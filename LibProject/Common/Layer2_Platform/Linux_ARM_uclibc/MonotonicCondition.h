// MonotonicCondition.h: a condition variable whose timed waits run against the monotonic clock, so that setting the
// wall clock neither lengthens nor shortens them. Any thread.
#pragma once

#include "Lock.h"

#include <ctime>

/// The point in time `ms` milliseconds from now on the monotonic clock.
timespec MonotonicDeadline(unsigned int ms);

class CMonotonicCondition
{
public:
    CMonotonicCondition();
    ~CMonotonicCondition();
    CMonotonicCondition(const CMonotonicCondition&) = delete;
    CMonotonicCondition& operator=(const CMonotonicCondition&) = delete;

    /// Wakes one waiting thread.
    void Signal();

    /// Gives the lock back while waiting and holds it again afterwards; may return without a signal.
    void Wait(CLock& lock) REQUIRES(lock);

    /// @return false when the deadline has passed
    bool WaitUntil(CLock& lock, const timespec& deadline) REQUIRES(lock);

private:
    pthread_cond_t m_condition;
};
