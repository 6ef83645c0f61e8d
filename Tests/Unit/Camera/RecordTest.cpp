// Recordings: their files, their index and the recorder.
#include "RecordTime.h"
#include "RecordedFrames.h"
#include "Recorder.h"
#include "RecordingFiles.h"

#include <gtest/gtest.h>

#include <filesystem>

#include <sqlite3.h>

using namespace NETNS;

namespace
{

constexpr std::size_t HEADER = 16;

/// Times of pictures, in seconds behind BASE.
using Times = std::vector<int>;

Times PictureTimes(CRecordIndex& index, std::int64_t fromSeconds, std::int64_t toSeconds)
{
    CRecordedFrames frames(index, BASE + fromSeconds * SECOND, BASE + toSeconds * SECOND);
    Times times;
    RecordedFrame frame;
    while (frames.Next(frame) == NextFrame::Ready)
    {
        if (frame.kind == RecordedKind::Video)
        {
            times.push_back(static_cast<int>((frame.timeUs - BASE) / SECOND));
        }
    }
    return times;
}

} // namespace

TEST(SegmentFile, HasTheDocumentedBytes)
{
    const CTempDirectory directory;
    CSegmentWriter writer;
    ASSERT_TRUE(writer.Open(directory.Path("x.seg")));
    ASSERT_TRUE(writer.Write(Video(0x0102030405060708, true, "AB")));
    ASSERT_TRUE(writer.Close());
    const std::string expected("NSCAMREC"
                               "\x01\x00\x00\x00"                 // version
                               "\x00\x00\x00\x00"                 // spare
                               "FRAM"                             // a frame
                               "\x00\x01\x00\x00"                 // video, key frame
                               "\x08\x07\x06\x05\x04\x03\x02\x01" // time
                               "\x02\x00\x00\x00"                 // length
                               "\x00\x00\x00\x00"                 // spare
                               "AB",
                               HEADER + 24 + 2);
    EXPECT_EQ(expected, directory.Read("x.seg"));
    EXPECT_EQ(expected.size(), writer.Bytes());
}

TEST(SegmentFile, ReadsBackWhatWasWritten)
{
    const CTempDirectory directory;
    CSegmentWriter writer;
    ASSERT_TRUE(writer.Open(directory.Path("x.seg")));
    ASSERT_TRUE(writer.Write(Video(10, true, "key")) && writer.Write(Sound(11)) && writer.Write(Video(12, false, "")));
    ASSERT_TRUE(writer.Close());
    CSegmentReader reader;
    ASSERT_TRUE(reader.Open(directory.Path("x.seg")));
    RecordedFrame frame;
    ASSERT_TRUE(reader.Next(frame));
    EXPECT_TRUE(frame.keyFrame);
    EXPECT_EQ((std::vector<unsigned char>{'k', 'e', 'y'}), frame.payload);
    ASSERT_TRUE(reader.Next(frame));
    EXPECT_EQ(RecordedKind::Audio, frame.kind);
    EXPECT_EQ(11, frame.timeUs);
    ASSERT_TRUE(reader.Next(frame));
    EXPECT_TRUE(frame.payload.empty());
    EXPECT_FALSE(reader.Next(frame));
}

// A process that is killed leaves a file that ends anywhere.
TEST(SegmentFile, AFileThatIsCutAnywhereIsGoodUpToItsLastWholeFrame)
{
    const CTempDirectory directory;
    CSegmentWriter writer;
    ASSERT_TRUE(writer.Open(directory.Path("x.seg")));
    ASSERT_TRUE(writer.Write(Video(10, true, "one")) && writer.Write(Video(20, false, "two")));
    writer.Close();
    const std::string whole = directory.Read("x.seg");
    constexpr std::size_t FRAME = 24 + 3;
    for (std::size_t length = 0; length <= whole.size(); ++length)
    {
        const std::string path = directory.Write("cut.seg", whole.substr(0, length));
        CSegmentReader reader;
        ASSERT_EQ(length >= HEADER, reader.Open(path)) << length;
        const std::size_t frames = length < HEADER ? 0 : (length - HEADER) / FRAME;
        RecordedFrame frame;
        std::size_t read = 0;
        while (read < 3 && reader.Next(frame))
        {
            ++read;
        }
        EXPECT_EQ(frames, read) << length;
        CSegmentReader second;
        if (second.Open(path))
        {
            EXPECT_EQ(static_cast<std::int64_t>(10 * frames), second.LastTime()) << length;
        }
    }
}

