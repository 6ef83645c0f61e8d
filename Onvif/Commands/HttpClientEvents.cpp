// Subscriptions and pull points.
#include "HttpClient.h"

#include "GetCmd.h"
#include "QLXXMLParse.h"
#include "XmlTransform.h"

#include <algorithm>
#include <cstring>

namespace
{

/// The path in an address that a device gave, without leading "/"; empty when it has none.
std::string PathIn(std::string address)
{
    const char* const SCHEME = "http://";
    if (address.compare(0, std::strlen(SCHEME), SCHEME) == 0)
    {
        address.erase(0, std::strlen(SCHEME));
    }
    const std::size_t slash = address.find('/');
    return slash == std::string::npos ? "" : address.substr(slash + 1);
}

std::string AddressPath(const std::string& request, const std::string& field)
{
    std::string address;
    CQLXXMLParse(request).GetValueStr(field, address);
    return PathIn(address);
}

} // namespace

int CHttpClient::CreatePullPointSubscription(const std::string& request, std::string& answer)
{
    return Run(SERVICE_EVENTS, CGetDefaultCmd::Instance().CreatePullPointSubscription(request),
               &CXmlTransform::TransCreatePullPointSubscription, answer);
}

int CHttpClient::Subscribe(const std::string& request, std::string& answer)
{
    return Run(SERVICE_EVENTS, CGetDefaultCmd::Instance().Subscribe(request), &CXmlTransform::TransSubscribe, answer);
}

int CHttpClient::Unsubscribe(const std::string& /*request*/, std::string& answer)
{
    return RunSet(SERVICE_EVENTS, CGetDefaultCmd::Instance().Unsubscribe(), "unsubscribe", answer);
}

// To the subscription's own address, on the device of the login.
int CHttpClient::Renew(const std::string& request, std::string& answer)
{
    const std::string path = AddressPath(request, "Set/renew/serverAddr");
    std::string soap;
    const int result =
        ExchangeAt(path.empty() ? DEFAULT_DEVICE_SERVICE : path, CGetDefaultCmd::Instance().Renew(request), soap);
    if (result == ONVIF_OK)
    {
        CXmlTransform::TransRenew(soap, answer);
    }
    return result;
}

// A pull waits at the device, so it travels on a connection of the caller's instead of blocking a command.
int CHttpClient::PullMessages(const std::string& request, std::string& answer)
{
    std::string path = AddressPath(request, "Get/pullMessages/token");
    if (path.empty())
    {
        CMySingleLock guard(m_lock);
        path = m_serviceUrls[SERVICE_EVENTS]; // a device that told no such path has an empty one from now on
    }
    if (path.empty())
    {
        return ONVIF_UNREADABLE;
    }
    std::string body = Stamp(CGetDefaultCmd::Instance().PullMessages(request));
    body.erase(std::remove(body.begin(), body.end(), '\t'), body.end());
    MakeupHttpProtocol(path.c_str(), body.c_str(), static_cast<unsigned int>(body.size()), answer);
    return ONVIF_OK;
}
