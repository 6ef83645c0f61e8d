// What each transform of media, imaging, PTZ, motion and relays makes of an answer, in the prefixes of several makers.
#include "XmlTransform.h"

#include "DeviceAnswer.h"

#include <gtest/gtest.h>

#include <tinyxml2.h>

namespace
{

using Xml = CXmlTransform;
using Transform = void (*)(const std::string& soap, std::string& answer);

struct AnswerCase
{
    const char* name;
    Transform transform;
    const char* body;  // of the device's document
    const char* inner; // of the host's answer, root and all
};

void Profiles(const std::string& soap, std::string& answer)
{
    std::vector<ONVIF_PROFILE_TOKEN> profiles;
    Xml::TransGetProfiles(soap, answer, profiles);
}

void Profile(const std::string& soap, std::string& answer)
{
    Xml::TransGetProfile(soap, answer, 3);
}

void Encoder(const std::string& soap, std::string& answer)
{
    Xml::TransGetVideoEncoderConfiguration(soap, answer, 3);
}

void EncoderOptions(const std::string& soap, std::string& answer)
{
    Xml::TransGetVideoEncoderConfigurationOption(soap, answer, 3);
}

void Snapshot(const std::string& soap, std::string& answer)
{
    std::string uri;
    Xml::TransGetSnapshotUri(soap, answer, uri);
}

void Modules(const std::string& soap, std::string& answer)
{
    char name[64] = {};
    Xml::TransGetAnalyticsModules(soap, answer, name);
}

/// A rule of a grid of 6 by 3 cells.
void Rules(const std::string& soap, std::string& answer)
{
    char name[64] = {};
    answer = "<GetResponse><motion><status>success</status><columns>6</columns><rows>3</rows></motion></GetResponse>";
    Xml::TransGetRules(soap, answer, name);
}

struct Case
{
    AnswerCase answer;
    Maker maker;
};

} // namespace

class XmlTransformGolden : public testing::TestWithParam<Case>
{
};

TEST_P(XmlTransformGolden, ReadsTheAnswer)
{
    const AnswerCase& one = GetParam().answer;
    std::string answer;
    one.transform(DeviceAnswer(one.body, GetParam().maker), answer);
    EXPECT_EQ(one.inner, InShort(answer));
}

TEST_P(XmlTransformGolden, TellsAFault)
{
    const AnswerCase& one = GetParam().answer;
    std::string answer;
    one.transform(DeviceFault(GetParam().maker), answer);
    EXPECT_NE(std::string::npos, InShort(answer).find(FAULT_STATUS)) << answer;
}

TEST_P(XmlTransformGolden, SurvivesAnAnswerThatIsCutAnywhere)
{
    const AnswerCase& one = GetParam().answer;
    const std::string whole = DeviceAnswer(one.body, GetParam().maker);
    for (std::size_t length = 0; length < whole.size(); length += 7)
    {
        std::string answer;
        one.transform(whole.substr(0, length), answer);
        EXPECT_NE(std::string::npos, answer.find("<status>success</status>"));
    }
}

// Whatever a camera makes of a document, there is an answer for the host that is one.
TEST_P(XmlTransformGolden, AnswersHostileDocuments)
{
    const std::string body = GetParam().answer.body;
    std::string deep = body;
    for (int depth = 0; depth < 2000; ++depth)
    {
        deep = (depth % 2 == 0 ? "<tt:Name>" : "<tt:Extension>") + deep;
    }
    const std::string hostile[] = {"",
                                   "text",
                                   "<",
                                   "<?xml version=\"1.0\"?>",
                                   "<html><body>401 Unauthorized</body></html>",
                                   body,
                                   DeviceAnswer(deep),
                                   DeviceAnswer(""),
                                   DeviceAnswer(body + body),
                                   "<!DOCTYPE s [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;\">]>" +
                                       DeviceAnswer("<tt:Name>&b;&#0;&#xffffffff;</tt:Name>"),
                                   std::string("\0\xff\xfe<a>", 6)};
    for (const std::string& soap : hostile)
    {
        std::string answer;
        GetParam().answer.transform(soap, answer);
        tinyxml2::XMLDocument document;
        EXPECT_EQ(tinyxml2::XML_SUCCESS, document.Parse(answer.c_str())) << soap.substr(0, 100);
    }
}

