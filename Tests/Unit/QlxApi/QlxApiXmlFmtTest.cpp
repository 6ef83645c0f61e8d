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
