// ShareSDKThread.cpp: threads by handle. Any thread.
//
// A new thread publishes its kernel id, then waits to be resumed; only then does it run what it was made for.
// Destroying takes the handle out of the table first, so one handle is waited for once.
#include "ShareSDK.h"

#include <condition_variable>
#include <cstdio>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include <pthread.h>
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{

/// Handles go round before one is used again.
constexpr unsigned int HANDLE_MAX = 0x7FFFFFFF;

/// Characters of a thread's name that the kernel keeps.
constexpr std::size_t KERNEL_NAME_LENGTH = 15;

enum class Start
{
    Waiting,
    Resumed,
    Cancelled, ///< destroyed before it was resumed: the function does not run
};

/// One thread. Everything but the constants is guarded by the table's lock.
struct CThread
{
    void (*function)(void*) = nullptr;
    void* argument = nullptr;
    std::string name;

    pthread_t thread = 0;
    unsigned int id = 0; ///< kernel id, 0 until the thread has published it
    Start start = Start::Waiting;
    const CThread* waitsFor = nullptr; ///< the thread whose end this one waits for
};

/// All threads that have a handle.
class CThreadTable
{
public:
    static CThreadTable& Instance();

    /// @param error  receives the system's reason when the handle is 0
    unsigned int Create(const std::shared_ptr<CThread>& thread, int& error);
    unsigned int GetID(unsigned int handle);
    bool Resume(unsigned int handle);
    bool Destroy(unsigned int handle);

private:
    static void* Run(void* argument);
    bool AwaitStart(CThread& self);
    unsigned int NextHandle();
    bool WouldWaitForItself(const CThread& target) const;

    std::mutex m_lock;
    std::condition_variable m_changed; // an id was published, or a thread was resumed or cancelled
    std::map<unsigned int, std::shared_ptr<CThread>> m_threads;
    unsigned int m_lastHandle = 0;
};

/// The record of the calling thread; null for a thread that was not made here.
thread_local CThread* currentThread = nullptr;

CThreadTable& CThreadTable::Instance()
{
    // Never destroyed: objects that end with the process still join their threads.
    static CThreadTable& table = *new CThreadTable;
    return table;
}

unsigned int CThreadTable::Create(const std::shared_ptr<CThread>& thread, int& error)
{
    auto reference = std::make_unique<std::shared_ptr<CThread>>(thread);
    std::unique_lock<std::mutex> lock(m_lock);
    error = pthread_create(&thread->thread, nullptr, Run, reference.get());
    if (error != 0)
    {
        return 0;
    }
    static_cast<void>(reference.release()); // the new thread's
    m_changed.wait(lock, [&thread] { return thread->id != 0; });
    const unsigned int handle = NextHandle();
    m_threads[handle] = thread;
    return handle;
}

unsigned int CThreadTable::NextHandle()
{
    do
    {
        m_lastHandle = m_lastHandle == HANDLE_MAX ? 1 : m_lastHandle + 1;
    } while (m_threads.count(m_lastHandle) != 0);
    return m_lastHandle;
}

unsigned int CThreadTable::GetID(unsigned int handle)
{
    std::lock_guard<std::mutex> lock(m_lock);
    const auto found = m_threads.find(handle);
    return found == m_threads.end() ? 0 : found->second->id;
}

bool CThreadTable::Resume(unsigned int handle)
{
    std::lock_guard<std::mutex> lock(m_lock);
    const auto found = m_threads.find(handle);
    if (found == m_threads.end())
    {
        return false;
    }
    found->second->start = Start::Resumed;
    m_changed.notify_all();
    return true;
}

bool CThreadTable::Destroy(unsigned int handle)
{
    std::unique_lock<std::mutex> lock(m_lock);
    const auto found = m_threads.find(handle);
    if (found == m_threads.end())
    {
        return false;
    }
    const std::shared_ptr<CThread> target = found->second;
    m_threads.erase(found);
    if (target->start == Start::Waiting)
    {
        target->start = Start::Cancelled;
        m_changed.notify_all();
    }
    if (WouldWaitForItself(*target))
    {
        pthread_detach(target->thread);
        return true;
    }
    if (currentThread != nullptr)
    {
        currentThread->waitsFor = target.get();
    }
    lock.unlock();
    pthread_join(target->thread, nullptr);
    lock.lock();
    if (currentThread != nullptr)
    {
        currentThread->waitsFor = nullptr;
    }
    return true;
}

bool CThreadTable::WouldWaitForItself(const CThread& target) const
{
    const CThread* next = &target;
    while (next != nullptr && next != currentThread)
    {
        next = next->waitsFor;
    }
    return next != nullptr;
}

bool CThreadTable::AwaitStart(CThread& self)
{
    std::unique_lock<std::mutex> lock(m_lock);
    self.id = static_cast<unsigned int>(syscall(SYS_gettid));
    m_changed.notify_all();
    m_changed.wait(lock, [&self] { return self.start != Start::Waiting; });
    return self.start == Start::Resumed;
}

void* CThreadTable::Run(void* argument)
{
    std::unique_ptr<std::shared_ptr<CThread>> reference(static_cast<std::shared_ptr<CThread>*>(argument));
    const std::shared_ptr<CThread> self = std::move(*reference);
    reference.reset();

    pthread_setname_np(pthread_self(), self->name.c_str());
    currentThread = self.get();
    if (Instance().AwaitStart(*self))
    {
        self->function(self->argument);
    }
    return nullptr;
}

} // namespace

unsigned int SHARESDK_CreateRunOneThread(void (*function)(void*), void* argument, bool suspended, const char* file,
                                         int line, const char* name)
{
    if (function == nullptr)
    {
        SHARESDK_AbnormalOutput("ASSERT", file, static_cast<unsigned int>(line));
        return 0;
    }
    const auto thread = std::make_shared<CThread>();
    thread->function = function;
    thread->argument = argument;
    thread->name = std::string(name != nullptr ? name : "").substr(0, KERNEL_NAME_LENGTH);
    thread->start = suspended ? Start::Waiting : Start::Resumed;

    int error = 0;
    const unsigned int handle = CThreadTable::Instance().Create(thread, error);
    if (handle == 0)
    {
        char text[256];
        std::snprintf(text, sizeof(text), "thread \"%s\" could not be created, errno %d", thread->name.c_str(), error);
        SHARESDK_AbnormalOutput(text, file, static_cast<unsigned int>(line));
    }
    return handle;
}

unsigned int SHARESDK_GetThreadID(unsigned int handle)
{
    return CThreadTable::Instance().GetID(handle);
}

bool SHARESDK_ResumeThread(unsigned int handle)
{
    return CThreadTable::Instance().Resume(handle);
}

void SHARESDK_LetOthersFinish()
{
    const sched_param priority = {};
    sched_setscheduler(0, SCHED_BATCH, &priority);
}

bool SHARESDK_DestroyThread(unsigned int handle, const char* file, int line)
{
    if (CThreadTable::Instance().Destroy(handle))
    {
        return true;
    }
    if (handle != 0)
    {
        char text[256];
        std::snprintf(text, sizeof(text), "thread handle %u is unknown", handle);
        SHARESDK_AbnormalOutput(text, file, static_cast<unsigned int>(line));
    }
    return false;
}
