#include "CameraStreams.h"

#include <gtest/gtest.h>

namespace
{

constexpr const char* ADMIN = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><userinfo><username>admin</username>"
                              "<password>admin</password><ip>10.0.0.2</ip></userinfo>";
constexpr const char* NOBODY = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><userinfo><username></username>"
                               "<password></password><ip>10.0.0.2</ip></userinfo>";

class CKeptSpeech : public CTalkSink
{
public:
    void Put(const std::int16_t* samples, std::size_t count) override
    {
        m_samples.insert(m_samples.end(), samples, samples + count);
    }
    void Flush() override { ++m_flushes; }

    std::vector<std::int16_t> m_samples;
    int m_flushes = 0;
};

class CameraStreams : public ::testing::Test
{
protected:
    unsigned int Open(unsigned int channel, int stream, const char* user = ADMIN)
    {
        unsigned int out = 0;
        return m_streams.OpenLiveStream(user, channel, stream, out);
    }

    CCameraUsers m_users{{{"admin", "admin"}}};
    std::vector<int> m_opened;
    CRecordIndex m_records;
    CPlaybacks m_playbacks{m_records, [](unsigned int, const RecordedFrame&) {
                           }};
    CKeptSpeech m_talk;
    CCameraStreams m_streams{2,
                             {m_users, m_playbacks, m_talk},
                             true,
                             [this](int stream)
                             {
                                 m_opened.push_back(stream);
                             }};
};

} // namespace

TEST(LivePath, NamesChannelAndStream)
{
    EXPECT_EQ("/live/ch1/main", LivePath(1, MAIN_STREAM));
    EXPECT_EQ("/live/ch12/sub", LivePath(12, SUB_STREAM));
}

// The library takes the last registered text that occurs in a request's URL: none may occur in another one.
TEST(LivePath, NoPathOccursInAnother)
{
    std::vector<std::string> paths;
    for (unsigned int channel = 1; channel <= MAX_CAMERA_CHANNELS; ++channel)
    {
        paths.push_back(LivePath(channel, MAIN_STREAM));
        paths.push_back(LivePath(channel, SUB_STREAM));
    }
    for (const std::string& one : paths)
    {
        for (const std::string& other : paths)
        {
            EXPECT_TRUE(&one == &other || one.find(other) == std::string::npos) << one << " " << other;
        }
    }
}

TEST_F(CameraStreams, IsOpenFromTheFirstOpenToTheLastClose)
{
    EXPECT_FALSE(m_streams.IsOpen(MAIN_STREAM));
    const unsigned int first = Open(1, MAIN_STREAM);
    const unsigned int second = Open(2, MAIN_STREAM);
    EXPECT_TRUE(m_streams.IsOpen(MAIN_STREAM));
    EXPECT_FALSE(m_streams.IsOpen(SUB_STREAM));
    m_streams.CloseLiveStream(first);
    EXPECT_TRUE(m_streams.IsOpen(MAIN_STREAM));
    m_streams.CloseLiveStream(second);
    EXPECT_FALSE(m_streams.IsOpen(MAIN_STREAM));
}

TEST_F(CameraStreams, EachDescribeCounts)
{
    const unsigned int handle = Open(1, SUB_STREAM);
    EXPECT_EQ(handle, Open(1, SUB_STREAM));
    m_streams.CloseLiveStream(handle);
    EXPECT_TRUE(m_streams.IsOpen(SUB_STREAM));
    m_streams.CloseLiveStream(handle);
    EXPECT_FALSE(m_streams.IsOpen(SUB_STREAM));
}

TEST_F(CameraStreams, EachOpenAsksForAKeyFrame)
{
    Open(1, MAIN_STREAM);
    Open(1, SUB_STREAM);
    Open(2, SUB_STREAM);
    EXPECT_EQ((std::vector<int>{MAIN_STREAM, SUB_STREAM, SUB_STREAM}), m_opened);
}

// The end of a talk session closes handle 39: a live stream must not have it.
TEST_F(CameraStreams, OtherHandlesCloseNothing)
{
    const unsigned int handle = Open(1, MAIN_STREAM);
    for (const unsigned int other : {0U, 1U, 39U, handle - 1, handle + 4, 0xffffffffU})
    {
        m_streams.CloseLiveStream(other);
    }
    EXPECT_TRUE(m_streams.IsOpen(MAIN_STREAM));
    m_streams.CloseLiveStream(handle + 1); // the sub stream, which is closed already
    EXPECT_FALSE(m_streams.IsOpen(SUB_STREAM));
    EXPECT_TRUE(m_streams.IsOpen(MAIN_STREAM));
}

