// What the transforms keep besides the host's answer, and answers that are not as they should be.
#include "XmlTransform.h"

#include "DeviceAnswer.h"

#include <gtest/gtest.h>

namespace
{

using Xml = CXmlTransform;

std::string Profile(const std::string& token, const std::string& inner)
{
    return "<mdw:Profiles token=\"" + token + "\">" + inner + "</mdw:Profiles>";
}

std::string Encoder(const std::string& token, const std::string& name)
{
    return "<tt:VideoEncoderConfiguration token=\"" + token + "\">" +
           (name.empty() ? "" : "<tt:Name>" + name + "</tt:Name>") + "</tt:VideoEncoderConfiguration>";
}

std::vector<ONVIF_PROFILE_TOKEN> ReadProfiles(const std::string& profiles, std::string& answer)
{
    std::vector<ONVIF_PROFILE_TOKEN> records;
    EXPECT_EQ(ONVIF_OK,
              Xml::TransGetProfiles(DeviceAnswer("<mdw:GetProfilesResponse>" + profiles + "</mdw:GetProfilesResponse>"),
                                    answer, records));
    return records;
}

std::string Range(const std::string& name, const std::string& min, const std::string& max)
{
    return "<tt:" + name + "><tt:Min>" + min + "</tt:Min><tt:Max>" + max + "</tt:Max></tt:" + name + ">";
}

std::string PtzOptions(const std::string& spaces)
{
    return DeviceAnswer("<ptzw:GetConfigurationOptionsResponse><ptzw:PTZConfigurationOptions><tt:Spaces>" + spaces +
                        "</tt:Spaces></ptzw:PTZConfigurationOptions></ptzw:GetConfigurationOptionsResponse>");
}

std::string PanTilt(const std::string& min, const std::string& max)
{
    return "<tt:ContinuousPanTiltVelocitySpace>" + Range("XRange", min, max) + Range("YRange", "-3", "4") +
           "</tt:ContinuousPanTiltVelocitySpace>";
}

std::string Zoom()
{
    return "<tt:ContinuousZoomVelocitySpace>" + Range("XRange", "-5", "6") + "</tt:ContinuousZoomVelocitySpace>";
}

std::string FocusOptions(const std::string& inner)
{
    return DeviceAnswer("<img:GetMoveOptionsResponse><img:MoveOptions><tt:Continuous>" + inner +
                        "</tt:Continuous></img:MoveOptions></img:GetMoveOptionsResponse>");
}

std::string Rule(const std::string& name, const std::string& cells)
{
    return DeviceAnswer("<ana:GetRulesResponse><ana:Rule Name=\"" + name +
                        "\"><tt:Parameters><tt:SimpleItem Name=\"ActiveCells\" Value=\"" + cells +
                        "\"/></tt:Parameters></ana:Rule></ana:GetRulesResponse>");
}

std::string MotionAnswer(const std::string& columns, const std::string& rows)
{
    return "<GetResponse><motion><columns>" + columns + "</columns><rows>" + rows + "</rows></motion></GetResponse>";
}

std::string Relay(const std::string& properties)
{
    return DeviceAnswer("<tds:GetRelayOutputsResponse><tds:RelayOutputs token=\"R1\"><tt:Properties>" + properties +
                        "</tt:Properties></tds:RelayOutputs></tds:GetRelayOutputsResponse>");
}

} // namespace

