#include "RecordedFrames.h"

CRecordedFrames::CRecordedFrames(CRecordIndex& index, std::int64_t fromUs, std::int64_t toUs)
    : m_index(index), m_fromUs(fromUs), m_toUs(toUs)
{
}

NextFrame CRecordedFrames::Next(RecordedFrame& frame)
{
    while (m_reader.has_value() || OpenNextSegment())
    {
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
    return NextFrame::End;
}

bool CRecordedFrames::OpenNextSegment()
{
    for (const RecordSegment& segment : m_index.Find(m_fromUs, m_toUs))
    {
        if (segment.id <= m_segment)
        {
            continue;
        }
        const std::int64_t wantedUs = m_segment == 0 ? m_fromUs : 0; // the first segment is entered in its middle
        m_segment = segment.id;
        m_reader.emplace();
        if (m_reader->Open(segment.path) && m_reader->SeekKeyFrame(wantedUs))
        {
            return true;
        }
        m_reader.reset();
    }
    return false;
}
