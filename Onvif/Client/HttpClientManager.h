// HttpClientManager.h: the devices that the host has logged in to, by token.
//
// Any thread. The lock is never held during network traffic.
#pragma once

#include "HttpClient.h"
#include "Lock.h"
#include "NetTypes.h"

#include <map>
#include <string>

class CONVIFAlarmStateObserver;

class CHttpClientManager
{
public:
    /// Where cameras deliver their notifications.
    static constexpr unsigned short NOTIFICATION_PORT = 6699;

    static CHttpClientManager& Instance();
    CHttpClientManager(const CHttpClientManager&) = delete;
    CHttpClientManager& operator=(const CHttpClientManager&) = delete;
    ~CHttpClientManager();

    bool Init(); ///< @return true
    bool Quit(); ///< @return true

    /// See ONVIF_CLIENT_Login.
    unsigned int ClientLogin(unsigned int token, const char* ip, unsigned short port, const char* user,
                             const char* password, unsigned int* error);
    /// Lets a running command end, and then the client. @return true, also for an unknown token
    bool ClientLogout(unsigned int token);

    /// See CHttpClient::GetCfg and SetCfg; true, with nothing in the response, for an unknown token.
    bool GetCfg(unsigned int token, const std::string& request, char*& response, int* length);
    bool SetCfg(unsigned int token, const std::string& request, std::string& response);

    bool AddAlarmStateObserver(unsigned int token, CONVIFAlarmStateObserver* observer);
    bool DelAlarmStateObserver(unsigned int token);

    int LiveStreamStart(unsigned int token, int channel, NETNS::RTSP_NETPROTOCOL protocol,
                        NETNS::RTSP_MEDIADATA_TYPE type, CRTSPReceiver* receiver, unsigned int* result);
    bool LiveStreamStop(unsigned int token, int streamId);
    /// @return the next number, from 1 on
    unsigned int GetStreamID();

    /// @return the client with a reference for the caller, given back by ReleaseClient; null for an unknown token
    CHttpClient* GetClient(unsigned int token);
    /// @return false for an unknown token
    bool ReleaseClient(unsigned int token);

private:
    struct CLIENT_ENTRY
    {
        CHttpClient* client; // one reference until the logout
        bool loggedOut;      // stays findable until the last command has ended
    };

    CHttpClientManager() = default;
    void DropReference(std::map<unsigned int, CLIENT_ENTRY>::iterator entry) REQUIRES(m_lock);

    CLock m_lock; // before a client's own locks
    std::map<unsigned int, CLIENT_ENTRY> m_clients GUARDED_BY(m_lock);

    CLock m_streamLock;
    unsigned int m_nextStreamId GUARDED_BY(m_streamLock) = 0; // the last one given out

    static unsigned int ms_nTokenIdx; // the last token given out; guarded by m_lock
};
