// Where each exchange goes, how much it takes in and how long it may take. The linker puts the exchange of this file in
// place of the socket service's.
#include "HttpClient.h"

#include <gtest/gtest.h>

#include <cstring>

namespace
{

struct Exchange
{
    std::string path;
    unsigned int room; // for the answer, without its zero byte
    unsigned int timeoutMs;

    bool operator==(const Exchange& other) const
    {
        return path == other.path && room == other.room && timeoutMs == other.timeoutMs;
    }
    friend std::ostream& operator<<(std::ostream& out, const Exchange& one)
    {
        return out << one.path << ", " << one.room << " bytes, " << one.timeoutMs << " ms";
    }
};

using Exchanges = std::vector<Exchange>;

Exchanges& Seen()
{
    static Exchanges seen;
    return seen;
}

} // namespace

// A camera that never answers. The name is the socket service's, as the linker knows it.
extern "C" int __wrap__Z27NET_SOCKET_SimpleClientCommPKctS0_jPcjS0_j(const char* ip, unsigned short port,
                                                                     const char* send, unsigned int sendLen, char* recv,
                                                                     unsigned int recvSize, const char* endMark,
                                                                     unsigned int timeoutMs)
{
    EXPECT_STREQ("10.0.0.5", ip);
    EXPECT_EQ(8080, port);
    EXPECT_EQ(std::strlen(send), sendLen);
    EXPECT_STREQ(":Envelope>", endMark);
    EXPECT_EQ(recvSize - 1, std::string(recv, recvSize).find_last_of('\0'));
    const std::string request = send;
    const std::size_t path = request.find('/') + 1;
    Seen().push_back({request.substr(path, request.find(' ', path) - path), recvSize - 1, timeoutMs});
    return -1;
}

namespace
{

/// A client that knows a path for each service, and one profile.
class HttpClientExchanges : public testing::Test
{
protected:
    HttpClientExchanges()
    {
        Seen().clear();
        std::map<std::string, std::string> services;
        for (const char* service : {SERVICE_DEVICE, SERVICE_MEDIA, SERVICE_EVENTS, SERVICE_PTZ, SERVICE_IMAGING,
                                    SERVICE_DEVICEIO, SERVICE_ANALYTICS})
        {
            services[service] = std::string("at/") + service;
        }
        m_client.SetServiceTable(services);
        ONVIF_PROFILE_TOKEN profile{};
        std::strcpy(profile.profileToken, "P");
        std::strcpy(profile.videoAnalyticsToken, "A");
        m_client.SetProfileList({profile});
    }

