// The requests of services, device, network and events, as they go out but for the credentials.
#include "GetCmd.h"
#include "OnvifXmlParse.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace
{

const CGetDefaultCmd& Builder()
{
    return CGetDefaultCmd::Instance();
}

std::string Printed(const std::string& soap)
{
    return *COnvifXmlParse(soap).GetDoc();
}

/// Without the line breaks and the indentation between elements.
std::string Compact(const std::string& soap)
{
    std::string compact;
    bool blank = false;
    for (const char c : Printed(soap))
    {
        blank = c == '\n' || (blank && c == ' ');
        compact += blank ? "" : std::string(1, c);
    }
    return compact;
}

const std::string TOKEN =
    "<wsse:UsernameToken><wsse:Username/><wsse:Password Type=\"http://docs.oasis-open.org/wss/2004/01/"
    "oasis-200401-wss-username-token-profile-1.0#PasswordDigest\"/><wsse:Nonce/><wsu:Created/></wsse:UsernameToken>";
const std::string SECURITY = "<wsse:Security>" + TOKEN + "</wsse:Security>";
const std::string SECURITY_UNDERSTOOD = "<wsse:Security s:mustUnderstand=\"true\">" + TOKEN + "</wsse:Security>";

/// @param declarations  of the prefixes that the body needs
std::string Envelope(const std::string& declarations, const std::string& header, const std::string& body,
                     const std::string& bodyAttributes = "")
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><s:Envelope xmlns:s=\"http://www.w3.org/2003/05/soap-envelope\""
           " xmlns:wsse=\"http://docs.oasis-open.org/wss/2004/01/oasis-200401-wss-wssecurity-secext-1.0.xsd\""
           " xmlns:wsu=\"http://docs.oasis-open.org/wss/2004/01/oasis-200401-wss-wssecurity-utility-1.0.xsd\"" +
           declarations + "><s:Header>" + header + "</s:Header><s:Body" + bodyAttributes + ">" + body +
           "</s:Body></s:Envelope>";
}

const std::string TDS = " xmlns:tds=\"http://www.onvif.org/ver10/device/wsdl\"";
const std::string TDS_TT = TDS + " xmlns:tt=\"http://www.onvif.org/ver10/schema\"";
const std::string XSI_XSD =
    " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xmlns:xsd=\"http://www.w3.org/2001/XMLSchema\"";

std::string Device(const std::string& body)
{
    return Envelope(TDS, SECURITY, body);
}

std::string DeviceWrite(const std::string& body)
{
    return Envelope(TDS_TT, SECURITY, body);
}

TEST(GetCmdDevice, AreIndentedWithBlanksOnTheWire)
{
    EXPECT_EQ("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<s:Envelope xmlns:s=\"http://www.w3.org/2003/05/soap-envelope\""
              " xmlns:wsse=\"http://docs.oasis-open.org/wss/2004/01/oasis-200401-wss-wssecurity-secext-1.0.xsd\""
              " xmlns:wsu=\"http://docs.oasis-open.org/wss/2004/01/oasis-200401-wss-wssecurity-utility-1.0.xsd\""
              " xmlns:tds=\"http://www.onvif.org/ver10/device/wsdl\">\n"
              "    <s:Header>\n"
              "        <wsse:Security>\n"
              "            <wsse:UsernameToken>\n"
              "                <wsse:Username/>\n"
              "                <wsse:Password Type=\"http://docs.oasis-open.org/wss/2004/01/"
              "oasis-200401-wss-username-token-profile-1.0#PasswordDigest\"/>\n"
              "                <wsse:Nonce/>\n"
              "                <wsu:Created/>\n"
              "            </wsse:UsernameToken>\n"
              "        </wsse:Security>\n"
              "    </s:Header>\n"
              "    <s:Body>\n"
              "        <tds:GetDNS/>\n"
              "    </s:Body>\n"
              "</s:Envelope>\n",
              Printed(Builder().GetDNS()));
}

TEST(GetCmdDevice, AskForServices)
{
    EXPECT_EQ(Envelope(TDS, SECURITY_UNDERSTOOD,
                       "<tds:GetServices><tds:IncludeCapability>false</tds:IncludeCapability></tds:GetServices>"),
              Compact(Builder().GetServices()));
    EXPECT_EQ(
        Envelope(TDS, SECURITY, "<tds:GetCapabilities><tds:Category>All</tds:Category></tds:GetCapabilities>", XSI_XSD),
        Compact(Builder().GetAllCapabilities()));
}

