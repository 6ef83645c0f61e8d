#include "Recorder.h"

#include "CameraLog.h"
#include "CameraStreams.h"
#include "RecordTime.h"

#include <algorithm>

namespace
{

constexpr std::int64_t SEGMENT_US = 60 * std::int64_t{1000000};
constexpr std::uint64_t LEAST_SEGMENTS = 8; // within the limit, so that the oldest is a small part of all

} // namespace

CRecorder::CRecorder(CRecordIndex& index, std::uint64_t limitBytes) : m_index(index), m_limitBytes(limitBytes) {}

CRecorder::~CRecorder()
{
    Finish();
}

void CRecorder::Finish()
{
    const std::lock_guard<std::mutex> guard(m_lock);
    EndSegment();
}

void CRecorder::PutVideo(int stream, const std::vector<unsigned char>& frame, bool keyFrame,
                         std::uint64_t presentationUs)
{
    if (stream != MAIN_STREAM)
    {
        return;
    }
    const std::lock_guard<std::mutex> guard(m_lock);
    const auto steadyUs = static_cast<std::int64_t>(presentationUs);
    const bool isFull = m_writer.IsOpen() && (steadyUs + m_offsetUs - m_segment.startUs >= SEGMENT_US ||
                                              m_segment.bytes >= m_limitBytes / LEAST_SEGMENTS);
    if (keyFrame && (isFull || !m_writer.IsOpen()))
    {
        EndSegment();
        m_offsetUs = WallClockUs() - static_cast<std::int64_t>(SteadyClockUs());
        if (!BeginSegment(steadyUs + m_offsetUs))
        {
            Complain("a recording cannot be begun in");
            return;
        }
    }
    if (m_writer.IsOpen())
    {
        Write(RecordedKind::Video, keyFrame, steadyUs + m_offsetUs, frame);
    }
}

void CRecorder::PutAudio(const std::vector<unsigned char>& chunk, std::uint64_t presentationUs)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    if (m_writer.IsOpen())
    {
        Write(RecordedKind::Audio, false, static_cast<std::int64_t>(presentationUs) + m_offsetUs, chunk);
    }
}

bool CRecorder::BeginSegment(std::int64_t startUs)
{
    MakeRoom();
    m_segment = m_index.Begin(startUs);
    if (m_segment.id == 0)
    {
        return false;
    }
    if (!m_writer.Open(m_segment.path))
    {
        m_writer.Close();
        m_index.End(m_segment);
        return false;
    }
    return true;
}

void CRecorder::EndSegment()
{
    if (m_writer.IsOpen())
    {
        m_writer.Close();
        m_index.End(m_segment);
    }
}

void CRecorder::Write(RecordedKind kind, bool keyFrame, std::int64_t timeUs, const std::vector<unsigned char>& payload)
{
    m_frame.kind = kind;
    m_frame.keyFrame = keyFrame;
    m_frame.timeUs = timeUs;
    m_frame.payload = payload;
    if (!m_writer.Write(m_frame))
    {
        Complain("a recording cannot be continued in");
        EndSegment();
        return;
    }
    m_complained = false;
    m_segment.endUs = std::max(m_segment.endUs, timeUs);
    m_segment.bytes = m_writer.Bytes();
    m_index.Grow(m_segment);
}

void CRecorder::MakeRoom()
{
    while (m_index.TotalBytes() > m_limitBytes && m_index.RemoveOldest())
    {
    }
}

/// Once, until recording works again.
void CRecorder::Complain(const std::string& what)
{
    if (!m_complained)
    {
        m_complained = true;
        Say(what + " '" + m_segment.path +
            "'; trying again with each key frame; a full disk needs room, or a smaller --record-limit");
    }
}
