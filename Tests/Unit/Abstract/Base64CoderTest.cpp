#include "Base64Coder.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace
{

const unsigned char* Bytes(const char* text)
{
    return reinterpret_cast<const unsigned char*>(text);
}

std::string Encode(const std::string& bytes)
{
    std::string text = "old";
    EXPECT_EQ(1, CBase64Coder::Encode(Bytes(bytes.data()), bytes.size(), text));
    return text;
}

// @return the result of Decode, with what it wrote in `out` and the length in `length`
int Decode(const std::string& text, unsigned long capacity, std::string& out, unsigned long& length)
{
    std::vector<unsigned char> buffer(capacity + 8, 0xEE);
    length = capacity;
    const int result = CBase64Coder::Decode(text, buffer.data(), &length);
    for (unsigned long i = capacity; i < buffer.size(); ++i)
    {
        EXPECT_EQ(0xEE, buffer[i]) << "written behind the capacity at " << i;
    }
    out.assign(reinterpret_cast<const char*>(buffer.data()), result == 1 ? length : capacity);
    return result;
}

std::string Decoded(const std::string& text)
{
    std::string out;
    unsigned long length = 0;
    EXPECT_EQ(1, Decode(text, 256, out, length));
    return out;
}

struct PairCase
{
    const char* name;
    const char* bytes;
    const char* text;
};

// RFC 4648, 10.
const PairCase PAIR_CASES[] = {
    {"Empty", "", ""},
    {"One", "f", "Zg=="},
    {"Two", "fo", "Zm8="},
    {"Three", "foo", "Zm9v"},
    {"Four", "foob", "Zm9vYg=="},
    {"Five", "fooba", "Zm9vYmE="},
    {"Six", "foobar", "Zm9vYmFy"},
    {"PlusAndSlash", "\xFB\xFF\xBF", "+/+/"},
};

class Base64Pairs : public testing::TestWithParam<PairCase>
{
};

} // namespace

