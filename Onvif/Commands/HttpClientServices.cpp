// What a device is asked about its services at login. All of it goes to the path where every device has its device
// service.
#include "HttpClient.h"

#include "GetCmd.h"
#include "XmlTransform.h"

namespace
{

constexpr unsigned int SERVICES_BUFFER = 30720;

} // namespace

int CHttpClient::GetServersUrl(std::map<std::string, std::string>& urls)
{
    std::string soap;
    const int result =
        ExchangeAt(DEFAULT_DEVICE_SERVICE, CGetDefaultCmd::Instance().GetServices(), soap, SERVICES_BUFFER);
    if (result == ONVIF_OK)
    {
        CXmlTransform::TransGetServers(soap, urls);
    }
    return result;
}

int CHttpClient::GetAllCapabilitieUrls(std::map<std::string, std::string>& urls)
{
    std::string soap;
    const int result = ExchangeAt(DEFAULT_DEVICE_SERVICE, CGetDefaultCmd::Instance().GetAllCapabilities(), soap);
    if (result == ONVIF_OK &&
        !CXmlTransform::TransGetAllCapabilitiesUrl(soap, urls, m_wsSubscriptionSupport, m_wsPullPointSupport))
    {
        return ONVIF_UNREADABLE;
    }
    return result;
}

int CHttpClient::GetCapabilitieUrl(SERVICE_TYPE type, std::string& url)
{
    std::string soap;
    const int result = ExchangeAt(DEFAULT_DEVICE_SERVICE, CGetDefaultCmd::Instance().GetCapabilities(type), soap);
    if (result == ONVIF_OK && !CXmlTransform::TransGetCapabilitieUrl(type, soap, url))
    {
        return ONVIF_UNREADABLE;
    }
    return result;
}

int CHttpClient::GetMediaService(std::string& url)
{
    return GetCapabilitieUrl(SERVICE_TYPE_MEDIA, url);
}

int CHttpClient::GetPTZService(std::string& url)
{
    return GetCapabilitieUrl(SERVICE_TYPE_PTZ, url);
}

int CHttpClient::GetImageService(std::string& url)
{
    return GetCapabilitieUrl(SERVICE_TYPE_IMAGING, url);
}

int CHttpClient::GetEventsService(std::string& url)
{
    return GetCapabilitieUrl(SERVICE_TYPE_EVENTS, url);
}

int CHttpClient::GetDeviceService(std::string& url)
{
    return GetCapabilitieUrl(SERVICE_TYPE_DEVICE, url);
}

int CHttpClient::GetAnalyticsService(std::string& url)
{
    return GetCapabilitieUrl(SERVICE_TYPE_ANALYTICS, url);
}

int CHttpClient::GetSearchService(std::string& url)
{
    return GetCapabilitieUrl(SERVICE_TYPE_SEARCH, url);
}

int CHttpClient::GetDeviceIOService(std::string& url)
{
    return GetCapabilitieUrl(SERVICE_TYPE_DEVICEIO, url);
}

int CHttpClient::GetReceiverService(std::string& url)
{
    return GetCapabilitieUrl(SERVICE_TYPE_RECEIVER, url);
}

int CHttpClient::GetRecordingService(std::string& url)
{
    return GetCapabilitieUrl(SERVICE_TYPE_RECORDING, url);
}

int CHttpClient::GetDisplayService(std::string& url)
{
    return GetCapabilitieUrl(SERVICE_TYPE_DISPLAY, url);
}

int CHttpClient::GetReplayService(std::string& url)
{
    return GetCapabilitieUrl(SERVICE_TYPE_REPLAY, url);
}
