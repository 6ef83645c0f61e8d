// The keys of device and network, from the host's document to a camera and back, in each dialect.
#include "HttpClient.h"
#include "NetSocket.h"
#include "OnvifDeviceSimulator.h"

#include <gtest/gtest.h>

#include <memory>

namespace
{

std::string Get(CHttpClient& client, const std::string& keys)
{
    char* response = nullptr;
    int length = 0;
    const bool good = client.GetCfg("<Get version=\"1.0\" systemType=\"ipc\">" + keys + "</Get>", response, &length);
    const std::string answer = response != nullptr ? response : "";
    EXPECT_EQ(response != nullptr ? answer.size() + 1 : 0, static_cast<std::size_t>(length));
    delete[] response;
    return (good ? "" : "false: ") + answer;
}

std::string Set(CHttpClient& client, const std::string& keys)
{
    std::string answer;
    const bool good = client.SetCfg("<Set version=\"1.0\" systemType=\"ipc\">" + keys + "</Set>", answer);
    return (good ? "" : "false: ") + answer;
}

class OnvifDeviceKeys : public testing::TestWithParam<std::string> // the name of the dialect
{
protected:
    OnvifDeviceKeys()
    {
        NET_SOCKET_Initial(nullptr);
        OnvifSimulatorOptions options;
        options.dialect = OnvifDialects().at(GetParam());
        m_simulator = std::make_unique<OnvifDeviceSimulator>(options);
        m_client = std::make_unique<CHttpClient>("admin", "secret", "127.0.0.1", m_simulator->Port());
    }
    ~OnvifDeviceKeys() override
    {
        m_simulator.reset();
        NET_SOCKET_Quit();
    }

    std::unique_ptr<OnvifDeviceSimulator> m_simulator;
    std::unique_ptr<CHttpClient> m_client;
};

/// What is in the answer below its root, without the blanks between elements.
std::string Inner(const std::string& answer)
{
    std::string inner;
    bool blank = false;
    for (const char c : answer)
    {
        blank = c == '\n' || (blank && c == ' ');
        inner += blank ? "" : std::string(1, c);
    }
    const std::string head = R"(<?xml version="1.0" encoding="UTF-8"?>)";
    const std::size_t begin = inner.find('>', head.size()) + 1;
    return inner.compare(0, head.size(), head) == 0 ? inner.substr(begin, inner.rfind("</") - begin) : inner;
}

TEST_P(OnvifDeviceKeys, ReadsTheDevice)
{
    EXPECT_EQ(R"(<?xml version="1.0" encoding="UTF-8"?>
<GetResponse><devInfo><status>success</status>
        <manufacturer>Test Works</manufacturer>
        <model>TW-1</model>
    </devInfo>
</GetResponse>
)",
              Get(*m_client, "<devInfo/>"));
}

TEST_P(OnvifDeviceKeys, ReadsAnAddressThatWasSet)
{
    EXPECT_EQ("<ipv4><status>success<rebootNeeded>false</rebootNeeded></status></ipv4>",
              Inner(Set(*m_client, "<ipv4><token>eth0</token><dhcp>false</dhcp><ip>10.0.0.5</ip>"
                                   "<netmask>255.255.240.0</netmask><gateway>10.0.0.1</gateway></ipv4>")));
    EXPECT_EQ("<ipv4><status>success</status><item token=\"eth0\"><dhcp>false</dhcp><ip>10.0.0.5</ip>"
              "<netmask>255.255.240.0</netmask></item>"
              "<gatewayStatus><status>success</status><gateway>10.0.0.1</gateway></gatewayStatus></ipv4>",
              Inner(Get(*m_client, "<ipv4/>")));
}

TEST_P(OnvifDeviceKeys, TellsNoAddressWithDhcpOn)
{
    Set(*m_client, "<ipv4><token>eth0</token><dhcp>true</dhcp><ip>10.0.0.5</ip></ipv4>");
    EXPECT_EQ("<ipv4><status>success</status><item token=\"eth0\"><dhcp>true</dhcp></item>"
              "<gatewayStatus><status>success</status><gateway>192.168.1.1</gateway></gatewayStatus></ipv4>",
              Inner(Get(*m_client, "<ipv4/>")));
    EXPECT_EQ("192.168.1.20", m_simulator->Value("ipv4.address"));
}

TEST_P(OnvifDeviceKeys, ReadsNameServersThatWereSet)
{
    EXPECT_EQ("<dns><status>success</status></dns>",
              Inner(Set(*m_client, "<dns><dhcp>false</dhcp><ip>10.0.0.2</ip><ip>10.0.0.3</ip></dns>")));
    EXPECT_EQ("<dns><status>success</status><dhcp>false</dhcp><ip>10.0.0.2</ip><ip>10.0.0.3</ip></dns>",
              Inner(Get(*m_client, "<dns/>")));
}