TEST(SegmentFile, ADamagedFileEndsWhereItIsDamaged)
{
    const CTempDirectory directory;
    CSegmentWriter writer;
    ASSERT_TRUE(writer.Open(directory.Path("x.seg")));
    ASSERT_TRUE(writer.Write(Video(10, true, "one")) && writer.Write(Video(20, false, "two")));
    writer.Close();
    const std::string whole = directory.Read("x.seg");
    constexpr std::size_t SECOND_FRAME = HEADER + 24 + 3;
    for (const std::size_t at : {SECOND_FRAME, SECOND_FRAME + 4, SECOND_FRAME + 15, SECOND_FRAME + 19})
    {
        std::string damaged = whole;
        damaged[at] = '\xff'; // the mark, the kind, the sign of the time, a length of 4 GB
        CSegmentReader reader;
        ASSERT_TRUE(reader.Open(directory.Write("bad.seg", damaged)));
        RecordedFrame frame;
        EXPECT_TRUE(reader.Next(frame));
        EXPECT_FALSE(reader.Next(frame)) << at;
    }
    CSegmentReader reader;
    EXPECT_FALSE(reader.Open(directory.Write("other.seg", "NSCAMRED" + whole.substr(8))));
    EXPECT_FALSE(reader.Open(directory.Path("none.seg")));
}

TEST(SegmentFile, FindsTheKeyFrameAtOrBeforeATime)
{
    const CTempDirectory directory;
    CSegmentWriter writer;
    ASSERT_TRUE(writer.Open(directory.Path("x.seg")));
    for (int time = 10; time < 100; time += 10)
    {
        ASSERT_TRUE(writer.Write(Video(time, time % 30 == 10)));
    }
    writer.Close();
    CSegmentReader reader;
    ASSERT_TRUE(reader.Open(directory.Path("x.seg")));
    const std::pair<int, int> CASES[] = {{0, 10}, {10, 10}, {39, 10}, {40, 40}, {69, 40}, {70, 70}, {999, 70}};
    for (const auto& [asked, found] : CASES)
    {
        RecordedFrame frame;
        ASSERT_TRUE(reader.SeekKeyFrame(asked));
        ASSERT_TRUE(reader.Next(frame));
        EXPECT_EQ(found, frame.timeUs) << asked;
    }
}

TEST_F(Recordings, PlayFromTheKeyFrameInFrontOfTheTimeToItsEnd)
{
    Record(0, 10);
    EXPECT_EQ((Times{4, 5, 6, 7}), PictureTimes(m_index, 6, 8));
    EXPECT_EQ((Times{0, 1}), PictureTimes(m_index, 0, 2));
    EXPECT_EQ((Times{8, 9}), PictureTimes(m_index, 9, 100));
    EXPECT_EQ(Times{}, PictureTimes(m_index, 20, 30));
}

TEST_F(Recordings, GoOnFromSegmentToSegmentAndOverGaps)
{
    Record(0, 4);
    Record(4, 4);
    Record(100, 2);
    EXPECT_EQ((Times{0, 1, 2, 3, 4, 5, 6, 7, 100, 101}), PictureTimes(m_index, 1, 200));
    EXPECT_EQ((Times{100, 101}), PictureTimes(m_index, 50, 200));
}

TEST_F(Recordings, AMissingFileIsPassedBy)
{
    const RecordSegment lost = Record(0, 4);
    Record(4, 4);
    std::filesystem::remove(lost.path);
    EXPECT_EQ((Times{4, 5, 6, 7}), PictureTimes(m_index, 0, 200));
}

TEST_F(Recordings, WhatIsStillBeingRecordedMayComeLater)
{
    RecordSegment segment = m_index.Begin(BASE);
    CSegmentWriter writer;
    ASSERT_TRUE(writer.Open(segment.path));
    ASSERT_TRUE(writer.Write(Video(BASE, true)));
    ASSERT_TRUE(writer.Write(Video(BASE + SECOND, true))); // puts the first one on disk
    segment.endUs = BASE + SECOND;
    segment.bytes = writer.Bytes();
    m_index.Grow(segment);
    CRecordedFrames frames(m_index, BASE, BASE + 10 * SECOND);
    RecordedFrame frame;
    ASSERT_EQ(NextFrame::Ready, frames.Next(frame));
    EXPECT_EQ(NextFrame::NotYet, frames.Next(frame));
    ASSERT_TRUE(writer.Write(Video(BASE + 2 * SECOND, true)));
    ASSERT_EQ(NextFrame::Ready, frames.Next(frame));
    EXPECT_EQ(BASE + SECOND, frame.timeUs);
    writer.Close();
    m_index.End(segment);
    ASSERT_EQ(NextFrame::Ready, frames.Next(frame));
    EXPECT_EQ(NextFrame::End, frames.Next(frame));
}

