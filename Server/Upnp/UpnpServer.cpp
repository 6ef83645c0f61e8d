#include "UpnpServer.h"

#include "HttpDataPacket.h"
#include "HttpExchange.h"
#include "HttpProtocolAnalyse.h"
#include "PFHelper.h"
#include "ShareSDK.h"
#include "SysHelper.h"

#include <cstdio>
#include <list>

#include <arpa/inet.h>

namespace
{

constexpr const char* GROUP = "239.255.255.250";
constexpr unsigned short GROUP_PORT = 1900;

constexpr const char* DESCRIPTION_URL = "upnp_notify.xml";
constexpr const char* MAKER_URL = "http://www.qlx.example/";

constexpr HTTP_READ_LIMITS READ_LIMITS = {1023, 3900};

constexpr int STATUS_OK = 200;
constexpr int STATUS_NOT_FOUND = 404;

struct TypeWords
{
    const char* device;
    const char* service;
};
constexpr TypeWords IPC_WORDS = {"EmbeddedIPCDevice:1", "EmbeddedIPCDeviceControl:1"};
constexpr TypeWords DVR_WORDS = {"EmbeddedDVRDevice:1", "EmbeddedDVRDeviceControl:1"};

constexpr char ANNOUNCEMENT[] = "NOTIFY * HTTP/1.1\r\n"
                                "HOST: 239.255.255.250:1900\r\n"
                                "CACHE-CONTROL: max-age=100\r\n"
                                "LOCATION: http://%s:%hu/%s\r\n"
                                "NT: upnp:rootdevice\r\n"
                                "NTS: ssdp:alive\r\n"
                                "SERVER: Linux/3.0.8, UPnP/1.0, Portable SDK for UPnP devices/1.6.6\r\n"
                                "X-User-Agent: redsonic\r\n"
                                "USN: %s::upnp:rootdevice\r\n"
                                "\r\n";

// Control points get it as one line. The addresses of the service are named and served by nobody.
constexpr char DESCRIPTION[] = "<?xml version=\"1.0\"?>"
                               "<root xmlns=\"urn:schemas-upnp-org:device-1-0\">"
                               "<specVersion><major>1</major><minor>0</minor></specVersion>"
                               "<device>"
                               "<deviceType>urn:schemas-upnp-org:device:%s</deviceType>"
                               "<friendlyName>%s</friendlyName>"
                               "<manufacturer>QLX</manufacturer>"
                               "<manufacturerURL>%s</manufacturerURL>"
                               "<modelDescription>UPnP Device</modelDescription>"
                               "<modelName>Device</modelName>"
                               "<modelNumber>1.0</modelNumber>"
                               "<modelURL>%s</modelURL>"
                               "<serialNumber>123456789001</serialNumber>"
                               "<UDN>%s</UDN>"
                               "<serviceList><service>"
                               "<serviceType>urn:schemas-upnp-org:service:%s</serviceType>"
                               "<serviceId>urn:upnp-org:serviceId:control1</serviceId>"
                               "<controlURL>/upnp/control/control1</controlURL>"
                               "<eventSubURL>/upnp/event/control1</eventSubURL>"
                               "<SCPDURL>/SCPD.xml</SCPDURL>"
                               "</service></serviceList>"
                               "<presentationURL>http://%s:%hu</presentationURL>"
                               "</device>"
                               "</root>";

/// What snprintf wrote into a text of the class's size.
int WrittenLength(int wanted)
{
    return wanted < CUpnpServer::TEXT_BYTES ? wanted : CUpnpServer::TEXT_BYTES - 1;
}

} // namespace

CUpnpServer& CUpnpServer::Instance()
{
    // Never destroyed: its threads may still be in it when the process ends.
    static CUpnpServer& server = *new CUpnpServer;
    return server;
}

