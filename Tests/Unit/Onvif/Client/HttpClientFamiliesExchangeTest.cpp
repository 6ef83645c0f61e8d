// Where each command goes, how much of an answer it takes and how long it waits.
//
// The test program's own socket service stands in for the library's, and notes what it is asked for.
#include "HttpClient.h"

#include "NetSocket.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

namespace
{

struct Exchange
{
    std::string path;
    unsigned int answerBytes; // without the zero byte behind the answer
    unsigned int timeoutMs;
    std::string endMark;
};

std::vector<Exchange>& Exchanges()
{
    static std::vector<Exchange> exchanges;
    return exchanges;
}

} // namespace

int NET_SOCKET_SimpleClientComm(const char* /*ip*/, unsigned short /*port*/, const char* send, unsigned int sendLen,
                                char* recv, unsigned int recvSize, const char* endMark, unsigned int timeoutMs)
{
    const std::string request(send, sendLen);
    const std::size_t path = request.find('/') + 1;
    Exchanges().push_back({request.substr(path, request.find(' ', path) - path), recvSize - 1, timeoutMs, endMark});
    return std::snprintf(recv, recvSize, "<?xml version=\"1.0\"?><s:Envelope></s:Envelope>");
}

bool NET_SOCKET_Initial(const char* /*reserved*/)
{
    return true;
}
void NET_SOCKET_Quit() {}
bool NET_SOCKET_StartListen(unsigned short, CListenSocketObserver*, unsigned int, bool)
{
    return false;
}
bool NET_SOCKET_StopListen(unsigned short)
{
    return false;
}
unsigned short NET_SOCKET_GetListenPort(const CListenSocketObserver*)
{
    return 0;
}
int NET_SOCKET_Recv_Immediate(int, char*, int, bool* broken)
{
    *broken = true;
    return 0;
}
bool NET_SOCKET_WaitRecv(int, unsigned int)
{
    return true;
}
int NET_SOCKET_Send_Immediate(int, const char*, int, bool& broken)
{
    broken = true;
    return 0;
}
int NET_SOCKET_Send_Last(int, const char*, int, bool& broken)
{
    broken = true;
    return 0;
}
void NET_SOCKET_DestroyHNetCommunication(int) {}
bool NET_SOCKET_GetRemoteIP(int, sockaddr_in&)
{
    return false;
}
void NET_SOCKET_Inet_ntoa(unsigned int, char* text)
{
    *text = '\0';
}
int NET_SOCKET_AddConnect(unsigned int, const char*, unsigned short)
{
    return 0;
}
bool NET_SOCKET_PopConnectResult(int, int& result, unsigned int)
{
    result = -1;
    return false;
}
void NET_SOCKET_DelConnect(int) {}
bool NET_SOCKET_RegisterNode(int, CSocketDataObserver*, void*, int, int)
{
    return false;
}
bool NET_SOCKET_Start(int)
{
    return false;
}
bool NET_SOCKET_Stop(int)
{
    return false;
}
bool NET_SOCKET_UnRegisterNode(int)
{
    return false;
}

struct CommandCase
{
    const char* name;
    int (*run)(CHttpClient& client, std::string& answer);
    const char* path;
    unsigned int answerBytes;
    unsigned int timeoutMs;
};

class HttpClientExchange : public testing::TestWithParam<CommandCase>
{
protected:
    HttpClientExchange() : m_client("admin", "secret", "10.0.0.1", 80)
    {
        Exchanges().clear();
        m_client.SetServiceTable({{SERVICE_DEVICE, "device"},
                                  {SERVICE_MEDIA, "media"},
                                  {SERVICE_EVENTS, "events"},
                                  {SERVICE_PTZ, "ptz"},
                                  {SERVICE_IMAGING, "imaging"},
                                  {SERVICE_ANALYTICS, "analytics"},
                                  {SERVICE_DEVICEIO, "deviceIO"}});
        ONVIF_PROFILE_TOKEN profile{};
        std::snprintf(profile.videoAnalyticsToken, sizeof(profile.videoAnalyticsToken), "A1");
        m_client.SetProfileList({profile});
    }

    CHttpClient m_client;
};

TEST_P(HttpClientExchange, GoesToItsServiceWithItsLimits)
{
    std::string answer;
    GetParam().run(m_client, answer);
    ASSERT_EQ(1U, Exchanges().size());
    EXPECT_EQ(GetParam().path, Exchanges()[0].path);
    EXPECT_EQ(GetParam().answerBytes, Exchanges()[0].answerBytes);
    EXPECT_EQ(GetParam().timeoutMs, Exchanges()[0].timeoutMs);
    EXPECT_EQ(":Envelope>", Exchanges()[0].endMark);
}

using Client = CHttpClient;

/// A method without the host's request.
template <int (Client::*METHOD)(std::string&)>
int Read(Client& client, std::string& answer)
{
    return (client.*METHOD)(answer);
}

