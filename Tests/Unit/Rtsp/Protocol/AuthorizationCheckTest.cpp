#include "AuthorizationCheck.h"

#include <gtest/gtest.h>

#include <cstring>

namespace
{
const char NONCE[] = "0123456789abcdef0123456789abcdef";

// MD5 of MD5("admin:RTSP SERVER:secret"), the nonce and MD5("DESCRIBE:rtsp://10.0.0.1/live"), and so on.
const char RESPONSE[] = "6330d9561bc25a13590a7a3fb2740222";
const char RESPONSE_OF_SECOND_PASSWORD[] = "5d4c159d774351944b4baf623b8f8a0c";
const char RESPONSE_OF_NO_USER[] = "676892cb64207e4c6207006d94826ed7";
const char RESPONSE_TO_NO_NONCE[] = "216487dd2aaf13bfbc707added758b1d";
const char RESPONSE_OF_20_CHARACTERS[] = "6f4a61719508242992b0342d0bd5e2a0";

NETNS::DEV_USER_INFO User(const char* name, const char* password)
{
    NETNS::DEV_USER_INFO user = {};
    memcpy(user.userName, name, strnlen(name, sizeof(user.userName)));
    memcpy(user.password, password, strnlen(password, sizeof(user.password)));
    return user;
}

std::string Digest(const std::string& user, const std::string& nonce, const std::string& response,
                   const std::string& realm = "RTSP SERVER")
{
    return "DESCRIBE rtsp://10.0.0.1/live RTSP/1.0\r\nCSeq: 2\r\nAuthorization: Digest username=\"" + user +
           "\", realm=\"" + realm + "\", nonce=\"" + nonce + "\", uri=\"rtsp://10.0.0.1/live\", response=\"" +
           response + "\"\r\n\r\n";
}

std::string Basic(const std::string& base64)
{
    return "DESCRIBE rtsp://10.0.0.1/live RTSP/1.0\r\nCSeq: 2\r\nAuthorization: Basic " + base64 + "\r\n\r\n";
}

class AuthorizationCheck : public testing::Test
{
protected:
    CAuthorizationCheck Check(const std::string& request, const std::string& nonce = NONCE,
                              const std::string& method = "DESCRIBE")
    {
        return CAuthorizationCheck(m_users, "RTSP SERVER", nonce, method, request);
    }

    std::vector<NETNS::DEV_USER_INFO> m_users = {User("guest", "guest"), User("admin", "secret")};
};
} // namespace

TEST_F(AuthorizationCheck, RealmIsFixed)
{
    EXPECT_STREQ("RTSP SERVER", QLX_RTSP_REALM);
}

TEST_F(AuthorizationCheck, RequestWithoutTheHeaderIsRefused)
{
    CAuthorizationCheck check = Check("DESCRIBE rtsp://10.0.0.1/live RTSP/1.0\r\nCSeq: 2\r\n\r\n");
    EXPECT_EQ(0, check.GetAuthorizatoinType());
    EXPECT_FALSE(check.IsCheckOk());
}

TEST_F(AuthorizationCheck, LowerCaseHeaderNameCountsAsNone)
{
    CAuthorizationCheck check = Check("authorization: Digest username=\"admin\"");
    EXPECT_EQ(0, check.GetAuthorizatoinType());
    EXPECT_FALSE(check.IsCheckOk());
}

TEST_F(AuthorizationCheck, DigestWinsOverBasic)
{
    EXPECT_EQ(1, Check("Authorization: Digest x").GetAuthorizatoinType());
    EXPECT_EQ(2, Check("Authorization: Basic x").GetAuthorizatoinType());
    EXPECT_EQ(2, Check("Authorization: Basic").GetAuthorizatoinType());
    EXPECT_EQ(1, Check("Authorization: Basic x\r\nAuthorization: Digest x").GetAuthorizatoinType());
}

