// AlarmServerTest.cpp: which alarms are active, and what the alarm server is sent.
//
// The test program's own three operations stand in for the socket service's, so that every result can be had.
#include "AlarmServer.h"

#include "NetServerConfig.h"
#include "NetSocket.h"
#include "QlxApiXmlFmt.h"
#include "ShareSDK.h"
#include "TempDirectory.h"

#include <algorithm>
#include <atomic>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

const int HANDLE = 77;

/// What the pushes did, in order, and what sending tells them.
struct FakeSockets
{
    std::mutex lock;
    std::vector<std::string> calls; ///< "connect 10.0.0.5 7000", "send 12", "destroy"
    std::string sent;
    std::deque<int> results; ///< bytes taken by the next sends; those behind the last take all
    int breaksAt = -1;       ///< the send that finds the connection broken, counted from 0
    int handle = HANDLE;
};

FakeSockets* sockets = nullptr;

const char ALL_ACTIVE[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                          "<config version=\"1.0\" xmlns=\"http://www.qlx.example/ver10\">\n"
                          "    <alarmStatusInfo>\n"
                          "        <motionAlarm type=\"boolean\" id=\"0\">true</motionAlarm>\n"
                          "        <motionAlarm type=\"boolean\" id=\"1\">false</motionAlarm>\n"
                          "        <videoLoss type=\"boolean\" id=\"0\">false</videoLoss>\n"
                          "        <videoLoss type=\"boolean\" id=\"1\">true</videoLoss>\n"
                          "        <sensorAlarmIn type=\"list\" count=\"3\"><item id=\"0\">false</item>\n"
                          "            <item id=\"1\">false</item>\n"
                          "            <item id=\"2\">true</item>\n"
                          "        </sensorAlarmIn>\n"
                          "    </alarmStatusInfo>\n"
                          "</config>\n";

class AlarmServer : public testing::Test
{
protected:
    void SetUp() override
    {
        sockets = &m_sockets;
        ASSERT_TRUE(SHARESDK_LogToFile(m_directory.Path("log").c_str(), 1000000, 1));
        SHARESDK_SetLogLevel(SHARESDK_LOG_ALL);
        CNetServerCfg::Instance().Initial(m_directory.Path("server.xml").c_str());
        m_server.Initial(2, 4, 3);
    }
    void TearDown() override
    {
        SHARESDK_LogToConsole();
        sockets = nullptr;
    }

    std::vector<std::string> TakeCalls()
    {
        std::vector<std::string> calls;
        calls.swap(m_sockets.calls);
        return calls;
    }

    CTempDirectory m_directory;
    FakeSockets m_sockets;
    CAlarmServer m_server;
};

using testing::ElementsAre;
using testing::HasSubstr;

} // namespace

int NET_SOCKET_AddConnect(unsigned int /*reserved*/, const char* address, unsigned short port)
{
    const std::lock_guard<std::mutex> lock(sockets->lock);
    sockets->calls.push_back("connect " + std::string(address) + " " + std::to_string(port));
    return sockets->handle;
}

int NET_SOCKET_Send_Immediate(int handle, const char* data, int length, bool& broken)
{
    const std::lock_guard<std::mutex> lock(sockets->lock);
    EXPECT_EQ(sockets->handle, handle);
    sockets->calls.push_back("send " + std::to_string(length));
    if (sockets->breaksAt == 0)
    {
        broken = true;
        return -1;
    }
    sockets->breaksAt -= sockets->breaksAt > 0 ? 1 : 0;
    int taken = length;
    if (!sockets->results.empty())
    {
        taken = sockets->results.front();
        sockets->results.pop_front();
    }
    sockets->sent.append(data, static_cast<std::size_t>(std::max(taken, 0)));
    return taken;
}

void NET_SOCKET_DestroyHNetCommunication(int handle)
{
    const std::lock_guard<std::mutex> lock(sockets->lock);
    EXPECT_EQ(sockets->handle, handle);
    sockets->calls.push_back("destroy");
}

TEST_F(AlarmServer, KeepsTheCounts)
{
    EXPECT_EQ(1, m_server.Initial(4, 2, 3));
    EXPECT_EQ(2u, m_server.GetAlarmOutNum());
    EXPECT_EQ(3u, m_server.GetSensorNum());
}