// A reader at the live edge comes to the end of a segment before the next one has a picture on disk.
TEST_F(Recordings, TheNextSegmentMayComeLater)
{
    const std::int64_t now = WallClockUs();
    RecordSegment segment = m_index.Begin(now);
    CSegmentWriter writer;
    CRecordedFrames frames(m_index, now, now + 3600 * SECOND);
    RecordedFrame frame;
    EXPECT_EQ(NextFrame::NotYet, frames.Next(frame)); // its file is not there yet
    ASSERT_TRUE(writer.Open(segment.path));
    ASSERT_TRUE(writer.Write(Video(now, true)));
    EXPECT_EQ(NextFrame::NotYet, frames.Next(frame)); // nor its picture
    segment.bytes = writer.Bytes();
    writer.Close();
    m_index.End(segment);
    ASSERT_EQ(NextFrame::Ready, frames.Next(frame));
    EXPECT_EQ(NextFrame::NotYet, frames.Next(frame)); // nor the next segment
    RecordSegment second = m_index.Begin(now + SECOND);
    EXPECT_EQ(NextFrame::NotYet, frames.Next(frame));
    ASSERT_TRUE(writer.Open(second.path));
    ASSERT_TRUE(writer.Write(Video(now + SECOND, true)));
    second.bytes = writer.Bytes();
    writer.Close();
    m_index.End(second);
    ASSERT_EQ(NextFrame::Ready, frames.Next(frame));
    EXPECT_EQ(now + SECOND, frame.timeUs);
    EXPECT_EQ(NextFrame::NotYet, frames.Next(frame));
}

TEST_F(Recordings, SectionsJoinSegmentsWithoutAGap)
{
    Record(0, 4);
    Record(4, 4);
    Record(100, 2);
    const std::vector<RecordSection> sections = m_index.Sections(BASE + SECOND, BASE + 1000 * SECOND);
    ASSERT_EQ(2U, sections.size());
    EXPECT_EQ(BASE + SECOND, sections[0].startUs);
    EXPECT_EQ(BASE + 7 * SECOND, sections[0].endUs);
    EXPECT_EQ(BASE + 100 * SECOND, sections[1].startUs);
}

TEST_F(Recordings, AKilledProcessLeavesItsSegmentUsable)
{
    const RecordSegment segment = m_index.Begin(BASE);
    CSegmentWriter writer;
    ASSERT_TRUE(writer.Open(segment.path));
    ASSERT_TRUE(writer.Write(Video(BASE, true)) && writer.Write(Video(BASE + 3 * SECOND, false)));
    writer.Close();
    const RecordSegment withoutFile = m_index.Begin(BASE + 9 * SECOND);
    CRecordIndex next;
    std::string problem;
    ASSERT_TRUE(next.Open(m_directory.Path(), problem)) << problem;
    const std::vector<RecordSegment> found = next.Find(0, BASE + 1000 * SECOND);
    ASSERT_EQ(1U, found.size());
    EXPECT_EQ(BASE + 3 * SECOND, found[0].endUs);
    EXPECT_GT(found[0].bytes, 0U);
    EXPECT_NE(withoutFile.id, found[0].id);
}

TEST_F(Recordings, TheOldestIsRemovedWithItsFile)
{
    const RecordSegment first = Record(0, 4);
    const RecordSegment second = Record(10, 4);
    const std::uint64_t all = m_index.TotalBytes();
    EXPECT_TRUE(m_index.RemoveOldest());
    EXPECT_FALSE(std::filesystem::exists(first.path));
    EXPECT_EQ(all - first.bytes, m_index.TotalBytes());
    EXPECT_TRUE(m_index.RemoveOldest());
    EXPECT_FALSE(std::filesystem::exists(second.path));
    EXPECT_FALSE(m_index.RemoveOldest());
}

// A disk that is full or has become read-only.
TEST_F(Recordings, WhatCannotBeRemovedFromTheIndexIsNotTriedForEver)
{
    Record(0, 4);
    sqlite3* other = nullptr;
    ASSERT_EQ(SQLITE_OK, sqlite3_open(m_directory.Path("index.db").c_str(), &other));
    EXPECT_EQ(SQLITE_OK, sqlite3_exec(other,
                                      "CREATE TRIGGER keep BEFORE DELETE ON segment"
                                      " BEGIN SELECT RAISE(ABORT, 'full'); END",
                                      nullptr, nullptr, nullptr));
    sqlite3_close(other);
    EXPECT_FALSE(m_index.RemoveOldest());
    CRecorder recorder(m_index, 1); // would have to make room
    recorder.PutVideo(0, std::vector<unsigned char>(2000), true, SteadyClockUs());
    recorder.Finish();
    EXPECT_GT(m_index.TotalBytes(), 2000U);
}