TEST_F(AuthorizationCheck, RightResponsePassesAndNamesTheUser)
{
    CAuthorizationCheck check = Check(Digest("admin", NONCE, RESPONSE));
    EXPECT_TRUE(check.IsCheckOk());
    EXPECT_EQ("admin", check.GetUserName());
    EXPECT_EQ("secret", check.GetPassword());
}

TEST_F(AuthorizationCheck, ResponseIsComparedExactly)
{
    EXPECT_FALSE(Check(Digest("admin", NONCE, "6330D9561BC25A13590A7A3FB2740222")).IsCheckOk());
    EXPECT_FALSE(Check(Digest("admin", NONCE, RESPONSE_OF_SECOND_PASSWORD)).IsCheckOk());
    EXPECT_FALSE(Check(Digest("admin", NONCE, "")).IsCheckOk());
}

TEST_F(AuthorizationCheck, ResponseIsBoundToTheMethod)
{
    EXPECT_FALSE(Check(Digest("admin", NONCE, RESPONSE), NONCE, "SETUP").IsCheckOk());
}

TEST_F(AuthorizationCheck, RightResponseToAnOldNonceIsRefused)
{
    EXPECT_FALSE(Check(Digest("admin", NONCE, RESPONSE), "ffffffffffffffffffffffffffffffff").IsCheckOk());
}

TEST_F(AuthorizationCheck, OtherRealmIsRefused)
{
    EXPECT_FALSE(Check(Digest("admin", NONCE, RESPONSE, "rtsp server")).IsCheckOk());
}

// Before the first challenge the session's nonce is empty.
TEST_F(AuthorizationCheck, EmptyNonceIsJudgedLikeAnyOther)
{
    EXPECT_TRUE(Check(Digest("admin", "", RESPONSE_TO_NO_NONCE), "").IsCheckOk());
    EXPECT_FALSE(Check(Digest("admin", "", RESPONSE), "").IsCheckOk());
}

TEST_F(AuthorizationCheck, UnknownUserPassesOnlyWithAResponseOverEmptyNameAndPassword)
{
    EXPECT_FALSE(Check(Digest("nobody", NONCE, RESPONSE)).IsCheckOk());
    CAuthorizationCheck check = Check(Digest("nobody", NONCE, RESPONSE_OF_NO_USER));
    EXPECT_TRUE(check.IsCheckOk());
    EXPECT_EQ("", check.GetUserName());
}

TEST_F(AuthorizationCheck, DeviceWithoutUsersRefusesAll)
{
    m_users.clear();
    EXPECT_FALSE(Check(Digest("nobody", NONCE, RESPONSE_OF_NO_USER)).IsCheckOk());
}

TEST_F(AuthorizationCheck, LastUserOfANameCounts)
{
    m_users.push_back(User("admin", "second"));
    EXPECT_FALSE(Check(Digest("admin", NONCE, RESPONSE)).IsCheckOk());
    EXPECT_TRUE(Check(Digest("admin", NONCE, RESPONSE_OF_SECOND_PASSWORD)).IsCheckOk());
}

TEST_F(AuthorizationCheck, NameAndPasswordMayFillTheirFields)
{
    m_users = {User("abcdefghijklmnopqrst", "ABCDEFGHIJKLMNOPQRST")};
    CAuthorizationCheck check = Check(Digest("abcdefghijklmnopqrst", NONCE, RESPONSE_OF_20_CHARACTERS));
    EXPECT_TRUE(check.IsCheckOk());
    EXPECT_EQ("ABCDEFGHIJKLMNOPQRST", check.GetPassword());
}

TEST_F(AuthorizationCheck, MissingFieldIsRefused)
{
    const std::string whole = Digest("admin", NONCE, RESPONSE);
    for (const char* name : {"username=", "nonce=", "realm=", "uri=", "response="})
    {
        std::string without = whole;
        without.replace(without.find(name), 3, "___");
        EXPECT_FALSE(Check(without).IsCheckOk()) << name;
    }
}