/// A method with the host's request, which names the profile, a tour and all that some method wants.
template <int (Client::*METHOD)(const std::string&, std::string&)>
int Do(Client& client, std::string& answer)
{
    const std::string tour = "<profileToken>P</profileToken><token>T</token>";
    const std::string set = "<Set><delCruise>" + tour + "</delCruise><startCruise>" + tour +
                            "</startCruise><stopCruise>" + tour + "</stopCruise><pauseCruise>" + tour +
                            "</pauseCruise><videoEncodeCfg><item><index>0</index></item></videoEncodeCfg>"
                            "<motion><name>N</name><area/></motion><renew><serverAddr>http://h/renewed</serverAddr>"
                            "</renew><dns/><networkProtocols/></Set>";
    const std::string get =
        "<Get><profile><index>0</index></profile><videoEncoderCfg><index>0</index></videoEncoderCfg>"
        "<videoEncoderCfgOpts><index>0</index></videoEncoderCfgOpts></Get>";
    return (client.*METHOD)("<request>" + set + get + "</request>", answer);
}

int Services(Client& client, std::string& /*answer*/)
{
    std::map<std::string, std::string> urls;
    return client.GetServersUrl(urls);
}

int Capabilities(Client& client, std::string& /*answer*/)
{
    std::map<std::string, std::string> urls;
    return client.GetAllCapabilitieUrls(urls);
}

int Profiles(Client& client, std::string& answer)
{
    std::vector<ONVIF_PROFILE_TOKEN> profiles;
    return client.GetProfiles(answer, profiles);
}

int SnapshotUri(Client& client, std::string& answer)
{
    std::string uri;
    return client.GetSnapshotUri("", answer, uri);
}

int PtzOptions(Client& client, std::string& /*answer*/)
{
    return client.GetPTZCfgOptions();
}

int FocusOptions(Client& client, std::string& /*answer*/)
{
    return client.GetImgMoveOptions();
}

int General(Client& client, std::string& answer)
{
    std::string request = "<a/>";
    return client.MakeUpSend("general", request, answer, 1234);
}

// clang-format off
const CommandCase COMMAND_CASES[] = {
    {"Services",          &Services,                                               "onvif/device_service", 30720, 2500},
    {"Capabilities",      &Capabilities,                                           "onvif/device_service", 8192,  2500},
    {"MediaService",      &Read<&Client::GetMediaService>,                         "onvif/device_service", 8192,  2500},
    {"ReplayService",     &Read<&Client::GetReplayService>,                        "onvif/device_service", 8192,  2500},
    {"General",           &General,                                                "general",              30720, 1234},
    {"Network",           &Read<&Client::GetNetwork>,                              "device",               8192,  5000},
    {"Gateway",           &Read<&Client::GetGateway>,                              "device",               8192,  5000},
    {"SetNetwork",        &Do<&Client::SetNerwork>,                                "device",               8192,  5000},
    {"SetGateway",        &Do<&Client::SetGateway>,                                "device",               8192,  5000},
    {"DateAndTime",       &Read<&Client::GetSystemDateAndTime>,                    "device",               8192,  5000},
    {"SetDateAndTime",    &Do<&Client::SetSystemDateAndTime>,                      "device",               8192,  5000},
    {"DeviceInformation", &Read<&Client::GetDeviceInformation>,                    "device",               8192,  5000},
    {"Dns",               &Read<&Client::GetDNS>,                                  "device",               8192,  5000},
    {"SetDns",            &Do<&Client::SetDNS>,                                    "device",               8192,  5000},
    {"Protocols",         &Read<&Client::GetNetworkProtocols>,                     "device",               8192,  5000},
    {"SetProtocols",      &Do<&Client::SetNetworkProtocols>,                       "device",               8192,  5000},
    {"PullPoint",         &Do<&Client::CreatePullPointSubscription>,               "events",               8192,  5000},
    {"Subscribe",         &Do<&Client::Subscribe>,                                 "events",               8192,  5000},
    {"Renew",             &Do<&Client::Renew>,                                     "renewed",              8192,  2500},
    {"Profiles",          &Profiles,                                               "media",                46080, 5000},
    {"Profile",           &Do<&Client::GetProfile>,                                "media",                10240, 5000},
    {"EncoderOptions",    &Do<&Client::GetVideoEncoderConfigurationOption>,        "media",                10240, 5000},
    {"Encoder",           &Do<&Client::GetVideoEncoderConfiguration>,              "media",                8192,  5000},
    {"SetEncoder",        &Do<&Client::SetVideoEncoderConfiguration>,              "media",                8192,  8000},
    {"StreamUri",         &Do<&Client::GetStreamUri>,                              "media",                8192,  5000},
    {"SnapshotUri",       &SnapshotUri,                                            "media",                8192,  5000},
    {"ImgOptions",        &Do<&Client::GetImgOptions>,                             "imaging",              8192,  5000},
    {"ImgSettings",       &Do<&Client::GetImgSettings>,                            "imaging",              8192,  5000},
    {"SetImgSettings",    &Do<&Client::SetImgSettings>,                            "imaging",              8192,  5000},
    {"ImgStop",           &Do<&Client::ImgStop>,                                   "imaging",              8192,  5000},
    {"ContinuousFocus",   &Do<&Client::ContinuousFocus>,                           "imaging",              8192,  5000},
    {"FocusOptions",      &FocusOptions,                                           "imaging",              8192,  5000},
    {"ContinuousMove",    &Do<&Client::ContinuousMove>,                            "ptz",                  8192,  5000},
    {"PtzStop",           &Do<&Client::PTZStop>,                                   "ptz",                  8192,  5000},
    {"Presets",           &Do<&Client::GetPresets>,                                "ptz",                  20480, 5000},
    {"AddPreset",         &Do<&Client::AddPreset>,                                 "ptz",                  8192,  5000},
    {"ModifyPresetName",  &Do<&Client::ModifyPresetName>,                          "ptz",                  8192,  5000},
    {"RemovePreset",      &Do<&Client::RemovePreset>,                              "ptz",                  8192,  5000},
    {"GotoPreset",        &Do<&Client::GotoPreset>,                                "ptz",                  8192,  5000},
    {"Cruises",           &Do<&Client::GetCruises>,                                "ptz",                  8192,  5000},
    {"AddCruise",         &Do<&Client::AddCruise>,                                 "ptz",                  8192,  5000},
    {"ModifyCruise",      &Do<&Client::ModifyCruise>,                              "ptz",                  8192,  5000},
    {"DelCruise",         &Do<&Client::DelCruise>,                                 "ptz",                  8192,  5000},
    {"StartCruise",       &Do<&Client::StartCruise>,                               "ptz",                  8192,  5000},
    {"StopCruise",        &Do<&Client::StopCruise>,                                "ptz",                  8192,  5000},
    {"PauseCruise",       &Do<&Client::PauseCruise>,                               "ptz",                  8192,  5000},
    {"PtzOptions",        &PtzOptions,                                             "ptz",                  8192,  5000},
    {"MotionCfg",         &Read<&Client::GetMotionCfg>,                            "analytics",            8192,  5000},
    {"MotionArea",        &Read<&Client::GetMotionArea>,                           "analytics",            8192,  5000},
    {"SetMotionCfg",      &Do<&Client::SetMotionCfg>,                              "analytics",            8192,  5000},
    {"SetMotionArea",     &Do<&Client::SetMotionArea>,                             "analytics",            8192,  5000},
    {"Alarmout",          &Read<&Client::GetAlarmout>,                             "device",               8192,  5000},
    {"SetAlarmout",       &Do<&Client::SetAlarmout>,                               "device",               8192,  5000},
    {"ManualAlarmout",    &Do<&Client::ManualAlarmout>,                            "deviceIO",             8192,  5000},
    {"Alarmin",           &Read<&Client::GetAlarmin>,                              "deviceIO",             8192,  5000},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Commands, HttpClientExchange, testing::ValuesIn(COMMAND_CASES),
                         [](const testing::TestParamInfo<CommandCase>& one) { return std::string(one.param.name); });

