// The exact SOAP of each request of media, imaging, PTZ, motion and relays, byte for byte as it stands in Requests/.
#include "GetCmd.h"

#include "QLXXMLParse.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include <tinyxml2.h>

namespace
{

using Cmd = CGetDefaultCmd;

const Cmd& Builder()
{
    return Cmd::Instance();
}

/// A host's request with one key.
std::string Get(const std::string& key)
{
    return "<Get version=\"1.0\" systemType=\"ipc\">" + key + "</Get>";
}

std::string Set(const std::string& key)
{
    return "<Set version=\"1.0\" systemType=\"ipc\">" + key + "</Set>";
}

std::string Encoder(const std::string& fields)
{
    CQLXXMLParse request(Set("<videoEncodeCfg><item>" + fields + "</item></videoEncodeCfg>"));
    return Builder().SetVideoEncoderConfiguration(request, request.GetFirstItem("Set/videoEncodeCfg/item"), "main");
}

std::string Move(const std::string& velocity, const ONVIF_PTZ_VELOCITY* range = nullptr)
{
    return Builder().ContinuousMove(
        Set("<continuousMove><profileToken>P1</profileToken>" + velocity + "</continuousMove>"), range);
}

std::string Focus(const std::string& fields, const ONVIF_RANGE* range = nullptr)
{
    return Builder().ContinuousFocus(Set("<continuousFocus>" + fields + "</continuousFocus>"), range);
}

std::string Motion(const std::string& fields)
{
    return Builder().SetAnalyticsModules(Set("<motion>" + fields + "</motion>"), "A1", "Cells");
}

std::string Rule(const std::string& area, const char* name)
{
    return Builder().SetRules(Set("<motion>" + area + "</motion>"), "A1", name);
}

struct RequestCase
{
    const char* file; // in Requests/
    std::string (*build)();
};

std::string ReadFile(const std::string& name)
{
    std::ifstream file(std::string(REQUESTS_DIRECTORY "/") + name + ".xml", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

class GetCmdGolden : public testing::TestWithParam<RequestCase>
{
};

TEST_P(GetCmdGolden, IsTheRequestOnFile)
{
    EXPECT_EQ(ReadFile(GetParam().file), GetParam().build());
}

TEST_P(GetCmdGolden, IsWellFormed)
{
    tinyxml2::XMLDocument document;
    EXPECT_EQ(tinyxml2::XML_SUCCESS, document.Parse(GetParam().build().c_str()));
}

// clang-format off
const RequestCase REQUEST_CASES[] = {
    // Media.
    {"GetProfiles", [] { return Builder().GetProfiles(); }},
    {"GetProfile", [] { return Builder().GetProfile("P1"); }},
    {"GetVideoEncoderConfigurationOption", [] { return Builder().GetVideoEncoderConfigurationOption("P1", "E1"); }},
    {"GetVideoEncoderConfiguration", [] { return Builder().GetVideoEncoderConfiguration("E1"); }},
    {"SetVideoEncoderConfigurationH264", [] { return Encoder(
        "<encodeToken>E1</encodeToken><encode>H264</encode><IFrameInterval>50</IFrameInterval><profile>Main</profile>"
        "<resolution>1920*1080</resolution><quality>4</quality><sessionTimeout>PT5S</sessionTimeout>"
        "<frameRate>25</frameRate><bitrate>4096</bitrate><encodingInterval>2</encodingInterval>"); }},
    {"SetVideoEncoderConfigurationMpeg4", [] { return Encoder(
        "<encodeToken>E1</encodeToken><encode>MPEG4</encode><IFrameInterval>50</IFrameInterval><profile>SP</profile>"
        "<frameRate>25</frameRate>"); }},
    // An MPEG4 profile without an interval brings an empty tt:H264 along.
    {"SetVideoEncoderConfigurationMpeg4Profile", [] { return Encoder(
        "<encodeToken>E1</encodeToken><encode>MPEG4</encode><profile>SP</profile><bitrate>512</bitrate>"); }},
    {"SetVideoEncoderConfigurationJpeg", [] { return Encoder(
        "<encodeToken>E1</encodeToken><encode>JPEG</encode><IFrameInterval>50</IFrameInterval><profile>Main</profile>"
        "<resolution>640*480</resolution><encodingInterval>3</encodingInterval>"); }},
    {"SetVideoEncoderConfigurationNothing", [] { return Encoder("<resolution>640x480</resolution>"); }},
    {"GetStreamUri", [] { return Builder().GetStreamUri(Get(
        "<streamURI><profiletoken>P1</profiletoken><multicast>true</multicast><transport>udp</transport>"
        "</streamURI>")); }},
    {"GetSnapshotUri", [] { return Builder().GetSnapshotUri(Get(
        "<snapshotURI><index>0</index><profiletoken>P1</profiletoken></snapshotURI>")); }},

    // Imaging.
    {"GetImgOptions", [] { return Builder().GetImgOptions(Get(
        "<imageOpts><videoSourceToken>V1</videoSourceToken></imageOpts>")); }},
    {"GetImgSettings", [] { return Builder().GetImgSettings(Get(
        "<imageSettings><videoSourceToken>V1</videoSourceToken></imageSettings>")); }},
    {"SetImgSettings", [] { return Builder().SetImgSettings(Set(
        "<imageSettings><videoSourceToken>V1</videoSourceToken><brightness>10</brightness><contrast>11</contrast>"
        "<saturation>12</saturation><backlightCompensation>ON</backlightCompensation><nightVision>AUTO</nightVision>"
        "<sharpness>13</sharpness><wideDynamic><mode>ON</mode><val>4</val></wideDynamic><whiteBalance>"
        "<mode>MANUAL</mode><crGain>5</crGain><cbGain>6</cbGain></whiteBalance><iris>-3</iris></imageSettings>")); }},
    {"SetImgSettingsSome", [] { return Builder().SetImgSettings(Set(
        "<imageSettings><videoSourceToken>V1</videoSourceToken><brightness>10</brightness><wideDynamic><val>4</val>"
        "</wideDynamic></imageSettings>")); }},
    {"ImgStop", [] { return Builder().ImgStop(Set("<imageStop><token>V1</token></imageStop>")); }},
    {"ContinuousFocus", [] { return Focus("<videoSourcetoken>V1</videoSourcetoken><speed>100</speed>"); }},
    {"ContinuousFocusStanding", [] { return Focus("<videoSourcetoken>V1</videoSourcetoken><speed>0</speed>"); }},
    {"ContinuousFocusWithoutSpeed", [] { return Focus("<videoSourcetoken>V1</videoSourcetoken>"); }},
    {"GetImgMoveOptions", [] { return Builder().GetImgMoveOptions("V1"); }},

    // PTZ and cruises.
    {"GetPTZCfgOptions", [] { return Builder().GetPTZCfgOptions("Z1"); }},
    {"ContinuousMove", [] { return Move("<ptz><velocity><x>50</x><y>-100</y><zoom>30</zoom></velocity></ptz>"); }},
    {"ContinuousMoveZoom", [] { return Move("<ptz><velocity><x>0</x><y>0</y><zoom>30</zoom></velocity></ptz>"); }},
    {"ContinuousMoveWithoutVelocity", [] { return Move("<ptz/>"); }},
    {"PTZStop", [] { return Builder().PTZStop(Set(
        "<ptzStop><profileToken>P1</profileToken><panTilt>true</panTilt><zoom>false</zoom></ptzStop>")); }},
    {"GetPresets", [] { return Builder().GetPresets(Get(
        "<presets><profileToken>P1</profileToken></presets>")); }},
    {"AddPreset", [] { return Builder().AddPreset(Set(
        "<addPreset><profileToken>P1</profileToken><presetName>a &lt; b</presetName></addPreset>")); }},
    {"ModifyPresetName", [] { return Builder().ModifyPresetName(Set(
        "<modifyPresetName><profileToken>P1</profileToken><presetToken>3</presetToken><presetName>door</presetName>"
        "</modifyPresetName>")); }},
    {"RemovePreset", [] { return Builder().RemovePreset(Set(
        "<removePreset><profileToken>P1</profileToken><presetToken>3</presetToken></removePreset>")); }},
    {"GotoPreset", [] { return Builder().GotoPreset(Set(
        "<gotoPreset><profileToken>P1</profileToken><presetToken>3</presetToken></gotoPreset>")); }},
    {"GetCruises", [] { return Builder().GetCruises(Get(
        "<cruises><profileToken>P1</profileToken></cruises>")); }},
    {"AddPresetTour", [] { return Builder().AddPresetTour(Set(
        "<addCruise><profileToken>P1</profileToken></addCruise>")); }},
    {"ModifyCruise", [] { return Builder().ModifyCruise(Set(
        "<modifyCruise><profileToken>P1</profileToken><token>T1</token><name>night</name><presets>"
        "<item><token>1</token><stayTime>10</stayTime></item><item><token>2</token></item>"
        "<item><stayTime>7</stayTime></item></presets></modifyCruise>")); }},
    {"ModifyCruiseWithoutName", [] { return Builder().ModifyCruise(Set(
        "<modifyCruise><profileToken>P1</profileToken><token>T1</token></modifyCruise>")); }},
    // The tokens of the host do not get into this one.
    {"DelCruise", [] { return Builder().DelCruise(Set(
        "<delCruise><profileToken>P1</profileToken><token>T1</token></delCruise>")); }},
    {"StartCruise", [] { return Builder().OperateCruise(Set(
        "<startCruise><profileToken>P1</profileToken><token>T1</token></startCruise>"), Cmd::CRUISE_START); }},
    {"StopCruise", [] { return Builder().OperateCruise(Set(
        "<stopCruise><profileToken>P1</profileToken><token>T1</token></stopCruise>"), Cmd::CRUISE_STOP); }},
    {"PauseCruise", [] { return Builder().OperateCruise(Set(
        "<pauseCruise><profileToken>P1</profileToken><token>T1</token></pauseCruise>"), Cmd::CRUISE_PAUSE); }},

    // Motion, relays and digital inputs.
    {"GetAnalyticsModules", [] { return Builder().GetAnalyticsModules("A1"); }},
    {"GetRules", [] { return Builder().GetRules("A1"); }},
    {"SetAnalyticsModules", [] { return Motion(
        "<sensitivity>60</sensitivity><columns>22</columns><rows>18</rows>"); }},
    {"SetAnalyticsModulesRows", [] { return Motion("<rows>18</rows>"); }},
    {"SetAnalyticsModulesName", [] { return Motion("<name>Other</name>"); }},
    // A rule keeps the name under which it was read.
    {"SetRules", [] { return Rule(
        "<area><name>Other</name><item>11111111</item><item>10000000</item></area>", "Motion"); }},
    {"SetRulesWithoutCells", [] { return Rule("<area/>", ""); }},
    {"GetRelayOutputs", [] { return Builder().GetRelayOutputs(); }},
    {"SetRelayOutputs", [] { return Builder().SetRelayOutputs(Set(
        "<alarmout><token>R1</token><delayTime>20</delayTime><switch>on</switch></alarmout>")); }},
    // No delay is 0 seconds.
    {"SetRelayOutputsWithoutDelay", [] { return Builder().SetRelayOutputs(Set(
        "<alarmout><delayTime>-1</delayTime><switch>off</switch></alarmout>")); }},
    {"SetRelayOutputState", [] { return Builder().SetRelayOutputState(Set(
        "<manualAlarmout><token>R1</token><active>1</active></manualAlarmout>")); }},
    {"SetRelayOutputStateInactive", [] { return Builder().SetRelayOutputState(Set(
        "<manualAlarmout><token>R1</token><active>0</active></manualAlarmout>")); }},
    {"GetDigitalInputs", [] { return Builder().GetDigitalInputs(); }},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Requests, GetCmdGolden, testing::ValuesIn(REQUEST_CASES),
                         [](const testing::TestParamInfo<RequestCase>& one) { return std::string(one.param.file); });
