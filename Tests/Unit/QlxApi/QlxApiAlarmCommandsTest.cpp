#include "QlxApiWorld.h"

#include "NetServerConfig.h"
#include "TempDirectory.h"

#include <cstring>

namespace
{

using testing::ElementsAre;
using testing::HasSubstr;

class QlxApiAlarmCommands : public QlxApiWorld
{
protected:
    void SetUp() override
    {
        QlxApiWorld::SetUp();
        CAlarmServer::Instance().Initial(2, 3, 2);
    }

    int SetMotion(const std::string& elements)
    {
        return Code("SetMotionConfig", "<config><motion>" + elements + "</motion></config>");
    }
    int SetArea(const std::string& items) { return SetMotion("<area><itemType/>" + items + "</area>"); }
};

std::string Triggers(int count)
{
    std::string items;
    for (int i = 0; i < count; ++i)
    {
        items += "<item id=\"" + std::to_string(i) + "\">true</item>";
    }
    return "<triggerAlarmOut>" + items + "</triggerAlarmOut>";
}

} // namespace

TEST_F(QlxApiAlarmCommands, StatusJudgesTheCredentialsItself)
{
    const char NOBODY[] = "HTTP/1.1 401 Unauthorized\r\n"
                          "Content-type: text/html\r\n"
                          "Content-Length: 0\r\n"
                          "Connection: close\r\n"
                          "AuthInfo: \r\n"
                          "\r\n";
    EXPECT_EQ(NOBODY, Ask("GetAlarmStatus", "", UNAUTHORIZED));
    EXPECT_EQ(NOBODY, Ask("GetAlarmStatus", "", ""));
    m_device.counts["GetUserList"] = 17;
    EXPECT_EQ(NOBODY, Ask("GetAlarmStatus"));
    m_device.counts["GetUserList"] = 16;
    EXPECT_EQ(DONE, Code("GetAlarmStatus"));
    m_device.counts["GetUserList"] = -1;
    EXPECT_EQ(NOBODY, Ask("GetAlarmStatus"));
    m_device.counts.clear();
    m_device.results["GetUserList"] = NETNS::DEV_RET_FAILED;
    EXPECT_EQ(NOBODY, Ask("GetAlarmStatus"));
}

TEST_F(QlxApiAlarmCommands, NamesOfUsersEndWithTheirFields)
{
    m_device.users.assign(1, {});
    std::memset(m_device.users[0].userName, 'a', 20); // without a zero byte
    std::memset(m_device.users[0].password, 'b', 20);
    // 20 letters "a", a colon and 20 letters "b"; then one letter "b" more.
    EXPECT_NE(CHALLENGED, Code("GetAlarmStatus", "",
                               "Authorization: Basic "
                               "YWFhYWFhYWFhYWFhYWFhYWFhYWE6YmJiYmJiYmJiYmJiYmJiYmJiYmI=\r\n"));
    EXPECT_EQ(CHALLENGED, Code("GetAlarmStatus", "",
                               "Authorization: Basic "
                               "YWFhYWFhYWFhYWFhYWFhYWFhYWE6YmJiYmJiYmJiYmJiYmJiYmJiYmJi\r\n"));
}

TEST_F(QlxApiAlarmCommands, QuietStatusIsTheHosts)
{
    m_device.alarmStatusXml = "quiet";
    EXPECT_EQ("quiet", BodyOf(Ask("GetAlarmStatus")));
    EXPECT_THAT(m_device.CallLog(), ElementsAre("GetUserList", "GetAlarmStatusXml", "FreeBuffer"));
    EXPECT_EQ(0, m_device.BuffersOut());
    for (const NETNS::DEV_RET result : {NETNS::DEV_RET_FAILED, NETNS::DEV_RET_NO_RIGHT, NETNS::DEV_RET_NOT_SUPPORTED})
    {
        m_device.results["GetAlarmStatusXml"] = result;
        EXPECT_EQ(3, Code("GetAlarmStatus"));
    }
}

TEST_F(QlxApiAlarmCommands, MotionGridAndTriggersAreClippedAtTheTable)
{
    m_device.motionConfig.rows = 0xFFFFFFFF;
    m_device.motionConfig.columns = 40;
    m_device.motionConfig.alarmOutCount = 0xFFFFFFFF;
    const std::string answer = Ask("GetMotionConfig");
    EXPECT_EQ("8", Attribute(answer, "motion/area", "count"));
    EXPECT_EQ(8u, Count(answer, "motion/area"));
    EXPECT_EQ("40", Attribute(answer, "motion/area/itemType", "minLen"));
    EXPECT_EQ(32u, Count(answer, "motion/triggerAlarmOut"));
    EXPECT_EQ("3", Attribute(answer, "motion/triggerAlarmOut", "count")); // how many outputs there are
    m_device.sensorConfig.alarmOutCount = 33;
    EXPECT_EQ(32u, Count(Ask("GetAlarmInConfig"), "sensor/triggerAlarmOut"));
}

