// SocketService.cpp: life cycle, listeners and connections of the service.
#include "SocketService.h"

#include <algorithm>
#include <utility>

namespace
{

constexpr std::uint64_t QUIT_LINGER_MS = 250;

} // namespace

CSocketService& CSocketService::Instance()
{
    // Never destroyed: its threads may still be in it when the process ends.
    static CSocketService& service = *new CSocketService;
    return service;
}

bool CSocketService::Initial()
{
    std::unique_lock<std::mutex> lock(m_lock);
    m_quitDone.wait(lock, [this] { return !m_quitting; });
    if (m_running)
    {
        return true;
    }
    auto quit = std::make_shared<CQuitSignal>();
    auto loop = quit->IsUsable() ? CEventLoop::Create() : nullptr;
    if (loop == nullptr)
    {
        return false;
    }
    m_quit = std::move(quit);
    m_loop = std::move(loop);
    m_running = true;
    return true;
}

void CSocketService::Quit()
{
    std::unique_lock<std::mutex> lock(m_lock);
    m_quitDone.wait(lock, [this] { return !m_quitting; });
    if (!m_running)
    {
        return;
    }
    m_running = false;
    m_quitting = true;
    const auto listeners = std::exchange(m_listeners, {});
    const auto stopped = std::exchange(m_stopped, {});
    const std::shared_ptr<CEventLoop> loop = m_loop;
    m_quit->Give();
    lock.unlock();

    const std::uint64_t deadlineMs = DeadlineAfter(QUIT_LINGER_MS);
    CutAllConnections(); // so that no callback waits for a peer
    for (const auto& listener : listeners)
    {
        listener.second->Stop();
    }
    AwaitThreads(stopped);
    CutAllConnections(); // those that were accepted meanwhile
    loop->FinishLingering(deadlineMs);
    loop->Stop();

    lock.lock();
    m_loop = nullptr;
    m_quit = nullptr;
    m_quitting = false;
    m_quitDone.notify_all();
}

/// Waits for listeners that were stopped without waiting for all of their callbacks.
void CSocketService::AwaitThreads(const std::vector<std::weak_ptr<CListener>>& stopped)
{
    if (CListener::IsOwnThread())
    {
        return; // one of them may wait for this one
    }
    for (const auto& entry : stopped)
    {
        const std::shared_ptr<CListener> listener = entry.lock();
        if (listener != nullptr)
        {
            listener->AwaitThreads();
        }
    }
}

void CSocketService::CutAllConnections()
{
    for (const auto& connection : m_table.TakeAll())
    {
        connection->Cut();
    }
}

bool CSocketService::StartListen(unsigned short port, CListenSocketObserver* observer, unsigned int localAddress,
                                 bool reuseAddress)
{
    std::lock_guard<std::mutex> lock(m_lock);
    if (!m_running || observer == nullptr || m_listeners.count(port) != 0)
    {
        return false;
    }
    auto listener = CListener::Open(port, observer, localAddress, reuseAddress, m_table, m_quit);
    if (listener == nullptr)
    {
        return false;
    }
    m_listeners[listener->Port()] = listener;
    return true;
}

bool CSocketService::StopListen(unsigned short port)
{
    std::unique_lock<std::mutex> lock(m_lock);
    const auto found = m_listeners.find(port);
    if (found == m_listeners.end())
    {
        return false;
    }
    const std::shared_ptr<CListener> listener = found->second;
    m_listeners.erase(found);
    const auto hasGone = [](const std::weak_ptr<CListener>& stopped)
    {
        return stopped.expired();
    };
    m_stopped.erase(std::remove_if(m_stopped.begin(), m_stopped.end(), hasGone), m_stopped.end());
    m_stopped.push_back(listener);
    lock.unlock();
    listener->Stop();
    return true;
}

unsigned short CSocketService::GetListenPort(const CListenSocketObserver* observer)
{
    std::lock_guard<std::mutex> lock(m_lock);
    for (const auto& listener : m_listeners)
    {
        if (listener.second->Observer() == observer)
        {
            return listener.first;
        }
    }
    return 0;
}

int CSocketService::AddConnect(const in_addr* address, unsigned short port)
{
    std::lock_guard<std::mutex> lock(m_lock);
    return m_running ? m_table.Insert(std::make_shared<CConnection>(address, port, m_quit)) : 0;
}

void CSocketService::Destroy(int handle)
{
    std::shared_ptr<CConnection> connection = m_table.Take(handle);
    if (connection == nullptr || !connection->Retire())
    {
        return;
    }
    const std::shared_ptr<CEventLoop> loop = EventLoop();
    if (loop != nullptr)
    {
        loop->Linger(std::move(connection));
    }
}

std::shared_ptr<CQuitSignal> CSocketService::QuitSignal()
{
    std::lock_guard<std::mutex> lock(m_lock);
    return m_running ? m_quit : nullptr;
}

std::shared_ptr<CEventLoop> CSocketService::EventLoop()
{
    std::lock_guard<std::mutex> lock(m_lock);
    return m_loop;
}
