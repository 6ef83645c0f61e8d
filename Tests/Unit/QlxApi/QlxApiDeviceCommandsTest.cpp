#include "QlxApiProtocolProc.h"

#include "AlarmServer.h"
#include "FakeDevice.h"
#include "QLXXMLParse.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <ctime>
#include <string>

namespace
{

const std::string XMLNS = "xmlns=\"http://www.qlx.example/ver10\"";
const char AUTHORIZED[] = "Authorization: Basic YWRtaW46YWRtaW4=\r\n";   // admin:admin
const char UNAUTHORIZED[] = "Authorization: Basic YWRtaW46d3Jvbmc=\r\n"; // admin:wrong

using Operation = QLX_API_COMMAND::OPERATION;

// What a client sees: the status and the body.
struct Response
{
    std::string status;
    std::string body;
};

class QlxApiDeviceCommands : public testing::Test
{
protected:
    void SetUp() override { CQLXApiProc::Instance().Init(4, &m_device); }
    void TearDown() override { CAlarmServer::Instance().Initial(0, 0, 0); }

    Response Run(Operation operation, const std::string& body = "", const std::string& authorization = AUTHORIZED)
    {
        const CHttpProtocolAnalyse request("POST /x HTTP/1.1\r\n" + authorization + "\r\n" + body);
        CHttpProtocolAnalyse response;
        m_result = (CQLXApiProc::Instance().*operation)("10.0.0.1", request, response);
        int length = 0;
        const std::string bytes = response.GetBuf(length);
        Response seen;
        seen.status = bytes.substr(9, 3);
        const char* const payload = response.GetPayLoad(length);
        seen.body.assign(payload, static_cast<size_t>(length));
        return seen;
    }

    /// The error code of a failure document; 0 of a success, 401 of a challenge.
    int Code(Operation operation, const std::string& body = "", const std::string& authorization = AUTHORIZED)
    {
        const Response seen = Run(operation, body, authorization);
        if (seen.status == "401")
        {
            return 401;
        }
        const CQLXXMLParse document(seen.body);
        int code = 0;
        const bool failed = document.GetAttribute_i32("config", "errorCode", code);
        EXPECT_EQ(failed ? "400" : "200", seen.status);
        EXPECT_EQ(code == 0 ? 0 : -1, m_result);
        return code;
    }

    int SetTime(const std::string& elements, const std::string& authorization = AUTHORIZED)
    {
        return Code(&CQLXApiProc::SetDateAndTime, "<config><time>" + elements + "</time></config>", authorization);
    }

    int SetCurrentTime(const std::string& time)
    {
        return SetTime("<synchronizeInfo><currentTime>" + time + "</currentTime></synchronizeInfo>");
    }

    CFakeDevice m_device;
    int m_result = 9;
};

template <size_t SIZE>
void SetText(char (&field)[SIZE], const std::string& text)
{
    std::memset(field, 0, SIZE);
    text.copy(field, SIZE);
}

std::string ListDocument(const std::string& name, const std::string& count, const std::string& items)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<config version=\"1.0\" " + XMLNS + "><" + name +
           " type=\"list\" count=\"" + count + "\"><itemType type=\"string\" maxLen=\"20\"></itemType>" + items +
           "\n    </" + name + ">\n</config>\n";
}

} // namespace