TEST(GetCmdDevice, NameEachCategory)
{
    const char* const CATEGORIES[] = {"Media",  "PTZ",      "Imaging",  "Events",    "Device",  "Analytics",
                                      "Search", "DeviceIO", "Receiver", "Recording", "Display", "Replay"};
    int type = 0;
    for (const char* category : CATEGORIES)
    {
        EXPECT_EQ(Envelope(TDS, SECURITY_UNDERSTOOD,
                           std::string("<tds:GetCapabilities><tds:Category>") + category +
                               "</tds:Category></tds:GetCapabilities>",
                           XSI_XSD),
                  Compact(Builder().GetCapabilities(static_cast<SERVICE_TYPE>(type++))));
    }
}

TEST(GetCmdDevice, ReadTheDevice)
{
    EXPECT_EQ(Device("<tds:GetNetworkInterfaces/>"), Compact(Builder().GetNetworkInterfaces()));
    EXPECT_EQ(Device("<tds:GetNetworkDefaultGateway/>"), Compact(Builder().GetNetworkGateway()));
    EXPECT_EQ(Device("<tds:GetSystemDateAndTime/>"), Compact(Builder().GetSystemDateAndTime()));
    EXPECT_EQ(Device("<tds:GetDeviceInformation/>"), Compact(Builder().GetDeviceInformation()));
    EXPECT_EQ(Device("<tds:GetDNS/>"), Compact(Builder().GetDNS()));
    EXPECT_EQ(Device("<tds:GetNetworkProtocols/>"), Compact(Builder().GetNetworkProtocols()));
}

TEST(GetCmdDevice, SetAnAddressWithDhcpOff)
{
    EXPECT_EQ(DeviceWrite("<tds:SetNetworkInterfaces><tds:InterfaceToken>eth0</tds:InterfaceToken>"
                          "<tds:NetworkInterface><tt:IPv4><tt:DHCP>false</tt:DHCP><tt:Manual>"
                          "<tt:Address>10.0.0.5</tt:Address><tt:PrefixLength>20</tt:PrefixLength></tt:Manual></tt:IPv4>"
                          "</tds:NetworkInterface></tds:SetNetworkInterfaces>"),
              Compact(Builder().SetNetworkInterfaces(
                  "<Set version=\"1.0\"><ipv4><token>eth0</token><dhcp>false</dhcp><ip>10.0.0.5</ip>"
                  "<netmask>255.255.240.0</netmask><gateway>10.0.0.1</gateway></ipv4></Set>")));
}

// Only "false" brings the address, not "0".
TEST(GetCmdDevice, SetNoAddressUnlessDhcpIsFalse)
{
    for (const std::string dhcp : {"true", "0", "FALSE"})
    {
        EXPECT_EQ(DeviceWrite("<tds:SetNetworkInterfaces><tds:InterfaceToken>eth0</tds:InterfaceToken>"
                              "<tds:NetworkInterface><tt:IPv4><tt:DHCP>" +
                              dhcp + "</tt:DHCP></tt:IPv4></tds:NetworkInterface></tds:SetNetworkInterfaces>"),
                  Compact(Builder().SetNetworkInterfaces("<Set><ipv4><token>eth0</token><dhcp>" + dhcp +
                                                         "</dhcp><ip>10.0.0.5</ip><netmask>255.0.0.0</netmask>"
                                                         "</ipv4></Set>")));
    }
}

TEST(GetCmdDevice, SetTheGateway)
{
    EXPECT_EQ(Envelope(TDS, SECURITY,
                       "<tds:SetNetworkDefaultGateway><tds:IPv4Address>10.0.0.1</tds:IPv4Address>"
                       "</tds:SetNetworkDefaultGateway>"),
              Compact(Builder().SetNetworkGateway("<Set><ipv4><gateway>10.0.0.1</gateway></ipv4></Set>")));
}

std::string SetTime(const std::string& fields)
{
    return Compact(Builder().SetSystemDateAndTime("<Set><dateAndTime>" + fields + "</dateAndTime></Set>"));
}

std::string TimeRequest(const std::string& body)
{
    return DeviceWrite("<tds:SetSystemDateAndTime>" + body + "</tds:SetSystemDateAndTime>");
}

const std::string UTC = "<UTCDateTime><time><hour>23</hour><minute>5</minute><second>9</second></time>"
                        "<date><year>2026</year><month>12</month><day>31</day></date></UTCDateTime>";

