// The tables of keys: which operations a key brings to the camera, with which token, and what the host gets.
#include "HttpClient.h"
#include "OnvifFixture.h"

#include <gmock/gmock.h>

#include <cstring>

using testing::ElementsAre;

namespace
{

constexpr int ALL_DIGITS = 64;

void Fill(char (&field)[ALL_DIGITS], const char* text)
{
    std::snprintf(field, sizeof(field), "%s", text);
}

ONVIF_PROFILE_TOKEN Profile(const std::string& number)
{
    ONVIF_PROFILE_TOKEN profile{};
    Fill(profile.profileToken, ("profile" + number).c_str());
    Fill(profile.videoSourceToken, ("source" + number).c_str());
    Fill(profile.videoEncoderToken, ("encoder" + number).c_str());
    Fill(profile.ptzToken, ("ptz" + number).c_str());
    Fill(profile.videoAnalyticsToken, ("analytics" + number).c_str());
    Fill(profile.encodeName, ("name" + number).c_str());
    return profile;
}

/// A client with two profiles that has not logged in: its services are where the fallback puts them.
class OnvifKeysBase : public OnvifFixture
{
protected:
    OnvifKeysBase()
    {
        Start();
        m_client = std::make_unique<CHttpClient>("admin", "secret", "127.0.0.1", m_simulator->Port());
        m_client->SetServiceTable({{SERVICE_DEVICE, "onvif/device_service"},
                                   {SERVICE_MEDIA, "onvif/media_service"},
                                   {SERVICE_PTZ, "onvif/ptz_service"},
                                   {SERVICE_IMAGING, "onvif/imaging_service"},
                                   {SERVICE_ANALYTICS, "onvif/analytics_service"},
                                   {SERVICE_EVENTS, "onvif/event_service"},
                                   {SERVICE_DEVICEIO, "onvif/deviceio_service"}});
        m_client->SetProfileList({Profile("0"), Profile("1")});
    }

    std::string Get(const std::string& keys)
    {
        char* response = nullptr;
        const bool good = m_client->GetCfg("<Get>" + keys + "</Get>", response, nullptr);
        const std::string answer = response != nullptr ? Inner(response) : "null";
        delete[] response;
        return (good ? "" : "false: ") + answer;
    }
    std::string Set(const std::string& keys)
    {
        std::string answer;
        const bool good = m_client->SetCfg("<Set>" + keys + "</Set>", answer);
        return (good ? "" : "false: ") + Inner(answer);
    }

    std::unique_ptr<CHttpClient> m_client;
};

struct KeyCase
{
    const char* name;
    bool set;
    const char* request; // the key with its fields
    std::vector<std::string> calls;
    const char* token;  // stands in the request to the camera; empty: none is added
    const char* answer; // the key of the answer

