// NetServerConfigTest.cpp: the life of the library's settings file.
#include "NetServerConfig.h"

#include "ShareSDK.h"
#include "TempDirectory.h"

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

const char EMPTY_FILE[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><Config></Config>";
const char NAME[] = "server.xml";

class NetServerConfig : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(SHARESDK_LogToFile(m_logDirectory.Path("log").c_str(), 1000000, 1));
        SHARESDK_SetLogLevel(SHARESDK_LOG_ALL);
        m_config.Initial(m_directory.Path(NAME).c_str());
    }
    void TearDown() override { SHARESDK_LogToConsole(); }

    bool Set(const std::string& address, int port) { return m_config.QlxApiSetAlarmServerConfig(address, port); }
    /// "address:port"; "(none)" when there are none.
    std::string Get()
    {
        std::string address = "before";
        int port = -1;
        const bool found = m_config.QlxApiGetAlarmServerConfig(address, port);
        EXPECT_TRUE(found || port == 0);
        return found ? address + ":" + std::to_string(port) : "(none)" + address;
    }
    std::string File() const { return m_directory.Read(NAME); }
    std::string Log() const { return m_logDirectory.Read("log"); }

    CTempDirectory m_logDirectory;
    CTempDirectory m_directory;
    CNetServerCfg m_config;
};

using testing::HasSubstr;
using testing::Not;

} // namespace

TEST_F(NetServerConfig, FirstReadMakesTheFileAndFindsNothing)
{
    EXPECT_EQ("(none)", Get());
    EXPECT_EQ(EMPTY_FILE, File());
    EXPECT_EQ("(none)", Get());
}

TEST_F(NetServerConfig, FirstChangeMakesTheFileWithBothElements)
{
    EXPECT_TRUE(Set("10.0.0.5", 7000));
    EXPECT_EQ("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<Config>\n"
              "    <QlxApi><AlarmServAddr>10.0.0.5</AlarmServAddr>\n"
              "        <AlarmServPort>7000</AlarmServPort>\n"
              "    </QlxApi>\n"
              "</Config>\n",
              File());
    EXPECT_EQ("10.0.0.5:7000", Get());
}

TEST_F(NetServerConfig, SecondChangeAddsNoElements)
{
    EXPECT_TRUE(Set("10.0.0.5", 7000));
    EXPECT_TRUE(Set("192.168.200.200", 65535));
    EXPECT_EQ("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<Config>\n"
              "    <QlxApi>\n"
              "        <AlarmServAddr>192.168.200.200</AlarmServAddr>\n"
              "        <AlarmServPort>65535</AlarmServPort>\n"
              "    </QlxApi>\n"
              "</Config>\n",
              File());
    EXPECT_EQ("192.168.200.200:65535", Get());
}

TEST_F(NetServerConfig, MissingElementIsAddedBesideTheOther)
{
    m_directory.Write(NAME, "<Config><Other>kept</Other><QlxApi><AlarmServPort>30</AlarmServPort></QlxApi></Config>");
    EXPECT_EQ("(none)", Get());
    EXPECT_TRUE(Set("10.0.0.5", 7000));
    EXPECT_EQ("10.0.0.5:7000", Get());
    EXPECT_THAT(File(), HasSubstr("<Other>kept</Other>"));
}

struct AddressCase
{
    const char* name;
    const char* address;
    int port;
    bool accepted;
};

const AddressCase ADDRESS_CASES[] = {
    {"Plain", "10.0.0.5", 7000, true},
    {"Largest", "255.255.255.255", 65535, true},
    {"Smallest", "0.0.0.0", 24, true},
    {"PortBelow24", "10.0.0.5", 23, false},
    {"NoPort", "10.0.0.5", 0, false},
    {"NegativePort", "10.0.0.5", -1, false},
    {"PartAbove255", "999.1.1.1", 7000, false},
    {"LastPartAbove255", "1.1.1.256", 7000, false},
    {"NegativePart", "1.-1.1.1", 7000, false},
    {"TextBehind", "1.1.1.1x", 7000, false},
    {"SpaceBehind", "1.1.1.1 ", 7000, false},
    {"FifthPart", "1.1.1.1.1", 7000, false},
    {"ThreeParts", "1.1.1", 7000, false},
    {"Name", "alarms.example", 7000, false},
    {"Empty", "", 7000, false},
    {"OverflowingPart", "4294967297.1.1.1", 7000, false},
    {"LeadingZeros", "000000000000001.1.1.1", 7000, false},
};

class Addresses : public NetServerConfig, public testing::WithParamInterface<AddressCase>
{
};

TEST_P(Addresses, AreJudgedAndARefusalLeavesTheFileAlone)
{
    EXPECT_TRUE(Set("10.9.9.9", 999));
    const std::string before = File();
    EXPECT_EQ(GetParam().accepted, Set(GetParam().address, GetParam().port));
    if (GetParam().accepted)
        EXPECT_EQ(std::string(GetParam().address) + ":" + std::to_string(GetParam().port), Get());
    else
        EXPECT_EQ(before, File());
}

INSTANTIATE_TEST_SUITE_P(NetServerConfig, Addresses, testing::ValuesIn(ADDRESS_CASES),
                         [](const auto& row) { return row.param.name; });