TEST(XmlTransformMedia, KeepsTheTokensOfEachProfileWithAnEncoder)
{
    std::string answer;
    const auto records = ReadProfiles(
        Profile("P1", "<tt:VideoSourceConfiguration><tt:SourceToken>V1</tt:SourceToken></tt:VideoSourceConfiguration>" +
                          Encoder("E1", "main") +
                          "<tt:VideoAnalyticsConfiguration token=\"A1\"/>"
                          "<tt:PTZConfiguration token=\"Z1\"/>") +
            Profile("P2", "") + Profile("P3", Encoder("E3", "")),
        answer);
    ASSERT_EQ(2U, records.size());
    EXPECT_STREQ("P1", records[0].profileToken);
    EXPECT_STREQ("V1", records[0].videoSourceToken);
    EXPECT_STREQ("E1", records[0].videoEncoderToken);
    EXPECT_STREQ("Z1", records[0].ptzToken);
    EXPECT_STREQ("A1", records[0].videoAnalyticsToken);
    EXPECT_STREQ("", records[0].motionModuleName);
    EXPECT_STREQ("", records[0].motionRuleName);
    EXPECT_STREQ("main", records[0].encodeName);
    EXPECT_STREQ("P3", records[1].profileToken);
    EXPECT_STREQ("", records[1].videoSourceToken);
    EXPECT_STREQ("E3", records[1].encodeName);
}

TEST(XmlTransformMedia, CutsLongTextsInTheRecordAndNotInTheAnswer)
{
    for (const std::size_t length : {63U, 64U, 10000U})
    {
        const std::string text(length, 'x');
        std::string answer;
        const auto records = ReadProfiles(Profile(text, Encoder(text, text)), answer);
        ASSERT_EQ(1U, records.size());
        const std::string kept(63, 'x');
        EXPECT_EQ(kept, records[0].profileToken);
        EXPECT_EQ(kept, records[0].videoEncoderToken);
        EXPECT_EQ(kept, records[0].encodeName);
        EXPECT_NE(std::string::npos, answer.find("<EncodeName>" + text + "</EncodeName>"));
    }
}

TEST(XmlTransformMedia, LeavesTheProfilesAloneOnAFault)
{
    std::string answer;
    std::vector<ONVIF_PROFILE_TOKEN> records(1);
    EXPECT_EQ(ONVIF_FAULT, Xml::TransGetProfiles(DeviceFault(), answer, records));
    EXPECT_EQ(1U, records.size());
}

// Devices leave out the prefix of the response, or have an envelope that is not known as SOAP 1.2.
TEST(XmlTransformMedia, ReadsResponsesWithoutPrefixAndInOldEnvelopes)
{
    const std::string profile = Profile("P1", Encoder("E1", "main"));
    std::string plain = DeviceAnswer("<GetProfilesResponse>" + profile + "</GetProfilesResponse>");
    std::string old =
        WithPrefix(DeviceAnswer("<mdw:GetProfilesResponse>" + profile + "</mdw:GetProfilesResponse>"), "s", "SOAP-ENV");
    old.replace(old.find("http://www.w3.org/2003/05/soap-envelope"), 39, "http://schemas.xmlsoap.org/soap/envelope/");
    for (const std::string& soap : {plain, old})
    {
        std::string answer;
        std::vector<ONVIF_PROFILE_TOKEN> records;
        EXPECT_EQ(ONVIF_OK, Xml::TransGetProfiles(soap, answer, records));
        EXPECT_EQ(1U, records.size()) << soap;
    }
}

TEST(XmlTransformMedia, ReadsUrisWithoutPrefixAndInOldEnvelopes)
{
    const std::string uri = "<mdw:MediaUri><tt:Uri>rtsp://a/</tt:Uri></mdw:MediaUri>";
    std::string old =
        WithPrefix(DeviceAnswer("<mdw:GetStreamUriResponse>" + uri + "</mdw:GetStreamUriResponse>"), "s", "SOAP-ENV");
    old.replace(old.find("http://www.w3.org/2003/05/soap-envelope"), 39, "http://schemas.xmlsoap.org/soap/envelope/");
    for (const std::string& soap : {DeviceAnswer("<GetStreamUriResponse>" + uri + "</GetStreamUriResponse>"), old})
    {
        std::string answer;
        Xml::TransGetStreamUri(soap, answer);
        EXPECT_NE(std::string::npos, answer.find("<uri>rtsp://a/</uri>")) << soap;
    }
}

TEST(XmlTransformMedia, ReadsThousandsOfProfiles)
{
    std::string profiles;
    for (int i = 0; i < 3000; ++i)
    {
        profiles += Profile("P", Encoder("E", ""));
    }
    std::string answer;
    EXPECT_EQ(3000U, ReadProfiles(profiles, answer).size());
}

