#include "MulticastService.h"

#include "NetworkNamespace.h"
#include "ShareSDK.h"
#include "TempDirectory.h"

#include <fstream>
#include <iterator>
#include <string>

#include <dirent.h>
#include <sys/prctl.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

/// The base forms, callable.
class CPlainService : public CMulticastService
{
public:
    using CMulticastService::ParseResp;
    using CMulticastService::SendCmd;
};

/// Notes the name of the thread that sends.
class CNamedService : public CMulticastService
{
public:
    char threadName[16] = {};

private:
    void InvokeSend() override { prctl(PR_GET_NAME, threadName); }
    void ParseResp(const char* /*data*/, int /*length*/) override {}
};

int OpenDescriptors()
{
    DIR* directory = opendir("/proc/self/fd");
    int count = 0;
    while (readdir(directory) != nullptr)
    {
        ++count;
    }
    closedir(directory);
    return count;
}

class MulticastService : public testing::Test
{
protected:
    void SetUp() override
    {
        SHARESDK_SetLogLevel(SHARESDK_LOG_NONE);
        if (!CNetworkNamespace::Enter() || !CNetworkNamespace::AddInterface("eth0", "10.1.0.5/24"))
        {
            GTEST_SKIP() << "the kernel does not allow a network namespace here";
        }
    }
};

TEST_F(MulticastService, BaseSendsAnEmptyDatagramOnce)
{
    CDatagramSniffer wire("eth0");
    CPlainService service;
    service.Initial("239.255.255.250", 1900);
    testing::internal::CaptureStderr();
    EXPECT_EQ(1, service.Start());
    service.Stop();
    // Nothing can have come: the receiving socket is bound to no port.
    EXPECT_EQ(" len:4294967295, msg:.\n", testing::internal::GetCapturedStderr());
    const auto datagrams = wire.Await(1);
    ASSERT_EQ(1u, datagrams.size());
    EXPECT_EQ("239.255.255.250:1900", datagrams[0].destination);
    EXPECT_EQ("", datagrams[0].payload);
    EXPECT_TRUE(wire.Take().empty());
}

TEST(MulticastThread, HasItsName)
{
    CNamedService service;
    service.Start();
    service.Stop();
    EXPECT_STREQ("multicast threa", service.threadName); // of "multicast thread!" the kernel keeps 15 bytes
}

TEST_F(MulticastService, BasePrintsWhatComes)
{
    CPlainService service;
    testing::internal::CaptureStderr();
    service.ParseResp("abc", 3);
    service.ParseResp("", 0);
    EXPECT_EQ(" len:3, msg:abc.\n len:0, msg:.\n", testing::internal::GetCapturedStderr());
}

TEST_F(MulticastService, InterfaceThatCannotSendDelaysNoOther)
{
    ASSERT_TRUE(CNetworkNamespace::AddInterface("eth1", "10.2.0.5/24"));
    CDatagramSniffer wire("eth1");
    const CTempDirectory directory;
    SHARESDK_SetLogLevel(SHARESDK_LOG_ALL);
    ASSERT_TRUE(SHARESDK_LogToFile(directory.Path("log").c_str(), 1 << 20, 1));
    CPlainService service;
    service.Initial("239.255.255.250", 1900);
    ASSERT_TRUE(CNetworkNamespace::Ip("link set eth0 down"));
    EXPECT_THAT(directory.Read("log"), testing::Not(testing::HasSubstr("ASSERT")));
    service.SendCmd("abc", 3);
    EXPECT_THAT(directory.Read("log"), testing::HasSubstr("ASSERT"));
    SHARESDK_LogToConsole();
    const auto datagrams = wire.Await(1);
    ASSERT_EQ(1u, datagrams.size());
    EXPECT_EQ("abc", datagrams[0].payload);
}

TEST_F(MulticastService, SendingSocketsJoinTheGroup)
{
    CPlainService service;
    const auto groups = []
    {
        std::ifstream table("/proc/self/net/igmp");
        return std::string(std::istreambuf_iterator<char>(table), std::istreambuf_iterator<char>());
    };
    EXPECT_THAT(groups(), testing::Not(testing::HasSubstr("FAFFFFEF"))); // 239.255.255.250
    service.Initial("239.255.255.250", 1900);
    EXPECT_THAT(groups(), testing::HasSubstr("FAFFFFEF"));
}

TEST_F(MulticastService, SecondInitialOpensNoMoreSockets)
{
    CPlainService service;
    service.Initial("239.255.255.250", 1900);
    const int open = OpenDescriptors();
    service.Initial("239.255.255.250", 1900);
    EXPECT_EQ(open, OpenDescriptors());
}

TEST_F(MulticastService, SocketsGoWithTheObject)
{
    const int before = OpenDescriptors();
    {
        CPlainService service;
        service.Initial("239.255.255.250", 1900);
        EXPECT_EQ(before + 2, OpenDescriptors());
    }
    EXPECT_EQ(before, OpenDescriptors());
}

} // namespace
