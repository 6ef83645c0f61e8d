// Playback: recordings that are fed to clients.
#include "Playback.h"
#include "FedFrames.h"
#include "RecordTime.h"
#include "RecordingFiles.h"

#include <filesystem>
#include <set>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace NETNS;

using Playback = Recordings;

TEST_F(Playback, FeedsTheDescriptionFirstAndThenEverythingInOrder)
{
    RecordSegment segment = m_index.Begin(BASE);
    CSegmentWriter writer;
    ASSERT_TRUE(writer.Open(segment.path));
    for (int count = 0; count < 5; ++count)
    {
        ASSERT_TRUE(writer.Write(Video(BASE + count * 20000, count == 0)));
        ASSERT_TRUE(writer.Write(Sound(BASE + count * 20000 + 1)));
    }
    segment.endUs = BASE + 100000;
    segment.bytes = writer.Bytes();
    writer.Close();
    m_index.End(segment);
    CFedFrames fed;
    CPlaybacks playbacks(m_index, fed.Feed());
    const std::uint64_t before = SteadyClockUs();
    const unsigned int handle = playbacks.Open(BASE, 10);
    ASSERT_TRUE(fed.Await(2 + 10));
    // Clients need the first second to set up their tracks; the pictures are 80 ms long.
    EXPECT_GE(SteadyClockUs() - before, 1080000U);
    const auto frames = fed.Frames();
    EXPECT_EQ(handle, frames[0].first);
    EXPECT_EQ(RecordedKind::Audio, frames[0].second.kind);
    EXPECT_TRUE(frames[1].second.keyFrame);
    EXPECT_TRUE(frames[2].second.keyFrame);
    EXPECT_EQ(BASE, frames[2].second.timeUs);
    for (std::size_t index = 3; index < frames.size(); ++index)
    {
        EXPECT_GT(frames[index].second.timeUs, frames[index - 1].second.timeUs);
    }
    playbacks.Close(handle);
}

// The oldest recordings go while clients watch them.
TEST_F(Playback, GoesOnWhenItsRecordingIsRemoved)
{
    Record(0, 1);
    CFedFrames fed;
    CPlaybacks playbacks(m_index, fed.Feed());
    playbacks.Open(BASE, 10);
    ASSERT_TRUE(fed.Await(2)); // it is described now, and plays a second later
    ASSERT_TRUE(m_index.RemoveOldest());
    EXPECT_TRUE(m_index.Find(0, BASE + 10 * SECOND).empty());
    EXPECT_TRUE(fed.Await(2 + 2));
}

// A camera that has just been started has its first pictures, and a little later its first sound, on disk.
TEST_F(Playback, AwaitsTheFirstPictureAndItsSound)
{
    Record(0, 1);
    const std::int64_t now = WallClockUs();
    CFedFrames fed;
    CPlaybacks playbacks(m_index, fed.Feed());
    const unsigned int early = playbacks.Open(now, 3600);
    // By the time that one is described which is opened later, the early one has looked at the recordings too.
    const auto letItLook = [&]
    {
        EXPECT_TRUE(fed.AwaitOf(playbacks.Open(BASE, 10), 2));
    };
    letItLook();
    RecordSegment segment = m_index.Begin(now);
    CSegmentWriter writer;
    ASSERT_TRUE(writer.Open(segment.path));
    ASSERT_TRUE(writer.Write(Video(now, true)));
    ASSERT_TRUE(writer.Write(Video(now + 1, true))); // puts the first one on disk
    m_index.Grow(segment);
    letItLook();
    EXPECT_EQ(0U, fed.CountOf(early));
    ASSERT_TRUE(writer.Write(Sound(now + 2)));
    segment.endUs = now + 2;
    segment.bytes = writer.Bytes();
    writer.Close();
    m_index.End(segment);
    ASSERT_TRUE(fed.AwaitOf(early, 2 + 3));
    std::vector<RecordedKind> kinds;
    for (const auto& [handle, frame] : fed.Frames())
    {
        if (handle == early)
        {
            kinds.push_back(frame.kind);
        }
    }
    constexpr RecordedKind PICTURE = RecordedKind::Video;
    constexpr RecordedKind SOUND = RecordedKind::Audio;
    EXPECT_EQ((std::vector<RecordedKind>{SOUND, PICTURE, PICTURE, PICTURE, SOUND}), kinds);
}

