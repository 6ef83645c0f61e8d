// ShareSDKLogTest.cpp: where log lines go and what they look like.
#include "ShareSDK.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <syslog.h>
#include <unistd.h>

namespace
{
std::vector<std::pair<int, std::string>> syslogLines;
} // namespace

// Stands in for the C library's, so that the lines can be read here.
extern "C" void syslog(int priority, const char* format, ...)
{
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof(text), format, arguments);
    va_end(arguments);
    syslogLines.emplace_back(priority, text);
}

namespace
{

class ShareSDKLog : public testing::Test
{
protected:
    void SetUp() override
    {
        char name[] = "/tmp/sharesdk-XXXXXX";
        ASSERT_NE(nullptr, mkdtemp(name));
        m_directory = name;
    }
    void TearDown() override
    {
        SHARESDK_LogToConsole();
        SHARESDK_SetLogLevel(SHARESDK_LOG_ALL);
        for (const char* file : {"log", "log.1", "log.2", "log.3"})
        {
            unlink(Path(file).c_str());
        }
        rmdir(m_directory.c_str());
    }

    std::string Path(const std::string& file) const { return m_directory + "/" + file; }
    std::string Read(const std::string& file) const
    {
        std::ifstream stream(Path(file));
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

    std::string m_directory;
};

TEST_F(ShareSDKLog, LineHasDateThreadKindPlaceAndText)
{
    ASSERT_TRUE(SHARESDK_LogToFile(Path("log").c_str(), 1000, 1));
    SHARESDK_NormalOutput("listening on port 80", "/some/where/NetServer.cpp", 42);
    SHARESDK_AbnormalOutput("ASSERT", "NetServer.cpp", 7);
    const std::string thread = std::to_string(getpid());
    EXPECT_THAT(Read("log"), testing::MatchesRegex("....-..-.. ..:..:..\\.... " + thread +
                                                   " info NetServer.cpp:42 listening on port 80\n"
                                                   "....-..-.. ..:..:..\\.... " +
                                                   thread + " error NetServer.cpp:7 ASSERT\n"));
}

TEST_F(ShareSDKLog, ControlCharactersCannotBeginALine)
{
    ASSERT_TRUE(SHARESDK_LogToFile(Path("log").c_str(), 1000, 1));
    SHARESDK_NormalOutput("one\r\ntwo\x1b[2J\x7f", "a.cpp", 1);
    EXPECT_THAT(Read("log"), testing::EndsWith(" info a.cpp:1 one  two [2J \n"));
}

TEST_F(ShareSDKLog, NullTextAndFileAreEmpty)
{
    ASSERT_TRUE(SHARESDK_LogToFile(Path("log").c_str(), 1000, 1));
    SHARESDK_AbnormalOutput(nullptr, nullptr, 3);
    EXPECT_THAT(Read("log"), testing::EndsWith(" error :3 \n"));
}

TEST_F(ShareSDKLog, FileIsRotatedAndOlderOnesAreKept)
{
    ASSERT_TRUE(SHARESDK_LogToFile(Path("log").c_str(), 200, 2));
    const std::string text(120, 'x');
    for (int i = 0; i < 5; ++i)
    {
        SHARESDK_NormalOutput(text.c_str(), "a.cpp", 1);
    }
    EXPECT_THAT(Read("log"), testing::HasSubstr(text));
    EXPECT_THAT(Read("log.1"), testing::HasSubstr(text));
    EXPECT_THAT(Read("log.2"), testing::HasSubstr(text));
    EXPECT_EQ("", Read("log.3"));
}

TEST_F(ShareSDKLog, FileThatCannotBeOpenedLeavesTheLogAsItWas)
{
    ASSERT_TRUE(SHARESDK_LogToFile(Path("log").c_str(), 1000, 1));
    EXPECT_FALSE(SHARESDK_LogToFile((m_directory + "/log/below-a-file").c_str(), 1000, 1));
    EXPECT_FALSE(SHARESDK_LogToFile(nullptr, 1000, 1));
    EXPECT_FALSE(SHARESDK_LogToFile(Path("other").c_str(), 0, 1));
    SHARESDK_NormalOutput("still here", "a.cpp", 1);
    EXPECT_THAT(Read("log"), testing::HasSubstr("still here"));
}

TEST_F(ShareSDKLog, GoesToStandardErrorAtFirst)
{
    testing::internal::CaptureStderr();
    SHARESDK_NormalOutput("hello", "a.cpp", 1);
    EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::EndsWith(" info a.cpp:1 hello\n"));
}

TEST_F(ShareSDKLog, LevelAbnormalDropsNormalLines)
{
    ASSERT_TRUE(SHARESDK_LogToFile(Path("log").c_str(), 1000, 1));
    SHARESDK_SetLogLevel(SHARESDK_LOG_ABNORMAL);
    SHARESDK_NormalOutput("normal", "a.cpp", 1);
    SHARESDK_AbnormalOutput("abnormal", "a.cpp", 1);
    EXPECT_THAT(Read("log"), testing::Not(testing::HasSubstr(" info ")));
    EXPECT_THAT(Read("log"), testing::HasSubstr(" error a.cpp:1 abnormal"));
}

TEST_F(ShareSDKLog, LevelNoneDropsAllLines)
{
    ASSERT_TRUE(SHARESDK_LogToFile(Path("log").c_str(), 1000, 1));
    SHARESDK_SetLogLevel(SHARESDK_LOG_NONE);
    SHARESDK_NormalOutput("normal", "a.cpp", 1);
    SHARESDK_AbnormalOutput("abnormal", "a.cpp", 1);
    EXPECT_EQ("", Read("log"));
}

TEST_F(ShareSDKLog, GoesToSyslogWithItsSeverity)
{
    syslogLines.clear();
    SHARESDK_LogToSyslog("camera");
    SHARESDK_NormalOutput("100% normal", "a.cpp", 1);
    SHARESDK_AbnormalOutput("abnormal", "a.cpp", 2);
    ASSERT_EQ(2u, syslogLines.size());
    EXPECT_EQ(LOG_INFO, syslogLines[0].first);
    EXPECT_EQ("a.cpp:1 100% normal", syslogLines[0].second);
    EXPECT_EQ(LOG_ERR, syslogLines[1].first);
    EXPECT_EQ("a.cpp:2 abnormal", syslogLines[1].second);
}

} // namespace
