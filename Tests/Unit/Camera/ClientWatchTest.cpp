#include "ClientWatch.h"

#include "FedFrames.h"
#include "RecordTime.h"
#include "Recorder.h"
#include "TempDirectory.h"

#include <gtest/gtest.h>

namespace
{

class CSilentTalk : public CTalkSink
{
public:
    void Put(const std::int16_t*, std::size_t) override {}
    void Flush() override {}
};

class ClientWatch : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::string problem;
        ASSERT_TRUE(m_index.Open(m_directory.Path(), problem)) << problem;
        // Long enough for no test to see its end.
        CRecorder recorder(m_index, 1000000);
        const std::uint64_t now = SteadyClockUs();
        for (std::uint64_t count = 0; count < 1000; ++count)
        {
            recorder.PutVideo(MAIN_STREAM, {1}, true, now + count * 50000);
            recorder.PutAudio({2}, now + count * 50000);
        }
    }

    void OpenLive(int stream)
    {
        unsigned int out = 0;
        ASSERT_NE(0U, m_streams.OpenLiveStream("", 1, stream, out));
    }

    unsigned int OpenPlayback() { return m_playbacks.Open(WallClockUs() - 60 * std::int64_t{1000000}, 3600); }

    bool Plays(unsigned int playback)
    {
        return m_fed.AwaitOf(playback, std::max(m_fed.CountOf(playback), DESCRIPTION) + 1);
    }

    /// @return whether another playback goes on without this one
    bool IsClosed(unsigned int playback)
    {
        const std::size_t count = m_fed.CountOf(playback);
        const unsigned int other = OpenPlayback();
        return m_fed.AwaitOf(other, DESCRIPTION + 4) && m_fed.CountOf(playback) == count;
    }

    void OpenAndLeave()
    {
        OpenLive(MAIN_STREAM);
        const unsigned int playback = OpenPlayback();
        m_watch.Look();
        EXPECT_TRUE(m_streams.IsOpen(MAIN_STREAM));
        m_watch.Look();
        EXPECT_FALSE(m_streams.IsOpen(MAIN_STREAM));
        EXPECT_TRUE(IsClosed(playback));
    }

    static constexpr std::size_t DESCRIPTION = 2; // frames that are fed at once

    const CTempDirectory m_directory;
    CRecordIndex m_index;
    CFedFrames m_fed;
    CPlaybacks m_playbacks{m_index, m_fed.Feed()};
    CCameraUsers m_users{{}};
    CSilentTalk m_talk;
    CCameraStreams m_streams{1, {m_users, m_playbacks, m_talk}, false, [](int) {
                             }};
    unsigned int m_connections = 0;
    std::function<void()> m_atCount = [] {
    };
    CClientWatch m_watch{m_streams, m_playbacks,
                         [this]
                         {
                             const unsigned int connections = m_connections;
                             m_atCount();
                             return connections;
                         }};
};

} // namespace

TEST_F(ClientWatch, TellsWhetherTheLastLookFoundAClient)
{
    EXPECT_TRUE(m_watch.IsConnected()); // unknown yet
    m_watch.Look();
    EXPECT_FALSE(m_watch.IsConnected());
    m_connections = 3;
    m_watch.Look();
    EXPECT_TRUE(m_watch.IsConnected());
}

TEST_F(ClientWatch, ClosesWhatWasOpenedBeforeTwoLooksWithoutAClient)
{
    OpenAndLeave();
}

TEST_F(ClientWatch, KeepsWhatIsOpenWhileAClientIsConnected)
{
    m_connections = 1;
    OpenLive(SUB_STREAM);
    const unsigned int playback = OpenPlayback();
    for (int count = 0; count < 3; ++count)
    {
        m_watch.Look();
    }
    EXPECT_TRUE(m_streams.IsOpen(SUB_STREAM));
    EXPECT_TRUE(Plays(playback));
}

// It would wait for its first packet for ever.
TEST_F(ClientWatch, KeepsWhatAClientOpensThatConnectsDuringTheLook)
{
    m_watch.Look();
    unsigned int playback = 0;
    m_atCount = [&]
    {
        OpenLive(MAIN_STREAM);
        playback = OpenPlayback();
    };
    m_watch.Look();
    EXPECT_TRUE(m_streams.IsOpen(MAIN_STREAM));
    EXPECT_TRUE(Plays(playback));
}

TEST_F(ClientWatch, WhatWasOpenedBetweenTwoSuchLooksIsClosedByTheThird)
{
    m_watch.Look();
    OpenAndLeave();
}
