// How long the ports for notifications wait for one, on a replaced clock.
#include "FakeSocketService.h"
#include "NetSocket.h"
#include "NotifyObserver.h"
#include "OnvifEventCtrol.h"
#include "ShareSDK.h"

#include <memory>

#include <gtest/gtest.h>

namespace
{

using MakeListener = std::unique_ptr<CListenSocketObserver> (*)();

struct Engine
{
    const char* name;
    MakeListener make;
};

/// Both engines read alike.
class OnvifNotificationPort : public testing::TestWithParam<Engine>
{
protected:
    void SetUp() override { SHARESDK_SetLogLevel(SHARESDK_LOG_NONE); }

    std::string Serve(std::vector<Arrival> arrivals)
    {
        m_handle = m_sockets.Connect(std::move(arrivals));
        m_listener->OnAcceptCreateSocket(m_handle, 6699, 0);
        return m_sockets.Sent(m_handle);
    }

    FakeSocketService m_sockets;
    const std::unique_ptr<CListenSocketObserver> m_listener = GetParam().make();
    int m_handle = 0;
};

const std::string REQUEST = "POST / HTTP/1.1\r\nContent-Length: 1\r\n\r\nx";

TEST_P(OnvifNotificationPort, SilentPeerIsClosedAfterNearlyThreeSeconds)
{
    EXPECT_EQ("", Serve({}));
    EXPECT_EQ(2900u, m_sockets.LifetimeMs(m_handle));
    EXPECT_TRUE(m_sockets.IsDestroyed(m_handle));
}

TEST_P(OnvifNotificationPort, NotificationJustBeforeTheEndIsAnswered)
{
    EXPECT_NE("", Serve({{2899, REQUEST}}));
    EXPECT_EQ("", Serve({{2901, REQUEST}}));
}

TEST_P(OnvifNotificationPort, PeerThatDribblesIsNotWaitedForLonger)
{
    std::vector<Arrival> arrivals;
    for (unsigned int i = 0; i < 1000; ++i)
    {
        arrivals.push_back({i * 50, "x"});
    }
    EXPECT_EQ("", Serve(arrivals));
    EXPECT_EQ(2900u, m_sockets.LifetimeMs(m_handle));
}

// What one read does not take the scripted service loses.
TEST_P(OnvifNotificationPort, ReadTakes1023Bytes)
{
    const std::string head = "POST / HTTP/1.1\r\nContent-Length: 900\r\n\r\n";
    const std::string padding = "X: " + std::string(1023 - head.size() - 5 - 900, 'x') + "\r\n";
    const std::string whole = "POST / HTTP/1.1\r\n" + padding + "Content-Length: 900\r\n\r\n" + std::string(900, 'b');
    ASSERT_EQ(1023u, whole.size());
    EXPECT_NE("", Serve({{0, whole}}));
    EXPECT_EQ("",
              Serve({{0, "POST / HTTP/1.1\r\nX" + padding + "Content-Length: 900\r\n\r\n" + std::string(900, 'b')}}));
}

TEST_P(OnvifNotificationPort, EmptyNotificationIsLeftOpen)
{
    EXPECT_EQ("", Serve({{0, "POST / HTTP/1.1\r\nContent-Length: 0\r\n\r\n"}}));
    EXPECT_FALSE(m_sockets.IsDestroyed(m_handle));
}

TEST_P(OnvifNotificationPort, PeerThatEndsIsClosedAtOnce)
{
    EXPECT_EQ("", Serve({{0, "POST / HTTP/1.1\r\n"}, {10, "", true}}));
    EXPECT_EQ(10u, m_sockets.LifetimeMs(m_handle));
}

const Engine ENGINES[] = {
    {"First",
     []() -> std::unique_ptr<CListenSocketObserver>
     {
         return std::make_unique<COnvifEventCtrol>();
     }},
    {"Second",
     []() -> std::unique_ptr<CListenSocketObserver>
     {
         return std::make_unique<CNotifyObserver>();
     }},
};
INSTANTIATE_TEST_SUITE_P(Engines, OnvifNotificationPort, testing::ValuesIn(ENGINES),
                         [](const auto& one) { return std::string(one.param.name); });

} // namespace
