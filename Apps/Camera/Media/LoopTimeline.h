// LoopTimeline.h: one continuous time line over the repetitions of a media file.
//
// Any thread: the decoders of pictures and sound each run on one of their own.
#pragma once

#include <cstdint>
#include <mutex>

/// Moves the times of each repetition behind the end of the one before, for pictures and sound alike, so that neither
/// jumps when the file starts again. All times are in nanoseconds.
class CLoopTimeline
{
public:
    /// Stands for a duration that the file does not give.
    static constexpr std::uint64_t UNKNOWN = ~std::uint64_t{0};

    /// @param defaultDuration  counts for a buffer of unknown duration, above 0
    explicit CLoopTimeline(std::uint64_t defaultDuration);

    /// @param mediaTime  time since the beginning of the file
    /// @return time on the continuous line
    std::uint64_t Place(std::uint64_t mediaTime, std::uint64_t duration);

    /// The file starts again: its beginning lies where its longest track has ended.
    void NextLoop();

private:
    const std::uint64_t m_defaultDuration;

    std::mutex m_lock;
    std::uint64_t m_offset = 0; // start of this repetition
    std::uint64_t m_end = 0;    // latest end of a buffer so far
};
