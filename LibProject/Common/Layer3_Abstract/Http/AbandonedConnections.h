// AbandonedConnections.h: connections that a port neither answers nor closes.
//
// Peers that sent nothing useful see their connection stay open. Each costs a descriptor, so the number and the time
// are bounded: one ends when its peer closes, when it is CONNECTIONS_MAX connections old, or when another is abandoned
// after LIFETIME_MS. Any thread; the socket service's event thread brings the news of a peer's close.
#pragma once

#include "Limits.h"
#include "Lock.h"
#include "NetSocket.h"
#include "ThreadAnnotations.h"

#include <deque>

class CAbandonedConnections : public CSocketDataObserver
{
public:
    static constexpr std::size_t CONNECTIONS_MAX = LIMIT_ABANDONED_CONNECTIONS;
    static constexpr unsigned int LIFETIME_MS = 5 * 60 * 1000;

    CAbandonedConnections() = default;
    ~CAbandonedConnections() override;
    CAbandonedConnections(const CAbandonedConnections&) = delete;
    CAbandonedConnections& operator=(const CAbandonedConnections&) = delete;

    /// Takes a connection over.
    void Add(int handle);
    /// Ends all of them.
    void Clear();

    int OnSocketRecvData(int handle, const char* data, unsigned int length, void* param) override;

private:
    struct Entry
    {
        int handle;
        unsigned int tick;
    };

    /// The oldest that has to go, taken out. @return 0 when none has to
    int TakeOutdated();

    CLock m_lock; ///< never held during a call of the socket service
    std::deque<Entry> m_entries GUARDED_BY(m_lock);
};