TEST_F(AlarmServer, StatusNamesEveryIdByteForByte)
{
    m_server.SetMotionStatus(0, true);
    m_server.SetVideoLossStatus(1, true);
    m_server.SetSensorStatus(2, true);
    std::string xml;
    EXPECT_TRUE(m_server.GetAlarmStatus(xml));
    EXPECT_EQ(ALL_ACTIVE, xml);
}

TEST_F(AlarmServer, QuietStatusLeavesTheTextAlone)
{
    std::string xml = "before";
    EXPECT_FALSE(m_server.GetAlarmStatus(xml));
    EXPECT_EQ("before", xml);
}

TEST_F(AlarmServer, WithoutSensorsTheyAreNotListed)
{
    m_server.Initial(1, 0, 0);
    m_server.SetMotionStatus(0, true);
    std::string xml;
    EXPECT_TRUE(m_server.GetAlarmStatus(xml));
    EXPECT_EQ("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<config version=\"1.0\" xmlns=\"http://www.qlx.example/ver10\">\n"
              "    <alarmStatusInfo>\n"
              "        <motionAlarm type=\"boolean\" id=\"0\">true</motionAlarm>\n"
              "        <videoLoss type=\"boolean\" id=\"0\">false</videoLoss>\n"
              "    </alarmStatusInfo>\n"
              "</config>\n",
              xml);
}

TEST_F(AlarmServer, PushIsTheBareDocument)
{
    m_server.SetAlarmServerConfig("10.0.0.5", 7000);
    m_server.SetMotionStatus(0, true);
    std::string xml;
    m_server.GetAlarmStatus(xml);
    EXPECT_EQ(xml, m_sockets.sent);
    EXPECT_THAT(TakeCalls(), ElementsAre("connect 10.0.0.5 7000", "send " + std::to_string(xml.size()), "destroy"));
}

TEST_F(AlarmServer, EveryReportIsPushedAlsoWithoutAChange)
{
    m_server.SetMotionStatus(0, true);
    m_server.SetMotionStatus(0, true);
    m_server.SetSensorStatus(0, true);
    EXPECT_EQ(9u, TakeCalls().size());
}

// The last alarm that clears is told by a connection without a byte.
TEST_F(AlarmServer, ClearedAlarmsPushNoBytes)
{
    m_server.SetAlarmServerConfig("10.0.0.5", 7000);
    m_server.SetVideoLossStatus(1, true);
    m_sockets.sent.clear();
    TakeCalls();
    m_server.SetVideoLossStatus(1, false);
    EXPECT_THAT(TakeCalls(), ElementsAre("connect 10.0.0.5 7000", "destroy"));
    EXPECT_EQ("", m_sockets.sent);
}

TEST_F(AlarmServer, UnknownIdIsOnlyLogged)
{
    m_server.SetMotionStatus(2, true);
    m_server.SetVideoLossStatus(2, true);
    m_server.SetSensorStatus(3, true);
    EXPECT_TRUE(TakeCalls().empty());
    const std::string log = m_directory.Read("log");
    EXPECT_THAT(log, HasSubstr("Warning, unknowned channel ID!"));
    std::string xml;
    EXPECT_FALSE(m_server.GetAlarmStatus(xml));
    EXPECT_EQ("", xml);
}

TEST_F(AlarmServer, WithoutAnAddressItTriesAllTheSame)
{
    EXPECT_EQ(0, m_server.AlarmStatusNotify());
    EXPECT_THAT(TakeCalls(), ElementsAre("connect  0", "destroy"));
}

TEST_F(AlarmServer, HandleIsUsedAsItComes)
{
    m_sockets.handle = 0;
    m_server.SetMotionStatus(0, true);
    EXPECT_EQ(3u, TakeCalls().size()); // sends and ends it: the expectations are in the operations
}

TEST_F(AlarmServer, PortIsCutTo16Bits)
{
    m_server.SetAlarmServerConfig("10.0.0.5", 65536 + 80);
    m_server.AlarmStatusNotify();
    EXPECT_EQ("connect 10.0.0.5 80", TakeCalls().front());
}

