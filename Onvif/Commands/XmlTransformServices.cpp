// The answers: services, and discovery.
#include "XmlTransform.h"

#include "OnvifXmlParse.h"
#include "ShareSDK.h"

#include <cstring>
#include <iterator>

namespace
{

const char* const SCHEME = "http://";

struct ServiceRow
{
    const char* finder; // text in the namespace of the service, in its exact case
    const char* service;
};

constexpr const char* SERVICE_DEVICE_FINDER = "/device/wsdl";
constexpr const char* SERVICE_MEDIA_FINDER = "/media/wsdl";
constexpr const char* SERVICE_EVENTS_FINDER = "/events/wsdl";
constexpr const char* SERVICE_PTZ_FINDER = "/ptz/wsdl";
constexpr const char* SERVICE_IMAGING_FINDER = "/imaging/wsdl";
constexpr const char* SERVICE_DEVICEIO_FINDER = "/deviceIO/wsdl";
constexpr const char* SERVICE_ANALYTICS_FINDER = "/analytics/wsdl";
constexpr const char* SERVICE_RECORDING_FINDER = "/recording/wsdl";
constexpr const char* SERVICE_SEARCH_FINDER = "/search/wsdl";
constexpr const char* SERVICE_REPLAY_FINDER = "/replay/wsdl";

// First match wins.
// clang-format off
const ServiceRow SERVICES[] = {
    {SERVICE_DEVICE_FINDER,    SERVICE_DEVICE   },
    {SERVICE_MEDIA_FINDER,     SERVICE_MEDIA    },
    {SERVICE_EVENTS_FINDER,    SERVICE_EVENTS   },
    {SERVICE_PTZ_FINDER,       SERVICE_PTZ      },
    {SERVICE_IMAGING_FINDER,   SERVICE_IMAGING  },
    {SERVICE_DEVICEIO_FINDER,  SERVICE_DEVICEIO },
    {SERVICE_ANALYTICS_FINDER, SERVICE_ANALYTICS},
    {SERVICE_RECORDING_FINDER, SERVICE_RECORDING},
    {SERVICE_SEARCH_FINDER,    SERVICE_SEARCH   },
    {SERVICE_REPLAY_FINDER,    SERVICE_REPLAY   },
};

struct CapabilityRow
{
    const char* element; // of tt:Capabilities
    const char* service;
};

// By SERVICE_TYPE.
const CapabilityRow CAPABILITIES[] = {
    {"tt:Media",     SERVICE_MEDIA    },
    {"tt:PTZ",       SERVICE_PTZ      },
    {"tt:Imaging",   SERVICE_IMAGING  },
    {"tt:Events",    SERVICE_EVENTS   },
    {"tt:Device",    SERVICE_DEVICE   },
    {"tt:Analytics", SERVICE_ANALYTICS},
    {"tt:Search",    SERVICE_SEARCH   },
    {"tt:DeviceIO",  SERVICE_DEVICEIO },
    {"tt:Receiver",  SERVICE_RECEIVER },
    {"tt:Recording", SERVICE_RECORDING},
    {"tt:Display",   SERVICE_DISPLAY  },
    {"tt:Replay",    SERVICE_REPLAY   },
};
// clang-format on

const char* ServiceOf(const std::string& uri)
{
    for (const ServiceRow& row : SERVICES)
    {
        if (uri.find(row.finder) != std::string::npos)
        {
            return row.service;
        }
    }
    return nullptr;
}

/// @return the capabilities of the answer; 0 for a fault and when there are none
unsigned int FindCapabilities(const COnvifXmlParse& soap)
{
    if (soap.GetFirstItem("s:Envelope/s:Body/s:Fault") != 0)
    {
        return 0;
    }
    return soap.GetFirstItem("s:Envelope/s:Body/tds:GetCapabilitiesResponse/tds:Capabilities");
}

void ReadFlag(const COnvifXmlParse& soap, unsigned int item, const std::string& path, bool& flag)
{
    std::string value;
    if (soap.GetValueStr(item, path, value))
    {
        flag = value == "true" || value == "TRUE" || value == "1";
    }
}

/// The addresses of a list, each from its scheme up to the next one.
std::vector<std::string> SplitAddresses(const std::string& addresses)
{
    std::vector<std::string> urls;
    std::size_t begin = addresses.find(SCHEME);
    while (begin != std::string::npos)
    {
        const std::size_t next = addresses.find(SCHEME, begin + 1);
        std::string url = addresses.substr(begin, next == std::string::npos ? next : next - begin);
        url.erase(url.find_last_not_of(" \t\r\n") + 1);
        urls.push_back(url);
        begin = next;
    }
    return urls;
}

/// Host and port of an address, as it has them.
std::string AuthorityOf(const std::string& url)
{
    const std::size_t begin = std::strlen(SCHEME);
    const std::size_t slash = url.find('/', begin);
    return url.substr(begin, slash == std::string::npos ? slash : slash - begin);
}

std::string HostOf(const std::string& url)
{
    const std::string authority = AuthorityOf(url);
    return authority.substr(0, authority.find(':'));
}

std::string PortOf(const std::string& url)
{
    const std::string authority = AuthorityOf(url);
    const std::size_t colon = authority.find(':');
    return colon == std::string::npos ? "80" : authority.substr(colon + 1);
}

} // namespace

