// FedFrames.h: keeps what playbacks feed until the test has seen it.
#pragma once

#include "Playback.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>
#include <vector>

class CFedFrames
{
public:
    PlaybackFeed Feed()
    {
        return [this](unsigned int handle, const RecordedFrame& frame)
        {
            const std::lock_guard<std::mutex> guard(m_lock);
            m_frames.emplace_back(handle, frame);
            m_wake.notify_all();
        };
    }

    bool Await(std::size_t count)
    {
        std::unique_lock<std::mutex> guard(m_lock);
        return m_wake.wait_for(guard, LIMIT, [&] { return m_frames.size() >= count; });
    }

    /// Waits for frames of one playback.
    bool AwaitOf(unsigned int handle, std::size_t count)
    {
        std::unique_lock<std::mutex> guard(m_lock);
        return m_wake.wait_for(guard, LIMIT, [&] { return CountLocked(handle) >= count; });
    }

    std::size_t CountOf(unsigned int handle)
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        return CountLocked(handle);
    }

    std::vector<std::pair<unsigned int, RecordedFrame>> Frames()
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_frames;
    }

private:
    static constexpr std::chrono::seconds LIMIT{30};

    std::size_t CountLocked(unsigned int handle) const
    {
        return static_cast<std::size_t>(
            std::count_if(m_frames.begin(), m_frames.end(), [=](const auto& fed) { return fed.first == handle; }));
    }

    std::mutex m_lock;
    std::condition_variable m_wake;
    std::vector<std::pair<unsigned int, RecordedFrame>> m_frames;
};
