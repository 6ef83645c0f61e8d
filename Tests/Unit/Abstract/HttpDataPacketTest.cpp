#include "HttpDataPacket.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

const size_t LARGEST_BODY = 0xA00000;

void Push(CHttpDataPacket& packets, const std::string& bytes)
{
    packets.PushBack(bytes.data(), static_cast<unsigned int>(bytes.size()));
}

// The oldest message; a text of its own when there is none.
std::string Take(CHttpDataPacket& packets)
{
    _DATA_PACK_* pack = packets.GetNextPendingPacket();
    if (pack == nullptr)
    {
        return "(none)";
    }
    const std::string message(pack->m_pBuff, static_cast<size_t>(pack->Length()));
    EXPECT_EQ('\0', pack->m_pBuff[pack->Length()]);
    CHttpDataPacket::ReleasePack(pack);
    EXPECT_EQ(nullptr, pack);
    return message;
}

const std::string POST_4 = "POST /SetDateAndTime HTTP/1.1\r\nContent-Length: 4\r\n\r\n";

} // namespace

TEST(HttpDataPacket, CutsARequestWithoutABodyAtItsHeader)
{
    CHttpDataPacket packets;
    Push(packets, "GET /GetDeviceInfo HTTP/1.1\r\nHost: a\r\n\r\n");
    EXPECT_TRUE(packets.HasPendingPacket());
    EXPECT_TRUE(packets.IsComplete());
    EXPECT_EQ("GET /GetDeviceInfo HTTP/1.1\r\nHost: a\r\n\r\n", Take(packets));
    EXPECT_FALSE(packets.HasPendingPacket());
    EXPECT_EQ("(none)", Take(packets));
}

TEST(HttpDataPacket, WaitsForTheBodyThatContentLengthAnnounces)
{
    CHttpDataPacket packets;
    Push(packets, POST_4 + "ab");
    EXPECT_FALSE(packets.HasPendingPacket());
    EXPECT_FALSE(packets.IsComplete());
    Push(packets, "cd");
    EXPECT_TRUE(packets.IsComplete());
    EXPECT_EQ(POST_4 + "abcd", Take(packets));
}

// Header names count as they are spelled: a lower-case one announces no body.
TEST(HttpDataPacket, LowerCaseContentLengthLeavesTheBodyUncut)
{
    CHttpDataPacket packets;
    Push(packets, "POST /Reboot HTTP/1.1\r\ncontent-length: 2\r\n\r\nab");
    EXPECT_EQ("POST /Reboot HTTP/1.1\r\ncontent-length: 2\r\n\r\n", Take(packets));
    EXPECT_FALSE(packets.HasPendingPacket());
    EXPECT_FALSE(packets.IsComplete());
}

TEST(HttpDataPacket, ContentLengthOfZeroIsAHeaderOnly)
{
    CHttpDataPacket packets;
    Push(packets, "GET / HTTP/1.1\r\nContent-Length: 0\r\n\r\n");
    EXPECT_TRUE(packets.IsComplete());
    EXPECT_EQ("GET / HTTP/1.1\r\nContent-Length: 0\r\n\r\n", Take(packets));
}

TEST(HttpDataPacket, IsCompleteBeforeAnyByteCame)
{
    const CHttpDataPacket packets;
    EXPECT_TRUE(packets.IsComplete());
    EXPECT_FALSE(packets.HasPendingPacket());
}

TEST(HttpDataPacket, CutsMessagesThatComeTogether)
{
    CHttpDataPacket packets;
    Push(packets, "GET /a HTTP/1.1\r\n\r\n" + POST_4 + "abcdGET /b HTTP/1.1\r\n\r\n");
    EXPECT_TRUE(packets.IsComplete());
    EXPECT_EQ("GET /a HTTP/1.1\r\n\r\n", Take(packets));
    EXPECT_EQ(POST_4 + "abcd", Take(packets));
    EXPECT_EQ("GET /b HTTP/1.1\r\n\r\n", Take(packets));
    EXPECT_FALSE(packets.HasPendingPacket());
}

// A whole first message does not complete a read while a second one is cut short.
TEST(HttpDataPacket, IsNotCompleteWhileASecondMessageIsPartial)
{
    CHttpDataPacket packets;
    Push(packets, "GET /a HTTP/1.1\r\n\r\nGET /b");
    EXPECT_TRUE(packets.HasPendingPacket());
    EXPECT_FALSE(packets.IsComplete());
}

