#include "MyEvent.h"

#include "Lock.h"
#include "MonotonicCondition.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>
#include <vector>

namespace
{

long long MsOf(std::chrono::steady_clock::duration time)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(time).count();
}

} // namespace

TEST(MyEvent, WaitWithoutLimitEndsWithTheSignal)
{
    for (const bool manualReset : {false, true})
    {
        CMyEvent event(manualReset);
        std::thread setter([&event] { event.SetEvent(); });
        EXPECT_EQ(CMyEvent::EVENT_SET, event.WaitEvent(CMyEvent::WITHOUT_LIMIT));
        setter.join();
    }
}

// The waiter may be faster than the thread that has set the event.
TEST(MyEvent, WaiterMayDestroyTheEventAtOnce)
{
    for (int i = 0; i < 1000; ++i)
    {
        auto* event = new CMyEvent(i % 2 == 0);
        std::thread setter([event] { event->SetEvent(); });
        EXPECT_EQ(CMyEvent::EVENT_SET, event->WaitEvent(10000));
        delete event;
        setter.join();
    }
}

TEST(MyEvent, StartsUnset)
{
    CMyEvent automatic(false);
    CMyEvent manual(true);
    EXPECT_EQ(258u, automatic.WaitEvent(0));
    EXPECT_EQ(258u, manual.WaitEvent(0));
}

TEST(MyEvent, WaitOfNoTimeReturnsAtOnce)
{
    CMyEvent event(false);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(258u, event.WaitEvent(0));
    EXPECT_LT(MsOf(std::chrono::steady_clock::now() - start), 1000);
}

TEST(MyEvent, WaitClearsAnAutomaticEvent)
{
    CMyEvent event(false);
    EXPECT_TRUE(event.SetEvent());
    EXPECT_EQ(0u, event.WaitEvent(0));
    EXPECT_EQ(258u, event.WaitEvent(0));
}

TEST(MyEvent, ManualEventStaysSetUntilReset)
{
    CMyEvent event(true);
    event.SetEvent();
    EXPECT_EQ(0u, event.WaitEvent(0));
    EXPECT_EQ(0u, event.WaitEvent(0));
    EXPECT_TRUE(event.ResetEvent());
    EXPECT_EQ(258u, event.WaitEvent(0));
}

TEST(MyEvent, TwoSetsWithoutAWaiterAreOneSignal)
{
    CMyEvent event(false);
    event.SetEvent();
    event.SetEvent();
    EXPECT_EQ(0u, event.WaitEvent(0));
    EXPECT_EQ(258u, event.WaitEvent(0));
}

TEST(MyEvent, SetWakesAWaitingThread)
{
    CMyEvent event(false);
    unsigned int result = 1;
    std::thread waiter([&] { result = event.WaitEvent(60000); });
    event.SetEvent();
    waiter.join();
    EXPECT_EQ(0u, result);
}

TEST(MyEvent, ManualSetReachesAllWaitingThreads)
{
    CMyEvent event(true);
    std::vector<std::thread> waiters;
    unsigned int results[4] = {1, 1, 1, 1};
    for (unsigned int& result : results)
    {
        waiters.emplace_back([&event, &result] { result = event.WaitEvent(60000); });
    }
    event.SetEvent();
    for (std::thread& waiter : waiters)
    {
        waiter.join();
    }
    for (const unsigned int result : results)
    {
        EXPECT_EQ(0u, result);
    }
}

// The monotonic clock counts from the machine's start, the wall clock from 1970: a deadline of one that was judged by
// the other would have passed long ago. So setting the wall clock has no effect on a wait either.
TEST(MyEvent, WaitsAgainstTheMonotonicClock)
{
    CMyEvent event(false);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(258u, event.WaitEvent(50));
    EXPECT_GE(MsOf(std::chrono::steady_clock::now() - start), 49);
}

TEST(MonotonicDeadline, AddsSecondsAndCarriesNanoseconds)
{
    for (const unsigned int ms : {0u, 999u, 1000u, 1999u, 123456u, 0xFFFFFFFFu})
    {
        timespec before = {};
        timespec after = {};
        clock_gettime(CLOCK_MONOTONIC, &before);
        const timespec deadline = MonotonicDeadline(ms);
        clock_gettime(CLOCK_MONOTONIC, &after);
        const auto nanoseconds = [](const timespec& time)
        {
            return time.tv_sec * 1000000000LL + time.tv_nsec;
        };
        EXPECT_GE(nanoseconds(deadline) - ms * 1000000LL, nanoseconds(before)) << ms;
        EXPECT_LE(nanoseconds(deadline) - ms * 1000000LL, nanoseconds(after)) << ms;
        EXPECT_LT(deadline.tv_nsec, 1000000000) << ms;
    }
}

TEST(MonotonicCondition, SignalEndsAWait)
{
    CLock lock(false);
    CMonotonicCondition condition;
    bool ready = false;
    std::thread other(
        [&]
        {
            CMySingleLock guard(lock);
            ready = true;
            condition.Signal();
        });
    {
        CMySingleLock guard(lock);
        while (!ready)
        {
            condition.Wait(lock);
        }
    }
    other.join();
    EXPECT_TRUE(ready);
}
