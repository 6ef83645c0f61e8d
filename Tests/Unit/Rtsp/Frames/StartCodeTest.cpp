#include "StartCode.h"

#include <gtest/gtest.h>

#include <string>

namespace
{
unsigned int Find(const std::string& bytes, unsigned int from, const START_CODE& code)
{
    return FindStartCode(reinterpret_cast<const unsigned char*>(bytes.data()), from,
                         static_cast<unsigned int>(bytes.size()), code);
}

std::string Bytes(std::initializer_list<int> values)
{
    std::string bytes;
    for (int value : values)
        bytes.push_back(static_cast<char>(value));
    return bytes;
}
} // namespace

TEST(StartCode, BytesAreAsStated)
{
    EXPECT_EQ(0u, Find(Bytes({0x00, 0x00, 0x00, 0x01}), 0, NALU_BOUNDARY));
    EXPECT_EQ(0u, Find(Bytes({0x00, 0x01, 0xA0, 0x00}), 0, AUDIO_NALU_BOUNDARY));
}

TEST(StartCode, IsFoundAtOrBehindTheGivenPosition)
{
    const std::string bytes = Bytes({0, 0, 0, 1, 9, 0, 0, 0, 1, 9});
    EXPECT_EQ(0u, Find(bytes, 0, NALU_BOUNDARY));
    EXPECT_EQ(5u, Find(bytes, 1, NALU_BOUNDARY));
    EXPECT_EQ(5u, Find(bytes, 5, NALU_BOUNDARY));
    EXPECT_EQ(START_CODE_NONE, Find(bytes, 6, NALU_BOUNDARY));
    EXPECT_EQ(START_CODE_NONE, Find(bytes, 100, NALU_BOUNDARY));
}

TEST(StartCode, OfThreeBytesIsNone)
{
    EXPECT_EQ(START_CODE_NONE, Find(Bytes({9, 0, 0, 1, 9, 9}), 0, NALU_BOUNDARY));
}

TEST(StartCode, MoreZerosInFrontDoNotCount)
{
    EXPECT_EQ(2u, Find(Bytes({0, 0, 0, 0, 0, 1}), 0, NALU_BOUNDARY));
}

TEST(StartCode, CutShortIsNone)
{
    EXPECT_EQ(START_CODE_NONE, Find("", 0, NALU_BOUNDARY));
    EXPECT_EQ(START_CODE_NONE, Find(Bytes({0, 0, 0}), 0, NALU_BOUNDARY));
    EXPECT_EQ(START_CODE_NONE, Find(Bytes({9, 0, 1, 0xA0}), 0, AUDIO_NALU_BOUNDARY));
    EXPECT_EQ(1u, Find(Bytes({9, 0, 1, 0xA0, 0}), 0, AUDIO_NALU_BOUNDARY));
}

// Against the plain search, over every text of three different bytes.
TEST(StartCode, IsFoundWhereAPlainSearchFindsIt)
{
    for (const START_CODE& code : {NALU_BOUNDARY, AUDIO_NALU_BOUNDARY})
    {
        const std::string needle(reinterpret_cast<const char*>(code.bytes), START_CODE_BYTES);
        for (int n = 0; n < 2187; ++n)
        {
            std::string bytes;
            for (int rest = n, i = 0; i < 7; ++i, rest /= 3)
                bytes.push_back(static_cast<char>(rest % 3 == 2 ? 0xA0 : rest % 3));
            const std::size_t expected = bytes.find(needle);
            EXPECT_EQ(expected == std::string::npos ? START_CODE_NONE : static_cast<unsigned int>(expected),
                      Find(bytes, 0, code));
        }
    }
}
