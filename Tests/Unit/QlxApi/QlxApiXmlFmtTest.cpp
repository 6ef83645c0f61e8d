#include "QlxApiXmlFmt.h"

#include "QLXXMLParse.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

struct DocumentRow
{
    const char* name;
    std::string (*text)();
};

const DocumentRow DOCUMENTS[] = {
    {"CorrectResponse", &CQlxApiXmlFmt::CorrectResponse},
    {"ErrorResponse", &CQlxApiXmlFmt::ErrorResponse},
    {"GetDeviceInfo", &CQlxApiXmlFmt::GetDeviceInfo},
    {"GetDateAndTime", &CQlxApiXmlFmt::GetDateAndTime},
    {"GetImageConfig", &CQlxApiXmlFmt::GetImageConfig},
    {"GetImageOsdCfg", &CQlxApiXmlFmt::GetImageOsdCfg},
    {"GetPrivacyMaskCfg", &CQlxApiXmlFmt::GetPrivacyMaskCfg},
    {"GetStreamCaps", &CQlxApiXmlFmt::GetStreamCaps},
    {"GetVideoStreamCfg", &CQlxApiXmlFmt::GetVideoStreamCfg},
    {"GetAudioStreamCfg", &CQlxApiXmlFmt::GetAudioStreamCfg},
    {"GetMotionConfig", &CQlxApiXmlFmt::GetMotionConfig},
    {"GetAlarmInConfig", &CQlxApiXmlFmt::GetAlarmInConfig},
    {"GetAlarmOutConfig", &CQlxApiXmlFmt::GetAlarmOutConfig},
    {"GetAlarmServerConfig", &CQlxApiXmlFmt::GetAlarmServerConfig},
    {"GetAlarmStauts", &CQlxApiXmlFmt::GetAlarmStauts},
    {"PtzGetProtocolConfig", &CQlxApiXmlFmt::PtzGetProtocolConfig},
    {"GetNetBasicConfig", &CQlxApiXmlFmt::GetNetBasicConfig},
    {"GetNetPppoeConfig", &CQlxApiXmlFmt::GetNetPppoeConfig},
    {"GetPortConfig", &CQlxApiXmlFmt::GetPortConfig},
    {"GetDdnsConfig", &CQlxApiXmlFmt::GetDdnsConfig},
};

class Documents : public testing::TestWithParam<DocumentRow>
{
};

struct ElementRow
{
    const char* path;
    const char* type;
    const char* value;
};

// One element of a document with its type and value, and the layout that its CDATA section shows in.
void ExpectElement(const CQLXXMLParse& document, const ElementRow& row, bool cdata)
{
    std::string type;
    std::string value;
    std::string xml;
    EXPECT_TRUE(document.GetAttributeStr(row.path, "type", type)) << row.path;
    EXPECT_TRUE(document.GetValueStr(row.path, value)) << row.path;
    EXPECT_TRUE(document.GetXMLData(row.path, xml)) << row.path;
    EXPECT_EQ(row.type, type) << row.path;
    EXPECT_EQ(row.value, value) << row.path;
    EXPECT_EQ(cdata, xml.find("<![CDATA[]]>") != std::string::npos) << row.path;
}

std::vector<std::string> NamesBelow(const CQLXXMLParse& document, const std::string& path)
{
    std::vector<std::string> names;
    for (unsigned int item = document.GetChildItem(document.GetFirstItem(path)); item != 0;
         item = document.GetNextSiblingItem(item))
    {
        names.emplace_back();
        document.GetItemName(item, names.back());
    }
    return names;
}

} // namespace

TEST_P(Documents, HaveTheirEnvelope)
{
    const std::string text = GetParam().text();
    EXPECT_EQ(0u, text.find("<?xml version=\"1.0\" encoding=\"UTF-8\"?>"));
    CQLXXMLParse document;
    ASSERT_TRUE(document.LoadXML(text));
    std::string name;
    std::string value;
    EXPECT_TRUE(document.GetItemName(document.GetRootItem(), name));
    EXPECT_EQ("config", name);
    EXPECT_TRUE(document.GetAttributeStr("config", "version", value));
    EXPECT_EQ("1.0", value);
    EXPECT_TRUE(document.GetAttributeStr("config", "xmlns", value));
    EXPECT_EQ(QLX_API_NAMESPACE, value);
}

