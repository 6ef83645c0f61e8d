#include "WaitForMultipleObjects.h"

#include <gtest/gtest.h>

#include <chrono>

TEST(WaitForMultipleObjects, TellsTheIndexOfTheEventThatIsSet)
{
    CMyEvent first(false);
    CMyEvent second(false);
    CMyEvent third(false);
    const CMyEvent* events[] = {&first, &second, &third};
    second.SetEvent();
    EXPECT_EQ(1, WaitForMultipleObjects(3, events, false, 1000));
    EXPECT_EQ(258u, second.WaitEvent(0)); // the wait has cleared it
}

TEST(WaitForMultipleObjects, WaitingForAllReturnsZeroOnceAllWereSet)
{
    CMyEvent first(false);
    CMyEvent second(false);
    const CMyEvent* events[] = {&first, &second};
    first.SetEvent();
    second.SetEvent();
    EXPECT_EQ(0, WaitForMultipleObjects(2, events, true, 1000));
}

TEST(WaitForMultipleObjects, WaitingForAllTimesOutWhenOneIsMissing)
{
    CMyEvent first(false);
    CMyEvent second(false);
    const CMyEvent* events[] = {&first, &second};
    first.SetEvent();
    EXPECT_EQ(258, WaitForMultipleObjects(2, events, true, 30));
}

// The time is counted by waits of 10 ms over all events, so it does not grow with their number.
TEST(WaitForMultipleObjects, TimesOutAfterAboutTheTimeInAll)
{
    CMyEvent a(false);
    CMyEvent b(false);
    CMyEvent c(false);
    CMyEvent d(false);
    const CMyEvent* events[] = {&a, &b, &c, &d};
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(258, WaitForMultipleObjects(4, events, false, 30));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(39)); // one pass over four
}

// An event that is set costs no time and counts 10 ms all the same: with all three set, three passes use up the 20 ms.
TEST(WaitForMultipleObjects, EventsThatAreSetUseUpTheTimeToo)
{
    CMyEvent set(true);
    CMyEvent unset(false);
    set.SetEvent();
    const CMyEvent* events[] = {&set, &set, &set, &unset};
    EXPECT_EQ(258, WaitForMultipleObjects(4, events, true, 29));
    EXPECT_EQ(258, WaitForMultipleObjects(3, events, true, 19));
    EXPECT_EQ(0, WaitForMultipleObjects(3, events, true, 20));
}

TEST(WaitForMultipleObjects, LooksOnceWithNoTimeAtAll)
{
    CMyEvent event(false);
    const CMyEvent* events[] = {&event};
    EXPECT_EQ(258, WaitForMultipleObjects(1, events, false, 0));
    event.SetEvent();
    EXPECT_EQ(0, WaitForMultipleObjects(1, events, false, 0));
}

TEST(WaitForMultipleObjects, NoEventsAreATimeOut)
{
    EXPECT_EQ(258, WaitForMultipleObjects(0, nullptr, true, 1000));
    EXPECT_EQ(258, WaitForMultipleObjects(-1, nullptr, false, 1000));
}
