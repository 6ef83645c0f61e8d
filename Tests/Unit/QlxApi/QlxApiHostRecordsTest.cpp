// QlxApiHostRecordsTest.cpp: every command that shows a host's record, over records of one byte throughout: switches
// on and off, words that nobody knows, texts without an end, counts beyond the tables.
//
// A write to a place that a document lacks ends the process, so this walks every path that the commands write.
#include "HostRecords.h"
#include "QlxApiWorld.h"

namespace
{

const struct
{
    const char* url;
    const char* body;
} READS[] = {
    {"GetDeviceInfo", ""},
    {"GetDateAndTime", ""},
    {"GetImageConfig", ""},
    {"GetImageOsdConfig", ""},
    {"GetPrivacyMaskConfig", ""},
    {"GetStreamCaps", ""},
    {"GetVideoStreamConfig", ""},
    {"GetAudioStreamConfig", ""},
    {"GetMotionConfig", ""},
    {"GetAlarmInConfig", ""},
    {"GetAlarmOutConfig", ""},
    {"GetAlarmServerConfig", ""},
    {"PtzGetCaps", ""},
    {"PtzGetProtocolConfig", ""},
    {"PtzGetPresets", ""},
    {"PtzGetCruises", ""},
    {"PtzGetCruise", "<cruiseInfo><id>255</id></cruiseInfo>"},
    {"GetNetBasicConfig", ""},
    {"GetNetPppoeConfig", ""},
    {"GetPortConfig", ""},
    {"GetDdnsConfig", ""},
    {"SearchRecordDate", ""},
    {"SearchByTime", "<config/>"},
};

class HostRecords : public QlxApiWorld, public testing::WithParamInterface<int>
{
};

} // namespace

TEST_P(HostRecords, OfAnyBytesAreShownWhole)
{
    OpenPtz();
    FillHostRecords(m_device, GetParam());
    for (const auto& read : READS)
    {
        const std::string answer = Ask(read.url, read.body);
        EXPECT_EQ("HTTP/1.1 200 OK", answer.substr(0, 15)) << read.url;
        const std::string body = BodyOf(answer);
        CQLXXMLParse document;
        EXPECT_TRUE(!body.empty() && document.LoadXML(body)) << read.url << body;
    }
}

INSTANTIATE_TEST_SUITE_P(QlxApi, HostRecords, testing::Values(0x00, 0x01, 0x02, 0x41, 0x7F, 0xFF));
