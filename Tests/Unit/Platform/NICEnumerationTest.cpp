#include "NICEnumeration.h"

#include "TempDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include <net/if.h>
#include <netinet/in.h>
#include <sys/ioctl.h>

namespace
{

// An interface as the kernel of these tests knows it.
struct KernelNIC
{
    const char* name;
    short flags;
    std::uint32_t address; // network order; 0: the kernel knows none
    std::uint32_t mask;
    std::uint8_t mac[6];
};

const KernelNIC KERNEL[] = {
    {"eth0", IFF_UP | IFF_RUNNING, 0x0A01A8C0, 0x00FFFFFF, {0x02, 0, 0, 0, 0, 0xA0}},
    {"ETH1", IFF_UP, 0, 0, {0x02, 0, 0, 0, 0, 0xA1}},
    {"bond0", static_cast<short>(IFF_UP | IFF_RUNNING | IFF_MASTER), 0x0201A8C0, 0x00FFFFFF, {0x02, 0, 0, 0, 0, 0xB0}},
    {"eth2", static_cast<short>(IFF_UP | IFF_RUNNING | IFF_SLAVE), 0, 0, {0x02, 0, 0, 0, 0, 0xA2}},
    {"eth3", static_cast<short>(IFF_UP | IFF_RUNNING | IFF_SLAVE), 0, 0, {0x02, 0, 0, 0, 0, 0xA3}},
};

void PutAddress(sockaddr& out, std::uint32_t address)
{
    sockaddr_in internet = {};
    internet.sin_family = AF_INET;
    internet.sin_addr.s_addr = address;
    std::memcpy(&out, &internet, sizeof(internet));
}

int AskKernel(int /*socket*/, unsigned long request, ifreq* interface)
{
    for (const KernelNIC& nic : KERNEL)
    {
        if (std::strcmp(nic.name, interface->ifr_name) != 0)
        {
            continue;
        }
        switch (request)
        {
        case SIOCGIFFLAGS:
            interface->ifr_flags = nic.flags;
            return 0;
        case SIOCGIFADDR:
            PutAddress(interface->ifr_addr, nic.address);
            return nic.address != 0 ? 0 : -1;
        case SIOCGIFNETMASK:
            PutAddress(interface->ifr_netmask, nic.mask);
            return nic.mask != 0 ? 0 : -1;
        case SIOCGIFHWADDR:
            std::memcpy(interface->ifr_hwaddr.sa_data, nic.mac, sizeof(nic.mac));
            return 0;
        default:
            return -1;
        }
    }
    return -1;
}

const char HEADER[] = "Inter-|   Receive                                                |  Transmit\n"
                      " face |bytes    packets errs drop fifo frame compressed multicast|bytes\n";
const char ROUTES_HEADER[] = "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";

class NICEnumeration : public testing::Test
{
protected:
    std::list<CPFHelper::__TNICInfo> Find(const std::string& devices)
    {
        Write(devices);
        std::list<CPFHelper::__TNICInfo> list(1); // cleared
        const int count = FindNICs(m_sources, list);
        EXPECT_EQ(count, static_cast<int>(list.size()));
        return list;
    }

    std::vector<std::string> FindEnabledNames(const std::string& devices)
    {
        Write(devices);
        std::list<CPFHelper::__TNICInfo> list;
        const int count = FindSocketEnabledNICs(m_sources, list);
        EXPECT_EQ(count, static_cast<int>(list.size()));
        return Names(list);
    }

    static std::vector<std::string> Names(const std::list<CPFHelper::__TNICInfo>& list)
    {
        std::vector<std::string> names;
        for (const CPFHelper::__TNICInfo& info : list)
        {
            names.emplace_back(info.name);
        }
        return names;
    }

    void WriteRoutes(const std::string& lines) { m_directory.Write("route", ROUTES_HEADER + lines); }
    void WriteRules(const std::string& lines) { m_directory.Write("rules", lines); }
    void WriteDevices(const std::string& table) { m_directory.Write("dev", table); }
    const NIC_SOURCES& Sources() const { return m_sources; }

private:
    void Write(const std::string& devices) { WriteDevices(HEADER + devices); }

    const CTempDirectory m_directory;
    const std::string m_devices = m_directory.Path("dev");
    const std::string m_routes = m_directory.Path("route");
    const std::string m_rules = m_directory.Path("rules");
    const NIC_SOURCES m_sources = {m_devices.c_str(), m_routes.c_str(), m_rules.c_str(), &AskKernel};
};

std::vector<int> MacOf(const CPFHelper::__TNICInfo& info)
{
    return std::vector<int>(std::begin(info.MAC), std::end(info.MAC));
}

} // namespace

