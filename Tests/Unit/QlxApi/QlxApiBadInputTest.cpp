// QlxApiBadInputTest.cpp: every command that takes a body, against every kind of body that is none.
//
// What cannot be parsed holds no element, so a command goes on with what it has: a few of them answer success.
#include "QlxApiWorld.h"

#include "NetServerConfig.h"
#include "TempDirectory.h"

#include <algorithm>
#include <iterator>

namespace
{

/// A command that takes a body.
struct WriteCase
{
    const char* name;
    const char* url;
    int emptyBody;       ///< code of the answer to no body at all
    int nothing;         ///< code of the answer to a body without a known element
    const char* hostSet; ///< the operation that changes something; empty: no operation of the host's
    const char* wrap;    ///< a body, with "%" for elements of the command's own
    const char* word;    ///< an element that takes a word; null: none
    const char* number;  ///< an element that takes a number; null: none
    const char* text;    ///< an element that takes a text; null: none
    int textMax;         ///< longest text that reaches the host; 0: any
};

// clang-format off
const WriteCase WRITE_CASES[] = {
    {"SetDateAndTime",          "SetDateAndTime",          3,      DONE, "SetTimeConfig",           "<config><time><timezoneInfo>%</timezoneInfo></time></config>",     "daylightSwitch", nullptr,         "timeZone",     127},
    {"SetImageConfig",          "SetImageConfig",          SILENT, DONE, "SetImageParam",           "<config><image>%</image></config>",                                "IRCutMode",      "bright",        nullptr,        0},
    {"SetVideoStreamConfig",    "SetVideoStreamConfig",    3,      DONE, "SetVideoProfile",         "<config><streams><item id=\"0\">%</item></streams></config>",      "quality",        "frameRate",     nullptr,        0},
    {"SetAudioStreamConfig",    "SetAudioStreamConfig",    SILENT, 3,    "SetAudioEncode",          "<config>%</config>",                                               "audioEncode",    nullptr,         nullptr,        0},
    {"SetImageOsdConfig",       "SetImageOsdConfig",       3,      DONE, "SetChannelNameOsd",       "<config><imageOsd><channelName>%</channelName></imageOsd></config>", "switch",       "X",             "name",         63},
    {"SetPrivacyMaskConfig",    "SetPrivacyMaskConfig",    3,      DONE, "SetPrivacyMask",          "<config><privacyMask count=\"1\"><itemType/><item>%</item></privacyMask></config>", "color", nullptr,    nullptr,        0},
    {"PtzSetProtocolConfig",    "PtzSetProtocolConfig",    SILENT, DONE, "SetPtzProtocol",          "<ptzInfo>%</ptzInfo>",                                             "protocol",       "baudRate",      nullptr,        0},
    {"PtzControl",              "PtzControl/1/up",         SILENT, DONE, "PtzControl",              "<actionInfo>%</actionInfo>",                                       nullptr,          "speed",         nullptr,        0},
    {"PtzGotoPreset",           "PtzGotoPreset",           SILENT, DONE, "PtzGotoPreset",           "<presetInfo>%</presetInfo>",                                       nullptr,          "id",            nullptr,        0},
    {"PtzRunCruise",            "PtzRunCruise",            SILENT, DONE, "PtzRunCruise",            "<cruiseInfo>%</cruiseInfo>",                                       nullptr,          "id",            nullptr,        0},
    {"PtzStopCruise",           "PtzStopCruise",           SILENT, DONE, "PtzStopCruise",           "<cruiseInfo>%</cruiseInfo>",                                       nullptr,          nullptr,         nullptr,        0},
    {"PtzAddPreset",            "PtzAddPreset",            SILENT, 3,    "PtzAddPreset",            "<presetInfo>%</presetInfo>",                                       nullptr,          nullptr,         "name",         0},
    {"PtzModifyPresetName",     "PtzModifyPresetName",     SILENT, 3,    "PtzModifyPresetName",     "<presetInfo><id>1</id>%</presetInfo>",                             nullptr,          nullptr,         "name",         0},
    {"PtzDeletePreset",         "PtzDeletePreset",         SILENT, 3,    "PtzDeletePreset",         "<presetInfo>%</presetInfo>",                                       nullptr,          "id",            nullptr,        0},
    {"PtzModifyPresetPosition", "PtzModifyPresetPosition", SILENT, 3,    "PtzModifyPresetPosition", "<presetInfo>%</presetInfo>",                                       nullptr,          "id",            nullptr,        0},
    {"PtzGetCruise",            "PtzGetCruise",            SILENT, 3,    "PtzGetCruisePoints",      "<cruiseInfo>%</cruiseInfo>",                                       nullptr,          "id",            nullptr,        0},
    {"PtzAddCruise",            "PtzAddCruise",            SILENT, 3,    "PtzAddCruise",            "<cruiseInfo>%</cruiseInfo>",                                       nullptr,          nullptr,         "name",         0},
    {"PtzModifyCruise",         "PtzModifyCruise",         SILENT, 3,    "PtzModifyCruise",         "<cruiseInfo><name>n</name>%</cruiseInfo>",                         nullptr,          "id",            nullptr,        0},
    {"PtzDeleteCruise",         "PtzDeleteCruise",         SILENT, 3,    "PtzDeleteCruise",         "<cruiseInfo>%</cruiseInfo>",                                       nullptr,          "id",            nullptr,        0},
    {"SetMotionConfig",         "SetMotionConfig",         3,      DONE, "SetMotionParam",          "<config><motion>%</motion></config>",                              "switch",         "sensitivity",   nullptr,        0},
    {"SetAlarmInConfig",        "SetAlarmInConfig",        3,      DONE, "SetSensorConfig",         "<config><sensor>%</sensor></config>",                              "voltage",        "alarmHoldTime", "sensorName",   127},
    {"SetAlarmOutConfig",       "SetAlarmOutConfig",       3,      DONE, "SetAlarmOutConfig",       "<config><alarmOut>%</alarmOut></config>",                          nullptr,          "alarmHoldTime", "alarmOutName", 127},
    {"ManualAlarmOut",          "ManualAlarmOut",          3,      3,    "ManualAlarmOut",          "<config><action>%</action></config>",                              "status",         nullptr,         nullptr,        0},
    {"SetAlarmServerConfig",    "SetAlarmServerConfig",    3,      3,    "",                        "<config><alarmServer>%</alarmServer></config>",                    nullptr,          nullptr,         nullptr,        0},
    {"SetNetBasicConfig",       "SetNetBasicConfig",       3,      DONE, "SetNetBasic",             "<config><tcpIp>%</tcpIp></config>",                                "ipSettingMode",  nullptr,         "staticIp",     15},
    {"SetNetPppoeConfig",       "SetNetPppoeConfig",       3,      DONE, "SetPppoe",                "<config><pppoe>%</pppoe></config>",                                "switch",         nullptr,         "password",     63},
    {"SetPortConfig",           "SetPortConfig",           3,      DONE, "SetPortInfo",             "<config><port>%</port></config>",                                  nullptr,          "httpPort",      nullptr,        0},
    {"SetDdnsConfig",           "SetDdnsConfig",           3,      DONE, "SetDdns",                 "<config><ddns>%</ddns></config>",                                  "switch",         nullptr,         "domainName",   63},
    {"ModifyPassword",          "ModifyPassword",          3,      DONE, "ModifyPassword",          "<config><userPassword>%</userPassword></config>",                  nullptr,          nullptr,         nullptr,        0},
    {"SearchByTime",            "SearchByTime",            3,      DONE, "SearchRecord",            "<config><search>%</search></config>",                              nullptr,          nullptr,         nullptr,        0},
};
// clang-format on

class BadInput : public QlxApiWorld, public testing::WithParamInterface<WriteCase>
{
protected:
    void SetUp() override
    {
        QlxApiWorld::SetUp();
        OpenPtz();
        CNetServerCfg::Instance().Initial(m_directory.Path("server.xml").c_str());
    }

