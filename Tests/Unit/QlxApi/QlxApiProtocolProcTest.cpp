#include "QlxApiProtocolProc.h"

#include "AlarmServer.h"
#include "Base64Coder.h"
#include "FakeDevice.h"
#include "ShareSDK.h"
#include "TempDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>

namespace
{

const std::string XMLNS = "xmlns=\"http://www.qlx.example/ver10\"";

std::string Encoded(const std::string& text)
{
    std::string encoded;
    CBase64Coder::Encode(reinterpret_cast<const unsigned char*>(text.data()), text.size(), encoded);
    return encoded;
}

CHttpProtocolAnalyse Request(const std::string& url, const std::string& credentials, const std::string& body = "")
{
    const std::string authorization =
        credentials.empty() ? "" : "Authorization: Basic " + Encoded(credentials) + "\r\n";
    return CHttpProtocolAnalyse("POST /" + url + " HTTP/1.1\r\n" + authorization + "\r\n" + body);
}

std::string BufOf(const CHttpProtocolAnalyse& message)
{
    int length = 0;
    const char* const bytes = message.GetBuf(length);
    return std::string(bytes, static_cast<size_t>(length));
}

std::string Header(const std::string& status, size_t length)
{
    return "HTTP/1.1 " + status + "\r\nContent-type: text/html\r\nContent-Length: " + std::to_string(length) +
           "\r\nConnection: close\r\nAuthInfo: \r\n\r\n";
}

std::string Answer(const std::string& status, const std::string& body)
{
    return Header(status, body.size()) + body;
}

std::string Success()
{
    return Answer("200 OK", "<?xml version=\"1.0\" encoding=\"UTF-8\"?><config version=\"1.0\" " + XMLNS +
                                " status=\"success\"/>");
}

std::string Failure(int code)
{
    return Answer("400 Bad Request", "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<config version=\"1.0\" " + XMLNS +
                                         " status=\"failed\" errorCode=\"" + std::to_string(code) + "\"/>\n");
}

const char CHALLENGE[] = "HTTP/1.1 401 Unauthorized\r\n"
                         "Content-type: text/html\r\n"
                         "Content-Length: 0\r\n"
                         "Connection: close\r\n"
                         "AuthInfo: \r\n"
                         "WWW-Authenticate: Basic realm=\"Web Service\"\r\n"
                         "\r\n";

std::string VerifyOf(const std::string& credentials)
{
    char out[CQLXApiProc::VERIFY_SIZE] = {};
    CQLXApiProc::GetUserVerifyXml("10.0.0.1", Request("a", credentials), out);
    return out;
}

std::string Verify(const std::string& user, const std::string& password)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><userinfo>\t<username>" + user + "</username>\t<password>" +
           password + "</password>\t<ip>10.0.0.1</ip></userinfo>";
}

/// What is logged while it lives.
class CLogFile
{
public:
    CLogFile()
    {
        SHARESDK_SetLogLevel(SHARESDK_LOG_ALL);
        EXPECT_TRUE(SHARESDK_LogToFile(m_directory.Path("log").c_str(), 1 << 20, 1));
    }
    ~CLogFile() { SHARESDK_LogToConsole(); }
    CLogFile(const CLogFile&) = delete;
    CLogFile& operator=(const CLogFile&) = delete;

    std::string Text() const { return m_directory.Read("log"); }

private:
    const CTempDirectory m_directory;
};

class QLXApiProc : public testing::Test
{
protected:
    void SetUp() override { CQLXApiProc::Instance().Init(4, &m_device); }
    void TearDown() override { CQLXApiProc::Instance().Init(0, &m_device); }

    std::string Run(const std::string& word, const std::string& credentials = "admin:admin",
                    const std::string& body = "")
    {
        CHttpProtocolAnalyse response;
        for (const QLX_API_COMMAND& row : QlxApiCommands())
        {
            if (word == row.word)
            {
                EXPECT_EQ(0, CQLXApiProc::Instance().ProcCmd("10.0.0.1", static_cast<QLX_API_CMD>(row.value),
                                                             Request(word, credentials, body), response));
            }
        }
        return BufOf(response);
    }

    std::string RunNumber(unsigned int command)
    {
        CHttpProtocolAnalyse response;
        CQLXApiProc::Instance().ProcCmd("10.0.0.1", static_cast<QLX_API_CMD>(command), Request("x", "admin:admin"),
                                        response);
        return BufOf(response);
    }

    CFakeDevice m_device;
};

} // namespace

