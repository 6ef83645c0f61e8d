#include "AlarmReporter.h"

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
    }
    m_wake.notify_all();
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
