// The commands of the device service, and those that are answered from memory.
#include "HttpClient.h"

#include "GetCmd.h"
#include "TransformAnswer.h"
#include "XmlTransform.h"

int CHttpClient::GetNetwork(std::string& answer)
{
    return Run(SERVICE_DEVICE, CGetDefaultCmd::Instance().GetNetworkInterfaces(),
               &CXmlTransform::TransGetNetworkInterface, answer);
}

int CHttpClient::GetGateway(std::string& answer)
{
    return Run(SERVICE_DEVICE, CGetDefaultCmd::Instance().GetNetworkGateway(), &CXmlTransform::TransGetNetworkGateway,
               answer);
}

int CHttpClient::SetNerwork(const std::string& request, std::string& answer)
{
    return Run(SERVICE_DEVICE, CGetDefaultCmd::Instance().SetNetworkInterfaces(request),
               &CXmlTransform::TransSetNetworkInterface, answer);
}

int CHttpClient::SetGateway(const std::string& request, std::string& answer)
{
    return Run(SERVICE_DEVICE, CGetDefaultCmd::Instance().SetNetworkGateway(request),
               &CXmlTransform::TransSetNetworkGateway, answer);
}

int CHttpClient::GetSystemDateAndTime(std::string& answer)
{
    return Run(SERVICE_DEVICE, CGetDefaultCmd::Instance().GetSystemDateAndTime(),
               &CXmlTransform::TransGetSystemDateAndTime, answer);
}

int CHttpClient::SetSystemDateAndTime(const std::string& request, std::string& answer)
{
    return Run(SERVICE_DEVICE, CGetDefaultCmd::Instance().SetSystemDateAndTime(request),
               &CXmlTransform::TransSetSystemDateAndTime, answer);
}

int CHttpClient::GetDeviceInformation(std::string& answer)
{
    return Run(SERVICE_DEVICE, CGetDefaultCmd::Instance().GetDeviceInformation(),
               &CXmlTransform::TransGetDeviceInformation, answer);
}

int CHttpClient::GetDNS(std::string& answer)
{
    return Run(SERVICE_DEVICE, CGetDefaultCmd::Instance().GetDNS(), &CXmlTransform::TransGetDNS, answer);
}

int CHttpClient::SetDNS(const std::string& request, std::string& answer)
{
    return RunSet(SERVICE_DEVICE, CGetDefaultCmd::Instance().SetDNS(request), "dns", answer);
}

int CHttpClient::GetNetworkProtocols(std::string& answer)
{
    return Run(SERVICE_DEVICE, CGetDefaultCmd::Instance().GetNetworkProtocols(),
               &CXmlTransform::TransGetNetworkProtocols, answer);
}

int CHttpClient::SetNetworkProtocols(const std::string& request, std::string& answer)
{
    return RunSet(SERVICE_DEVICE, CGetDefaultCmd::Instance().SetNetworkProtocols(request), "networkProtocols", answer);
}

int CHttpClient::GetServiceUrl(std::string& answer)
{
    CQLXXMLParse document(answer);
    const unsigned int key =
        CTransformAnswer::FindOrAdd(document, CTransformAnswer::FindOrAdd(document, 0, "GetResponse"), "serviceUrl");
    for (const auto& [service, path] : GetServiceTable())
    {
        document.SetAttribute(document.AddValue(key, "item", path, false), "service", service);
    }
    answer = *document.GetDoc();
    return ONVIF_OK;
}

int CHttpClient::GetStreamCount(std::string& answer)
{
    CQLXXMLParse document(answer);
    const unsigned int response = CTransformAnswer::FindOrAdd(document, 0, "GetResponse");
    if (document.GetFirstItem(response, "streamCount") == 0)
    {
        document.AddValue(response, "streamCount", static_cast<unsigned int>(GetProfileList().size()));
    }
    answer = *document.GetDoc();
    return ONVIF_OK;
}
