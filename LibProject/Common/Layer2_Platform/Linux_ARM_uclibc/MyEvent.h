// MyEvent.h: an event that one thread sets and others wait for. Any thread.
//
// A waiter goes on as soon as it is woken: the thread that sets the event holds no lock that the waiter would need. A
// waiter may even destroy the event while the thread that has set it is not yet back.
#pragma once

#include <atomic>
#include <cstdint>

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
    CMyEvent(const CMyEvent&) = delete;
    CMyEvent& operator=(const CMyEvent&) = delete;

    /// Sets the event and wakes one waiter, or all when it stays set; does nothing to an event that is set. @return
    /// true
    bool SetEvent();
    /// @return true
    bool ResetEvent();

    static constexpr unsigned int WITHOUT_LIMIT = 0xFFFFFFFF;

    /// @return 0 once the event is set, 258 when `ms` milliseconds have passed
    unsigned int WaitEvent(unsigned int ms) const;

private:
    bool TakeSignal() const;

    const bool m_manualReset; // constant after construction

    mutable std::atomic<std::uint32_t> m_signalCount{0}; // 0 or 1; what waiters sleep on
};
