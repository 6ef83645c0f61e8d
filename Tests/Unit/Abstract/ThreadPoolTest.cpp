#include "ThreadPool.h"

#include "PFHelper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <set>
#include <vector>

#include <sys/prctl.h>

namespace
{

const unsigned int LONG_MS = 60000; // a test that waits so long has failed

void Call(void* function)
{
    (*static_cast<std::function<void()>*>(function))();
}

// A task that says when it runs and waits until it may end.
class CHeldTask
{
public:
    void Run(CThreadPool& pool, ThreadPriority priority = THREAD_PRIORITY_TAIL)
    {
        pool.Run(&Call, &m_function, priority);
    }
    bool HasStarted(unsigned int ms = LONG_MS) const { return m_started.WaitEvent(ms) == CMyEvent::EVENT_SET; }
    void Release() { m_release.SetEvent(); }
    bool HasEnded(unsigned int ms = LONG_MS) const { return m_ended.WaitEvent(ms) == CMyEvent::EVENT_SET; }
    unsigned int ThreadId() const { return m_threadId; }

private:
    std::atomic<unsigned int> m_threadId{0};
    CMyEvent m_started{true};
    CMyEvent m_release{true};
    CMyEvent m_ended{true};
    std::function<void()> m_function = [this]
    {
        m_threadId = CPFHelper::GetThreadID();
        m_started.SetEvent();
        m_release.WaitEvent(LONG_MS);
        m_ended.SetEvent();
    };
};

} // namespace

TEST(ThreadPool, RunsATask)
{
    CHeldTask task;
    CThreadPool pool(2, 4, true);
    task.Run(pool);
    EXPECT_TRUE(task.HasStarted());
    task.Release();
    EXPECT_TRUE(task.HasEnded());
    EXPECT_NE(CPFHelper::GetThreadID(), task.ThreadId());
}

TEST(ThreadPool, GrowsToItsMaximumAndLetsTheNextTaskWait)
{
    CHeldTask tasks[5];
    CThreadPool pool(2, 4, true);
    for (CHeldTask& task : tasks)
    {
        task.Run(pool);
    }
    std::set<unsigned int> ids;
    for (int i = 0; i < 4; ++i)
    {
        EXPECT_TRUE(tasks[i].HasStarted());
        ids.insert(tasks[i].ThreadId());
    }
    EXPECT_EQ(4u, ids.size());
    EXPECT_FALSE(tasks[4].HasStarted(20));
    tasks[2].Release();
    EXPECT_TRUE(tasks[4].HasStarted());
    EXPECT_EQ(tasks[2].ThreadId(), tasks[4].ThreadId());
    for (CHeldTask& task : tasks)
    {
        task.Release();
    }
}

TEST(ThreadPool, IdleThreadIsUsedBeforeANewOne)
{
    CHeldTask first;
    CHeldTask second;
    CHeldTask third;
    CThreadPool pool(1, 4, true);
    first.Run(pool);
    ASSERT_TRUE(first.HasStarted());
    second.Run(pool); // a second thread
    ASSERT_TRUE(second.HasStarted());
    EXPECT_NE(first.ThreadId(), second.ThreadId());
    first.Release();
    second.Release();
    ASSERT_TRUE(first.HasEnded());
    ASSERT_TRUE(second.HasEnded());
    pool.SetPoolMaxSize(2);
    third.Run(pool);
    ASSERT_TRUE(third.HasStarted());
    EXPECT_THAT(third.ThreadId(), testing::AnyOf(first.ThreadId(), second.ThreadId()));
    third.Release();
}

