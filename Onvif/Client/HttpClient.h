// HttpClient.h: one ONVIF device that the host has logged in to.
//
// Each command is one HTTP exchange with the device: a SOAP request from CGetDefaultCmd, the security header, the
// answer through a transform of CXmlTransform. Nothing is kept open between commands.
//
// The sources are split by topic: HttpClient.cpp (life, tables), HttpClientLogin.cpp, HttpClientDispatch.cpp (the keys
// of the host's documents), HttpClientTransport.cpp (the exchange), and per family of commands, beside their builders
// and transforms, HttpClientServices, HttpClientDevice, HttpClientEvents, HttpClientMedia, HttpClientImaging,
// HttpClientPtz and HttpClientMotion.
//
// Any thread; a call lasts as long as its exchanges. Commands of one client may run at the same time.
#pragma once

#include "Lock.h"
#include "OnvifTypes.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

class COnvifXmlParse;
class CRTSPReceiver;

class CHttpClient
{
public:
    /// @param user, password  at most 63 bytes each, and 63 together with the colon between them; what is more is cut
    /// @param ip              dotted text of at most 63 bytes
    CHttpClient(const char* user, const char* password, const char* ip, unsigned short port);
    CHttpClient(const CHttpClient&) = delete;
    CHttpClient& operator=(const CHttpClient&) = delete;
    ~CHttpClient();

    /// Takes other credentials and another address. Whether there are credentials at all stays as constructed.
    /// @return false, with nothing changed, when a pointer is null
    bool Init(const char* user, const char* password, const char* ip, unsigned short port);

    /// Finds the device's services and profiles. @return an ONVIF_RESULT
    int Login();

    /// References: 1 after construction. Dec deletes the client when none is left. @return the references left
    int Add();
    int Dec();

    /// What the device said about events at login.
    void GetEventMode(bool& subscription, bool& pullPoint) const;
    const char* GetIP() const { return m_serverIp; }
    unsigned short GetPort() const { return m_serverPort; }

    /// Answers a "Get" document of the host, key by key.
    /// @param response  receives an array from new[] that ends in a zero byte, or a picture; left alone when there is
    ///                  no answer. It is taken back by ONVIF_CLIENT_DelResponseBuff.
    /// @param length    receives the bytes of `response`, the zero byte included; null: not asked for
    /// @return false when a key failed in the exchange
    bool GetCfg(const std::string& request, char*& response, int* length);
    /// Carries out a "Set" document of the host, key by key. @return false when a key failed in the exchange
    bool SetCfg(const std::string& request, std::string& response);

    /// Live streaming is not in service: false, and true for the stop.
    bool LiveStreamStart(int channel, unsigned int protocol, unsigned int type, CRTSPReceiver* receiver,
                         unsigned int* result);
    bool LiveStreamStop(int streamId);

    // Tables of the device, as copies.

    /// @return false when there is no such profile
    bool GetProfileAt(int index, ONVIF_PROFILE_TOKEN& profile) const;
    std::vector<ONVIF_PROFILE_TOKEN> GetProfileList() const;
    void SetProfileList(const std::vector<ONVIF_PROFILE_TOKEN>& profiles);
    std::map<std::string, std::string> GetServiceTable() const;
    void SetServiceTable(const std::map<std::string, std::string>& services);

    // The exchange.

    /// Fills the security header of a request, or takes it out when there are no credentials.
    /// @return 1; 0 when an element is missing
    int Authentication(COnvifXmlParse& doc) const;
    /// @param out  room for 33 bytes: 32 hexadecimal digits that differ in each call, and a zero byte
    static void CreateNonce(char* out);
    /// @param out  receives the time as "2026-11-21T13:30:00Z"
    static void CreateUtcTime(char* out, int size);
    /// The password digest (WS-Security UsernameToken Profile 1.0) in Base64. @param out  room for 29 bytes
    void SHA1(char* nonce, char* created, char* out) const;
    /// @param out  room for (length + 2) / 3 * 4 + 1 bytes
    static void Base64Encode(const char* in, char* out);
    /// Frames an HTTP request; what exceeds 8191 bytes is cut, while Content-Length tells the whole body.
    void MakeupHttpProtocol(const char* url, const char* body, unsigned int bodyLen, std::string& out) const;
    /// One exchange, TABs of the body left out.
    /// @param recvBuf   receives the answer, with a zero byte behind it
    /// @param recvSize  room in `recvBuf`, the zero byte included
    /// @return as NET_SOCKET_SimpleClientComm; -1 when `url` or `recvBuf` is null
    int SendHttpReq(const char* url, const char* body, unsigned int bodyLen, char* recvBuf, unsigned int recvSize,
                    int timeoutMs) const;
    /// Sends to a service's path. One that the device did not tell is taken to be at the device service, from then on.
    int SendCommand(const std::string& service, const std::string& body, char* recvBuf, unsigned int recvSize,
                    int timeoutMs);
    /// Judges an answer without looking at its status line. @param xml  receives the document
    /// @return ONVIF_OK, ONVIF_NO_XML, ONVIF_NO_ENVELOPE or ONVIF_UNAUTHORIZED
    static int HttpRespCheck(const char* reply, std::string& xml);
    /// One exchange with a path of the caller's. @param request  SOAP without credentials; stays as it is
    /// @return as HttpRespCheck
    int MakeUpSend(const std::string& url, std::string& request, std::string& response, int timeoutMs);