TEST_F(AuthorizationCheck, CutAnywhereItIsRefused)
{
    const std::string whole = Digest("admin", NONCE, RESPONSE);
    const std::size_t needed = whole.rfind('"');
    for (std::size_t length = 0; length <= needed; ++length)
        EXPECT_FALSE(Check(whole.substr(0, length)).IsCheckOk()) << length;
    EXPECT_TRUE(Check(whole.substr(0, needed + 1)).IsCheckOk());
}

// A field's name is searched in the whole message, so earlier text with that word in it takes its place.
TEST_F(AuthorizationCheck, FieldNameInEarlierTextTakesItsPlace)
{
    EXPECT_FALSE(Check("X-uri: \"other\"\r\n" + Digest("admin", NONCE, RESPONSE)).IsCheckOk());
    EXPECT_TRUE(Check("X-uri: \"rtsp://10.0.0.1/live\"\r\n" + Digest("admin", NONCE, RESPONSE)).IsCheckOk());
}

struct BasicCase
{
    const char* name;
    const char* base64;
    bool passes;
};

void PrintTo(const BasicCase& row, std::ostream* out)
{
    *out << row.name;
}

class AuthorizationCheckBasic : public testing::TestWithParam<BasicCase>
{
};

// Passes exactly when no password can be read from the header.
TEST_P(AuthorizationCheckBasic, IsAsStated)
{
    const std::vector<NETNS::DEV_USER_INFO> users = {User("user", "pass")};
    CAuthorizationCheck check(users, "RTSP SERVER", "", "DESCRIBE", Basic(GetParam().base64));
    EXPECT_EQ(GetParam().passes, check.IsCheckOk());
    EXPECT_EQ("", check.GetUserName());
    EXPECT_EQ("", check.GetPassword());
}

const BasicCase BASIC_CASES[] = {
    {"RealPassword", "dXNlcjpwYXNz", false},        // user:pass
    {"EmptyPassword", "dXNlcjo=", true},            // user:
    {"NoColon", "dXNlcg==", true},                  // user
    {"NoUser", "Ong=", true},                       // :x
    {"PasswordBehindBlank", "dXNlcjogeA==", false}, // user: x
    {"OneLetterIsDropped", "dXNlcjpw", true},       // user:p without its last digit
    {"OneCharacter", "d", false},                   // nothing is left of it
    {"Empty", "", false},
    {"Garbage", "!!!!", true},
};

INSTANTIATE_TEST_SUITE_P(Headers, AuthorizationCheckBasic, testing::ValuesIn(BASIC_CASES),
                         [](const testing::TestParamInfo<BasicCase>& row) { return std::string(row.param.name); });

TEST_F(AuthorizationCheck, BasicWithoutLineEndIsRefused)
{
    EXPECT_FALSE(Check("Authorization: Basic dXNlcjo=").IsCheckOk());
    EXPECT_TRUE(Check("Authorization: Basic dXNlcjo=\n").IsCheckOk());
    EXPECT_TRUE(Check("Authorization: Basic dXNlcjo=\r").IsCheckOk());
    EXPECT_FALSE(Check("Authorization: Basic").IsCheckOk());
}

// 127 bytes of the decoded text count: a password behind them is not read.
TEST_F(AuthorizationCheck, LongBasicTextIsCutAt127Bytes)
{
    std::string text; // "aaa" again and again: 123 bytes decoded
    for (int i = 0; i < 41; ++i)
        text += "YWFh";
    EXPECT_FALSE(Check(Basic(text + "YWE6YWFh")).IsCheckOk());    // the password begins at byte 127
    EXPECT_TRUE(Check(Basic(text + "YWFhOmFhYQ==")).IsCheckOk()); // it would begin at byte 128
}

TEST_F(AuthorizationCheck, HugeBasicTextStaysInItsBuffer)
{
    EXPECT_TRUE(Check(Basic(std::string(16000, 'Y'))).IsCheckOk());
    EXPECT_TRUE(Check(Basic(std::string(16000, '='))).IsCheckOk());
    EXPECT_TRUE(Check(Basic(std::string(16000, '\xFF'))).IsCheckOk());
}
