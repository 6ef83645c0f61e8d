// How long the description port waits for a request, on a replaced clock.
#include "FakeSocketService.h"
#include "NetSocket.h"
#include "NetworkNamespace.h"
#include "ShareSDK.h"
#include "TempDirectory.h"
#include "UpnpServer.h"

#include <gmock/gmock.h>
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

TEST_F(UpnpPort, CommandIsLoggedAndEnded)
{
    const CTempDirectory directory;
    SHARESDK_SetLogLevel(SHARESDK_LOG_ALL);
    ASSERT_TRUE(SHARESDK_LogToFile(directory.Path("log").c_str(), 1 << 20, 1));
    EXPECT_NE("", Serve({{0, "GET /SCPD.xml HTTP/1.1\r\n\r\n"}}));
    EXPECT_THAT(directory.Read("log"), testing::Not(testing::HasSubstr("ASSERT")));
    EXPECT_EQ("", Serve({{0, "GET /command HTTP/1.1\r\n\r\n"}}));
    EXPECT_THAT(directory.Read("log"), testing::HasSubstr("ASSERT"));
    EXPECT_TRUE(m_sockets.IsDestroyed(m_handle));
    SHARESDK_LogToConsole();
}

TEST_F(UpnpPort, AnsweredPeerIsEnded)
{
    EXPECT_NE("", Serve({{0, "GET /SCPD.xml HTTP/1.1\r\n\r\n"}}));
    EXPECT_TRUE(m_sockets.IsDestroyed(m_handle));
    EXPECT_EQ("", Serve({{0, "GET /command HTTP/1.1\r\n\r\n"}}));
    EXPECT_TRUE(m_sockets.IsDestroyed(m_handle));
}

/// The device in a network of its own, so that what it opens and sends reaches nobody.
class UpnpPortLife : public UpnpPort
{
protected:
    void SetUp() override
    {
        UpnpPort::SetUp();
        if (!CNetworkNamespace::Enter())
        {
            GTEST_SKIP() << "the kernel does not allow a network namespace here";
        }
    }
};

TEST_F(UpnpPortLife, StartOpensItAnewAndStopClosesIt)
{
    CUpnpServer::Instance().InitUpnp("MOKA", 33899, NETNS::DEV_TYPE_DEFAULT);
    m_sockets.TakeCalls();
    m_sockets.listenSucceeds = false; // the host is not told
    EXPECT_EQ(1, CUpnpServer::Instance().StartUpnp(80));
    EXPECT_THAT(m_sockets.TakeCalls(), testing::ElementsAre("stop 33899", "listen 33899 0 1"));
    CUpnpServer::Instance().StopUpnp();
    EXPECT_THAT(m_sockets.TakeCalls(), testing::ElementsAre("stop 33899"));
}

// A mistake of the host's, which is logged; there is no port to stop then.
TEST_F(UpnpPortLife, PortOfNoughtIsLoggedAndNotStopped)
{
    const CTempDirectory directory;
    SHARESDK_SetLogLevel(SHARESDK_LOG_ALL);
    ASSERT_TRUE(SHARESDK_LogToFile(directory.Path("log").c_str(), 1 << 20, 1));
    EXPECT_EQ(1, CUpnpServer::Instance().InitUpnp("MOKA", 0, NETNS::DEV_TYPE_DEFAULT));
    EXPECT_THAT(directory.Read("log"), testing::HasSubstr("ASSERT"));
    m_sockets.TakeCalls();
    CUpnpServer::Instance().StopUpnp();
    EXPECT_TRUE(m_sockets.TakeCalls().empty());
    SHARESDK_LogToConsole();
}

} // namespace