TEST(HttpDataPacket, GivesTheSameMessagesByteByByte)
{
    const std::string bytes = "GET /a HTTP/1.1\r\n\r\n" + POST_4 + "abcdGET /b HTTP/1.1\r\nX: y\r\n\r\n";
    CHttpDataPacket packets;
    for (const char byte : bytes)
    {
        Push(packets, std::string(1, byte));
    }
    EXPECT_TRUE(packets.IsComplete());
    EXPECT_EQ("GET /a HTTP/1.1\r\n\r\n", Take(packets));
    EXPECT_EQ(POST_4 + "abcd", Take(packets));
    EXPECT_EQ("GET /b HTTP/1.1\r\nX: y\r\n\r\n", Take(packets));
}

TEST(HttpDataPacket, HasNothingWhenCutShortAnywhere)
{
    const std::string bytes = POST_4 + "abcd";
    for (size_t length = 1; length < bytes.size(); ++length)
    {
        CHttpDataPacket packets;
        Push(packets, bytes.substr(0, length));
        EXPECT_FALSE(packets.HasPendingPacket()) << length;
        EXPECT_FALSE(packets.IsComplete()) << length;
    }
}

TEST(HttpDataPacket, LargestBodyIsWaitedFor)
{
    const std::string header = "POST /a HTTP/1.1\r\nContent-Length: 10485760\r\n\r\n";
    CHttpDataPacket packets;
    Push(packets, header + "a");
    EXPECT_FALSE(packets.HasPendingPacket());
    EXPECT_FALSE(packets.IsComplete());
    Push(packets, std::string(LARGEST_BODY - 2, 'b'));
    EXPECT_FALSE(packets.HasPendingPacket());
    Push(packets, "c");
    EXPECT_TRUE(packets.IsComplete());
    EXPECT_EQ(header.size() + LARGEST_BODY, Take(packets).size());
}

TEST(HttpDataPacket, LargerBodyIsTakenAsFarAsItCame)
{
    const std::string message = "POST /a HTTP/1.1\r\nContent-Length: 10485761\r\n\r\nab";
    CHttpDataPacket packets;
    Push(packets, message);
    EXPECT_TRUE(packets.IsComplete());
    EXPECT_EQ(message, Take(packets));
    Push(packets, "GET /b"); // the length that was seen last still counts
    EXPECT_TRUE(packets.IsComplete());
}

struct LengthCase
{
    const char* name;
    const char* value;
    bool complete;     // right after the header with "ab" behind it
    const char* taken; // of the "ab"
};

const LengthCase LENGTH_CASES[] = {
    {"NoBlank", "2", true, "ab"},
    {"Blank", " 2", true, "ab"},
    {"Tab", "\t2", true, "ab"},
    {"Behind", "2 bytes", true, "ab"},
    {"One", "1", false, "a"},
    {"Three", "3", false, "(none)"},
    {"Empty", "", false, ""},
    {"NoNumber", "two", false, ""},
    {"Negative", "-1", true, "ab"}, // as an unsigned number it is huge
    {"BeyondInt", "4294967298", true, "ab"},
    {"BeyondLong", "99999999999999999999999999", true, "ab"},
    {"FarNegative", "-99999999999999999999999999", true, "ab"},
};

class ContentLengths : public testing::TestWithParam<LengthCase>
{
};

TEST_P(ContentLengths, AreRead)
{
    const std::string header =
        "POST /a HTTP/1.1\r\nContent-Length:" + std::string(GetParam().value) + "\r\nX: 7\r\n\r\n";
    CHttpDataPacket packets;
    Push(packets, header + "ab");
    EXPECT_EQ(GetParam().complete, packets.IsComplete());
    const std::string taken = GetParam().taken;
    EXPECT_EQ(taken == "(none)" ? taken : header + taken, Take(packets));
}

INSTANTIATE_TEST_SUITE_P(HttpDataPacket, ContentLengths, testing::ValuesIn(LENGTH_CASES),
                         [](const auto& row) { return row.param.name; });

