#include "HttpClientManager.h"

#include "OnvifEventCtrol.h"

namespace
{

constexpr unsigned int NEW_LOGIN = 0xFFFFFFFF;
constexpr unsigned int NO_TOKEN = 0xFFFFFFFF;

} // namespace

unsigned int CHttpClientManager::ms_nTokenIdx = 0;

CHttpClientManager& CHttpClientManager::Instance()
{
    static CHttpClientManager instance;
    return instance;
}

CHttpClientManager::~CHttpClientManager()
{
    for (const auto& [token, entry] : m_clients)
    {
        delete entry.client;
    }
}

bool CHttpClientManager::Init()
{
    COnvifEventCtrol::Instance().Start(NOTIFICATION_PORT);
    return true;
}

bool CHttpClientManager::Quit()
{
    COnvifEventCtrol::Instance().Stop();
    return true;
}

unsigned int CHttpClientManager::ClientLogin(unsigned int token, const char* ip, unsigned short port, const char* user,
                                             const char* password, unsigned int* error)
{
    if (token != NEW_LOGIN)
    {
        CMySingleLock guard(m_lock);
        return m_clients.count(token) != 0 ? token : NO_TOKEN;
    }
    if (ip == nullptr || user == nullptr || password == nullptr)
    {
        return NO_TOKEN;
    }
    CHttpClient* const client = new CHttpClient(user, password, ip, port);
    const int result = client->Login(); // nobody else knows the client yet
    if (error != nullptr)
    {
        *error = static_cast<unsigned int>(result);
    }
    if (result != ONVIF_OK)
    {
        client->Dec();
        return NO_TOKEN;
    }
    CMySingleLock guard(m_lock);
    m_clients[++ms_nTokenIdx] = {client, false};
    return ms_nTokenIdx;
}

bool CHttpClientManager::ClientLogout(unsigned int token)
{
    CMySingleLock guard(m_lock);
    const auto entry = m_clients.find(token);
    if (entry != m_clients.end() && !entry->second.loggedOut)
    {
        entry->second.loggedOut = true;
        DropReference(entry);
    }
    return true;
}

void CHttpClientManager::DropReference(std::map<unsigned int, CLIENT_ENTRY>::iterator entry)
{
    if (entry->second.client->Dec() == 0)
    {
        m_clients.erase(entry);
    }
}

CHttpClient* CHttpClientManager::GetClient(unsigned int token)
{
    CMySingleLock guard(m_lock);
    const auto entry = m_clients.find(token);
    if (entry == m_clients.end())
    {
        return nullptr;
    }
    entry->second.client->Add();
    return entry->second.client;
}

bool CHttpClientManager::ReleaseClient(unsigned int token)
{
    CMySingleLock guard(m_lock);
    const auto entry = m_clients.find(token);
    if (entry == m_clients.end())
    {
        return false;
    }
    DropReference(entry);
    return true;
}

bool CHttpClientManager::GetCfg(unsigned int token, const std::string& request, char*& response, int* length)
{
    CHttpClient* const client = GetClient(token);
    if (client == nullptr)
    {
        return true;
    }
    const bool result = client->GetCfg(request, response, length);
    ReleaseClient(token);
    return result;
}

bool CHttpClientManager::SetCfg(unsigned int token, const std::string& request, std::string& response)
{
    CHttpClient* const client = GetClient(token);
    if (client == nullptr)
    {
        return true;
    }
    const bool result = client->SetCfg(request, response);
    ReleaseClient(token);
    return result;
}

// An unknown token counts as a device that takes subscriptions, at no address.
bool CHttpClientManager::AddAlarmStateObserver(unsigned int token, CONVIFAlarmStateObserver* observer)
{
    std::string ip;
    bool subscription = true;
    bool pullPoint = false;
    if (CHttpClient* const client = GetClient(token))
    {
        ip = client->GetIP();
        client->GetEventMode(subscription, pullPoint);
        ReleaseClient(token);
    }
    COnvifEventCtrol::Instance().AddObserver(token, observer, ip, subscription, pullPoint);
    return true;
}

bool CHttpClientManager::DelAlarmStateObserver(unsigned int token)
{
    COnvifEventCtrol::Instance().DelObserver(token);
    return true;
}

int CHttpClientManager::LiveStreamStart(unsigned int token, int channel, NETNS::RTSP_NETPROTOCOL protocol,
                                        NETNS::RTSP_MEDIADATA_TYPE type, CRTSPReceiver* receiver, unsigned int* result)
{
    const unsigned int streamId = GetStreamID();
    CHttpClient* const client = GetClient(token);
    if (client == nullptr)
    {
        return 0;
    }
    const bool started = client->LiveStreamStart(channel, protocol, type, receiver, result);
    ReleaseClient(token);
    return started ? static_cast<int>(streamId) : 0;
}

bool CHttpClientManager::LiveStreamStop(unsigned int token, int streamId)
{
    CHttpClient* const client = GetClient(token);
    if (client == nullptr)
    {
        return false;
    }
    const bool stopped = client->LiveStreamStop(streamId);
    ReleaseClient(token);
    return stopped;
}

unsigned int CHttpClientManager::GetStreamID()
{
    CMySingleLock guard(m_streamLock);
    return ++m_nextStreamId;
}