    friend void PrintTo(const KeyCase& one, std::ostream* out) { *out << one.name; }
};

// clang-format off
const KeyCase KEY_CASES[] = {
    {"GetIpv4",                false, "<ipv4/>",                                         {"GetNetworkInterfaces at onvif/device_service", "GetNetworkDefaultGateway at onvif/device_service"}, "", "ipv4"},
    {"GetDns",                 false, "<dns/>",                                          {"GetDNS at onvif/device_service"},                                "",           "dns"},
    {"GetNetworkProtocols",    false, "<networkProtocols/>",                             {"GetNetworkProtocols at onvif/device_service"},                   "",           "networkProtocols"},
    {"GetDateAndTime",         false, "<dateAndTime/>",                                  {"GetSystemDateAndTime at onvif/device_service"},                  "",           "dateAndTime"},
    {"GetStreamURI",           false, "<streamURI><index>1</index></streamURI>",         {"GetStreamUri at onvif/media_service"},                           ">profile1<", "streamURI"},
    {"GetProfiles",            false, "<profiles/>",                                     {"GetProfiles at onvif/media_service"},                            "",           "profiles"},
    {"GetProfile",             false, "<profile><index>1</index></profile>",             {"GetProfile at onvif/media_service"},                             ">profile1<", "profile"},
    {"GetVideoEncoderCfgOpts", false, "<videoEncoderCfgOpts><index>1</index></videoEncoderCfgOpts>", {"GetVideoEncoderConfigurationOptions at onvif/media_service"}, ">encoder1<", "videoEncoderCfgOpts"},
    {"GetVideoEncoderCfg",     false, "<videoEncoderCfg><index>1</index></videoEncoderCfg>", {"GetVideoEncoderConfiguration at onvif/media_service"},       ">encoder1<", "videoEncoderCfg"},
    {"GetImageOpts",           false, "<imageOpts/>",                                    {"GetOptions at onvif/imaging_service"},                           ">source0<",  "imageOpts"},
    {"GetImageSettings",       false, "<imageSettings/>",                                {"GetImagingSettings at onvif/imaging_service"},                   ">source0<",  "imageSettings"},
    {"GetDevInfo",             false, "<devInfo/>",                                      {"GetDeviceInformation at onvif/device_service"},                  "",           "devInfo"},
    {"GetAlarmout",            false, "<alarmout/>",                                     {"GetRelayOutputs at onvif/device_service"},                       "",           "alarmout"},
    {"GetAlarmin",             false, "<alarmin/>",                                      {"GetDigitalInputs at onvif/deviceio_service"},                    "",           "alarmin"},
    {"GetStreamCount",         false, "<streamCount/>",                                  {},                                                                "",           "streamCount"},
    {"GetServiceUrl",          false, "<serviceUrl/>",                                   {},                                                                "",           "serviceUrl"},
    {"GetMotion",              false, "<motion/>",                                       {"GetAnalyticsModules at onvif/analytics_service", "GetRules at onvif/analytics_service"}, ">analytics0<", "motion"},
    {"GetPresets",             false, "<presets/>",                                      {"GetPresets at onvif/ptz_service"},                               ">profile0<", "presets"},
    {"GetCruises",             false, "<cruises/>",                                      {"GetPresetTours at onvif/ptz_service"},                           ">profile0<", "cruises"},
    {"SetIpv4",                true,  "<ipv4><token>eth0</token><dhcp>true</dhcp></ipv4>", {"SetNetworkInterfaces at onvif/device_service"},                "",           "ipv4"},
    {"SetIpv4WithGateway",     true,  "<ipv4><gateway>10.0.0.1</gateway></ipv4>",        {"SetNetworkDefaultGateway at onvif/device_service", "SetNetworkInterfaces at onvif/device_service"}, "", "ipv4"},
    {"SetDns",                 true,  "<dns><dhcp>true</dhcp></dns>",                    {"SetDNS at onvif/device_service"},                                "",           "dns"},
    {"SetNetworkProtocols",    true,  "<networkProtocols/>",                             {"SetNetworkProtocols at onvif/device_service"},                   "",           "networkProtocols"},
    {"SetDateAndTime",         true,  "<dateAndTime><type>NTP</type></dateAndTime>",     {"SetSystemDateAndTime at onvif/device_service"},                  "",           "dateAndTime"},
    {"SetVideoEncodeCfg",      true,  "<videoEncodeCfg><item><index>1</index></item></videoEncodeCfg>", {"SetVideoEncoderConfiguration at onvif/media_service"}, "\"encoder1\"", "videoEncodeCfg"},
    {"SetImageSettings",       true,  "<imageSettings/>",                                {"SetImagingSettings at onvif/imaging_service"},                   ">source0<",  "imageSettings"},
    {"SetCreatePullPoint",     true,  "<createPullPointSubscription><timeout>PT60S</timeout></createPullPointSubscription>", {"CreatePullPointSubscription at onvif/event_service"}, "", "createPullPointSubscription"},
    {"SetSubscribe",           true,  "<subscribe/>",                                    {"Subscribe at onvif/event_service"},                              "",           "subscribe"},
    {"SetUnsubscribe",         true,  "<unsubscribe/>",                                  {"Unsubscribe at onvif/event_service"},                            "",           "unsubscribe"},
    {"SetRenew",               true,  "<renew><serverAddr>http://10.0.0.1:80/s/1</serverAddr></renew>", {"Renew at s/1"},                                   "",           "renew"},
    {"SetRenewWithoutPath",    true,  "<renew><serverAddr>http://10.0.0.1:80</serverAddr></renew>", {"Renew at onvif/device_service"},                      "",           "renew"},
    {"SetContinuousMove",      true,  "<continuousMove/>",                               {"ContinuousMove at onvif/ptz_service"},                           ">profile0<", "continuousMove"},
    {"SetPtzStop",             true,  "<ptzStop/>",                                      {"Stop at onvif/ptz_service"},                                     ">profile0<", "ptzStop"},
    {"SetAddPreset",           true,  "<addPreset/>",                                    {"SetPreset at onvif/ptz_service"},                                ">profile0<", "addPreset"},
    {"SetModifyPresetName",    true,  "<modifyPresetName/>",                             {"SetPreset at onvif/ptz_service"},                                ">profile0<", "modifyPresetName"},
    {"SetRemovePreset",        true,  "<removePreset/>",                                 {"RemovePreset at onvif/ptz_service"},                             ">profile0<", "removePreset"},
    {"SetGotoPreset",          true,  "<gotoPreset/>",                                   {"GotoPreset at onvif/ptz_service"},                               ">profile0<", "gotoPreset"},
    {"SetImageStop",           true,  "<imageStop><token>mine</token></imageStop>",      {"Stop at onvif/imaging_service"},                                 ">mine<",     "imageStop"},
    {"SetAlarmout",            true,  "<alarmout/>",                                     {"SetRelayOutputSettings at onvif/device_service"},                "",           "alarmout"},
    {"SetManualAlarmout",      true,  "<manualAlarmout/>",                               {"SetRelayOutputState at onvif/deviceio_service"},                 "",           "manualAlarmout"},
    {"SetMotion",              true,  "<motion><name>m</name><area><item>1</item></area></motion>", {"ModifyAnalyticsModules at onvif/analytics_service", "ModifyRules at onvif/analytics_service"}, ">analytics0<", "motion"},
    {"SetContinuousFocus",     true,  "<continuousFocus/>",                              {"Move at onvif/imaging_service"},                                 ">source0<",  "continuousFocus"},
    {"SetAddCruise",           true,  "<addCruise/>",                                    {"CreatePresetTour at onvif/ptz_service"},                         ">profile0<", "addCruise"},
    {"SetModifyCruise",        true,  "<modifyCruise/>",                                 {"ModifyPresetTour at onvif/ptz_service"},                         ">profile0<", "modifyCruise"},
    {"SetDelCruise",           true,  "<delCruise><token>t</token></delCruise>",         {"RemovePresetTour at onvif/ptz_service"},                         "",           "delCruise"},
    {"SetStartCruise",         true,  "<startCruise><token>t</token></startCruise>",     {"OperatePresetTour at onvif/ptz_service"},                        ">profile0<", "startCruise"},
    {"SetStopCruise",          true,  "<stopCruise><token>t</token></stopCruise>",       {"OperatePresetTour at onvif/ptz_service"},                        ">profile0<", "stopCruise"},
    {"SetPauseCruise",         true,  "<pauseCruise><token>t</token></pauseCruise>",     {"OperatePresetTour at onvif/ptz_service"},                        ">profile0<", "pauseCruise"},
};
// clang-format on

class OnvifKey : public OnvifKeysBase, public testing::WithParamInterface<KeyCase>
{
};

TEST_P(OnvifKey, BringsItsOperationsToTheCamera)
{
    const KeyCase& one = GetParam();
    const std::string answer = one.set ? Set(one.request) : Get(one.request);
    EXPECT_EQ(one.calls, Calls());
    EXPECT_EQ(std::string("<") + one.answer, answer.substr(0, std::strlen(one.answer) + 1)) << answer;
    for (const OnvifDeviceSimulator::Request& request : m_simulator->Requests())
    {
        EXPECT_NE(std::string::npos, request.soap.find(one.token)) << request.soap;
    }
}

INSTANTIATE_TEST_SUITE_P(All, OnvifKey, testing::ValuesIn(KEY_CASES),
                         [](const auto& one) { return std::string(one.param.name); });

class OnvifKeys : public OnvifKeysBase
{
protected:
    /// Operations are answered with nothing, as by a camera that is gone.
    void Silence(const std::string& operation)
    {
        OnvifManners closed;
        closed.delivery = OnvifManners::CLOSED;
        m_simulator->SetManners(operation, closed);
    }
};

TEST_F(OnvifKeys, AreCarriedOutInTheOrderOfTheDocument)
{
    EXPECT_EQ("<devInfo><status>success</status><manufacturer>Test Works</manufacturer><model>TW-1</model></devInfo>"
              "<streamCount>2</streamCount>"
              "<dns><status>success</status><dhcp>false</dhcp><ip>8.8.8.8</ip><ip>1.1.1.1</ip></dns>",
              Get("<devInfo/><streamCount/><dns/>"));
    EXPECT_THAT(m_simulator->Operations(), ElementsAre("GetDeviceInformation", "GetDNS"));
}

TEST_F(OnvifKeys, ThatComeTwiceShareOneElement)
{
    EXPECT_EQ("<dns><status>success</status><dhcp>false</dhcp><ip>8.8.8.8</ip><ip>1.1.1.1</ip>"
              "<status>success</status><dhcp>false</dhcp><ip>8.8.8.8</ip><ip>1.1.1.1</ip></dns>",
              Get("<dns/><dns/>"));
    EXPECT_EQ("<streamCount>2</streamCount>", Get("<streamCount/><streamCount/>"));
    EXPECT_EQ("<dns><status>success</status><status>success</status></dns>",
              Set("<dns><dhcp>true</dhcp></dns><dns><dhcp>true</dhcp></dns>"));
}

TEST_F(OnvifKeys, WithoutAnAnswerEndTheWalkAndDropWhatCame)
{
    Silence("GetDNS");
    EXPECT_EQ("false: null", Get("<devInfo/><dns/><networkProtocols/>"));
    EXPECT_THAT(m_simulator->Operations(), ElementsAre("GetDeviceInformation", "GetDNS"));
    Silence("SetDNS");
    m_simulator->Forget();
    EXPECT_EQ("false: ", Set("<ipv4><token>eth0</token><dhcp>true</dhcp></ipv4><dns/><networkProtocols/>"));
    EXPECT_THAT(m_simulator->Operations(), ElementsAre("SetNetworkInterfaces", "SetDNS"));
    EXPECT_EQ("true", m_simulator->Value("ipv4.dhcp")); // what was done stays
}

TEST_F(OnvifKeys, ThatTheCameraRefusesTellSoAndGoOn)
{
    m_simulator->Refuse("GetDNS", "ter:ActionNotSupported", "No");
    EXPECT_EQ("<dns><status>fail<errorCode>5</errorCode><description>No</description></status></dns>"
              "<streamCount>2</streamCount>",
              Get("<dns/><streamCount/>"));
}

TEST_F(OnvifKeys, OfALoginThatIsRefusedMeanwhileFail)
{
    m_client->Init("admin", "changed", "127.0.0.1", m_simulator->Port());
    EXPECT_EQ("false: null", Get("<dns/>"));
}

// A motion read without analytics is unreadable and does not stop the others; as the last key it makes the call false.
TEST_F(OnvifKeys, ThatAreUnreadableDoNotStopTheOthers)
{
    ONVIF_PROFILE_TOKEN profile = Profile("0");
    profile.videoAnalyticsToken[0] = '\0';
    m_client->SetProfileList({profile});
    EXPECT_EQ("<streamCount>1</streamCount>", Get("<motion/><streamCount/>"));
    EXPECT_EQ("false: <streamCount>1</streamCount>", Get("<streamCount/><motion/>"));
    EXPECT_EQ("false: null", Get("<motion/>"));
    EXPECT_EQ("", Set("<motion/>"));
    EXPECT_TRUE(m_simulator->Requests().empty());
}

TEST_F(OnvifKeys, AtAnIndexWithoutAProfileAreSkipped)
{
    for (const char* index : {"-1", "2", "99999999999"})
    {
        const std::string child = std::string("<index>") + index + "</index>";
        EXPECT_EQ("false: null", Get("<profile>" + child + "</profile>")) << index;
        EXPECT_EQ("<streamCount>2</streamCount>", Get("<streamCount/><streamURI>" + child + "</streamURI>")) << index;
        EXPECT_EQ("<streamCount>2</streamCount>", Get("<streamCount/><snapshotURI>" + child + "</snapshotURI>"))
            << index;
    }
    EXPECT_EQ("false: null", Get("<streamURI/>"));
    EXPECT_TRUE(m_simulator->Requests().empty());
}

// A skipped key leaves the result as it stood at the start, and that ends the walk.
TEST_F(OnvifKeys, ThatAreSkippedFirstEndTheWalk)
{
    EXPECT_EQ("false: null", Get("<profile><index>9</index></profile><streamCount/>"));
}

TEST_F(OnvifKeys, ThatNeedAProfileAreSkippedWithoutOne)
{
    m_client->SetProfileList({});
    EXPECT_EQ("false: null", Get("<presets/>"));
    EXPECT_EQ("<dns><status>success</status></dns>", Set("<ptzStop/><dns><dhcp>true</dhcp></dns><continuousFocus/>"));
    EXPECT_THAT(m_simulator->Operations(), ElementsAre("SetDNS"));
}

TEST_F(OnvifKeys, OfAddressesNeedTheInterfacesOnly)
{
    Silence("SetNetworkDefaultGateway");
    EXPECT_EQ("<ipv4><status>success<rebootNeeded>false</rebootNeeded></status></ipv4>",
              Set("<ipv4><token>eth0</token><dhcp>true</dhcp><gateway>10.0.0.1</gateway></ipv4>"));
    Silence("GetNetworkInterfaces");
    m_simulator->Forget();
    EXPECT_EQ("false: null", Get("<ipv4/>"));
    EXPECT_THAT(m_simulator->Operations(), ElementsAre("GetNetworkInterfaces"));
}

TEST_F(OnvifKeys, OfMotionWriteTheAreaAfterTheModuleOnly)
{
    Silence("ModifyAnalyticsModules");
    EXPECT_EQ("false: ", Set("<motion><name>m</name><area><item>1</item></area></motion>"));
    EXPECT_THAT(m_simulator->Operations(), ElementsAre("ModifyAnalyticsModules"));
    Silence("GetAnalyticsModules");
    m_simulator->Forget();
    EXPECT_EQ("false: null", Get("<motion/>"));
    EXPECT_THAT(m_simulator->Operations(), ElementsAre("GetAnalyticsModules"));
}

TEST_F(OnvifKeys, OfMotionGoToTheDeviceServiceWithoutAnalytics)
{
    m_client->SetServiceTable({{SERVICE_DEVICE, "onvif/device_service"}});
    const std::string answer = Get("<motion/>");
    EXPECT_EQ("<motion><status>fail<errorCode>5</errorCode>", answer.substr(0, 44)) << answer;
    EXPECT_EQ("GetAnalyticsModules at onvif/device_service", Calls().front());
    EXPECT_EQ("onvif/device_service", m_client->GetServiceTable()[SERVICE_ANALYTICS]);
}

TEST_F(OnvifKeys, OfProfilesRenewTheTable)
{
    Get("<profiles/>");
    EXPECT_EQ(1u, m_client->GetProfileList().size());
    Silence("GetProfiles");
    EXPECT_EQ("false: null", Get("<profiles/>"));
    EXPECT_TRUE(m_client->GetProfileList().empty());
}

TEST_F(OnvifKeys, ThatAreAskedForAtOnceAreAnsweredInOneDocument)
{
    EXPECT_EQ("<dns><status>success</status></dns><GetResponse><renew><status>success</status>"
              "<terminationTime>2026-11-21T13:31:00Z</terminationTime><currentTime>2026-11-21T13:30:00Z</currentTime>"
              "</renew></GetResponse>",
              Set("<dns><dhcp>true</dhcp></dns><renew/>"));
}

TEST_F(OnvifKeys, StandBelowTheirRootOnly)
{
    EXPECT_EQ("false: null", Get(""));
    EXPECT_EQ("", Set(""));
    char* response = nullptr;
    std::string answer;
    for (const char* document : {"", "<Set><dns/></Set>", "no document", "<Get", "<Other/>"})
    {
        EXPECT_FALSE(m_client->GetCfg(document, response, nullptr)) << document;
        EXPECT_EQ(nullptr, response);
    }
    for (const char* document : {"", "<Get><dns/></Get>", "no document", "<Set", "<Other/>"})
    {
        EXPECT_FALSE(m_client->SetCfg(document, answer)) << document;
        EXPECT_EQ("", answer);
    }
    EXPECT_EQ("<streamCount>2</streamCount>", Get("<!-- a comment is no key --><streamCount><Get/></streamCount>"));
    EXPECT_EQ("<streamCount>2</streamCount>", Get("<streamCount/></Get><Get><serviceUrl/>")); // the first one counts
}

// So that a host that begins with null sees whether there is one.
TEST_F(OnvifKeys, WithoutAnAnswerLeaveTheResponseAsItWas)
{
    char before[] = "before";
    char* response = before;
    int length = 77;
    Silence("GetDNS");
    for (const char* key : {"", "<dns/>", "<profile><index>9</index></profile>", "<streamCount/><dns/>"})
    {
        EXPECT_FALSE(m_client->GetCfg(std::string("<Get>") + key + "</Get>", response, &length)) << key;
        EXPECT_EQ(before, response);
        EXPECT_EQ(77, length);
    }
    EXPECT_TRUE(ONVIF_CLIENT_GetCfg(4711, "<Get><dns/></Get>", response, &length)); // no such login
    EXPECT_EQ(before, response);
    EXPECT_FALSE(ONVIF_CLIENT_SetCfg(4711, "<Set><dns/></Set>", response));
    EXPECT_EQ(nullptr, response);
}

// The host's mistake, which a test of it would bring to light.
TEST_F(OnvifKeys, ThatNobodyKnowsEndTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(Get("<videoEncodeCfg/>"), "bool CHttpClient::GetCfg\\(.*\\): Assertion `false' failed");
    EXPECT_DEATH(Set("<videoEncoderCfg/>"), "bool CHttpClient::SetCfg\\(.*\\): Assertion `false' failed");
}

TEST_F(OnvifKeys, OfAPullGiveTheRequestInsteadOfSendingIt)
{
    const std::string host = "<Get><pullMessages><token>http://10.0.0.1:80/pull/1</token><timeout>PT60S</timeout>"
                             "<messageLimit>1024</messageLimit></pullMessages></Get>";
    char* response = nullptr;
    EXPECT_TRUE(m_client->GetCfg(host, response, nullptr));
    const std::string answer = response;
    delete[] response;
    EXPECT_EQ("POST /pull/1 HTTP/1.1\r\nAuthorization: Basic YWRtaW46c2VjcmV0\r\nUser-Agent: ApiTool\r\n"
              "Host: 127.0.0.1\r\nContent-Length: ",
              answer.substr(0, 116));
    const OnvifSoapRequest soap(answer.substr(answer.find("\r\n\r\n") + 4));
    EXPECT_EQ("PullMessages", soap.Operation());
    EXPECT_EQ("PT60S", soap.Text("Timeout"));
    EXPECT_EQ("1024", soap.Text("MessageLimit"));
    EXPECT_EQ("http://10.0.0.1:80/pull/1", soap.HeaderText("To"));
    EXPECT_TRUE(m_simulator->Requests().empty());
}

// As in every request, and the length is that of what is left.
TEST_F(OnvifKeys, OfAPullLoseTheirTabs)
{
    std::string answer;
    EXPECT_EQ(0, m_client->PullMessages("<Get><pullMessages><token>http://h/p</token><messageLimit>10\t24"
                                        "</messageLimit></pullMessages></Get>",
                                        answer));
    EXPECT_EQ(std::string::npos, answer.find('\t'));
    const std::string body = answer.substr(answer.find("\r\n\r\n") + 4);
    EXPECT_EQ("1024", OnvifSoapRequest(body).Text("MessageLimit"));
    EXPECT_NE(std::string::npos, answer.find("\r\nContent-Length: " + std::to_string(body.size()) + "\r\n"));
}

TEST_F(OnvifKeys, OfAPullWithoutAPathGoToTheEvents)
{
    EXPECT_EQ("POST /onvif/event_service HTTP/1.1", Get("<pullMessages/>").substr(0, 34));
}

// From then on the device has an empty path for its events.
TEST_F(OnvifKeys, OfAPullWithoutAnyPathAreUnreadable)
{
    m_client->SetServiceTable({{SERVICE_DEVICE, "onvif/device_service"}});
    std::string answer;
    EXPECT_EQ(2, m_client->PullMessages("<Get><pullMessages/></Get>", answer));
    EXPECT_EQ("", answer);
    EXPECT_EQ(
        "<serviceUrl><item service=\"device\">onvif/device_service</item><item service=\"events\"></item></serviceUrl>",
        Get("<serviceUrl/>"));
}

TEST_F(OnvifKeys, HandOverAnArrayWithAZeroByteThatCounts)
{
    char* response = nullptr;
    int length = 0;
    EXPECT_TRUE(m_client->GetCfg("<Get><streamCount/></Get>", response, &length));
    EXPECT_EQ(static_cast<std::size_t>(length), std::strlen(response) + 1);
    ONVIF_CLIENT_DelResponseBuff(response);
    EXPECT_NE(nullptr, response); // the pointer is left as it was
}

} // namespace
