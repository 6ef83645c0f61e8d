// AlarmPushTest.cpp: the host's reports as they arrive at an alarm server on loopback.
#include "HttpWorld.h"

#include <chrono>
#include <thread>
#include <vector>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

/// An alarm server: takes connections one after the other and reads each to its end.
class AlarmListener
{
public:
    AlarmListener() : m_socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof(address);
        EXPECT_EQ(0, bind(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)));
        EXPECT_EQ(0, listen(m_socket, 200));
        EXPECT_EQ(0, getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &length));
        m_port = ntohs(address.sin_port);
    }
    ~AlarmListener() { close(m_socket); }
    AlarmListener(const AlarmListener&) = delete;
    AlarmListener& operator=(const AlarmListener&) = delete;

    unsigned short Port() const { return m_port; }

    /// The next push; "(none)" when none comes within five seconds.
    std::string Take()
    {
        if (!IsReady(m_socket))
        {
            return "(none)";
        }
        const int connection = accept(m_socket, nullptr, nullptr);
        std::string text;
        char buffer[4096];
        ssize_t count = 1;
        while (count > 0 && IsReady(connection))
        {
            count = recv(connection, buffer, sizeof(buffer), 0);
            text.append(buffer, static_cast<std::size_t>(count > 0 ? count : 0));
        }
        close(connection);
        return text;
    }

private:
    static bool IsReady(int descriptor)
    {
        pollfd waiting = {descriptor, POLLIN, 0};
        return poll(&waiting, 1, 5000) == 1;
    }

    const int m_socket;
    unsigned short m_port = 0;
};

class AlarmPush : public HttpWorld
{
protected:
    void SetUp() override
    {
        HttpWorld::SetUp();
        ASSERT_EQ(1, NET_SERVER_Initial(1, 1, 1, &m_device, nullptr, "", "", 1, NETNS::DEV_TYPE_DEFAULT));
    }

    std::string Configure(unsigned short port) const
    {
        const std::string body = "<config><alarmServer><serverAddr>127.0.0.1</serverAddr><serverPort>" +
                                 std::to_string(port) + "</serverPort></alarmServer></config>";
        return Ask("POST /SetAlarmServerConfig HTTP/1.1\r\nContent-Length: " + std::to_string(body.size()) +
                   "\r\n\r\n" + body);
    }

    static std::string Document(const char* motion, const char* videoLoss, const char* sensor)
    {
        return std::string("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                           "<config version=\"1.0\" xmlns=\"http://www.qlx.example/ver10\">\n"
                           "    <alarmStatusInfo>\n"
                           "        <motionAlarm type=\"boolean\" id=\"0\">") +
               motion + "</motionAlarm>\n        <videoLoss type=\"boolean\" id=\"0\">" + videoLoss +
               "</videoLoss>\n        <sensorAlarmIn type=\"list\" count=\"1\"><item id=\"0\">" + sensor +
               "</item>\n        </sensorAlarmIn>\n    </alarmStatusInfo>\n</config>\n";
    }

    AlarmListener m_listener;
};

TEST_F(AlarmPush, EachEdgeIsAConnectionInOrder)
{
    EXPECT_THAT(Configure(m_listener.Port()), testing::HasSubstr("status=\"success\""));
    EXPECT_EQ(0, NET_SERVER_SetMotionStatus(0, true));
    EXPECT_EQ(0, NET_SERVER_SetSensorStatus(0, true));
    EXPECT_EQ(0, NET_SERVER_SetMotionStatus(0, false));
    EXPECT_EQ(0, NET_SERVER_SetVideoLossStatus(0, true));
    EXPECT_EQ(0, NET_SERVER_SetSensorStatus(0, false));
    EXPECT_EQ(0, NET_SERVER_SetVideoLossStatus(0, false));
    EXPECT_EQ(Document("true", "false", "false"), m_listener.Take());
    EXPECT_EQ(Document("true", "false", "true"), m_listener.Take());
    EXPECT_EQ(Document("false", "false", "true"), m_listener.Take());
    EXPECT_EQ(Document("false", "true", "true"), m_listener.Take());
    EXPECT_EQ(Document("false", "true", "false"), m_listener.Take());
    EXPECT_EQ("", m_listener.Take()); // all clear: a connection without a byte
}

TEST_F(AlarmPush, AHundredReportsAreAHundredConnections)
{
    Configure(m_listener.Port());
    for (int i = 0; i < 100; ++i)
    {
        NET_SERVER_SetMotionStatus(0, true);
    }
    for (int i = 0; i < 100; ++i)
    {
        ASSERT_EQ(Document("true", "false", "false"), m_listener.Take());
    }
}

TEST_F(AlarmPush, ServerThatIsDownDoesNotHoldTheHost)
{
    Configure(FreePort());
    const auto begin = std::chrono::steady_clock::now();
    NET_SERVER_SetMotionStatus(0, true);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
}

// The document is small enough to lie in the socket until the server reads it.
TEST_F(AlarmPush, ServerThatDoesNotAcceptDoesNotHoldTheHost)
{
    Configure(m_listener.Port());
    const auto begin = std::chrono::steady_clock::now();
    NET_SERVER_SetMotionStatus(0, true);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
    EXPECT_EQ(Document("true", "false", "false"), m_listener.Take());
}

// A host may serve static files only; its alarms are pushed all the same.
TEST_F(AlarmPush, WorksWithoutTheApi)
{
    Configure(m_listener.Port());
    NET_SERVER_Initial(1, 1, 1, &m_device, nullptr, "", "", 0, NETNS::DEV_TYPE_DEFAULT);
    NET_SERVER_SetMotionStatus(0, true);
    EXPECT_EQ(Document("true", "false", "false"), m_listener.Take());
}

TEST_F(AlarmPush, SettingsFileIsTheOneOfTheLastStart)
{
    Configure(m_listener.Port());
    EXPECT_THAT(m_root.Read("server.xml"), testing::HasSubstr("<AlarmServAddr>127.0.0.1</AlarmServAddr>"));
    NET_SERVER_Stop();
    NET_SERVER_Start(m_port, m_root.Path().c_str(), m_root.Path("other.xml").c_str());
    EXPECT_THAT(Get("/GetAlarmServerConfig"), testing::HasSubstr("<serverAddr type=\"string\"/>"));
    NET_SERVER_Stop();
    NET_SERVER_Start(m_port, m_root.Path().c_str(), m_root.Path("server.xml").c_str());
    EXPECT_THAT(Get("/GetAlarmServerConfig"), testing::HasSubstr("<serverAddr type=\"string\">127.0.0.1<"));
}

} // namespace