TEST_F(QlxApiDeviceCommands, DeviceInfoByteForByte)
{
    SetText(m_device.deviceInfo.model, "Model <1>");
    SetText(m_device.deviceInfo.brand, "Brand");
    SetText(m_device.deviceInfo.description, std::string(32, 'd')); // without a zero byte
    SetText(m_device.deviceInfo.softwareVersion, "1.2.3");
    m_device.deviceInfo.softwareBuildDate = {2024, 5, 7};
    SetText(m_device.deviceInfo.kernelVersion, "5.10");
    SetText(m_device.deviceInfo.hardwareVersion, "rev B");
    const std::uint8_t mac[] = {0x00, 0x1A, 0x2B, 0xFF, 0x0E, 0x09};
    std::memcpy(m_device.deviceInfo.mac, mac, sizeof(mac));
    m_device.deviceInfo.audioInCount = 1;
    m_device.deviceInfo.audioOutCount = 2;
    m_device.deviceInfo.alarmInCount = 3;
    m_device.deviceInfo.alarmOutCount = 65535;
    m_device.rs485Ptz = true;
    const Response seen = Run(&CQLXApiProc::GetDeviceInfo);
    EXPECT_EQ("200", seen.status);
    EXPECT_EQ(0, m_result);
    EXPECT_EQ("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<config version=\"1.0\" " +
                  XMLNS +
                  ">\n"
                  "    <deviceInfo>\n"
                  "        <model type=\"string\"><![CDATA[Model <1>]]></model>\n"
                  "        <brand type=\"string\"><![CDATA[Brand]]></brand>\n"
                  "        <deviceDescription "
                  "type=\"string\"><![CDATA[dddddddddddddddddddddddddddddddd]]></deviceDescription>\n"
                  "        <audioInCount type=\"uint32\">1</audioInCount>\n"
                  "        <audioOutCount type=\"uint32\">2</audioOutCount>\n"
                  "        <integratedPtz type=\"boolean\">false</integratedPtz>\n"
                  "        <supportRS485Ptz type=\"boolean\">true</supportRS485Ptz>\n"
                  "        <supportSDCard type=\"boolean\">false</supportSDCard>\n"
                  "        <alarmInCount type=\"uint32\">3</alarmInCount>\n"
                  "        <alarmOutCount type=\"uint32\">65535</alarmOutCount>\n"
                  "        <softwareVersion type=\"string\"><![CDATA[1.2.3]]></softwareVersion>\n"
                  "        <softwareBuildDate type=\"string\"><![CDATA[2024-5-7]]></softwareBuildDate>\n"
                  "        <kernelVersion type=\"string\"><![CDATA[5.10]]></kernelVersion>\n"
                  "        <hardwareVersion type=\"string\"><![CDATA[rev B]]></hardwareVersion>\n"
                  "        <mac type=\"string\"><![CDATA[00:1a:2b:ff:0e:09]]></mac>\n"
                  "    </deviceInfo>\n"
                  "</config>\n",
              seen.body);
}

TEST_F(QlxApiDeviceCommands, DeviceInfoTellsEachCapability)
{
    const struct
    {
        bool CFakeDevice::*capability;
        const char* path;
    } ROWS[] = {{&CFakeDevice::integratedPtz, "deviceInfo/integratedPtz"},
                {&CFakeDevice::rs485Ptz, "deviceInfo/supportRS485Ptz"},
                {&CFakeDevice::sdCard, "deviceInfo/supportSDCard"}};
    for (const auto& on : ROWS)
    {
        m_device.*on.capability = true;
        const CQLXXMLParse document(Run(&CQLXApiProc::GetDeviceInfo).body);
        for (const auto& row : ROWS)
        {
            std::string word;
            document.GetValueStr(row.path, word);
            EXPECT_EQ(row.path == on.path ? "true" : "false", word) << row.path << " with " << on.path;
        }
        m_device.*on.capability = false;
    }
}

TEST_F(QlxApiDeviceCommands, DeviceInfoAnswersTheHostsRefusal)
{
    EXPECT_EQ(401, Code(&CQLXApiProc::GetDeviceInfo, "", UNAUTHORIZED));
    m_device.results["GetDevInfo"] = NETNS::DEV_RET_FAILED;
    EXPECT_EQ(4, Code(&CQLXApiProc::GetDeviceInfo));
}

TEST_F(QlxApiDeviceCommands, RebootNeedsNoBody)
{
    EXPECT_EQ(0, Code(&CQLXApiProc::Reboot));
    EXPECT_EQ(0, Code(&CQLXApiProc::Reboot, "any body"));
    EXPECT_EQ(2, m_device.Calls("Reboot"));
    EXPECT_EQ(401, Code(&CQLXApiProc::Reboot, "", UNAUTHORIZED));
    m_device.results["Reboot"] = NETNS::DEV_RET_FAILED;
    EXPECT_EQ(4, Code(&CQLXApiProc::Reboot));
}

