// The life of a client, and its tables.
#include "HttpClient.h"

#include "ShareSDK.h"

#include <cstdio>
#include <string>

CHttpClient::CHttpClient(const char* user, const char* password, const char* ip, unsigned short port)
    : m_username{}, m_password{}, m_hasCredentials(0), m_serverIp{}, m_serverPort(0), m_basicAuth{}
{
    if (Init(user, password, ip, port))
    {
        m_hasCredentials = m_username[0] != '\0' || m_password[0] != '\0' ? 1 : 0;
    }
}

CHttpClient::~CHttpClient() = default;

bool CHttpClient::Init(const char* user, const char* password, const char* ip, unsigned short port)
{
    if (user == nullptr || password == nullptr || ip == nullptr)
    {
        return false;
    }
    std::snprintf(m_username, sizeof(m_username), "%s", user);
    std::snprintf(m_password, sizeof(m_password), "%s", password);
    std::snprintf(m_serverIp, sizeof(m_serverIp), "%s", ip);
    m_serverPort = port;
    const std::string pair = (std::string(m_username) + ":" + m_password).substr(0, 63);
    Base64Encode(pair.c_str(), m_basicAuth);
    return true;
}

int CHttpClient::Add()
{
    CMySingleLock guard(m_refLock);
    return ++m_refCount;
}

int CHttpClient::Dec()
{
    m_refLock.Lock();
    if (m_refCount == 0)
    {
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
    }
    const int left = --m_refCount;
    m_refLock.Unlock();
    if (left == 0)
    {
        delete this;
    }
    return left;
}

void CHttpClient::GetEventMode(bool& subscription, bool& pullPoint) const
{
    subscription = m_wsSubscriptionSupport;
    pullPoint = m_wsPullPointSupport;
}

bool CHttpClient::LiveStreamStart(int /*channel*/, unsigned int /*protocol*/, unsigned int /*type*/,
                                  CRTSPReceiver* /*receiver*/, unsigned int* /*result*/)
{
    return false;
}

bool CHttpClient::LiveStreamStop(int /*streamId*/)
{
    return true;
}

bool CHttpClient::GetProfileAt(int index, ONVIF_PROFILE_TOKEN& profile) const
{
    CMySingleLock guard(m_lock);
    if (index < 0 || static_cast<std::size_t>(index) >= m_profiles.size())
    {
        return false;
    }
    profile = m_profiles[static_cast<std::size_t>(index)];
    return true;
}

std::vector<ONVIF_PROFILE_TOKEN> CHttpClient::GetProfileList() const
{
    CMySingleLock guard(m_lock);
    return m_profiles;
}

void CHttpClient::SetProfileList(const std::vector<ONVIF_PROFILE_TOKEN>& profiles)
{
    CMySingleLock guard(m_lock);
    m_profiles = profiles;
}

std::map<std::string, std::string> CHttpClient::GetServiceTable() const
{
    CMySingleLock guard(m_lock);
    return m_serviceUrls;
}

void CHttpClient::SetServiceTable(const std::map<std::string, std::string>& services)
{
    CMySingleLock guard(m_lock);
    m_serviceUrls = services;
}
