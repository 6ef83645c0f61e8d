// EventLoop.h: the event thread (libevent): readable nodes, and the end of closed connections. Any thread calls.
#pragma once

#include "SocketWait.h"

#include <array>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

class CConnection;
struct event;
struct event_base;

class CEventLoop
{
public:
    static constexpr int READ_BUFFER_SIZE = 16 * 1024;

    /// Starts the event thread. @return null when the thread or its descriptors could not be had
    static std::shared_ptr<CEventLoop> Create();
    ~CEventLoop();
    CEventLoop(const CEventLoop&) = delete;
    CEventLoop& operator=(const CEventLoop&) = delete;

    /// Ends the event thread. Not on the event thread itself.
    void Stop();

    bool IsLoopThread() const;
    /// Event thread only.
    char* ReadBuffer() { return m_readBuffer.data(); }

    /// Calls `callback` on the event thread whenever there is something to read.
    /// @return null when the system has no room for it; otherwise to be given back with Unwatch
    event* WatchForReading(int fd, void (*callback)(int, short, void*), void* argument);
    /// When it returns the callback does not run, unless it is the caller.
    void Unwatch(event* watched);

    /// Drains a retired connection until its peer has closed, for one second at most, then drops it.
    void Linger(std::shared_ptr<CConnection> connection);
    /// Waits until no connection lingers, up to the deadline, and then drops those that are left.
    void FinishLingering(std::uint64_t deadlineMs);

private:
    struct Lingering
    {
        std::shared_ptr<CConnection> connection;
        std::uint64_t deadlineMs;
    };

    CEventLoop() = default;
    bool Start();
    static void Run(void* loop);
    static void OnSweep(int, short, void* loop);
    void Sweep();

    event_base* m_base = nullptr;
    event* m_stopEvent = nullptr;
    event* m_sweepEvent = nullptr;
    unsigned int m_thread = 0; // handle; 0: not running
    std::array<char, READ_BUFFER_SIZE> m_readBuffer{};

    std::mutex m_lingerLock;
    std::condition_variable m_lingerEmpty;
    std::vector<Lingering> m_lingering; // oldest first
    int m_sweeps = 0;                   // sweeps under way, whose connections are not in the list
};