TEST_P(Base64Pairs, EncodeAndDecodeAgree)
{
    EXPECT_EQ(GetParam().text, Encode(GetParam().bytes));
    EXPECT_EQ(GetParam().bytes, Decoded(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(Base64Coder, Base64Pairs, testing::ValuesIn(PAIR_CASES),
                         [](const auto& row) { return row.param.name; });

TEST(Base64Coder, AlphabetHasThePadLast)
{
    EXPECT_STREQ("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=", g_pCodes);
}

TEST(Base64Coder, TablesMapTheAlphabetAndNothingElse)
{
    const std::string alphabet(g_pCodes, 64);
    for (int byte = 0; byte < 256; ++byte)
    {
        const size_t sextet = byte == 0 ? std::string::npos : alphabet.find(static_cast<char>(byte));
        const unsigned int value = sextet == std::string::npos ? 255 : static_cast<unsigned int>(sextet);
        EXPECT_EQ(byte == '=' ? 254u : value, g_pMap[byte]) << byte;
        if (byte < 128)
        {
            EXPECT_EQ(value, Base64IdxTab[byte]) << byte;
        }
    }
}

TEST(Base64Coder, EncodeIntoABufferTellsTheLengthWithoutTheZeroByte)
{
    unsigned char out[9];
    std::memset(out, 'x', sizeof(out));
    unsigned long length = 9;
    EXPECT_EQ(1, CBase64Coder::Encode(Bytes("fooba"), 5, out, &length));
    EXPECT_EQ(8u, length);
    EXPECT_STREQ("Zm9vYmE=", reinterpret_cast<const char*>(out));
}

TEST(Base64Coder, EncodeRefusesABufferWithoutRoomForTheZeroByte)
{
    unsigned char out[8];
    std::memset(out, 'x', sizeof(out));
    unsigned long length = 8;
    EXPECT_EQ(0, CBase64Coder::Encode(Bytes("fooba"), 5, out, &length));
    EXPECT_EQ(8u, length);
    EXPECT_EQ('x', out[0]);
    length = 100;
    EXPECT_EQ(0, CBase64Coder::Encode(Bytes("fooba"), 5, nullptr, &length));
}

TEST(Base64Coder, EncodeOfNothingIsAnEmptyText)
{
    unsigned char out[1] = {'x'};
    unsigned long length = 1;
    EXPECT_EQ(1, CBase64Coder::Encode(Bytes(""), 0, out, &length));
    EXPECT_EQ(0u, length);
    EXPECT_EQ(0, out[0]);
    length = 0;
    EXPECT_EQ(0, CBase64Coder::Encode(Bytes(""), 0, out, &length));
}

TEST(Base64Coder, DecodeSkipsForeignBytes)
{
    EXPECT_EQ("ABCDEF", Decoded("QUJD\r\nREVG"));
    EXPECT_EQ("ABC", Decoded("\x80Q-U J_D\xFF"));
}

TEST(Base64Coder, DecodeDropsAnIncompleteGroup)
{
    EXPECT_EQ("A", Decoded("QQ=="));
    EXPECT_EQ("", Decoded("QQ"));
    EXPECT_EQ("ABC", Decoded("QUJDREV"));
}

// The count of bytes in a group is lowered by every "=" and never raised again.
TEST(Base64Coder, DecodeYieldsLessBehindAnInnerPad)
{
    EXPECT_EQ("ABDE", Decoded("QUI=REVG"));
    EXPECT_EQ("AD", Decoded("QQ==REVG"));
}

TEST(Base64Coder, DecodeWithoutRoomFailsAndLeavesTheCapacity)
{
    std::string out;
    unsigned long length = 0;
    EXPECT_EQ(0, Decode("QUJDREVG", 5, out, length));
    EXPECT_EQ(5u, length);
    EXPECT_EQ("ABC", out.substr(0, 3)); // the groups that fitted stand
    EXPECT_EQ(1, Decode("QUJDREVG", 6, out, length));
    EXPECT_EQ(6u, length);
}

// The last group needs as much room as it has bytes.
TEST(Base64Coder, DecodeFitsAPaddedGroupExactly)
{
    std::string out;
    unsigned long length = 0;
    EXPECT_EQ(1, Decode("QUJDRA==", 4, out, length));
    EXPECT_EQ("ABCD", out);
    EXPECT_EQ(0, Decode("QUJDRA==", 3, out, length));
}

TEST(Base64Coder, DecodeOfManyPadsStaysWithinItsRoom)
{
    std::string out;
    unsigned long length = 0;
    EXPECT_EQ(1, Decode(std::string(64, '='), 16, out, length));
    EXPECT_EQ(16u, length);
    EXPECT_EQ(0, Decode(std::string(68, '='), 16, out, length));
    EXPECT_EQ(0, Decode(std::string(4096, '='), 64, out, length));
}

TEST(Base64Coder, TextDecoderCountsTheByteUnderConstructionAtAPad)
{
    CBase64Coder coder;
    char out[8];
    std::memset(out, 'x', sizeof(out));
    EXPECT_EQ(3u, coder.base64decone("QUI=", out));
    EXPECT_STREQ("AB", out);
    std::memset(out, 'x', sizeof(out));
    EXPECT_EQ(2u, coder.base64decone("QQ==", out));
    EXPECT_STREQ("A", out);
}

TEST(Base64Coder, TextDecoderDoesNotCountTheZeroByteWithoutAPad)
{
    CBase64Coder coder;
    char out[8];
    std::memset(out, 'x', sizeof(out));
    EXPECT_EQ(3u, coder.base64decone("QUJD", out));
    EXPECT_STREQ("ABC", out);
    std::memset(out, 'x', sizeof(out));
    EXPECT_EQ(1u, coder.base64decone("QU", out));
    EXPECT_STREQ("A", out);
    EXPECT_EQ(0u, coder.base64decone("", out));
    EXPECT_STREQ("", out);
}

TEST(Base64Coder, TextDecoderSkipsForeignBytesAndEndsAtTheFirstPad)
{
    CBase64Coder coder;
    char out[16];
    EXPECT_EQ(3u, coder.base64decone("Q\r\n U-J\x80\xFF_D", out));
    EXPECT_STREQ("ABC", out);
    EXPECT_EQ(3u, coder.base64decone("QUI=QUJD", out));
    EXPECT_STREQ("AB", out);
}

// Malformed: the byte under construction is not 0, and it stands in the text.
TEST(Base64Coder, TextDecoderLeavesAnUnfinishedByte)
{
    CBase64Coder coder;
    char out[4] = {'x', 'x', 'x', 'x'};
    EXPECT_EQ(2u, coder.base64decone("QU==", out));
    EXPECT_EQ("A@xx", std::string(out, 4));
    EXPECT_EQ(1u, coder.base64decone("Q=", out));
    EXPECT_EQ("@@xx", std::string(out, 4));
}

TEST(Base64Coder, BoundedTextDecoderAlwaysEndsInAZeroByte)
{
    struct
    {
        const char* text;
        unsigned int capacity;
        unsigned int result;
        const char* bytes; // up to and with the zero byte; x is untouched
    } const CASES[] = {
        {"QUJDREVG", 7, 6, "ABCDEF\0x"}, {"QUJDREVG", 6, 5, "ABCDE\0xx"}, {"QUJDREVG", 1, 0, "\0xxxxxxx"},
        {"QUI=", 4, 3, "AB\0\0xxxx"},    {"QUI=", 3, 2, "AB\0xxxxx"},     {"QU==", 3, 2, "A@\0xxxxx"},
        {"QU==", 2, 1, "A\0xxxxxx"},     {"=", 4, 1, "\0xxxxxxx"},        {"Q=", 4, 1, "@\0xxxxxx"},
    };
    CBase64Coder coder;
    for (const auto& row : CASES)
    {
        char out[8];
        std::memset(out, 'x', sizeof(out));
        EXPECT_EQ(row.result, coder.base64decone(row.text, out, row.capacity)) << row.text << " in " << row.capacity;
        EXPECT_EQ(std::string(row.bytes, 8), std::string(out, 8)) << row.text << " in " << row.capacity;
    }
    char untouched = 'x';
    EXPECT_EQ(0u, coder.base64decone("QUJD", &untouched, 0));
    EXPECT_EQ('x', untouched);
}

TEST(Base64Coder, EncodesATextInPlace)
{
    CBase64Coder coder;
    unsigned char text[16] = "fooba";
    coder.b64encode(text);
    EXPECT_STREQ("Zm9vYmE=", reinterpret_cast<const char*>(text));
    unsigned char high[8] = "\xFB\xFF\xBF";
    coder.b64encode(high);
    EXPECT_STREQ("+/+/", reinterpret_cast<const char*>(high));
    unsigned char empty[2] = "";
    coder.b64encode(empty);
    EXPECT_STREQ("", reinterpret_cast<const char*>(empty));
}

TEST(Base64Coder, Utf8SizeFollowsTheLeadByte)
{
    const struct
    {
        unsigned char lead;
        unsigned int size;
    } CASES[] = {{0x00, 1}, {0x7F, 1}, {0x80, 0}, {0xBF, 0}, {0xC0, 2}, {0xDF, 2}, {0xE0, 3}, {0xEF, 3},
                 {0xF0, 4}, {0xF7, 4}, {0xF8, 5}, {0xFB, 5}, {0xFC, 6}, {0xFD, 6}, {0xFE, 6}, {0xFF, 6}};
    CBase64Coder coder;
    for (const auto& row : CASES)
    {
        EXPECT_EQ(row.size, coder.utf_8_encoded_size(row.lead)) << static_cast<int>(row.lead);
    }
}

TEST(Base64Coder, Utf8CodePoints)
{
    CBase64Coder coder;
    unsigned int code = 1;
    unsigned char euro[] = "\xE2\x82\xAC";
    EXPECT_EQ(3u, coder.utf_8_get_code_point(euro, &code));
    EXPECT_EQ(0x20ACu, code);
    EXPECT_EQ(0x20ACu, coder.utf_8_code_point(euro));
    EXPECT_EQ(0u, coder.utf_8_get_code_point(euro + 1, &code));
    EXPECT_EQ(0u, code);
    unsigned char letter[] = "a";
    EXPECT_EQ(1u, coder.utf_8_get_code_point(letter, &code));
    EXPECT_EQ(0x61u, code);
    unsigned char six[] = "\xFD\xBF\xBF\xBF\xBF\xBF";
    EXPECT_EQ(6u, coder.utf_8_get_code_point(six, &code));
    EXPECT_EQ(0x7FFFFFFFu, code);
}

TEST(Base64Coder, Utf8SequenceThatIsCutShortEndsAtTheZeroByte)
{
    CBase64Coder coder;
    unsigned char cut[] = "\xE2\x82";
    EXPECT_EQ(0x2080u, coder.utf_8_code_point(cut));
    unsigned char lead[] = "\xFC";
    EXPECT_EQ(0u, coder.utf_8_code_point(lead));
}

TEST(Base64Coder, UriEncodingWritesCodePointsBetweenPrefixAndSuffix)
{
    CBase64Coder coder;
    char out[64] = "";
    char source[] = "a\xE2\x82\xAC"
                    "b";
    char prefix[] = "&#";
    char suffix[] = ";";
    EXPECT_EQ(out, coder.utf_8_uri_encoded(out, source, prefix, suffix));
    EXPECT_STREQ("a&#8364;b", out);
}

TEST(Base64Coder, NumbersLoseTheirFraction)
{
    CBase64Coder coder;
    char text[32];
    EXPECT_STREQ("0", coder.numStr(0, text));
    EXPECT_STREQ("9", coder.numStr(9.99, text));
    EXPECT_STREQ("4294967295", coder.numStr(4294967295.0, text));
    EXPECT_STREQ("-10", coder.numStr(-10.5, text));
}
