// RecordedFrames.h: the frames of a stretch of time, over all segments that hold some of it.
//
// Local to one thread.
#pragma once

#include "RecordIndex.h"
#include "SegmentFile.h"

#include <cstdint>
#include <optional>

enum class NextFrame
{
    Ready,
    NotYet, ///< it may still be recorded
    End,
};

class CRecordedFrames
{
public:
    /// From the key frame at or before `fromUs`, or the first one behind it, up to the last frame before `toUs`.
    /// @param index  borrowed
    CRecordedFrames(CRecordIndex& index, std::int64_t fromUs, std::int64_t toUs);

    NextFrame Next(RecordedFrame& frame);

private:
    NextFrame OpenNextSegment();

    CRecordIndex& m_index;
    const std::int64_t m_fromUs;
    const std::int64_t m_toUs;
    std::int64_t m_segment = 0; // 0: none has been read yet
    std::optional<CSegmentReader> m_reader;
};
