// Recorder.h: records the main stream and its sound without an end, the oldest part making room for the newest.
//
// The media threads put frames, one for pictures and one for sound.
#pragma once

#include "FrameSink.h"
#include "RecordIndex.h"
#include "SegmentFile.h"

#include <mutex>
#include <string>

class CRecorder : public CFrameSink
{
public:
    /// @param index       borrowed for the recorder's life
    /// @param limitBytes  what all segments together may take; the one being written may go over it by an eighth
    CRecorder(CRecordIndex& index, std::uint64_t limitBytes);
    ~CRecorder() override;

    /// @param presentationUs  on the steady clock; the recording has the wall clock's time of the same moment
    void PutVideo(int stream, const std::vector<unsigned char>& frame, bool keyFrame,
                  std::uint64_t presentationUs) override;
    void PutAudio(const std::vector<unsigned char>& chunk, std::uint64_t presentationUs) override;
    void PutJpeg(const std::vector<unsigned char>&, std::uint64_t) override {}

    /// Completes the segment; the next key frame begins another one.
    void Finish();

private:
    bool BeginSegment(std::int64_t startUs);
    void EndSegment();
    void Write(RecordedKind kind, bool keyFrame, std::int64_t timeUs, const std::vector<unsigned char>& payload);
    void MakeRoom();
    void Complain(const std::string& what);

    CRecordIndex& m_index;
    const std::uint64_t m_limitBytes;

    std::mutex m_lock;
    CSegmentWriter m_writer;
    RecordSegment m_segment;
    RecordedFrame m_frame; // keeps its memory from frame to frame
    // From the steady clock to the wall clock. It stays the same within a segment, so that a clock that is set changes
    // the distance between segments only.
    std::int64_t m_offsetUs = 0;
    bool m_complained = false;
};
