// Logins: what a camera is asked, in which order, and what comes of it.
#include "HttpClientManager.h"
#include "OnvifFixture.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::ElementsAreArray;

namespace
{

const std::string DEVICE = " at onvif/device_service";

class OnvifLogin : public OnvifFixture
{
protected:
    std::string ServiceUrls(unsigned int token) { return Get(token, "<serviceUrl/>"); }
    std::pair<bool, bool> EventMode(unsigned int token)
    {
        std::pair<bool, bool> mode;
        CHttpClient* const client = CHttpClientManager::Instance().GetClient(token);
        client->GetEventMode(mode.first, mode.second);
        CHttpClientManager::Instance().ReleaseClient(token);
        return mode;
    }
};

TEST_F(OnvifLogin, TakesThePathsOfAListOfServices)
{
    Start();
    const unsigned int token = Login();
    EXPECT_NE(NO_LOGIN, token);
    EXPECT_EQ(0u, m_error);
    EXPECT_THAT(Calls(),
                ElementsAre("GetServices" + DEVICE, "GetCapabilities All" + DEVICE,
                            "GetProfiles at onvif/media_service", "GetConfigurationOptions at onvif/ptz_service",
                            "GetMoveOptions at onvif/imaging_service"));
    EXPECT_EQ("<serviceUrl><item service=\"analytics\">onvif/analytics_service</item>"
              "<item service=\"device\">onvif/device_service</item>"
              "<item service=\"deviceIO\">onvif/deviceio_service</item>"
              "<item service=\"events\">onvif/event_service</item>"
              "<item service=\"imaging\">onvif/imaging_service</item>"
              "<item service=\"media\">onvif/media_service</item>"
              "<item service=\"ptz\">onvif/ptz_service</item></serviceUrl>",
              ServiceUrls(token));
}

TEST_F(OnvifLogin, AsksForMediaAndImagingThatAListOfServicesLacks)
{
    OnvifSimulatorOptions options;
    options.unlisted = {"mdw", "img", "ptzw"};
    Start(options);
    Login();
    EXPECT_EQ(0u, m_error);
    EXPECT_THAT(Calls(), ElementsAre("GetServices" + DEVICE, "GetCapabilities All" + DEVICE,
                                     "GetCapabilities Media" + DEVICE, "GetCapabilities Imaging" + DEVICE,
                                     "GetProfiles at onvif/media_service", "GetMoveOptions at onvif/imaging_service"));
}

TEST_F(OnvifLogin, TakesTheCapabilitiesOfACameraWithoutAListOfServices)
{
    OnvifSimulatorOptions options;
    options.hasGetServices = false;
    Start(options);
    const unsigned int token = Login();
    EXPECT_EQ(0u, m_error);
    EXPECT_THAT(Calls(),
                ElementsAre("GetServices" + DEVICE, "GetCapabilities All" + DEVICE,
                            "GetProfiles at onvif/media_service", "GetConfigurationOptions at onvif/ptz_service",
                            "GetMoveOptions at onvif/imaging_service"));
    EXPECT_NE(std::string::npos, ServiceUrls(token).find("<item service=\"ptz\">onvif/ptz_service</item>"));
}

const std::vector<std::string> ALL_CATEGORIES = {
    "GetCapabilities Media" + DEVICE,     "GetCapabilities PTZ" + DEVICE,      "GetCapabilities Imaging" + DEVICE,
    "GetCapabilities Events" + DEVICE,    "GetCapabilities Device" + DEVICE,   "GetCapabilities Analytics" + DEVICE,
    "GetCapabilities Search" + DEVICE,    "GetCapabilities DeviceIO" + DEVICE, "GetCapabilities Receiver" + DEVICE,
    "GetCapabilities Recording" + DEVICE, "GetCapabilities Display" + DEVICE,  "GetCapabilities Replay" + DEVICE};

TEST_F(OnvifLogin, AsksCategoryByCategoryInTheEnd)
{
    OnvifSimulatorOptions options;
    options.hasGetServices = false;
    options.hasAllCapabilities = false;
    options.services.erase("img");
    Start(options);
    const unsigned int token = Login();
    EXPECT_EQ(0u, m_error);
    std::vector<std::string> calls = {"GetServices" + DEVICE, "GetCapabilities All" + DEVICE};
    calls.insert(calls.end(), ALL_CATEGORIES.begin(), ALL_CATEGORIES.end());
    calls.push_back("GetProfiles at onvif/media_service");
    calls.push_back("GetConfigurationOptions at onvif/ptz_service");
    EXPECT_THAT(Calls(), ElementsAreArray(calls));
    EXPECT_EQ("<serviceUrl><item service=\"analytics\">onvif/analytics_service</item>"
              "<item service=\"device\">onvif/device_service</item>"
              "<item service=\"deviceIO\">onvif/deviceio_service</item>"
              "<item service=\"events\">onvif/event_service</item>"
              "<item service=\"media\">onvif/media_service</item>"
              "<item service=\"ptz\">onvif/ptz_service</item></serviceUrl>",
              ServiceUrls(token));
}

// Capabilities without an address are an answer, and not one to work with.
TEST_F(OnvifLogin, AsksCategoryByCategoryWhenTheCapabilitiesHaveNoAddress)
{
    OnvifSimulatorOptions options;
    options.hasGetServices = false;
    Start(options).SetAnswer("GetCapabilities", {"<tds:GetCapabilitiesResponse><tds:Capabilities><tt:Media/>"
                                                 "</tds:Capabilities></tds:GetCapabilitiesResponse>",
                                                 "", "", ""});
    Login();
    std::vector<std::string> calls = {"GetServices" + DEVICE, "GetCapabilities All" + DEVICE};
    calls.insert(calls.end(), ALL_CATEGORIES.begin(), ALL_CATEGORIES.end());
    calls.push_back("GetProfiles at onvif/Media");
    EXPECT_THAT(Calls(), ElementsAreArray(calls));
}

// A list of services without media and imaging, of a camera that names neither when asked: the profiles are asked for
// where its device service is.
TEST_F(OnvifLogin, GoesOnWithoutMediaAndImagingThatNobodyNames)
{
    OnvifSimulatorOptions options;
    options.unlisted = {"mdw", "img"};
    options.hasCategoryCapabilities = false;
    Start(options);
    const unsigned int token = Login();
    EXPECT_EQ(0u, m_error);
    EXPECT_THAT(Calls(),
                ElementsAre("GetServices" + DEVICE, "GetCapabilities All" + DEVICE, "GetCapabilities Media" + DEVICE,
                            "GetCapabilities Imaging" + DEVICE, "GetProfiles at onvif/device_service",
                            "GetConfigurationOptions at onvif/ptz_service"));
    const std::string services = ServiceUrls(token);
    EXPECT_NE(std::string::npos, services.find("<item service=\"media\">onvif/device_service</item>")) << services;
    EXPECT_EQ(std::string::npos, services.find("imaging")) << services;
}

TEST_F(OnvifLogin, TriesTheUsualPathsOfACameraThatTellsNothing)
{
    OnvifSimulatorOptions options;
    options.hasGetServices = false;
    options.hasAllCapabilities = false;
    options.hasCategoryCapabilities = false;
    Start(options);
    const unsigned int token = Login();
    EXPECT_EQ(0u, m_error);
    std::vector<std::string> calls = {"GetServices" + DEVICE, "GetCapabilities All" + DEVICE};
    calls.insert(calls.end(), ALL_CATEGORIES.begin(), ALL_CATEGORIES.end());
    calls.push_back("GetProfiles at onvif/Media");
    EXPECT_THAT(Calls(), ElementsAreArray(calls));
    EXPECT_EQ("<serviceUrl><item service=\"device\">onvif/device_service</item>"
              "<item service=\"media\">onvif/Media</item></serviceUrl>",
              ServiceUrls(token));
}

TEST_F(OnvifLogin, FailsWithTheProfilesOfACameraThatNeverAnswers)
{
    OnvifManners closed;
    closed.delivery = OnvifManners::CLOSED;
    Start().SetManners(closed);
    EXPECT_EQ(NO_LOGIN, Login());
    EXPECT_EQ(4u, m_error);
    EXPECT_EQ(15u, Calls().size()); // 14 questions about services, and the profiles
}

TEST_F(OnvifLogin, EndsWhenTheCredentialsAreRefusedInSoap)
{
    Start();
    EXPECT_EQ(NO_LOGIN, Login("admin", "wrong"));
    EXPECT_EQ(401u, m_error);
    EXPECT_THAT(Calls(), ElementsAre("GetServices" + DEVICE));
}

TEST_F(OnvifLogin, EndsWhenAnErrorPageComes)
{
    OnvifSimulatorOptions options;
    options.refusalHtml = "<html><body>401 Unauthorized</body></html>";
    Start(options);
    EXPECT_EQ(NO_LOGIN, Login("admin", "wrong"));
    EXPECT_EQ(6u, m_error);
    EXPECT_THAT(Calls(), ElementsAre("GetServices" + DEVICE));
}

// The status of a fault does not matter: only the words of a refusal do.
TEST_F(OnvifLogin, GoesOnAfterAFaultOfAnyStatus)
{
    for (const int status : {200, 400, 500})
    {
        OnvifSimulatorOptions options;
        options.hasGetServices = false;
        options.faultStatus = status;
        Start(options);
        EXPECT_NE(NO_LOGIN, Login()) << status;
        EXPECT_EQ(0u, m_error) << status;
    }
}

TEST_F(OnvifLogin, FailsWithTheFaultOfTheProfiles)
{
    Start().Refuse("GetProfiles", "ter:ActionNotSupported", "No media");
    EXPECT_EQ(NO_LOGIN, Login());
    EXPECT_EQ(5u, m_error);
}

TEST_F(OnvifLogin, SucceedsWithoutProfiles)
{
    Start().SetAnswer("GetProfiles", {"<mdw:GetProfilesResponse/>", "", "", ""});
    const unsigned int token = Login();
    EXPECT_EQ(0u, m_error);
    EXPECT_EQ("GetProfiles", m_simulator->LastRequest().operation);
    EXPECT_EQ("<streamCount>0</streamCount>", Get(token, "<streamCount/>"));
    EXPECT_EQ("false: null", Get(token, "<presets/>"));
    EXPECT_EQ("false: null", Get(token, "<streamURI><index>0</index></streamURI>"));
    EXPECT_EQ("false: null", Set(token, "<ptzStop/>"));
    EXPECT_EQ("GetProfiles", m_simulator->LastRequest().operation);
}

// Ranges of speed are only asked of a device that has what they are for.
TEST_F(OnvifLogin, AsksForNoRangesThatTheFirstProfileHasNoUseFor)
{
    Start().SetAnswer("GetProfiles", {"<mdw:GetProfilesResponse><mdw:Profiles token=\"P1\">"
                                      "<tt:VideoEncoderConfiguration token=\"VEC1\"/></mdw:Profiles>"
                                      "</mdw:GetProfilesResponse>",
                                      "", "", ""});
    EXPECT_NE(NO_LOGIN, Login());
    EXPECT_EQ("GetProfiles", m_simulator->LastRequest().operation);
}

TEST_F(OnvifLogin, SucceedsWithoutRanges)
{
    OnvifDeviceSimulator& simulator = Start();
    OnvifManners closed;
    closed.delivery = OnvifManners::CLOSED;
    simulator.SetManners("GetConfigurationOptions", closed);
    simulator.Refuse("GetMoveOptions", "ter:NoSource", "No such source");
    EXPECT_NE(NO_LOGIN, Login());
    EXPECT_EQ(0u, m_error);
}

// A range that did not come is not one of nothing.
TEST_F(OnvifLogin, MovesACameraThatRefusesItsRangesByTheUsualOnes)
{
    m_simulator = std::make_unique<OnvifDeviceSimulator>(); // with profiles that it moves by
    OnvifDeviceSimulator& simulator = *m_simulator;
    simulator.Refuse("GetConfigurationOptions", "ter:NoConfig", "No such configuration");
    simulator.Refuse("GetMoveOptions", "ter:NoSource", "No such source");
    const unsigned int token = Login();
    Set(token, "<continuousMove><ptz><velocity><x>50</x><y>-100</y><zoom>30</zoom></velocity></ptz></continuousMove>"
               "<continuousFocus><speed>-70</speed></continuousFocus>");
    EXPECT_EQ("0.50000000", simulator.Value("ptz.pan"));
    EXPECT_EQ("-1.00000000", simulator.Value("ptz.tilt"));
    EXPECT_EQ("0.30000000", simulator.Value("ptz.zoom"));
    EXPECT_EQ("-0.70000000", simulator.Value("focus.speed"));
}

TEST_F(OnvifLogin, UnderstandsEachDialect)
{
    for (const auto& [name, dialect] : OnvifDialects())
    {
        OnvifSimulatorOptions options;
        options.dialect = dialect;
        Start(options);
        EXPECT_NE(NO_LOGIN, Login()) << name;
        EXPECT_EQ("GetMoveOptions at onvif/imaging_service", Calls().back()) << name;
    }
}

// An envelope of an older SOAP is read where its usual prefix is provided for: services and profiles, but no
// capabilities.
TEST_F(OnvifLogin, UnderstandsAnOlderEnvelope)
{
    OnvifSimulatorOptions options;
    options.dialect.prefixes["s"] = "SOAP-ENV";
    options.dialect.namespaces["s"] = "http://schemas.xmlsoap.org/soap/envelope/";
    options.subscriptionPolicy = false;
    Start(options);
    const unsigned int token = Login();
    EXPECT_EQ(0u, m_error);
    EXPECT_EQ(std::make_pair(true, false), EventMode(token));
    EXPECT_EQ("<streamCount>1</streamCount>", Get(token, "<streamCount/>"));
}

// Answers whose first element has no prefix: the profiles are read, what the camera says of its services is not.
TEST_F(OnvifLogin, UnderstandsProfilesWithoutAPrefix)
{
    OnvifSimulatorOptions options;
    options.dialect.bareResponseElement = true;
    options.services["mdw"] = "onvif/Media";
    Start(options);
    const unsigned int token = Login();
    EXPECT_EQ(0u, m_error);
    EXPECT_EQ(15u, Calls().size());
    EXPECT_EQ("GetProfiles at onvif/Media", Calls().back());
    EXPECT_EQ("<streamCount>1</streamCount>", Get(token, "<streamCount/>"));
}

// Namespaces that stand below the root are not seen.
TEST_F(OnvifLogin, DoesNotUnderstandDeclarationsBelowTheRoot)
{
    OnvifSimulatorOptions options;
    options.dialect = OnvifDialects().at("UnusualPrefixes");
    options.dialect.declaresInBody = true;
    Start(options);
    const unsigned int token = Login();
    EXPECT_EQ(0u, m_error);
    EXPECT_EQ("<streamCount>0</streamCount>", Get(token, "<streamCount/>"));
}

TEST_F(OnvifLogin, ReachesACameraBehindAddressTranslation)
{
    OnvifSimulatorOptions options;
    options.announcedHost = "192.168.77.9:8000";
    Start(options);
    const unsigned int token = Login();
    EXPECT_EQ(0u, m_error);
    EXPECT_EQ("<devInfo><status>success</status><manufacturer>Test Works</manufacturer><model>TW-1</model></devInfo>",
              Get(token, "<devInfo/>"));
}

TEST_F(OnvifLogin, ReadsWhatTheCameraSaysOfEvents)
{
    OnvifSimulatorOptions options;
    options.subscriptionPolicy = false;
    options.pullPoint = true;
    Start(options);
    EXPECT_EQ(std::make_pair(false, true), EventMode(Login()));
}

TEST_F(OnvifLogin, TakesSubscriptionsForGrantedWhenTheCameraSaysNothing)
{
    OnvifSimulatorOptions options;
    options.hasAllCapabilities = false;
    Start(options);
    EXPECT_EQ(std::make_pair(true, false), EventMode(Login()));
}

TEST_F(OnvifLogin, WithoutCredentialsSendsNoSecurityHeader)
{
    OnvifSimulatorOptions options;
    options.user = "";
    options.password = "";
    Start(options);
    EXPECT_NE(NO_LOGIN, Login("", ""));
    for (const OnvifDeviceSimulator::Request& request : m_simulator->Requests())
    {
        EXPECT_FALSE(OnvifSoapRequest(request.soap).HasHeader("Security"));
        EXPECT_NE(std::string::npos, request.http.find("\r\nAuthorization: Basic Og==\r\n")) << request.http;
    }
}

TEST_F(OnvifLogin, AUserWithoutAPasswordHasCredentials)
{
    OnvifSimulatorOptions options;
    options.user = "guest";
    options.password = "";
    Start(options);
    EXPECT_NE(NO_LOGIN, Login("guest", ""));
    EXPECT_EQ(0u, m_error);
}

TEST_F(OnvifLogin, SatisfiesACameraThatWantsBasicToo)
{
    OnvifSimulatorOptions options;
    options.requiresBasic = true;
    Start(options);
    EXPECT_NE(NO_LOGIN, Login());
}

// The device's clock is never asked for.
TEST_F(OnvifLogin, FailsAtACameraWhoseClockIsTooFarAway)
{
    OnvifSimulatorOptions options;
    options.clockOffsetSeconds = 3600;
    Start(options);
    EXPECT_EQ(NO_LOGIN, Login());
    EXPECT_EQ(401u, m_error);
}

TEST_F(OnvifLogin, EachHasATokenOfItsOwn)
{
    Start();
    const unsigned int first = Login();
    const unsigned int second = Login();
    EXPECT_NE(first, second);
    ONVIF_CLIENT_Logout(first);
    EXPECT_EQ("<streamCount>1</streamCount>", Get(second, "<streamCount/>"));
}

TEST_F(OnvifLogin, FailedOnesUseNoToken)
{
    Start();
    const unsigned int first = Login();
    Login("admin", "wrong");
    EXPECT_EQ(first + 1, Login());
}

TEST_F(OnvifLogin, WithATokenOnlyAsksWhetherItStands)
{
    Start();
    const unsigned int token = Login();
    m_simulator->Forget();
    EXPECT_EQ(token, ONVIF_CLIENT_Login(token, "127.0.0.1", 1, "admin", "wrong", &m_error));
    EXPECT_EQ(token, ONVIF_CLIENT_Login(token, nullptr, 0, nullptr, nullptr, nullptr));
    EXPECT_EQ(NO_LOGIN, ONVIF_CLIENT_Login(token + 1, "127.0.0.1", 1, "admin", "wrong", &m_error));
    EXPECT_TRUE(m_simulator->Requests().empty());
}

TEST_F(OnvifLogin, NeedsAddressUserAndPassword)
{
    EXPECT_EQ(NO_LOGIN, ONVIF_CLIENT_Login(NEW_LOGIN, nullptr, 80, "a", "b", &m_error));
    EXPECT_EQ(NO_LOGIN, ONVIF_CLIENT_Login(NEW_LOGIN, "127.0.0.1", 80, nullptr, "b", &m_error));
    EXPECT_EQ(NO_LOGIN, ONVIF_CLIENT_Login(NEW_LOGIN, "127.0.0.1", 80, "a", nullptr, &m_error));
    EXPECT_EQ(12345u, m_error);
}

TEST_F(OnvifLogin, AnUnknownTokenReadsNothingAndIsNoError)
{
    EXPECT_EQ("null", Get(4711, "<devInfo/>"));
    EXPECT_EQ("false: null", Set(4711, "<dns/>"));
    EXPECT_TRUE(ONVIF_CLIENT_Logout(4711));
}

TEST_F(OnvifLogin, EndsAfterTheCommandThatRuns)
{
    Start();
    const unsigned int token = Login();
    m_simulator->SetHook(
        [token](const OnvifDeviceSimulator::Request&)
        {
            EXPECT_TRUE(ONVIF_CLIENT_Logout(token));
            EXPECT_TRUE(ONVIF_CLIENT_Logout(token)); // the second one is ignored
            EXPECT_EQ(token, ONVIF_CLIENT_Login(token, nullptr, 0, nullptr, nullptr, nullptr));
        });
    EXPECT_EQ("<devInfo><status>success</status><manufacturer>Test Works</manufacturer><model>TW-1</model></devInfo>",
              Get(token, "<devInfo/>"));
    EXPECT_EQ(NO_LOGIN, ONVIF_CLIENT_Login(token, nullptr, 0, nullptr, nullptr, nullptr));
    EXPECT_EQ("null", Get(token, "<devInfo/>"));
}

TEST_F(OnvifLogin, LiveStreamsDoNotStartAndStopAtAnyLogin)
{
    const NETNS::RTSP_NETPROTOCOL protocol = NETNS::RTSP_NETPROTOCOL_DEFAULT;
    const NETNS::RTSP_MEDIADATA_TYPE type = NETNS::RTSP_MEDIADATA_DEFAULT;
    Start();
    const int token = static_cast<int>(Login());
    const unsigned int next = CHttpClientManager::Instance().GetStreamID() + 1;
    unsigned int result = 99;
    EXPECT_EQ(0, ONVIF_CLIENT_LIVESTREAM_Start(token, 1, protocol, type, nullptr, &result));
    EXPECT_EQ(0, ONVIF_CLIENT_LIVESTREAM_Start(4711, 1, protocol, type, nullptr, &result));
    EXPECT_EQ(99u, result);
    EXPECT_EQ(next + 2, CHttpClientManager::Instance().GetStreamID());
    EXPECT_TRUE(ONVIF_CLIENT_LIVESTREAM_Stop(token, 1));
    EXPECT_FALSE(ONVIF_CLIENT_LIVESTREAM_Stop(4711, 1));
}

TEST_F(OnvifLogin, ObserversAreTakenForEveryToken)
{
    Start();
    EXPECT_TRUE(ONVIF_CLIENT_AddAlarmStateObserver(Login(), nullptr));
    EXPECT_TRUE(ONVIF_CLIENT_AddAlarmStateObserver(4711, nullptr));
}

} // namespace
