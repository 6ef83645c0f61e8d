// ApiThreadsTest.cpp: clients that read and write at once, beside a host that reports alarms.
#include "HttpWorld.h"

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace
{

class ApiThreads : public HttpWorld
{
protected:
    void SetUp() override
    {
        HttpWorld::SetUp();
        m_device.integratedPtz = true;
        m_device.rs485Ptz = true;
        m_device.presets.assign(10, {1, "Door", {}});
        m_device.privacyMasks.assign(8, {1, 2, 3, 4, 5, 1});
        m_device.motionConfig.rows = 8;
        ASSERT_EQ(1, NET_SERVER_Initial(4, 2, 4, &m_device, nullptr, "", "", 1, NETNS::DEV_TYPE_DEFAULT));
    }

    std::string Post(const std::string& url, const std::string& body) const
    {
        return Ask("POST " + url + " HTTP/1.1\r\n" + AUTHORIZED + "Content-Length: " + std::to_string(body.size()) +
                   "\r\n\r\n" + body);
    }
};

const struct
{
    const char* url;
    const char* body;
} REQUESTS[] = {
    {"/GetImageConfig", ""},
    {"/SetImageConfig", "<config><image><bright>7</bright></image></config>"},
    {"/GetStreamCaps", ""},
    {"/GetVideoStreamConfig", ""},
    {"/SetVideoStreamConfig", "<config><streams><item id=\"1\"><GOP>7</GOP></item></streams></config>"},
    {"/GetPrivacyMaskConfig", ""},
    {"/PtzGetPresets", ""},
    {"/PtzControl/1/left", "<actionInfo><speed>1</speed></actionInfo>"},
    {"/GetMotionConfig", ""},
    {"/SetMotionConfig", "<config><motion><switch>true</switch></motion></config>"},
    {"/GetAlarmStatus", ""},
    {"/GetAlarmServerConfig", ""},
    {"/SetAlarmServerConfig",
     "<config><alarmServer><serverAddr>127.0.0.1</serverAddr><serverPort>%</serverPort></alarmServer></config>"},
    {"/GetNetBasicConfig", ""},
};

} // namespace

TEST_F(ApiThreads, ClientsAndAHostAtOnceAreAllServed)
{
    const int CLIENTS = 8;
    const int ROUNDS = 4;
    const std::string closedPort = std::to_string(FreePort());
    std::atomic<int> failed{0};
    std::atomic<bool> done{false};
    std::thread host(
        [&done]
        {
            for (unsigned int i = 0; !done; ++i)
            {
                NET_SERVER_SetMotionStatus(i % 4, i % 3 != 0);
                NET_SERVER_SetSensorStatus(i % 4, i % 5 == 0);
                NET_SERVER_SetVideoLossStatus(i % 4, i % 7 == 0);
            }
        });
    std::vector<std::thread> clients;
    for (int client = 0; client < CLIENTS; ++client)
    {
        clients.emplace_back(
            [&, this]
            {
                for (int round = 0; round < ROUNDS; ++round)
                {
                    for (const auto& request : REQUESTS)
                    {
                        std::string body = request.body;
                        const std::size_t place = body.find('%');
                        if (place != std::string::npos)
                            body.replace(place, 1, closedPort);
                        const std::string answer = Post(request.url, body);
                        failed += answer.compare(0, 15, "HTTP/1.1 200 OK") == 0 ? 0 : 1;
                    }
                }
            });
    }
    for (std::thread& client : clients)
    {
        client.join();
    }
    done = true;
    host.join();
    EXPECT_EQ(0, failed);
    EXPECT_EQ(CLIENTS * ROUNDS, m_device.Calls("SetImageParam"));
    EXPECT_EQ(CLIENTS * ROUNDS, m_device.Calls("PtzControl"));
}
