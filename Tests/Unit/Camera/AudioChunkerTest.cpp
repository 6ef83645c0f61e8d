#include "AudioChunker.h"

#include <gtest/gtest.h>

namespace
{

using Bytes = std::vector<unsigned char>;

struct Chunk
{
    std::uint64_t us;
    Bytes bytes;
};

class AudioChunker : public ::testing::Test
{
protected:
    void Push(std::uint64_t us, std::size_t length, unsigned char value = 0xd5)
    {
        const Bytes bytes(length, value);
        m_chunker.Push(us, bytes.data(), bytes.size());
    }

    std::vector<Chunk> m_chunks;
    CAudioChunker m_chunker{[this](std::uint64_t us, const Bytes& bytes)
                            {
                                m_chunks.push_back({us, bytes});
                            }};
};

} // namespace

TEST_F(AudioChunker, PutsTheMarkerInFrontOf320Bytes)
{
    Push(1000, 320);
    ASSERT_EQ(1U, m_chunks.size());
    Bytes expected = {0x00, 0x01, 0xa0, 0x00};
    expected.resize(324, 0xd5);
    EXPECT_EQ(expected, m_chunks[0].bytes);
    EXPECT_EQ(1000U, m_chunks[0].us);
}

TEST_F(AudioChunker, WaitsForTheLastByteOfAChunk)
{
    Push(0, 319);
    EXPECT_TRUE(m_chunks.empty());
    Push(39875, 1);
    EXPECT_EQ(1U, m_chunks.size());
}

TEST_F(AudioChunker, CutsLongPiecesAtTimesOf40Milliseconds)
{
    Push(500, 700);
    ASSERT_EQ(2U, m_chunks.size());
    EXPECT_EQ(500U, m_chunks[0].us);
    EXPECT_EQ(40500U, m_chunks[1].us);
    Push(88000, 260); // 60 bytes are left over from before
    ASSERT_EQ(3U, m_chunks.size());
    EXPECT_EQ(80500U, m_chunks[2].us);
}

TEST_F(AudioChunker, CountsOnThroughSmallErrorsOfTheSourcesTime)
{
    Push(0, 320);
    Push(80000, 320); // 40 ms from the 40000 that was expected: still counted
    ASSERT_EQ(2U, m_chunks.size());
    EXPECT_EQ(40000U, m_chunks[1].us);
}

TEST_F(AudioChunker, StartsAgainWhenSoundWasLost)
{
    Push(0, 400, 0x11);
    Push(90001, 320, 0x22); // 50000 expected, one microsecond more than 40 ms away
    ASSERT_EQ(2U, m_chunks.size());
    EXPECT_EQ(90001U, m_chunks[1].us);
    EXPECT_EQ(0x22, m_chunks[1].bytes[4]) << "what was collected before is left out";
}

TEST_F(AudioChunker, StartsAgainWhenTimeRunsBackward)
{
    Push(1000000, 320);
    Push(0, 320);
    ASSERT_EQ(2U, m_chunks.size());
    EXPECT_EQ(0U, m_chunks[1].us);
}
