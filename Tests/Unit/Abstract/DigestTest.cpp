#include "MD5.h"
#include "SHA1.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

namespace
{

struct DigestCase
{
    const char* name;
    std::string input;
    const char* md5;
    const char* sha1;
};

// RFC 1321, A.5 and FIPS 180-1, with lengths about the end of a block.
const DigestCase DIGEST_CASES[] = {
    {"Empty", "", "d41d8cd98f00b204e9800998ecf8427e", "da39a3ee5e6b4b0d3255bfef95601890afd80709"},
    {"Abc", "abc", "900150983cd24fb0d6963f7d28e17f72", "a9993e364706816aba3e25717850c26c9cd0d89d"},
    {"Alphabet", "abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b",
     "32d10c7b8cf96570ca04ce37f2a19d84240d3a89"},
    {"TwoBlocks", "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq", "8215ef0796a20bcaaae116d3876c664a",
     "84983e441c3bd26ebaae4aa1f95129e5e54670f1"},
    {"Digits", "12345678901234567890123456789012345678901234567890123456789012345678901234567890",
     "57edf4a22be3c955ac49da2e2107b67a", "50abf5706a150990a08b2c5ea40fa0e585554732"},
    {"A55", std::string(55, 'a'), "ef1772b6dff9a122358552954ad0df65", "c1c8bbdc22796e28c0e15163d20899b65621d65a"},
    {"A56", std::string(56, 'a'), "3b0c8ac703f828b04c6c197006d17218", "c2db330f6083854c99d4b5bfb6e8f29f201be699"},
    {"A63", std::string(63, 'a'), "b06521f39153d618550606be297466d5", "03f09f5b158a7a8cdad920bddc29b81c18a551f5"},
    {"A64", std::string(64, 'a'), "014842d480b571495a4a0363793f7367", "0098ba824b5c16427bd7a1122a5a442a25ec644d"},
    {"A65", std::string(65, 'a'), "c743a45e0d2e6a95cb859adae0248435", "11655326c708d70319be2610e8a57d9a5b959d3b"},
    {"Million", std::string(1000000, 'a'), "7707d6ae4e027c70eea2a935c2296f21",
     "34aa973cd4c4daa4f61eeb2bdbad27316534016f"},
};

class Digests : public testing::TestWithParam<DigestCase>
{
};

std::string Hex(const unsigned char* bytes, size_t count)
{
    std::string text;
    for (size_t i = 0; i < count; ++i)
    {
        char pair[3];
        std::snprintf(pair, sizeof(pair), "%02x", bytes[i]);
        text += pair;
    }
    return text;
}

// Fed in pieces of the given size.
std::string SHA1Of(std::string input, size_t piece)
{
    SHA1_CONTEXT context = {};
    sha1_init(&context);
    for (size_t i = 0; i < input.size(); i += piece)
    {
        const size_t length = std::min(piece, input.size() - i);
        sha1_write(&context, reinterpret_cast<unsigned char*>(&input[i]), static_cast<unsigned int>(length));
        sha1_write(&context, nullptr, 0);
    }
    sha1_final(&context);
    return Hex(context.buf, 20);
}

std::string MD5Of(std::string input, size_t piece)
{
    PUB_MD5_CTX context;
    MD5Init(&context);
    for (size_t i = 0; i < input.size(); i += piece)
    {
        const size_t length = std::min(piece, input.size() - i);
        MD5Update(&context, reinterpret_cast<unsigned char*>(&input[i]), static_cast<unsigned int>(length));
    }
    char text[33];
    MD5Final(text, &context, false);
    return text;
}

} // namespace

TEST_P(Digests, MD5IsThePublishedOne)
{
    char text[34];
    std::memset(text, 'x', sizeof(text));
    PUB_MD5Encrypt(GetParam().input.data(), static_cast<int>(GetParam().input.size()), text, false);
    EXPECT_STREQ(GetParam().md5, text);
    EXPECT_EQ('x', text[33]);
    EXPECT_EQ(GetParam().md5, MD5Of(GetParam().input, 7));
    EXPECT_EQ(GetParam().md5, MD5Of(GetParam().input, 64));
}

TEST_P(Digests, SHA1IsThePublishedOne)
{
    EXPECT_EQ(GetParam().sha1, SHA1Of(GetParam().input, 7));
    EXPECT_EQ(GetParam().sha1, SHA1Of(GetParam().input, 64));
    EXPECT_EQ(GetParam().sha1, SHA1Of(GetParam().input, 1000000));
}

INSTANTIATE_TEST_SUITE_P(Digest, Digests, testing::ValuesIn(DIGEST_CASES),
                         [](const auto& row) { return row.param.name; });

TEST(MD5, WritesUpperCaseWhenAsked)
{
    char text[33];
    PUB_MD5Encrypt("abc", 3, text, true);
    EXPECT_STREQ("900150983CD24FB0D6963F7D28E17F72", text);
}

TEST(MD5, FinalWipesTheContext)
{
    PUB_MD5_CTX context;
    MD5Init(&context);
    unsigned char secret[] = "secret";
    MD5Update(&context, secret, 6);
    char text[33];
    MD5Final(text, &context, false);
    const PUB_MD5_CTX zeroed = {};
    EXPECT_EQ(0, std::memcmp(&zeroed, &context, sizeof(context)));
}