std::string CXmlTransform::ParseUrlInXaddr(const std::string& url)
{
    const std::size_t scheme = url.find(SCHEME);
    if (scheme == std::string::npos)
    {
        return url;
    }
    const std::size_t slash = url.find('/', scheme + std::strlen(SCHEME));
    return slash == std::string::npos ? "" : url.substr(slash + 1);
}

void CXmlTransform::TransGetServers(const std::string& text, std::map<std::string, std::string>& urls)
{
    urls.clear();
    const COnvifXmlParse soap(text);
    unsigned int item = soap.GetFirstItem("s:Envelope/s:Body/tds:GetServicesResponse/tds:Service");
    if (item == 0)
    {
        item = soap.GetFirstItem("SOAP-ENV:Envelope/SOAP-ENV:Body/tds:GetServicesResponse/tds:Service");
    }
    for (; item != 0; item = soap.GetNextSiblingItemByName(item, "tds:Service"))
    {
        std::string uri;
        std::string address;
        soap.GetValueStr(item, "tds:Namespace", uri);
        soap.GetValueStr(item, "tds:XAddr", address);
        const char* const service = ServiceOf(uri);
        if (service == nullptr)
        {
            SHARESDK_NormalOutput("Warning, unknowed service address!!", __FILE__, __LINE__);
            continue;
        }
        urls.emplace(service, ParseUrlInXaddr(address));
    }
}

bool CXmlTransform::TransGetAllCapabilitiesUrl(const std::string& text, std::map<std::string, std::string>& urls,
                                               bool& wsSubscriptionSupport, bool& wsPullPointSupport)
{
    const COnvifXmlParse soap(text);
    const unsigned int capabilities = FindCapabilities(soap);
    for (unsigned int item = soap.GetChildItem(capabilities); item != 0; item = soap.GetNextSiblingItem(item))
    {
        std::string name;
        std::string address;
        soap.GetItemName(item, name);
        if (name == "tt:Events")
        {
            ReadFlag(soap, item, "tt:WSSubscriptionPolicySupport", wsSubscriptionSupport);
            ReadFlag(soap, item, "tt:WSPullPointSupport", wsPullPointSupport);
        }
        const bool addressed = soap.GetValueStr(item, "tt:XAddr", address);
        for (const CapabilityRow& row : CAPABILITIES)
        {
            if (addressed && name == row.element)
            {
                urls.emplace(row.service, ParseUrlInXaddr(address));
            }
        }
    }
    return capabilities != 0;
}

bool CXmlTransform::TransGetCapabilitieUrl(SERVICE_TYPE type, const std::string& text, std::string& url)
{
    if (type < 0 || static_cast<std::size_t>(type) >= std::size(CAPABILITIES))
    {
        return false;
    }
    const COnvifXmlParse soap(text);
    const unsigned int item = soap.GetFirstItem(FindCapabilities(soap), CAPABILITIES[type].element);
    std::string address;
    if (!soap.GetValueStr(item, "tt:XAddr", address))
    {
        return false;
    }
    url = ParseUrlInXaddr(address);
    return true;
}

std::string CXmlTransform::TransPorbeMatch(const std::string& text)
{
    const std::string MATCH = "s:Envelope/s:Body/dis:ProbeMatches/dis:ProbeMatch/";
    const COnvifXmlParse soap(text);
    std::string addresses;
    soap.GetValueStr(MATCH + "dis:XAddrs", addresses);
    const std::vector<std::string> urls = SplitAddresses(addresses);
    if (urls.empty())
    {
        return "";
    }
    CQLXXMLParse result;
    const unsigned int root = result.AddValue("multicastSearchResult", "", false);
    const unsigned int list = result.AddValue(root, "tcpIp/ipAddr", "", false);
    result.SetAttribute(list, "type", "list");
    result.CloneValue(list, "<itemType><ip/><serverAddr/></itemType>");
    for (const std::string& url : urls)
    {
        const unsigned int item = result.AddValue(list, "item", "", false);
        result.AddValue(item, "ip", HostOf(url), false);
        result.AddValue(item, "serverAddr", url, false);
    }
    const unsigned int port = result.AddValue(root, "port", "", false);
    result.AddValue(port, "dataPort", PortOf(urls.front()), false);
    result.AddValue(port, "httpPort", PortOf(urls.front()), false);
    const unsigned int product = result.AddValue(root, "productInfo", "", false);
    std::string guid;
    soap.GetValueStr(MATCH + "wsa:EndpointReference/wsa:Address", guid);
    result.AddValue(product, "guid", guid, false);
    result.SetAttribute(result.AddValue(product, "productSeries", "ONVIF", false), "type", "productSeries");
    return *result.GetDoc();
}
