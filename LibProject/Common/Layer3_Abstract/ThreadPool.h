// ThreadPool.h: a few threads that take tasks from one queue.
//
// Any thread. A task must not throw.
#pragma once

#include "Lock.h"
#include "MyEvent.h"

#include <atomic>
#include <list>
#include <map>
#include <memory>

enum ThreadPriority : int
{
    THREAD_PRIORITY_HEAD = 0, ///< in front of the waiting tasks, as any value but 1
    THREAD_PRIORITY_TAIL = 1, ///< behind the waiting tasks
};

class CThreadPool
{
public:
    /// @param poolSize     threads that Create starts
    /// @param maxPoolSize  most threads at any time; those beyond the first are started when all others are busy
    /// @param createNow    true: calls Create
    CThreadPool(int poolSize, int maxPoolSize, bool createNow);
    /// Calls Destroy.
    virtual ~CThreadPool();
    CThreadPool(const CThreadPool&) = delete;
    CThreadPool& operator=(const CThreadPool&) = delete;

    /// Starts the first threads, as many as can be had. @return true
    bool Create();

    /// Queues a task and wakes or starts a thread for it. When all are busy the task waits for one.
    void Run(void (*function)(void*), void* argument, ThreadPriority priority);

    int GetPoolSize() const;
    void SetPoolSize(int size);
    void SetPoolMaxSize(int size);

    /// Ends the threads, each when its task is done, and drops the tasks that wait. Not to be called from a task.
    void Destroy();

private:
    struct tagFunctionData
    {
        void (*function)(void*);
        void* argument;
    };

    struct tagThreadData
    {
        bool idle;
        std::shared_ptr<CMyEvent> event; // manual reset; set while there may be a task for the thread
        unsigned int handle;
        unsigned int id;
    };

    static void _ThreadProc(void* pool); // NOLINT(bugprone-reserved-identifier)
    void ThreadLoop();
    bool CreateThread(bool idle);
    bool GetThreadProc(unsigned int threadId, void (*&function)(void*), void*& argument);
    void BusyNotify(unsigned int threadId);
    void FinishNotify(unsigned int threadId);
    std::shared_ptr<CMyEvent> GetWaitHandle(unsigned int threadId);

    bool m_created = false; // life cycle calls only
    std::atomic<bool> m_running{true};
    std::atomic<int> m_poolSize;
    std::atomic<int> m_maxPoolSize;

    // Held for a look at the tables; no task runs under it. Order: before an event's lock.
    CLock m_lock;
    std::list<tagFunctionData> m_tasks GUARDED_BY(m_lock);
    std::map<unsigned int, tagThreadData> m_threads GUARDED_BY(m_lock); // by thread id
};
