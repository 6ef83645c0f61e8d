// How long the snapshot receiver waits for what, on a replaced clock.
#include "HttpClient.h"

#include "FakeSocketService.h"
#include "ShareSDK.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;

namespace
{

const std::string HEAD = "HTTP/1.1 200 OK\r\nContent-Length: 6\r\n\r\n";

class HttpClientSnapshot : public testing::Test
{
protected:
    HttpClientSnapshot() { SHARESDK_SetLogLevel(SHARESDK_LOG_NONE); }
    ~HttpClientSnapshot() override { delete[] m_data; }

    std::string Fetch(const Outgoing& connection, const std::string& url = "http://camera:81/a.jpg")
    {
        m_sockets.ScriptConnects({connection});
        return FetchUrl(url);
    }
    std::string FetchUrl(const std::string& url)
    {
        EXPECT_EQ(ONVIF_OK, m_client.GetSnapshotData(url, m_data, m_size));
        return m_data != nullptr ? std::string(m_data, static_cast<std::size_t>(m_size)) : "none";
    }

    FakeSocketService m_sockets;
    CHttpClient m_client{"admin", "secret", "10.0.0.5", 8080};
    char* m_data = nullptr;
    int m_size = -1;
};

TEST_F(HttpClientSnapshot, ConnectsSendsAndEndsTheConnection)
{
    EXPECT_EQ("abcdef", Fetch({Outgoing::CONNECTED, {{0, HEAD + "abcdef"}}}));
    EXPECT_THAT(m_sockets.TakeCalls(), ElementsAre("connect 10.0.0.5 81", "send 1", "give up 1", "destroy 1"));
    EXPECT_EQ(1, m_sockets.Polls(1));
}

// Not the port of the camera's services, which is 8080 here.
TEST_F(HttpClientSnapshot, GoesToPort80WhenTheUrlHasNone)
{
    Fetch({Outgoing::CONNECTED, {{0, HEAD + "abcdef"}}}, "http://camera/a.jpg");
    EXPECT_EQ("connect 10.0.0.5 80", m_sockets.TakeCalls().front());
}

TEST_F(HttpClientSnapshot, AsksFifteenTimesForAConnectionAndSendsAllTheSame)
{
    EXPECT_EQ("none", Fetch({Outgoing::PENDING, {}}));
    EXPECT_EQ(15, m_sockets.Polls(1));
    EXPECT_EQ(15u * 50 + 5001, m_sockets.LifetimeMs(1));
    EXPECT_THAT(m_sockets.TakeCalls(), ElementsAre("connect 10.0.0.5 81", "send 1", "give up 1", "destroy 1"));
}

TEST_F(HttpClientSnapshot, AsksOnceForAConnectionThatIsRefused)
{
    Fetch({Outgoing::REFUSED, {{0, "", true}}});
    EXPECT_EQ(1, m_sockets.Polls(1));
    EXPECT_EQ(0u, m_sockets.LifetimeMs(1));
}

TEST_F(HttpClientSnapshot, LooksForMoreFourTimesASecond)
{
    EXPECT_EQ("none", Fetch({Outgoing::CONNECTED, {}}));
    EXPECT_EQ(21, m_sockets.Reads(1)); // at 0, 250 and so on up to 5000 ms
}

TEST_F(HttpClientSnapshot, TakesWhatComesWithinFiveSeconds)
{
    EXPECT_EQ("abcdef", Fetch({Outgoing::CONNECTED, {{0, HEAD + "abc"}, {5000, "def"}}}));
}

// What has come by then is the picture.
TEST_F(HttpClientSnapshot, TakesNothingThatComesLater)
{
    EXPECT_EQ("abc", Fetch({Outgoing::CONNECTED, {{0, HEAD + "abc"}, {5001, "def"}}}));
    EXPECT_EQ(5001u, m_sockets.LifetimeMs(1));
}

TEST_F(HttpClientSnapshot, TakesWhatCameBeforeTheConnectionBroke)
{
    EXPECT_EQ("abc", Fetch({Outgoing::CONNECTED, {{0, HEAD + "abc"}, {10, "", true}, {20, "def"}}}));
}

TEST_F(HttpClientSnapshot, SendsUntilAllIsGone)
{
    m_sockets.ScriptSends(1, {10, 0, 20});
    EXPECT_EQ("abcdef", Fetch({Outgoing::CONNECTED, {{0, HEAD + "abcdef"}}}));
    EXPECT_EQ(0u, m_sockets.Sent(1).find("GET /a.jpg HTTP/1.1\r\nHost: camera:81\r\n"));
    EXPECT_EQ("User-Agent: ApiTool\r\n\r\n", m_sockets.Sent(1).substr(m_sockets.Sent(1).size() - 23));
}

TEST_F(HttpClientSnapshot, HasNoPictureWithoutASocketService)
{
    EXPECT_EQ("none", FetchUrl("http://camera:81/a.jpg"));
    EXPECT_EQ(0, m_size);
}

} // namespace