TEST_F(QlxApiDeviceCommands, DateAndTimeByteForByte)
{
    m_device.timeConfig.synchronizeType = 1;
    SetText(m_device.timeConfig.ntpServer, "ntp<1>");
    SetText(m_device.timeConfig.timeZone, "UTC+1");
    m_device.timeConfig.daylightSwitch = 1;
    m_device.ntpServerMaxLen = 63;
    char before[CQLXApiProc::TIME_SIZE];
    char after[CQLXApiProc::TIME_SIZE];
    CQLXApiProc::Time2Str(std::time(nullptr), before);
    const Response seen = Run(&CQLXApiProc::GetDateAndTime);
    CQLXApiProc::Time2Str(std::time(nullptr), after);
    const auto expected = [](const std::string& time)
    {
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<config version=\"1.0\" " +
               XMLNS +
               ">\n"
               "    <types>\n"
               "        <synchronizeType>\n"
               "            <enum>manually</enum>\n"
               "            <enum>NTP</enum>\n"
               "        </synchronizeType>\n"
               "    </types>\n"
               "    <time>\n"
               "        <timezoneInfo>\n"
               "            <timeZone type=\"string\">UTC+1</timeZone>\n"
               "            <daylightSwitch type=\"boolean\">true</daylightSwitch>\n"
               "        </timezoneInfo>\n"
               "        <synchronizeInfo>\n"
               "            <type type=\"synchronizeType\">NTP</type>\n"
               "            <ntpServer type=\"string\" maxLen=\"63\">ntp&lt;1&gt;</ntpServer>\n"
               "            <currentTime type=\"string\">" +
               time +
               "</currentTime>\n"
               "        </synchronizeInfo>\n"
               "    </time>\n"
               "</config>\n";
    };
    EXPECT_THAT(seen.body, testing::AnyOf(expected(before), expected(after)));
    EXPECT_EQ("200", seen.status);
}

TEST_F(QlxApiDeviceCommands, OtherSynchronizeTypesAreManual)
{
    for (const std::uint32_t type : {0u, 2u})
    {
        m_device.timeConfig.synchronizeType = type;
        const CQLXXMLParse document(Run(&CQLXApiProc::GetDateAndTime).body);
        std::string word;
        document.GetValueStr("time/synchronizeInfo/type", word);
        EXPECT_EQ("manually", word);
        document.GetValueStr("time/timezoneInfo/daylightSwitch", word);
        EXPECT_EQ("false", word);
    }
}

TEST_F(QlxApiDeviceCommands, DateAndTimeAnswersTheHostsRefusal)
{
    EXPECT_EQ(401, Code(&CQLXApiProc::GetDateAndTime, "", UNAUTHORIZED));
    m_device.results["GetTimeConfig"] = NETNS::DEV_RET_NOT_SUPPORTED;
    EXPECT_EQ(1, Code(&CQLXApiProc::GetDateAndTime));
}

TEST_F(QlxApiDeviceCommands, SetTimeNeedsABody)
{
    EXPECT_EQ(3, Code(&CQLXApiProc::SetDateAndTime));
    EXPECT_TRUE(m_device.CallOrder().empty());
}

TEST_F(QlxApiDeviceCommands, SetTimeStoresEveryField)
{
    EXPECT_EQ(0, SetTime("<timezoneInfo><timeZone>UTC+2</timeZone><daylightSwitch>true</daylightSwitch></timezoneInfo>"
                         "<synchronizeInfo><type>NTP</type><ntpServer>ntp</ntpServer>"
                         "<currentTime>2024-12-31 23:59:58</currentTime></synchronizeInfo>"));
    EXPECT_STREQ("UTC+2", m_device.timeConfig.timeZone);
    EXPECT_EQ(1u, m_device.timeConfig.daylightSwitch);
    EXPECT_EQ(1u, m_device.timeConfig.synchronizeType);
    EXPECT_STREQ("ntp", m_device.timeConfig.ntpServer);
    EXPECT_EQ(2024, m_device.dateTime.date.year);
    EXPECT_EQ(12, m_device.dateTime.date.month);
    EXPECT_EQ(31, m_device.dateTime.date.day);
    EXPECT_EQ(23, m_device.dateTime.time.hour);
    EXPECT_EQ(59, m_device.dateTime.time.minute);
    EXPECT_EQ(58, m_device.dateTime.time.second);
    EXPECT_THAT(m_device.CallOrder(), testing::ElementsAre("GetTimeConfig", "SetDateTime", "SetTimeConfig"));
}