// clang-format off
const AnswerCase ANSWER_CASES[] = {
    // Media.
    {"Profiles", &Profiles,
     "<mdw:GetProfilesResponse><mdw:Profiles token=\"P1\" fixed=\"true\"><tt:Name>main</tt:Name>"
     "<tt:VideoSourceConfiguration token=\"C1\"><tt:SourceToken>V1</tt:SourceToken></tt:VideoSourceConfiguration>"
     "<tt:AudioSourceConfiguration token=\"AS1\"/><tt:VideoEncoderConfiguration token=\"E1\"><tt:Name>one</tt:Name>"
     "<tt:Encoding>H264</tt:Encoding><tt:Resolution><tt:Width>1920</tt:Width><tt:Height>1080</tt:Height>"
     "</tt:Resolution><tt:Quality>4.5</tt:Quality><tt:RateControl><tt:FrameRateLimit>25</tt:FrameRateLimit>"
     "<tt:EncodingInterval>1</tt:EncodingInterval><tt:BitrateLimit>4096</tt:BitrateLimit></tt:RateControl>"
     "<tt:H264><tt:GovLength>50</tt:GovLength><tt:H264Profile>Main</tt:H264Profile></tt:H264>"
     "</tt:VideoEncoderConfiguration><tt:AudioEncoderConfiguration token=\"AE1\"/>"
     "<tt:VideoAnalyticsConfiguration token=\"VA1\"/><tt:PTZConfiguration token=\"Z1\"/></mdw:Profiles>"
     "<mdw:Profiles token=\"P2\"><tt:Name>sound</tt:Name></mdw:Profiles>"
     "<mdw:Profiles token=\"P3\"><tt:Name>sub</tt:Name><tt:VideoEncoderConfiguration token=\"E3\">"
     "<tt:Encoding>MPEG4</tt:Encoding><tt:Resolution><tt:Width>640</tt:Width></tt:Resolution>"
     "<tt:MPEG4><tt:GovLength>12</tt:GovLength><tt:Mpeg4Profile>ASP</tt:Mpeg4Profile></tt:MPEG4>"
     "</tt:VideoEncoderConfiguration></mdw:Profiles></mdw:GetProfilesResponse>",
     "<GetResponse><profiles><status>success</status><profile><token>P1</token><name>main</name>"
     "<videoSource><token>V1</token></videoSource><videoEncode><token>E1</token><EncodeName>one</EncodeName>"
     "<encode>H264</encode><resolution>1920*1080</resolution><quality>4.5</quality><frameRate>25</frameRate>"
     "<bitrate>4096</bitrate><IFrameInterval>50</IFrameInterval><profile>Main</profile></videoEncode>"
     "<PTZ><token>Z1</token></PTZ><audioEncoder><token>AE1</token></audioEncoder>"
     "<audioSource><token>AS1</token></audioSource><videoAnalytics><token>VA1</token></videoAnalytics></profile>"
     "<profile><token>P3</token><name>sub</name><videoEncode><token>E3</token><EncodeName>E3</EncodeName>"
     "<encode>MPEG4</encode><IFrameInterval>12</IFrameInterval><profile>ASP</profile></videoEncode></profile>"
     "</profiles></GetResponse>"},
    {"NoProfiles", &Profiles, "<mdw:GetProfilesResponse/>",
     "<GetResponse><profiles><status>success</status></profiles></GetResponse>"},
    {"Profile", &Profile,
     "<mdw:GetProfileResponse><mdw:Profile token=\"P1\"><tt:Name>main</tt:Name><tt:VideoSourceConfiguration>"
     "<tt:SourceToken>V1</tt:SourceToken></tt:VideoSourceConfiguration><tt:VideoEncoderConfiguration token=\"E1\">"
     "<tt:Name>one</tt:Name><tt:Encoding>JPEG</tt:Encoding><tt:Resolution><tt:Width>640</tt:Width>"
     "<tt:Height>480</tt:Height></tt:Resolution><tt:Quality>3</tt:Quality><tt:RateControl>"
     "<tt:FrameRateLimit>10</tt:FrameRateLimit><tt:EncodingInterval>2</tt:EncodingInterval>"
     "<tt:BitrateLimit>1000</tt:BitrateLimit></tt:RateControl><tt:SessionTimeout>PT10S</tt:SessionTimeout>"
     "</tt:VideoEncoderConfiguration><tt:PTZConfiguration token=\"Z1\"/></mdw:Profile></mdw:GetProfileResponse>",
     "<GetResponse><profile><item index=\"3\"><status>success</status><token>P1</token><videoSource>"
     "<token>V1</token></videoSource><videoEncode><token>E1</token><EncodeName>one</EncodeName><encode>JPEG</encode>"
     "<resolution>640*480</resolution><quality>3</quality><frameRate>10</frameRate><bitrate>1000</bitrate>"
     "<encodingInterval>2</encodingInterval><sessionTimeout>PT10S</sessionTimeout></videoEncode>"
     "<PTZ><token>Z1</token></PTZ></item></profile></GetResponse>"},
    {"ProfileWithoutEncoder", &Profile,
     "<mdw:GetProfileResponse><mdw:Profile token=\"P1\"/></mdw:GetProfileResponse>",
     "<GetResponse><profile><item index=\"3\"><status>success</status><token>P1</token></item></profile></GetResponse>"},
    {"EncoderFields", &Encoder,
     "<mdw:GetVideoEncoderConfigurationResponse><tt:Encoding>MPEG4</tt:Encoding><tt:Resolution><tt:Width>640</tt:Width>"
     "<tt:Height>480</tt:Height></tt:Resolution><tt:Quality>3</tt:Quality><tt:RateControl>"
     "<tt:FrameRateLimit>10</tt:FrameRateLimit><tt:BitrateLimit>1000</tt:BitrateLimit></tt:RateControl>"
     "<tt:H264><tt:GovLength>1</tt:GovLength></tt:H264><tt:MPEG4><tt:GovLength>12</tt:GovLength>"
     "<tt:Mpeg4Profile>SP</tt:Mpeg4Profile></tt:MPEG4></mdw:GetVideoEncoderConfigurationResponse>",
     "<GetResponse><videoEncoderCfg><item index=\"3\"><status>success</status><encode>MPEG4</encode>"
     "<IFrameInterval>12</IFrameInterval><profile>SP</profile><quality>3</quality><resolution>640*480</resolution>"
     "<frameRate>10</frameRate><bitrate>1000</bitrate></item></videoEncoderCfg></GetResponse>"},
    // What a device wraps in a configuration is not looked into.
    {"EncoderConfiguration", &Encoder,
     "<mdw:GetVideoEncoderConfigurationResponse><mdw:Configuration token=\"E1\"><tt:Encoding>H264</tt:Encoding>"
     "</mdw:Configuration></mdw:GetVideoEncoderConfigurationResponse>",
     "<GetResponse><videoEncoderCfg><item index=\"3\"><status>success</status></item></videoEncoderCfg></GetResponse>"},
    {"EncoderOptions", &EncoderOptions,
     "<mdw:GetVideoEncoderConfigurationOptionsResponse><mdw:Options><tt:QualityRange><tt:Min>1</tt:Min>"
     "<tt:Max>6</tt:Max></tt:QualityRange>"
     "<tt:JPEG><tt:ResolutionsAvailable><tt:Width>640</tt:Width><tt:Height>480</tt:Height></tt:ResolutionsAvailable>"
     "<tt:FrameRateRange><tt:Min>1</tt:Min><tt:Max>5</tt:Max></tt:FrameRateRange></tt:JPEG>"
     "<tt:MPEG4><tt:GovLengthRange><tt:Min>2</tt:Min><tt:Max>20</tt:Max></tt:GovLengthRange><tt:FrameRateRange>"
     "<tt:Min>3</tt:Min><tt:Max>30</tt:Max></tt:FrameRateRange><tt:Mpeg4ProfilesSupported>SP"
     "</tt:Mpeg4ProfilesSupported><tt:Mpeg4ProfilesSupported>ASP</tt:Mpeg4ProfilesSupported></tt:MPEG4>"
     "<tt:H264><tt:GovLengthRange><tt:Min>4</tt:Min><tt:Max>40</tt:Max></tt:GovLengthRange>"
     "<tt:H264ProfilesSupported>High</tt:H264ProfilesSupported></tt:H264>"
     "<tt:Extension><tt:JPEG><tt:BitrateRange><tt:Min>100</tt:Min><tt:Max>200</tt:Max></tt:BitrateRange></tt:JPEG>"
     "<tt:H264><tt:BitrateRange><tt:Min>300</tt:Min></tt:BitrateRange></tt:H264></tt:Extension></mdw:Options>"
     "</mdw:GetVideoEncoderConfigurationOptionsResponse>",
     "<GetResponse><videoEncoderCfgOpts><item index=\"3\"><status>success</status>"
     "<quality><min>1</min><max>6</max></quality><JPEG><resolution>640*480</resolution>"
     "<frameRate><min>1</min><max>5</max></frameRate><bitrate><min>100</min><max>200</max></bitrate></JPEG>"
     "<H264><resolution>0*0</resolution><IFrameInterval><min>4</min><max>40</max></IFrameInterval>"
     "<profilesSupport>High</profilesSupport><bitrate><min>300</min><max>12288</max></bitrate></H264>"
     "<MPEG4><frameRate><min>3</min><max>30</max></frameRate><IFrameInterval><min>2</min><max>20</max></IFrameInterval>"
     "<profilesSupport>SP</profilesSupport><profilesSupport>ASP</profilesSupport>"
     "<bitrate><min>64</min><max>12288</max></bitrate></MPEG4></item></videoEncoderCfgOpts></GetResponse>"},
    {"SetEncoder", &Xml::TransSetVideoEncoderConfiguration, "<mdw:SetVideoEncoderConfigurationResponse/>",
     "<SetResponse><videoEncodeCfg><status>success</status></videoEncodeCfg></SetResponse>"},
    {"StreamUri", &Xml::TransGetStreamUri,
     "<mdw:GetStreamUriResponse><mdw:MediaUri><tt:Uri>rtsp://10.0.0.1:554/a?b=1&amp;c=2</tt:Uri></mdw:MediaUri>"
     "</mdw:GetStreamUriResponse>",
     "<GetResponse><streamURI><status>success</status><uri>rtsp://10.0.0.1:554/a?b=1&amp;c=2</uri></streamURI>"
     "</GetResponse>"},
    {"SnapshotUri", &Snapshot,
     "<mdw:GetSnapshotUriResponse><mdw:MediaUri><tt:Uri>http://10.0.0.1/a.jpg</tt:Uri></mdw:MediaUri>"
     "</mdw:GetSnapshotUriResponse>",
     "<GetResponse><snapshotURI><status>success</status><uri>http://10.0.0.1/a.jpg</uri></snapshotURI></GetResponse>"},

    // Imaging.
    {"ImgSettings", &Xml::TransGetImgSettings,
     "<img:GetImagingSettingsResponse><img:ImagingSettings><tt:BacklightCompensation><tt:Mode>ON</tt:Mode>"
     "</tt:BacklightCompensation><tt:Brightness>1</tt:Brightness><tt:ColorSaturation>2</tt:ColorSaturation>"
     "<tt:Contrast>3</tt:Contrast><tt:Exposure><tt:Mode>AUTO</tt:Mode><tt:Iris>-4</tt:Iris></tt:Exposure>"
     "<tt:IrCutFilter>AUTO</tt:IrCutFilter><tt:Sharpness>5</tt:Sharpness><tt:WideDynamicRange><tt:Mode>ON</tt:Mode>"
     "<tt:Level>6</tt:Level></tt:WideDynamicRange><tt:WhiteBalance><Mode>MANUAL</Mode><tt:CrGain>7</tt:CrGain>"
     "<tt:CbGain>8</tt:CbGain></tt:WhiteBalance></img:ImagingSettings></img:GetImagingSettingsResponse>",
     "<GetResponse><imageSettings><status>success</status><brightness>1</brightness><contrast>3</contrast>"
     "<saturation>2</saturation><backlightCompensation>ON</backlightCompensation><nightVision>AUTO</nightVision>"
     "<sharpness>5</sharpness><iris>-4</iris><wideDynamic><mode>ON</mode><val>6</val></wideDynamic>"
     "<whiteBalance><mode>MANUAL</mode><crGain>7</crGain><cbGain>8</cbGain></whiteBalance></imageSettings>"
     "</GetResponse>"},
    // The mode of the white balance is looked for without a prefix, so one with a prefix is not seen.
    {"ImgSettingsWithPrefixedMode", &Xml::TransGetImgSettings,
     "<img:GetImagingSettingsResponse><img:ImagingSettings><tt:WideDynamicRange><tt:Mode>OFF</tt:Mode>"
     "</tt:WideDynamicRange><tt:WhiteBalance><tt:Mode>AUTO</tt:Mode></tt:WhiteBalance></img:ImagingSettings>"
     "</img:GetImagingSettingsResponse>",
     "<GetResponse><imageSettings><status>success</status><wideDynamic><mode>OFF</mode></wideDynamic>"
     "<whiteBalance></whiteBalance></imageSettings></GetResponse>"},
    {"ImgOptions", &Xml::TransGetImgOptions,
     "<img:GetOptionsResponse><img:ImagingOptions><tt:BacklightCompensation><tt:Mode>OFF</tt:Mode><tt:Mode>ON</tt:Mode>"
     "<tt:Level><tt:Min>0</tt:Min></tt:Level></tt:BacklightCompensation><tt:Brightness><tt:Min>0</tt:Min>"
     "<tt:Max>255</tt:Max></tt:Brightness><tt:ColorSaturation><tt:Min>1</tt:Min><tt:Max>2</tt:Max></tt:ColorSaturation>"
     "<tt:Contrast><tt:Min>3</tt:Min><tt:Max>4</tt:Max></tt:Contrast><tt:Exposure><tt:Iris><tt:Min>-9</tt:Min>"
     "<tt:Max>0</tt:Max></tt:Iris></tt:Exposure><tt:IrCutFilterModes>ON</tt:IrCutFilterModes>"
     "<tt:IrCutFilterModes>AUTO</tt:IrCutFilterModes><tt:Sharpness><tt:Min>5</tt:Min><tt:Max>6</tt:Max></tt:Sharpness>"
     "<tt:WideDynamicRange><tt:Mode>ON</tt:Mode><tt:Level><tt:Min>7</tt:Min><tt:Max>8</tt:Max></tt:Level>"
     "</tt:WideDynamicRange><tt:WhiteBalance><tt:Mode>AUTO</tt:Mode><tt:YrGain><tt:Min>9</tt:Min><tt:Max>10</tt:Max>"
     "</tt:YrGain><tt:YbGain><tt:Min>11</tt:Min><tt:Max>12</tt:Max></tt:YbGain></tt:WhiteBalance>"
     "</img:ImagingOptions></img:GetOptionsResponse>",
     "<GetResponse><imageOpts><status>success</status><brightness><min>0</min><max>255</max></brightness>"
     "<contrast><min>3</min><max>4</max></contrast><saturation><min>1</min><max>2</max></saturation>"
     "<sharpness><min>5</min><max>6</max></sharpness><backlightCompensation><mode>OFF</mode><mode>ON</mode>"
     "</backlightCompensation><nightVision><mode>ON</mode><mode>AUTO</mode></nightVision><wideDynamic><mode>ON</mode>"
     "<min>7</min><max>8</max></wideDynamic><whiteBalance><mode>AUTO</mode><yrGain><min>9</min><max>10</max></yrGain>"
     "<ybGain><min>11</min><max>12</max></ybGain></whiteBalance><iris><min>-9</min><max>0</max></iris></imageOpts>"
     "</GetResponse>"},
    {"ImgOptionsFew", &Xml::TransGetImgOptions,
     "<img:GetOptionsResponse><img:ImagingOptions><tt:WideDynamicRange><tt:Level><tt:Max>8</tt:Max></tt:Level>"
     "</tt:WideDynamicRange><tt:WhiteBalance><tt:YbGain><tt:Min>1</tt:Min></tt:YbGain></tt:WhiteBalance>"
     "</img:ImagingOptions></img:GetOptionsResponse>",
     "<GetResponse><imageOpts><status>success</status><wideDynamic><max>8</max></wideDynamic>"
     "<whiteBalance><ybGain><min>1</min></ybGain></whiteBalance></imageOpts></GetResponse>"},
    {"SetImgSettings", &Xml::TransSetImgSettings, "<img:SetImagingSettingsResponse/>",
     "<SetResponse><imageSettings><status>success</status></imageSettings></SetResponse>"},
    {"ImgStop", &Xml::TransImgStop, "<img:StopResponse/>",
     "<SetResponse><imageStop><status>success</status></imageStop></SetResponse>"},
    {"ContinuousFocus", &Xml::TransContinuousFocus, "<img:MoveResponse/>",
     "<SetResponse><continuousFocus><status>success</status></continuousFocus></SetResponse>"},

    // PTZ and cruises.
    {"ContinuousMove", &Xml::TransContinuousMove, "<ptzw:ContinuousMoveResponse/>",
     "<SetResponse><continuousMove><status>success</status></continuousMove></SetResponse>"},
    {"Presets", &Xml::TransGetPresets,
     "<ptzw:GetPresetsResponse><ptzw:Preset token=\"1\"><tt:Name>door</tt:Name></ptzw:Preset><ptzw:Preset token=\"2\"/>"
     "<ptzw:Preset><tt:Name>gate</tt:Name></ptzw:Preset></ptzw:GetPresetsResponse>",
     "<GetResponse><presets><status>success</status><item><token>1</token><name>door</name></item><item>"
     "<token>2</token></item><item><name>gate</name></item></presets></GetResponse>"},
    {"AddPreset", &Xml::TransAddPreset,
     "<ptzw:SetPresetResponse><ptzw:PresetToken>7</ptzw:PresetToken></ptzw:SetPresetResponse>",
     "<SetResponse><addPreset><status>success</status><token>7</token></addPreset></SetResponse>"},
    {"ModifyPresetName", &Xml::TransModifyPresetName, "<ptzw:SetPresetResponse/>",
     "<SetResponse><modifyPresetName><status>success</status></modifyPresetName></SetResponse>"},
    {"RemovePreset", &Xml::TransRemovePreset, "<ptzw:RemovePresetResponse/>",
     "<SetResponse><removePreset><status>success</status></removePreset></SetResponse>"},
    {"AddCruise", &Xml::TransAddPresetTour,
     "<ptzw:CreatePresetTourResponse><ptzw:PresetTourToken>7</ptzw:PresetTourToken></ptzw:CreatePresetTourResponse>",
     "<SetResponse><addCruise><status>success</status><token>7</token></addCruise></SetResponse>"},
    {"Cruises", &Xml::TransGetCruises,
     "<ptzw:GetPresetToursResponse><ptzw:PresetTour tt:token=\"T1\" token=\"other\"><tt:Name>night</tt:Name>"
     "<tt:TourSpot><tt:PresetDetail><tt:PresetToken>1</tt:PresetToken></tt:PresetDetail><tt:Speed>"
     "<tt:PanTilt x=\"0.25\" y=\"0.5\"/></tt:Speed><tt:StayTime>PT5S</tt:StayTime></tt:TourSpot>"
     "<tt:TourSpot><tt:Speed><tt:PanTilt x=\"1.0\" y=\"-2\"/></tt:Speed><tt:StayTime>PT1M30S</tt:StayTime></tt:TourSpot>"
     "<tt:TourSpot><tt:Speed><tt:Zoom x=\"0.5\"/></tt:Speed><tt:StayTime>soon</tt:StayTime></tt:TourSpot>"
     "<tt:TourSpot/></ptzw:PresetTour><ptzw:PresetTour token=\"T2\"/><ptzw:PresetTour/></ptzw:GetPresetToursResponse>",
     "<GetResponse><cruises><status>success</status><item><token>T1</token><name>night</name><presets>"
     "<item><presetToken>1</presetToken><time>5</time><speed>0.5</speed></item>"
     "<item><time>1</time><speed>1.0</speed></item><item><time>0</time><speed></speed></item><item></item></presets>"
     "</item><item><token>T2</token><name></name></item><item><name></name></item></cruises></GetResponse>"},

    // Motion, relays and digital inputs.
    {"Modules", &Modules,
     "<ana:GetAnalyticsModulesResponse><ana:AnalyticsModule Name=\"Cells\" Type=\"tt:CellMotionEngine\"><tt:Parameters>"
     "<tt:SimpleItem Name=\"Other\" Value=\"1\"/><tt:SimpleItem Name=\"Sensitivity\" Value=\"60\"/>"
     "<tt:ElementItem Name=\"Other\"/><tt:ElementItem Name=\"Layout\"><tt:CellLayout Columns=\"22\" Rows=\"18\">"
     "<tt:Transformation/></tt:CellLayout></tt:ElementItem></tt:Parameters></ana:AnalyticsModule>"
     "<ana:AnalyticsModule Name=\"Second\"/></ana:GetAnalyticsModulesResponse>",
     "<GetResponse><motion><status>success</status><name>Cells</name><sensitivity min=\"0\" max=\"100\">60"
     "</sensitivity><columns>22</columns><rows>18</rows></motion></GetResponse>"},
    // The first module is taken, of whatever type.
    {"ModulesOfAnotherType", &Modules,
     "<ana:GetAnalyticsModulesResponse><ana:AnalyticsModule Name=\"Tamper\" Type=\"tt:Tamper\"/>"
     "<ana:AnalyticsModule Name=\"Cells\"><tt:Parameters><tt:SimpleItem Name=\"Sensitivity\" Value=\"60\"/>"
     "</tt:Parameters></ana:AnalyticsModule></ana:GetAnalyticsModulesResponse>",
     "<GetResponse><motion><status>success</status><name>Tamper</name></motion></GetResponse>"},
    // 2, 0xab, 0xcd, 0x80: 10101011 11001101 10
    {"Rules", &Rules,
     "<ana:GetRulesResponse><ana:Rule Name=\"Motion\" Type=\"tt:CellMotionDetector\"><tt:Parameters>"
     "<tt:SimpleItem Name=\"MinCount\" Value=\"4\"/><tt:SimpleItem Name=\"ActiveCells\" Value=\"AqvNgA==\"/>"
     "</tt:Parameters></ana:Rule></ana:GetRulesResponse>",
     "<GetResponse><motion><status>success</status><columns>6</columns><rows>3</rows><area><name>Motion</name>"
     "<item index=\"0\">101010</item><item index=\"1\">111100</item><item index=\"2\">110110</item></area></motion>"
     "</GetResponse>"},
    // One byte of cells where three are due: the rest reads 0.
    {"RulesWithFewCells", &Rules,
     "<ana:GetRulesResponse><ana:Rule><tt:Parameters><tt:SimpleItem Name=\"ActiveCells\" Value=\"AP8=\"/>"
     "</tt:Parameters></ana:Rule></ana:GetRulesResponse>",
     "<GetResponse><motion><status>success</status><columns>6</columns><rows>3</rows><area>"
     "<item index=\"0\">111111</item><item index=\"1\">110000</item><item index=\"2\">000000</item></area></motion>"
     "</GetResponse>"},
    {"RulesWithGarbage", &Rules,
     "<ana:GetRulesResponse><ana:Rule Name=\"Motion\"><tt:Parameters><tt:SimpleItem Name=\"ActiveCells\" "
     "Value=\"?!\"/></tt:Parameters></ana:Rule></ana:GetRulesResponse>",
     "<GetResponse><motion><status>success</status><columns>6</columns><rows>3</rows><area><name>Motion</name></area>"
     "</motion></GetResponse>"},
    {"RulesWithoutActiveCells", &Rules,
     "<ana:GetRulesResponse><ana:Rule Name=\"Line\"><tt:Parameters><tt:SimpleItem Name=\"MinCount\" Value=\"4\"/>"
     "</tt:Parameters></ana:Rule></ana:GetRulesResponse>",
     "<GetResponse><motion><status>success</status><columns>6</columns><rows>3</rows></motion></GetResponse>"},
    {"SetModules", &Xml::TransSetAnalyticsModules, "<ana:ModifyAnalyticsModulesResponse/>",
     "<SetResponse><motion><status>success</status></motion></SetResponse>"},
    {"SetRules", &Xml::TransSetRules, "<ana:ModifyRulesResponse/>",
     "<SetResponse><motion><area><status>success</status></area></motion></SetResponse>"},
    {"RelayOutputs", &Xml::TransGetRelayOutputs,
     "<tds:GetRelayOutputsResponse><tds:RelayOutputs token=\"R1\"><tt:Properties><tt:Mode>Monostable</tt:Mode>"
     "<tt:DelayTime>PT10S</tt:DelayTime><tt:IdleState>closed</tt:IdleState></tt:Properties></tds:RelayOutputs>"
     "<tds:RelayOutputs token=\"R2\"><tt:Properties><tt:DelayTime>PT0S</tt:DelayTime><tt:IdleState>open</tt:IdleState>"
     "</tt:Properties></tds:RelayOutputs><tds:RelayOutputs token=\"R3\"><tt:Properties><tt:DelayTime>soon"
     "</tt:DelayTime></tt:Properties></tds:RelayOutputs><tds:RelayOutputs/></tds:GetRelayOutputsResponse>",
     "<GetResponse><alarmout><status>success</status><alarm><token>R1</token><delayTime>10</delayTime>"
     "<switch>off</switch></alarm><alarm><token>R2</token><delayTime>4294967295</delayTime><switch>on</switch></alarm>"
     "<alarm><token>R3</token><delayTime>4294967295</delayTime></alarm><alarm></alarm></alarmout></GetResponse>"},
    {"SetRelayOutputs", &Xml::TransSetRelayOutputs, "<tds:SetRelayOutputSettingsResponse/>",
     "<SetResponse><alarmout><status>success</status></alarmout></SetResponse>"},
    {"SetRelayOutputState", &Xml::TransSetRelayOutputState, "<tds:SetRelayOutputStateResponse/>",
     "<SetResponse><manualAlarmout><status>success</status></manualAlarmout></SetResponse>"},
    {"DigitalInputs", &Xml::TransGetDigitalInputs,
     "<dio:GetDigitalInputsResponse><dio:DigitalInputs token=\"I1\"/><dio:DigitalInputs token=\"I2\"/>"
     "<dio:DigitalInputs/></dio:GetDigitalInputsResponse>",
     "<GetResponse><alarmin><status>success</status><token>I1</token><token>I2</token></alarmin></GetResponse>"},
};
// clang-format on

std::vector<Case> AllCases()
{
    std::vector<Case> cases;
    for (const Maker& maker : Makers())
    {
        for (const AnswerCase& answer : ANSWER_CASES)
        {
            cases.push_back({answer, maker});
        }
    }
    return cases;
}

INSTANTIATE_TEST_SUITE_P(Answers, XmlTransformGolden, testing::ValuesIn(AllCases()),
                         [](const testing::TestParamInfo<Case>& one)
                         { return std::string(one.param.answer.name) + one.param.maker.name; });
