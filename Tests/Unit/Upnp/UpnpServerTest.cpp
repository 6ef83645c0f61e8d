#include "UpnpServer.h"

#include "NetServerSDK.h"
#include "NetworkNamespace.h"
#include "Peer.h"
#include "ShareSDK.h"
#include "TempDirectory.h"

#include <chrono>
#include <functional>
#include <memory>
#include <regex>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;

namespace
{

constexpr unsigned short PORT = 33899;
constexpr unsigned short WEB_PORT = 8080;
constexpr const char* NOT_FOUND = "HTTP/1.1 404 Not Found\r\n"
                                  "Content-type: text/html\r\n"
                                  "Content-Length: 0\r\n"
                                  "Connection: close\r\n"
                                  "AuthInfo: \r\n"
                                  "\r\n";

/// Waits until something is so, five seconds at most. @return whether it came about
bool Await(const std::function<bool()>& isSo)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (!isSo() && std::chrono::steady_clock::now() < deadline)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return isSo();
}

/// The device in a network of its own.
class UpnpServer : public testing::Test
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
    void TearDown() override
    {
        CUpnpServer::Instance().StopUpnp();
        NET_SOCKET_Quit();
    }

    static void AddInterface(const std::string& name, const std::string& address)
    {
        ASSERT_TRUE(CNetworkNamespace::AddInterface(name, address)) << name;
    }
    static void Init(unsigned int type = 0)
    {
        NET_SOCKET_Initial(nullptr);
        EXPECT_EQ(1, CUpnpServer::Instance().InitUpnp("MOKA", PORT, static_cast<NETNS::DEV_TYPE>(type)));
    }
    static void Start() { EXPECT_EQ(1, CUpnpServer::Instance().StartUpnp(WEB_PORT)); }

    static std::string Ask(const std::string& request)
    {
        Peer peer(PORT);
        peer.Send(request);
        return peer.ReadAll();
    }
    static std::string Description() { return Ask("GET /upnp_notify.xml HTTP/1.1\r\n\r\n"); }
    static std::string Udn()
    {
        char text[CUpnpServer::TEXT_BYTES];
        CUpnpServer::Instance().GetEnqueryXml(text);
        std::smatch match;
        const std::string document = text;
        return std::regex_search(document, match, std::regex("<UDN>(.*)</UDN>")) ? match[1].str() : std::string();
    }
    static std::string Announcement(const std::string& address)
    {
        return "NOTIFY * HTTP/1.1\r\n"
               "HOST: 239.255.255.250:1900\r\n"
               "CACHE-CONTROL: max-age=100\r\n"
               "LOCATION: http://" +
               address +
               ":33899/upnp_notify.xml\r\n"
               "NT: upnp:rootdevice\r\n"
               "NTS: ssdp:alive\r\n"
               "SERVER: Linux/3.0.8, UPnP/1.0, Portable SDK for UPnP devices/1.6.6\r\n"
               "X-User-Agent: redsonic\r\n"
               "USN: " +
               Udn() +
               "::upnp:rootdevice\r\n"
               "\r\n";
    }
};

TEST_F(UpnpServer, EachInterfaceGetsOneDatagramWithTheFirstOnesAddress)
{
    AddInterface("eth0", "10.1.0.5/24");
    AddInterface("eth1", "10.2.0.5/24");
    AddInterface("bond0", "10.3.0.5/24");
    AddInterface("wlan0", "10.4.0.5/24"); // neither Ethernet nor a bond
    CDatagramSniffer first("eth0");
    CDatagramSniffer second("eth1");
    CDatagramSniffer third("bond0");
    CDatagramSniffer wireless("wlan0");
    Init();
    Start();
    const std::string expected = Announcement("10.1.0.5");
    for (CDatagramSniffer* wire : {&first, &second, &third})
    {
        const auto datagrams = wire->Await(1);
        ASSERT_EQ(1u, datagrams.size());
        EXPECT_EQ("239.255.255.250:1900", datagrams[0].destination);
        EXPECT_EQ(expected, datagrams[0].payload);
    }
    CUpnpServer::Instance().StopUpnp();
    EXPECT_TRUE(first.Take().empty());
    EXPECT_TRUE(wireless.Take().empty());
}

TEST_F(UpnpServer, OnlyEightInterfacesAreServed)
{
    std::vector<std::unique_ptr<CDatagramSniffer>> wires;
    for (int i = 0; i < 9; ++i)
    {
        const std::string number = std::to_string(i);
        AddInterface("eth" + number, "10." + number + ".0.5/24");
        wires.push_back(std::make_unique<CDatagramSniffer>("eth" + number));
    }
    Init();
    Start();
    CUpnpServer::Instance().StopUpnp(); // waits for the thread that sends
    std::size_t served = 0;
    for (const auto& wire : wires)
    {
        served += served < 8 ? wire->Await(1).size() : wire->Take().size();
    }
    EXPECT_EQ(8u, served);
}