    // Services of the device, at login.

    int GetServersUrl(std::map<std::string, std::string>& urls);
    int GetAllCapabilitieUrls(std::map<std::string, std::string>& urls);
    int GetMediaService(std::string& url);
    int GetPTZService(std::string& url);
    int GetImageService(std::string& url);
    int GetEventsService(std::string& url);
    int GetDeviceService(std::string& url);
    int GetAnalyticsService(std::string& url);
    int GetSearchService(std::string& url);
    int GetDeviceIOService(std::string& url);
    int GetReceiverService(std::string& url);
    int GetRecordingService(std::string& url);
    int GetDisplayService(std::string& url);
    int GetReplayService(std::string& url);

    // Device and network.

    int GetNetwork(std::string& answer);
    int GetGateway(std::string& answer);
    int SetNerwork(const std::string& request, std::string& answer);
    int SetGateway(const std::string& request, std::string& answer);
    int GetSystemDateAndTime(std::string& answer);
    int SetSystemDateAndTime(const std::string& request, std::string& answer);
    int GetDeviceInformation(std::string& answer);
    int GetDNS(std::string& answer);
    int SetDNS(const std::string& request, std::string& answer);
    int GetNetworkProtocols(std::string& answer);
    int SetNetworkProtocols(const std::string& request, std::string& answer);

    /// From memory.
    int GetServiceUrl(std::string& answer);
    int GetStreamCount(std::string& answer);

    // Events.

    int CreatePullPointSubscription(const std::string& request, std::string& answer);
    int Subscribe(const std::string& request, std::string& answer);
    int Unsubscribe(const std::string& request, std::string& answer);
    int Renew(const std::string& request, std::string& answer);
    /// Makes the HTTP request of a pull without sending it. @param answer  receives it
    int PullMessages(const std::string& request, std::string& answer);

    // Media.

    int GetProfiles(std::string& answer, std::vector<ONVIF_PROFILE_TOKEN>& profiles);
    int GetProfile(const std::string& request, std::string& answer);
    int GetVideoEncoderConfigurationOption(const std::string& request, std::string& answer);
    int GetVideoEncoderConfiguration(const std::string& request, std::string& answer);
    int SetVideoEncoderConfiguration(const std::string& request, std::string& answer);
    int GetStreamUri(const std::string& request, std::string& answer);
    int GetSnapshotUri(const std::string& request, std::string& answer, std::string& uri);
    int GetSnapshotFile(const std::string& request, char*& data, int& size);
    int GetSnapshotData(std::string url, char*& data, int& size);

    // Imaging.

    int GetImgOptions(const std::string& request, std::string& answer);
    int GetImgSettings(const std::string& request, std::string& answer);
    int SetImgSettings(const std::string& request, std::string& answer);
    int ImgStop(const std::string& request, std::string& answer);
    int ContinuousFocus(const std::string& request, std::string& answer);
    int GetImgMoveOptions();

    // PTZ and cruises.

    int ContinuousMove(const std::string& request, std::string& answer);
    int PTZStop(const std::string& request, std::string& answer);
    int GetPresets(const std::string& request, std::string& answer);
    int AddPreset(const std::string& request, std::string& answer);
    int ModifyPresetName(const std::string& request, std::string& answer);
    int RemovePreset(const std::string& request, std::string& answer);
    int GotoPreset(const std::string& request, std::string& answer);
    int GetCruises(const std::string& request, std::string& answer);
    int AddCruise(const std::string& request, std::string& answer);
    int ModifyCruise(const std::string& request, std::string& answer);
    int DelCruise(const std::string& request, std::string& answer);
    int StartCruise(const std::string& request, std::string& answer);
    int StopCruise(const std::string& request, std::string& answer);
    int PauseCruise(const std::string& request, std::string& answer);
    int GetPTZCfgOptions();