/// A time zone for one test.
class Zone
{
public:
    explicit Zone(const char* name)
    {
        setenv("TZ", name, 1);
        tzset();
    }
    ~Zone()
    {
        unsetenv("TZ");
        tzset();
    }
    Zone(const Zone&) = delete;
    Zone& operator=(const Zone&) = delete;
};

// The elements come in this order, which is not that of the schema.
TEST(GetCmdDevice, SetTheTimeAsUtc)
{
    const Zone zone("XYZ-2"); // two hours east
    EXPECT_EQ(TimeRequest("<tds:DateTimeType>Manual</tds:DateTimeType><tds:UTCDateTime>"
                          "<tt:Time><tt:Hour>21</tt:Hour><tt:Minute>5</tt:Minute><tt:Second>9</tt:Second></tt:Time>"
                          "<tt:Date><tt:Year>2026</tt:Year><tt:Month>12</tt:Month><tt:Day>31</tt:Day></tt:Date>"
                          "</tds:UTCDateTime><tds:DaylightSavings>true</tds:DaylightSavings>"
                          "<tds:TimeZone><tt:TZ>GMT+01:00</tt:TZ></tds:TimeZone>"),
              SetTime("<timeZone><tz>GMT+01:00</tz></timeZone><daylightSaving><switch>on</switch></daylightSaving>" +
                      UTC + "<type>Manual</type>"));
}

TEST(GetCmdDevice, SetALocalTimeOfSummer)
{
    const Zone zone("CET-1CEST,M3.5.0,M10.5.0/3");
    const std::string request =
        SetTime("<type>Manual</type><UTCDateTime><time><hour>12</hour></time><date><year>2026</year><month>7</month>"
                "<day>1</day></date></UTCDateTime>");
    EXPECT_NE(std::string::npos, request.find("<tt:Hour>10</tt:Hour>")) << request;
}

TEST(GetCmdDevice, SetATimeAfter2038)
{
    const Zone zone("XYZ-2"); // two hours east
    const std::string request =
        SetTime("<type>Manual</type><UTCDateTime><time><hour>1</hour></time><date><year>2040</year><month>3</month>"
                "<day>1</day></date></UTCDateTime>");
    EXPECT_NE(std::string::npos, request.find("<tt:Hour>23</tt:Hour>")) << request;
    EXPECT_NE(std::string::npos, request.find("<tt:Year>2040</tt:Year><tt:Month>2</tt:Month><tt:Day>29</tt:Day>"))
        << request;
}

TEST(GetCmdDevice, SetNoTimeByNtp)
{
    EXPECT_EQ(TimeRequest("<tds:DateTimeType>NTP</tds:DateTimeType>"), SetTime("<type>NTP</type>" + UTC));
    EXPECT_EQ(TimeRequest("<tds:DateTimeType>NTP</tds:DateTimeType><tds:DaylightSavings>false</tds:DaylightSavings>"
                          "<tds:TimeZone><tt:TZ/></tds:TimeZone>"),
              SetTime("<type>NTP</type><daylightSaving><switch>ON</switch></daylightSaving><timeZone/>"));
}

TEST(GetCmdDevice, SetNoTimeWithoutAKeyOrAType)
{
    const std::string EMPTY = DeviceWrite("<tds:SetSystemDateAndTime/>");
    EXPECT_EQ(EMPTY, Compact(Builder().SetSystemDateAndTime("<Set/>")));
    EXPECT_EQ(EMPTY, Compact(Builder().SetSystemDateAndTime("no document")));
    EXPECT_EQ(EMPTY, SetTime(UTC));
}

// Numbers that are no time go out as some time.
TEST(GetCmdDevice, SurviveNumbersThatAreNoTime)
{
    for (const char* number : {"-2147483648", "2147483647", "99999999999999", "x"})
    {
        const std::string value = number;
        SetTime("<type>Manual</type><UTCDateTime><time><hour>" + value + "</hour><minute>" + value +
                "</minute><second>" + value + "</second></time><date><year>" + value + "</year><month>" + value +
                "</month><day>" + value + "</day></date></UTCDateTime>");
    }
}

