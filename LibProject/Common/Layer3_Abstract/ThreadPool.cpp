#include "ThreadPool.h"

#include "PFAssert.h"
#include "PFHelper.h"
#include "ShareSDK.h"

#include <memory>

CThreadPool::CThreadPool(int poolSize, int maxPoolSize, bool createNow)
    : m_poolSize(poolSize), m_maxPoolSize(maxPoolSize)
{
    if (createNow && !Create())
    {
        SHARESDK_AbnormalOutput("thread pool: no threads", __FILE__, __LINE__);
        throw 1; // the one failure that a constructor could tell; Create never brings it about
    }
}

CThreadPool::~CThreadPool()
{
    Destroy();
}

bool CThreadPool::Create()
{
    m_running = true;
    for (int i = 0; i < m_poolSize; ++i)
    {
        if (!CreateThread(true))
        {
            break;
        }
    }
    m_created = true;
    return true;
}

void CThreadPool::Run(void (*function)(void*), void* argument, ThreadPriority priority)
{
    {
        CMySingleLock guard(m_lock);
        m_tasks.insert(priority == THREAD_PRIORITY_TAIL ? m_tasks.end() : m_tasks.begin(), {function, argument});
    }
    // The event is set without the lock: the thread that it wakes takes the lock first of all.
    std::shared_ptr<CMyEvent> event;
    {
        CMySingleLock guard(m_lock);
        for (auto& row : m_threads)
        {
            if (row.second.idle)
            {
                row.second.idle = false;
                event = row.second.event;
                break;
            }
        }
        if (event == nullptr)
        {
            CreateThread(false); // with all threads there and busy the task waits for one of them
        }
    }
    if (event != nullptr)
    {
        event->SetEvent();
    }
}

int CThreadPool::GetPoolSize() const
{
    return m_poolSize;
}

void CThreadPool::SetPoolSize(int size)
{
    m_poolSize = size;
}

void CThreadPool::SetPoolMaxSize(int size)
{
    m_maxPoolSize = size;
}

void CThreadPool::Destroy()
{
    std::map<unsigned int, tagThreadData> threads;
    {
        CMySingleLock guard(m_lock);
        if (!m_created && m_threads.empty()) // a task that came before Create may have brought a thread
        {
            return;
        }
        m_running = false; // from here on CreateThread adds none
        threads = m_threads;
    }
    // Without the lock: a thread that ends its task takes it once more, and finds its row.
    for (auto& row : threads)
    {
        row.second.event->SetEvent();
        SHARESDK_DestroyThread(row.second.handle, __FILE__, __LINE__);
    }
    CMySingleLock guard(m_lock);
    m_tasks.clear();
    m_threads.clear();
}

// The thread is made suspended, so that its row is there before it looks the row up.
bool CThreadPool::CreateThread(bool idle)
{
    CMySingleLock guard(m_lock);
    if (!m_running || static_cast<int>(m_threads.size()) >= m_maxPoolSize)
    {
        return false;
    }
    const unsigned int handle = SHARESDK_CreateRunOneThread(&CThreadPool::_ThreadProc, this, true, __FILE__, __LINE__,
                                                            "##Thread Pool Thread##");
    if (handle == 0)
    {
        SHARESDK_AbnormalOutput("thread pool: no thread could be created", __FILE__, __LINE__);
        return false;
    }
    const unsigned int id = SHARESDK_GetThreadID(handle);
    const auto event = std::make_shared<CMyEvent>(true);
    if (!idle)
    {
        event->SetEvent();
    }
    m_threads[id] = tagThreadData{idle, event, handle, id};
    SHARESDK_ResumeThread(handle);
    return true;
}

void CThreadPool::_ThreadProc(void* pool)
{
    if (pool == nullptr)
    {
        SHARESDK_AbnormalOutput("thread pool: parameter error", __FILE__, __LINE__);
        return;
    }
    static_cast<CThreadPool*>(pool)->ThreadLoop();
}

void CThreadPool::ThreadLoop()
{
    SHARESDK_LetOthersFinish(); // several queued tasks are done at one go
    const unsigned int threadId = CPFHelper::GetThreadID();
    const std::shared_ptr<CMyEvent> event = GetWaitHandle(threadId);
    while (m_running)
    {
        event->WaitEvent(CMyEvent::WITHOUT_LIMIT);
        if (!m_running) // cppcheck-suppress oppositeInnerCondition; Destroy changes it meanwhile
        {
            break;
        }
        void (*function)(void*) = nullptr;
        void* argument = nullptr;
        if (GetThreadProc(threadId, function, argument))
        {
            BusyNotify(threadId);
            function(argument);
        }
        FinishNotify(threadId);
    }
    SHARESDK_NormalOutput("thread pool: a thread leaves, its close event was signalled", __FILE__, __LINE__);
}

bool CThreadPool::GetThreadProc(unsigned int /*threadId*/, void (*&function)(void*), void*& argument)
{
    CMySingleLock guard(m_lock);
    if (m_tasks.empty())
    {
        return false;
    }
    function = m_tasks.front().function;
    argument = m_tasks.front().argument;
    m_tasks.pop_front();
    return true;
}

void CThreadPool::BusyNotify(unsigned int threadId)
{
    CMySingleLock guard(m_lock);
    const auto row = m_threads.find(threadId);
    PF_ASSERT(row != m_threads.end());
    row->second.idle = false;
}

// With tasks waiting the event stays set, and the thread goes round again at once.
void CThreadPool::FinishNotify(unsigned int threadId)
{
    CMySingleLock guard(m_lock);
    const auto row = m_threads.find(threadId);
    PF_ASSERT(row != m_threads.end());
    if (m_tasks.empty())
    {
        row->second.idle = true;
        row->second.event->ResetEvent();
    }
}

std::shared_ptr<CMyEvent> CThreadPool::GetWaitHandle(unsigned int threadId)
{
    CMySingleLock guard(m_lock);
    const auto row = m_threads.find(threadId);
    PF_ASSERT(row != m_threads.end());
    return row->second.event;
}