TEST_F(QlxApiDeviceCommands, SetTimeKeepsWhatTheRequestLeavesOut)
{
    SetText(m_device.timeConfig.timeZone, "UTC+1");
    SetText(m_device.timeConfig.ntpServer, "ntp");
    m_device.timeConfig.synchronizeType = 1;
    m_device.timeConfig.daylightSwitch = 1;
    EXPECT_EQ(0, SetCurrentTime("2024-01-02 03:04:05"));
    EXPECT_EQ(2024, m_device.dateTime.date.year);
    EXPECT_STREQ("UTC+1", m_device.timeConfig.timeZone);
    EXPECT_STREQ("ntp", m_device.timeConfig.ntpServer);
    EXPECT_EQ(1u, m_device.timeConfig.synchronizeType);
    EXPECT_EQ(1u, m_device.timeConfig.daylightSwitch);
    EXPECT_EQ(1, m_device.Calls("SetTimeConfig"));
    EXPECT_EQ(0, SetTime("<timezoneInfo><daylightSwitch>false</daylightSwitch></timezoneInfo>"
                         "<synchronizeInfo><type>manually</type></synchronizeInfo>"));
    EXPECT_EQ(0u, m_device.timeConfig.daylightSwitch);
    EXPECT_EQ(0u, m_device.timeConfig.synchronizeType);
    EXPECT_EQ(1, m_device.Calls("SetDateTime"));
}

// A body that is no XML holds no element: the settings go back as they were read.
TEST_F(QlxApiDeviceCommands, SetTimeTakesWhatIsNoXml)
{
    SetText(m_device.timeConfig.timeZone, "UTC+1");
    EXPECT_EQ(0, Code(&CQLXApiProc::SetDateAndTime, "no xml"));
    EXPECT_EQ(0, Code(&CQLXApiProc::SetDateAndTime, std::string("\0<config/>", 10)));
    EXPECT_EQ(2, m_device.Calls("SetTimeConfig"));
    EXPECT_STREQ("UTC+1", m_device.timeConfig.timeZone);
}

TEST_F(QlxApiDeviceCommands, SetTimeTakesTextsOf127Characters)
{
    const std::string fits(127, 'x');
    EXPECT_EQ(0, SetTime("<timezoneInfo><timeZone>" + fits + "</timeZone></timezoneInfo>"));
    EXPECT_EQ(0, SetTime("<synchronizeInfo><ntpServer>" + fits + "</ntpServer></synchronizeInfo>"));
    EXPECT_EQ(fits, m_device.timeConfig.timeZone);
    EXPECT_EQ(fits, m_device.timeConfig.ntpServer);
    EXPECT_EQ(3, SetTime("<timezoneInfo><timeZone>" + fits + "x</timeZone></timezoneInfo>"));
    EXPECT_EQ(3, SetTime("<synchronizeInfo><ntpServer>" + fits + "x</ntpServer></synchronizeInfo>"));
    EXPECT_EQ(2, m_device.Calls("SetTimeConfig"));
    EXPECT_EQ(0, SetTime("<timezoneInfo><timeZone/></timezoneInfo>"));
    EXPECT_STREQ("", m_device.timeConfig.timeZone);
}

TEST_F(QlxApiDeviceCommands, SetTimeRefusesOtherWords)
{
    EXPECT_EQ(3, SetTime("<timezoneInfo><daylightSwitch>True</daylightSwitch></timezoneInfo>"));
    EXPECT_EQ(3, SetTime("<timezoneInfo><daylightSwitch>1</daylightSwitch></timezoneInfo>"));
    EXPECT_EQ(3, SetTime("<timezoneInfo><daylightSwitch/></timezoneInfo>"));
    EXPECT_EQ(3, SetTime("<synchronizeInfo><type>ntp</type></synchronizeInfo>"));
    EXPECT_EQ(0, m_device.Calls("SetTimeConfig"));
}

struct TimeCase
{
    const char* name;
    const char* text;
    int code;
};

const TimeCase TIME_CASES[] = {
    {"Plain", "2024-12-31 23:59:59", 0},
    {"FirstYear", "1970-01-01 00:00:00", 0},
    {"YearBefore", "1969-12-31 23:59:59", 3},
    {"NoMonthAndDay", "2000-00-00 00:00:00", 0}, // neither has a lower bound
    {"Month13", "2024-13-01 00:00:00", 3},
    {"Day32", "2024-12-32 00:00:00", 3},
    {"Hour24", "2024-12-31 24:00:00", 3},
    {"Minute60", "2024-12-31 23:60:00", 3},
    {"Second60", "2024-12-31 23:59:60", 3},
    {"Of18Characters", "2024-12-31 23:59:5", 3},
    {"Of20Characters", "2024-12-31 23:59:590", 3},
    {"Empty", "", 3},
    {"OtherForm", "2024/12/31 23:59:59", 3},
    {"FiveFields", "2024-12-31 23:59:xx", 3},
};