TEST_F(NetServerConfig, WithoutAPathEveryCallFails)
{
    CNetServerCfg config;
    std::string address;
    int port = 0;
    EXPECT_FALSE(config.QlxApiSetAlarmServerConfig("10.0.0.5", 7000));
    EXPECT_FALSE(config.QlxApiGetAlarmServerConfig(address, port));
    config.Initial(nullptr);
    EXPECT_FALSE(config.QlxApiGetAlarmServerConfig(address, port));
}

TEST_F(NetServerConfig, PathOfNoneKeepsTheOneBefore)
{
    EXPECT_TRUE(Set("10.0.0.5", 7000));
    m_config.Initial(nullptr);
    EXPECT_EQ("10.0.0.5:7000", Get());
    m_config.Initial(m_directory.Path("other.xml").c_str());
    EXPECT_EQ("(none)", Get());
}

TEST_F(NetServerConfig, FileUpTo1024BytesIsRead)
{
    const std::string head = "<Config><QlxApi><AlarmServAddr>1.2.3.4</AlarmServAddr><AlarmServPort>30</AlarmServPort>";
    const std::string end = "</QlxApi></Config>";
    const std::string fill(1024 - head.size() - end.size(), ' ');
    m_directory.Write(NAME, head + fill + end);
    EXPECT_EQ("1.2.3.4:30", Get());
    EXPECT_THAT(Log(), Not(HasSubstr("ASSERT")));
    m_directory.Write(NAME, head + fill + " " + end);
    EXPECT_EQ("(none)", Get());
    EXPECT_THAT(Log(), HasSubstr("ASSERT"));
    EXPECT_FALSE(Set("10.0.0.5", 7000));
    EXPECT_EQ(1025u, File().size());
}

// What is written can be read again: a file of others' elements is not made too long.
TEST_F(NetServerConfig, FileIsNotMadeTooLongToBeRead)
{
    const std::string before = "<Config><Other>" + std::string(950, 'x') + "</Other></Config>";
    m_directory.Write(NAME, before);
    EXPECT_TRUE(Set("10.0.0.5", 7000));
    EXPECT_EQ(before, File());
    EXPECT_THAT(Log(), HasSubstr("could not be written"));
}

// Text behind the root is read up to a stray tag, but would not be read again without it.
TEST_F(NetServerConfig, FileIsNotChangedToWhatCannotBeRead)
{
    const std::string before = "<Config></Config>text</Config>";
    m_directory.Write(NAME, before);
    EXPECT_TRUE(Set("10.0.0.5", 7000));
    EXPECT_EQ(before, File());
    EXPECT_THAT(Log(), HasSubstr("could not be written"));
}

TEST_F(NetServerConfig, EmptyFileCannotBeRead)
{
    m_directory.Write(NAME, "");
    EXPECT_EQ("(none)", Get());
    EXPECT_FALSE(Set("10.0.0.5", 7000));
    EXPECT_THAT(Log(), HasSubstr("ASSERT"));
}

TEST_F(NetServerConfig, DamagedFileIsLeftAlone)
{
    for (const char* text : {"no xml", "<Config>", "<Config><QlxApi></Config>", "<Other/>", "\xFF\xFF", "<Config"})
    {
        m_directory.Write(NAME, text);
        EXPECT_EQ("(none)", Get()) << text;
        EXPECT_FALSE(Set("10.0.0.5", 7000)) << text;
        EXPECT_EQ(text, File());
    }
}

TEST_F(NetServerConfig, MissingDirectoryFails)
{
    m_config.Initial(m_directory.Path("missing/server.xml").c_str());
    EXPECT_EQ("(none)", Get());
    EXPECT_FALSE(Set("10.0.0.5", 7000));
}

TEST_F(NetServerConfig, DirectoryInPlaceOfTheFileFails)
{
    m_config.Initial(m_directory.Path().c_str());
    EXPECT_EQ("(none)", Get());
    EXPECT_FALSE(Set("10.0.0.5", 7000));
}

// Clients are told success; the old file stays whole, and nothing is left beside it.
TEST_F(NetServerConfig, FailedWriteLeavesTheOldFileWhole)
{
    EXPECT_TRUE(Set("10.0.0.5", 7000));
    const std::string before = File();
    std::filesystem::create_directory(m_directory.Path(std::string(NAME) + ".new")); // in the way of the new file
    EXPECT_TRUE(Set("10.0.0.6", 7001));
    EXPECT_EQ(before, File());
    EXPECT_EQ("10.0.0.5:7000", Get());
    EXPECT_THAT(Log(), HasSubstr("could not be written"));
}

TEST_F(NetServerConfig, ChangeLeavesNothingBesideTheFile)
{
    EXPECT_TRUE(Set("10.0.0.5", 7000));
    int entries = 0;
    for (const auto& entry : std::filesystem::directory_iterator(m_directory.Path()))
    {
        EXPECT_EQ(NAME, entry.path().filename());
        ++entries;
    }
    EXPECT_EQ(1, entries);
}

TEST_F(NetServerConfig, ThreadsNeverMixTheirValues)
{
    std::vector<std::thread> threads;
    for (int id = 1; id <= 3; ++id)
    {
        threads.emplace_back(
            [this, id]
            {
                for (int i = 0; i < 10; ++i)
                {
                    EXPECT_TRUE(Set("10.0.0." + std::to_string(id), 7000 + id));
                    const std::string read = Get();
                    EXPECT_EQ(read.substr(7, 1), read.substr(read.size() - 1)) << read;
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
}
