// RecordingFiles.h: recordings of known times, in a directory of their own.
#pragma once

#include "RecordIndex.h"
#include "SegmentFile.h"
#include "TempDirectory.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

inline constexpr std::int64_t SECOND = 1000000;
/// The time that recordings begin at.
inline constexpr std::int64_t BASE = 1700000000 * SECOND;

inline RecordedFrame Video(std::int64_t timeUs, bool keyFrame, const std::string& payload = "picture")
{
    return {RecordedKind::Video, keyFrame, timeUs, {payload.begin(), payload.end()}};
}

inline RecordedFrame Sound(std::int64_t timeUs)
{
    return {RecordedKind::Audio, false, timeUs, {1, 2, 3}};
}

/// An empty index, and recordings for it.
class Recordings : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::string problem;
        ASSERT_TRUE(m_index.Open(m_directory.Path(), problem)) << problem;
    }

    /// Pictures every second, the first one a key frame, and one sound behind it.
    /// @param startSeconds  behind BASE
    RecordSegment Record(std::int64_t startSeconds, int pictures, int keyEvery = 4)
    {
        RecordSegment segment = m_index.Begin(BASE + startSeconds * SECOND);
        CSegmentWriter writer;
        EXPECT_TRUE(writer.Open(segment.path));
        for (int count = 0; count < pictures; ++count)
        {
            const std::int64_t timeUs = segment.startUs + count * SECOND;
            EXPECT_TRUE(writer.Write(Video(timeUs, count % keyEvery == 0)));
            if (count == 0)
            {
                EXPECT_TRUE(writer.Write(Sound(timeUs + 1)));
            }
            segment.endUs = timeUs;
        }
        segment.bytes = writer.Bytes();
        writer.Close();
        m_index.End(segment);
        return segment;
    }

    const CTempDirectory m_directory;
    CRecordIndex m_index;
};
