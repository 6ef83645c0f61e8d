// Listener.h: one port and the threads that accept on it.
//
// Each thread accepts and then runs the observer's callback itself; before it does, it makes sure that another one
// waits in accept, up to a bound. So a callback that waits for its peer delays nobody until the whole pool waits.
#pragma once

#include "NetSocket.h"
#include "SocketWait.h"

#include <atomic>
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

    /// Opens the port and begins to accept. @param table, quit  outlive the listener
    /// @return null when the port or a thread could not be had
    static std::shared_ptr<CListener> Open(unsigned short port, CListenSocketObserver* observer,
                                           unsigned int localAddress, bool reuseAddress, CConnectionTable& table,
                                           const std::shared_ptr<CQuitSignal>& quit);
    CListener(const CListener&) = delete;
    CListener& operator=(const CListener&) = delete;

    /// Closes the port. When it returns no callback runs, except one that called it. Called once.
    void Stop();
    unsigned short Port() const { return m_port; }
    const CListenSocketObserver* Observer() const { return m_observer; }

    /// A connection of this listener has ended: there is room for another.
    void ConnectionEnded();

private:
    CListener(CListenSocketObserver* observer, CConnectionTable& table, std::shared_ptr<CQuitSignal> quit);
    bool OpenSocket(unsigned short port, unsigned int localAddress, bool reuseAddress);
    bool StartThread();
    static void Run(void* listener);
    void Serve();
    bool ReservePlace();
    CFileDescriptor Accept(sockaddr_in& peer);
    CFileDescriptor AcceptWithReserve(sockaddr_in& peer);
    bool OpenReserve();
    void HandOver(CFileDescriptor socket, const sockaddr_in& peer);
    void PauseAfterFailure();
    void Report(const char* what) const;

    CListenSocketObserver* const m_observer;
    CConnectionTable& m_table;
    const std::shared_ptr<CQuitSignal> m_quit;
    CFileDescriptor m_socket; // closed when no thread waits in accept any more
    unsigned short m_port = 0;

    std::mutex m_lock;
    std::condition_variable m_changed; // there is room, or the listener stops
    std::vector<unsigned int> m_threads;
    int m_idleThreads = 0; // in accept, or waiting for room
    int m_places = 0;      // open connections, and one for each thread in accept
    bool m_stopping = false;

    // Given up for a moment to accept and refuse a connection when the process has no descriptor left. Behind no lock.
    std::mutex m_reserveLock;
    CFileDescriptor m_reserve;
    std::atomic<bool> m_refusing{false}; // logged already
};