TEST_F(AlarmServer, SendsOnWhereAPartialSendStopped)
{
    m_sockets.results = {10, 0, -1, 5};
    m_server.SetMotionStatus(0, true);
    std::string xml;
    m_server.GetAlarmStatus(xml);
    EXPECT_EQ(xml, m_sockets.sent);
    const auto left = [&xml](std::size_t sent)
    {
        return "send " + std::to_string(xml.size() - sent);
    };
    EXPECT_THAT(TakeCalls(), ElementsAre("connect  0", left(0), left(10), left(10), left(10), left(15), "destroy"));
}

TEST_F(AlarmServer, GivesUpAfter41Sends)
{
    m_sockets.results.assign(1000, 0);
    m_server.SetMotionStatus(0, true);
    const std::vector<std::string> calls = TakeCalls();
    EXPECT_EQ(41 + 2, static_cast<int>(calls.size()));
    EXPECT_EQ("destroy", calls.back());
}

TEST_F(AlarmServer, SendsAllInTheLastOf41)
{
    m_sockets.results.assign(40, 1);
    m_server.SetMotionStatus(0, true);
    std::string xml;
    m_server.GetAlarmStatus(xml);
    EXPECT_EQ(xml, m_sockets.sent);
}

TEST_F(AlarmServer, BrokenConnectionEndsThePush)
{
    m_sockets.results = {10};
    m_sockets.breaksAt = 1;
    m_server.SetMotionStatus(0, true);
    EXPECT_EQ(10u, m_sockets.sent.size());
    EXPECT_EQ(4u, TakeCalls().size());
}

// Clients are refused, but the values are in use until the next change.
TEST_F(AlarmServer, RefusedAddressIsInUseAllTheSame)
{
    EXPECT_FALSE(m_server.SetAlarmServerConfig("999.1.1.1", 23));
    m_server.AlarmStatusNotify();
    EXPECT_EQ("connect 999.1.1.1 23", TakeCalls().front());
    std::string address = "before";
    int port = 9;
    EXPECT_FALSE(CAlarmServer::GetAlarmServerConfig(address, port));
    EXPECT_EQ("", address);
    EXPECT_EQ(0, port);
}

// What the file holds is shown, but not in use before it was set once.
TEST_F(AlarmServer, RestartForgetsWhereToPushTo)
{
    EXPECT_TRUE(m_server.SetAlarmServerConfig("10.0.0.5", 7000));
    CAlarmServer restarted;
    restarted.Initial(1, 0, 0);
    std::string address;
    int port = 0;
    EXPECT_TRUE(CAlarmServer::GetAlarmServerConfig(address, port));
    EXPECT_EQ("10.0.0.5", address);
    EXPECT_EQ(7000, port);
    restarted.SetMotionStatus(0, true);
    EXPECT_EQ("connect  0", TakeCalls().front());
}

TEST_F(AlarmServer, ThreadsReportReadAndConfigureAtOnce)
{
    std::vector<std::thread> threads;
    std::atomic<bool> torn{false};
    for (unsigned int id = 0; id < 2; ++id)
    {
        threads.emplace_back(
            [this, id]
            {
                for (int i = 0; i < 200; ++i)
                {
                    m_server.SetMotionStatus(id, i % 2 == 0);
                    m_server.SetSensorStatus(id, i % 2 != 0);
                }
            });
    }
    threads.emplace_back(
        [this]
        {
            for (int i = 0; i < 20; ++i)
                m_server.SetAlarmServerConfig(i % 2 == 0 ? "10.0.0.5" : "192.168.100.100", 7000 + i);
        });
    threads.emplace_back(
        [this, &torn]
        {
            for (int i = 0; i < 200; ++i)
            {
                std::string xml;
                if (m_server.GetAlarmStatus(xml) && xml.find("</config>") == std::string::npos)
                    torn = true;
            }
        });
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_FALSE(torn);
    EXPECT_THAT(m_sockets.calls, testing::Each(testing::AnyOf("destroy", testing::StartsWith("send "), "connect  0",
                                                              testing::StartsWith("connect 10.0.0.5 70"),
                                                              testing::StartsWith("connect 192.168.100.100 70"))));
    EXPECT_EQ(800, std::count(m_sockets.calls.begin(), m_sockets.calls.end(), "destroy"));
}