TEST_F(NICEnumeration, ListsEthernetAndBondInterfacesOnly)
{
    const auto list = Find("    lo:  100 1 0 0\n"
                           " wlan0:  100 1 0 0\n"
                           "  eth0:  100 1 0 0\n"
                           "  ETH1:  100 1 0 0\n"
                           "  tun0:  100 1 0 0\n"
                           " bond0:  100 1 0 0\n");
    EXPECT_THAT(Names(list), testing::ElementsAre("eth0", "ETH1", "bond0"));
}

TEST_F(NICEnumeration, FirstTwoLinesAreTheHeader)
{
    WriteDevices("eth0: 1\neth2: 1\nbond0: 1\n");
    std::list<CPFHelper::__TNICInfo> list;
    EXPECT_EQ(1, FindNICs(Sources(), list));
    EXPECT_THAT(Names(list), testing::ElementsAre("bond0"));
}

TEST_F(NICEnumeration, ListsANameOnce)
{
    EXPECT_THAT(Names(Find("eth0:1 2\neth0:3 4\n")), testing::ElementsAre("eth0"));
}

TEST_F(NICEnumeration, FillsTheRecord)
{
    WriteRoutes("eth0\t00000000\t0101A8C0\t0003\t0\t0\t0\t00000000\t0\t0\t0\n");
    const auto list = Find("eth0: 1\n");
    ASSERT_EQ(1u, list.size());
    const CPFHelper::__TNICInfo& info = list.front();
    EXPECT_EQ(1u, info.state);
    EXPECT_STREQ("eth0", info.name);
    EXPECT_EQ(0x0A01A8C0u, info.IP);
    EXPECT_EQ(0x00FFFFFFu, info.mask);
    EXPECT_EQ(0x0101A8C0u, info.gateway);
    EXPECT_THAT(MacOf(info), testing::ElementsAre(0x02, 0, 0, 0, 0, 0xA0));
    EXPECT_FALSE(info.master);
    EXPECT_FALSE(info.slave);
}

TEST_F(NICEnumeration, InterfaceWithoutAnAddressIsListedWithNone)
{
    const auto list = Find("ETH1: 1\n");
    ASSERT_EQ(1u, list.size());
    EXPECT_EQ(0u, list.front().IP);
    EXPECT_EQ(0u, list.front().mask);
    EXPECT_EQ(0u, list.front().gateway);
}

TEST_F(NICEnumeration, InterfaceWithoutCarrierIsNotRunning)
{
    EXPECT_EQ(0u, Find("ETH1: 1\n").front().state);
    EXPECT_THAT(FindEnabledNames("ETH1: 1\neth0: 1\n"), testing::ElementsAre("eth0"));
}

TEST_F(NICEnumeration, UnreadableFlagsAreAStateOfTheirOwn)
{
    const auto list = Find("eth9: 1\n");
    ASSERT_EQ(1u, list.size());
    EXPECT_EQ(2u, list.front().state);
    EXPECT_TRUE(FindEnabledNames("eth9: 1\n").empty());
}

TEST_F(NICEnumeration, BondIsEnabledAndItsSlavesAreNot)
{
    const auto list = Find("bond0: 1\neth2: 1\neth3: 1\n");
    ASSERT_EQ(3u, list.size());
    EXPECT_TRUE(list.front().master);
    EXPECT_TRUE(list.back().slave);
    EXPECT_THAT(FindEnabledNames("bond0: 1\neth2: 1\neth3: 1\n"), testing::ElementsAre("bond0"));
}

TEST_F(NICEnumeration, RulesFileBeatsTheDriver)
{
    WriteRules("# NAME=\"eth0\", ATTR{address}==\"99:99:99:99:99:99\"\n"
               "SUBSYSTEM==\"net\", ATTR{address}==\"00:11:22:33:44:55\", NAME=\"eth0\"\n"
               "SUBSYSTEM==\"net\", ATTR{address}==\"66:11:22:33:44:55\", NAME=\"eth0\"\n");
    EXPECT_THAT(MacOf(Find("eth0: 1\n").front()), testing::ElementsAre(0x00, 0x11, 0x22, 0x33, 0x44, 0x55));
}

TEST_F(NICEnumeration, BondMasterHasTheDriversAddress)
{
    WriteRules("SUBSYSTEM==\"net\", ATTR{address}==\"00:11:22:33:44:55\", NAME=\"bond0\"\n");
    EXPECT_THAT(MacOf(Find("bond0: 1\n").front()), testing::ElementsAre(0x02, 0, 0, 0, 0, 0xB0));
}

TEST_F(NICEnumeration, RuleWithoutAWholeAddressGivesNone)
{
    WriteRules("ATTR{address}==\"00:11:22:33:44:5\", NAME=\"eth0\""); // 23 characters follow, of the name too
    EXPECT_THAT(MacOf(Find("eth0: 1\n").front()), testing::ElementsAre(0x00, 0x11, 0x22, 0x33, 0x44, 0x05));
    WriteRules("NAME=\"eth0\" ATTR{address}==\"00:11:22:33:44:5");
    EXPECT_THAT(MacOf(Find("eth0: 1\n").front()), testing::ElementsAre(0x02, 0, 0, 0, 0, 0xA0));
    // The first line with the name is the one.
    WriteRules("NAME=\"eth0\"\nATTR{address}==\"00:11:22:33:44:55\", NAME=\"eth0\"\n");
    EXPECT_THAT(MacOf(Find("eth0: 1\n").front()), testing::ElementsAre(0x02, 0, 0, 0, 0, 0xA0));
}