TEST(XmlTransformMedia, AddsToTheAnswerSoFar)
{
    std::string answer;
    Xml::TransGetProfile(DeviceAnswer("<mdw:GetProfileResponse/>"), answer, 0);
    Xml::TransGetProfile(DeviceFault(), answer, 1);
    EXPECT_EQ(std::string("<GetResponse><profile><item index=\"0\"><status>success</status></item><item index=\"1\">") +
                  FAULT_STATUS + "</item></profile></GetResponse>",
              InShort(answer));
}

TEST(XmlTransformMedia, HandsOverTheAddressOfAPicture)
{
    std::string answer;
    std::string uri = "old";
    Xml::TransGetSnapshotUri(DeviceAnswer("<mdw:GetSnapshotUriResponse/>"), answer, uri);
    EXPECT_EQ("", uri);
    Xml::TransGetSnapshotUri(
        DeviceAnswer("<mdw:GetSnapshotUriResponse><mdw:MediaUri><tt:Uri>http://10.0.0.1:80/a</tt:Uri>"
                     "</mdw:MediaUri></mdw:GetSnapshotUriResponse>"),
        answer, uri);
    EXPECT_EQ("http://10.0.0.1:80/a", uri);
}

// The conventional prefix is read too when its namespace is one that nobody knows.
TEST(XmlTransformImaging, ReadsAnUnknownNamespaceUnderItsConventionalPrefix)
{
    for (const char* response : {"GetImagingSettingsResponse", "GetOptionsResponse"})
    {
        const bool isSettings = response == std::string("GetImagingSettingsResponse");
        std::string soap = DeviceAnswer(
            std::string("<img:") + response + "><img:" + (isSettings ? "ImagingSettings" : "ImagingOptions") +
            "><tt:Brightness>1<tt:Min>2</tt:Min></tt:Brightness></img:" +
            (isSettings ? "ImagingSettings" : "ImagingOptions") + "></img:" + response + ">");
        soap = WithPrefix(soap, "img", "timg");
        soap.replace(soap.find("ver20/imaging/wsdl"), 18, "ver30/imaging/wsd2");
        std::string answer;
        (isSettings ? Xml::TransGetImgSettings : Xml::TransGetImgOptions)(soap, answer);
        EXPECT_NE(std::string::npos, answer.find(isSettings ? "<brightness>1" : "<min>2</min>")) << answer;
    }
}

TEST(XmlTransformImaging, ReadsTheWholeNumbersOfAFocusRange)
{
    ONVIF_RANGE range{9, 9};
    EXPECT_EQ(ONVIF_OK, Xml::TransGetImgMoveOption(FocusOptions(Range("Speed", "-7.9", "7.9")), &range));
    EXPECT_EQ(-7, range.min);
    EXPECT_EQ(7, range.max);
    EXPECT_EQ(ONVIF_OK, Xml::TransGetImgMoveOption(FocusOptions(Range("Speed", "slow", "")), &range));
    EXPECT_EQ(0, range.min);
    EXPECT_EQ(0, range.max);
}

TEST(XmlTransformImaging, HasNoFocusRangeOfADeviceWithoutOne)
{
    ONVIF_RANGE range{};
    EXPECT_NE(ONVIF_OK, Xml::TransGetImgMoveOption(DeviceFault(), &range));
    EXPECT_NE(ONVIF_OK, Xml::TransGetImgMoveOption(FocusOptions(""), &range));
    EXPECT_NE(ONVIF_OK, Xml::TransGetImgMoveOption(FocusOptions("<tt:Speed><tt:Min>1</tt:Min></tt:Speed>"), &range));
    EXPECT_NE(ONVIF_OK, Xml::TransGetImgMoveOption("", &range));
}