    static std::string Repeat(int count, const std::string& text)
    {
        std::string all;
        for (int i = 0; i < count; ++i)
        {
            all += text;
        }
        return all;
    }
    static std::string Body(const std::string& elements)
    {
        std::string body = GetParam().wrap;
        return body.replace(body.find('%'), 1, elements);
    }
    static std::string Element(const std::string& name, const std::string& text)
    {
        return Body("<" + name + ">" + text + "</" + name + ">");
    }

    /// Asks, and sees that the host was changed only by an answer that says so.
    int Try(const std::string& body)
    {
        m_device.ForgetCalls();
        const int code = Code(GetParam().url, body);
        const std::string hostSet = GetParam().hostSet;
        if (!hostSet.empty())
        {
            EXPECT_EQ(code == DONE ? 1 : 0, m_device.Calls(hostSet)) << body.substr(0, 200);
        }
        return code;
    }

    CTempDirectory m_directory;
};

class BadWord : public BadInput
{
};
class BadNumber : public BadInput
{
};
class BadText : public BadInput
{
};

/// The commands that take an element of a kind.
std::vector<WriteCase> Taking(const char* WriteCase::*element)
{
    std::vector<WriteCase> cases;
    std::copy_if(std::begin(WRITE_CASES), std::end(WRITE_CASES), std::back_inserter(cases),
                 [element](const WriteCase& row) { return row.*element != nullptr; });
    return cases;
}

std::string NameOf(const testing::TestParamInfo<WriteCase>& row)
{
    return row.param.name;
}

} // namespace

TEST_P(BadInput, EmptyBody)
{
    EXPECT_EQ(GetParam().emptyBody, Try(""));
}

