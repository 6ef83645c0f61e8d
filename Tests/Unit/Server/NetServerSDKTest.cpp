// NetServerSDKTest.cpp: the life cycle calls of a host, in a network without interfaces and on a socket service that
// can be down.
#include "NetServerSDK.h"

#include "FakeDevice.h"
#include "FakeSocketService.h"
#include "FakeStreamCtrl.h"
#include "HttpProtocolAnalyse.h"
#include "MyEvent.h"
#include "NetServer.h"
#include "NetServerDataProc.h"
#include "NetworkNamespace.h"
#include "PFHelper.h"
#include "RTSP_Manager.h"
#include "ShareSDK.h"

#include <atomic>
#include <chrono>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using testing::ElementsAre;
using testing::StartsWith;

class NetServerSDK : public testing::Test
{
protected:
    void SetUp() override
    {
        SHARESDK_SetLogLevel(SHARESDK_LOG_NONE);
        if (!CNetworkNamespace::Enter())
        {
            GTEST_SKIP() << "the kernel does not allow a network namespace here";
        }
    }
    void TearDown() override { NET_SERVER_Stop(); }

    int Initial() { return NET_SERVER_Initial(2, 1, 1, &m_device, nullptr, "", "", 1, NETNS::DEV_TYPE_DEFAULT); }
    /// The answer to a command, as a worker would have it.
    static std::string Answer(const std::string& command)
    {
        const CHttpProtocolAnalyse request("GET /" + command + " HTTP/1.1\r\n\r\n");
        CHttpProtocolAnalyse response;
        CNetServerDataProc::Instance().AnalysisRequest("10.0.0.1", request, response);
        int length = 0;
        const char* bytes = response.GetBuf(length);
        return {bytes, static_cast<std::size_t>(length)};
    }

    CFakeDevice m_device;
    FakeStreamCtrl m_stream;
    FakeSocketService m_sockets;
};

TEST_F(NetServerSDK, InitialTellsThatTheSocketServiceIsDownAndDoesNothingMore)
{
    m_sockets.initialSucceeds = false;
    EXPECT_EQ(0, Initial());
    EXPECT_THAT(m_sockets.TakeCalls(), ElementsAre("initial"));
    EXPECT_THAT(Answer("GetDeviceInfo"), StartsWith("HTTP/1.1 404 ")); // no commands
    NET_SERVER_Start(8080, "", "");
    EXPECT_THAT(m_sockets.TakeCalls(), ElementsAre("listen 8080 0 1")); // and no identity that could be described

    m_sockets.initialSucceeds = true;
    EXPECT_EQ(1, Initial());
    EXPECT_THAT(Answer("GetDeviceInfo"), StartsWith("HTTP/1.1 401 ")); // a command, which asks for a login
}

TEST_F(NetServerSDK, PagesAreThereBeforeTheDescriptionThatNamesThem)
{
    EXPECT_EQ(1, Initial());
    EXPECT_EQ(0, NET_SERVER_Start(8080, "", ""));
    EXPECT_THAT(m_sockets.TakeCalls(), ElementsAre("initial", "listen 8080 0 1", "stop 33899", "listen 33899 0 1"));
    EXPECT_EQ(0, NET_SERVER_Stop());
    EXPECT_THAT(m_sockets.TakeCalls(), ElementsAre("stop 33899", "stop 8080"));
    EXPECT_EQ(1, NET_SERVER_Quit());
    EXPECT_THAT(m_sockets.TakeCalls(), ElementsAre("quit"));
}

TEST_F(NetServerSDK, PortsArePassedAsTheyAre)
{
    NET_SERVER_SetPolicy(NET_POLICY_NO_ANNOUNCE);
    EXPECT_EQ(1, Initial());
    EXPECT_EQ(0, NET_SERVER_Start(65535, "", ""));
    EXPECT_EQ(1, NET_SERVER_SetHttpPort(1));
    EXPECT_EQ(1, NET_SERVER_SetHttpPort(1));
    EXPECT_EQ(0, NET_SERVER_Stop());
    NET_SERVER_SetPolicy(0);
    EXPECT_THAT(m_sockets.TakeCalls(), ElementsAre("initial", "listen 65535 0 1", "stop 65535", "listen 1 0 1",
                                                   "stop 1", "listen 1 0 1", "stop 1"));
}