TEST(ThreadPool, TailTasksRunInTheirOrderAndOthersInFront)
{
    CHeldTask blocker;
    CMyEvent done(true);
    std::vector<int> order;
    std::vector<std::function<void()>> tasks;
    CThreadPool pool(1, 1, true);
    blocker.Run(pool);
    ASSERT_TRUE(blocker.HasStarted());
    for (int i = 0; i < 4; ++i)
    {
        tasks.emplace_back(
            [&order, &done, i]
            {
                order.push_back(i);
                if (order.size() == 4)
                {
                    done.SetEvent();
                }
            });
    }
    pool.Run(&Call, &tasks[0], THREAD_PRIORITY_TAIL);
    pool.Run(&Call, &tasks[1], THREAD_PRIORITY_TAIL);
    pool.Run(&Call, &tasks[2], THREAD_PRIORITY_HEAD);
    pool.Run(&Call, &tasks[3], static_cast<ThreadPriority>(2));
    blocker.Release();
    ASSERT_EQ(0u, done.WaitEvent(LONG_MS));
    pool.Destroy();
    EXPECT_THAT(order, testing::ElementsAre(3, 2, 0, 1));
}

TEST(ThreadPool, DestroyLetsATaskEndAndDropsThoseThatWait)
{
    CHeldTask running;
    CHeldTask waiting;
    CThreadPool pool(1, 1, true);
    running.Run(pool);
    ASSERT_TRUE(running.HasStarted());
    waiting.Run(pool);
    running.Release();
    // The waiting task may still be taken before the pool ends; it must not hold it.
    waiting.Release();
    pool.Destroy();
    EXPECT_TRUE(running.HasEnded(0));
    pool.Destroy(); // nothing more to do
}

TEST(ThreadPool, RunsNothingAfterDestroyUntilCreatedAnew)
{
    CHeldTask task;
    CHeldTask next;
    CThreadPool pool(1, 2, true);
    pool.Destroy();
    task.Run(pool);
    EXPECT_FALSE(task.HasStarted(20));
    EXPECT_TRUE(pool.Create());
    next.Run(pool);
    EXPECT_TRUE(task.HasStarted()); // it was still queued
    task.Release();
    EXPECT_TRUE(next.HasStarted());
    next.Release();
}

TEST(ThreadPool, DestroyBeforeCreateDoesNothing)
{
    CHeldTask task;
    CThreadPool pool(1, 1, false);
    pool.Destroy(); // nothing was created
    EXPECT_TRUE(pool.Create());
    task.Run(pool);
    EXPECT_TRUE(task.HasStarted());
    task.Release();
}

TEST(ThreadPool, ThreadOfATaskThatCameBeforeCreateIsEndedToo)
{
    CHeldTask task;
    CHeldTask next;
    CThreadPool pool(1, 1, false);
    task.Run(pool);
    EXPECT_TRUE(task.HasStarted());
    task.Release();
    pool.Destroy();
    next.Run(pool);
    EXPECT_FALSE(next.HasStarted(20));
}

TEST(ThreadPool, ThreadsHaveTheirName)
{
    char name[16] = {};
    CMyEvent done(true);
    std::function<void()> task = [&]
    {
        prctl(PR_GET_NAME, name);
        done.SetEvent();
    };
    CThreadPool pool(1, 1, true);
    pool.Run(&Call, &task, THREAD_PRIORITY_TAIL);
    ASSERT_EQ(0u, done.WaitEvent(LONG_MS));
    EXPECT_STREQ("##Thread Pool T", name);
}

TEST(ThreadPool, KeepsItsSizes)
{
    CThreadPool pool(2, 4, false);
    EXPECT_EQ(2, pool.GetPoolSize());
    pool.SetPoolSize(3);
    EXPECT_EQ(3, pool.GetPoolSize());
}

TEST(ThreadPool, ServesManyTasksFromManyThreads)
{
    const int COUNT = 2000;
    std::atomic<int> left{COUNT};
    CMyEvent done(true);
    std::function<void()> task = [&]
    {
        if (--left == 0)
        {
            done.SetEvent();
        }
    };
    CThreadPool pool(2, 4, true);
    for (int i = 0; i < COUNT; ++i)
    {
        pool.Run(&Call, &task, THREAD_PRIORITY_TAIL);
    }
    EXPECT_EQ(0u, done.WaitEvent(LONG_MS));
}
