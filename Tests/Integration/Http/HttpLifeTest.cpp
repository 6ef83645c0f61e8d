// HttpLifeTest.cpp: starting, stopping and moving the HTTP port.
#include "HttpWorld.h"

#include "NetSocket.h"
#include "OnvifSDK.h"

namespace
{

using HttpLife = HttpWorld;
using testing::EndsWith;

TEST_F(HttpLife, StoppedServerRefusesAndMayStartAgainWithAnotherRoot)
{
    NET_SERVER_Stop();
    EXPECT_FALSE(Peer(m_port).IsOpen());
    CTempDirectory other;
    other.Write("a.txt", "other");
    EXPECT_EQ(0, NET_SERVER_Start(m_port, other.Path().c_str(), ""));
    EXPECT_THAT(Get("/a.txt"), EndsWith("\r\n\r\nother"));
}

TEST_F(HttpLife, PortCanBeMovedAndReopened)
{
    m_root.Write("a.txt", "x");
    const unsigned short oldPort = m_port;
    unsigned short port = FreePort();
    EXPECT_EQ(1, NET_SERVER_SetHttpPort(port));
    EXPECT_FALSE(Peer(oldPort).IsOpen());
    m_port = port;
    EXPECT_THAT(Get("/a.txt"), EndsWith("\r\n\r\nx"));
    EXPECT_EQ(1, NET_SERVER_SetHttpPort(port));
    EXPECT_THAT(Get("/a.txt"), EndsWith("\r\n\r\nx"));
}

TEST_F(HttpLife, PortThatIsTakenIsNotReported)
{
    m_root.Write("a.txt", "x");
    NET_SERVER_Stop();
    class Other : public CListenSocketObserver
    {
        void OnAcceptCreateSocket(int handle, unsigned short, unsigned int) override
        {
            NET_SOCKET_DestroyHNetCommunication(handle);
        }
    } other;
    ASSERT_TRUE(NET_SOCKET_StartListen(m_port, &other, 0, true));
    EXPECT_EQ(0, NET_SERVER_Start(m_port, m_root.Path().c_str(), ""));
    EXPECT_EQ(1, NET_SERVER_SetHttpPort(m_port));
    EXPECT_EQ("", Get("/a.txt"));
    NET_SOCKET_StopListen(m_port);
    EXPECT_EQ(1, NET_SERVER_SetHttpPort(m_port));
    EXPECT_THAT(Get("/a.txt"), EndsWith("\r\n\r\nx"));
}

TEST_F(HttpLife, AfterQuitStartNeedsInitial)
{
    m_root.Write("a.txt", "x");
    NET_SERVER_Stop();
    EXPECT_EQ(1, NET_SERVER_Quit());
    EXPECT_EQ(0, NET_SERVER_Start(m_port, m_root.Path().c_str(), ""));
    EXPECT_FALSE(Peer(m_port).IsOpen());
    EXPECT_EQ(1, NET_SERVER_Initial(2, 0, 0, &m_device, nullptr, "", "", 1, NETNS::DEV_TYPE_DEFAULT));
    EXPECT_EQ(0, NET_SERVER_Start(m_port, m_root.Path().c_str(), ""));
    EXPECT_THAT(Get("/a.txt"), EndsWith("\r\n\r\nx"));
}

TEST_F(HttpLife, WithoutTheApiFilesAreServedAndCommandsAreNot)
{
    m_root.Write("a.txt", "x");
    NET_SERVER_Stop();
    NET_SERVER_Initial(2, 0, 0, &m_device, nullptr, "", "", 0, NETNS::DEV_TYPE_DEFAULT);
    NET_SERVER_Start(m_port, m_root.Path().c_str(), "");
    EXPECT_EQ(NOT_FOUND, Get("/GetDeviceInfo"));
    EXPECT_THAT(Get("/a.txt"), EndsWith("\r\n\r\nx"));
    EXPECT_EQ(0, NET_SERVER_SetMotionStatus(0, true));
}

TEST_F(HttpLife, VersionTextsAreCopiedAndStamped)
{
    m_root.Write("a.txt", "script.js?v0.0");
    std::string oldVersion = "v0.0";
    std::string newVersion = "v2.7";
    NET_SERVER_Initial(2, 0, 0, &m_device, nullptr, oldVersion.c_str(), newVersion.c_str(), 1, NETNS::DEV_TYPE_DEFAULT);
    oldVersion.assign("xxxx");
    newVersion.assign("yyyy");
    EXPECT_THAT(Get("/a.txt"), EndsWith("\r\n\r\nscript.js?v2.7"));
}

TEST_F(HttpLife, QuitLeavesNothingThatAnswers)
{
    Peer waiting(m_port); // says nothing, and is read by a worker
    NET_SERVER_Quit();
    EXPECT_TRUE(waiting.WaitClosed());
    EXPECT_FALSE(Peer(m_port).IsOpen());
}

// No search is in service: nothing is ever found.
TEST_F(HttpLife, SearchQuitEndsTheSocketServiceForAll)
{
    bool called = false;
    const auto found = [](char* /*text*/, int /*length*/, const char* /*source*/, void* user)
    {
        *static_cast<bool*>(user) = true;
    };
    EXPECT_EQ(1, ONVIF_SEARCH_Initial(found, &called, 0));
    EXPECT_EQ(1, ONVIF_SEARCH_StartManual());
    EXPECT_FALSE(called);
    EXPECT_EQ(1, ONVIF_SEARCH_Set_Config(nullptr, nullptr));
    EXPECT_EQ(NOT_FOUND, Get("/unknown"));
    EXPECT_EQ(1, ONVIF_SEARCH_Quit());
    EXPECT_FALSE(Peer(m_port).IsOpen());
    EXPECT_FALSE(called);
}

TEST(NetServerSdk, ConstantResults)
{
    EXPECT_EQ(0, NET_SERVER_GetVersion());
    EXPECT_EQ(0, NET_SERVER_GetOnvifVersion());
    EXPECT_EQ(0, NET_SERVER_GetAPIVersion());
    EXPECT_EQ(0, NET_SERVER_SetMotionStatus(0, true));
    EXPECT_EQ(0, NET_SERVER_SetSensorStatus(0, true));
    EXPECT_EQ(0, NET_SERVER_SetVideoLossStatus(0, true));
}

TEST(NetServerSdk, PolicyIsRemembered)
{
    EXPECT_EQ(0u, NET_SERVER_GetPolicy());
    NET_SERVER_SetPolicy(NET_POLICY_STANDARD_RTSP);
    EXPECT_EQ(1u, NET_SERVER_GetPolicy());
    NET_SERVER_SetPolicy(0x80000000u);
    EXPECT_EQ(0x80000000u, NET_SERVER_GetPolicy());
    NET_SERVER_SetPolicy(0);
    EXPECT_EQ(0u, NET_SERVER_GetPolicy());
}

} // namespace