/// A device that takes its time.
class CSlowDevice : public CFakeDevice
{
public:
    NETNS::DEV_RET GetDevInfo(const char* verify, NETNS::DEV_DEVICE_INFO* info) override
    {
        isInside.SetEvent();
        mayEnd.WaitEvent(CMyEvent::WITHOUT_LIMIT);
        CPFHelper::Sleep(50);
        const NETNS::DEV_RET result = CFakeDevice::GetDevInfo(verify, info);
        hasEnded = true;
        return result;
    }

    CMyEvent isInside{true};
    CMyEvent mayEnd{true};
    std::atomic<bool> hasEnded{false};
};

// Behind it the host may end its device.
TEST_F(NetServerSDK, QuitLetsRequestsThatAreInsideTheDeviceComeOut)
{
    CSlowDevice device;
    NET_SERVER_SetPolicy(NET_POLICY_NO_ANNOUNCE);
    NET_SERVER_Initial(1, 0, 0, &device, nullptr, "", "", 1, NETNS::DEV_TYPE_DEFAULT);
    NET_SERVER_SetPolicy(0);
    const int handle =
        m_sockets.Connect({{0, "GET /GetDeviceInfo HTTP/1.1\r\nAuthorization: Basic YWRtaW46YWRtaW4=\r\n\r\n"}});
    CNetServer::Instance().OnAcceptCreateSocket(handle, 80, 0);
    device.isInside.WaitEvent(CMyEvent::WITHOUT_LIMIT);
    EXPECT_FALSE(CNetServer::AwaitRequests(1)); // not for ever
    device.mayEnd.SetEvent();
    EXPECT_EQ(1, NET_SERVER_Quit());
    EXPECT_TRUE(device.hasEnded);
    EXPECT_TRUE(m_sockets.AwaitDestroyed(handle));
}

// A host that ends the library from inside of a request does not wait for itself.
TEST_F(NetServerSDK, QuitInsideARequestDoesNotWait)
{
    class CQuittingDevice : public CFakeDevice
    {
        NETNS::DEV_RET GetDevInfo(const char*, NETNS::DEV_DEVICE_INFO*) override
        {
            NET_SERVER_Quit();
            return NETNS::DEV_RET_FAILED;
        }
    } device;
    SHARESDK_SetLogLevel(SHARESDK_LOG_NONE);
    NET_SERVER_SetPolicy(NET_POLICY_NO_ANNOUNCE);
    NET_SERVER_Initial(1, 0, 0, &device, nullptr, "", "", 1, NETNS::DEV_TYPE_DEFAULT);
    NET_SERVER_SetPolicy(0);
    const int handle =
        m_sockets.Connect({{0, "GET /GetDeviceInfo HTTP/1.1\r\nAuthorization: Basic YWRtaW46YWRtaW4=\r\n\r\n"}});
    const auto begin = std::chrono::steady_clock::now();
    CNetServer::Instance().OnAcceptCreateSocket(handle, 80, 0);
    EXPECT_TRUE(m_sockets.AwaitDestroyed(handle));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(4));
    NET_SERVER_Quit();
}

TEST_F(NetServerSDK, RtspStartsOnlyWhenTheSocketServiceIsUp)
{
    m_sockets.initialSucceeds = false;
    EXPECT_EQ(0, NET_SERVER_RTSPStart(0, &m_stream, &m_device));
    EXPECT_EQ(0, CRTSP_Manager::Instance().GetPort());
    m_sockets.initialSucceeds = true;
    EXPECT_EQ(0, NET_SERVER_RTSPStart(0, &m_stream, &m_device));
    EXPECT_NE(0, CRTSP_Manager::Instance().GetPort());
    EXPECT_EQ(0, NET_SERVER_RTSPStop());
    EXPECT_EQ(0, CRTSP_Manager::Instance().GetPort());
    EXPECT_THAT(m_sockets.TakeCalls(), ElementsAre("initial", "initial"));
}

} // namespace
