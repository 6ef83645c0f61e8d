// HttpServiceTest.cpp: what clients get for well-formed requests, byte for byte.
#include "HttpWorld.h"

#include <thread>
#include <vector>

namespace
{

using HttpService = HttpWorld;
using testing::HasSubstr;
using testing::StartsWith;

TEST_F(HttpService, FileOfTheWebRoot)
{
    m_root.Write("page.html", "<p>hello</p>\n");
    EXPECT_EQ("HTTP/1.1 200 OK\r\n"
              "Content-type: text/html\r\n"
              "Content-Length: 13\r\n"
              "Connection: close\r\n"
              "AuthInfo: \r\n"
              "\r\n"
              "<p>hello</p>\n",
              Ask("GET /page.html HTTP/1.1\r\nHost: camera\r\n\r\n"));
}

TEST_F(HttpService, RootIsTheIndexPage)
{
    m_root.Write("index.htm", "index");
    EXPECT_THAT(Get("/"), testing::EndsWith("\r\n\r\nindex"));
    EXPECT_THAT(Get("/?from=link"), testing::EndsWith("\r\n\r\nindex"));
}

// The method word is never looked at.
TEST_F(HttpService, AnyMethodIsServed)
{
    m_root.Write("a.txt", "x");
    for (const char* method : {"GET", "POST", "HEAD", "BREW", ""})
    {
        EXPECT_EQ("HTTP/1.1 200 OK\r\n"
                  "Content-type: text/plain\r\n"
                  "Content-Length: 1\r\n"
                  "Connection: close\r\n"
                  "AuthInfo: \r\n"
                  "\r\n"
                  "x",
                  Ask(std::string(method) + " /a.txt HTTP/1.0\r\n\r\n"))
            << method;
    }
}

TEST_F(HttpService, MissingFileAndUnknownCommand)
{
    EXPECT_EQ(NOT_FOUND, Get("/missing.html"));
    EXPECT_EQ(NOT_FOUND, Get("/unknown"));
    EXPECT_EQ(NOT_FOUND, Ask("GET / HTTP/1.1\r\n\r\n"));
}

TEST_F(HttpService, FileOfTenMegabytes)
{
    const std::string content(10 * 1024 * 1024, 'x');
    m_root.Write("big.txt", content);
    const std::string answer = Get("/big.txt");
    EXPECT_THAT(answer.substr(0, 200), StartsWith("HTTP/1.1 200 OK\r\nContent-type: text/plain\r\n"
                                                  "Content-Length: 10485760\r\nConnection: close\r\n"));
    EXPECT_TRUE(answer.size() > content.size() &&
                answer.compare(answer.size() - content.size(), content.size(), content) == 0)
        << answer.size();
}

TEST_F(HttpService, DeviceInformation)
{
    const std::string answer = Get("/GetDeviceInfo");
    EXPECT_THAT(answer, StartsWith("HTTP/1.1 200 OK\r\n"
                                   "Content-type: text/html\r\n"
                                   "Content-Length: "));
    EXPECT_THAT(answer,
                HasSubstr("\r\nConnection: close\r\nAuthInfo: \r\n\r\n<?xml version=\"1.0\" encoding=\"UTF-8\"?>"));
    EXPECT_THAT(answer, HasSubstr("<model type=\"string\"><![CDATA[M1]]></model>"));
    EXPECT_THAT(answer, HasSubstr("<![CDATA[2016-1-2]]>"));
    EXPECT_EQ("<?xml version=\"1.0\" encoding=\"UTF-8\"?><userinfo>\t<username>admin</username>"
              "\t<password>admin</password>\t<ip>127.0.0.1</ip></userinfo>",
              m_device.LastVerify());
}

TEST_F(HttpService, WrongPasswordIsChallenged)
{
    EXPECT_EQ("HTTP/1.1 401 Unauthorized\r\n"
              "Content-type: text/html\r\n"
              "Content-Length: 0\r\n"
              "Connection: close\r\n"
              "AuthInfo: \r\n"
              "WWW-Authenticate: Basic realm=\"Web Service\"\r\n"
              "\r\n",
              Ask("GET /GetDeviceInfo HTTP/1.1\r\nAuthorization: Basic YWRtaW46d3Jvbmc=\r\n\r\n"));
}

TEST_F(HttpService, KnownWordWithoutAnOperation)
{
    EXPECT_THAT(Get("/GetProfileInfo"), StartsWith("HTTP/1.1 400 Bad Request\r\nContent-type: text/html\r\n"));
}

TEST_F(HttpService, BodyThatComesLaterThanItsHeader)
{
    m_device.httpAnswer = "<ok/>";
    Peer peer(m_port);
    peer.Send("POST /device HTTP/1.1\r\nContent-Length: 12\r\n\r\n");
    peer.Send("<ORBIT-700/>");
    EXPECT_EQ("HTTP/1.1 200 OK\r\n"
              "Content-type: text/xml\r\n"
              "Content-Length: 5\r\n"
              "Connection: close\r\n"
              "AuthInfo: \r\n"
              "\r\n"
              "<ok/>",
              peer.ReadAll());
    EXPECT_EQ("POST /device HTTP/1.1\r\nContent-Length: 12\r\n\r\n<ORBIT-700/>", m_device.lastHttpMessage);
}

TEST_F(HttpService, RequestByteByByte)
{
    m_root.Write("a.txt", "x");
    Peer peer(m_port);
    for (const char byte : std::string("GET /a.txt HTTP/1.1\r\n\r\n"))
    {
        peer.Send(std::string(1, byte));
    }
    EXPECT_THAT(peer.ReadAll(), testing::EndsWith("\r\n\r\nx"));
}

TEST_F(HttpService, ClientThatHalfClosesIsAnswered)
{
    m_root.Write("a.txt", "x");
    Peer peer(m_port);
    peer.Send("GET /a.txt HTTP/1.1\r\n\r\n");
    peer.ShutdownSend();
    EXPECT_THAT(peer.ReadAll(), testing::EndsWith("\r\n\r\nx"));
}

// Everything behind the first message is dropped, and the answer is not lost to a reset.
TEST_F(HttpService, PipelinedRequestsGetOneAnswer)
{
    m_root.Write("a.txt", "x");
    Peer peer(m_port);
    std::string requests;
    for (int i = 0; i < 20; ++i)
    {
        requests += "GET /a.txt HTTP/1.1\r\n\r\n";
    }
    peer.Send(requests);
    EXPECT_EQ("HTTP/1.1 200 OK\r\n"
              "Content-type: text/plain\r\n"
              "Content-Length: 1\r\n"
              "Connection: close\r\n"
              "AuthInfo: \r\n"
              "\r\n"
              "x",
              peer.ReadAll());
}

TEST_F(HttpService, SixtyFourClientsAtOnceAreAllServed)
{
    m_root.Write("a.txt", "x");
    std::vector<Peer> peers;
    for (int i = 0; i < 64; ++i)
    {
        peers.emplace_back(m_port);
    }
    for (Peer& peer : peers)
    {
        peer.Send("GET /a.txt HTTP/1.1\r\n\r\n");
    }
    for (Peer& peer : peers)
    {
        EXPECT_THAT(peer.ReadAll(), testing::EndsWith("\r\n\r\nx"));
    }
}

TEST_F(HttpService, ThousandsOfRequestsOneBehindTheOther)
{
    m_root.Write("a.txt", "x");
    for (int i = 0; i < 2000; ++i)
    {
        ASSERT_THAT(Get("/a.txt"), testing::EndsWith("\r\n\r\nx"));
    }
}

} // namespace