int CUpnpServer::InitUpnp(const char* name, unsigned short port, NETNS::DEV_TYPE type)
{
    if (port == 0)
    {
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
    }
    m_friendlyName = name;
    m_descriptionPort = port;
    m_deviceType = type;

    _GUID guid;
    char text[64] = {};
    char digits[64] = {};
    CSysHelper::CreateGUID(guid);
    CSysHelper::GuidToString(guid, text);
    std::sscanf(text, "{%63[^}]", digits); // NOLINT(cert-err34-c): the text was made the line before
    std::snprintf(m_udn, sizeof(m_udn), "uuid:%s", digits);

    std::snprintf(m_localIp, sizeof(m_localIp), "%s", LocalAddress().c_str());
    CMulticastService::Initial(GROUP, GROUP_PORT);
    return 1;
}

/// The first interface's address; without one that of the default route, for a device whose interfaces have other
/// names.
std::string CUpnpServer::LocalAddress()
{
    std::list<CPFHelper::__TNICInfo> interfaces;
    CPFHelper::GetSocketEnabled_NICList(interfaces);
    in_addr address{};
    address.s_addr = interfaces.empty() ? CPFHelper::GetLocalAddressTowards(inet_addr(GROUP)) : interfaces.front().IP;
    if (interfaces.empty() && address.s_addr == 0)
    {
        address.s_addr = htonl(INADDR_LOOPBACK);
    }
    char text[INET_ADDRSTRLEN] = {};
    inet_ntop(AF_INET, &address, text, sizeof(text));
    return text;
}

int CUpnpServer::StartUpnp(unsigned short webPort)
{
    StopUpnp();
    m_webPort = webPort;
    NET_SOCKET_StartListen(m_descriptionPort, this, 0, true);
    CMulticastService::Start();
    return 1;
}

void CUpnpServer::StopUpnp()
{
    CMulticastService::Stop();
    if (m_descriptionPort != 0)
    {
        NET_SOCKET_StopListen(m_descriptionPort);
    }
}

void CUpnpServer::OnAcceptCreateSocket(int handle, unsigned short /*port*/, unsigned int /*address*/)
{
    CHttpDataPacket packet;
    if (!GetAcceptHttp(handle, packet))
    {
        SHARESDK_NormalOutput("Warning, http request time out!!", __FILE__, __LINE__);
        m_silent.Add(handle);
        return;
    }
    _DATA_PACK_* message = packet.GetNextPendingPacket();
    if (message == nullptr)
    {
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
        NET_SOCKET_DestroyHNetCommunication(handle);
        return;
    }
    const CHttpProtocolAnalyse request(message->m_pBuff, message->Length());
    CHttpDataPacket::ReleasePack(message);
    if (request.IsResponse())
    {
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
    }

    // A request that names a command gets no answer: its connection is closed without a byte.
    CHttpProtocolAnalyse reply;
    if (request.IsRequestFile() && request.GetUrl() == DESCRIPTION_URL)
    {
        char text[TEXT_BYTES];
        const int length = GetEnqueryXml(text);
        reply.SetResPackage(STATUS_OK, text, length, "");
    }
    else if (request.IsRequestFile())
    {
        reply.SetResponseHeader(STATUS_NOT_FOUND);
    }
    ReplyExecute(handle, reply);
}

bool CUpnpServer::GetAcceptHttp(int handle, CHttpDataPacket& packet)
{
    return ReadHttpMessage(handle, READ_LIMITS, packet);
}

void CUpnpServer::ReplyExecute(int handle, const CHttpProtocolAnalyse& reply)
{
    SendHttpMessageAndEnd(handle, reply);
}

int CUpnpServer::GetEnqueryXml(char* buffer) const
{
    const TypeWords& words = m_deviceType == NETNS::DEV_TYPE_DEFAULT ? IPC_WORDS : DVR_WORDS;
    return WrittenLength(std::snprintf(buffer, TEXT_BYTES, DESCRIPTION, words.device, m_friendlyName.c_str(), MAKER_URL,
                                       MAKER_URL, m_udn, words.service, m_localIp, m_webPort.load()));
}

void CUpnpServer::InvokeSend()
{
    char text[TEXT_BYTES];
    const int length = WrittenLength(
        std::snprintf(text, sizeof(text), ANNOUNCEMENT, m_localIp, m_descriptionPort, DESCRIPTION_URL, m_udn));
    SendCmd(text, length);
}

void CUpnpServer::ParseResp(const char* /*data*/, int /*length*/) {}
