#include "RTSP_Console.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

std::string Printed(const std::string& text)
{
    ::testing::internal::CaptureStderr();
    RTSP_ConsoleLine("%s", text.c_str());
    return ::testing::internal::GetCapturedStderr();
}

TEST(RTSP_Console, ALineKeepsItsOwnBreak)
{
    for (const char* line : {"sock = 5\n", " time out \n ", "no break", "\n", " ", ""})
        EXPECT_EQ(line, Printed(line));
}

TEST(RTSP_Console, WhatAPeerSentBeginsNoLineAndCommandsNoTerminal)
{
    EXPECT_EQ("para:a b c d\n", Printed("para:a\nb\tc\rd\n"));
    EXPECT_EQ("para: [31m \n", Printed("para:\x1b[31m\x7f\n"));
    EXPECT_EQ("\xe4\xbb\xbb\n", Printed("\xe4\xbb\xbb\n"));
}

TEST(RTSP_Console, ALineHas511BytesAtMost)
{
    EXPECT_EQ(std::string(511, 'x'), Printed(std::string(600, 'x') + "\n"));
}

TEST(RTSP_Console, ALogLineHas255BytesOfTextAtMost)
{
    ::testing::internal::CaptureStderr();
    RTSP_LogLine("file.cpp", 12, "%s", std::string(300, 'x').c_str());
    const std::string line = ::testing::internal::GetCapturedStderr();
    EXPECT_NE(std::string::npos, line.find("info file.cpp:12 " + std::string(255, 'x') + "\n")) << line;
}

} // namespace
