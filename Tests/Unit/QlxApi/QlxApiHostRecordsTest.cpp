// QlxApiHostRecordsTest.cpp: every command that shows a host's record, over records of one byte throughout: switches
// on and off, words that nobody knows, texts without an end, counts beyond the tables.
//
// A write to a place that a document lacks ends the process, so this walks every path that the commands write.
#include "QlxApiWorld.h"

#include <cstring>

namespace
{

template <typename RECORD>
void Fill(RECORD& record, int byte)
{
    std::memset(static_cast<void*>(&record), byte, sizeof(record));
}

void FillAll(CFakeDevice& device, int byte)
{
    Fill(device.deviceInfo, byte);
    Fill(device.timeConfig, byte);
    Fill(device.imageCaps, byte);
    device.imageCaps.wdrSwitchDefault = 0; // the one default that has no place
    Fill(device.imageParam, byte);
    Fill(device.timeOsd, byte);
    Fill(device.channelNameOsd, byte);
    Fill(device.presetCaps, byte);
    Fill(device.cruiseCaps, byte);
    Fill(device.ptzProtocol, byte);
    Fill(device.motionConfig, byte);
    Fill(device.motionCaps, byte);
    Fill(device.sensorConfig, byte);
    Fill(device.alarmOutConfig, byte);
    Fill(device.netBasic, byte);
    Fill(device.pppoe, byte);
    Fill(device.portInfo, byte);
    Fill(device.ddns, byte);
    for (int profile = 0; profile < 2; ++profile)
    {
        Fill(device.videoCaps[profile], byte);
        Fill(device.videoProfiles[profile], byte);
        device.videoProfiles[profile].encodeType = 2; // any other is refused
    }
    device.privacyMasks.resize(8);
    device.presets.resize(256);
    device.cruises.resize(12);
    device.cruisePoints.resize(256);
    device.recordDates.resize(256);
    device.records.resize(256);
    for (auto& row : device.privacyMasks)
        Fill(row, byte);
    for (auto& row : device.presets)
        Fill(row, byte);
    for (auto& row : device.cruises)
        Fill(row, byte);
    for (auto& row : device.cruisePoints)
        Fill(row, byte);
    for (auto& row : device.recordDates)
        Fill(row, byte);
    for (auto& row : device.records)
        Fill(row, byte);
}

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
    FillAll(m_device, GetParam());
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