TEST(HttpClientMotionWithoutAnalytics, AsksNothing)
{
    Exchanges().clear();
    CHttpClient client("", "", "10.0.0.1", 80);
    std::string answer;
    for (const std::vector<ONVIF_PROFILE_TOKEN>& profiles :
         {std::vector<ONVIF_PROFILE_TOKEN>(), {ONVIF_PROFILE_TOKEN{}}})
    {
        client.SetProfileList(profiles);
        EXPECT_EQ(ONVIF_UNREADABLE, client.GetMotionCfg(answer));
        EXPECT_EQ(ONVIF_UNREADABLE, client.GetMotionArea(answer));
        EXPECT_EQ(ONVIF_OK, client.SetMotionCfg("<Set><motion><name>N</name></motion></Set>", answer));
        EXPECT_EQ(ONVIF_OK, client.SetMotionArea("<Set><motion><area/></motion></Set>", answer));
    }
    EXPECT_TRUE(Exchanges().empty());
    EXPECT_EQ("", answer);
}

// One exchange for each encoder that has a profile; the others are passed over.
TEST(HttpClientEncoders, PassesOverAnIndexWithoutAProfile)
{
    Exchanges().clear();
    CHttpClient client("", "", "10.0.0.1", 80);
    client.SetProfileList({ONVIF_PROFILE_TOKEN{}});
    std::string answer;
    const std::string nobody = "<item><index>1</index></item><item><index>-1</index></item><item/>";
    EXPECT_EQ(ONVIF_NOTHING_DONE, client.SetVideoEncoderConfiguration(
                                      "<Set><videoEncodeCfg>" + nobody + "</videoEncodeCfg></Set>", answer));
    EXPECT_EQ("", answer);
    EXPECT_EQ(ONVIF_OK,
              client.SetVideoEncoderConfiguration("<Set><videoEncodeCfg>" + nobody + "<item><index>0</index></item>" +
                                                      nobody + "<item><index>0</index></item></videoEncodeCfg></Set>",
                                                  answer));
    EXPECT_EQ(2U, Exchanges().size());
}
