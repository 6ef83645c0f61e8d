#include "CameraWorld.h"

#include "RecordTime.h"

#include <cstring>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace NETNS;

namespace
{

constexpr std::int64_t SECOND = 1000000;

class CameraDeviceNetwork : public CCameraWorld
{
protected:
    /// A recorded segment; its file is not looked at.
    void Record(const DEV_DATETIME& start, std::int64_t seconds)
    {
        RecordSegment segment = m_records->Begin(ToRecordTime(start));
        segment.endUs = segment.startUs + seconds * SECOND;
        segment.bytes = 1;
        m_records->End(segment);
    }
};

} // namespace

TEST_F(CameraDeviceNetwork, KeepsAddresses)
{
    DEV_NET_BASIC net = {1, "192.0.2.7", "192.0.2.1", "255.255.255.0", 1, "192.0.2.53", ""};
    ASSERT_EQ(DEV_RET_OK, m_device->SetNetBasic(m_admin, &net));
    Start();
    DEV_NET_BASIC kept = {};
    ASSERT_EQ(DEV_RET_OK, m_device->GetNetBasic(m_admin, &kept));
    EXPECT_EQ(1U, kept.ipSettingMode);
    EXPECT_STREQ("192.0.2.7", kept.staticIp);
    EXPECT_STREQ("192.0.2.1", kept.staticIpRoute);
    EXPECT_STREQ("255.255.255.0", kept.staticIpMask);
    EXPECT_EQ(1, kept.dnsFromDhcpSwitch);
    EXPECT_STREQ("192.0.2.53", kept.dnsServer1);
    EXPECT_STREQ("", kept.dnsServer2);
}

TEST_F(CameraDeviceNetwork, RefusesWhatIsNoAddress)
{
    for (const char* address : {"192.0.2", "192.0.2.256", "gateway", "192.0.2.1 "})
    {
        DEV_NET_BASIC net = {};
        std::snprintf(net.dnsServer1, sizeof(net.dnsServer1), "%s", address);
        EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->SetNetBasic(m_admin, &net)) << address;
    }
    DEV_NET_BASIC net = {};
    net.ipSettingMode = 2;
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->SetNetBasic(m_admin, &net));
}

TEST_F(CameraDeviceNetwork, KeepsTheDialInAndTheDynamicName)
{
    DEV_PPPOE pppoe = {1, "user", "<secret>"};
    DEV_DDNS ddns = {1, "mintdns", "user", "pass", "cam.example", "dns.example"};
    ASSERT_EQ(DEV_RET_OK, m_device->SetPppoe(m_admin, &pppoe));
    ASSERT_EQ(DEV_RET_OK, m_device->SetDdns(m_admin, &ddns));
    Start();
    pppoe = {};
    ddns = {};
    ASSERT_EQ(DEV_RET_OK, m_device->GetPppoe(m_admin, &pppoe));
    EXPECT_EQ(1, pppoe.pppoeSwitch);
    EXPECT_STREQ("<secret>", pppoe.password);
    ASSERT_EQ(DEV_RET_OK, m_device->GetDdns(m_admin, &ddns));
    EXPECT_STREQ("mintdns", ddns.serverType);
    EXPECT_STREQ("dns.example", ddns.serverName);
    std::memset(ddns.serverName, 'x', sizeof(ddns.serverName));
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->SetDdns(m_admin, &ddns));
    EXPECT_EQ(DEV_RET_NO_RIGHT, m_device->GetPppoe(m_stranger, &pppoe));
}

TEST_F(CameraDeviceNetwork, PortsOutliveTheProgramUntilOthersAreGiven)
{
    DEV_PORT_INFO ports = {};
    ASSERT_EQ(DEV_RET_OK, m_device->GetPortInfo(m_admin, &ports));
    EXPECT_EQ(8080, ports.httpPort);
    EXPECT_EQ(8554, ports.rtspPort);
    ports.netPort = 6000;
    ASSERT_EQ(DEV_RET_OK, m_device->SetPortInfo(m_admin, &ports));
    EXPECT_EQ((std::vector<SettingsTopic>{SettingsTopic::Ports}), m_effects.m_topics);
    Start();
    ASSERT_EQ(DEV_RET_OK, m_device->GetPortInfo(m_admin, &ports));
    EXPECT_EQ(6000, ports.netPort);
    m_options.httpPort = 8081;
    Start();
    ASSERT_EQ(DEV_RET_OK, m_device->GetPortInfo(m_admin, &ports));
    EXPECT_EQ(8081, ports.httpPort);
    EXPECT_EQ(5000, ports.netPort);
}

