// HttpBadInputTest.cpp: half, huge and broken requests. The server outlives them all.
#include "HttpWorld.h"

#include <random>
#include <vector>

namespace
{

/// Each test ends with a good request that is answered.
class HttpBadInput : public HttpWorld
{
protected:
    void SetUp() override
    {
        HttpWorld::SetUp();
        m_root.Write("good.txt", "good");
    }
    void TearDown() override
    {
        EXPECT_THAT(Get("/good.txt"), testing::EndsWith("\r\n\r\ngood"));
        HttpWorld::TearDown();
    }
};

TEST_F(HttpBadInput, HalfRequestThatEndsGetsNoAnswer)
{
    for (const char* half : {"", "G", "GET /good.txt HTTP/1.1", "GET /good.txt HTTP/1.1\r\n\r",
                             "POST /good.txt HTTP/1.1\r\nContent-Length: 5\r\n\r\nabcd"})
    {
        Peer peer(m_port);
        peer.Send(half);
        peer.ShutdownSend();
        EXPECT_EQ("", peer.ReadAll()) << half;
    }
}

TEST_F(HttpBadInput, SilentPeersAreDroppedWithoutAnAnswer)
{
    std::vector<Peer> silent;
    for (int i = 0; i < 4; ++i)
    {
        silent.emplace_back(m_port);
    }
    for (Peer& peer : silent)
    {
        EXPECT_TRUE(peer.WaitClosed());
    }
}

TEST_F(HttpBadInput, PercentEscapesCutShort)
{
    for (const char* url : {"/%", "/%4", "/%%", "/%zz", "/a%.txt", "/..%2f..%2F..%2fetc%2fpasswd%00.txt"})
    {
        EXPECT_EQ(NOT_FOUND, Get(url)) << url;
    }
}

TEST_F(HttpBadInput, RequestsWithoutAUrl)
{
    EXPECT_EQ(NOT_FOUND, Ask("\r\n\r\n"));
    EXPECT_EQ(NOT_FOUND, Ask("GET\r\n\r\n"));
    EXPECT_EQ(NOT_FOUND, Ask(" HTTP\r\n\r\n"));
    EXPECT_EQ(NOT_FOUND, Ask("GET HTTP/1.1\r\n\r\n"));
}

TEST_F(HttpBadInput, UrlOfAMegabyte)
{
    EXPECT_EQ(NOT_FOUND, Get("/" + std::string(1000000, 'x')));
    EXPECT_EQ(NOT_FOUND, Get("/" + std::string(1000000, '.')));
}

TEST_F(HttpBadInput, ContentLengthThatIsNoLength)
{
    // Too large to wait for, or below zero: what has come is served as it stands.
    for (const char* length : {"10485761", "-1", "99999999999999999999", "-99999999999999999999"})
    {
        EXPECT_EQ(NOT_FOUND, Ask("POST /unknown HTTP/1.1\r\nContent-Length: " + std::string(length) + "\r\n\r\n"))
            << length;
    }
    for (const char* length : {"0", "", "abc", " 0x10"})
    {
        EXPECT_EQ(NOT_FOUND, Ask("POST /unknown HTTP/1.1\r\nContent-Length: " + std::string(length) + "\r\n\r\n"))
            << length;
    }
}

TEST_F(HttpBadInput, BodyOfTenMebibytesIsTaken)
{
    const std::string body(0xA00000, 'b');
    EXPECT_EQ(NOT_FOUND, Ask("POST /unknown HTTP/1.1\r\nContent-Length: 10485760\r\n\r\n" + body));
}

TEST_F(HttpBadInput, HeaderOfMoreThanTenMebibytesIsCut)
{
    Peer peer(m_port);
    peer.Send("GET /good.txt HTTP/1.1\r\nX: " + std::string(0xA00000, 'x')); // the server may close before the end
    EXPECT_EQ("", peer.ReadAll());
}

TEST_F(HttpBadInput, CredentialsOfEveryKind)
{
    for (const std::string& credentials :
         {std::string(), std::string("===="), std::string(4000, '='), std::string(4000, 'A'), std::string("YWRtaW4="),
          std::string("Og=="), std::string("\x80\xff\x01")})
    {
        EXPECT_THAT(Ask("GET /GetDeviceInfo HTTP/1.1\r\nAuthorization: Basic " + credentials + "\r\n\r\n"),
                    testing::StartsWith("HTTP/1.1 401 Unauthorized\r\n"))
            << credentials.substr(0, 20);
    }
}

TEST_F(HttpBadInput, NoiseOfEveryLength)
{
    std::mt19937 random(20161);
    for (int length = 1; length < 200; ++length)
    {
        std::string noise;
        for (int i = 0; i < length; ++i)
        {
            noise += static_cast<char>(random() & 0xFF);
        }
        Peer peer(m_port);
        peer.Send(noise);
        peer.Send("\r\n\r\n");
        peer.ShutdownSend();
        const std::string answer = peer.ReadAll();
        EXPECT_TRUE(answer.empty() || answer.compare(0, 9, "HTTP/1.1 ") == 0) << answer;
    }
}

TEST_F(HttpBadInput, ResetsInTheMiddleOfEverything)
{
    m_root.Write("big.txt", std::string(1000000, 'x'));
    for (int i = 0; i < 300; ++i)
    {
        Peer peer(m_port);
        peer.Send("GET /big.txt HTTP/1.1\r\n\r\n");
        if (i % 2 == 0)
        {
            peer.Read(static_cast<std::size_t>(i) * 100);
        }
        peer.Reset();
    }
}

// Four clients that do not read keep the four workers for as long as they stand; when they go, all go on.
TEST_F(HttpBadInput, StalledReadersKeepTheirWorkersOnlyWhileTheyStand)
{
    m_root.Write("big.txt", std::string(16 * 1024 * 1024, 'x'));
    std::vector<Peer> stalled;
    for (int i = 0; i < 4; ++i)
    {
        stalled.emplace_back(m_port);
        stalled.back().Send("GET /big.txt HTTP/1.1\r\n\r\n");
        EXPECT_EQ("HTTP/1.1 200 OK", stalled.back().Read(15));
    }
    Peer behind(m_port);
    behind.Send("GET /good.txt HTTP/1.1\r\n\r\n");
    stalled[0].Reset();
    EXPECT_THAT(behind.ReadAll(), testing::EndsWith("\r\n\r\ngood"));
}

} // namespace
