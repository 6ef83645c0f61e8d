// MyEvent.cpp: an event on a futex (futex(2)), whose deadlines are those of the monotonic clock.
#include "MyEvent.h"

#include "MonotonicCondition.h"

#include <cerrno>
#include <climits>

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{

static_assert(sizeof(std::atomic<std::uint32_t>) == sizeof(std::uint32_t), "the kernel sees a plain word");

// The call that takes a timespec as the C library lays it out: on 32 bits there are two.
#if defined(SYS_futex_time64)
constexpr long FUTEX_CALL = sizeof(timespec) == 2 * sizeof(long) ? SYS_futex : SYS_futex_time64;
#else
constexpr long FUTEX_CALL = SYS_futex;
#endif

/// Sleeps while the word is `value`, up to the deadline. May return without a reason.
/// @param deadline  null: none
/// @return false when the deadline has passed
bool FutexWait(std::atomic<std::uint32_t>& word, std::uint32_t value, const timespec* deadline)
{
    return syscall(FUTEX_CALL, &word, FUTEX_WAIT_BITSET_PRIVATE, value, deadline, nullptr, FUTEX_BITSET_MATCH_ANY) ==
               0 ||
           errno != ETIMEDOUT;
}

void FutexWake(std::atomic<std::uint32_t>& word, int waiters)
{
    syscall(FUTEX_CALL, &word, FUTEX_WAKE_PRIVATE, waiters, nullptr, nullptr, 0);
}

} // namespace

CMyEvent::CMyEvent(bool manualReset) : m_manualReset(manualReset) {}

bool CMyEvent::SetEvent()
{
    const int waiters = m_manualReset ? INT_MAX : 1; // read before a waiter may destroy the event
    if (m_signalCount.exchange(1) == 0)
    {
        FutexWake(m_signalCount, waiters);
    }
    return true;
}

bool CMyEvent::ResetEvent()
{
    m_signalCount = 0;
    return true;
}

bool CMyEvent::TakeSignal() const
{
    std::uint32_t set = 1;
    return m_manualReset ? m_signalCount == 1 : m_signalCount.compare_exchange_strong(set, 0);
}

unsigned int CMyEvent::WaitEvent(unsigned int ms) const
{
    if (TakeSignal())
    {
        return EVENT_SET;
    }
    const timespec deadline = MonotonicDeadline(ms);
    const timespec* const limit = ms == WITHOUT_LIMIT ? nullptr : &deadline;
    bool inTime = true;
    while (inTime)
    {
        inTime = FutexWait(m_signalCount, 0, limit);
        if (TakeSignal())
        {
            return EVENT_SET;
        }
    }
    return EVENT_TIMED_OUT;
}
