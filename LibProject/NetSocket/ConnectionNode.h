// ConnectionNode.h: the delivery of one connection's data to its observer.
//
// Any thread binds, starts and stops; the event thread delivers.
#pragma once

#include "NetSocket.h"

#include <condition_variable>
#include <memory>
#include <mutex>

class CConnection;
class CEventLoop;
struct event;

class CConnectionNode
{
public:
    /// @param owner  the connection whose part this is
    explicit CConnectionNode(CConnection& owner) : m_owner(owner) {}
    ~CConnectionNode();
    CConnectionNode(const CConnectionNode&) = delete;
    CConnectionNode& operator=(const CConnectionNode&) = delete;

    /// @return false when an observer is bound, or the connection has ended
    bool Bind(CSocketDataObserver* observer, void* param);
    /// @return false when no observer is bound
    bool Start(const std::shared_ptr<CEventLoop>& loop);
    /// When it returns, no callback runs, except one that called it. @return false when no observer is bound
    bool Stop();
    /// Stop, and removes the observer. @return false when no observer is bound
    bool Unbind();
    /// Unbind, and lets no observer be bound any more.
    void End();

    /// Event thread only: there is something to read.
    void OnReadable();

private:
    void StopLocked(std::unique_lock<std::mutex>& lock);

    CConnection& m_owner;

    std::mutex m_lock; // innermost: nothing is called with it held
    std::condition_variable m_delivered;
    CSocketDataObserver* m_observer = nullptr;
    void* m_param = nullptr;
    event* m_event = nullptr;           // set while data is delivered
    std::shared_ptr<CEventLoop> m_loop; // of m_event
    bool m_delivering = false;          // the observer is being called
    bool m_ended = false;
};