TEST_F(NICEnumeration, NoDeviceTableIsNoInterface)
{
    const NIC_SOURCES nowhere = {"/nonexistent/dev", "/nonexistent/route", "/nonexistent/rules", &AskKernel};
    std::list<CPFHelper::__TNICInfo> list(1);
    EXPECT_EQ(0, FindNICs(nowhere, list));
    EXPECT_TRUE(list.empty());
}

TEST(ParseInterfaceName, StopsAtWhiteSpaceOrColon)
{
    EXPECT_EQ("eth0", ParseInterfaceName("  eth0: 12 34"));
    EXPECT_EQ("eth0", ParseInterfaceName("eth0:1234 5"));
    EXPECT_EQ("eth0", ParseInterfaceName("\teth0 1"));
    EXPECT_EQ("", ParseInterfaceName(""));
}

TEST(ParseInterfaceName, KeepsAnAliasNumberInFrontOfAnotherColon)
{
    EXPECT_EQ("eth0:1", ParseInterfaceName("eth0:1: 12"));
    EXPECT_EQ("eth0:12", ParseInterfaceName("eth0:12:34"));
    EXPECT_EQ("eth0", ParseInterfaceName("eth0::1"));
    EXPECT_EQ("eth0", ParseInterfaceName("eth0:1"));
}

class NICGateway : public testing::Test
{
protected:
    bool Get(const std::string& lines, const char* nic)
    {
        const std::string path = m_directory.Write("route", ROUTES_HEADER + lines);
        return Get_NIC_Gateway(path.c_str(), &m_gateway, &m_destination, &m_mask, nic);
    }

    unsigned int m_gateway = 1;
    unsigned int m_destination = 1;
    unsigned int m_mask = 1;
    const CTempDirectory m_directory;
};

TEST_F(NICGateway, IsTheFirstRouteThroughOne)
{
    EXPECT_TRUE(Get("eth0\t0001A8C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0\n"
                    "eth0\t0002A8C0\t0101A8C0\t0003\t0\t0\t0\t0000FFFF\t0\t0\t0\n"
                    "eth0\t00000000\t0201A8C0\t0003\t0\t0\t0\t00000000\t0\t0\t0\n",
                    "eth0"));
    EXPECT_EQ(0x0101A8C0u, m_gateway);
    EXPECT_EQ(0x0002A8C0u, m_destination);
    EXPECT_EQ(0x0000FFFFu, m_mask);
}

// The name is looked for anywhere in the line.
TEST_F(NICGateway, OfALongerNameServesTheShorterOneToo)
{
    EXPECT_TRUE(Get("eth10\t00000000\t0101A8C0\t0003\t0\t0\t0\t00000000\t0\t0\t0\n", "eth1"));
    EXPECT_EQ(0x0101A8C0u, m_gateway);
}

TEST_F(NICGateway, OfAnotherInterfaceDoesNotCount)
{
    EXPECT_FALSE(Get("eth1\t00000000\t0101A8C0\t0003\t0\t0\t0\t00000000\t0\t0\t0\n", "eth0"));
    EXPECT_EQ(1u, m_gateway);
}

TEST_F(NICGateway, NeedsNoDestinationAndMask)
{
    const std::string path = m_directory.Write("route", "eth0\t00000000\t0101A8C0\t0003\t0\t0\t0\t00000000\t0\t0\t0\n");
    EXPECT_TRUE(Get_NIC_Gateway(path.c_str(), &m_gateway, nullptr, nullptr, "eth0"));
    EXPECT_EQ(0x0101A8C0u, m_gateway);
}

TEST(NICGatewayDeathTest, NullGatewayEndsTheProcess)
{
    EXPECT_DEATH(Get_NIC_Gateway("/dev/null", nullptr, nullptr, nullptr, "eth0"), "gateway != nullptr");
}

TEST(PFHelperNIC, ListsWhatTheMachineHas)
{
    std::list<CPFHelper::__TNICInfo> all;
    std::list<CPFHelper::__TNICInfo> enabled;
    const int allCount = CPFHelper::GetNICList(all);
    const int enabledCount = CPFHelper::GetSocketEnabled_NICList(enabled);
    EXPECT_EQ(allCount, static_cast<int>(all.size()));
    EXPECT_EQ(enabledCount, static_cast<int>(enabled.size()));
    EXPECT_LE(enabled.size(), all.size());
    for (const CPFHelper::__TNICInfo& info : enabled)
    {
        EXPECT_EQ(1u, info.state);
        EXPECT_FALSE(info.slave);
    }
}
