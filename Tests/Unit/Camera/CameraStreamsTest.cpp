#include "CameraStreams.h"

#include <gtest/gtest.h>

namespace
{

constexpr const char* ADMIN = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><userinfo><username>admin</username>"
                              "<password>admin</password><ip>10.0.0.2</ip></userinfo>";
constexpr const char* NOBODY = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><userinfo><username></username>"
                               "<password></password><ip>10.0.0.2</ip></userinfo>";

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
    CCameraStreams m_streams{2, m_users, true,
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

    CCameraStreams open(1, m_users, false, [](int) {});
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

TEST_F(CameraStreams, HasNoRecordingsAndTakesNoSpeech)
{
    unsigned int out = 0;
    EXPECT_EQ(0U, m_streams.OpenRecStream(ADMIN, 1, {2024, 5, 6}, {7, 8, 9}, 60, out));
    EXPECT_EQ(0U, m_streams.OpenTalkBackStream(ADMIN));
    unsigned char speech[5] = {0x00, 0x01, 0xa0, 0x00, 0xd5};
    EXPECT_EQ(-1, m_streams.TalkBackStreamInput(speech, sizeof(speech), NETNS::RTSP_ENCODE_TALK));
}
