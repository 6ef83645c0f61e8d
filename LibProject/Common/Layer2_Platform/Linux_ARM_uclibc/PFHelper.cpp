#include "PFHelper.h"

#include "Lock.h"
#include "PFAssert.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <memory>

#include <dirent.h>
#include <pthread.h>
#include <sched.h>
#include <semaphore.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <uuid/uuid.h>

namespace
{

const unsigned int MEM_COMMIT = 0x1000;
const unsigned int MEM_RELEASE = 0x8000;

unsigned int MonotonicMs()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<unsigned int>(static_cast<std::uint64_t>(now.tv_sec) * 1000 +
                                     static_cast<std::uint64_t>(now.tv_nsec) / 1000000);
}

std::atomic<unsigned int (*)()> s_tickSource{&MonotonicMs};

// The threads of CreateThread that are neither joined nor detached, by id. The kernel may give the id of a thread that
// has ended to a new one, so an id may stand here twice; the older one is taken first.
class CThreadTable
{
public:
    void Add(unsigned int id, pthread_t thread)
    {
        CMySingleLock guard(m_lock);
        m_threads.emplace(id, thread);
    }

    bool Take(unsigned int id, pthread_t& thread)
    {
        CMySingleLock guard(m_lock);
        const auto found = m_threads.lower_bound(id);
        if (found == m_threads.end() || found->first != id)
        {
            return false;
        }
        thread = found->second;
        m_threads.erase(found);
        return true;
    }

    bool AttachToCPU(unsigned int id, const cpu_set_t& cpus)
    {
        CMySingleLock guard(m_lock);
        const auto found = m_threads.find(id);
        return found != m_threads.end() && pthread_setaffinity_np(found->second, sizeof(cpus), &cpus) == 0;
    }

private:
    CLock m_lock;
    std::multimap<unsigned int, pthread_t> m_threads GUARDED_BY(m_lock);
};

CThreadTable& ThreadTable()
{
    static CThreadTable table;
    return table;
}

// What the starting thread and the new one share until the new one's id is known.
struct ThreadStart
{
    void* (*function)(void*);
    void* argument;
    unsigned int id = 0;
    sem_t started;
};

void* RunThread(void* context)
{
    ThreadStart* start = static_cast<ThreadStart*>(context);
    void* (*const function)(void*) = start->function;
    void* const argument = start->argument;
    start->id = CPFHelper::GetThreadID();
    sem_post(&start->started); // `start` may be gone from here on
    return function(argument);
}

} // namespace

unsigned int CPFHelper::GetTickCount()
{
    unsigned int (*const source)() = s_tickSource.load(std::memory_order_acquire);
    unsigned int tick = source();
    while (tick == 0)
    {
        tick = source();
    }
    return tick;
}

void CPFHelper::ReplaceTickCount(unsigned int (*source)())
{
    s_tickSource.store(source != nullptr ? source : &MonotonicMs, std::memory_order_release);
}

void CPFHelper::Sleep(unsigned int ms)
{
    timespec left = {};
    left.tv_sec = static_cast<time_t>(ms / 1000);
    left.tv_nsec = static_cast<long>(ms % 1000) * 1000000;
    timespec remaining = {};
    while (nanosleep(&left, &remaining) != 0 && errno == EINTR && (remaining.tv_sec > 0 || remaining.tv_nsec > 0))
    {
        left = remaining;
    }
}

int CPFHelper::GetCPUCount()
{
    return static_cast<int>(sysconf(_SC_NPROCESSORS_ONLN));
}

unsigned int CPFHelper::GetPageSize()
{
    static const unsigned int pageSize = static_cast<unsigned int>(sysconf(_SC_PAGESIZE));
    return pageSize;
}

unsigned int CPFHelper::CreateThread(void* (*function)(void*), void* argument, unsigned int* id)
{
    ThreadStart start;
    start.function = function;
    start.argument = argument;
    sem_init(&start.started, 0, 0);
    pthread_t thread = {};
    const int error = pthread_create(&thread, nullptr, &RunThread, &start);
    if (error == 0)
    {
        while (sem_wait(&start.started) != 0)
        {
        }
        ThreadTable().Add(start.id, thread);
    }
    sem_destroy(&start.started);
    if (error != 0)
    {
        errno = error;
        return 0;
    }
    if (id != nullptr)
    {
        *id = start.id;
    }
    return start.id;
}

void CPFHelper::DestroyThread(unsigned int& id)
{
    pthread_t thread = {};
    if (ThreadTable().Take(id, thread))
    {
        pthread_join(thread, nullptr);
    }
    id = 0;
}

void CPFHelper::DetachThread(unsigned int& id)
{
    pthread_t thread = {};
    if (ThreadTable().Take(id, thread))
    {
        pthread_detach(thread);
    }
    id = 0;
}

bool CPFHelper::AttachThreadToCPU(unsigned int id, int cpu)
{
    if (cpu < 0 || cpu >= CPU_SETSIZE)
    {
        return false;
    }
    cpu_set_t cpus;
    static_assert(sizeof(cpus) == 128, "the mask has 1024 processors");
    CPU_ZERO(&cpus);
    CPU_SET(static_cast<unsigned int>(cpu), &cpus);
    return ThreadTable().AttachToCPU(id, cpus);
}

void CPFHelper::SetCurrentThreadName(const char* name, const char* file, int line)
{
    std::printf("THREADDDD=%s,%u,%s,%d\n", name, GetThreadID(), file, line);
    prctl(PR_SET_NAME, name, 0, 0, 0);
}

unsigned int CPFHelper::GetThreadID()
{
    thread_local const unsigned int id = static_cast<unsigned int>(syscall(SYS_gettid));
    return id;
}

void CPFHelper::CreateGUID(_GUID& guid)
{
    static_assert(sizeof(guid) == 16, "a GUID is sixteen bytes");
    unsigned char bytes[16];
    uuid_generate(bytes);
    std::memcpy(&guid, bytes, sizeof(guid));
}

void CPFHelper::SetLastError(unsigned int error)
{
    errno = static_cast<int>(error);
}

unsigned int CPFHelper::GetLastError()
{
    return static_cast<unsigned int>(errno);
}

unsigned int CPFHelper::GetModuleFileName(unsigned int /*reserved*/, char* buffer, unsigned int size)
{
    char link[32];
    std::snprintf(link, sizeof(link), "/proc/%d/exe", static_cast<int>(getpid()));
    const ssize_t length = readlink(link, buffer, size);
    if (length <= 0)
    {
        return 0;
    }
    if (static_cast<size_t>(length) < size)
    {
        buffer[length] = '\0';
    }
    return static_cast<unsigned int>(length);
}

bool CPFHelper::GetFileList(const char* directory, std::list<std::string>& names)
{
    names.clear();
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(directory), &closedir);
    if (!entries)
    {
        return false;
    }
    while (const dirent* entry = readdir(entries.get()))
    {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
        {
            names.emplace_back(entry->d_name);
        }
    }
    return true;
}

void CPFHelper::Sync()
{
    sync();
}

void* CPFHelper::VirtualAlloc(void* address, unsigned int size, unsigned int type, unsigned int /*protect*/)
{
    PF_ASSERT(address == nullptr);
    PF_ASSERT(type == MEM_COMMIT);
    void* memory = nullptr;
    return posix_memalign(&memory, GetPageSize(), size) == 0 ? memory : nullptr;
}

void CPFHelper::VirtualFree(void* address, unsigned int size, unsigned int type)
{
    PF_ASSERT(size == 0);
    PF_ASSERT(type == MEM_RELEASE);
    std::free(address);
}