TEST_F(UpnpServer, WithoutAnInterfaceNothingIsSent)
{
    AddInterface("wan0", "10.4.0.5/24");
    CDatagramSniffer wire("wan0");
    Init();
    Start();
    CUpnpServer::Instance().StopUpnp();
    EXPECT_TRUE(wire.Take().empty());
}

TEST_F(UpnpServer, WithoutAnInterfaceTheDefaultRoutesAddressIsTold)
{
    AddInterface("wan0", "10.4.0.5/24");
    ASSERT_TRUE(CNetworkNamespace::Ip("route add default via 10.4.0.1"));
    Init();
    Start();
    EXPECT_THAT(Description(), HasSubstr("<presentationURL>http://10.4.0.5:8080</presentationURL>"));
}

TEST_F(UpnpServer, WithoutARouteTheLoopbackAddressIsTold)
{
    Init();
    Start();
    EXPECT_THAT(Description(), HasSubstr("<presentationURL>http://127.0.0.1:8080</presentationURL>"));
}

TEST_F(UpnpServer, DescriptionIsServedAsOneLine)
{
    AddInterface("eth0", "10.1.0.5/24");
    Init();
    Start();
    const std::string body = "<?xml version=\"1.0\"?>"
                             "<root xmlns=\"urn:schemas-upnp-org:device-1-0\">"
                             "<specVersion><major>1</major><minor>0</minor></specVersion>"
                             "<device>"
                             "<deviceType>urn:schemas-upnp-org:device:EmbeddedIPCDevice:1</deviceType>"
                             "<friendlyName>MOKA</friendlyName>"
                             "<manufacturer>QLX</manufacturer>"
                             "<manufacturerURL>http://www.qlx.example/</manufacturerURL>"
                             "<modelDescription>UPnP Device</modelDescription>"
                             "<modelName>Device</modelName>"
                             "<modelNumber>1.0</modelNumber>"
                             "<modelURL>http://www.qlx.example/</modelURL>"
                             "<serialNumber>123456789001</serialNumber>"
                             "<UDN>" +
                             Udn() +
                             "</UDN>"
                             "<serviceList><service>"
                             "<serviceType>urn:schemas-upnp-org:service:EmbeddedIPCDeviceControl:1</serviceType>"
                             "<serviceId>urn:upnp-org:serviceId:control1</serviceId>"
                             "<controlURL>/upnp/control/control1</controlURL>"
                             "<eventSubURL>/upnp/event/control1</eventSubURL>"
                             "<SCPDURL>/SCPD.xml</SCPDURL>"
                             "</service></serviceList>"
                             "<presentationURL>http://10.1.0.5:8080</presentationURL>"
                             "</device>"
                             "</root>";
    EXPECT_EQ("HTTP/1.1 200 OK\r\n"
              "Content-type: text/html\r\n"
              "Content-Length: " +
                  std::to_string(body.size()) +
                  "\r\n"
                  "Connection: close\r\n"
                  "AuthInfo: \r\n"
                  "\r\n" +
                  body,
              Description());
}

TEST_F(UpnpServer, AnotherDeviceTypeIsARecorder)
{
    Init(1);
    Start();
    const std::string description = Description();
    EXPECT_THAT(description, HasSubstr("<deviceType>urn:schemas-upnp-org:device:EmbeddedDVRDevice:1</deviceType>"));
    EXPECT_THAT(description,
                HasSubstr("<serviceType>urn:schemas-upnp-org:service:EmbeddedDVRDeviceControl:1</serviceType>"));
}

TEST_F(UpnpServer, LongNameIsCutInTheDescription)
{
    NET_SOCKET_Initial(nullptr);
    CUpnpServer::Instance().InitUpnp(std::string(2000, 'n').c_str(), PORT, NETNS::DEV_TYPE_DEFAULT);
    char text[CUpnpServer::TEXT_BYTES];
    EXPECT_EQ(1023, CUpnpServer::Instance().GetEnqueryXml(text));
    EXPECT_EQ('n', text[1022]);
    EXPECT_EQ('\0', text[1023]);
}

TEST_F(UpnpServer, OtherFilesAreNotFound)
{
    Init();
    Start();
    EXPECT_EQ(NOT_FOUND, Ask("GET /SCPD.xml HTTP/1.1\r\n\r\n"));
    EXPECT_EQ(NOT_FOUND, Ask("GET / HTTP/1.1\r\n\r\n"));
}

// No dot in the URL: the request would be one for a command, and this port has none.
TEST_F(UpnpServer, CommandIsClosedWithoutAByte)
{
    Init();
    Start();
    EXPECT_EQ("", Ask("GET /GetDeviceInfo HTTP/1.1\r\n\r\n"));
}

TEST_F(UpnpServer, UdnIsAGuidInUpperCaseAndNewWithEachInit)
{
    Init();
    const std::string first = Udn();
    EXPECT_TRUE(
        std::regex_match(first, std::regex("uuid:[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}")))
        << first;
    Init();
    EXPECT_NE(first, Udn());
}

