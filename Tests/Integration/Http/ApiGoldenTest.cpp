// ApiGoldenTest.cpp: every command of the XML API over a real connection: the whole answer, header included, against
// the file Golden/<case>.http, and what the host was asked, in order and with its records.
//
// A client's request with a body carries it in a POST; one without is a GET.
#include "DefaultHost.h"
#include "HttpWorld.h"

#include <fstream>
#include <future>
#include <iterator>
#include <vector>

namespace
{

void Nothing(CFakeDevice& /*device*/) {}

void Describe(CFakeDevice& device)
{
    device.sdCard = true;
    device.deviceInfo.audioInCount = 1;
    const std::uint8_t mac[] = {0x02, 0x00, 0x5E, 0x10, 0xAB, 0xCD};
    std::memcpy(device.deviceInfo.mac, mac, sizeof(mac));
}

void ChannelIds(CFakeDevice& device)
{
    device.channelIds = {1, 2, 16};
}

void Image(CFakeDevice& device)
{
    device.imageParam = {1, 61, 52, 53, 44, 1, 0, 1, 1, 77, 31, 1, 2, 33, 66, 1, 129, 3};
    NETNS::DEV_IMAGE_CAPS& caps = device.imageCaps;
    caps.frequencyDefault = 1;
    caps.brightMin = 1, caps.brightMax = 99, caps.brightDefault = 55;
    caps.contrastMin = 2, caps.contrastMax = 98, caps.contrastDefault = 56;
    caps.saturationMin = 3, caps.saturationMax = 97, caps.saturationDefault = 57;
    caps.hueMin = 4, caps.hueMax = 96, caps.hueDefault = 58;
    caps.mirrorDefault = 1;
    caps.wdrValueDefault = 100;
    caps.whiteBalanceModeDefault = 4;
    caps.redMin = 5, caps.redMax = 95, caps.redDefault = 59;
    caps.blueMin = 6, caps.blueMax = 94, caps.blueDefault = 60;
    caps.denoiseValueDefault = 20;
    caps.denoiseSwitchDefault = 1;
    caps.irisDefault = 1;
    caps.sharpenValueDefault = 40;
    caps.irCutDefault = 2;
}

/// Values that no enumeration knows.
void ImageBeyondTheWords(CFakeDevice& device)
{
    device.imageParam.whiteBalanceMode = 6;
    device.imageParam.irCutMode = 4;
    device.imageCaps.whiteBalanceModeDefault = 6;
    device.imageCaps.irCutDefault = 4;
}

/// Two streams; 1280x720 and 960x960 have one area.
void Streams(CFakeDevice& device)
{
    device.profileCount = 2;
    device.profileNames = {{0, "main <1>"}, {1, "sub"}};
    device.portInfo.rtspPort = 8554;
    device.videoCaps[0] = {{2, 0}, 2,   {{1280, 720}, {960, 960}, {640, 360}}, 3, 1, 30, 10, 250, {1, 2, 4}, 3,
                           128,    8192};
    device.videoCaps[1] = {{1}, 1, {{320, 180}}, 1, 1, 15, 20, 200, {3}, 1, 32, 1024};
    device.videoProfiles[0] = {1280, 720, 25, 4000, 3, 0, 4, 50};
    device.videoProfiles[1] = {320, 180, 15, 500, 1, 2, 2, 30};
}

void OneBareStream(CFakeDevice& device)
{
    device.profileCount = 1;
}

void NoStreams(CFakeDevice& device)
{
    device.profileCount = 0;
}

void MuLaw(CFakeDevice& device)
{
    device.audioType = 1;
}

void OtherAudio(CFakeDevice& device)
{
    device.audioType = 2;
}

void Osd(CFakeDevice& device)
{
    device.timeOsd = {1, 10, 20, 3};
    device.channelNameOsd = {0, 30, 40, "Gate <2>"};
}

void Masks(CFakeDevice& device)
{
    device.privacyMasks = {{1, 10, 20, 30, 40, 2}, {0, 5, 6, 7, 8, 9}};
}

void NineMasks(CFakeDevice& device)
{
    device.counts["GetPrivacyMask"] = 9;
}

void Ptz(CFakeDevice& device)
{
    device.integratedPtz = true;
    device.rs485Ptz = true;
    device.presetCaps = {1, 8, 128};
    device.cruiseCaps = {12, 1, 9, 240, 32};
    device.ptzProtocol = {9600, 8, 7};
    device.presets = {{1, "Door", {}}, {200, "<Window> 11", {}}};
    device.cruises = {{3, "Round"}, {4, "012345678901234567890123456789"}};
    device.cruisePoints = {{1, "Door", 5, 10}, {200, "Window", 255, 0}};
}

void BuiltInHeadOnly(CFakeDevice& device)
{
    device.integratedPtz = true;
}

void Motion(CFakeDevice& device)
{
    device.motionConfig.motionSwitch = 1;
    device.motionConfig.alarmHoldTime = 9;
    device.motionConfig.sensitivity = -2;
    device.motionConfig.columns = 22;
    device.motionConfig.rows = 2;
    device.motionConfig.area[0].cells = 0x8000000000000001u;
    device.motionConfig.area[1].cells = 0x3FFFFF;
    device.motionConfig.alarmOuts[0] = 0;
    device.motionConfig.alarmOuts[1] = 2;
    device.motionConfig.alarmOutCount = 2;
    device.motionCaps = {1, 10};
}

void Alarms(CFakeDevice& device)
{
    device.sensorConfig = {2, "Door <1>", 1, 1, 15, {1}, 1};
    device.alarmOutConfig = {1, "Siren", 20};
    device.alarmStatusXml = "<status>quiet</status>";
}

void ActiveAlarm(CFakeDevice& /*device*/)
{
    NET_SERVER_SetMotionStatus(1, true);
}

void Network(CFakeDevice& device)
{
    device.netBasic = {1, "192.168.1.10", "192.168.1.1", "255.255.255.0", 1, "9.9.9.9", "8.8.8.8"};
    device.pppoe = {1, "user<1>", "pass&word"};
    device.portInfo = {80, 9000, 554};
    device.ddns = {1, "mintdns", "me", "p<w", "cam.example", "ddns.example"};
}

void Records(CFakeDevice& device)
{
    device.recordDates = {{2016, 1, 2}, {2016, 12, 31}};
    device.records = {{{{2016, 1, 2}, {8, 30, 0}}, 60}, {{{2016, 1, 2}, {23, 59, 59}}, 3600}};
}

using Calls = std::vector<std::string>;

struct GoldenCase
{
    const char* name; ///< of the golden file
    const char* url;
    const char* body; ///< null: a GET without a body
    void (*arrange)(CFakeDevice& device);
    Calls calls;
};

const char IMAGE_BODY[] = "<config><image><frequency>0</frequency><bright>300</bright><hue>9</hue>"
                          "<flipSwitch>true</flipSwitch><WDR><switch>false</switch></WDR>"
                          "<whiteBalance><mode>nalamp</mode><red>70000</red></whiteBalance>"
                          "<IRCutMode>night</IRCutMode></image></config>";
const char STREAM_BODY[] =
    "<config><streams><item id=\"1\"><resolution>640x360</resolution><frameRate>12</frameRate>"
    "<encodeType>mpeg4</encodeType><encodeLevel>baseLine</encodeLevel><quality>highest</quality></item>"
    "<item id=\"0\"><maxBitRate>777</maxBitRate><GOP>99</GOP></item></streams></config>";
const char OSD_BODY[] = "<config><imageOsd><time><switch>true</switch><X>1</X><dateFormat>month-day-year</dateFormat>"
                        "</time><channelName><switch>true</switch><Y>2</Y><name><![CDATA[A&B]]></name></channelName>"
                        "</imageOsd></config>";
const char MASK_BODY[] =
    "<config><privacyMask count=\"2\"><itemType/><item><switch>true</switch><rectangle><X>1</X><Y>2</Y>"
    "<width>3</width><height>4</height></rectangle><color>gray</color></item><item/><item/></privacyMask></config>";
const char MOTION_BODY[] = "<config><motion><switch>false</switch><sensitivity>7</sensitivity><area><itemType/>"
                           "<item>\n 101 </item><item><![CDATA[0]]></item><item>11</item></area><triggerAlarmOut>"
                           "<item id=\"5\">false</item><item id=\"6\"/></triggerAlarmOut></motion></config>";
const char SENSOR_BODY[] = "<config><sensor><sensorName>Window</sensorName><switch>false</switch><voltage>NO</voltage>"
                           "<alarmHoldTime>3</alarmHoldTime></sensor></config>";
const char NET_BODY[] = "<config><tcpIp><dnsServer1>1.1.1.1</dnsServer1></tcpIp></config>";
const char CRUISE_BODY[] =
    "<cruiseInfo><id>3</id><name>Night</name><presetInfo><itemType/><item id=\"1\"><name>x</name>"
    "<speed>300</speed><holdTime>10</holdTime></item><item id=\"258\"/></presetInfo>"
    "</cruiseInfo>";
const char SEARCH_BODY[] = "<config><search><starttime>2016-01-02 08:30:00</starttime>"
                           "<endtime>2016-1-2 9</endtime></search></config>";

// clang-format off
const GoldenCase GOLDEN_CASES[] = {
    {"GetProfileInfo",               "GetProfileInfo",          nullptr,     Nothing,  {}},
    {"GetDeviceInfo",                "GetDeviceInfo",           nullptr,     Describe, {"GetDevInfo", "GetIntegratedPtz", "GetSupportRS485Ptz", "GetSupportSDCard"}},
    {"Reboot",                       "Reboot",                  nullptr,     Nothing,  {"Reboot"}},
    {"GetChannelList",               "GetChannelList",          nullptr,     ChannelIds, {"GetChannelIdList"}},
    {"GetAlarmInList",               "GetAlarmInList",          nullptr,     Nothing,  {}},
    {"GetAlarmOutList",              "GetAlarmOutList",         nullptr,     Nothing,  {}},
    {"SetDateAndTime",               "SetDateAndTime",          "<config><time><timezoneInfo><timeZone>UTC</timeZone></timezoneInfo></time></config>", Nothing,
                                                                                       {"GetTimeConfig", "SetTimeConfig {0 \"\" \"UTC\" 0}"}},
    {"ModifyPassword",               "ModifyPassword",          "<config><userPassword><oldPassword>YQ==</oldPassword><password>YQ==</password></userPassword></config>", Nothing,
                                                                                       {"GetUserList", "ModifyPassword \"a\""}},

    {"GetImageConfig",               "GetImageConfig/3",        nullptr,     Image,    {"GetImageCaps 3", "GetImageParam 3"}},
    {"GetImageConfigBeyondTheWords", "GetImageConfig",          nullptr,     ImageBeyondTheWords, {"GetImageCaps 1", "GetImageParam 1"}},
    {"SetImageConfig",               "SetImageConfig/2",        IMAGE_BODY,  Image,    {"GetImageCaps 2", "GetImageParam 2",
                                                                                        "SetImageParam 2 {0 44 52 9 44 1 1 1 1 77 31 1 5 70000 66 0 129 2}"}},
    {"SetImageConfigEmpty",          "SetImageConfig",          nullptr,     Image,    {}},
    {"GetImageOsdConfig",            "GetImageOsdConfig",       nullptr,     Osd,      {"GetTimeOsd 1", "GetChannelNameOsd 1"}},
    {"GetImageOsdConfigZeroed",      "GetImageOsdConfig",       nullptr,     Nothing,  {"GetTimeOsd 1", "GetChannelNameOsd 1"}},
    {"SetImageOsdConfig",            "SetImageOsdConfig/4",     OSD_BODY,    Osd,      {"SetTimeOsd 4 {1 1 0 2}", "SetChannelNameOsd 4 {1 0 2 \"A&B\"}"}},
    {"SetImageOsdConfigEmpty",       "SetImageOsdConfig",       nullptr,     Osd,      {}},
    {"GetPrivacyMaskConfig",         "GetPrivacyMaskConfig",    nullptr,     Masks,    {"GetPrivacyMask 1"}},
    {"GetPrivacyMaskConfigNone",     "GetPrivacyMaskConfig",    nullptr,     Nothing,  {"GetPrivacyMask 1"}},
    {"GetPrivacyMaskConfigNine",     "GetPrivacyMaskConfig",    nullptr,     NineMasks, {"GetPrivacyMask 1"}},
    {"SetPrivacyMaskConfig",         "SetPrivacyMaskConfig",    MASK_BODY,   Masks,    {"SetPrivacyMask 1 [{1 1 2 3 4 2}{0 0 0 0 0 0}]"}},
    {"SetPrivacyMaskConfigEmpty",    "SetPrivacyMaskConfig",    nullptr,     Masks,    {}},

    {"GetStreamCaps",                "GetStreamCaps",           nullptr,     Streams,  {"GetProfileCount 1", "GetPortInfo", "GetVideoEncodeCaps 1 0", "GetProfileName 1 0",
                                                                                        "GetVideoEncodeCaps 1 1", "GetProfileName 1 1"}},
    {"GetStreamCapsOfNothing",       "GetStreamCaps/2",         nullptr,     OneBareStream, {"GetProfileCount 2", "GetPortInfo", "GetVideoEncodeCaps 2 0", "GetProfileName 2 0"}},
    {"GetStreamCapsNoStreams",       "GetStreamCaps",           nullptr,     NoStreams, {"GetProfileCount 1"}},
    {"GetVideoStreamConfig",         "GetVideoStreamConfig",    nullptr,     Streams,  {"GetProfileCount 1", "GetVideoProfile 1 0", "GetProfileName 1 0", "GetVideoEncodeCaps 1 0",
                                                                                        "GetVideoProfile 1 1", "GetProfileName 1 1", "GetVideoEncodeCaps 1 1"}},
    {"GetVideoStreamConfigNoStreams", "GetVideoStreamConfig",   nullptr,     NoStreams, {"GetProfileCount 1"}},
    {"SetVideoStreamConfig",         "SetVideoStreamConfig",    STREAM_BODY, Streams,  {"GetVideoProfile 1 1", "SetVideoProfile 1 1 {640 360 12 500 5 1 1 30}",
                                                                                        "GetVideoProfile 1 0", "SetVideoProfile 1 0 {1280 720 25 777 3 0 4 99}"}},
    {"SetVideoStreamConfigEmpty",    "SetVideoStreamConfig",    nullptr,     Streams,  {}},
    {"GetAudioStreamConfigALaw",     "GetAudioStreamConfig",    nullptr,     Nothing,  {"SupportAudioEncode 1 0"}},
    {"GetAudioStreamConfigMuLaw",    "GetAudioStreamConfig/2",  nullptr,     MuLaw,    {"SupportAudioEncode 2 0", "SupportAudioEncode 2 1"}},
    {"GetAudioStreamConfigOther",    "GetAudioStreamConfig",    nullptr,     OtherAudio, {"SupportAudioEncode 1 0", "SupportAudioEncode 1 1"}},
    {"SetAudioStreamConfig",         "SetAudioStreamConfig",    "<config><audioEncode>G711u</audioEncode></config>", Nothing, {"SetAudioEncode 1 1"}},
    {"SetAudioStreamConfigEmpty",    "SetAudioStreamConfig",    nullptr,     Nothing,  {}},
    {"RequestKeyFrame",              "RequestKeyFrame/5",       nullptr,     Nothing,  {"RequestKeyFrame 5"}},

    {"PtzGetCaps",                   "PtzGetCaps",              nullptr,     Ptz,      {"GetIntegratedPtz", "GetSupportRS485Ptz", "GetIntegratedPtz", "GetPtzPresetCaps 1", "GetPtzCruiseCaps 1"}},
    {"PtzGetCapsBuiltInOnly",        "PtzGetCaps",              nullptr,     BuiltInHeadOnly, {"GetIntegratedPtz", "GetSupportRS485Ptz"}},
    {"PtzGetProtocolConfig",         "PtzGetProtocolConfig",    nullptr,     Ptz,      {"GetIntegratedPtz", "GetSupportRS485Ptz", "GetSupportRS485Ptz", "GetPtzProtocol 1"}},
    {"PtzSetProtocolConfig",         "PtzSetProtocolConfig",    "<ptzInfo><address>5</address></ptzInfo>", Ptz,
                                                                                       {"GetIntegratedPtz", "GetSupportRS485Ptz", "SetPtzProtocol 1 {0 0 5}"}},
    {"PtzControl",                   "PtzControl/2/LEFT",       "<actionInfo><speed>-3</speed></actionInfo>", Ptz,
                                                                                       {"GetIntegratedPtz", "GetSupportRS485Ptz", "PtzControl 2 2 -3"}},
    {"PtzControlEmpty",              "PtzControl/2/left",       nullptr,     Ptz,      {"GetIntegratedPtz", "GetSupportRS485Ptz"}},
    {"PtzControlUnknown",            "PtzControl/1/lefty",      "x",         Ptz,      {"GetIntegratedPtz", "GetSupportRS485Ptz"}},
    {"PtzGotoPreset",                "PtzGotoPreset",           "<presetInfo/>", Ptz,  {"GetIntegratedPtz", "GetSupportRS485Ptz", "PtzGotoPreset 1 0"}},
    {"PtzGetPresets",                "PtzGetPresets",           nullptr,     Ptz,      {"GetIntegratedPtz", "GetSupportRS485Ptz", "GetPtzPresetCaps 1", "PtzGetPresets 1"}},
    {"PtzAddPreset",                 "PtzAddPreset",            "<config><presetInfo><name>Gate</name></presetInfo></config>", Ptz,
                                                                                       {"GetIntegratedPtz", "GetSupportRS485Ptz", "PtzAddPreset 1 \"Gate\""}},
    {"PtzModifyPresetName",          "PtzModifyPresetName",     "<presetInfo><id>2</id><name>Gate</name></presetInfo>", Ptz,
                                                                                       {"GetIntegratedPtz", "GetSupportRS485Ptz", "PtzModifyPresetName 1 2 \"Gate\""}},
    {"PtzDeletePreset",              "PtzDeletePreset",         "<presetInfo><id>2</id></presetInfo>", Ptz, {"GetIntegratedPtz", "GetSupportRS485Ptz", "PtzDeletePreset 1 2"}},
    {"PtzDeletePresetWithoutId",     "PtzDeletePreset",         "<presetInfo/>", Ptz,  {"GetIntegratedPtz", "GetSupportRS485Ptz"}},
    {"PtzModifyPresetPosition",      "PtzModifyPresetPosition", "<presetInfo><id>2</id></presetInfo>", Ptz, {"GetIntegratedPtz", "GetSupportRS485Ptz", "PtzModifyPresetPosition 1 2"}},
    {"PtzGetCruises",                "PtzGetCruises",           nullptr,     Ptz,      {"GetIntegratedPtz", "GetSupportRS485Ptz", "GetPtzCruiseCaps 1", "PtzGetCruises 1"}},
    {"PtzGetCruise",                 "PtzGetCruise",            "<cruiseInfo><id>3</id></cruiseInfo>", Ptz,
                                                                                       {"GetIntegratedPtz", "GetSupportRS485Ptz", "PtzGetCruisePoints 1 3", "PtzGetCruises 1", "GetPtzCruiseCaps 1"}},
    {"PtzGetCruiseUnknown",          "PtzGetCruise",            "<cruiseInfo><id>9</id></cruiseInfo>", Ptz,
                                                                                       {"GetIntegratedPtz", "GetSupportRS485Ptz", "PtzGetCruisePoints 1 9", "PtzGetCruises 1", "GetPtzCruiseCaps 1"}},
    {"PtzAddCruise",                 "PtzAddCruise",            CRUISE_BODY, Ptz,      {"GetIntegratedPtz", "GetSupportRS485Ptz", "PtzAddCruise 1 \"Night\" [{1 \"\" 44 10}{2 \"\" 0 0}]"}},
    {"PtzModifyCruise",              "PtzModifyCruise",         CRUISE_BODY, Ptz,      {"GetIntegratedPtz", "GetSupportRS485Ptz", "PtzModifyCruise 1 3 \"Night\" [{1 \"\" 44 10}{2 \"\" 0 0}]"}},
    {"PtzDeleteCruise",              "PtzDeleteCruise",         "<cruiseInfo><id>3</id></cruiseInfo>", Ptz, {"GetIntegratedPtz", "GetSupportRS485Ptz", "PtzDeleteCruise 1 3"}},
    {"PtzRunCruise",                 "PtzRunCruise",            "<cruiseInfo><id>3</id></cruiseInfo>", Ptz, {"GetIntegratedPtz", "GetSupportRS485Ptz", "PtzRunCruise 1 3"}},
    {"PtzStopCruise",                "PtzStopCruise",           "x",         Ptz,      {"GetIntegratedPtz", "GetSupportRS485Ptz", "PtzStopCruise 1"}},
    {"PtzStopCruiseEmpty",           "PtzStopCruise",           nullptr,     Ptz,      {"GetIntegratedPtz", "GetSupportRS485Ptz"}},

    {"GetMotionConfig",              "GetMotionConfig",         nullptr,     Motion,   {"GetMotionParam 1", "GetMotionCaps 1"}},
    {"GetMotionConfigWithoutRows",   "GetMotionConfig",         nullptr,     Nothing,  {"GetMotionParam 1", "GetMotionCaps 1"}},
    {"SetMotionConfig",              "SetMotionConfig",         MOTION_BODY, Motion,   {"GetMotionParam 1", "SetMotionParam 1 {0 9 7 [5 0 0 0 0 0 0 0] 22 2 [5 6]}"}},
    {"SetMotionConfigEmpty",         "SetMotionConfig",         nullptr,     Motion,   {}},
    {"GetAlarmInConfig",             "GetAlarmInConfig/2",      nullptr,     Alarms,   {"GetSensorConfig 2"}},
    {"SetAlarmInConfig",             "SetAlarmInConfig/2",      SENSOR_BODY, Alarms,   {"GetSensorConfig 2", "SetSensorConfig 2 {2 \"Window\" 0 0 3 []}"}},
    {"GetAlarmOutConfig",            "GetAlarmOutConfig",       nullptr,     Alarms,   {"GetAlarmOutConfig 1"}},
    {"SetAlarmOutConfig",            "SetAlarmOutConfig/1",     "<config><alarmOut><alarmOutName>Bell</alarmOutName></alarmOut></config>", Alarms,
                                                                                       {"GetAlarmOutConfig 1", "SetAlarmOutConfig 1 {1 \"Bell\" 20}"}},
    {"ManualAlarmOut",               "ManualAlarmOut/2",        "<config><action><status>true</status></action></config>", Alarms, {"ManualAlarmOut 2 1"}},
    {"ManualAlarmOutEmpty",          "ManualAlarmOut/2",        nullptr,     Alarms,   {}},
    {"GetAlarmStatusQuiet",          "GetAlarmStatus",          nullptr,     Alarms,   {"GetUserList", "GetAlarmStatusXml", "FreeBuffer"}},
    {"GetAlarmStatusActive",         "GetAlarmStatus",          nullptr,     ActiveAlarm, {"GetUserList"}},
    {"GetAlarmServerConfigBeforeAny", "GetAlarmServerConfig",   nullptr,     Nothing,  {}},
    {"SetAlarmServerConfig",         "SetAlarmServerConfig",    "<config><alarmServer><serverAddr>127.0.0.1</serverAddr><serverPort>7000</serverPort></alarmServer></config>", Nothing, {}},
    {"SetAlarmServerConfigRefused",  "SetAlarmServerConfig",    "<config><alarmServer><serverAddr>999.1.1.1</serverAddr><serverPort>7000</serverPort></alarmServer></config>", Nothing, {}},

    {"GetNetBasicConfig",            "GetNetBasicConfig",       nullptr,     Network,  {"GetNetBasic"}},
    {"SetNetBasicConfig",            "SetNetBasicConfig",       NET_BODY,    Network,  {"GetNetBasic",
                                                                                        "SetNetBasic {1 \"192.168.1.10\" \"192.168.1.1\" \"255.255.255.0\" 1 \"1.1.1.1\" \"8.8.8.8\"}"}},
    {"SetNetBasicConfigEmpty",       "SetNetBasicConfig",       nullptr,     Network,  {}},
    {"GetNetPppoeConfig",            "GetNetPppoeConfig",       nullptr,     Network,  {"GetPppoe"}},
    {"SetNetPppoeConfig",            "SetNetPppoeConfig",       "<config><pppoe><switch>false</switch><userName>a</userName></pppoe></config>", Network,
                                                                                       {"GetPppoe", "SetPppoe {0 \"a\" \"pass&word\"}"}},
    {"GetPortConfig",                "GetPortConfig",           nullptr,     Network,  {"GetPortInfo"}},
    {"SetPortConfig",                "SetPortConfig",           "<config><port><httpPort>65616</httpPort><rtspPort>0</rtspPort></port></config>", Network,
                                                                                       {"GetPortInfo", "SetPortInfo {80 9000 0}"}},
    {"GetDdnsConfig",                "GetDdnsConfig",           nullptr,     Network,  {"GetDdns"}},
    {"GetDdnsConfigZeroed",          "GetDdnsConfig",           nullptr,     Nothing,  {"GetDdns"}},
    {"SetDdnsConfig",                "SetDdnsConfig",           "<config><ddns><switch>false</switch><servertype>other</servertype></ddns></config>", Network,
                                                                                       {"GetDdns", "SetDdns {0 \"other\" \"me\" \"p<w\" \"cam.example\" \"ddns.example\"}"}},

    {"SearchRecordDate",             "SearchRecordDate",        nullptr,     Records,  {"SearchRecordDate"}},
    {"SearchRecordDateNone",         "SearchRecordDate",        nullptr,     Nothing,  {"SearchRecordDate"}},
    {"SearchByTime",                 "SearchByTime/2",          SEARCH_BODY, Records,  {"SearchRecord {2016 1 2 8 30 0} {2016 1 2 9 0 0} 1"}},
    {"SearchByTimeEmpty",            "SearchByTime/2",          nullptr,     Records,  {}},
};
// clang-format on

std::string Golden(const std::string& name)
{
    std::ifstream file(std::string(GOLDEN_DIRECTORY) + "/" + name + ".http", std::ios::binary);
    EXPECT_TRUE(file.is_open()) << "no golden file";
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

class ApiGolden : public HttpWorld, public testing::WithParamInterface<GoldenCase>
{
protected:
    void SetUp() override
    {
        HttpWorld::SetUp();
        ASSERT_EQ(1, NET_SERVER_Initial(2, 3, 2, &m_device, nullptr, "", "", 1, NETNS::DEV_TYPE_DEFAULT));
    }

    std::string AskApi(const std::string& url, const char* body) const
    {
        const std::string head = " /" + url + " HTTP/1.1\r\n" + AUTHORIZED;
        return body == nullptr
                   ? Ask("GET" + head + "\r\n")
                   : Ask("POST" + head + "Content-Length: " + std::to_string(strlen(body)) + "\r\n\r\n" + body);
    }
};

TEST_P(ApiGolden, AnswersAndAsksTheHost)
{
    GetParam().arrange(m_device);
    m_device.ForgetCalls();
    EXPECT_EQ(Golden(GetParam().name), AskApi(GetParam().url, GetParam().body));
    EXPECT_EQ(GetParam().calls, m_device.CallLog());
    EXPECT_EQ(0, m_device.BuffersOut());
}

using ApiRefusals = HttpWorld;

// The status command is the one that sends no challenge.
TEST_F(ApiRefusals, UnknownUserOfTheAlarmStatusGetsNoChallenge)
{
    EXPECT_EQ("HTTP/1.1 401 Unauthorized\r\n"
              "Content-type: text/html\r\n"
              "Content-Length: 0\r\n"
              "Connection: close\r\n"
              "AuthInfo: \r\n"
              "\r\n",
              Ask("GET /GetAlarmStatus HTTP/1.1\r\nAuthorization: Basic YWRtaW46d3Jvbmc=\r\n\r\n"));
}

TEST_F(ApiRefusals, WrongPasswordIsChallengedByAnyOtherCommand)
{
    EXPECT_EQ("HTTP/1.1 401 Unauthorized\r\n"
              "Content-type: text/html\r\n"
              "Content-Length: 0\r\n"
              "Connection: close\r\n"
              "AuthInfo: \r\n"
              "WWW-Authenticate: Basic realm=\"Web Service\"\r\n"
              "\r\n",
              Ask("GET /GetImageConfig HTTP/1.1\r\nAuthorization: Basic YWRtaW46d3Jvbmc=\r\n\r\n"));
}

class ApiSnapshot : public HttpWorld
{
protected:
    void SetUp() override
    {
        HttpWorld::SetUp();
        NET_SERVER_RTSPStart(FreePort(), &m_streams, &m_device);
    }
    void TearDown() override
    {
        NET_SERVER_RTSPStop();
        HttpWorld::TearDown();
    }

    /// Feeds pictures until the request is answered, so that it does not matter who comes first.
    std::string TakeSnapshot(const std::string& url, unsigned int channel, std::string picture) const
    {
        std::future<std::string> answer = std::async(std::launch::async, [this, &url] { return Get(url); });
        NETNS::RTSP_FRAME frame = {};
        frame.frameType = NETNS::RTSP_FRAME_JPEG;
        frame.encodeType = NETNS::RTSP_ENCODE_JPEG;
        frame.length = static_cast<std::uint32_t>(picture.size());
        while (answer.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready)
        {
            NET_SERVER_LiveStreamIn(channel, 0, frame, picture.data());
        }
        return answer.get();
    }

    CDefaultStreams m_streams;
};

// The picture's type is told as PNG, whatever the bytes are, and no right is needed.
TEST_F(ApiSnapshot, PictureOfTheChannelByteForByte)
{
    EXPECT_EQ(Golden("GetSnapshot"), TakeSnapshot("/GetSnapshot/2", 2, std::string("\xFF\xD8\0\xFF\xD9", 5)));
    EXPECT_TRUE(m_device.CallLog().empty());
}

TEST_F(ApiSnapshot, ChannelIsOneWhenTheUrlNamesNone)
{
    EXPECT_EQ(Golden("GetSnapshot"), TakeSnapshot("/GetSnapshot", 1, std::string("\xFF\xD8\0\xFF\xD9", 5)));
}

INSTANTIATE_TEST_SUITE_P(Commands, ApiGolden, testing::ValuesIn(GOLDEN_CASES),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace
