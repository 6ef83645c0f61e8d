#include "AlarmReporter.h"

#include <algorithm>
#include <utility>

CAlarmReporter::CAlarmReporter(std::function<void(const AlarmEdge&)> report)
    : m_report(std::move(report)), m_thread([this] { Run(); })
{
}

CAlarmReporter::~CAlarmReporter()
{
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_stopping = true;
    }
    m_wake.notify_all();
    m_thread.join();
}

void CAlarmReporter::Put(const AlarmEdge& edge)
{
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_edges.push_back(edge);
        if (m_edges.size() > MAX_EDGES)
        {
            DropOldest();
        }
    }
    m_wake.notify_all();
}

void CAlarmReporter::DropOldest()
{
    // The alarms are far fewer than the edges that may wait, so one of them has a later edge.
    for (auto at = m_edges.begin(); at != m_edges.end(); ++at)
    {
        const auto isOfTheSameAlarm = [at](const AlarmEdge& later)
        {
            return later.kind == at->kind && later.id == at->id;
        };
        if (std::any_of(at + 1, m_edges.end(), isOfTheSameAlarm))
        {
            m_edges.erase(at);
            return;
        }
    }
}

void CAlarmReporter::Run()
{
    std::unique_lock<std::mutex> guard(m_lock);
    while (true)
    {
        m_wake.wait(guard, [this] { return m_stopping || !m_edges.empty(); });
        if (m_stopping)
        {
            return;
        }
        const AlarmEdge edge = m_edges.front();
        m_edges.pop_front();
        guard.unlock();
        m_report(edge);
        guard.lock();
    }
}
