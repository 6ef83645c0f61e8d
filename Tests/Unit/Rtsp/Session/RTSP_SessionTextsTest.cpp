#include "RTSP_SessionTexts.h"

#include "FakeClock.h"
#include "PubHelper.h"

#include <cstring>
#include <gtest/gtest.h>

namespace
{

TEST(RTSP_SessionTexts, DateAndExpiresAreBothThePresent)
{
    EXPECT_EQ("Date: Tue, Dec 22 2015 15:13:46 GMT\r\nExpires: Tue, Dec 22 2015 15:13:46 GMT\r\n",
              DateHeader(1450797226));
}

TEST(RTSP_SessionTexts, ASessionIdIsFifteenDigits)
{
    char id[16];
    MakeSessionId(id);
    EXPECT_EQ(15u, std::strspn(id, "0123456789"));
    EXPECT_NE('0', id[0]);
}

// The generator gives one number all through a millisecond, so the digits are alike but for the first.
TEST(RTSP_SessionTexts, ASessionIdDoesNotBeginWithAZero)
{
    FakeClock clock;
    while (PUB_Rand() % 10 != 0)
        clock.Advance(1);
    char id[16];
    MakeSessionId(id);
    EXPECT_STREQ("100000000000000", id);
}

TEST(RTSP_SessionTexts, TheLogShowsNoCredentials)
{
    EXPECT_EQ("PLAY rtsp://***@host/a RTSP/1.0\r\nauthorization: ***",
              TextForLog("PLAY rtsp://admin:p@ss@host/a RTSP/1.0\r\nAuthorization: Basic YWRtaW46cA==\r\n\r\n"));
    EXPECT_EQ("PLAY rtsp://host/a@b RTSP/1.0\r\n", TextForLog("PLAY rtsp://host/a@b RTSP/1.0\r\n"));
    EXPECT_EQ("rtsp://", TextForLog(("rtsp://admin:" + std::string(300, 'p') + "@host/").c_str()));
}

TEST(RTSP_SessionTexts, TransportOverUdpNamesBothPairsOfPorts)
{
    EXPECT_EQ("Transport: RTP/AVP;unicast;destination=10.0.0.2;source=10.0.0.1;client_port=6000-65535;"
              "server_port=20000-20001;ssrc=1a2b\r\n",
              UnicastTransport("10.0.0.2", "10.0.0.1", 6000, 65535, 20000, 20001, 0x1A2B));
}

TEST(RTSP_SessionTexts, TransportToAGroupNamesItsTimeToLive)
{
    EXPECT_EQ("Transport: RTP/AVP;multicast;destination=239.1.2.3;source=10.0.0.1;port=6000-6001;"
              "server_port=6000-6001;ttl=16\r\n",
              MulticastTransport("239.1.2.3", "10.0.0.1", 6000, 6001, 6000, 6001, 16));
}

TEST(RTSP_SessionTexts, TransportOverTcpNamesTheChannels)
{
    EXPECT_EQ("Transport: RTP/AVP/TCP;unicast;destination=10.0.0.2;source=10.0.0.1;interleaved=0-4294967295;"
              "ssrc=ffffffff\r\n",
              InterleavedTransport("10.0.0.2", "10.0.0.1", 0, 0xFFFFFFFFu, 0xFFFFFFFFu));
}

TEST(RTSP_SessionTexts, TransportHasRoomForTheLongestAddresses)
{
    const std::string longest(127, 'h');
    for (const std::string& line : {UnicastTransport(longest, longest, 65535, 65535, 65535, 65535, 0xFFFFFFFFu),
                                    MulticastTransport(longest, longest, 65535, 65535, 65535, 65535, -2147483647),
                                    InterleavedTransport(longest, longest, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu)})
        EXPECT_EQ("\r\n", line.substr(line.size() - 2));
}

struct Cookies
{
    char get[51] = "old";
    char post[51] = "old";
};

TEST(RTSP_SessionTexts, TheCookieOfAGetEndsAtABlankATabOrTheLine)
{
    for (const char* end : {" x", "\tx", "\r\n"})
    {
        Cookies cookies;
        ReadCookies((std::string("GET / HTTP/1.0\r\nx-sessioncookie: abc") + end).c_str(), cookies.get, cookies.post);
        EXPECT_STREQ("abc", cookies.get);
        EXPECT_STREQ("", cookies.post);
    }
}

TEST(RTSP_SessionTexts, TheCookieOfAPostIsItsOwn)
{
    Cookies cookies;
    ReadCookies("POST / HTTP/1.0\r\nx-sessioncookie: abc\r\n", cookies.get, cookies.post);
    EXPECT_STREQ("", cookies.get);
    EXPECT_STREQ("abc", cookies.post);
}

TEST(RTSP_SessionTexts, ACookieIsCutAtFiftyBytes)
{
    Cookies cookies;
    ReadCookies(("GET / HTTP/1.0\r\nx-sessioncookie: " + std::string(60, 'c') + "\r\n").c_str(), cookies.get,
                cookies.post);
    EXPECT_EQ(std::string(50, 'c'), cookies.get);
}

TEST(RTSP_SessionTexts, WithoutACookieBothAreCleared)
{
    Cookies cookies;
    ReadCookies("GET / HTTP/1.0\r\n", cookies.get, cookies.post);
    EXPECT_STREQ("", cookies.get);
    EXPECT_STREQ("", cookies.post);
}

} // namespace
