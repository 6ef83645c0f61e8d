#include "Lock.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <thread>
#include <vector>

namespace
{

// What another thread sees of the lock.
int TryFromAnotherThread(CLock& lock)
{
    int result = 0;
    std::thread(
        [&]
        {
            result = pthread_mutex_trylock(lock.Native());
            if (result == 0)
            {
                pthread_mutex_unlock(lock.Native());
            }
        })
        .join();
    return result;
}

// Clang's analysis knows no recursive locks, so these two are hidden from it.
void Take(CLock& lock) NO_THREAD_SAFETY_ANALYSIS
{
    lock.Lock();
}

void GiveBack(CLock& lock) NO_THREAD_SAFETY_ANALYSIS
{
    lock.Unlock();
}

} // namespace

TEST(Lock, IsRecursiveByDefaultAndMustBeUnlockedAsOften)
{
    CLock lock;
    Take(lock);
    Take(lock);
    GiveBack(lock);
    EXPECT_EQ(EBUSY, TryFromAnotherThread(lock));
    GiveBack(lock);
    EXPECT_EQ(0, TryFromAnotherThread(lock));
}

TEST(Lock, IsRecursiveWhenAskedFor)
{
    CLock lock(true);
    Take(lock);
    EXPECT_EQ(0, pthread_mutex_trylock(lock.Native()));
    GiveBack(lock);
    GiveBack(lock);
}

// The thread that holds a plain lock would wait for itself.
TEST(Lock, PlainLockIsNotTakenTwiceByOneThread)
{
    CLock lock(false);
    lock.Lock();
    EXPECT_EQ(EBUSY, pthread_mutex_trylock(lock.Native()));
    lock.Unlock();
}

TEST(MySingleLock, HoldsTheLockForItsScope)
{
    CLock lock;
    {
        CMySingleLock guard(lock);
        EXPECT_EQ(EBUSY, TryFromAnotherThread(lock));
    }
    EXPECT_EQ(0, TryFromAnotherThread(lock));
}

TEST(MySingleLock, KeepsThreadsApart)
{
    CLock lock;
    int count = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
    {
        threads.emplace_back(
            [&]
            {
                for (int n = 0; n < 1000; ++n)
                {
                    CMySingleLock guard(lock);
                    ++count;
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(4000, count);
}