INSTANTIATE_TEST_SUITE_P(QlxApiXmlFmt, Documents, testing::ValuesIn(DOCUMENTS),
                         [](const auto& row) { return row.param.name; });

TEST(QlxApiXmlFmt, GenericDocumentsByteForByte)
{
    EXPECT_EQ("<?xml version=\"1.0\" encoding=\"UTF-8\"?><config version=\"1.0\" "
              "xmlns=\"http://www.qlx.example/ver10\" status=\"success\"/>",
              CQlxApiXmlFmt::CorrectResponse());
    EXPECT_EQ("<?xml version=\"1.0\" encoding=\"UTF-8\"?><config version=\"1.0\" "
              "xmlns=\"http://www.qlx.example/ver10\" status=\"failed\" errorCode=\"1\"/>",
              CQlxApiXmlFmt::ErrorResponse());
    EXPECT_EQ("<?xml version=\"1.0\" encoding=\"UTF-8\"?><userinfo>\t<username>%s</username>\t<password>%s</password>\t"
              "<ip>%s</ip></userinfo>",
              CQlxApiXmlFmt::GetVerifyXml());
}

TEST(QlxApiXmlFmt, DeviceInfoHasItsElementsInOrder)
{
    const ElementRow ROWS[] = {
        {"deviceInfo/model", "string", ""},
        {"deviceInfo/brand", "string", ""},
        {"deviceInfo/deviceDescription", "string", ""},
        {"deviceInfo/audioInCount", "uint32", "0"},
        {"deviceInfo/audioOutCount", "uint32", "0"},
        {"deviceInfo/integratedPtz", "boolean", "false"},
        {"deviceInfo/supportRS485Ptz", "boolean", "false"},
        {"deviceInfo/supportSDCard", "boolean", "false"},
        {"deviceInfo/alarmInCount", "uint32", "0"},
        {"deviceInfo/alarmOutCount", "uint32", "0"},
        {"deviceInfo/softwareVersion", "string", ""},
        {"deviceInfo/softwareBuildDate", "string", ""},
        {"deviceInfo/kernelVersion", "string", ""},
        {"deviceInfo/hardwareVersion", "string", ""},
        {"deviceInfo/mac", "string", ""},
    };
    const CQLXXMLParse document(CQlxApiXmlFmt::GetDeviceInfo());
    std::vector<std::string> names;
    for (const ElementRow& row : ROWS)
    {
        ExpectElement(document, row, std::string(row.type) == "string");
        names.push_back(std::string(row.path).substr(std::string("deviceInfo/").size()));
    }
    EXPECT_EQ(names, NamesBelow(document, "deviceInfo"));
    EXPECT_THAT(NamesBelow(document, "config"), testing::ElementsAre("deviceInfo"));
}

TEST(QlxApiXmlFmt, DateAndTimeHasItsElements)
{
    const CQLXXMLParse document(CQlxApiXmlFmt::GetDateAndTime());
    ExpectElement(document, {"time/timezoneInfo/timeZone", "string", ""}, true);
    ExpectElement(document, {"time/timezoneInfo/daylightSwitch", "boolean", "false"}, false);
    ExpectElement(document, {"time/synchronizeInfo/type", "synchronizeType", "manually"}, false);
    ExpectElement(document, {"time/synchronizeInfo/ntpServer", "string", ""}, true);
    ExpectElement(document, {"time/synchronizeInfo/currentTime", "string", ""}, true);
    std::string maxLen;
    EXPECT_TRUE(document.GetAttributeStr("time/synchronizeInfo/ntpServer", "maxLen", maxLen));
    EXPECT_EQ("127", maxLen);
    EXPECT_THAT(NamesBelow(document, "config"), testing::ElementsAre("types", "time"));
    EXPECT_THAT(NamesBelow(document, "types"), testing::ElementsAre("synchronizeType"));
    const unsigned int first = document.GetFirstItem("types/synchronizeType/enum");
    std::string word;
    document.GetValueStr(first, word);
    EXPECT_EQ("manually", word);
    document.GetValueStr(document.GetNextSiblingItem(first), word);
    EXPECT_EQ("NTP", word);
    EXPECT_EQ(2u, document.GetChildrenLength("types/synchronizeType", ""));
}

