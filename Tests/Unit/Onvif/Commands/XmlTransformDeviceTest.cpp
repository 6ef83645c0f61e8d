// The answers of services, device, network and events, as the host reads them, in each dialect of cameras.
#include "OnvifSimulatorSoap.h"
#include "OnvifXmlParse.h"
#include "QLXXMLParse.h"
#include "ShareSDK.h"
#include "XmlTransform.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace
{

using Transform = void (*)(const std::string& soap, std::string& answer);
using Table = std::map<std::string, std::string>;

/// Without the line breaks and the indentation between elements, and without the declaration.
std::string Compact(const std::string& xml)
{
    std::string compact;
    bool blank = false;
    for (const char c : xml)
    {
        blank = c == '\n' || (blank && c == ' ');
        compact += blank ? "" : std::string(1, c);
    }
    const std::string declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
    return compact.compare(0, declaration.size(), declaration) == 0 ? compact.substr(declaration.size()) : compact;
}

std::string Soap(const std::string& body, const OnvifDialect& dialect = {})
{
    return RenderOnvifAnswer({body, "", "", ""}, dialect);
}

std::string Transformed(Transform transform, const std::string& soap, const std::string& soFar = "")
{
    std::string answer = soFar;
    transform(soap, answer);
    return Compact(answer);
}

const OnvifDialect OLD_ENVELOPE = []
{
    OnvifDialect dialect;
    dialect.prefixes["s"] = "SOAP-ENV";
    dialect.namespaces["s"] = "http://schemas.xmlsoap.org/soap/envelope/";
    return dialect;
}();

const OnvifDialect BARE = []
{
    OnvifDialect dialect;
    dialect.bareResponseElement = true;
    return dialect;
}();

struct AnswerCase
{
    const char* name;
    Transform transform;
    const char* body;   // of the camera, with the standard prefixes
    const char* answer; // of the host

    friend void PrintTo(const AnswerCase& one, std::ostream* out) { *out << one.name; }
};

// clang-format off
const AnswerCase ANSWERS[] = {
    {"TwoOfThreeInterfaces", &CXmlTransform::TransGetNetworkInterface,
     "<tds:GetNetworkInterfacesResponse>"
     "<tds:NetworkInterfaces token=\"eth0\"><tt:Enabled>true</tt:Enabled><tt:IPv4><tt:Enabled>true</tt:Enabled><tt:Config>"
     "<tt:Manual><tt:Address>10.0.0.5</tt:Address><tt:PrefixLength>20</tt:PrefixLength></tt:Manual><tt:DHCP>false</tt:DHCP>"
     "</tt:Config></tt:IPv4></tds:NetworkInterfaces>"
     "<tds:NetworkInterfaces token=\"eth1\"><tt:IPv4><tt:Config><tt:FromDHCP><tt:Address>10.0.1.5</tt:Address>"
     "<tt:PrefixLength>24</tt:PrefixLength></tt:FromDHCP><tt:DHCP>true</tt:DHCP></tt:Config></tt:IPv4>"
     "</tds:NetworkInterfaces>"
     "<tds:NetworkInterfaces token=\"eth2\"/></tds:GetNetworkInterfacesResponse>",
     "<GetResponse><ipv4><status>success</status><item token=\"eth0\"><dhcp>false</dhcp><ip>10.0.0.5</ip>"
     "<netmask>255.255.240.0</netmask></item><item token=\"eth1\"><dhcp>true</dhcp></item></ipv4></GetResponse>"},
    {"DhcpOfZeroIsPassedOn", &CXmlTransform::TransGetNetworkInterface,
     "<tds:GetNetworkInterfacesResponse><tds:NetworkInterfaces token=\"e\"><tt:IPv4><tt:Config><tt:Manual>"
     "<tt:Address>10.0.0.5</tt:Address></tt:Manual><tt:DHCP>0</tt:DHCP></tt:Config></tt:IPv4></tds:NetworkInterfaces>"
     "</tds:GetNetworkInterfacesResponse>",
     "<GetResponse><ipv4><status>success</status><item token=\"e\"><dhcp>0</dhcp></item></ipv4></GetResponse>"},
    {"NoInterfaces", &CXmlTransform::TransGetNetworkInterface,
     "<tds:GetNetworkInterfacesResponse/>",
     "<GetResponse><ipv4><status>success</status></ipv4></GetResponse>"},
    {"Gateway", &CXmlTransform::TransGetNetworkGateway,
     "<tds:GetNetworkDefaultGatewayResponse><tds:NetworkGateway><tt:IPv4Address>10.0.0.1</tt:IPv4Address>"
     "</tds:NetworkGateway></tds:GetNetworkDefaultGatewayResponse>",
     "<GetResponse><ipv4><gatewayStatus><status>success</status><gateway>10.0.0.1</gateway></gatewayStatus></ipv4>"
     "</GetResponse>"},
    {"NoGateway", &CXmlTransform::TransGetNetworkGateway,
     "<tds:GetNetworkDefaultGatewayResponse><tds:NetworkGateway/></tds:GetNetworkDefaultGatewayResponse>",
     "<GetResponse><ipv4><gatewayStatus><status>success</status></gatewayStatus></ipv4></GetResponse>"},
    {"DateAndTime", &CXmlTransform::TransGetSystemDateAndTime,
     "<tds:GetSystemDateAndTimeResponse><tds:SystemDateAndTime><tt:DateTimeType>NTP</tt:DateTimeType>"
     "<tt:DaylightSavings>true</tt:DaylightSavings><tt:TimeZone><tt:TZ>CET-1CEST</tt:TZ></tt:TimeZone><tt:UTCDateTime>"
     "<tt:Time><tt:Hour>1</tt:Hour><tt:Minute>2</tt:Minute><tt:Second>3</tt:Second></tt:Time>"
     "<tt:Date><tt:Year>2026</tt:Year><tt:Month>11</tt:Month><tt:Day>21</tt:Day></tt:Date></tt:UTCDateTime>"
     "</tds:SystemDateAndTime></tds:GetSystemDateAndTimeResponse>",
     "<GetResponse><dateAndTime><status>success</status><type>NTP</type><UTCDateTime><time><hour>1</hour>"
     "<minute>2</minute><second>3</second></time><date><year>2026</year><month>11</month><day>21</day></date>"
     "</UTCDateTime><daylightSaving>on</daylightSaving><timeZone>CET-1CEST</timeZone></dateAndTime></GetResponse>"},
    {"DaylightInCapitalsIsOff", &CXmlTransform::TransGetSystemDateAndTime,
     "<tds:GetSystemDateAndTimeResponse><tds:SystemDateAndTime><tt:DaylightSavings>TRUE</tt:DaylightSavings>"
     "</tds:SystemDateAndTime></tds:GetSystemDateAndTimeResponse>",
     "<GetResponse><dateAndTime><status>success</status><daylightSaving>off</daylightSaving></dateAndTime></GetResponse>"},
    {"DeviceInformation", &CXmlTransform::TransGetDeviceInformation,
     "<tds:GetDeviceInformationResponse><tds:Manufacturer>A &amp; B</tds:Manufacturer><tds:Model/>"
     "<tds:FirmwareVersion>1</tds:FirmwareVersion></tds:GetDeviceInformationResponse>",
     "<GetResponse><devInfo><status>success</status><manufacturer>A &amp; B</manufacturer><model></model></devInfo>"
     "</GetResponse>"},
    {"NameServersByHand", &CXmlTransform::TransGetDNS,
     "<tds:GetDNSResponse><tds:DNSInformation><tt:FromDHCP>false</tt:FromDHCP>"
     "<tt:DNSFromDHCP><tt:Type>IPv4</tt:Type><tt:IPv4Address>9.9.9.9</tt:IPv4Address></tt:DNSFromDHCP>"
     "<tt:DNSManual><tt:Type>IPv4</tt:Type><tt:IPv4Address>10.0.0.2</tt:IPv4Address></tt:DNSManual>"
     "<tt:DNSManual><tt:Type>IPv6</tt:Type><tt:IPv6Address>::1</tt:IPv6Address></tt:DNSManual>"
     "<tt:DNSManual><tt:Type>IPv4</tt:Type><tt:IPv4Address>10.0.0.3</tt:IPv4Address></tt:DNSManual>"
     "</tds:DNSInformation></tds:GetDNSResponse>",
     "<GetResponse><dns><status>success</status><dhcp>false</dhcp><ip>10.0.0.2</ip><ip>10.0.0.3</ip></dns></GetResponse>"},
    {"NameServersFromDhcp", &CXmlTransform::TransGetDNS,
     "<tds:GetDNSResponse><tds:DNSInformation><tt:FromDHCP>true</tt:FromDHCP>"
     "<tt:DNSFromDHCP><tt:Type>IPv4</tt:Type><tt:IPv4Address>9.9.9.9</tt:IPv4Address></tt:DNSFromDHCP>"
     "<tt:DNSManual><tt:Type>IPv4</tt:Type><tt:IPv4Address>10.0.0.2</tt:IPv4Address></tt:DNSManual>"
     "</tds:DNSInformation></tds:GetDNSResponse>",
     "<GetResponse><dns><status>success</status><dhcp>true</dhcp><ip>9.9.9.9</ip></dns></GetResponse>"},
    {"NetworkProtocols", &CXmlTransform::TransGetNetworkProtocols,
     "<tds:GetNetworkProtocolsResponse>"
     "<tds:NetworkProtocols><tt:Name>RTSP</tt:Name><tt:Enabled>true</tt:Enabled><tt:Port>554</tt:Port></tds:NetworkProtocols>"
     "<tds:NetworkProtocols><tt:Name>FTP</tt:Name><tt:Enabled>true</tt:Enabled><tt:Port>21</tt:Port></tds:NetworkProtocols>"
     "<tds:NetworkProtocols><tt:Name>HTTP</tt:Name><tt:Enabled>false</tt:Enabled></tds:NetworkProtocols>"
     "<tds:NetworkProtocols><tt:Name>HTTPS</tt:Name><tt:Port>443</tt:Port></tds:NetworkProtocols>"
     "</tds:GetNetworkProtocolsResponse>",
     "<GetResponse><networkProtocols><status>success</status><rtsp><enable>true</enable><port>554</port></rtsp>"
     "<http><enable>false</enable></http><https><port>443</port></https></networkProtocols></GetResponse>"},
    {"SetInterface", &CXmlTransform::TransSetNetworkInterface,
     "<tds:SetNetworkInterfacesResponse><tds:RebootNeeded>true</tds:RebootNeeded></tds:SetNetworkInterfacesResponse>",
     "<SetResponse><ipv4><status>success<rebootNeeded>true</rebootNeeded></status></ipv4></SetResponse>"},
    {"SetInterfaceWithoutAWord", &CXmlTransform::TransSetNetworkInterface,
     "<tds:SetNetworkInterfacesResponse/>",
     "<SetResponse><ipv4><status>success</status></ipv4></SetResponse>"},
    {"SetTime", &CXmlTransform::TransSetSystemDateAndTime,
     "<tds:SetSystemDateAndTimeResponse/>",
     "<SetResponse><dateAndTime><status>success</status></dateAndTime></SetResponse>"},
    {"PullPoint", &CXmlTransform::TransCreatePullPointSubscription,
     "<ew:CreatePullPointSubscriptionResponse><ew:SubscriptionReference><ad:Address>http://10.0.0.5/pull/1</ad:Address>"
     "</ew:SubscriptionReference><wsn:CurrentTime>2026-11-21T13:30:00Z</wsn:CurrentTime>"
     "<wsn:TerminationTime>2026-11-21T13:31:00Z</wsn:TerminationTime></ew:CreatePullPointSubscriptionResponse>",
     "<SetResponse><createPullPointSubscription><status>success</status><address>http://10.0.0.5/pull/1</address>"
     "<currentTime>2026-11-21T13:30:00Z</currentTime><terminationTime>2026-11-21T13:31:00Z</terminationTime>"
     "</createPullPointSubscription></SetResponse>"},
    {"Subscription", &CXmlTransform::TransSubscribe,
     "<wsn:SubscribeResponse><wsn:SubscriptionReference><ad:Address>http://10.0.0.5/s/1</ad:Address>"
     "</wsn:SubscriptionReference><wsn:CurrentTime>2026-11-21T13:30:00Z</wsn:CurrentTime></wsn:SubscribeResponse>",
     "<SetResponse><subscribe><status>success</status><address>http://10.0.0.5/s/1</address>"
     "<currentTime>2026-11-21T13:30:00Z</currentTime></subscribe></SetResponse>"},
    {"Renewal", &CXmlTransform::TransRenew,
     "<wsn:RenewResponse><wsn:TerminationTime>2026-11-21T13:31:00Z</wsn:TerminationTime>"
     "<wsn:CurrentTime>2026-11-21T13:30:00Z</wsn:CurrentTime></wsn:RenewResponse>",
     "<GetResponse><renew><status>success</status><terminationTime>2026-11-21T13:31:00Z</terminationTime>"
     "<currentTime>2026-11-21T13:30:00Z</currentTime></renew></GetResponse>"},
    // The items of the device's own key come twice, the first time empty; its data is a second "key".
    {"Messages", &CXmlTransform::TransPullMessages,
     "<ew:PullMessagesResponse><ew:CurrentTime>2026-11-21T13:30:00Z</ew:CurrentTime>"
     "<wsn:NotificationMessage><wsn:Topic Dialect=\"d\">tns1:VideoSource/MotionAlarm</wsn:Topic><wsn:Message>"
     "<tt:Message UtcTime=\"2026-11-21T13:29:00Z\" PropertyOperation=\"Changed\">"
     "<tt:Source><tt:SimpleItem Name=\"Source\" Value=\"VS1\"/><tt:SimpleItem Name=\"Rule\"/></tt:Source>"
     "<tt:Key><tt:SimpleItem Name=\"ObjectId\" Value=\"3\"/><tt:SimpleItem Name=\"Other\" Value=\"4\"/></tt:Key>"
     "<tt:Data><tt:SimpleItem Name=\"State\" Value=\"true\"/></tt:Data></tt:Message></wsn:Message>"
     "</wsn:NotificationMessage>"
     "<wsn:NotificationMessage><wsn:Topic>tns1:Device/Trigger/Relay</wsn:Topic></wsn:NotificationMessage>"
     "<wsn:NotificationMessage><wsn:Message><tt:Message/></wsn:Message></wsn:NotificationMessage>"
     "</ew:PullMessagesResponse>",
     "<GetResponse><pullMessages><status>success</status>"
     "<notifyMessage><topic>tns1:VideoSource/MotionAlarm</topic><message><utcTime>2026-11-21T13:29:00Z</utcTime>"
     "<source><item><name>Source</name><val>VS1</val></item><item><name>Rule</name></item></source>"
     "<key><item></item><item><name>ObjectId</name><val>3</val></item>"
     "<item></item><item><name>Other</name><val>4</val></item></key>"
     "<key><item><name>State</name><val>true</val></item></key></message><propertyOper>Changed</propertyOper>"
     "</notifyMessage><notifyMessage><topic>tns1:Device/Trigger/Relay</topic></notifyMessage>"
     "<notifyMessage><message></message></notifyMessage></pullMessages></GetResponse>"},
    {"NoMessages", &CXmlTransform::TransPullMessages,
     "<ew:PullMessagesResponse/>",
     "<GetResponse><pullMessages><status>success</status></pullMessages></GetResponse>"},
};
// clang-format on

class XmlTransformAnswer : public testing::TestWithParam<AnswerCase>
{
protected:
    XmlTransformAnswer() { SHARESDK_SetLogLevel(SHARESDK_LOG_NONE); } // each cut document would tell of its interfaces
    ~XmlTransformAnswer() override { SHARESDK_SetLogLevel(SHARESDK_LOG_ALL); }
};

TEST_P(XmlTransformAnswer, IsReadInEachDialect)
{
    for (const auto& [name, dialect] : OnvifDialects())
    {
        EXPECT_EQ(GetParam().answer, Transformed(GetParam().transform, Soap(GetParam().body, dialect))) << name;
    }
}

TEST_P(XmlTransformAnswer, OfAFaultIsJustItsStatus)
{
    const OnvifAnswer fault = OnvifAnswer::Fault("ter:ActionNotSupported", "No <such> action");
    for (const auto& [name, dialect] : OnvifDialects())
    {
        const std::string answer = Transformed(GetParam().transform, RenderOnvifAnswer(fault, dialect));
        const std::string status = "<status>fail<errorCode>5</errorCode><description>No &lt;such&gt; action"
                                   "</description></status>";
        const std::size_t begin = answer.find(status);
        ASSERT_NE(std::string::npos, begin) << name << answer;
        EXPECT_EQ("</", answer.substr(begin + status.size(), 2)) << name << answer;
    }
}

TEST_P(XmlTransformAnswer, TellsABlamedArgumentOfTheNetworkProtocolsOnly)
{
    const std::string expected = GetParam().transform == &CXmlTransform::TransGetNetworkProtocols ? "30" : "5";
    const std::string answer =
        Transformed(GetParam().transform, RenderOnvifAnswer(OnvifAnswer::Fault("ter:InvalidArgVal", "No"), {}));
    EXPECT_NE(std::string::npos, answer.find("<errorCode>" + expected + "</errorCode>")) << answer;
}

// Whatever comes, the answer stays a document.
TEST_P(XmlTransformAnswer, StaysADocumentWhenTheCamerasIsCut)
{
    const std::string soap = Soap(GetParam().body);
    for (std::size_t length = 0; length < soap.size(); ++length)
    {
        std::string answer;
        GetParam().transform(soap.substr(0, length), answer);
        EXPECT_NE(0u, CQLXXMLParse(answer).GetRootItem()) << length;
    }
}

INSTANTIATE_TEST_SUITE_P(All, XmlTransformAnswer, testing::ValuesIn(ANSWERS),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(XmlTransform, AddsToTheAnswerSoFar)
{
    const std::string body = "<tds:GetDNSResponse><tds:DNSInformation><tt:FromDHCP>true</tt:FromDHCP>"
                             "</tds:DNSInformation></tds:GetDNSResponse>";
    EXPECT_EQ("<GetResponse><devInfo><status>success</status></devInfo>"
              "<dns><status>success</status><dhcp>true</dhcp></dns></GetResponse>",
              Transformed(&CXmlTransform::TransGetDNS, Soap(body),
                          "<GetResponse><devInfo><status>success</status></devInfo></GetResponse>"));
    EXPECT_EQ("<GetResponse><dns><ip>1.2.3.4</ip><status>success</status><dhcp>true</dhcp></dns></GetResponse>",
              Transformed(&CXmlTransform::TransGetDNS, Soap(body),
                          "<GetResponse><dns><ip>1.2.3.4</ip></dns>"
                          "</GetResponse>"));
}

// A document that keeps an older envelope's prefix, and one that omits a prefix, are read where that is provided for.
TEST(XmlTransform, ReadsTheTimeInOtherSpellings)
{
    const std::string body = "<tds:GetSystemDateAndTimeResponse><tds:SystemDateAndTime><tt:DateTimeType>NTP"
                             "</tt:DateTimeType></tds:SystemDateAndTime></tds:GetSystemDateAndTimeResponse>";
    const std::string answer = "<GetResponse><dateAndTime><status>success</status><type>NTP</type>"
                               "<daylightSaving>off</daylightSaving></dateAndTime></GetResponse>";
    EXPECT_EQ(answer, Transformed(&CXmlTransform::TransGetSystemDateAndTime, Soap(body, OLD_ENVELOPE)));
    EXPECT_EQ(answer, Transformed(&CXmlTransform::TransGetSystemDateAndTime, Soap(body, BARE)));
    OnvifDialect inBody;
    inBody.declaresInBody = true;
    inBody.prefixes["tds"] = "d";
    EXPECT_EQ("<GetResponse><dateAndTime><status>success</status></dateAndTime></GetResponse>",
              Transformed(&CXmlTransform::TransGetSystemDateAndTime, Soap(body, inBody)));
}

// A fault of an older envelope is not found.
TEST(XmlTransform, TakesAFaultInAnUnknownEnvelopeForSuccess)
{
    EXPECT_EQ("<SetResponse><dateAndTime><status>success</status></dateAndTime></SetResponse>",
              Transformed(&CXmlTransform::TransSetSystemDateAndTime,
                          RenderOnvifAnswer(OnvifAnswer::Fault("ter:InvalidArgVal", "No"), OLD_ENVELOPE)));
}

TEST(XmlTransform, AFaultWithoutAReasonHasNoDescription)
{
    EXPECT_EQ("<SetResponse><dateAndTime><status>fail<errorCode>5</errorCode></status></dateAndTime></SetResponse>",
              Transformed(&CXmlTransform::TransSetSystemDateAndTime, Soap("<s:Fault><s:Code/></s:Fault>")));
}

TEST(XmlTransform, ARepeatedChangeGainsAStatus)
{
    std::string answer;
    CXmlTransform::TransSetBaseResponse(Soap("<tds:SetDNSResponse/>"), answer, "dns");
    CXmlTransform::TransSetBaseResponse(
        RenderOnvifAnswer(OnvifAnswer::Fault("ter:InvalidArgVal", "No"), OnvifDialects().at("UnusualPrefixes")), answer,
        "dns");
    EXPECT_EQ("<SetResponse><dns><status>success</status><status>fail<errorCode>5</errorCode>"
              "<description>No</description></status></dns></SetResponse>",
              Compact(answer));
}

struct FaultCase
{
    const char* code;
    const char* subcode;
    unsigned int errorCode;
};

TEST(XmlTransform, BlamesAnArgumentOnlyByBothCodes)
{
    for (const FaultCase& one :
         {FaultCase{"Sender", "ter:InvalidArgVal", 30}, FaultCase{"Receiver", "ter:InvalidArgVal", 5},
          FaultCase{"Sender", "ter:NotAuthorized", 5}})
    {
        for (const auto& [name, dialect] : OnvifDialects())
        {
            const std::string soap = RenderOnvifAnswer(OnvifAnswer::Fault(one.subcode, "No", one.code), dialect);
            CQLXXMLParse answer("<key/>");
            EXPECT_EQ(static_cast<int>(one.errorCode),
                      CXmlTransform::TransResponseGeneric(soap, answer, answer.GetRootItem()))
                << name;
            EXPECT_EQ("<key><status>fail<errorCode>" + std::to_string(one.errorCode) +
                          "</errorCode><description>No</description></status></key>",
                      Compact(*answer.GetDoc()));
            CQLXXMLParse base("<key/>");
            EXPECT_FALSE(CXmlTransform::TransResponseBase(soap, base, base.GetRootItem()));
            EXPECT_EQ("<key><status>fail<errorCode>5</errorCode><description>No</description></status></key>",
                      Compact(*base.GetDoc()));
        }
    }
    CQLXXMLParse answer("<key/>");
    EXPECT_EQ(0, CXmlTransform::TransResponseGeneric(Soap("<x/>"), answer, answer.GetRootItem()));
    EXPECT_TRUE(CXmlTransform::TransResponseBase(Soap("<x/>"), answer, answer.GetRootItem()));
}

// What the XML library prints for an element without a name; it does not read it back, so that the next key begins a
// new answer.
TEST(XmlTransform, TheGatewaysStatusStandsInAnElementWithoutAName)
{
    std::string answer;
    CXmlTransform::TransSetNetworkGateway(Soap("<tds:SetNetworkDefaultGatewayResponse/>"), answer);
    EXPECT_EQ("<SetResponse><ipv4><><status>success</status></></ipv4></SetResponse>", Compact(answer));
    EXPECT_EQ(0u, CQLXXMLParse(answer).GetRootItem());
    CXmlTransform::TransSetNetworkInterface(Soap("<tds:SetNetworkInterfacesResponse/>"), answer);
    EXPECT_EQ("<SetResponse><ipv4><status>success</status></ipv4></SetResponse>", Compact(answer));
}

TEST(XmlTransform, CutsAnAddressToItsPath)
{
    EXPECT_EQ("onvif/device_service", CXmlTransform::ParseUrlInXaddr("http://10.0.0.5/onvif/device_service"));
    EXPECT_EQ("onvif/x?a=http://b/c", CXmlTransform::ParseUrlInXaddr("http://10.0.0.5:8080/onvif/x?a=http://b/c"));
    EXPECT_EQ("", CXmlTransform::ParseUrlInXaddr("http://10.0.0.5"));
    EXPECT_EQ("", CXmlTransform::ParseUrlInXaddr("http://10.0.0.5/"));
    EXPECT_EQ("", CXmlTransform::ParseUrlInXaddr("http://"));
    EXPECT_EQ("path", CXmlTransform::ParseUrlInXaddr("  http://10.0.0.5/path"));
    EXPECT_EQ("https://10.0.0.5/onvif", CXmlTransform::ParseUrlInXaddr("https://10.0.0.5/onvif"));
    EXPECT_EQ("onvif/plain", CXmlTransform::ParseUrlInXaddr("onvif/plain"));
    EXPECT_EQ("", CXmlTransform::ParseUrlInXaddr(""));
}

std::string Service(const std::string& uri, const std::string& path)
{
    return "<tds:Service><tds:Namespace>" + uri + "</tds:Namespace><tds:XAddr>http://10.0.0.5/" + path +
           "</tds:XAddr></tds:Service>";
}

// clang-format off
const Table SERVICES = {
    {"analytics", "p7"}, {"device", "p1"}, {"deviceIO", "p6"}, {"events", "p3"}, {"imaging", "p5"},
    {"media", "p2"}, {"ptz", "p4"}, {"recording", "p8"}, {"replay", "p10"}, {"search", "p9"},
};
// clang-format on

std::string ServicesBody()
{
    return "<tds:GetServicesResponse>" + Service("http://www.onvif.org/ver10/device/wsdl", "p1") +
           Service("http://www.onvif.org/ver10/media/wsdl", "p2") +
           Service("http://www.onvif.org/ver10/events/wsdl", "p3") +
           Service("http://www.onvif.org/ver20/ptz/wsdl", "p4") +
           Service("http://www.onvif.org/ver20/imaging/wsdl", "p5") +
           Service("http://www.onvif.org/ver10/deviceIO/wsdl", "p6") +
           Service("http://www.onvif.org/ver20/analytics/wsdl/", "p7") + "<tds:Other/>" +
           Service("http://www.onvif.org/ver10/recording/wsdl", "p8") +
           Service("http://www.onvif.org/ver10/search/wsdl", "p9") +
           Service("http://www.onvif.org/ver10/replay/wsdl", "p10") +
           Service("http://www.onvif.org/ver10/receiver/wsdl", "p11") +
           Service("http://www.onvif.org/ver10/display/wsdl", "p12") +
           Service("http://www.onvif.org/VER20/MEDIA/WSDL", "p13") +
           Service("http://www.onvif.org/ver20/media/wsdl", "p14") + "</tds:GetServicesResponse>";
}

TEST(XmlTransform, SortsServicesByTheirNamespaces)
{
    for (const auto& [name, dialect] : OnvifDialects())
    {
        Table services = {{"stale", "entry"}};
        CXmlTransform::TransGetServers(Soap(ServicesBody(), dialect), services);
        EXPECT_EQ(SERVICES, services) << name;
    }
    Table services;
    CXmlTransform::TransGetServers(Soap(ServicesBody(), OLD_ENVELOPE), services);
    EXPECT_EQ(SERVICES, services);
}

/// What is logged while it lives.
class Log
{
public:
    Log() { SHARESDK_LogToFile(m_path.c_str(), 1 << 20, 1); }
    ~Log()
    {
        SHARESDK_LogToConsole();
        std::remove(m_path.c_str());
    }
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

    std::string Text() const
    {
        std::ifstream file(m_path);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

private:
    const std::string m_path = testing::TempDir() + "onvif-transform." + std::to_string(getpid()) + ".log";
};

TEST(XmlTransform, TellsTheLogOfAServiceThatItDoesNotKnow)
{
    const Log log;
    Table services;
    CXmlTransform::TransGetServers(
        Soap("<tds:GetServicesResponse>" + Service("http://h/advancedsecurity", "p") + "</tds:GetServicesResponse>"),
        services);
    EXPECT_TRUE(services.empty());
    EXPECT_NE(std::string::npos, log.Text().find("Warning, unknowed service address!!")) << log.Text();
}

TEST(XmlTransform, TellsTheLogOfADeviceWithoutInterfaces)
{
    const Log log;
    Transformed(&CXmlTransform::TransGetNetworkInterface, Soap("<tds:GetNetworkInterfacesResponse/>"));
    EXPECT_NE(std::string::npos, log.Text().find("ASSERT")) << log.Text();
}

TEST(XmlTransform, FindsNoServicesInAFaultOrNothing)
{
    Table services = {{"stale", "entry"}};
    CXmlTransform::TransGetServers(RenderOnvifAnswer(OnvifAnswer::Fault("ter:X", "No"), {}), services);
    EXPECT_TRUE(services.empty());
    CXmlTransform::TransGetServers("", services);
    EXPECT_TRUE(services.empty());
}

std::string Capability(const std::string& name, const std::string& more = "")
{
    return "<tt:" + name + "><tt:XAddr>http://10.0.0.5/" + name + "</tt:XAddr>" + more + "</tt:" + name + ">";
}

std::string Capabilities(const std::string& list)
{
    return "<tds:GetCapabilitiesResponse><tds:Capabilities>" + list +
           "</tds:Capabilities></tds:GetCapabilitiesResponse>";
}

const char* const CATEGORIES[] = {"Media",  "PTZ",      "Imaging",  "Events",    "Device",  "Analytics",
                                  "Search", "DeviceIO", "Receiver", "Recording", "Display", "Replay"};
const char* const CATEGORY_KEYS[] = {"media",  "ptz",      "imaging",  "events",    "device",  "analytics",
                                     "search", "deviceIO", "receiver", "recording", "display", "replay"};

TEST(XmlTransform, TakesThePathsOfAllCapabilities)
{
    std::string list;
    Table expected;
    for (std::size_t i = 0; i < std::size(CATEGORIES); ++i)
    {
        list += Capability(CATEGORIES[i]);
        expected[CATEGORY_KEYS[i]] = CATEGORIES[i];
    }
    list += "<tt:Extension/><tt:Unknown><tt:XAddr>http://10.0.0.5/u</tt:XAddr></tt:Unknown>";
    for (const auto& [name, dialect] : OnvifDialects())
    {
        Table urls;
        bool subscription = true;
        bool pullPoint = false;
        EXPECT_TRUE(CXmlTransform::TransGetAllCapabilitiesUrl(Soap(Capabilities(list), dialect), urls, subscription,
                                                              pullPoint));
        EXPECT_EQ(expected, urls) << name;
        EXPECT_TRUE(subscription);
        EXPECT_FALSE(pullPoint);
    }
}

TEST(XmlTransform, KeepsThePathsThatAreThere)
{
    Table urls = {{"media", "first"}};
    bool flag = false;
    EXPECT_TRUE(CXmlTransform::TransGetAllCapabilitiesUrl(
        Soap(Capabilities("<tt:Media><tt:XAddr>http://h/a</tt:XAddr></tt:Media><tt:PTZ/><tt:Imaging><tt:XAddr>"
                          "http://h/b</tt:XAddr></tt:Imaging>" +
                          Capability("Imaging"))),
        urls, flag, flag));
    EXPECT_EQ((Table{{"imaging", "b"}, {"media", "first"}}), urls);
}

TEST(XmlTransform, ReadsTheFlagsOfEvents)
{
    for (const auto& [text, value] : {std::pair<std::string, bool>{"true", true},
                                      {"TRUE", true},
                                      {"1", true},
                                      {"True", false},
                                      {"false", false},
                                      {"0", false},
                                      {"", false}})
    {
        Table urls;
        bool subscription = !value;
        bool pullPoint = !value;
        EXPECT_TRUE(CXmlTransform::TransGetAllCapabilitiesUrl(
            Soap(Capabilities(Capability("Events", "<tt:WSSubscriptionPolicySupport>" + text +
                                                       "</tt:WSSubscriptionPolicySupport><tt:WSPullPointSupport>" +
                                                       text + "</tt:WSPullPointSupport>"))),
            urls, subscription, pullPoint));
        EXPECT_EQ(value, subscription) << text;
        EXPECT_EQ(value, pullPoint) << text;
    }
}

TEST(XmlTransform, TakesOneCategoryOnly)
{
    for (std::size_t i = 0; i < std::size(CATEGORIES); ++i)
    {
        std::string url;
        EXPECT_TRUE(CXmlTransform::TransGetCapabilitieUrl(
            static_cast<SERVICE_TYPE>(i), Soap(Capabilities("<tt:Other/>" + Capability(CATEGORIES[i]))), url));
        EXPECT_EQ(CATEGORIES[i], url);
        EXPECT_FALSE(CXmlTransform::TransGetCapabilitieUrl(static_cast<SERVICE_TYPE>((i + 1) % std::size(CATEGORIES)),
                                                           Soap(Capabilities(Capability(CATEGORIES[i]))), url));
        EXPECT_EQ(CATEGORIES[i], url);
    }
    std::string url;
    EXPECT_FALSE(CXmlTransform::TransGetCapabilitieUrl(static_cast<SERVICE_TYPE>(12),
                                                       Soap(Capabilities(Capability("Media"))), url));
    EXPECT_FALSE(CXmlTransform::TransGetCapabilitieUrl(SERVICE_TYPE_MEDIA, Soap(Capabilities("<tt:Media/>")), url));
}

TEST(XmlTransform, FindsNoCapabilitiesInAFaultOrNothing)
{
    for (const std::string& soap : {RenderOnvifAnswer(OnvifAnswer::Fault("ter:X", "No"), {}),
                                    Soap("<tds:GetCapabilitiesResponse/>"), std::string("no document"), std::string()})
    {
        Table urls;
        bool flag = true;
        std::string url;
        EXPECT_FALSE(CXmlTransform::TransGetAllCapabilitiesUrl(soap, urls, flag, flag));
        EXPECT_FALSE(CXmlTransform::TransGetCapabilitieUrl(SERVICE_TYPE_MEDIA, soap, url));
        EXPECT_TRUE(urls.empty());
    }
}

std::string ProbeMatch(const std::string& addresses)
{
    return "<SOAP-ENV:Envelope xmlns:SOAP-ENV=\"http://www.w3.org/2003/05/soap-envelope\""
           " xmlns:d=\"http://schemas.xmlsoap.org/ws/2005/04/discovery\""
           " xmlns:wsa=\"http://schemas.xmlsoap.org/ws/2004/08/addressing\"><SOAP-ENV:Body><d:ProbeMatches>"
           "<d:ProbeMatch><wsa:EndpointReference><wsa:Address>urn:uuid:1</wsa:Address></wsa:EndpointReference>"
           "<d:XAddrs>" +
           addresses + "</d:XAddrs></d:ProbeMatch></d:ProbeMatches></SOAP-ENV:Body></SOAP-ENV:Envelope>";
}

TEST(XmlTransform, ListsTheAddressesOfAProbedCamera)
{
    EXPECT_EQ("<multicastSearchResult><tcpIp><ipAddr type=\"list\"><itemType><ip/><serverAddr/></itemType>"
              "<item><ip>10.0.0.5</ip><serverAddr>http://10.0.0.5:8080/onvif</serverAddr></item>"
              "<item><ip>192.168.0.5</ip><serverAddr>http://192.168.0.5</serverAddr></item></ipAddr></tcpIp>"
              "<port><dataPort>8080</dataPort><httpPort>8080</httpPort></port>"
              "<productInfo><guid>urn:uuid:1</guid><productSeries type=\"productSeries\">ONVIF</productSeries>"
              "</productInfo></multicastSearchResult>",
              Compact(CXmlTransform::TransPorbeMatch(ProbeMatch("http://10.0.0.5:8080/onvif http://192.168.0.5"))));
    const std::string plain = CXmlTransform::TransPorbeMatch(ProbeMatch("http://10.0.0.5/onvif"));
    EXPECT_NE(std::string::npos, plain.find("<dataPort>80</dataPort>")) << plain;
}

TEST(XmlTransform, ListsNothingWithoutAnAddress)
{
    EXPECT_EQ("", CXmlTransform::TransPorbeMatch(ProbeMatch("https://10.0.0.5/onvif")));
    EXPECT_EQ("", CXmlTransform::TransPorbeMatch(ProbeMatch("")));
    EXPECT_EQ("", CXmlTransform::TransPorbeMatch(""));
}

} // namespace