TEST(QlxApiCommands, AreTheTable)
{
    const struct
    {
        const char* word;
        unsigned int value;
    } EXPECTED[] = {
        {"GetProfileInfo", 0},
        {"GetDeviceInfo", 1},
        {"Reboot", 2},
        {"GetDateAndTime", 3},
        {"SetDateAndTime", 4},
        {"GetImageConfig", 5},
        {"SetImageConfig", 6},
        {"GetStreamCaps", 7},
        {"GetVideoStreamConfig", 8},
        {"SetVideoStreamConfig", 9},
        {"GetAudioStreamConfig", 10},
        {"SetAudioStreamConfig", 11},
        {"GetImageOsdConfig", 12},
        {"SetImageOsdConfig", 13},
        {"GetPrivacyMaskConfig", 14},
        {"SetPrivacyMaskConfig", 15},
        {"PtzGetProtocolConfig", 16},
        {"PtzGetCaps", 17},
        {"PtzSetProtocolConfig", 18},
        {"PtzGetPresets", 19},
        {"PtzAddPreset", 20},
        {"PtzDeletePreset", 21},
        {"PtzModifyPresetPosition", 22},
        {"PtzModifyPresetName", 23},
        {"PtzGotoPreset", 24},
        {"PtzGetCruises", 25},
        {"PtzGetCruise", 26},
        {"PtzAddCruise", 27},
        {"PtzDeleteCruise", 28},
        {"PtzModifyCruise", 29},
        {"PtzRunCruise", 30},
        {"PtzStopCruise", 31},
        {"PtzControl", 32},
        {"GetMotionConfig", 33},
        {"SetMotionConfig", 34},
        {"GetAlarmInConfig", 35},
        {"SetAlarmInConfig", 36},
        {"GetAlarmOutConfig", 37},
        {"SetAlarmOutConfig", 38},
        {"GetAlarmStatus", 39},
        {"ManualAlarmOut", 40},
        {"GetPortConfig", 41},
        {"SetPortConfig", 42},
        {"GetNetBasicConfig", 43},
        {"SetNetBasicConfig", 44},
        {"GetNetPppoeConfig", 45},
        {"SetNetPppoeConfig", 46},
        {"GetDdnsConfig", 47},
        {"SetDdnsConfig", 48},
        {"ModifyPassword", 49},
        {"RequestKeyFrame", 50},
        {"GetAlarmServerConfig", 51},
        {"SetAlarmServerConfig", 52},
        {"GetSnapshot", 53},
        {"GetChannelList", 55},
        {"GetAlarmInList", 56},
        {"GetAlarmOutList", 57},
        {"SearchRecordDate", 58},
        {"SearchByTime", 59},
    };
    ASSERT_EQ(sizeof(EXPECTED) / sizeof(EXPECTED[0]), QlxApiCommands().size());
    for (size_t i = 0; i < QlxApiCommands().size(); ++i)
    {
        EXPECT_STREQ(EXPECTED[i].word, QlxApiCommands()[i].word);
        EXPECT_EQ(EXPECTED[i].value, QlxApiCommands()[i].value);
    }
}

TEST(QlxApiCommands, HaveNoTwins)
{
    std::set<std::string> words;
    std::set<unsigned int> values;
    for (const QLX_API_COMMAND& row : QlxApiCommands())
    {
        EXPECT_TRUE(words.insert(row.word).second) << row.word;
        EXPECT_TRUE(values.insert(row.value).second) << row.value;
    }
}

TEST_F(QLXApiProc, UnknownCommandsAnswerError1)
{
    EXPECT_EQ(Failure(1), Run("GetProfileInfo"));
    EXPECT_EQ(Failure(1), RunNumber(0));
    EXPECT_EQ(Failure(1), RunNumber(54));
    EXPECT_EQ(Failure(1), RunNumber(60));
    EXPECT_EQ(Failure(1), RunNumber(0xFFFFFFFF));
    EXPECT_TRUE(m_device.CallOrder().empty());
}

TEST_F(QLXApiProc, WithoutADeviceEveryCommandAnswersError1)
{
    const CLogFile log;
    EXPECT_EQ(1, CQLXApiProc::Instance().Init(4, nullptr));
    EXPECT_THAT(log.Text(), testing::HasSubstr("ASSERT"));
    EXPECT_EQ(Failure(1), Run("GetDeviceInfo"));
}

TEST_F(QLXApiProc, RefusalIsAChallenge)
{
    EXPECT_EQ(CHALLENGE, Run("Reboot", ""));
    EXPECT_EQ(Verify("", ""), m_device.LastVerify());
    EXPECT_EQ(CHALLENGE, Run("Reboot", "admin:wrong"));
    EXPECT_EQ(Verify("admin", "wrong"), m_device.LastVerify());
    EXPECT_EQ(Success(), Run("Reboot"));
    EXPECT_EQ(3, m_device.Calls("Reboot"));
}

struct ResultCase
{
    unsigned int result;
    int code;
};

