#include "MySemaphore.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

TEST(MySemaphore, UnlockLetsOneThrough)
{
    CMySemaphore semaphore(0, 1);
    EXPECT_FALSE(semaphore.trylock());
    semaphore.unlock();
    EXPECT_TRUE(semaphore.trylock());
    EXPECT_FALSE(semaphore.trylock());
}

TEST(MySemaphore, StartsAtItsInitialCount)
{
    CMySemaphore semaphore(2, 2);
    EXPECT_TRUE(semaphore.trylock());
    EXPECT_TRUE(semaphore.trylock());
    EXPECT_FALSE(semaphore.trylock());
}

// The maximum is kept and never enforced.
TEST(MySemaphore, CountsBeyondItsMaximum)
{
    CMySemaphore semaphore(1, 1);
    semaphore.unlock();
    EXPECT_TRUE(semaphore.trylock());
    EXPECT_TRUE(semaphore.trylock());
    EXPECT_FALSE(semaphore.trylock());
}

TEST(MySemaphore, UnlockOfSeveralTellsTheCountBefore)
{
    CMySemaphore semaphore(1, 8);
    int previous = -1;
    semaphore.unlock(3, &previous);
    EXPECT_EQ(1, previous);
    semaphore.unlock(0, &previous);
    EXPECT_EQ(4, previous);
    semaphore.unlock(1, nullptr);
    semaphore.unlock(0, &previous);
    EXPECT_EQ(5, previous);
}

TEST(MySemaphore, TimedLockGivesUp)
{
    CMySemaphore semaphore(0, 1);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(semaphore.lock(30));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(29));
    semaphore.unlock();
    EXPECT_TRUE(semaphore.lock(0));
}

TEST(MySemaphore, UnlockWakesWaitingThreads)
{
    CMySemaphore semaphore(0, 2);
    bool taken = false;
    std::thread plain([&] { semaphore.lock(); });
    std::thread timed([&] { taken = semaphore.lock(60000); });
    semaphore.unlock();
    semaphore.unlock();
    plain.join();
    timed.join();
    EXPECT_TRUE(taken);
}

TEST(MySemaphoreDeathTest, MaximumOfNoneEndsTheProcess)
{
    EXPECT_DEATH(CMySemaphore(0, 0), "Assertion .lMaxCount > 0. failed");
}