TEST(GetCmdDevice, SetNameServers)
{
    EXPECT_EQ(
        DeviceWrite("<tds:SetDNS><tds:FromDHCP>false</tds:FromDHCP>"
                    "<tds:DNSManual><tt:Type>IPv4</tt:Type><tt:IPv4Address>10.0.0.2</tt:IPv4Address></tds:DNSManual>"
                    "<tds:DNSManual><tt:Type>IPv4</tt:Type><tt:IPv4Address>10.0.0.3</tt:IPv4Address></tds:DNSManual>"
                    "</tds:SetDNS>"),
        Compact(Builder().SetDNS("<Set><dns><dhcp>false</dhcp><ip>10.0.0.2</ip><ip>10.0.0.3</ip></dns></Set>")));
    EXPECT_EQ(DeviceWrite("<tds:SetDNS><tds:FromDHCP>true</tds:FromDHCP><tds:DNSFromDHCP><tt:Type>IPv4</tt:Type>"
                          "<tt:IPv4Address>10.0.0.2</tt:IPv4Address></tds:DNSFromDHCP></tds:SetDNS>"),
              Compact(Builder().SetDNS("<Set><dns><dhcp>true</dhcp><ip>10.0.0.2</ip></dns></Set>")));
    EXPECT_EQ(DeviceWrite("<tds:SetDNS><tds:FromDHCP>true</tds:FromDHCP></tds:SetDNS>"),
              Compact(Builder().SetDNS("<Set><dns><dhcp>true</dhcp></dns></Set>")));
}

// RTSP first, whatever the order of the host's document; what else is asked for is left out.
TEST(GetCmdDevice, SetPorts)
{
    EXPECT_EQ(
        DeviceWrite("<tds:SetNetworkProtocols>"
                    "<tds:NetworkProtocols><tt:Name>RTSP</tt:Name><tt:Enabled>true</tt:Enabled><tt:Port>554</tt:Port>"
                    "</tds:NetworkProtocols>"
                    "<tds:NetworkProtocols><tt:Name>HTTP</tt:Name><tt:Enabled>true</tt:Enabled><tt:Port>80</tt:Port>"
                    "</tds:NetworkProtocols></tds:SetNetworkProtocols>"),
        Compact(Builder().SetNetworkProtocols(
            "<Set><networkProtocols><http><enable>false</enable><port>80</port></http>"
            "<https><port>443</port></https><rtsp><port>554</port></rtsp></networkProtocols></Set>")));
    EXPECT_EQ(DeviceWrite("<tds:SetNetworkProtocols/>"),
              Compact(Builder().SetNetworkProtocols("<Set><networkProtocols/></Set>")));
}

TEST(GetCmdDevice, AreEmptyWithoutTheirKey)
{
    for (const char* request : {"", "<Set/>", "<Get><dns/><networkProtocols/></Get>", "no document"})
    {
        EXPECT_EQ("", Builder().SetDNS(request)) << request;
        EXPECT_EQ("", Builder().SetNetworkProtocols(request)) << request;
    }
}

TEST(GetCmdDevice, EscapeWhatTheHostSays)
{
    EXPECT_NE(std::string::npos, Builder()
                                     .SetNetworkGateway("<Set><ipv4><gateway>&lt;a&gt;&amp;\"</gateway></ipv4></Set>")
                                     .find("<tds:IPv4Address>&lt;a&gt;&amp;\"</tds:IPv4Address>"));
}

TEST(GetCmdDevice, ProbeForCameras)
{
    EXPECT_EQ("<?xml version=\"1.0\" encoding=\"UTF-8\"?>"
              "<s:Envelope xmlns:s=\"http://www.w3.org/2003/05/soap-envelope\""
              " xmlns:dis=\"http://schemas.xmlsoap.org/ws/2005/04/discovery\""
              " xmlns:wsa=\"http://schemas.xmlsoap.org/ws/2004/08/addressing\""
              " xmlns:ad=\"http://schemas.xmlsoap.org/ws/2004/08/addressing\""
              " xmlns:dn=\"http://www.onvif.org/ver10/network/wsdl\"><s:Header><ad:MessageID/>"
              "<ad:To>urn:schemas-xmlsoap-org:ws:2005:04:discovery</ad:To>"
              "<ad:Action>http://schemas.xmlsoap.org/ws/2005/04/discovery/Probe</ad:Action></s:Header>"
              "<s:Body><dis:Probe><dis:Types>dn:NetworkVideoTransmitter</dis:Types><dis:Scopes/></dis:Probe></s:Body>"
              "</s:Envelope>",
              Compact(Builder().Probe()));
}