TEST(XmlTransformPtz, ReadsTheWholeNumbersOfTheRanges)
{
    ONVIF_PTZ_VELOCITY velocity{};
    EXPECT_EQ(ONVIF_OK, Xml::TransGetPTZCfgOptions(PtzOptions(PanTilt("-1.0", "1.0") + Zoom()), &velocity));
    EXPECT_EQ(-1, velocity.panMin);
    EXPECT_EQ(1, velocity.panMax);
    EXPECT_EQ(-3, velocity.tiltMin);
    EXPECT_EQ(4, velocity.tiltMax);
    EXPECT_EQ(-5, velocity.zoomMin);
    EXPECT_EQ(6, velocity.zoomMax);
}

// Half a unit is cut to none: such a camera is told velocities of 0.
TEST(XmlTransformPtz, ReadsAFractionAsNothing)
{
    ONVIF_PTZ_VELOCITY velocity{};
    EXPECT_EQ(ONVIF_OK, Xml::TransGetPTZCfgOptions(PtzOptions(PanTilt("-0.5", "0.5") + Zoom()), &velocity));
    EXPECT_EQ(0, velocity.panMin);
    EXPECT_EQ(0, velocity.panMax);
}

TEST(XmlTransformPtz, HasNoRangesOfADeviceThatLacksSome)
{
    ONVIF_PTZ_VELOCITY velocity{};
    EXPECT_NE(ONVIF_OK, Xml::TransGetPTZCfgOptions(DeviceFault(), &velocity));
    EXPECT_NE(ONVIF_OK, Xml::TransGetPTZCfgOptions(PtzOptions(PanTilt("-1", "1")), &velocity));
    EXPECT_NE(ONVIF_OK, Xml::TransGetPTZCfgOptions(PtzOptions(Zoom()), &velocity));
    EXPECT_NE(ONVIF_OK, Xml::TransGetPTZCfgOptions(DeviceAnswer("<ptzw:GetConfigurationOptionsResponse/>"), &velocity));
    EXPECT_NE(ONVIF_OK, Xml::TransGetPTZCfgOptions("no document", &velocity));
}

TEST(XmlTransformPtz, ReadsPresetsInOldEnvelopes)
{
    std::string soap = WithPrefix(
        DeviceAnswer("<ptzw:GetPresetsResponse><ptzw:Preset token=\"1\"/></ptzw:GetPresetsResponse>"), "s", "SOAP-ENV");
    soap.replace(soap.find("http://www.w3.org/2003/05/soap-envelope"), 39, "http://schemas.xmlsoap.org/soap/envelope/");
    std::string answer;
    Xml::TransGetPresets(soap, answer);
    EXPECT_NE(std::string::npos, answer.find("<token>1</token>"));
}

TEST(XmlTransformMotion, KeepsTheNamesOfModuleAndRule)
{
    std::string answer;
    char module[64] = "old";
    char rule[64] = "old";
    Xml::TransGetAnalyticsModules(DeviceAnswer("<ana:GetAnalyticsModulesResponse/>"), answer, module);
    EXPECT_STREQ("old", module);
    const std::string longName(10000, 'n');
    Xml::TransGetAnalyticsModules(DeviceAnswer("<ana:GetAnalyticsModulesResponse><ana:AnalyticsModule Name=\"" +
                                               longName + "\"/></ana:GetAnalyticsModulesResponse>"),
                                  answer, module);
    EXPECT_EQ(std::string(63, 'n'), module);
    answer = MotionAnswer("8", "1");
    Xml::TransGetRules(Rule("", "AP8="), answer, rule);
    EXPECT_STREQ("old", rule);
    Xml::TransGetRules(Rule(longName, "AP8="), answer, rule);
    EXPECT_EQ(std::string(63, 'n'), rule);
}

TEST(XmlTransformMotion, ReadsNoRuleWithoutItsModule)
{
    for (const std::string& before : {std::string(), std::string("<GetResponse><dns/></GetResponse>")})
    {
        std::string answer = before;
        char rule[64] = {};
        Xml::TransGetRules(Rule("Motion", "AP8="), answer, rule);
        EXPECT_EQ(before, answer);
        EXPECT_STREQ("", rule);
    }
    std::string answer = "<GetResponse><motion><columns>8</columns></motion></GetResponse>";
    char rule[64] = {};
    Xml::TransGetRules(Rule("Motion", "AP8="), answer, rule);
    EXPECT_EQ(std::string::npos, answer.find("area"));
}

