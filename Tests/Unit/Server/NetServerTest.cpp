// NetServerTest.cpp: the road of one connection, against a socket service that can be scripted.
#include "NetServer.h"

#include "FakeDevice.h"
#include "FakeSocketService.h"
#include "HttpExchange.h"
#include "NetServerConfig.h"
#include "NetServerDataProc.h"
#include "ShareSDK.h"
#include "TempDirectory.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace
{

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

const char NOT_FOUND[] = "HTTP/1.1 404 Not Found\r\n"
                         "Content-type: text/html\r\n"
                         "Content-Length: 0\r\n"
                         "Connection: close\r\n"
                         "AuthInfo: \r\n"
                         "\r\n";
const char REQUEST[] = "GET /missing HTTP/1.1\r\n\r\n";

std::ptrdiff_t CountThreads()
{
    std::filesystem::directory_iterator threads("/proc/self/task");
    return std::distance(begin(threads), end(threads));
}

/// Whether this process comes to have so many threads; one that has ended may be seen for a moment longer.
bool ComesToThreads(std::ptrdiff_t count)
{
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (CountThreads() != count && std::chrono::steady_clock::now() < limit)
    {
    }
    return CountThreads() == count;
}

/// As many threads as there are before the workers. A sanitizer brings a thread of its own with the first one.
std::ptrdiff_t CountOthers()
{
    std::filesystem::path ended("/proc/self/task");
    std::thread([&] { ended /= std::to_string(gettid()); }).join();
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (std::filesystem::exists(ended) && std::chrono::steady_clock::now() < limit)
    {
    }
    return CountThreads();
}

/// For a process of its own: the workers are there once.
bool WorkersAreTwoThenFourAndGoWithQuit()
{
    FakeSocketService sockets;
    const std::ptrdiff_t others = CountOthers();
    CNetServer& server = CNetServer::Instance();
    const bool two = ComesToThreads(others + 2);
    for (int i = 0; i < 5; ++i)
    {
        server.OnAcceptCreateSocket(sockets.ConnectHeld({{0, REQUEST}}), 80, 0);
    }
    const bool four = ComesToThreads(others + 4) && sockets.AwaitHeld(4);
    sockets.Release();
    const bool none = server.Quit() == 1 && ComesToThreads(others);
    return two && four && none;
}

class NetServer : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(SHARESDK_LogToFile(m_directory.Path("log").c_str(), 1000000, 1));
        CNetServerDataProc::Instance().Initial(1, 0, 0, &m_device, "", "", 1);
        CNetServerDataProc::Instance().Start(m_directory.Path().c_str());
    }
    void TearDown() override
    {
        m_sockets.Release();
        CNetServer::Instance().Stop();
        SHARESDK_LogToConsole();
    }

    static void Accept(int handle) { CNetServer::Instance().OnAcceptCreateSocket(handle, 80, 0); }
    /// What the peer of a connection with these arrivals gets, once the connection has ended.
    std::string Serve(std::vector<Arrival> arrivals)
    {
        m_handle = m_sockets.Connect(std::move(arrivals));
        Accept(m_handle);
        EXPECT_TRUE(m_sockets.AwaitDestroyed(m_handle));
        return m_sockets.Sent(m_handle);
    }
    std::string Log() const { return m_directory.Read("log"); }

    CTempDirectory m_directory;
    CFakeDevice m_device;
    FakeSocketService m_sockets;
    int m_handle = 0;
};

TEST_F(NetServer, ListensOnAnyAddressWithReuse)
{
    EXPECT_EQ(0, CNetServer::Instance().start(8080, "", ""));
    CNetServer::Instance().Stop();
    CNetServer::Instance().Stop(); // no port is open any more
    EXPECT_THAT(m_sockets.TakeCalls(), ElementsAre("listen 8080 0 1", "stop 8080"));
}

TEST_F(NetServer, StartClosesTheOldPortFirst)
{
    CNetServer::Instance().start(8080, "", "");
    CNetServer::Instance().start(8081, "", "");
    EXPECT_THAT(m_sockets.TakeCalls(), ElementsAre("listen 8080 0 1", "stop 8080", "listen 8081 0 1"));
}

