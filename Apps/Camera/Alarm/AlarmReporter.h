// AlarmReporter.h: tells the library of alarms, on a thread of its own.
//
// A status function pushes to the configured alarm server and may wait for it; the media threads must not.
#pragma once

#include "AlarmBoard.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

class CAlarmReporter
{
public:
    static constexpr std::size_t MAX_EDGES = 256; ///< that wait

    /// @param report  called for each edge in order, on the reporter's thread
    explicit CAlarmReporter(std::function<void(const AlarmEdge&)> report);

    /// Drops what has not been reported yet.
    ~CAlarmReporter();

    /// Any thread; returns at once. When an alarm server keeps the reports waiting, the oldest edges are dropped, but
    /// never the last one of an alarm.
    void Put(const AlarmEdge& edge);

private:
    void Run();
    void DropOldest();

    const std::function<void(const AlarmEdge&)> m_report;

    std::mutex m_lock;
    std::condition_variable m_wake;
    std::deque<AlarmEdge> m_edges;
    bool m_stopping = false;

    std::thread m_thread; // last: it uses all of the above
};