const ResultCase RESULT_CASES[] = {{1, 4}, {3, 3}, {4, 1}, {5, 1}, {9, 1}, {0xFFFFFFFF, 1}};

TEST_F(QLXApiProc, HostResultsHaveTheirErrorCodes)
{
    for (const ResultCase& row : RESULT_CASES)
    {
        m_device.results["Reboot"] = static_cast<NETNS::DEV_RET>(row.result);
        EXPECT_EQ(Failure(row.code), Run("Reboot")) << row.result;
    }
}

TEST(QLXApiProcAnswers, AnyOtherCodeIsAFailureWithItsNumber)
{
    CHttpProtocolAnalyse response;
    CQLXApiProc::CommonResp(response, static_cast<QLX_API_ERR>(2));
    EXPECT_EQ(Failure(2), BufOf(response));
}

struct CredentialsCase
{
    const char* name;
    std::string credentials;
    std::string user;
    std::string password;
};

const std::string LONG_40(40, 'u');

const CredentialsCase CREDENTIALS_CASES[] = {
    {"Plain", "admin:secret", "admin", "secret"},
    {"NoCredentials", "", "", ""},
    {"NoPassword", "admin:", "admin", ""},
    {"NoColon", "admin", "admin", ""},
    {"NoUser", ":secret", "", ""},
    {"ColonInThePassword", "admin:a:b", "admin", "a:b"},
    {"BlankEndsThePassword", "admin:a b", "admin", "a"},
    {"BlankInFrontOfThePassword", "admin: \ta", "admin", "a"},
    {"BlankInTheUser", "ad min:a", "ad min", "a"},
    {"NothingIsEscaped", "<&>:<a>", "<&>", "<a>"},
    {"PercentSigns", "%s%n:%s%s", "%s%n", "%s%s"},
    {"UserOf31", std::string(31, 'u') + ":p", std::string(31, 'u'), "p"},
    {"UserOf32", std::string(32, 'u') + ":p", std::string(31, 'u'), "p"},
    {"PasswordOf31", "u:" + std::string(31, 'p'), "u", std::string(31, 'p')},
    {"PasswordOf32", "u:" + std::string(32, 'p'), "u", std::string(31, 'p')},
    // 64 decoded bytes are taken whole; of more, the 63 bytes of the whole groups in front are kept.
    {"Of64Bytes", std::string(60, 'u') + ":abc", std::string(31, 'u'), "abc"},
    {"Of65Bytes", std::string(60, 'u') + ":abcd", std::string(31, 'u'), "ab"},
    {"OfManyBytes", LONG_40 + ":" + std::string(300, 'p'), std::string(31, 'u'), std::string(22, 'p')},
    {"ZeroByte", std::string("admin:a\0b", 9), "admin", "a"},
};

class Credentials : public testing::TestWithParam<CredentialsCase>
{
};

TEST_P(Credentials, GoIntoTheVerificationText)
{
    EXPECT_EQ(Verify(GetParam().user, GetParam().password), VerifyOf(GetParam().credentials));
    std::string user = "old";
    std::string password = "old";
    EXPECT_EQ(!GetParam().credentials.empty(),
              CQLXApiProc::GetUserInfo(Request("a", GetParam().credentials), user, password));
    EXPECT_EQ(GetParam().user, user);
    EXPECT_EQ(GetParam().password, password);
}

INSTANTIATE_TEST_SUITE_P(QLXApiProc, Credentials, testing::ValuesIn(CREDENTIALS_CASES),
                         [](const auto& row) { return row.param.name; });

TEST(QLXApiProcVerify, ManyPadsStayWithinTheirRoom)
{
    const CHttpProtocolAnalyse request("GET /a HTTP/1.1\r\nAuthorization: Basic " + std::string(8000, '=') +
                                       "\r\n\r\n");
    char out[CQLXApiProc::VERIFY_SIZE] = {};
    CQLXApiProc::GetUserVerifyXml("10.0.0.1", request, out);
    EXPECT_EQ(Verify("", ""), out);
}

TEST(QLXApiProcVerify, LongAddressIsCutAtTheRoom)
{
    char out[CQLXApiProc::VERIFY_SIZE + 1] = {};
    out[CQLXApiProc::VERIFY_SIZE] = 'x';
    CQLXApiProc::GetUserVerifyXml(std::string(1000, '1'), Request("a", "u:p"), out);
    EXPECT_EQ(511u, std::strlen(out));
    EXPECT_EQ('x', out[CQLXApiProc::VERIFY_SIZE]);
    const CLogFile log;
    CQLXApiProc::GetUserVerifyXml("1", Request("a", "u:p"), nullptr);
    EXPECT_THAT(log.Text(), testing::HasSubstr("ASSERT"));
}