TEST_F(NetServer, StartWithPortZeroIsLoggedAndGoesOn)
{
    EXPECT_EQ(0, CNetServer::Instance().start(0, "", ""));
    EXPECT_THAT(Log(), HasSubstr(" error NetServer.cpp:"));
    EXPECT_THAT(Log(), HasSubstr(" ASSERT\n"));
    CNetServer::Instance().Stop();
    EXPECT_THAT(m_sockets.TakeCalls(), ElementsAre("listen 0 0 1", "stop 40000"));
}

TEST_F(NetServer, PortThatCannotBeOpenedIsNotReported)
{
    m_sockets.listenSucceeds = false;
    EXPECT_EQ(0, CNetServer::Instance().start(8080, "", ""));
    EXPECT_EQ(1, CNetServer::Instance().SetHttpPort(8081));
    CNetServer::Instance().Stop();
    EXPECT_THAT(m_sockets.TakeCalls(), ElementsAre("listen 8080 0 1", "listen 8081 0 1"));
}

// What a later SetHttpPort then serves is that of the last start.
TEST_F(NetServer, RootAndSettingsFileAreTakenAlsoWhenThePortCannotBeOpened)
{
    CTempDirectory root;
    root.Write("a.txt", "x");
    m_sockets.listenSucceeds = false;
    CNetServer::Instance().start(8080, root.Path().c_str(), root.Path("server.xml").c_str());
    EXPECT_THAT(Serve({{0, "GET /a.txt HTTP/1.1\r\n\r\n"}}), EndsWith("\r\n\r\nx"));
    EXPECT_TRUE(CNetServerCfg::Instance().QlxApiSetAlarmServerConfig("10.0.0.5", 7000));
    EXPECT_THAT(root.Read("server.xml"), HasSubstr("10.0.0.5"));
}

TEST_F(NetServer, SetHttpPortToThePortInUseClosesAndReopensIt)
{
    CNetServer::Instance().start(8080, "", "");
    EXPECT_EQ(1, CNetServer::Instance().SetHttpPort(8080));
    EXPECT_THAT(m_sockets.TakeCalls(), ElementsAre("listen 8080 0 1", "stop 8080", "listen 8080 0 1"));
}

TEST_F(NetServer, InitialDoesNothing)
{
    EXPECT_EQ(1, CNetServer::Instance().Initial(4, nullptr, 1));
    EXPECT_THAT(m_sockets.TakeCalls(), IsEmpty());
}

TEST_F(NetServer, AnswersAndClosesWithoutWaitingWhenTheRequestIsThere)
{
    EXPECT_EQ(NOT_FOUND, Serve({{0, REQUEST}}));
    EXPECT_EQ(1, m_sockets.Reads(m_handle));
    EXPECT_EQ(0u, m_sockets.LifetimeMs(m_handle));
}

TEST_F(NetServer, ReadsARequestOfManySmallWrites)
{
    std::vector<Arrival> arrivals;
    for (const char* byte = REQUEST; *byte != 0; ++byte)
    {
        arrivals.push_back({static_cast<unsigned int>(99 * arrivals.size()), std::string(1, *byte)});
    }
    EXPECT_EQ(NOT_FOUND, Serve(arrivals));
}

TEST_F(NetServer, ReadsARequestThatIsLongerThanOneRead)
{
    const std::string request = "GET /missing HTTP/1.1\r\nX: " + std::string(4095 - 26 - 4, 'x');
    ASSERT_EQ(4091u, request.size());
    EXPECT_EQ(NOT_FOUND, Serve({{0, request + "\r\n\r\n"}}));
    EXPECT_EQ(NOT_FOUND, Serve({{0, request + "1234"}, {0, "5\r\n\r\n"}}));
}

// What one read does not take the scripted service loses.
TEST_F(NetServer, ReadTakes4095Bytes)
{
    const std::string request = "GET /missing HTTP/1.1\r\nX: ";
    const std::string end = "\r\n\r\n";
    EXPECT_EQ(NOT_FOUND, Serve({{0, request + std::string(4095 - request.size() - end.size(), 'x') + end}}));
    EXPECT_EQ("", Serve({{0, request + std::string(4096 - request.size() - end.size(), 'x') + end}})); // one is lost
}

TEST_F(NetServer, SilentPeerIsDroppedAfterThreePointNineSeconds)
{
    EXPECT_EQ("", Serve({}));
    EXPECT_EQ(3900u, m_sockets.LifetimeMs(m_handle));
}

