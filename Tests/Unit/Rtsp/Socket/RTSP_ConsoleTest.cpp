#include "RTSP_Console.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

template <class... Arguments>
std::string Printed(const char* format, Arguments... arguments)
{
    ::testing::internal::CaptureStderr();
    RTSP_ConsoleLine(format, arguments...);
    return ::testing::internal::GetCapturedStderr();
}

TEST(RTSP_Console, ALineKeepsItsOwnBreak)
{
    EXPECT_EQ("sock = 5\n", Printed("sock = %d\n", 5));
    EXPECT_EQ(" time out \n ", Printed(" time out \n "));
    EXPECT_EQ("no break", Printed("no break"));
    EXPECT_EQ("\n", Printed("%s\n", ""));
    EXPECT_EQ("", Printed("%s", ""));
}

TEST(RTSP_Console, WhatAPeerSentBeginsNoLineAndCommandsNoTerminal)
{
    EXPECT_EQ("para:a b c d\n", Printed("para:%s\n", "a\nb\tc\rd"));
    EXPECT_EQ("para: [31m \n", Printed("para:%s\n", "\x1b[31m\x7f"));
    EXPECT_EQ("\xe4\xbb\xbb\n", Printed("%s\n", "\xe4\xbb\xbb"));
}

TEST(RTSP_Console, ALineHas511BytesAtMost)
{
    EXPECT_EQ(std::string(511, 'x'), Printed("%s\n", std::string(600, 'x').c_str()));
}

TEST(RTSP_Console, ALogLineHas255BytesOfTextAtMost)
{
    ::testing::internal::CaptureStderr();
    RTSP_LogLine("file.cpp", 12, "%s", std::string(300, 'x').c_str());
    const std::string line = ::testing::internal::GetCapturedStderr();
    EXPECT_NE(std::string::npos, line.find("info file.cpp:12 " + std::string(255, 'x') + "\n")) << line;
}

} // namespace