    CHttpClient m_client{"admin", "secret", "10.0.0.5", 8080};
    std::string m_text;
};

using Read = int (CHttpClient::*)(std::string& answer);
using Write = int (CHttpClient::*)(const std::string& request, std::string& answer);

// clang-format off
const Read DISCOVERY[] = {
    &CHttpClient::GetMediaService,    &CHttpClient::GetPTZService,       &CHttpClient::GetImageService,
    &CHttpClient::GetEventsService,   &CHttpClient::GetDeviceService,    &CHttpClient::GetAnalyticsService,
    &CHttpClient::GetSearchService,   &CHttpClient::GetDeviceIOService,  &CHttpClient::GetReceiverService,
    &CHttpClient::GetRecordingService, &CHttpClient::GetDisplayService,  &CHttpClient::GetReplayService,
};

struct ReadCase
{
    Read method;
    Exchange exchange;
};

const ReadCase READS[] = {
    {&CHttpClient::GetNetwork,           {"at/device",    8192, 5000}},
    {&CHttpClient::GetGateway,           {"at/device",    8192, 5000}},
    {&CHttpClient::GetSystemDateAndTime, {"at/device",    8192, 5000}},
    {&CHttpClient::GetDeviceInformation, {"at/device",    8192, 5000}},
    {&CHttpClient::GetDNS,               {"at/device",    8192, 5000}},
    {&CHttpClient::GetNetworkProtocols,  {"at/device",    8192, 5000}},
    {&CHttpClient::GetMotionCfg,         {"at/analytics", 8192, 5000}},
    {&CHttpClient::GetMotionArea,        {"at/analytics", 8192, 5000}},
    {&CHttpClient::GetAlarmout,          {"at/device",    8192, 5000}},
    {&CHttpClient::GetAlarmin,           {"at/deviceIO",  8192, 5000}},
};

struct WriteCase
{
    Write method;
    const char* request;
    Exchange exchange;
};

const WriteCase WRITES[] = {
    {&CHttpClient::SetNerwork,                         "<Set/>",                                                  {"at/device",    8192,  5000}},
    {&CHttpClient::SetGateway,                         "<Set/>",                                                  {"at/device",    8192,  5000}},
    {&CHttpClient::SetSystemDateAndTime,               "<Set/>",                                                  {"at/device",    8192,  5000}},
    {&CHttpClient::SetDNS,                             "<Set/>",                                                  {"at/device",    8192,  5000}},
    {&CHttpClient::SetNetworkProtocols,                "<Set/>",                                                  {"at/device",    8192,  5000}},
    {&CHttpClient::CreatePullPointSubscription,        "<Set/>",                                                  {"at/events",    8192,  5000}},
    {&CHttpClient::Subscribe,                          "<Set/>",                                                  {"at/events",    8192,  5000}},
    {&CHttpClient::Unsubscribe,                        "<Set/>",                                                  {"at/events",    8192,  5000}},
    {&CHttpClient::Renew,                              "<Set><renew><serverAddr>http://h/s/1</serverAddr></renew></Set>", {"s/1",  8192,  2500}},
    {&CHttpClient::Renew,                              "<Set><renew><serverAddr>h</serverAddr></renew></Set>",    {"onvif/device_service", 8192, 2500}},
    {&CHttpClient::GetProfile,                         "<Get><profile><index>0</index></profile></Get>",          {"at/media",     10240, 5000}},
    {&CHttpClient::GetVideoEncoderConfigurationOption, "<Get><videoEncoderCfgOpts><index>0</index></videoEncoderCfgOpts></Get>", {"at/media", 10240, 5000}},
    {&CHttpClient::GetVideoEncoderConfiguration,       "<Get><videoEncoderCfg><index>0</index></videoEncoderCfg></Get>", {"at/media", 8192, 5000}},
    {&CHttpClient::SetVideoEncoderConfiguration,       "<Set><videoEncodeCfg><item><index>0</index></item></videoEncodeCfg></Set>", {"at/media", 8192, 8000}},
    {&CHttpClient::GetStreamUri,                       "<Get/>",                                                  {"at/media",     8192,  5000}},
    {&CHttpClient::GetImgOptions,                      "<Get/>",                                                  {"at/imaging",   8192,  5000}},
    {&CHttpClient::GetImgSettings,                     "<Get/>",                                                  {"at/imaging",   8192,  5000}},
    {&CHttpClient::SetImgSettings,                     "<Set/>",                                                  {"at/imaging",   8192,  5000}},
    {&CHttpClient::ImgStop,                            "<Set/>",                                                  {"at/imaging",   8192,  5000}},
    {&CHttpClient::ContinuousFocus,                    "<Set/>",                                                  {"at/imaging",   8192,  5000}},
    {&CHttpClient::ContinuousMove,                     "<Set/>",                                                  {"at/ptz",       8192,  5000}},
    {&CHttpClient::PTZStop,                            "<Set/>",                                                  {"at/ptz",       8192,  5000}},
    {&CHttpClient::GetPresets,                         "<Get/>",                                                  {"at/ptz",       20480, 5000}},
    {&CHttpClient::AddPreset,                          "<Set/>",                                                  {"at/ptz",       8192,  5000}},
    {&CHttpClient::ModifyPresetName,                   "<Set/>",                                                  {"at/ptz",       8192,  5000}},
    {&CHttpClient::RemovePreset,                       "<Set/>",                                                  {"at/ptz",       8192,  5000}},
    {&CHttpClient::GotoPreset,                         "<Set/>",                                                  {"at/ptz",       8192,  5000}},
    {&CHttpClient::GetCruises,                         "<Get/>",                                                  {"at/ptz",       8192,  5000}},
    {&CHttpClient::AddCruise,                          "<Set><addCruise/></Set>",                                 {"at/ptz",       8192,  5000}},
    {&CHttpClient::ModifyCruise,                       "<Set><modifyCruise/></Set>",                              {"at/ptz",       8192,  5000}},
    {&CHttpClient::DelCruise,                          "<Set><delCruise><profileToken>P</profileToken><token>t</token></delCruise></Set>", {"at/ptz", 8192, 5000}},
    {&CHttpClient::StartCruise,                        "<Set><startCruise><profileToken>P</profileToken><token>t</token></startCruise></Set>", {"at/ptz", 8192, 5000}},
    {&CHttpClient::StopCruise,                         "<Set><stopCruise><profileToken>P</profileToken><token>t</token></stopCruise></Set>", {"at/ptz", 8192, 5000}},
    {&CHttpClient::PauseCruise,                        "<Set><pauseCruise><profileToken>P</profileToken><token>t</token></pauseCruise></Set>", {"at/ptz", 8192, 5000}},
    {&CHttpClient::SetMotionCfg,                       "<Set><motion><name>m</name></motion></Set>",              {"at/analytics", 8192,  5000}},
    {&CHttpClient::SetMotionArea,                      "<Set><motion><area><item>1</item></area></motion></Set>", {"at/analytics", 8192,  5000}},
    {&CHttpClient::SetAlarmout,                        "<Set/>",                                                  {"at/device",    8192,  5000}},
    {&CHttpClient::ManualAlarmout,                     "<Set/>",                                                  {"at/deviceIO",  8192,  5000}},
};
// clang-format on

TEST_F(HttpClientExchanges, OfReadsGoToTheirService)
{
    for (const ReadCase& one : READS)
    {
        Seen().clear();
        EXPECT_EQ(4, (m_client.*one.method)(m_text));
        EXPECT_EQ(Exchanges{one.exchange}, Seen());
    }
}

TEST_F(HttpClientExchanges, OfRequestsGoToTheirService)
{
    for (const WriteCase& one : WRITES)
    {
        Seen().clear();
        EXPECT_EQ(4, (m_client.*one.method)(one.request, m_text)) << one.request;
        EXPECT_EQ(Exchanges{one.exchange}, Seen()) << one.request;
    }
    EXPECT_EQ("", m_text);
}

TEST_F(HttpClientExchanges, AboutServicesGoToTheUsualPath)
{
    const Exchange QUESTION = {"onvif/device_service", 8192, 2500};
    std::map<std::string, std::string> urls;
    EXPECT_EQ(4, m_client.GetServersUrl(urls));
    EXPECT_EQ(4, m_client.GetAllCapabilitieUrls(urls));
    Exchanges expected = {{"onvif/device_service", 30720, 2500}, QUESTION};
    for (const Read category : DISCOVERY)
    {
        EXPECT_EQ(4, (m_client.*category)(m_text));
        expected.push_back(QUESTION);
    }
    EXPECT_EQ(expected, Seen());
}

TEST_F(HttpClientExchanges, AboutProfilesAndRangesHaveRoomOfTheirOwn)
{
    std::vector<ONVIF_PROFILE_TOKEN> profiles(1);
    EXPECT_EQ(4, m_client.GetProfiles(m_text, profiles));
    EXPECT_TRUE(profiles.empty());
    EXPECT_EQ(4, m_client.GetPTZCfgOptions());
    EXPECT_EQ(4, m_client.GetImgMoveOptions());
    std::string uri;
    EXPECT_EQ(4, m_client.GetSnapshotUri("<Get/>", m_text, uri));
    EXPECT_EQ(
        (Exchanges{
            {"at/media", 46080, 5000}, {"at/ptz", 8192, 5000}, {"at/imaging", 8192, 5000}, {"at/media", 8192, 5000}}),
        Seen());
}

TEST_F(HttpClientExchanges, OfTheGeneralFormHaveTheCallersTime)
{
    std::string request = "<s:Envelope/>";
    EXPECT_EQ(4, m_client.MakeUpSend("some/path", request, m_text, 1234));
    EXPECT_EQ((Exchanges{{"some/path", 30720, 1234}}), Seen());
}

// Fourteen questions about services and one about profiles: 40 seconds at most.
TEST_F(HttpClientExchanges, OfALoginEndAfterFortySeconds)
{
    EXPECT_EQ(4, m_client.Login());
    EXPECT_EQ(15u, Seen().size());
    unsigned int total = 0;
    for (const Exchange& one : Seen())
    {
        total += one.timeoutMs;
    }
    EXPECT_EQ(40000u, total);
    EXPECT_EQ("onvif/Media", Seen().back().path);
}

TEST_F(HttpClientExchanges, AboutMotionNeedAnAnalyticsConfiguration)
{
    for (const std::vector<ONVIF_PROFILE_TOKEN>& profiles :
         {std::vector<ONVIF_PROFILE_TOKEN>(), std::vector<ONVIF_PROFILE_TOKEN>(1)})
    {
        m_client.SetProfileList(profiles);
        EXPECT_EQ(ONVIF_UNREADABLE, m_client.GetMotionCfg(m_text));
        EXPECT_EQ(ONVIF_UNREADABLE, m_client.GetMotionArea(m_text));
        EXPECT_EQ(ONVIF_OK, m_client.SetMotionCfg("<Set><motion><name>N</name></motion></Set>", m_text));
        EXPECT_EQ(ONVIF_OK, m_client.SetMotionArea("<Set><motion><area/></motion></Set>", m_text));
    }
    EXPECT_TRUE(Seen().empty());
    EXPECT_EQ("", m_text);
}

// One exchange for each encoder that has a profile; the others are passed over.
TEST_F(HttpClientExchanges, AboutEncodersNeedTheirProfile)
{
    const std::string nobody = "<item><index>1</index></item><item><index>-1</index></item><item/>";
    EXPECT_EQ(ONVIF_NOTHING_DONE, m_client.SetVideoEncoderConfiguration(
                                      "<Set><videoEncodeCfg>" + nobody + "</videoEncodeCfg></Set>", m_text));
    EXPECT_TRUE(Seen().empty());
    EXPECT_EQ(ONVIF_NO_XML,
              m_client.SetVideoEncoderConfiguration("<Set><videoEncodeCfg>" + nobody + "<item><index>0</index></item>" +
                                                        nobody + "</videoEncodeCfg></Set>",
                                                    m_text));
    EXPECT_EQ(1U, Seen().size());
}

} // namespace