TEST_F(NetServer, BytesJustBeforeTheEndOfTheBudgetCount)
{
    EXPECT_EQ(NOT_FOUND, Serve({{3899, REQUEST}}));
    EXPECT_EQ(NOT_FOUND, Serve({{3900, REQUEST}}));
    EXPECT_EQ("", Serve({{3901, REQUEST}}));
}

// The budget is one for the whole message: bytes that trickle in do not refill it.
TEST_F(NetServer, PeerThatDribblesIsDroppedAfterTheSameTimeInAll)
{
    std::vector<Arrival> arrivals;
    for (unsigned int i = 0; i < 1000; ++i)
    {
        arrivals.push_back({i * 50, "x"});
    }
    EXPECT_EQ("", Serve(arrivals));
    EXPECT_EQ(3900u, m_sockets.LifetimeMs(m_handle));
}

TEST_F(NetServer, WakeUpPerByteDoesNotUseTheBudgetUp)
{
    std::vector<Arrival> arrivals;
    for (unsigned int i = 0; i < 200; ++i)
    {
        arrivals.push_back({i * 2, "x"});
    }
    arrivals.push_back({400, " HTTP/1.1\r\n\r\n"});
    EXPECT_EQ(NOT_FOUND, Serve(arrivals));
}

// A peer that keeps sending is not limited in time, only in size.
TEST_F(NetServer, HeaderWithoutAnEndIsDroppedAboveTenMebibytes)
{
    std::vector<Arrival> arrivals(2561, {0, std::string(4095, 'x')});
    arrivals.push_back({0, "\r\n\r\n"});
    EXPECT_EQ("", Serve(arrivals));
    EXPECT_EQ(0u, m_sockets.LifetimeMs(m_handle));
    EXPECT_EQ(2561, m_sockets.Reads(m_handle));
}

TEST_F(NetServer, PeerThatClosesIsDroppedAtOnce)
{
    EXPECT_EQ("", Serve({{0, "GET /"}, {0, "", true}}));
    EXPECT_EQ(0u, m_sockets.LifetimeMs(m_handle));
}

TEST_F(NetServer, BytesThatComeWithTheNewsOfTheEndAreDropped)
{
    EXPECT_EQ("", Serve({{0, REQUEST, true}}));
}

TEST_F(NetServer, SecondMessageInTheSameReadIsIgnored)
{
    EXPECT_EQ(NOT_FOUND, Serve({{0, std::string(REQUEST) + "GET /GetDeviceInfo HTTP/1.1\r\n\r\n"}}));
    EXPECT_EQ(0, m_device.Calls("GetDevInfo"));
}

// A whole first message is there, and yet the connection dies: what follows it never completes.
TEST_F(NetServer, PartialSecondMessageEndsTheConnectionWithoutAnAnswer)
{
    EXPECT_EQ("", Serve({{0, std::string(REQUEST) + "GET /second"}}));
    EXPECT_EQ(3900u, m_sockets.LifetimeMs(m_handle));
}

TEST_F(NetServer, LowerCaseContentLengthLeavesTheBodyUncutAndTheConnectionDies)
{
    EXPECT_EQ("", Serve({{0, "POST /Reboot HTTP/1.1\r\ncontent-length: 2\r\n\r\nab"}}));
    EXPECT_EQ(0, m_device.Calls("Reboot"));
}

TEST_F(NetServer, RequestThatLooksLikeAResponseIsLoggedAndServed)
{
    EXPECT_EQ(NOT_FOUND, Serve({{0, "HTTP/1.1 200 OK /missing HTTP\r\n\r\n"}}));
    EXPECT_THAT(Log(), HasSubstr(" ASSERT\n"));
}

TEST_F(NetServer, PartialSendsAreContinued)
{
    m_handle = m_sockets.Connect({{0, REQUEST}});
    m_sockets.ScriptSends(m_handle, {1, 7, 0, -1, 5, 0});
    Accept(m_handle);
    EXPECT_TRUE(m_sockets.AwaitDestroyed(m_handle));
    EXPECT_EQ(NOT_FOUND, m_sockets.Sent(m_handle));
}

TEST_F(NetServer, BrokenSendEndsTheConnection)
{
    m_handle = m_sockets.Connect({{0, REQUEST}});
    m_sockets.ScriptSends(m_handle, {10, 0}, true);
    Accept(m_handle);
    EXPECT_TRUE(m_sockets.AwaitDestroyed(m_handle));
    EXPECT_EQ("HTTP/1.1 4", m_sockets.Sent(m_handle));
}