namespace
{

/// A value of a document as it stands before a command fills it.
struct ValueRow
{
    std::string (*text)();
    const char* path;
    const char* attributes; ///< as they are printed
    const char* value;
};

// clang-format off
const ValueRow VALUES[] = {
    {&CQlxApiXmlFmt::GetImageConfig, "image/frequency",          R"(type="frequency" default="50HZ")",                 "50HZ"},
    {&CQlxApiXmlFmt::GetImageConfig, "image/bright",             R"(type="uint8" min="0" max="100" default="60")",     "60"},
    {&CQlxApiXmlFmt::GetImageConfig, "image/contrast",           R"(type="uint8" min="0" max="100" default="50")",     "50"},
    {&CQlxApiXmlFmt::GetImageConfig, "image/hue",                R"(type="uint8" min="0" max="100" default="50")",     "50"},
    {&CQlxApiXmlFmt::GetImageConfig, "image/saturation",         R"(type="uint8" min="0" max="100" default="45")",     "45"},
    {&CQlxApiXmlFmt::GetImageConfig, "image/mirrorSwitch",       R"(type="boolean" default="false")",                  "false"},
    {&CQlxApiXmlFmt::GetImageConfig, "image/flipSwitch",         R"(type="boolean" default="false")",                  "false"},
    {&CQlxApiXmlFmt::GetImageConfig, "image/WDR/switch",         R"(type="boolean" default="false")",                  "false"},
    {&CQlxApiXmlFmt::GetImageConfig, "image/WDR/value",          R"(type="uint8" default="128")",                      "128"},
    {&CQlxApiXmlFmt::GetImageConfig, "image/whiteBalance/mode",  R"(type="whitebalanceMode" default="auto")",          "auto"},
    {&CQlxApiXmlFmt::GetImageConfig, "image/whiteBalance/red",   R"(type="uint32" min="0" max="100" default="50")",    "50"},
    {&CQlxApiXmlFmt::GetImageConfig, "image/whiteBalance/blue",  R"(type="uint32" min="0" max="100" default="50")",    "50"},
    {&CQlxApiXmlFmt::GetImageConfig, "image/denoise/switch",     R"(type="boolean" default="false")",                  "false"},
    {&CQlxApiXmlFmt::GetImageConfig, "image/denoise/value",      R"(type="uint8" default="30")",                       "30"},
    {&CQlxApiXmlFmt::GetImageConfig, "image/irisSwitch",         R"(type="boolean" default="false")",                  "false"},
    {&CQlxApiXmlFmt::GetImageConfig, "image/sharpen/switch",     R"(type="boolean" default="false")",                  "false"},
    {&CQlxApiXmlFmt::GetImageConfig, "image/sharpen/value",      R"(type="uint8" default="50")",                       "50"},
    {&CQlxApiXmlFmt::GetImageConfig, "image/IRCutMode",          R"(type="IRCutMode" default="auto")",                 "auto"},
    {&CQlxApiXmlFmt::GetStreamCaps,  "rtspPort",                 R"(type="uint16")",                                   "554"},
    {&CQlxApiXmlFmt::GetStreamCaps,  "streamList",               R"(type="list" count="4")",                           ""},
    {&CQlxApiXmlFmt::GetStreamCaps,  "streamList/item",          R"(id="1")",                                          ""},
    {&CQlxApiXmlFmt::GetStreamCaps,  "streamList/item/streamName",               R"(type="string")",                   "profile1"},
    {&CQlxApiXmlFmt::GetStreamCaps,  "streamList/item/resolutionCaps/itemType",  R"(type="resolution")",               ""},
    {&CQlxApiXmlFmt::GetStreamCaps,  "streamList/item/resolutionCaps/item",      R"(maxFrameRate="25")",               "1280x720"},
    {&CQlxApiXmlFmt::GetStreamCaps,  "streamList/item/encodeTypeCaps/itemType",  R"(type="encodeType")",               ""},
    {&CQlxApiXmlFmt::GetStreamCaps,  "streamList/item/encodeTypeCaps/item",      "",                                   "h264"},
    {&CQlxApiXmlFmt::GetStreamCaps,  "streamList/item/encodeLevelCaps/itemType", R"(type="encodeLevel")",              ""},
    {&CQlxApiXmlFmt::GetStreamCaps,  "streamList/item/encodeLevelCaps/item",     "",                                   "baseLine"},
    {&CQlxApiXmlFmt::GetVideoStreamCfg, "streams",                 R"(type="list" count="3")",                         ""},
    {&CQlxApiXmlFmt::GetVideoStreamCfg, "streams/item",            R"(id="1")",                                        ""},
    {&CQlxApiXmlFmt::GetVideoStreamCfg, "streams/item/name",       R"(type="string" maxLen="32")",                     "profile1"},
    {&CQlxApiXmlFmt::GetVideoStreamCfg, "streams/item/resolution", "",                                                 "1280x720"},
    {&CQlxApiXmlFmt::GetVideoStreamCfg, "streams/item/frameRate",  R"(type="uint32")",                                 "25"},
    {&CQlxApiXmlFmt::GetVideoStreamCfg, "streams/item/maxBitRate", R"(type="uint32" min="64" max="5120")",             "4096"},
    {&CQlxApiXmlFmt::GetVideoStreamCfg, "streams/item/GOP",        R"(type="uint32" min="30" max="300")",              "100"},
    {&CQlxApiXmlFmt::GetAudioStreamCfg, "audioEncode",             R"(type="audioEncode")",                            "G711a"},
    {&CQlxApiXmlFmt::GetMotionConfig,   "motion/switch",           R"(type="boolean")",                                "false"},
    {&CQlxApiXmlFmt::GetMotionConfig,   "motion/sensitivity",      R"(type="int32" min="1" max="8")",                  "6"},
    {&CQlxApiXmlFmt::GetMotionConfig,   "motion/alarmHoldTime",    R"(type="uint32")",                                 "5"},
    {&CQlxApiXmlFmt::GetNetBasicConfig, "tcpIp/ipSettingMode",     R"(type="ipSettingMode")",                          "staticIp"},
    {&CQlxApiXmlFmt::GetDdnsConfig,     "ddns/servertype",         R"(type="ddnsServerType")",                         "www.fourth-ddns.example"},
    {&CQlxApiXmlFmt::GetPrivacyMaskCfg, "privacyMask",             R"(type="list" count="0")",                         ""},
};
// clang-format on

} // namespace

TEST(QlxApiXmlFmt, ValuesStandAsTheyShowWhenTheHostGivesNothingElse)
{
    for (const ValueRow& row : VALUES)
    {
        const CQLXXMLParse document(row.text());
        std::string xml;
        std::string value;
        ASSERT_TRUE(document.GetXMLData(row.path, xml)) << row.path;
        document.GetValueStr(row.path, value);
        const std::string path = row.path;
        const std::string name = path.substr(path.rfind('/') + 1);
        const std::string attributes = row.attributes;
        const std::string tag = "<" + name + (attributes.empty() ? "" : " " + attributes);
        EXPECT_EQ(tag, xml.substr(0, tag.size())) << row.path;
        EXPECT_THAT(xml.substr(tag.size(), 2), testing::AnyOf(testing::StartsWith(">"), testing::StartsWith("/>")))
            << row.path;
        EXPECT_EQ(row.value, value) << row.path;
    }
}