class CurrentTimes : public QlxApiDeviceCommands, public testing::WithParamInterface<TimeCase>
{
};

TEST_P(CurrentTimes, AreJudged)
{
    EXPECT_EQ(GetParam().code, SetCurrentTime(GetParam().text));
    EXPECT_EQ(GetParam().code == 0 ? 1 : 0, m_device.Calls("SetDateTime"));
    EXPECT_EQ(GetParam().code == 0 ? 1 : 0, m_device.Calls("SetTimeConfig"));
}

INSTANTIATE_TEST_SUITE_P(QlxApiDeviceCommands, CurrentTimes, testing::ValuesIn(TIME_CASES),
                         [](const auto& row) { return row.param.name; });

// The clock comes first, and it stays changed when the settings fail; whether it could be set is not asked.
TEST_F(QlxApiDeviceCommands, ClockIsSetEvenWhenTheSettingsFail)
{
    m_device.results["SetTimeConfig"] = NETNS::DEV_RET_FAILED;
    EXPECT_EQ(4, SetCurrentTime("2024-01-02 03:04:05"));
    EXPECT_EQ(2024, m_device.dateTime.date.year);
    m_device.results["SetTimeConfig"] = NETNS::DEV_RET_OK;
    m_device.results["SetDateTime"] = NETNS::DEV_RET_FAILED;
    EXPECT_EQ(0, SetCurrentTime("2024-01-02 03:04:05"));
}

TEST_F(QlxApiDeviceCommands, SetTimeAnswersTheHostsRefusal)
{
    EXPECT_EQ(401, SetTime("<timezoneInfo/>", UNAUTHORIZED));
    EXPECT_EQ(0, m_device.Calls("SetTimeConfig"));
    m_device.results["GetTimeConfig"] = NETNS::DEV_RET_FAILED;
    EXPECT_EQ(4, SetTime("<timezoneInfo/>"));
}

TEST_F(QlxApiDeviceCommands, PasswordComesTwice)
{
    // "secret" and "secrex"
    const std::string same = "<config><userPassword><oldPassword>c2VjcmV0</oldPassword><password>c2VjcmV0</password>"
                             "</userPassword></config>";
    const std::string different = "<config><userPassword><oldPassword>c2VjcmV0</oldPassword>"
                                  "<password>c2VjcmV4</password></userPassword></config>";
    EXPECT_EQ(3, Code(&CQLXApiProc::ModifyPassword, different));
    EXPECT_EQ(0, m_device.Calls("ModifyPassword"));
    EXPECT_EQ(0, Code(&CQLXApiProc::ModifyPassword, same));
    EXPECT_EQ("secret", m_device.newPassword);
    EXPECT_EQ(401, Code(&CQLXApiProc::ModifyPassword, same, UNAUTHORIZED));
}

TEST_F(QlxApiDeviceCommands, PasswordNeedsABody)
{
    EXPECT_EQ(3, Code(&CQLXApiProc::ModifyPassword));
    EXPECT_TRUE(m_device.CallOrder().empty());
}

TEST_F(QlxApiDeviceCommands, PasswordLeftOutTwiceIsEmpty)
{
    m_device.newPassword = "old";
    EXPECT_EQ(0, Code(&CQLXApiProc::ModifyPassword, "<config/>"));
    EXPECT_EQ("", m_device.newPassword);
    EXPECT_EQ(3, Code(&CQLXApiProc::ModifyPassword,
                      "<config><userPassword><password>c2VjcmV0</password></userPassword></config>"));
}

TEST_F(QlxApiDeviceCommands, PasswordAsksForTheUsersFirst)
{
    for (int i = 0; i < 30; ++i)
    {
        m_device.AddUser("user", "password");
    }
    EXPECT_EQ(0, Code(&CQLXApiProc::ModifyPassword, "<config/>"));
    EXPECT_THAT(m_device.CallOrder(), testing::ElementsAre("GetUserList", "ModifyPassword"));
    m_device.results["GetUserList"] = NETNS::DEV_RET_FAILED;
    EXPECT_EQ(4, Code(&CQLXApiProc::ModifyPassword, "<config/>"));
    EXPECT_EQ(1, m_device.Calls("ModifyPassword"));
}

