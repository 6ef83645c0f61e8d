// Speech: its codes and its file.
#include "G711.h"
#include "TempDirectory.h"
#include "WavFile.h"

#include <gtest/gtest.h>

// Pairs of ITU-T G.711: the codes of the smallest and the largest values of both signs.
TEST(G711, DecodesAlaw)
{
    EXPECT_EQ(8, AlawToLinear(0xd5));
    EXPECT_EQ(-8, AlawToLinear(0x55));
    EXPECT_EQ(32256, AlawToLinear(0xaa));
    EXPECT_EQ(-32256, AlawToLinear(0x2a));
    EXPECT_EQ(24, AlawToLinear(0xd4));
    EXPECT_EQ(264, AlawToLinear(0xc5));
}

TEST(G711, EncodesUlaw)
{
    EXPECT_EQ(0xff, LinearToUlaw(0));
    EXPECT_EQ(0x80, LinearToUlaw(32767));
    EXPECT_EQ(0x00, LinearToUlaw(-32768));
    EXPECT_EQ(0xfe, LinearToUlaw(8));
    EXPECT_EQ(0x7e, LinearToUlaw(-8));
}

TEST(G711, BothSignsOfEveryCodeAreMirrored)
{
    for (int code = 0; code < 128; ++code)
    {
        const auto plus = static_cast<std::uint8_t>(code | 0x80);
        const auto minus = static_cast<std::uint8_t>(code);
        EXPECT_EQ(AlawToLinear(plus), -AlawToLinear(minus)) << code;
        EXPECT_EQ(0x80, AlawToUlaw(plus) ^ AlawToUlaw(minus)) << code;
    }
}

TEST(WavFile, HoldsTheSamplesBehindItsHeader)
{
    const CTempDirectory directory;
    std::string problem;
    CWavFile file;
    ASSERT_TRUE(file.Open(directory.Path("talk.wav"), problem)) << problem;
    const std::int16_t samples[] = {0x0102, -2};
    file.Put(samples, 2);
    file.Flush();
    const std::string expected("RIFF\x28\x00\x00\x00WAVEfmt \x10\x00\x00\x00" // 40 bytes follow
                               "\x01\x00\x01\x00"                             // PCM, one channel
                               "\x40\x1f\x00\x00\x80\x3e\x00\x00"             // 8000 samples, 16000 bytes a second
                               "\x02\x00\x10\x00"                             // 2 bytes, 16 bits a sample
                               "data\x04\x00\x00\x00\x02\x01\xfe\xff",
                               48);
    EXPECT_EQ(expected, directory.Read("talk.wav"));
    file.Put(samples, 1);
    file.Flush();
    EXPECT_EQ(50U, directory.Read("talk.wav").size());
    EXPECT_EQ('\x06', directory.Read("talk.wav")[40]);
}

TEST(WavFile, SaysWhyItCannotBeWritten)
{
    const CTempDirectory directory;
    std::string problem;
    CWavFile file;
    EXPECT_FALSE(file.Open(directory.Path("none/talk.wav"), problem));
    EXPECT_NE(std::string::npos, problem.find("none/talk.wav' cannot be written: No such file")) << problem;
}