TEST_F(QlxApiAlarmCommands, MotionNeedsBothRecords)
{
    m_device.results["GetMotionCaps"] = NETNS::DEV_RET_FAILED;
    EXPECT_EQ(4, Code("GetMotionConfig"));
    m_device.results = {{"GetMotionParam", NETNS::DEV_RET_BAD_PARAM}};
    EXPECT_EQ(3, Code("GetMotionConfig"));
    EXPECT_EQ(3, SetMotion(""));
}

TEST_F(QlxApiAlarmCommands, RowsOfTheMotionGrid)
{
    m_device.motionConfig.rows = 8;
    const std::string ones(64, '1');
    EXPECT_EQ(DONE, SetArea("<item>" + ones + "</item><item>1" + std::string(64, '0') + "</item><item/>" +
                            "<item>\r\n\t 11 \n</item><item> </item><row>101</row>"));
    EXPECT_EQ("SetMotionParam 1 {0 0 0 [18446744073709551615 0 0 3 0 5 0 0] 0 8 []}", LastCall());
}

TEST_F(QlxApiAlarmCommands, RowsBeyondTheRecordsAreNotLookedAt)
{
    m_device.motionConfig.rows = 1;
    EXPECT_EQ(DONE, SetArea("<item>1</item><item>no digits</item>"));
    EXPECT_EQ("SetMotionParam 1 {0 0 0 [1 0 0 0 0 0 0 0] 0 1 []}", LastCall());
    m_device.motionConfig.rows = 0xFFFFFFFF;
    std::string items;
    for (int i = 0; i < 20; ++i)
    {
        items += "<item>1</item>";
    }
    EXPECT_EQ(DONE, SetArea(items));
    EXPECT_EQ("SetMotionParam 1 {0 0 0 [1 1 1 1 1 1 1 1] 0 4294967295 []}", LastCall());
}

// Without "itemType" there are no rows.
TEST_F(QlxApiAlarmCommands, RowsAreTheSiblingsOfTheItemType)
{
    m_device.motionConfig.rows = 2;
    EXPECT_EQ(DONE, SetMotion("<area><item>1</item></area>"));
    EXPECT_EQ("SetMotionParam 1 {0 0 0 [0 0 0 0 0 0 0 0] 0 2 []}", LastCall());
}

TEST_F(QlxApiAlarmCommands, RowWithAnotherCharacterIsRefused)
{
    m_device.motionConfig.rows = 2;
    for (const char* text : {"2", "10x", "1 1", "0b1", "1\n1"})
    {
        EXPECT_EQ(3, SetArea("<item>1</item><item>" + std::string(text) + "</item>")) << text;
    }
    EXPECT_EQ(0, m_device.Calls("SetMotionParam"));
}

TEST_F(QlxApiAlarmCommands, EveryTriggerItemCountsWhateverItsText)
{
    EXPECT_EQ(DONE, SetMotion("<triggerAlarmOut><item id=\"4\">false</item><item>true</item></triggerAlarmOut>"));
    EXPECT_EQ("SetMotionParam 1 {0 0 0 [0 0 0 0 0 0 0 0] 0 0 [4 0]}", LastCall());
}

TEST_F(QlxApiAlarmCommands, WithoutTriggersNoneIsSet)
{
    m_device.motionConfig.alarmOutCount = 5;
    EXPECT_EQ(DONE, SetMotion("<sensitivity>3</sensitivity>"));
    EXPECT_EQ("SetMotionParam 1 {0 0 3 [0 0 0 0 0 0 0 0] 0 0 []}", LastCall());
    m_device.sensorConfig.alarmOutCount = 5;
    EXPECT_EQ(DONE, Code("SetAlarmInConfig", "<config><sensor/></config>"));
    EXPECT_EQ("SetSensorConfig 1 {0 \"\" 0 0 0 []}", LastCall());
}

TEST_F(QlxApiAlarmCommands, ThirtyTwoTriggersFit)
{
    EXPECT_EQ(DONE, SetMotion(Triggers(32)));
    EXPECT_EQ(32u, m_device.motionConfig.alarmOutCount);
    EXPECT_EQ(31u, m_device.motionConfig.alarmOuts[31]);
    EXPECT_EQ(3, SetMotion(Triggers(33)));
    EXPECT_EQ(1, m_device.Calls("SetMotionParam"));
    EXPECT_EQ(DONE, Code("SetAlarmInConfig", "<config><sensor>" + Triggers(32) + "</sensor></config>"));
    EXPECT_EQ(3, Code("SetAlarmInConfig", "<config><sensor>" + Triggers(33) + "</sensor></config>"));
    EXPECT_EQ(1, m_device.Calls("SetSensorConfig"));
}

TEST_F(QlxApiAlarmCommands, MotionAnswersSuccessWhateverTheHostSays)
{
    m_device.results["SetMotionParam"] = NETNS::DEV_RET_FAILED;
    EXPECT_EQ(DONE, SetMotion("<switch>true</switch>"));
}