// 64 decoded bytes are taken whole; of more, the 63 bytes of the whole groups in front are kept.
TEST_F(QlxApiDeviceCommands, PasswordIsCutAt64Bytes)
{
    const auto body = [](const std::string& text)
    {
        return "<config><userPassword><oldPassword>" + text + "</oldPassword><password>" + text +
               "</password></userPassword></config>";
    };
    const std::string group = "YWFh"; // "aaa"
    std::string encoded;
    for (int i = 0; i < 21; ++i)
    {
        encoded += group;
    }
    EXPECT_EQ(0, Code(&CQLXApiProc::ModifyPassword, body(encoded + "YQ==")));
    EXPECT_EQ(std::string(64, 'a'), m_device.newPassword);
    EXPECT_EQ(0, Code(&CQLXApiProc::ModifyPassword, body(encoded + "YWE=")));
    EXPECT_EQ(std::string(63, 'a'), m_device.newPassword);
    EXPECT_EQ(0, Code(&CQLXApiProc::ModifyPassword, body(encoded + encoded + encoded)));
    EXPECT_EQ(std::string(63, 'a'), m_device.newPassword);
    EXPECT_EQ(0, Code(&CQLXApiProc::ModifyPassword, body(std::string(4096, '='))));
    EXPECT_EQ("", m_device.newPassword);
}

TEST_F(QlxApiDeviceCommands, ChannelListByteForByte)
{
    m_device.channelIds = {1, 4294967295u};
    EXPECT_EQ(ListDocument("channelIDList", "2", "\n        <item>1</item>\n        <item>4294967295</item>"),
              Run(&CQLXApiProc::GetChnList).body);
    EXPECT_EQ(401, Code(&CQLXApiProc::GetChnList, "", UNAUTHORIZED));
    m_device.results["GetChannelIdList"] = NETNS::DEV_RET_FAILED;
    EXPECT_EQ(4, Code(&CQLXApiProc::GetChnList));
}

// Whatever count the host tells, no more than the 128 ids that it had room for are listed.
TEST_F(QlxApiDeviceCommands, ChannelListHoldsUpTo128)
{
    m_device.channelIds.assign(200, 7);
    for (const int count : {128, 129, 100000})
    {
        m_device.counts["GetChannelIdList"] = count;
        const CQLXXMLParse document(Run(&CQLXApiProc::GetChnList).body);
        EXPECT_EQ(128u, document.GetChildrenLength("channelIDList", "item"));
    }
    m_device.counts["GetChannelIdList"] = 127;
    EXPECT_EQ(127u, CQLXXMLParse(Run(&CQLXApiProc::GetChnList).body).GetChildrenLength("channelIDList", "item"));
}

// The lists count from 0, share one name, and ask neither for credentials nor for the host.
TEST_F(QlxApiDeviceCommands, AlarmListsByteForByte)
{
    CAlarmServer::Instance().Initial(4, 1, 2);
    EXPECT_EQ(ListDocument("alarmInIDList", "2", "\n        <item>0</item>\n        <item>1</item>"),
              Run(&CQLXApiProc::GetAlarmInList, "", "").body);
    EXPECT_EQ(ListDocument("alarmInIDList", "1", "\n        <item>0</item>"),
              Run(&CQLXApiProc::GetAlarmOutList, "", "").body);
    EXPECT_TRUE(m_device.CallOrder().empty());
}

TEST_F(QlxApiDeviceCommands, AlarmListOfADeviceWithoutSensorsHoldsNoItem)
{
    const std::string expected = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<config version=\"1.0\" " + XMLNS +
                                 "><alarmInIDList type=\"list\" count=\"0\"><itemType type=\"string\" maxLen=\"20\">"
                                 "</itemType>\n    </alarmInIDList>\n</config>\n";
    EXPECT_EQ(expected, Run(&CQLXApiProc::GetAlarmInList).body);
    EXPECT_EQ(expected, Run(&CQLXApiProc::GetAlarmOutList).body);
}