struct GridSideCase
{
    const char* columns;
    const char* rows;
    bool isRead;
};

class XmlTransformGrid : public testing::TestWithParam<GridSideCase>
{
};

TEST_P(XmlTransformGrid, IsReadWhenNoSideIsBeyondAllCameras)
{
    std::string answer = MotionAnswer(GetParam().columns, GetParam().rows);
    char rule[64] = {};
    Xml::TransGetRules(Rule("Motion", "AP8="), answer, rule);
    EXPECT_EQ(GetParam().isRead, answer.find("<item ") != std::string::npos);
    EXPECT_STREQ("Motion", rule);
}

// clang-format off
const GridSideCase GRID_CASES[] = {
    {"1",          "1",          false}, // one byte of room for a packed form of two
    {"2",          "1",          true },
    {"1024",       "1024",       true },
    {"1025",       "1",          false},
    {"1",          "1025",       false},
    {"0",          "8",          false},
    {"8",          "0",          false},
    {"-8",         "8",          false},
    {"8",          "-8",         false},
    {"2147483647", "2147483647", false},
    {"65536",      "65536",      false},
    {"many",       "8",          false},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Sides, XmlTransformGrid, testing::ValuesIn(GRID_CASES));

TEST(XmlTransformMotion, TellsAFaultOfTheRuleBehindTheModulesStatus)
{
    std::string answer = "<GetResponse><motion><status>success</status></motion></GetResponse>";
    char rule[64] = {};
    Xml::TransGetRules(DeviceFault(), answer, rule);
    EXPECT_EQ(std::string("<GetResponse><motion><status>success</status>") + FAULT_STATUS + "</motion></GetResponse>",
              InShort(answer));
}

TEST(XmlTransformMotion, ReadsRelaysUnderThePrefixOfTheDeviceIoService)
{
    std::string soap = Relay("<tt:IdleState>open</tt:IdleState>");
    soap = WithPrefix(soap, "tds", "tmd");
    soap.replace(soap.find("<tmd:RelayOutputs "), 18, "<tds:RelayOutputs ");
    soap.replace(soap.find("</tmd:RelayOutputs>"), 19, "</tds:RelayOutputs>");
    soap.replace(soap.find("xmlns:tmd=\"http://www.onvif.org/ver10/device/wsdl\""), 50, "");
    std::string answer;
    Xml::TransGetRelayOutputs(soap, answer);
    EXPECT_NE(std::string::npos, answer.find("<switch>on</switch>")) << answer;
}

TEST(XmlTransformMotion, TellsALongDelayAsTheLargestNumber)
{
    std::string answer;
    Xml::TransGetRelayOutputs(Relay("<tt:DelayTime>P100000D</tt:DelayTime>"), answer);
    EXPECT_NE(std::string::npos, answer.find("<delayTime>4294967295</delayTime>")) << answer;
}

// A relay that is neither closed nor open when idle is not to be driven: the process ends.
TEST(XmlTransformMotionDeathTest, EndsTheProcessOnAnUnknownIdleState)
{
    std::string answer;
    EXPECT_DEATH(Xml::TransGetRelayOutputs(Relay("<tt:IdleState>ajar</tt:IdleState>"), answer), "closed");
    EXPECT_DEATH(Xml::TransGetRelayOutputs(Relay("<tt:IdleState/>"), answer), "closed");
}

TEST(XmlTransformMotion, AddsNothingForAMissingIdleState)
{
    std::string answer;
    Xml::TransGetRelayOutputs(Relay(""), answer);
    EXPECT_EQ(
        "<GetResponse><alarmout><status>success</status><alarm><token>R1</token></alarm></alarmout></GetResponse>",
        InShort(answer));
}