TEST_F(Recordings, TheRecorderBeginsWithAKeyFrameOfTheMainStream)
{
    CRecorder recorder(m_index, 1000000);
    recorder.PutAudio({1}, 1);
    recorder.PutVideo(0, {1}, false, 2);
    recorder.PutVideo(1, {1}, true, 3);
    EXPECT_EQ(0U, m_index.TotalBytes());
    const auto nowUs = static_cast<std::int64_t>(SteadyClockUs());
    recorder.PutVideo(0, {1, 2, 3}, true, static_cast<std::uint64_t>(nowUs));
    recorder.PutAudio({4}, static_cast<std::uint64_t>(nowUs + 40000));
    recorder.Finish();
    const std::vector<RecordSegment> found = m_index.Find(0, WallClockUs() + 10 * SECOND);
    ASSERT_EQ(1U, found.size());
    EXPECT_EQ(40000, found[0].endUs - found[0].startUs);
    EXPECT_NEAR(static_cast<double>(WallClockUs()), static_cast<double>(found[0].startUs), 60e6);
    CSegmentReader reader;
    ASSERT_TRUE(reader.Open(found[0].path));
    RecordedFrame frame;
    ASSERT_TRUE(reader.Next(frame));
    EXPECT_EQ((std::vector<unsigned char>{1, 2, 3}), frame.payload);
    ASSERT_TRUE(reader.Next(frame));
    EXPECT_EQ(RecordedKind::Audio, frame.kind);
}

TEST_F(Recordings, TheRecorderBeginsASegmentEachMinuteAtAKeyFrame)
{
    CRecorder recorder(m_index, 1000000);
    const std::uint64_t now = SteadyClockUs();
    for (std::uint64_t second = 0; second <= 120; second += 7)
    {
        recorder.PutVideo(0, {1}, second % 14 == 0, now + second * SECOND);
    }
    recorder.Finish();
    EXPECT_EQ(2U, m_index.Find(0, WallClockUs() + 1000 * SECOND).size()); // from 0 and from 70 on
}

TEST_F(Recordings, ASegmentIsASmallPartOfTheSpace)
{
    CRecorder recorder(m_index, 80000);
    const std::uint64_t now = SteadyClockUs();
    for (std::uint64_t count = 0; count < 30; ++count)
    {
        recorder.PutVideo(0, std::vector<unsigned char>(2500), true, now + count * 100000);
    }
    recorder.Finish();
    const std::vector<RecordSegment> found = m_index.Find(0, WallClockUs() + 1000 * SECOND);
    EXPECT_EQ(8U, found.size()); // four frames each, which are an eighth of the space
    EXPECT_LE(m_index.TotalBytes(), 80000U);
}

TEST_F(Recordings, TheRecorderMakesRoomForTheNewest)
{
    CRecorder recorder(m_index, 5000);
    const std::uint64_t now = SteadyClockUs();
    for (std::uint64_t minute = 0; minute < 10; ++minute)
    {
        recorder.PutVideo(0, std::vector<unsigned char>(2000), true, now + minute * 60 * SECOND);
    }
    recorder.Finish();
    const std::vector<RecordSegment> found = m_index.Find(0, WallClockUs() + 10000 * SECOND);
    ASSERT_EQ(3U, found.size());
    EXPECT_EQ(10, found.back().id);
    EXPECT_EQ(8, found.front().id);
}

TEST(RecordTime, LocalTimesComeBack)
{
    const DEV_DATETIME time = {{2024, 5, 6}, {7, 8, 9}};
    const std::int64_t us = ToRecordTime(time);
    const DEV_DATETIME back = ToLocalTime(us + 999999);
    EXPECT_EQ(2024, back.date.year);
    EXPECT_EQ(5, back.date.month);
    EXPECT_EQ(6, back.date.day);
    EXPECT_EQ(7, back.time.hour);
    EXPECT_EQ(8, back.time.minute);
    EXPECT_EQ(9, back.time.second);
}

TEST(RecordTime, NoDateIsZero)
{
    EXPECT_EQ(0, ToRecordTime({}));
    EXPECT_EQ(0, ToRecordTime({{2024, 13, 1}, {}}));
    EXPECT_EQ(0, ToRecordTime({{2024, 1, 0}, {}}));
    EXPECT_EQ(0, ToRecordTime({{1969, 12, 31}, {}}));
}
