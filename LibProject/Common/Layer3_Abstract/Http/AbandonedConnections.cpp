#include "AbandonedConnections.h"

#include "PFHelper.h"

#include <algorithm>

CAbandonedConnections::~CAbandonedConnections()
{
    Clear();
}

void CAbandonedConnections::Add(int handle)
{
    {
        const CMySingleLock lock(m_lock);
        m_entries.push_back({handle, CPFHelper::GetTickCount()});
    }
    NET_SOCKET_RegisterNode(handle, this, nullptr, 1, 1);
    NET_SOCKET_Start(handle);
    for (int outdated = TakeOutdated(); outdated != 0; outdated = TakeOutdated())
    {
        NET_SOCKET_DestroyHNetCommunication(outdated);
    }
}

int CAbandonedConnections::TakeOutdated()
{
    const CMySingleLock lock(m_lock);
    if (m_entries.empty() ||
        (m_entries.size() <= CONNECTIONS_MAX && CPFHelper::GetTickCount() - m_entries.front().tick <= LIFETIME_MS))
    {
        return 0;
    }
    const int handle = m_entries.front().handle;
    m_entries.pop_front();
    return handle;
}

void CAbandonedConnections::Clear()
{
    std::deque<Entry> entries;
    {
        const CMySingleLock lock(m_lock);
        entries.swap(m_entries);
    }
    for (const Entry& entry : entries)
    {
        NET_SOCKET_DestroyHNetCommunication(entry.handle);
    }
}

int CAbandonedConnections::OnSocketRecvData(int handle, const char* /*data*/, unsigned int length, void* /*param*/)
{
    if (length != 0)
    {
        return static_cast<int>(length); // whatever still comes is dropped
    }
    {
        const CMySingleLock lock(m_lock);
        m_entries.erase(std::remove_if(m_entries.begin(), m_entries.end(),
                                       [handle](const Entry& entry) { return entry.handle == handle; }),
                        m_entries.end());
    }
    NET_SOCKET_DestroyHNetCommunication(handle);
    return 0;
}