// The peer sees an empty reply.
TEST_F(NetServer, AnEmptyAnswerIsLoggedAndEndsTheConnection)
{
    m_handle = m_sockets.Connect({});
    SendHttpMessageAndEnd(m_handle, CHttpProtocolAnalyse());
    EXPECT_TRUE(m_sockets.IsDestroyed(m_handle));
    EXPECT_EQ("", m_sockets.Sent(m_handle));
    EXPECT_THAT(Log(), HasSubstr(" ASSERT\n"));
}

TEST_F(NetServer, HostSeesThePeersAddress)
{
    Serve({{0, "GET /GetDeviceInfo HTTP/1.1\r\nAuthorization: Basic YWRtaW46YWRtaW4=\r\n\r\n"}});
    EXPECT_THAT(m_device.LastVerify(), HasSubstr("<ip>10.0.0.7</ip>"));
}

TEST_F(NetServer, FourRequestsRunAtOnceAndAFifthWaits)
{
    std::vector<int> handles;
    for (int i = 0; i < 5; ++i)
    {
        handles.push_back(m_sockets.ConnectHeld({{0, REQUEST}}));
        Accept(handles.back());
    }
    EXPECT_TRUE(m_sockets.AwaitHeld(4));
    EXPECT_EQ(0, m_sockets.Reads(handles[4])); // open, and not read
    m_sockets.Release();
    for (const int handle : handles)
    {
        EXPECT_TRUE(m_sockets.AwaitDestroyed(handle));
        EXPECT_EQ(NOT_FOUND, m_sockets.Sent(handle));
    }
}

TEST_F(NetServer, WaitingConnectionsAreServedInTheirOrder)
{
    std::vector<int> busy;
    for (int i = 0; i < 4; ++i)
    {
        busy.push_back(m_sockets.ConnectHeld({{0, REQUEST}}));
        Accept(busy.back());
    }
    EXPECT_TRUE(m_sockets.AwaitHeld(4));
    const int first = m_sockets.ConnectHeld({{0, REQUEST}});
    const int second = m_sockets.Connect({{0, REQUEST}});
    Accept(first);
    Accept(second);
    m_sockets.Release(busy[0]);
    EXPECT_TRUE(m_sockets.AwaitDestroyed(busy[0]));
    EXPECT_TRUE(m_sockets.AwaitHeld(4)); // the one worker that came free has taken the first
    EXPECT_EQ(0, m_sockets.Reads(second));
    m_sockets.Release();
    for (const int handle : {busy[1], busy[2], busy[3], first, second})
    {
        EXPECT_TRUE(m_sockets.AwaitDestroyed(handle));
    }
}

// Such tests run first: there is no worker yet that a new process would lack.
TEST(NetServerDeathTest, WorkersAreTwoAtFirstFourAtMostAndNoneBehindQuit)
{
    EXPECT_EXIT(std::exit(WorkersAreTwoThenFourAndGoWithQuit() ? 0 : 1), testing::ExitedWithCode(0), "");
}

// A task says only that some connection waits: with the list cleared it finds none.
TEST_F(NetServer, StopDropsWaitingConnectionsAndTheirTasksFindNothing)
{
    std::vector<int> busy;
    for (int i = 0; i < 4; ++i)
    {
        busy.push_back(m_sockets.ConnectHeld({{0, REQUEST}}));
        Accept(busy.back());
    }
    EXPECT_TRUE(m_sockets.AwaitHeld(4));
    const int dropped = m_sockets.Connect({{0, REQUEST}});
    Accept(dropped);
    CNetServer::Instance().Stop();
    m_sockets.Release();
    for (const int handle : busy)
    {
        EXPECT_TRUE(m_sockets.AwaitDestroyed(handle));
    }
    EXPECT_EQ(NOT_FOUND, Serve({{0, REQUEST}})); // the tasks in front have run
    EXPECT_FALSE(m_sockets.IsDestroyed(dropped));
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (Log().find("  http request failed !\n") == std::string::npos && std::chrono::steady_clock::now() < limit)
    {
        std::this_thread::yield();
    }
    EXPECT_THAT(Log(), HasSubstr("  http request failed !\n"));
}

} // namespace