TEST_F(CameraDeviceNetwork, RefusesPortsThatCannotBeServed)
{
    const int taken = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    socklen_t size = sizeof(address);
    ASSERT_EQ(0, bind(taken, reinterpret_cast<sockaddr*>(&address), size));
    ASSERT_EQ(0, listen(taken, 1));
    ASSERT_EQ(0, getsockname(taken, reinterpret_cast<sockaddr*>(&address), &size));
    for (const DEV_PORT_INFO ports : {DEV_PORT_INFO{0, 1, 8554}, DEV_PORT_INFO{8080, 1, 0},
                                      DEV_PORT_INFO{8080, 1, 8080}, DEV_PORT_INFO{ntohs(address.sin_port), 1, 8554}})
    {
        EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->SetPortInfo(m_admin, &ports));
    }
    close(taken);
    EXPECT_TRUE(m_effects.m_topics.empty());
}

TEST_F(CameraDeviceNetwork, ListsEachDayWithRecordingsOnce)
{
    DEV_DATE days[256] = {};
    int count = 7;
    ASSERT_EQ(DEV_RET_OK, m_device->SearchRecordDate(m_admin, days, 256, count));
    EXPECT_EQ(0, count);
    Record({{2024, 5, 6}, {8, 0, 0}}, 60);
    Record({{2024, 5, 6}, {9, 0, 0}}, 60);
    Record({{2024, 5, 31}, {23, 59, 0}}, 120); // over midnight
    ASSERT_EQ(DEV_RET_OK, m_device->SearchRecordDate(m_admin, days, 256, count));
    ASSERT_EQ(3, count);
    EXPECT_EQ(6, days[0].day);
    EXPECT_EQ(31, days[1].day);
    EXPECT_EQ(6, days[2].month);
    EXPECT_EQ(1, days[2].day);
    ASSERT_EQ(DEV_RET_OK, m_device->SearchRecordDate(m_admin, days, 2, count));
    EXPECT_EQ(2, count);
    EXPECT_EQ(DEV_RET_NO_RIGHT, m_device->SearchRecordDate(m_stranger, days, 256, count));
    EXPECT_EQ(0, count);
}

TEST_F(CameraDeviceNetwork, FindsSectionsWithinTheTimesThatAreAskedFor)
{
    Record({{2024, 5, 6}, {8, 0, 0}}, 60);
    Record({{2024, 5, 6}, {8, 1, 0}}, 60); // goes on without a gap
    Record({{2024, 5, 6}, {9, 0, 0}}, 30);
    DEV_RECORD_INFO list[256] = {};
    int count = 0;
    const DEV_DATETIME start = {{2024, 5, 6}, {8, 0, 30}};
    const DEV_DATETIME end = {{2024, 5, 6}, {23, 59, 59}};
    ASSERT_EQ(DEV_RET_OK, m_device->SearchRecord(m_admin, &start, &end, 0, list, 256, count));
    ASSERT_EQ(2, count);
    EXPECT_EQ(30, list[0].start.time.second);
    EXPECT_EQ(90U, list[0].lengthSeconds);
    EXPECT_EQ(9, list[1].start.time.hour);
    EXPECT_EQ(30U, list[1].lengthSeconds);
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->SearchRecord(m_admin, &start, &end, 3, list, 256, count));
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->SearchRecord(m_admin, &start, &end, -1, list, 256, count));
    EXPECT_EQ(DEV_RET_NO_RIGHT, m_device->SearchRecord(m_stranger, &start, &end, 0, list, 256, count));
}

TEST_F(CameraDeviceNetwork, WithoutTimesItFindsEverything)
{
    Record({{2024, 5, 6}, {8, 0, 0}}, 60);
    DEV_RECORD_INFO list[256] = {};
    int count = 0;
    const DEV_DATETIME zero = {};
    ASSERT_EQ(DEV_RET_OK, m_device->SearchRecord(m_admin, &zero, &zero, 0, list, 256, count));
    ASSERT_EQ(1, count);
    EXPECT_EQ(60U, list[0].lengthSeconds);
}

// The table of the library's has a fixed number of rows.
TEST_F(CameraDeviceNetwork, FillsNoMoreRowsThanThereAre)
{
    for (std::uint16_t hour = 0; hour < 5; ++hour)
    {
        Record({{2024, 5, 6}, {hour, 0, 0}}, 60);
    }
    DEV_RECORD_INFO list[3] = {};
    int count = 0;
    const DEV_DATETIME zero = {};
    ASSERT_EQ(DEV_RET_OK, m_device->SearchRecord(m_admin, &zero, &zero, 2, list, 3, count));
    EXPECT_EQ(3, count);
}
