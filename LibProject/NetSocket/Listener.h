// Listener.h: one port and the threads that accept on it.
//
// One thread leads: it accepts, runs the observer's callback itself, and accepts again. So a connection wakes one
// thread and no second one. A spare thread watches: when a callback takes its time, as for a peer that says nothing, it
// takes the lead, and as long as such a callback runs the lead is handed on in front of every callback. So waiting
// callbacks delay nobody until a bounded number of threads waits. Spare threads beyond one end when they have had
// nothing to do for a while.
#pragma once

#include "NetSocket.h"
#include "SocketWait.h"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

class CConnectionTable;

class CListener : public std::enable_shared_from_this<CListener>
{
public:
    static constexpr int THREADS_MAX = 16;
    /// Accepted connections that have not ended; more wait in the system's backlog.
    static constexpr int CONNECTIONS_MAX = 256;
    static constexpr std::chrono::milliseconds SPARE_LIFE{10000};

    /// Opens the port and begins to accept.
    /// @param table, quit  outlive the listener
    /// @param spareLife    without anything to do, for spare threads beyond one
    /// @return null when the port or a thread could not be had
    static std::shared_ptr<CListener> Open(unsigned short port, CListenSocketObserver* observer,
                                           unsigned int localAddress, bool reuseAddress, CConnectionTable& table,
                                           const std::shared_ptr<CQuitSignal>& quit,
                                           std::chrono::milliseconds spareLife = SPARE_LIFE);
    CListener(const CListener&) = delete;
    CListener& operator=(const CListener&) = delete;

    /// Closes the port. When it returns no callback runs, except one that called it, or waits for the thread that did.
    /// Called once.
    void Stop();
    /// Waits for those callbacks too. Behind Stop; not on a listener's thread, which others may wait for.
    void AwaitThreads();
    /// Whether the caller is a thread of any listener.
    static bool IsOwnThread();
    unsigned short Port() const { return m_port; }
    const CListenSocketObserver* Observer() const { return m_observer; }
    std::size_t Threads();

    /// A connection of this listener has ended: there is room for another.
    void ConnectionEnded();

private:
    /// A callback under way.
    struct Callback
    {
        bool leads = true;      // its thread will accept again
        bool overtaken = false; // the watching thread has taken the lead from it
    };

    CListener(CListenSocketObserver* observer, CConnectionTable& table, std::shared_ptr<CQuitSignal> quit,
              std::chrono::milliseconds spareLife);
    bool OpenSocket(unsigned short port, unsigned int localAddress, bool reuseAddress);
    bool StartThread();
    static void Run(void* listener);
    void Serve();
    bool AwaitLead();
    bool TakeLeadFromSlowCallback(unsigned int connectionsSeen);
    void Leave(std::unique_lock<std::mutex>& lock);
    void Lead();
    bool ReservePlace();
    void BeginCallback(Callback& callback);
    bool EndCallback(const Callback& callback);
    CFileDescriptor Accept(sockaddr_in& peer);
    CFileDescriptor AcceptWithReserve(sockaddr_in& peer);
    bool OpenReserve();
    void HandOver(CFileDescriptor socket, const sockaddr_in& peer);
    void PauseAfterFailure();
    void Report(const char* what) const;

    CListenSocketObserver* const m_observer;
    CConnectionTable& m_table;
    const std::shared_ptr<CQuitSignal> m_quit;
    const std::chrono::milliseconds m_spareLife;
    CFileDescriptor m_socket; // closed when no thread waits in accept any more
    unsigned short m_port = 0;

    std::mutex m_lock;
    std::condition_variable m_room;     // there is a place, or the listener stops
    std::condition_variable m_forSpare; // the lead is free, a callback is to be watched, or the listener stops
    std::condition_variable m_idle;     // no thread serves any more
    std::vector<unsigned int> m_threads;
    int m_serving = 0;           // threads that have not ended, also those that nobody can join
    int m_places = 0;            // open connections, and one for the thread in accept
    int m_spares = 0;            // threads without the lead and without a callback
    bool m_hasLeader = false;    // a thread accepts, or runs a callback and will accept again
    bool m_isWatched = false;    // a spare looks after the leader from time to time
    unsigned int m_accepted = 0; // counts connections, for the watching thread
    Callback* m_leadersCallback = nullptr;
    int m_overtaken = 0; // callbacks that were overtaken and still run
    bool m_stopping = false;

    // The leader's. The descriptor is given up for a moment to accept and refuse a connection when the process has no
    // other left.
    CFileDescriptor m_reserve;
    bool m_refusing = false; // logged already
};
