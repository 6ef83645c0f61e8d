// EventLoop.cpp: the event thread.
//
// A closed connection is not watched for its peer's end: connections that linger are looked at together, every 10 ms
// while there are any. A busy server thus wakes this thread a hundred times a second, not once a connection.
#include "EventLoop.h"

#include "Connection.h"
#include "ShareSDK.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <mutex>
#include <utility>

#include <event2/event.h>
#include <event2/thread.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{

constexpr std::uint64_t LINGER_MS = 1000;
constexpr timeval SWEEP_INTERVAL = {0, 10000};

/// More than these are not kept: descriptors are few on a device. The oldest go first.
constexpr std::size_t LINGER_MAX = 256;

thread_local const CEventLoop* currentLoop = nullptr;

void OnStop(int, short, void* base)
{
    event_base_loopbreak(static_cast<event_base*>(base));
}

} // namespace

std::shared_ptr<CEventLoop> CEventLoop::Create()
{
    static const int threading = evthread_use_pthreads();
    std::shared_ptr<CEventLoop> loop(new CEventLoop);
    return threading == 0 && loop->Start() ? loop : nullptr;
}

bool CEventLoop::Start()
{
    m_base = event_base_new();
    if (m_base == nullptr)
    {
        return false;
    }
    m_stopEvent = event_new(m_base, -1, 0, OnStop, m_base);
    m_sweepEvent = event_new(m_base, -1, 0, OnSweep, this);
    if (m_stopEvent == nullptr || m_sweepEvent == nullptr)
    {
        return false;
    }
    m_thread = SHARESDK_CreateRunOneThread(Run, this, false, __FILE__, __LINE__, "socket events");
    return m_thread != 0;
}

CEventLoop::~CEventLoop()
{
    Stop();
    for (event* own : {m_stopEvent, m_sweepEvent})
    {
        if (own != nullptr)
        {
            event_free(own);
        }
    }
    if (m_base != nullptr)
    {
        event_base_free(m_base);
    }
}

void CEventLoop::Stop()
{
    if (m_thread != 0)
    {
        event_active(m_stopEvent, EV_TIMEOUT, 0);
        SHARESDK_DestroyThread(std::exchange(m_thread, 0), __FILE__, __LINE__);
    }
}

void CEventLoop::Run(void* loop)
{
    auto* self = static_cast<CEventLoop*>(loop);
    currentLoop = self;
    event_base_loop(self->m_base, EVLOOP_NO_EXIT_ON_EMPTY);
}

bool CEventLoop::IsLoopThread() const
{
    return currentLoop == this;
}

event* CEventLoop::WatchForReading(int fd, void (*callback)(int, short, void*), void* argument)
{
    if (fd == -1)
    {
        // A connection that failed from the start: the callback runs once and tells so.
        event* failed = event_new(m_base, -1, 0, callback, argument);
        if (failed != nullptr)
        {
            event_active(failed, EV_READ, 0);
        }
        return failed;
    }
    event* watched = event_new(m_base, fd, EV_READ | EV_PERSIST, callback, argument);
    if (watched != nullptr && event_add(watched, nullptr) != 0)
    {
        event_free(watched);
        return nullptr;
    }
    return watched;
}

void CEventLoop::Unwatch(event* watched)
{
    event_free(watched); // waits for a callback that runs on the event thread
}

void CEventLoop::Linger(std::shared_ptr<CConnection> connection)
{
    std::unique_lock<std::mutex> lock(m_lingerLock);
    if (m_lingering.size() >= LINGER_MAX)
    {
        lock.unlock();
        Sweep();
        lock.lock();
    }
    Lingering oldest; // closed without the lock
    if (m_lingering.size() >= LINGER_MAX)
    {
        oldest = std::move(m_lingering.front());
        m_lingering.erase(m_lingering.begin());
    }
    m_lingering.push_back({std::move(connection), DeadlineAfter(LINGER_MS)});
    if (m_lingering.size() == 1)
    {
        event_add(m_sweepEvent, &SWEEP_INTERVAL);
    }
    lock.unlock();
}

void CEventLoop::OnSweep(int, short, void* loop)
{
    static_cast<CEventLoop*>(loop)->Sweep();
}

void CEventLoop::Sweep()
{
    std::unique_lock<std::mutex> lock(m_lingerLock);
    std::vector<Lingering> swept = std::exchange(m_lingering, {});
    ++m_sweeps;
    lock.unlock();

    const std::uint64_t now = MonotonicMs();
    const auto done = [now](const Lingering& entry)
    {
        return entry.connection->Drain() || now >= entry.deadlineMs;
    };
    swept.erase(std::remove_if(swept.begin(), swept.end(), done), swept.end());

    lock.lock();
    // Others may have come while these were looked at: the oldest go.
    const std::size_t total = swept.size() + m_lingering.size();
    const std::size_t excess = std::min(total > LINGER_MAX ? total - LINGER_MAX : 0, swept.size());
    m_lingering.insert(m_lingering.begin(),
                       std::make_move_iterator(swept.begin() + static_cast<std::ptrdiff_t>(excess)),
                       std::make_move_iterator(swept.end()));
    --m_sweeps;
    if (!m_lingering.empty())
    {
        event_add(m_sweepEvent, &SWEEP_INTERVAL);
    }
    else if (m_sweeps == 0)
    {
        m_lingerEmpty.notify_all();
    }
}

void CEventLoop::FinishLingering(std::uint64_t deadlineMs)
{
    std::unique_lock<std::mutex> lock(m_lingerLock);
    const auto isEmpty = [this]
    {
        return m_sweeps == 0 && m_lingering.empty();
    };
    const std::uint64_t now = MonotonicMs();
    const std::chrono::milliseconds left(deadlineMs > now ? deadlineMs - now : 0);
    m_lingerEmpty.wait_for(lock, left, isEmpty);
    const std::vector<Lingering> cut = std::exchange(m_lingering, {});
    lock.unlock(); // the sockets close without the lock
}
