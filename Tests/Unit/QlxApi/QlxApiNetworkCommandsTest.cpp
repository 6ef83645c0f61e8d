#include "QlxApiWorld.h"

namespace
{

using QlxApiNetworkCommands = QlxApiWorld;

struct Family
{
    const char* get;
    const char* set;
    const char* hostGet;
    const char* hostSet;
};

const Family FAMILIES[] = {
    {"GetNetBasicConfig", "SetNetBasicConfig", "GetNetBasic", "SetNetBasic"},
    {"GetNetPppoeConfig", "SetNetPppoeConfig", "GetPppoe", "SetPppoe"},
    {"GetPortConfig", "SetPortConfig", "GetPortInfo", "SetPortInfo"},
    {"GetDdnsConfig", "SetDdnsConfig", "GetDdns", "SetDdns"},
};

std::string Net(const std::string& elements)
{
    return "<config><tcpIp>" + elements + "</tcpIp></config>";
}

} // namespace

TEST_F(QlxApiNetworkCommands, HostRefusalsAreAnswered)
{
    for (const Family& family : FAMILIES)
    {
        m_device.results.clear();
        EXPECT_EQ(CHALLENGED, Code(family.get, "", UNAUTHORIZED)) << family.get;
        EXPECT_EQ(CHALLENGED, Code(family.set, "<config/>", UNAUTHORIZED)) << family.set;
        EXPECT_EQ(3, Code(family.set)) << family.set;
        m_device.results[family.hostSet] = NETNS::DEV_RET_BAD_PARAM;
        EXPECT_EQ(3, Code(family.set, "<config/>")) << family.set;
        m_device.results[family.hostGet] = NETNS::DEV_RET_FAILED;
        EXPECT_EQ(4, Code(family.get)) << family.get;
        EXPECT_EQ(4, Code(family.set, "<config/>")) << family.set;
        EXPECT_EQ(1, m_device.Calls(family.hostSet));
    }
}

TEST_F(QlxApiNetworkCommands, OnlyOneServerChangesNothingElse)
{
    m_device.netBasic = {1, "1.1.1.1", "2.2.2.2", "3.3.3.3", 1, "4.4.4.4", "5.5.5.5"};
    EXPECT_EQ(DONE, Code("SetNetBasicConfig", Net("<dnsServer1>6.6.6.6</dnsServer1>")));
    EXPECT_EQ("SetNetBasic {1 \"1.1.1.1\" \"2.2.2.2\" \"3.3.3.3\" 1 \"6.6.6.6\" \"5.5.5.5\"}", LastCall());
}

// The form of an address is not checked.
TEST_F(QlxApiNetworkCommands, AddressTextsAreCutAt15Characters)
{
    for (const char* element : {"staticIp", "staticIpRoute", "staticIpMask", "dnsServer1", "dnsServer2"})
    {
        m_device.netBasic = {};
        const std::string name = element;
        EXPECT_EQ(DONE, Code("SetNetBasicConfig", Net("<" + name + ">12345678901234567890</" + name + ">")));
        EXPECT_EQ("123456789012345", Value(Ask("GetNetBasicConfig"), "tcpIp/" + name));
    }
}

TEST_F(QlxApiNetworkCommands, ModesHaveTwoWords)
{
    EXPECT_EQ(DONE, Code("SetNetBasicConfig", Net("<ipSettingMode>dhcp</ipSettingMode>"
                                                  "<dnsFromDhcpSwitch>true</dnsFromDhcpSwitch>")));
    EXPECT_EQ("SetNetBasic {1 \"\" \"\" \"\" 1 \"\" \"\"}", LastCall());
    EXPECT_EQ(DONE, Code("SetNetBasicConfig", Net("<ipSettingMode>staticIp</ipSettingMode>")));
    EXPECT_EQ("SetNetBasic {0 \"\" \"\" \"\" 1 \"\" \"\"}", LastCall());
    m_device.ForgetCalls();
    EXPECT_EQ(3, Code("SetNetBasicConfig", Net("<ipSettingMode>DHCP</ipSettingMode>")));
    EXPECT_EQ(3, Code("SetNetBasicConfig", Net("<dnsFromDhcpSwitch>1</dnsFromDhcpSwitch>")));
    EXPECT_EQ(0, m_device.Calls("SetNetBasic"));
    m_device.netBasic.ipSettingMode = 2; // the template's word
    EXPECT_EQ("staticIp", Value(Ask("GetNetBasicConfig"), "tcpIp/ipSettingMode"));
}