TEST_F(CameraStreams, RefusesWhatItDoesNotHave)
{
    EXPECT_EQ(0U, Open(0, MAIN_STREAM));
    EXPECT_EQ(0U, Open(3, MAIN_STREAM));
    EXPECT_EQ(0U, Open(1, -1));
    EXPECT_EQ(0U, Open(1, STREAM_COUNT));
    EXPECT_TRUE(m_opened.empty());
}

TEST_F(CameraStreams, OpensForUsersOnlyWhenALoginIsNeeded)
{
    EXPECT_EQ(0U, Open(1, MAIN_STREAM, NOBODY));
    EXPECT_FALSE(m_streams.IsOpen(MAIN_STREAM));

    CCameraStreams open(1, {m_users, m_playbacks, m_talk}, false, [](int) {});
    unsigned int out = 0;
    EXPECT_NE(0U, open.OpenLiveStream(NOBODY, 1, MAIN_STREAM, out));
    EXPECT_TRUE(open.IsOpen(MAIN_STREAM));
}

TEST_F(CameraStreams, ForgetsClientsThatLeftWithoutAWord)
{
    Open(1, MAIN_STREAM);
    Open(2, SUB_STREAM);
    m_streams.ForgetAll();
    EXPECT_FALSE(m_streams.IsOpen(MAIN_STREAM));
    EXPECT_FALSE(m_streams.IsOpen(SUB_STREAM));
}

TEST_F(CameraStreams, PlaysRecordingsOfItsOwnChannelsForUsers)
{
    unsigned int out = 0;
    const NETNS::DEV_DATE day = {2024, 5, 6};
    const NETNS::DEV_TIME time = {7, 8, 9};
    EXPECT_EQ(0U, m_streams.OpenRecStream(NOBODY, 1, day, time, 60, out));
    EXPECT_EQ(0U, m_streams.OpenRecStream(ADMIN, 0, day, time, 60, out));
    EXPECT_EQ(0U, m_streams.OpenRecStream(ADMIN, 3, day, time, 60, out));
    EXPECT_EQ(0U, m_streams.OpenRecStream(ADMIN, 1, {2024, 13, 6}, time, 60, out));
    const unsigned int first = m_streams.OpenRecStream(ADMIN, 1, day, time, 60, out);
    const unsigned int second = m_streams.OpenRecStream(ADMIN, 2, day, time, 60, out);
    EXPECT_NE(0U, first);
    EXPECT_NE(first, second);
    m_streams.ClosePlayStream(first);
    m_streams.ClosePlayStream(first);
    m_streams.ClosePlayStream(second);
}

TEST_F(CameraStreams, DecodesTheSpeechOfUsers)
{
    unsigned char speech[6] = {0x00, 0x01, 0xa0, 0x00, 0xd5, 0x2a};
    EXPECT_EQ(-1, m_streams.TalkBackStreamInput(speech, sizeof(speech), NETNS::RTSP_ENCODE_TALK));
    EXPECT_EQ(0U, m_streams.OpenTalkBackStream(NOBODY));
    EXPECT_EQ(-1, m_streams.TalkBackStreamInput(speech, sizeof(speech), NETNS::RTSP_ENCODE_TALK));

    const unsigned int handle = m_streams.OpenTalkBackStream(ADMIN);
    EXPECT_EQ(39U, handle);
    EXPECT_EQ(0, m_streams.TalkBackStreamInput(speech, sizeof(speech), NETNS::RTSP_ENCODE_TALK));
    EXPECT_EQ((std::vector<std::int16_t>{8, -32256}), m_talk.m_samples);
    m_streams.CloseTalkBackStream(0);
    EXPECT_EQ(0, m_talk.m_flushes);
    m_streams.CloseTalkBackStream(handle);
    EXPECT_EQ(1, m_talk.m_flushes);
    EXPECT_EQ(-1, m_streams.TalkBackStreamInput(speech, sizeof(speech), NETNS::RTSP_ENCODE_TALK));
}

TEST_F(CameraStreams, TakesNothingButMarkedSpeech)
{
    m_streams.OpenTalkBackStream(ADMIN);
    unsigned char speech[5] = {0x00, 0x01, 0xa0, 0x00, 0xd5};
    EXPECT_EQ(-1, m_streams.TalkBackStreamInput(speech, 4, NETNS::RTSP_ENCODE_TALK));
    EXPECT_EQ(-1, m_streams.TalkBackStreamInput(speech, sizeof(speech), NETNS::RTSP_ENCODE_PCMA));
    speech[2] = 0xa1;
    EXPECT_EQ(-1, m_streams.TalkBackStreamInput(speech, sizeof(speech), NETNS::RTSP_ENCODE_TALK));
    EXPECT_TRUE(m_talk.m_samples.empty());
}