// Any refusal of the host's is error 3 for these, even a missing right.
TEST_F(QlxApiAlarmCommands, InputsAndOutputsAnswerErrorThreeForEveryRefusal)
{
    for (const NETNS::DEV_RET result : {NETNS::DEV_RET_FAILED, NETNS::DEV_RET_NO_RIGHT, NETNS::DEV_RET_NOT_SUPPORTED})
    {
        m_device.results = {{"SetSensorConfig", result}, {"SetAlarmOutConfig", result}, {"ManualAlarmOut", result}};
        EXPECT_EQ(3, Code("SetAlarmInConfig", "<config/>"));
        EXPECT_EQ(3, Code("SetAlarmOutConfig", "<config/>"));
        EXPECT_EQ(3, Code("ManualAlarmOut", "<config><action><status>true</status></action></config>"));
    }
    EXPECT_EQ(CHALLENGED, Code("SetAlarmInConfig", "<config/>", UNAUTHORIZED)); // refused when it is read
    EXPECT_EQ(CHALLENGED, Code("SetAlarmOutConfig", "<config/>", UNAUTHORIZED));
    EXPECT_EQ(CHALLENGED, Code("GetAlarmInConfig", "", UNAUTHORIZED));
    EXPECT_EQ(CHALLENGED, Code("GetAlarmOutConfig", "", UNAUTHORIZED));
}

TEST_F(QlxApiAlarmCommands, NamesAreCutAt127Characters)
{
    const std::string fits(127, 'n');
    EXPECT_EQ(DONE,
              Code("SetAlarmInConfig", "<config><sensor><sensorName>" + fits + "x</sensorName></sensor></config>"));
    EXPECT_STREQ(fits.c_str(), m_device.sensorConfig.name);
    EXPECT_EQ(DONE, Code("SetAlarmOutConfig",
                         "<config><alarmOut><alarmOutName>" + fits + "x</alarmOutName></alarmOut></config>"));
    EXPECT_STREQ(fits.c_str(), m_device.alarmOutConfig.name);
}

TEST_F(QlxApiAlarmCommands, VoltageHasTwoWords)
{
    EXPECT_EQ(DONE, Code("SetAlarmInConfig", "<config><sensor><voltage>NC</voltage></sensor></config>"));
    EXPECT_EQ(1u, m_device.sensorConfig.voltage);
    EXPECT_EQ(DONE, Code("SetAlarmInConfig", "<config><sensor><voltage>NO</voltage></sensor></config>"));
    EXPECT_EQ(0u, m_device.sensorConfig.voltage);
    EXPECT_EQ(3, Code("SetAlarmInConfig", "<config><sensor><voltage>no</voltage></sensor></config>"));
    m_device.sensorConfig.voltage = 2;
    EXPECT_EQ("", Value(Ask("GetAlarmInConfig"), "sensor/voltage"));
}

TEST_F(QlxApiAlarmCommands, NumbersOfInputsAndOutputsComeFromTheUrl)
{
    Ask("GetAlarmInConfig/0");
    EXPECT_EQ("GetSensorConfig 0", LastCall());
    Ask("GetAlarmOutConfig/7");
    EXPECT_EQ("GetAlarmOutConfig 7", LastCall());
    Ask("ManualAlarmOut", "<config><action><status>false</status></action></config>");
    EXPECT_EQ("ManualAlarmOut 1 0", LastCall());
}

TEST_F(QlxApiAlarmCommands, SwitchingAnOutputNeedsAWord)
{
    for (const char* body : {"<config/>", "<config><action><status/></action></config>", "no xml",
                             "<config><action><status>on</status></action></config>"})
    {
        EXPECT_EQ(3, Code("ManualAlarmOut/1", body)) << body;
    }
    EXPECT_TRUE(m_device.CallLog().empty());
}

// No right is asked for: the host is not even called.
TEST_F(QlxApiAlarmCommands, AlarmServerIsChangedByAnybody)
{
    const CTempDirectory directory;
    CNetServerCfg::Instance().Initial(directory.Path("server.xml").c_str());
    EXPECT_EQ(DONE, Code("SetAlarmServerConfig",
                         "<config><alarmServer><serverAddr>127.0.0.1</serverAddr>"
                         "<serverPort>65560</serverPort></alarmServer></config>",
                         UNAUTHORIZED));
    const std::string answer = Ask("GetAlarmServerConfig", "", "");
    EXPECT_EQ("127.0.0.1", Value(answer, "alarmServer/serverAddr"));
    EXPECT_EQ("24", Value(answer, "alarmServer/serverPort")); // cut to 16 bits
    EXPECT_EQ(3, Code("SetAlarmServerConfig", "<config><alarmServer><serverAddr>127.0.0.1</serverAddr>"
                                              "<serverPort>23</serverPort></alarmServer></config>"));
    EXPECT_EQ(3, Code("SetAlarmServerConfig"));
    EXPECT_EQ(3, Code("SetAlarmServerConfig", "<config/>"));
    EXPECT_EQ("24", Value(Ask("GetAlarmServerConfig"), "alarmServer/serverPort"));
    EXPECT_TRUE(m_device.CallLog().empty());
}
