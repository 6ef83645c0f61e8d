// QlxApiHostRecordsTest.cpp: every command that shows a host's record, over records of one byte throughout: switches
// on and off, words that nobody knows, texts without an end, counts beyond the tables.
//
// A write to a place that a document lacks ends the process, so this walks every path that the commands write.
#include "HostRecords.h"
#include "QlxApiWorld.h"

#include <cstddef>
#include <map>

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

/// Notes the room that each operation with a list or a text is told, by its name.
class CRoomDevice : public CFakeDevice
{
public:
    std::map<std::string, int> rooms;

    NETNS::DEV_RET GetUserList(NETNS::DEV_USER_INFO* list, int max, int& count) override
    {
        rooms["GetUserList"] = max;
        return CFakeDevice::GetUserList(list, max, count);
    }
    NETNS::DEV_RET GetProfileName(const char* verify, unsigned int chn, int profile, char* name, int size,
                                  int& len) override
    {
        rooms["GetProfileName"] = size;
        return CFakeDevice::GetProfileName(verify, chn, profile, name, size, len);
    }
    NETNS::DEV_RET GetPrivacyMask(const char* verify, unsigned int chn, NETNS::DEV_PRIVACY_MASK* list, int max,
                                  int& count) override
    {
        rooms["GetPrivacyMask"] = max;
        return CFakeDevice::GetPrivacyMask(verify, chn, list, max, count);
    }
    NETNS::DEV_RET PtzGetPresets(const char* verify, unsigned int chn, NETNS::DEV_PTZ_PRESET* list, int max,
                                 int& count) override
    {
        rooms["PtzGetPresets"] = max;
        return CFakeDevice::PtzGetPresets(verify, chn, list, max, count);
    }
    NETNS::DEV_RET PtzGetCruises(const char* verify, unsigned int chn, NETNS::DEV_PTZ_CRUISE* list, int max,
                                 int& count) override
    {
        rooms["PtzGetCruises"] = max;
        return CFakeDevice::PtzGetCruises(verify, chn, list, max, count);
    }
    NETNS::DEV_RET PtzGetCruisePoints(const char* verify, unsigned int chn, int index,
                                      NETNS::DEV_PTZ_CRUISE_POINT* list, int max, int& count) override
    {
        rooms["PtzGetCruisePoints"] = max;
        return CFakeDevice::PtzGetCruisePoints(verify, chn, index, list, max, count);
    }
    NETNS::DEV_RET GetChannelIdList(const char* verify, unsigned int* ids, int max, int& count) override
    {
        rooms["GetChannelIdList"] = max;
        return CFakeDevice::GetChannelIdList(verify, ids, max, count);
    }
    NETNS::DEV_RET SearchRecordDate(const char* verify, NETNS::DEV_DATE* list, int max, int& count) override
    {
        rooms["SearchRecordDate"] = max;
        return CFakeDevice::SearchRecordDate(verify, list, max, count);
    }
    NETNS::DEV_RET SearchRecord(const char* verify, const NETNS::DEV_DATETIME* start, const NETNS::DEV_DATETIME* end,
                                int channel, NETNS::DEV_RECORD_INFO* list, int max, int& count) override
    {
        rooms["SearchRecord"] = max;
        return CFakeDevice::SearchRecord(verify, start, end, channel, list, max, count);
    }
};

struct RoomCase
{
    const char* url;
    const char* body;
    const char* operation;
    int room;
};

const RoomCase ROOM_CASES[] = {
    {"GetAlarmStatus", "", "GetUserList", 16},
    {"ModifyPassword", "<config/>", "GetUserList", 16},
    {"GetStreamCaps", "", "GetProfileName", 128},
    {"GetVideoStreamConfig", "", "GetProfileName", 128},
    {"GetPrivacyMaskConfig", "", "GetPrivacyMask", 8},
    {"PtzGetPresets", "", "PtzGetPresets", 256},
    {"PtzGetCruises", "", "PtzGetCruises", 12},
    {"PtzGetCruise", "<cruiseInfo><id>1</id></cruiseInfo>", "PtzGetCruises", 12},
    {"PtzGetCruise", "<cruiseInfo><id>1</id></cruiseInfo>", "PtzGetCruisePoints", 256},
    {"GetChannelList", "", "GetChannelIdList", 128},
    {"SearchRecordDate", "", "SearchRecordDate", 256},
    {"SearchByTime", "<config/>", "SearchRecord", 256},
};

