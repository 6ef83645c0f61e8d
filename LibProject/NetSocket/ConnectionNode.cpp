// ConnectionNode.cpp: the delivery of one connection's data to its observer.
#include "ConnectionNode.h"

#include "Connection.h"
#include "EventLoop.h"

#include <utility>

namespace
{

void OnEvent(int, short, void* argument)
{
    static_cast<CConnectionNode*>(argument)->OnReadable();
}

} // namespace

CConnectionNode::~CConnectionNode()
{
    End();
}

bool CConnectionNode::Bind(CSocketDataObserver* observer, void* param)
{
    std::lock_guard<std::mutex> lock(m_lock);
    if (m_ended || m_observer != nullptr || observer == nullptr)
    {
        return false;
    }
    m_observer = observer;
    m_param = param;
    return true;
}

bool CConnectionNode::Start(const std::shared_ptr<CEventLoop>& loop)
{
    std::lock_guard<std::mutex> lock(m_lock);
    if (m_observer == nullptr)
    {
        return false;
    }
    if (m_event == nullptr)
    {
        m_event = loop->WatchForReading(m_owner.Socket(), OnEvent, this);
        m_loop = loop;
    }
    return m_event != nullptr;
}

bool CConnectionNode::Stop()
{
    std::unique_lock<std::mutex> lock(m_lock);
    const bool bound = m_observer != nullptr;
    StopLocked(lock);
    return bound;
}

bool CConnectionNode::Unbind()
{
    std::unique_lock<std::mutex> lock(m_lock);
    const bool bound = m_observer != nullptr;
    StopLocked(lock);
    m_observer = nullptr;
    return bound;
}

void CConnectionNode::End()
{
    std::unique_lock<std::mutex> lock(m_lock);
    m_ended = true;
    StopLocked(lock);
    m_observer = nullptr;
}

void CConnectionNode::StopLocked(std::unique_lock<std::mutex>& lock)
{
    if (m_delivering && !m_loop->IsLoopThread())
    {
        m_delivered.wait(lock, [this] { return !m_delivering; });
    }
    event* const stopped = std::exchange(m_event, nullptr);
    if (stopped == nullptr)
    {
        return;
    }
    const std::shared_ptr<CEventLoop> loop = m_loop;
    lock.unlock(); // the event's callback may be at the lock: it sees that it has been stopped
    loop->Unwatch(stopped);
    lock.lock();
}

void CConnectionNode::OnReadable()
{
    const std::shared_ptr<CConnection> keepsThisAlive = m_owner.shared_from_this();
    std::unique_lock<std::mutex> lock(m_lock);
    if (m_event == nullptr)
    {
        return;
    }
    CSocketDataObserver* const observer = m_observer;
    void* const param = m_param;
    const std::shared_ptr<CEventLoop> loop = m_loop;
    m_delivering = true;
    lock.unlock();

    bool broken = false;
    const int received = m_owner.Recv(loop->ReadBuffer(), CEventLoop::READ_BUFFER_SIZE, &broken);
    if (received > 0)
    {
        observer->OnSocketRecvData(m_owner.Handle(), loop->ReadBuffer(), static_cast<unsigned int>(received), param);
    }
    else if (broken)
    {
        observer->OnSocketRecvData(m_owner.Handle(), "", 0, param);
    }

    lock.lock();
    m_delivering = false;
    m_delivered.notify_all();
    if (received <= 0 && broken)
    {
        StopLocked(lock);
    }
}