TEST(HttpDataPacket, KeepsAZeroByteInABody)
{
    CHttpDataPacket packets;
    Push(packets, POST_4 + std::string("a\0b\0", 4));
    EXPECT_EQ(POST_4 + std::string("a\0b\0", 4), Take(packets));
}

// The end of a header is looked for as in a text, which a zero byte ends.
TEST(HttpDataPacket, ZeroByteInAHeaderHidesItsEnd)
{
    CHttpDataPacket packets;
    Push(packets, std::string("GET /\0 HTTP/1.1\r\n\r\n", 19));
    EXPECT_FALSE(packets.HasPendingPacket());
    EXPECT_FALSE(packets.IsComplete());
    Push(packets, "GET / HTTP/1.1\r\n\r\n");
    EXPECT_FALSE(packets.HasPendingPacket());
}

TEST(HttpDataPacket, TellsAHeaderThatIsTooLong)
{
    CHttpDataPacket packets;
    Push(packets, std::string(LARGEST_BODY, 'a'));
    EXPECT_FALSE(packets.IsHeaderTooLong());
    Push(packets, "a");
    EXPECT_TRUE(packets.IsHeaderTooLong());
    EXPECT_FALSE(packets.IsComplete());
    Push(packets, "\r\n\r\n"); // too late
    EXPECT_TRUE(packets.IsHeaderTooLong());
    EXPECT_FALSE(packets.HasPendingPacket());
}

TEST(HttpDataPacket, LongBodyIsNoLongHeader)
{
    CHttpDataPacket packets;
    Push(packets, "POST /a HTTP/1.1\r\nContent-Length: 10485760\r\n\r\n");
    Push(packets, std::string(LARGEST_BODY - 1, 'b'));
    EXPECT_FALSE(packets.IsHeaderTooLong());
}

TEST(DataPack, AppendsAndFindsTheHeader)
{
    _DATA_PACK_ pack;
    std::string header = "old";
    EXPECT_EQ(0, pack.GetHeader(header));
    EXPECT_EQ("old", header);
    EXPECT_EQ(0, pack.Length());
    pack.Append("a\r\n\r", 4);
    EXPECT_EQ(0, pack.GetHeader(header));
    pack.Append("\nb", 2);
    EXPECT_EQ(5, pack.GetHeader(header));
    EXPECT_EQ("a\r\n\r\n", header);
    EXPECT_EQ(6, pack.Length());
    EXPECT_STREQ("a\r\n\r\nb", pack.m_pBuff);
}

TEST(DataPack, DeletesFromItsBegin)
{
    _DATA_PACK_ pack;
    pack.StrCpy("a\r\n\r\nb\r\n\r\ncc", 12);
    std::string header;
    EXPECT_EQ(5, pack.GetHeader(header));
    pack.DelFromHeader(5);
    EXPECT_STREQ("b\r\n\r\ncc", pack.m_pBuff);
    EXPECT_EQ(5, pack.GetHeader(header));
    pack.DelFromHeader(5);
    EXPECT_EQ(0, pack.GetHeader(header));
    pack.DelFromHeader(2);
    EXPECT_EQ(nullptr, pack.m_pBuff);
    EXPECT_EQ(0, pack.Length());
}

TEST(DataPack, StrCpyReplaces)
{
    _DATA_PACK_ pack;
    pack.Append("a\r\n\r\n", 5);
    std::string header;
    EXPECT_EQ(5, pack.GetHeader(header));
    pack.StrCpy("xyz", 2);
    EXPECT_EQ(2, pack.Length());
    EXPECT_STREQ("xy", pack.m_pBuff);
    EXPECT_EQ(0, pack.GetHeader(header));
}

TEST(DataPackDeathTest, MistakesEndTheProcess)
{
    _DATA_PACK_ pack;
    EXPECT_DEATH(pack.Append(nullptr, 1), "pBuff != nullptr && nLen > 0");
    EXPECT_DEATH(pack.Append("a", 0), "pBuff != nullptr && nLen > 0");
    EXPECT_DEATH(pack.StrCpy(nullptr, 1), "pSrc != nullptr && nLen > 0");
    EXPECT_DEATH(pack.DelFromHeader(0), "nLen <= m_nLen && m_pBuff != nullptr");
    pack.Append("a", 1);
    EXPECT_DEATH(pack.DelFromHeader(2), "nLen <= m_nLen && m_pBuff != nullptr");
}
