#include "RecordedFrames.h"

#include "RecordTime.h"

#include <utility>

CRecordedFrames::CRecordedFrames(CRecordIndex& index, std::int64_t fromUs, std::int64_t toUs)
    : m_index(index), m_fromUs(fromUs), m_toUs(toUs)
{
}

NextFrame CRecordedFrames::Next(RecordedFrame& frame)
{
    while (true)
    {
        if (!m_reader.has_value())
        {
            const NextFrame next = OpenNextSegment();
            if (next != NextFrame::Ready)
            {
                return next;
            }
        }
        // Asked in front of the read: what is complete now has all its frames on disk.
        const bool growing = m_index.IsGrowing(m_segment);
        if (m_reader->Next(frame))
        {
            return frame.timeUs < m_toUs ? NextFrame::Ready : NextFrame::End;
        }
        if (growing)
        {
            return NextFrame::NotYet;
        }
        m_reader.reset();
    }
}

/// @return whether there is one; NotYet as long as one may still be recorded
NextFrame CRecordedFrames::OpenNextSegment()
{
    for (const RecordSegment& segment : m_index.Find(m_fromUs, m_toUs))
    {
        if (segment.id <= m_segment)
        {
            continue;
        }
        const bool growing = m_index.IsGrowing(segment.id); // asked in front of the read
        CSegmentReader reader;
        const std::int64_t wantedUs = m_segment == 0 ? m_fromUs : 0; // the first segment is entered in its middle
        if (reader.Open(segment.path) && reader.SeekKeyFrame(wantedUs))
        {
            m_segment = segment.id;
            m_reader = std::move(reader);
            return NextFrame::Ready;
        }
        if (growing)
        {
            return NextFrame::NotYet; // its first key frame is on the way to the disk
        }
        m_segment = segment.id;
    }
    return WallClockUs() < m_toUs ? NextFrame::NotYet : NextFrame::End;
}
