// How long the description port waits for a request, on a replaced clock.
#include "FakeSocketService.h"
#include "NetSocket.h"
#include "ShareSDK.h"
#include "UpnpServer.h"

#include <gtest/gtest.h>

namespace
{

class UpnpPort : public testing::Test
{
protected:
    void SetUp() override { SHARESDK_SetLogLevel(SHARESDK_LOG_NONE); }

    /// What a peer with these arrivals gets.
    std::string Serve(std::vector<Arrival> arrivals)
    {
        m_handle = m_sockets.Connect(std::move(arrivals));
        const unsigned int begin = CPFHelper::GetTickCount();
        CUpnpServer::Instance().OnAcceptCreateSocket(m_handle, 33899, 0);
        m_lastedMs = CPFHelper::GetTickCount() - begin;
        return m_sockets.Sent(m_handle);
    }

    FakeSocketService m_sockets;
    int m_handle = 0;
    unsigned int m_lastedMs = 0;
};

TEST_F(UpnpPort, SilentPeerIsWaitedForAndLeftOpen)
{
    EXPECT_EQ("", Serve({}));
    EXPECT_EQ(3900u, m_lastedMs);
    EXPECT_FALSE(m_sockets.IsDestroyed(m_handle));
}

TEST_F(UpnpPort, RequestJustBeforeTheEndIsAnswered)
{
    EXPECT_NE("", Serve({{3899, "GET /SCPD.xml HTTP/1.1\r\n\r\n"}}));
    EXPECT_EQ("", Serve({{3901, "GET /SCPD.xml HTTP/1.1\r\n\r\n"}}));
}

// What one read does not take the scripted service loses.
TEST_F(UpnpPort, ReadTakes1023Bytes)
{
    const std::string request = "GET /SCPD.xml HTTP/1.1\r\nX: ";
    const std::string end = "\r\n\r\n";
    EXPECT_NE("", Serve({{0, request + std::string(1023 - request.size() - end.size(), 'x') + end}}));
    EXPECT_EQ("", Serve({{0, request + std::string(1024 - request.size() - end.size(), 'x') + end}})); // one is lost
}

TEST_F(UpnpPort, AnsweredPeerIsEnded)
{
    EXPECT_NE("", Serve({{0, "GET /SCPD.xml HTTP/1.1\r\n\r\n"}}));
    EXPECT_TRUE(m_sockets.IsDestroyed(m_handle));
    EXPECT_EQ("", Serve({{0, "GET /command HTTP/1.1\r\n\r\n"}}));
    EXPECT_TRUE(m_sockets.IsDestroyed(m_handle));
}

} // namespace
