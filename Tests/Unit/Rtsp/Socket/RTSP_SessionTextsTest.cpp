#include "RTSP_SessionTexts.h"

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

TEST(RTSP_SessionTexts, TheLogShowsNoCredentials)
{
    EXPECT_EQ("PLAY rtsp://***@host/a RTSP/1.0\r\nauthorization: ***",
              TextForLog("PLAY rtsp://admin:p@ss@host/a RTSP/1.0\r\nAuthorization: Basic YWRtaW46cA==\r\n\r\n"));
    EXPECT_EQ("PLAY rtsp://host/a@b RTSP/1.0\r\n", TextForLog("PLAY rtsp://host/a@b RTSP/1.0\r\n"));
    EXPECT_EQ("rtsp://", TextForLog(("rtsp://admin:" + std::string(300, 'p') + "@host/").c_str()));
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