TEST_F(UpnpServer, SecondStartAnnouncesAgainWithTheSameUdn)
{
    AddInterface("eth0", "10.1.0.5/24");
    CDatagramSniffer wire("eth0");
    Init();
    Start();
    Start();
    const auto datagrams = wire.Await(2);
    ASSERT_EQ(2u, datagrams.size());
    EXPECT_EQ(Announcement("10.1.0.5"), datagrams[0].payload);
    EXPECT_EQ(datagrams[0].payload, datagrams[1].payload);
    EXPECT_THAT(Description(), HasSubstr(Udn()));
}

TEST_F(UpnpServer, StopClosesThePortAndSaysNothing)
{
    AddInterface("eth0", "10.1.0.5/24");
    CDatagramSniffer wire("eth0");
    Init();
    Start();
    EXPECT_EQ(1u, wire.Await(1).size());
    CUpnpServer::Instance().StopUpnp();
    EXPECT_TRUE(wire.Take().empty());
    EXPECT_FALSE(Peer(PORT).IsOpen());
}

// A connection whose request never becomes whole is left open.
TEST_F(UpnpServer, PeerWithoutARequestIsToldNothingAndLeftOpen)
{
    const CTempDirectory directory;
    SHARESDK_SetLogLevel(SHARESDK_LOG_ALL);
    ASSERT_TRUE(SHARESDK_LogToFile(directory.Path("log").c_str(), 1 << 20, 1));
    Init();
    Start();
    Peer peer(PORT);
    peer.Send("GET /upnp_notify.xml HTTP/1.1\r\nX: " + std::string(11 << 20, 'x')); // no header is that long
    EXPECT_TRUE(
        Await([&] { return directory.Read("log").find("Warning, http request time out!!") != std::string::npos; }));
    EXPECT_FALSE(peer.IsClosedNow());
    EXPECT_THAT(Description(), HasSubstr("HTTP/1.1 200 OK")); // others are served
    SHARESDK_LogToConsole();
}

TEST_F(UpnpServer, SilentPeersDelayNobody)
{
    Init();
    Start();
    std::vector<std::unique_ptr<Peer>> silent;
    for (int i = 0; i < 8; ++i)
    {
        silent.push_back(std::make_unique<Peer>(PORT));
    }
    EXPECT_THAT(Description(), HasSubstr("HTTP/1.1 200 OK"));
}

TEST_F(UpnpServer, NoiseAndAnswersStopNothing)
{
    Init();
    Start();
    SendNoise(PORT);
    Peer peer(PORT);
    peer.Send("HTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\nx");
    peer.ReadAll();
    EXPECT_THAT(Description(), HasSubstr("HTTP/1.1 200 OK"));
}

TEST_F(UpnpServer, TenThousandConnectionsLeaveItServing)
{
    Init();
    Start();
    for (int i = 0; i < 10000; ++i)
    {
        Peer peer(PORT);
        ASSERT_TRUE(peer.IsOpen()) << i;
        peer.Reset(); // leaves no port behind that waits for its time
    }
    EXPECT_THAT(Description(), HasSubstr("HTTP/1.1 200 OK"));
}

TEST_F(UpnpServer, HostAnnouncesWithItsStart)
{
    AddInterface("eth0", "10.1.0.5/24");
    CDatagramSniffer wire("eth0");
    EXPECT_EQ(1, NET_SERVER_Initial(1, 0, 0, nullptr, nullptr, "", "", 1, static_cast<NETNS::DEV_TYPE>(1)));
    EXPECT_TRUE(wire.Take().empty());
    EXPECT_FALSE(Peer(PORT).IsOpen());
    EXPECT_EQ(0, NET_SERVER_Start(8081, "", ""));
    EXPECT_EQ(1u, wire.Await(1).size());
    const std::string description = Description();
    EXPECT_THAT(description, HasSubstr("<friendlyName>MOKA</friendlyName>"));
    EXPECT_THAT(description, HasSubstr("<presentationURL>http://10.1.0.5:8081</presentationURL>"));
    EXPECT_THAT(description, HasSubstr("EmbeddedIPCDevice:1")); // whatever the host named
    EXPECT_EQ(0, NET_SERVER_Stop());
    EXPECT_FALSE(Peer(PORT).IsOpen());
    NET_SERVER_Quit();
}

TEST_F(UpnpServer, PolicyKeepsTheDeviceSilent)
{
    AddInterface("eth0", "10.1.0.5/24");
    CDatagramSniffer wire("eth0");
    NET_SERVER_SetPolicy(NET_POLICY_NO_ANNOUNCE);
    NET_SERVER_Initial(1, 0, 0, nullptr, nullptr, "", "", 1, NETNS::DEV_TYPE_DEFAULT);
    NET_SERVER_SetPolicy(0); // too late for this start
    NET_SERVER_Start(8081, "", "");
    EXPECT_FALSE(Peer(PORT).IsOpen());
    EXPECT_TRUE(wire.Take().empty());
    NET_SERVER_Stop();
    NET_SERVER_Quit();
}

} // namespace
