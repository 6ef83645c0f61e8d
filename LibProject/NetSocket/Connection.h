// Connection.h: one TCP connection. Any thread; several may be inside at once.
//
// Whoever is inside holds a reference, so that the descriptor is closed, and its number free for another connection,
// only when the last one has left.
#pragma once

#include "ConnectionNode.h"
#include "SocketWait.h"

#include <atomic>
#include <memory>
#include <mutex>

#include <netinet/in.h>

class CListener;

class CConnection : public std::enable_shared_from_this<CConnection>
{
public:
    /// An accepted connection. @param listener  is told when the connection ends
    CConnection(CFileDescriptor socket, const sockaddr_in& peer, std::shared_ptr<CQuitSignal> quit,
                std::shared_ptr<CListener> listener);
    /// An outgoing connection; its connect begins here. @param address  null: it has failed from the start
    CConnection(const in_addr* address, unsigned short port, std::shared_ptr<CQuitSignal> quit);
    ~CConnection();
    CConnection(const CConnection&) = delete;
    CConnection& operator=(const CConnection&) = delete;

    /// Set once, before another thread can find the connection.
    void SetHandle(int handle) { m_handle = handle; }
    int Handle() const { return m_handle; }
    int Socket() const { return m_socket.Get(); }
    const sockaddr_in& Peer() const { return m_peer; }
    CConnectionNode& Node() { return m_node; }

    // As the operations of NetSocket.h.
    int Recv(char* buffer, int length, bool* broken);
    bool WaitRecv(unsigned int timeoutMs);
    enum class SendKind
    {
        Plain,
        Last, // the system may hold bytes back until the connection is ended
    };
    int Send(const char* data, int length, SendKind kind, bool& broken);
    /// @return 0 under way, 1 connected, -1 failed
    int ConnectResult(unsigned int timeoutMs);
    void GiveUpConnect();

    /// Ends the connection's use: no delivery, no waiting thread, nothing more is sent.
    /// @return true when the peer may still send: Drain is to be called until it says that all is done
    bool Retire();
    /// After Retire: reads and drops what has come.
    /// @return true when the peer has closed or the limit is reached, and the socket can go
    bool Drain();
    /// Ends the connection without care for the peer, and wakes who waits for it. Its further use fails.
    void Cut();

private:
    enum class State
    {
        Connecting,
        Connected,
        Failed,
    };

    void BeginConnect();
    State ResolveConnect(std::uint64_t deadlineMs);
    bool Wait(short events, std::uint64_t deadlineMs);
    bool EndUse();

    const CFileDescriptor m_socket;
    sockaddr_in m_peer{};
    const std::shared_ptr<CQuitSignal> m_quit;
    const std::shared_ptr<CListener> m_listener; // null for an outgoing connection
    int m_handle = 0;
    const std::uint64_t m_connectDeadlineMs = 0; // up to then a send waits for the connect

    std::mutex m_connectLock; // the outcome of a connect can be asked of the system once
    std::atomic<State> m_state;
    std::atomic<bool> m_retired{false};
    std::atomic<int> m_waiting{0}; // threads inside Wait
    int m_drainedBytes = 0;        // whoever drains
    CConnectionNode m_node;
};