TEST_F(QlxApiNetworkCommands, DynamicAddressesAreShownAsTheHostFilledThem)
{
    m_device.netBasic = {1, "10.0.0.9", "10.0.0.1", "255.0.0.0", 1, "", ""};
    const std::string answer = Ask("GetNetBasicConfig");
    EXPECT_EQ("dhcp", Value(answer, "tcpIp/ipSettingMode"));
    EXPECT_EQ("10.0.0.9", Value(answer, "tcpIp/staticIp"));
}

TEST_F(QlxApiNetworkCommands, OtherTextsAreCutAt63Characters)
{
    const std::string fits(63, 't');
    for (const char* path : {"userName", "password"})
    {
        const std::string name = path;
        EXPECT_EQ(DONE, Code("SetNetPppoeConfig",
                             "<config><pppoe><" + name + ">" + fits + "x</" + name + "></pppoe></config>"));
        EXPECT_EQ(fits, Value(Ask("GetNetPppoeConfig"), "pppoe/" + name));
    }
    for (const char* path : {"servertype", "userName", "password", "domainName", "serverName"})
    {
        const std::string name = path;
        EXPECT_EQ(DONE,
                  Code("SetDdnsConfig", "<config><ddns><" + name + ">" + fits + "x</" + name + "></ddns></config>"));
        EXPECT_EQ(fits, Value(Ask("GetDdnsConfig"), "ddns/" + name));
    }
}

TEST_F(QlxApiNetworkCommands, SwitchesHaveTwoWords)
{
    for (const char* word : {"yes", "", "TRUE", "2"})
    {
        EXPECT_EQ(
            3, Code("SetNetPppoeConfig", "<config><pppoe><switch>" + std::string(word) + "</switch></pppoe></config>"));
        EXPECT_EQ(3, Code("SetDdnsConfig", "<config><ddns><switch>" + std::string(word) + "</switch></ddns></config>"));
    }
    EXPECT_EQ(0, m_device.Calls("SetPppoe"));
    EXPECT_EQ(0, m_device.Calls("SetDdns"));
    EXPECT_EQ(DONE, Code("SetNetPppoeConfig", "<config><pppoe><switch>true</switch></pppoe></config>"));
    EXPECT_EQ(DONE, Code("SetDdnsConfig", "<config><ddns><switch>true</switch></ddns></config>"));
    EXPECT_EQ("true", Value(Ask("GetNetPppoeConfig"), "pppoe/switch"));
    EXPECT_EQ("true", Value(Ask("GetDdnsConfig"), "ddns/switch"));
}

// Neither a port of 0 nor two equal ones are refused; what is too large is cut.
TEST_F(QlxApiNetworkCommands, PortsAreTakenAsTheyCome)
{
    EXPECT_EQ(DONE, Code("SetPortConfig", "<config><port><httpPort>70000</httpPort><netPort>0</netPort>"
                                          "<rtspPort>4464</rtspPort></port></config>"));
    EXPECT_EQ("SetPortInfo {4464 0 4464}", LastCall());
}

TEST_F(QlxApiNetworkCommands, ZeroedDynamicDnsShowsAnEmptyType)
{
    const std::string answer = Ask("GetDdnsConfig");
    EXPECT_EQ("false", Value(answer, "ddns/switch"));
    EXPECT_EQ("", Value(answer, "ddns/servertype"));
}
