#include "Interlocked.h"

#include <gtest/gtest.h>

#include <climits>
#include <thread>
#include <vector>

TEST(Interlocked, IncrementAndDecrementReturnTheNewValue)
{
    Interlocked number(5);
    EXPECT_EQ(6, number.Increment());
    EXPECT_EQ(5, number.Decrement());
    EXPECT_EQ(5, number);
}

// The two families differ: these return what was there before.
TEST(Interlocked, SetValueAndExchangeAddReturnTheOldValue)
{
    Interlocked number(5);
    EXPECT_EQ(5, number.SetValue(9));
    EXPECT_EQ(9, number.ExchangeAdd(-4));
    EXPECT_EQ(5, number);
}

TEST(Interlocked, GoesRoundAtTheEndOfItsRange)
{
    Interlocked number(INT_MAX);
    EXPECT_EQ(INT_MIN, number.Increment());
    EXPECT_EQ(INT_MAX, number.Decrement());
}

TEST(Interlocked, CountsFromSeveralThreads)
{
    Interlocked number(0);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
    {
        threads.emplace_back(
            [&]
            {
                for (int n = 0; n < 1000; ++n)
                {
                    number.Increment();
                    number.ExchangeAdd(2);
                    number.Decrement();
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(8000, number);
}