const std::string AD = " xmlns:ad=\"http://www.w3.org/2005/08/addressing\"";
const std::string AD_EW = AD + " xmlns:ew=\"http://www.onvif.org/ver10/events/wsdl\"";
const std::string AD_WSN = AD + " xmlns:wsn=\"http://docs.oasis-open.org/wsn/b-2\"";

std::string Event(const std::string& declarations, const std::string& action, const std::string& to,
                  const std::string& body)
{
    return Envelope(declarations,
                    "<ad:Action s:mustUnderstand=\"1\">" + action +
                        "</ad:Action><ad:MessageID/><ad:ReplyTo><ad:Address>http://www.w3.org/2005/08/addressing/"
                        "anonymous</ad:Address></ad:ReplyTo>" +
                        SECURITY + to,
                    body);
}

TEST(GetCmdEvents, CreateAPullPoint)
{
    EXPECT_EQ(Event(AD_EW, "http://www.onvif.org/ver10/events/wsdl/EventPortType/CreatePullPointSubscriptionRequest",
                    "<ad:To/>",
                    "<ew:CreatePullPointSubscription><ew:InitialTerminationTime>PT60S</ew:InitialTerminationTime>"
                    "</ew:CreatePullPointSubscription>"),
              Compact(Builder().CreatePullPointSubscription(
                  "<Set><createPullPointSubscription><timeout>PT60S</timeout></createPullPointSubscription></Set>")));
}

TEST(GetCmdEvents, Subscribe)
{
    EXPECT_EQ(Event(AD_WSN, "http://docs.oasis-open.org/wsn/bw-2/NotificationProducer/SubscribeRequest", "<ad:To/>",
                    "<wsn:Subscribe><wsn:ConsumerReference><ad:Address>http://10.0.0.9:6699/subscription_0</ad:Address>"
                    "</wsn:ConsumerReference><wsn:InitialTerminationTime>PT60S</wsn:InitialTerminationTime>"
                    "</wsn:Subscribe>"),
              Compact(Builder().Subscribe("<Set><subscribe><clientAddr>http://10.0.0.9:6699/subscription_0</clientAddr>"
                                          "<timeout>PT60S</timeout></subscribe></Set>")));
    // As it is asked for without an address to end a subscription.
    EXPECT_EQ(Event(AD_WSN, "http://docs.oasis-open.org/wsn/bw-2/NotificationProducer/SubscribeRequest", "<ad:To/>",
                    "<wsn:Subscribe><wsn:ConsumerReference><ad:Address/></wsn:ConsumerReference>"
                    "<wsn:InitialTerminationTime/></wsn:Subscribe>"),
              Compact(Builder().Subscribe("<Set><subscribe><serverAddr>http://10.0.0.1/s</serverAddr></subscribe>"
                                          "</Set>")));
}

TEST(GetCmdEvents, Renew)
{
    EXPECT_EQ(Event(AD_WSN, "http://docs.oasis-open.org/wsn/bw-2/SubscriptionManager/RenewRequest",
                    "<ad:To>http://10.0.0.1/s</ad:To>",
                    "<wsn:Renew><wsn:TerminationTime>PT60S</wsn:TerminationTime></wsn:Renew>"),
              Compact(Builder().Renew("<Set><renew><serverAddr>http://10.0.0.1/s</serverAddr><timeout>PT60S</timeout>"
                                      "</renew></Set>")));
}

TEST(GetCmdEvents, Unsubscribe)
{
    EXPECT_EQ(Event(AD_WSN, "http://docs.oasis-open.org/wsn/bw-2/SubscriptionManager/UnsubscribeRequest", "<ad:To/>",
                    "<wsn:Unsubscribe/>"),
              Compact(Builder().Unsubscribe()));
}

TEST(GetCmdEvents, PullMessages)
{
    EXPECT_EQ(Event(AD_EW, "http://www.onvif.org/ver10/events/wsdl/PullPointSubscription/PullMessagesRequest",
                    "<ad:To>http://10.0.0.1/p</ad:To>",
                    "<ew:PullMessages><ew:Timeout>PT60S</ew:Timeout><ew:MessageLimit>1024</ew:MessageLimit>"
                    "</ew:PullMessages>"),
              Compact(Builder().PullMessages("<Get><pullMessages><token>http://10.0.0.1/p</token>"
                                             "<timeout>PT60S</timeout><messageLimit>1024</messageLimit></pullMessages>"
                                             "</Get>")));
}

} // namespace