TEST_P(BadInput, WhatIsNoXmlHoldsNoElement)
{
    const int nothing = GetParam().nothing;
    // Streams are found only in items, and without one nothing is changed.
    const bool isStreams = std::string(GetParam().hostSet) == "SetVideoProfile";
    const std::string CASES[] = {
        "no xml",
        "<",
        "<config",
        "<config>",
        "<config></other>",
        std::string("\0", 1),
        std::string("\0<config/>", 10),
        "\xFF\xFE<\0c",
        "<other/>",
        "<other><config/></other>",
        "<config/>",
        "<!-- nothing -->",
        "<?xml version=\"1.0\"?>",
        "<!DOCTYPE a [<!ENTITY b \"c\">]><config>&b;</config>",
        Repeat(501, "<config>") + Repeat(501, "</config>"),
        Repeat(20000, "<a>"),
        " ",
    };
    for (const std::string& body : CASES)
    {
        m_device.ForgetCalls();
        EXPECT_EQ(nothing, Code(GetParam().url, body)) << body.substr(0, 60);
        if (*GetParam().hostSet != '\0' && !isStreams)
        {
            EXPECT_EQ(nothing == DONE ? 1 : 0, m_device.Calls(GetParam().hostSet)) << body.substr(0, 60);
        }
    }
}

TEST_P(BadInput, MissingElementsAndTenMegabytesOfOthers)
{
    const int nothing = GetParam().nothing;
    std::string name = GetParam().name;
    if (name == "PtzModifyCruise" || name == "PtzModifyPresetName")
    {
        EXPECT_EQ(3, Try(Body("")));
    }
    else
    {
        EXPECT_EQ(nothing, Try(Body("")));
        EXPECT_EQ(nothing, Try(Body("<unknown a=\"b\">c</unknown>")));
        EXPECT_EQ(nothing, Try(Body(Repeat(20000, "<unknown/>"))));
        EXPECT_EQ(nothing, Try(Body("<unknown>" + std::string(10 * 1024 * 1024, 'x') + "</unknown>")));
    }
}

TEST_P(BadWord, IsRefused)
{
    const std::string WORDS[] = {"",         "True", "unknown",   " true",
                                 "true ",    "0",    "-1",        std::string(100000, 'w'),
                                 "tr\xC3ue", "\xFF", "&unknown;", "<![CDATA[unknown]]>",
                                 "<true/>"};
    for (const std::string& word : WORDS)
    {
        EXPECT_EQ(3, Try(Element(GetParam().word, word))) << word.substr(0, 60);
    }
}

TEST_P(BadNumber, IsCutAndNotRefused)
{
    const std::string NUMBERS[] = {"",
                                   "-1",
                                   "-2147483648",
                                   "2147483648",
                                   "4294967296",
                                   "99999999999999999999999999",
                                   "1e9",
                                   "0x7FFFFFFF",
                                   "text",
                                   " 5",
                                   std::string(100000, '9'),
                                   "&#53;",
                                   "<![CDATA[5]]>",
                                   "<a>5</a>"};
    for (const std::string& number : NUMBERS)
    {
        EXPECT_EQ(DONE, Try(Element(GetParam().number, number))) << number.substr(0, 60);
    }
}

TEST_P(BadText, IsCutBehindTheFieldsLimit)
{
    const int limit = GetParam().textMax > 0 ? GetParam().textMax : 5000;
    const std::string fits(static_cast<size_t>(limit), 't');
    EXPECT_EQ(DONE, Try(Element(GetParam().text, fits)));
    EXPECT_THAT(LastCall(), testing::HasSubstr("\"" + fits + "\""));
    // The clock's texts are refused when they are too long, all others cut.
    const bool isClock = std::string(GetParam().hostSet) == "SetTimeConfig";
    EXPECT_EQ(isClock ? 3 : DONE, Try(Element(GetParam().text, fits + "x")));
    if (!isClock && GetParam().textMax > 0)
    {
        EXPECT_THAT(LastCall(), testing::HasSubstr("\"" + fits + "\""));
    }
}

TEST_P(BadText, OfAnyBytesReachesTheHostAsItIs)
{
    const std::pair<std::string, std::string> TEXTS[] = {
        {"", ""},
        {"&lt;a&amp;&#65;", "<a&A"},
        {"&unknown;", "&unknown;"},
        {"<![CDATA[<b>]]>", "<b>"},
        {"\xFF\xC0\x80", "\xFF\xC0\x80"},
        {"<b>inner</b>", ""},
        {"%s%n", "%s%n"},
    };
    for (const auto& text : TEXTS)
    {
        EXPECT_EQ(DONE, Try(Element(GetParam().text, text.first))) << text.first;
        EXPECT_THAT(LastCall(), testing::HasSubstr("\"" + text.second + "\""));
    }
}

INSTANTIATE_TEST_SUITE_P(Commands, BadInput, testing::ValuesIn(WRITE_CASES), NameOf);
INSTANTIATE_TEST_SUITE_P(Commands, BadWord, testing::ValuesIn(Taking(&WriteCase::word)), NameOf);
INSTANTIATE_TEST_SUITE_P(Commands, BadNumber, testing::ValuesIn(Taking(&WriteCase::number)), NameOf);
INSTANTIATE_TEST_SUITE_P(Commands, BadText, testing::ValuesIn(Taking(&WriteCase::text)), NameOf);