TEST_F(Playback, LeavesGapsOut)
{
    Record(0, 1);
    Record(3600, 1);
    CFedFrames fed;
    CPlaybacks playbacks(m_index, fed.Feed());
    playbacks.Open(BASE, 7200);
    ASSERT_TRUE(fed.Await(2 + 4)); // an hour does not pass
    const auto frames = fed.Frames();
    EXPECT_LE(frames[4].second.timeUs - frames[3].second.timeUs, 2 * SECOND);
}

TEST_F(Playback, FeedsNothingMoreOnceItIsClosed)
{
    Record(0, 10);
    CFedFrames fed;
    CPlaybacks playbacks(m_index, fed.Feed());
    const unsigned int handle = playbacks.Open(BASE, 60);
    ASSERT_TRUE(fed.Await(2));
    playbacks.Close(handle);
    const std::size_t count = fed.Frames().size();
    playbacks.Close(handle);
    EXPECT_EQ(count, fed.Frames().size());
}

TEST_F(Playback, IsClosedWhenItWasOpenedBeforeAHandle)
{
    Record(0, 10);
    CFedFrames fed;
    CPlaybacks playbacks(m_index, fed.Feed());
    const unsigned int gone = playbacks.Open(BASE, 60);
    const unsigned int next = playbacks.NextHandle();
    EXPECT_GT(next, gone);
    const unsigned int playing = playbacks.Open(BASE, 60);
    EXPECT_GE(playing, next);
    playbacks.CloseBefore(next);
    const std::size_t count = fed.CountOf(gone);
    ASSERT_TRUE(fed.AwaitOf(playing, 4)); // the other one would have fed as many
    EXPECT_EQ(count, fed.CountOf(gone));
}

// It is closed on the thread that serves all RTSP clients.
TEST_F(Playback, ClosingDoesNotWaitForADiskThatHangs)
{
    const RecordSegment segment = Record(0, 4);
    std::filesystem::remove(segment.path);
    ASSERT_EQ(0, mkfifo(segment.path.c_str(), 0600)); // opening it waits for a writer
    CFedFrames fed;
    CPlaybacks playbacks(m_index, fed.Feed());
    for (int count = 0; count < 16; ++count)
    {
        const unsigned int handle = playbacks.Open(BASE, 60);
        EXPECT_NE(0U, handle);
        playbacks.Close(handle);
    }
    EXPECT_EQ(0U, playbacks.Open(BASE, 60)); // threads do not pile up
    const int disk = open(segment.path.c_str(), O_RDWR | O_NONBLOCK);
    const std::string noise(65536, 'x'); // a buffer full for each thread
    EXPECT_EQ(static_cast<ssize_t>(noise.size()), write(disk, noise.data(), noise.size()));
    playbacks.CloseAll();
    close(disk);
    EXPECT_TRUE(fed.Frames().empty());
}

TEST_F(Playback, SixteenRunAtOnceAndTheOldestEndsForOneMore)
{
    Record(0, 4);
    CFedFrames fed;
    CPlaybacks playbacks(m_index, fed.Feed());
    std::vector<unsigned int> handles;
    for (int count = 0; count < 17; ++count)
    {
        handles.push_back(playbacks.Open(BASE, 60));
        EXPECT_NE(0U, handles.back());
    }
    EXPECT_EQ(17U, std::set<unsigned int>(handles.begin(), handles.end()).size());
    playbacks.CloseAll();
}