using QlxApiRooms = QlxApiWorld;

class HostRecords : public QlxApiWorld, public testing::WithParamInterface<int>
{
};

} // namespace

// Hosts fill some records field by field, others in their order.
TEST(HostRecordOrder, OfTheImageLimits)
{
    const NETNS::DEV_IMAGE_CAPS caps = {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15,
                                        16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30};
    const std::vector<std::uint32_t> fields = {
        caps.frequencyDefault,
        caps.brightMin,
        caps.brightMax,
        caps.brightDefault,
        caps.contrastMin,
        caps.contrastMax,
        caps.contrastDefault,
        caps.saturationMin,
        caps.saturationMax,
        caps.saturationDefault,
        caps.hueMin,
        caps.hueMax,
        caps.hueDefault,
        caps.mirrorDefault,
        caps.flipDefault,
        caps.wdrValueDefault,
        caps.wdrSwitchDefault,
        caps.whiteBalanceModeDefault,
        caps.redMin,
        caps.redMax,
        caps.redDefault,
        caps.blueMin,
        caps.blueMax,
        caps.blueDefault,
        caps.denoiseValueDefault,
        caps.denoiseSwitchDefault,
        caps.irisDefault,
        caps.sharpenValueDefault,
        caps.sharpenSwitchDefault,
        caps.irCutDefault,
    };
    for (std::uint32_t i = 0; i < fields.size(); ++i)
    {
        EXPECT_EQ(i + 1, fields[i]);
    }
}

TEST(HostRecordOrder, OfDeviceTimeAndMotion)
{
    const NETNS::DEV_DEVICE_INFO info = {"model",  "brand",    "description",      "software", {2026, 1, 2},
                                         "kernel", "hardware", {1, 2, 3, 4, 5, 6}, 7,          8,
                                         9,        10};
    EXPECT_STREQ("model", info.model);
    EXPECT_STREQ("brand", info.brand);
    EXPECT_STREQ("description", info.description);
    EXPECT_STREQ("software", info.softwareVersion);
    EXPECT_EQ(2026, info.softwareBuildDate.year);
    EXPECT_STREQ("kernel", info.kernelVersion);
    EXPECT_STREQ("hardware", info.hardwareVersion);
    EXPECT_EQ(6, info.mac[5]);
    EXPECT_EQ(7, info.audioInCount);
    EXPECT_EQ(8, info.audioOutCount);
    EXPECT_EQ(9, info.alarmInCount);
    EXPECT_EQ(10, info.alarmOutCount);
    const NETNS::DEV_TIME_CONFIG time = {1, "server", "zone", 2};
    EXPECT_EQ(1u, time.synchronizeType);
    EXPECT_STREQ("server", time.ntpServer);
    EXPECT_STREQ("zone", time.timeZone);
    EXPECT_EQ(2u, time.daylightSwitch);
    const NETNS::DEV_MOTION_CONFIG motion = {1, 2, -3, {{4, 5, {}}}, 6, 7, {8}, 9};
    EXPECT_EQ(1u, motion.motionSwitch);
    EXPECT_EQ(2u, motion.alarmHoldTime);
    EXPECT_EQ(-3, motion.sensitivity);
    EXPECT_EQ(5u, motion.area[0].cells);
    EXPECT_EQ(8u, offsetof(NETNS::DEV_MOTION_ROW, cells)); // aligned behind the first word
    EXPECT_EQ(6u, motion.columns);
    EXPECT_EQ(7u, motion.rows);
    EXPECT_EQ(8u, motion.alarmOuts[0]);
    EXPECT_EQ(9u, motion.alarmOutCount);
}

TEST_F(QlxApiRooms, AreWhatTheHostIsTold)
{
    CRoomDevice device;
    device.integratedPtz = true;
    device.rs485Ptz = true;
    CQLXApiProc::Instance().Init(1, &device);
    for (const RoomCase& row : ROOM_CASES)
    {
        device.rooms.clear();
        Ask(row.url, row.body);
        EXPECT_EQ(row.room, device.rooms[row.operation]) << row.url;
    }
}

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