    // Motion, relays and digital inputs.

    int GetMotionCfg(std::string& answer);
    int GetMotionArea(std::string& answer);
    int SetMotionCfg(const std::string& request, std::string& answer);
    int SetMotionArea(const std::string& request, std::string& answer);
    int GetAlarmout(std::string& answer);
    int SetAlarmout(const std::string& request, std::string& answer);
    int ManualAlarmout(const std::string& request, std::string& answer);
    int GetAlarmin(std::string& answer);

private:
    /// Appends an answer's fields to the host's answer.
    using Transform = void (*)(const std::string& soap, std::string& answer);
    /// The same for one profile, by its index.
    using IndexedTransform = void (*)(const std::string& soap, std::string& answer, int index);
    /// Makes the request about one profile.
    using ProfileBuilder = std::string (*)(const ONVIF_PROFILE_TOKEN& profile);

    static constexpr unsigned int COMMAND_BUFFER = 8192;
    static constexpr int COMMAND_TIMEOUT_MS = 5000;
    static constexpr int DISCOVERY_TIMEOUT_MS = 2500;

    /// The steps that all commands share: security header, exchange with a service, check.
    /// @param request   SOAP of a builder; an empty one is sent as it stands and fails at the device
    /// @param recvSize  an answer of more bytes is cut
    /// @param xml       receives the answer's document
    /// @return as HttpRespCheck
    int Exchange(const char* service, const std::string& request, std::string& xml,
                 unsigned int recvSize = COMMAND_BUFFER, int timeoutMs = COMMAND_TIMEOUT_MS);
    /// The same with a path of the device instead of a service.
    int ExchangeAt(const std::string& url, const std::string& request, std::string& xml,
                   unsigned int recvSize = COMMAND_BUFFER, int timeoutMs = DISCOVERY_TIMEOUT_MS) const;
    /// An exchange whose answer goes through a transform. @return the exchange's result
    int Run(const char* service, const std::string& request, Transform transform, std::string& answer,
            unsigned int recvSize = COMMAND_BUFFER);
    /// Exchanges with the media service, one for each `index` of a host's request that has a profile.
    /// @param path  of the first `index`
    /// @return the last exchange's result, after a failure no further one; ONVIF_NOTHING_DONE without an exchange
    int RunForEachIndex(const std::string& request, const char* path, ProfileBuilder builder,
                        IndexedTransform transform, std::string& answer, unsigned int recvSize);
    /// An exchange whose answer is a `status` under a key of "SetResponse". @return the exchange's result
    int RunSet(const char* service, const std::string& request, const char* key, std::string& answer);
    /// The same for a cruise. @return ONVIF_MISSING_FIELD, without an exchange, when the request is empty
    int RunCruise(const std::string& request, const char* key, std::string& answer);
    /// @param head  receives the HTTP head
    void ReceivePicture(unsigned short port, const std::string& request, std::string& head, char*& data,
                        int& size) const;
    void KeepMotionName(char (ONVIF_PROFILE_TOKEN::*field)[64], const ONVIF_PROFILE_TOKEN& profile);
    std::string Stamp(const std::string& request) const;

    int GetCapabilitieUrl(SERVICE_TYPE type, std::string& url);
    void ReadRanges(const std::map<std::string, std::string>& services, const ONVIF_PROFILE_TOKEN& profile);
    std::string PathOf(const std::string& service);

    char m_username[64];
    char m_password[64];
    unsigned char m_hasCredentials; // constant after construction
    char m_serverIp[64];
    unsigned short m_serverPort;
    char m_basicAuth[128];

    // Never held during an exchange, nor together with another lock.
    mutable CLock m_lock;
    std::map<std::string, std::string> m_serviceUrls GUARDED_BY(m_lock); // path by service key, without leading "/"
    std::vector<ONVIF_PROFILE_TOKEN> m_profiles GUARDED_BY(m_lock);

    // Written by the login only, before other threads see the client.
    std::unique_ptr<ONVIF_PTZ_VELOCITY> m_ptzVelocity; // null: not known
    std::unique_ptr<ONVIF_RANGE> m_focusRange;         // null: not known
    bool m_wsSubscriptionSupport = true;
    bool m_wsPullPointSupport = false;

    CLock m_refLock;
    int m_refCount GUARDED_BY(m_refLock) = 1;
};
