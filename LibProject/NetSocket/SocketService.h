// SocketService.h: the service behind the exported functions. Any thread.
#pragma once

#include "ConnectionTable.h"
#include "EventLoop.h"
#include "Listener.h"

#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

class CSocketService
{
public:
    static CSocketService& Instance();

    /// @return false when threads or descriptors could not be had; true also when it runs already
    bool Initial();
    /// Order: connections end, and waiting calls with them; listeners end, with their callbacks, also those that were
    /// stopped by their own callback or are about to be; connections that linger get a second at most; the event thread
    /// ends.
    void Quit();

    bool StartListen(unsigned short port, CListenSocketObserver* observer, unsigned int localAddress,
                     bool reuseAddress);
    bool StopListen(unsigned short port);
    unsigned short GetListenPort(const CListenSocketObserver* observer);

    /// @param address  null for a text that was no address
    /// @return a handle, 0 when the service is down or has no room
    int AddConnect(const in_addr* address, unsigned short port);
    std::shared_ptr<CConnection> Find(int handle) { return m_table.Find(handle); }
    void Destroy(int handle);

    /// @return null when the service is down
    std::shared_ptr<CQuitSignal> QuitSignal();
    /// @return null when the service is down
    std::shared_ptr<CEventLoop> EventLoop();

private:
    CSocketService() = default;
    void CutAllConnections();
    static void AwaitThreads(const std::vector<std::weak_ptr<CListener>>& stopped);

    CConnectionTable m_table;

    std::mutex m_lock; // nothing is called with it held but m_table
    std::condition_variable m_quitDone;
    bool m_running = false;
    bool m_quitting = false;
    std::shared_ptr<CQuitSignal> m_quit;
    std::shared_ptr<CEventLoop> m_loop; // also while quitting
    std::map<unsigned short, std::shared_ptr<CListener>> m_listeners;
    std::vector<std::weak_ptr<CListener>> m_stopped; // a callback of them may run still
};
