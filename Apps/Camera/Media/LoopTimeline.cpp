#include "LoopTimeline.h"

#include <algorithm>

CLoopTimeline::CLoopTimeline(std::uint64_t defaultDuration) : m_defaultDuration(defaultDuration) {}

std::uint64_t CLoopTimeline::Place(std::uint64_t mediaTime, std::uint64_t duration)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    const std::uint64_t placed = m_offset + mediaTime;
    m_end = std::max(m_end, placed + (duration == UNKNOWN ? m_defaultDuration : duration));
    return placed;
}

void CLoopTimeline::NextLoop()
{
    const std::lock_guard<std::mutex> guard(m_lock);
    m_offset = m_end;
}