TEST_P(OnvifDeviceKeys, ReadsPortsThatWereSet)
{
    EXPECT_EQ("<networkProtocols><status>success</status></networkProtocols>",
              Inner(Set(*m_client, "<networkProtocols><http><port>8080</port></http><rtsp><port>8554</port></rtsp>"
                                   "</networkProtocols>")));
    EXPECT_EQ("<networkProtocols><status>success</status><http><enable>true</enable><port>8080</port></http>"
              "<https><enable>false</enable><port>443</port></https>"
              "<rtsp><enable>true</enable><port>8554</port></rtsp></networkProtocols>",
              Inner(Get(*m_client, "<networkProtocols/>")));
}

TEST_P(OnvifDeviceKeys, ReadsATimeThatWasSet)
{
    setenv("TZ", "UTC", 1);
    EXPECT_EQ("<dateAndTime><status>success</status></dateAndTime>",
              Inner(Set(*m_client,
                        "<dateAndTime><type>Manual</type><UTCDateTime><time><hour>23</hour><minute>5</minute>"
                        "<second>9</second></time><date><year>2027</year><month>1</month><day>31</day></date>"
                        "</UTCDateTime><daylightSaving><switch>on</switch></daylightSaving><timeZone><tz>GMT+01:00</tz>"
                        "</timeZone></dateAndTime>")));
    EXPECT_EQ("<dateAndTime><status>success</status><type>Manual</type><UTCDateTime><time><hour>23</hour>"
              "<minute>5</minute><second>9</second></time><date><year>2027</year><month>1</month><day>31</day></date>"
              "</UTCDateTime><daylightSaving>on</daylightSaving><timeZone>GMT+01:00</timeZone></dateAndTime>",
              Inner(Get(*m_client, "<dateAndTime/>")));
}

TEST_P(OnvifDeviceKeys, TellsAFaultInItsStatus)
{
    EXPECT_EQ("<ipv4><status>fail<errorCode>5</errorCode><description>No such interface</description></status></ipv4>",
              Inner(Set(*m_client, "<ipv4><token>eth7</token><dhcp>true</dhcp></ipv4>")));
}

TEST_P(OnvifDeviceKeys, TellsAnArgumentThatTheCameraBlames)
{
    m_simulator->Refuse("GetNetworkProtocols", "ter:InvalidArgVal", "Bad");
    EXPECT_EQ("<networkProtocols><status>fail<errorCode>30</errorCode><description>Bad</description></status>"
              "</networkProtocols>",
              Inner(Get(*m_client, "<networkProtocols/>")));
}

TEST_P(OnvifDeviceKeys, SubscribesAndRenewsAtTheAddressOfTheSubscription)
{
    const std::string address = "http://127.0.0.1:" + std::to_string(m_simulator->Port()) + "/onvif/subscription_1";
    m_client->SetServiceTable({{SERVICE_EVENTS, "onvif/event_service"}});
    EXPECT_EQ("<subscribe><status>success</status><address>" + address +
                  "</address><currentTime>2026-11-21T13:30:00Z</currentTime>"
                  "<terminationTime>2026-11-21T13:31:00Z</terminationTime></subscribe>",
              Inner(Set(*m_client, "<subscribe><clientAddr>http://127.0.0.1:6699/subscription_0</clientAddr>"
                                   "<timeout>PT60S</timeout></subscribe>")));
    EXPECT_EQ("http://127.0.0.1:6699/subscription_0", m_simulator->Value("subscribe.consumer"));
    EXPECT_EQ("<renew><status>success</status><terminationTime>2026-11-21T13:31:00Z</terminationTime>"
              "<currentTime>2026-11-21T13:30:00Z</currentTime></renew>",
              Inner(Set(*m_client, "<renew><serverAddr>" + address + "</serverAddr><timeout>PT60S</timeout></renew>")));
    EXPECT_EQ("onvif/subscription_1", m_simulator->LastRequest().path);
    EXPECT_EQ("<unsubscribe><status>success</status></unsubscribe>", Inner(Set(*m_client, "<unsubscribe/>")));
    EXPECT_EQ("", m_simulator->Value("subscribe.consumer"));
}

INSTANTIATE_TEST_SUITE_P(Dialects, OnvifDeviceKeys, testing::ValuesIn(OnvifDialectNames()),
                         [](const auto& one) { return one.param; });

} // namespace