TEST(QLXApiProcUrl, ChannelStandsBehindTheFirstSlash)
{
    EXPECT_EQ(1u, CQLXApiProc::GetChnIDFromUrl("GetImageConfig"));
    EXPECT_EQ(3u, CQLXApiProc::GetChnIDFromUrl("GetImageConfig/3"));
    EXPECT_EQ(1u, CQLXApiProc::GetChnIDFromUrl("GetImageConfig/x"));
    EXPECT_EQ(1u, CQLXApiProc::GetChnIDFromUrl("GetImageConfig/"));
    EXPECT_EQ(0u, CQLXApiProc::GetChnIDFromUrl("GetImageConfig/0"));
    EXPECT_EQ(12u, CQLXApiProc::GetChnIDFromUrl("PtzControl/12/Up"));
    EXPECT_EQ(1u, CQLXApiProc::GetChnIDFromUrl("/3"));
    EXPECT_EQ(1u, CQLXApiProc::GetChnIDFromUrl(""));
}

TEST(QLXApiProcUrl, ActionStandsBehindTheSecondSlash)
{
    std::string action = "old";
    EXPECT_FALSE(CQLXApiProc::GetActionFromUrl("PtzControl", action));
    EXPECT_FALSE(CQLXApiProc::GetActionFromUrl("PtzControl/1", action));
    EXPECT_EQ("old", action);
    EXPECT_TRUE(CQLXApiProc::GetActionFromUrl("PtzControl/1/Up", action));
    EXPECT_EQ("Up", action);
    EXPECT_TRUE(CQLXApiProc::GetActionFromUrl("PtzControl/1/Up/4", action));
    EXPECT_EQ("Up/4", action);
    EXPECT_TRUE(CQLXApiProc::GetActionFromUrl("PtzControl/1/", action));
    EXPECT_EQ("", action);
}

TEST(QLXApiProcTime, SecondsAreWrittenAsLocalTime)
{
    setenv("TZ", "XXX3:30", 1);
    tzset();
    char text[CQLXApiProc::TIME_SIZE];
    CQLXApiProc::Time2Str(951782400, text); // 2000-02-29 00:00:00 UTC
    EXPECT_STREQ("2000-02-28 20:30:00", text);
    unsetenv("TZ");
    tzset();
}

TEST(QLXApiProcTime, SecondsGoOnAfter2038)
{
    setenv("TZ", "UTC", 1);
    tzset();
    char text[CQLXApiProc::TIME_SIZE];
    CQLXApiProc::Time2Str(2214131415, text);
    EXPECT_STREQ("2040-02-29 12:30:15", text);
    unsetenv("TZ");
    tzset();
}

TEST(QLXApiProcTime, FieldsGoToTextAndBack)
{
    NETNS::DEV_DATETIME time = {};
    CQLXApiProc::str2Datetime("2024-12-31 23:59:58", time);
    EXPECT_EQ(2024, time.date.year);
    EXPECT_EQ(12, time.date.month);
    EXPECT_EQ(31, time.date.day);
    EXPECT_EQ(23, time.time.hour);
    EXPECT_EQ(59, time.time.minute);
    EXPECT_EQ(58, time.time.second);
    std::string text;
    CQLXApiProc::Datetime2str(time, text);
    EXPECT_EQ("2024-12-31 23:59:58", text);
    CQLXApiProc::Datetime2str({{7, 1, 2}, {3, 4, 5}}, text);
    EXPECT_EQ("0007-01-02 03:04:05", text);
}

TEST(QLXApiProcTime, FieldsReadInFrontOfAnErrorStand)
{
    const CLogFile log;
    NETNS::DEV_DATETIME time = {{1, 2, 3}, {4, 5, 6}};
    CQLXApiProc::str2Datetime("2024-1-2 3:4:5", time);
    EXPECT_EQ("", log.Text());
    time = {{1, 2, 3}, {4, 5, 6}};
    CQLXApiProc::str2Datetime("2024-12", time);
    EXPECT_THAT(log.Text(), testing::HasSubstr(" read para error!"));
    EXPECT_EQ(2024, time.date.year);
    EXPECT_EQ(12, time.date.month);
    EXPECT_EQ(3, time.date.day);
    EXPECT_EQ(6, time.time.second);
}

// Clients of a device that has only one of the two are refused PTZ.
TEST_F(QLXApiProc, PtzNeedsBothOfItsKinds)
{
    EXPECT_FALSE(CQLXApiProc::Instance().SupportPtz());
    m_device.integratedPtz = true;
    EXPECT_FALSE(CQLXApiProc::Instance().SupportPtz());
    m_device.rs485Ptz = true;
    EXPECT_TRUE(CQLXApiProc::Instance().SupportPtz());
    m_device.integratedPtz = false;
    EXPECT_FALSE(CQLXApiProc::Instance().SupportPtz());
}
