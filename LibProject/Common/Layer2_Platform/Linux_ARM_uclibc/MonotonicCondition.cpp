#include "MonotonicCondition.h"

#include <cerrno>
#include <cstdint>

timespec MonotonicDeadline(unsigned int ms)
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    const std::int64_t nanoseconds = std::int64_t{now.tv_nsec} + std::int64_t{ms % 1000} * 1000000;
    timespec deadline = {};
    deadline.tv_sec = static_cast<time_t>(std::int64_t{now.tv_sec} + ms / 1000 + nanoseconds / 1000000000);
    deadline.tv_nsec = static_cast<long>(nanoseconds % 1000000000);
    return deadline;
}

CMonotonicCondition::CMonotonicCondition()
{
    pthread_condattr_t attributes;
    pthread_condattr_init(&attributes);
    pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
    pthread_cond_init(&m_condition, &attributes);
    pthread_condattr_destroy(&attributes);
}

CMonotonicCondition::~CMonotonicCondition()
{
    pthread_cond_destroy(&m_condition);
}

void CMonotonicCondition::Signal()
{
    pthread_cond_signal(&m_condition);
}

void CMonotonicCondition::Wait(CLock& lock)
{
    pthread_cond_wait(&m_condition, lock.Native());
}

bool CMonotonicCondition::WaitUntil(CLock& lock, const timespec& deadline)
{
    return pthread_cond_timedwait(&m_condition, lock.Native(), &deadline) != ETIMEDOUT;
}
