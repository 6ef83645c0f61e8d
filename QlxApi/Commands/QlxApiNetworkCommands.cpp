// Commands of the network: TCP/IP, PPPoE, ports and dynamic DNS. They concern the device as a whole, so no channel is
// taken from the URL.
#include "QlxApiProtocolProc.h"

#include "QlxApiCall.h"
#include "QlxApiFields.h"
#include "QlxApiXmlFmt.h"

namespace
{

using DDNS = NETNS::DEV_DDNS;
using NET = NETNS::DEV_NET_BASIC;
using PORTS = NETNS::DEV_PORT_INFO;
using PPPOE = NETNS::DEV_PPPOE;

// clang-format off
// The form of the addresses is not checked: their lengths in the document are for the client's eyes.
const QLX_API_FIELD<NET> NET_FIELDS[] = {
    WordField<&NET::ipSettingMode, IP_SETTING_MODE_WORDS>("tcpIp/ipSettingMode"),
    TextField<&NET::staticIp, QLX_API_CDATA>             ("tcpIp/staticIp"),
    TextField<&NET::staticIpRoute, QLX_API_CDATA>        ("tcpIp/staticIpRoute"),
    TextField<&NET::staticIpMask, QLX_API_CDATA>         ("tcpIp/staticIpMask"),
    SwitchField<&NET::dnsFromDhcpSwitch>                 ("tcpIp/dnsFromDhcpSwitch"),
    TextField<&NET::dnsServer1, QLX_API_CDATA>           ("tcpIp/dnsServer1"),
    TextField<&NET::dnsServer2, QLX_API_CDATA>           ("tcpIp/dnsServer2"),
};

const QLX_API_FIELD<PPPOE> PPPOE_FIELDS[] = {
    SwitchField<&PPPOE::pppoeSwitch>                     ("pppoe/switch"),
    TextField<&PPPOE::userName, QLX_API_CDATA>           ("pppoe/userName"),
    TextField<&PPPOE::password, QLX_API_CDATA>           ("pppoe/password"), // in clear
};

const QLX_API_FIELD<PORTS> PORT_FIELDS[] = {
    NumberField<&PORTS::httpPort>                        ("port/httpPort"),
    NumberField<&PORTS::netPort>                         ("port/netPort"),
    NumberField<&PORTS::rtspPort>                        ("port/rtspPort"),
};

const QLX_API_FIELD<DDNS> DDNS_FIELDS[] = {
    SwitchField<&DDNS::ddnsSwitch>                       ("ddns/switch"),
    TextField<&DDNS::serverType, QLX_API_PLAIN>          ("ddns/servertype"), // any text, not only the enumeration's
    TextField<&DDNS::userName, QLX_API_PLAIN>            ("ddns/userName"),
    TextField<&DDNS::password, QLX_API_PLAIN>            ("ddns/password"),
    TextField<&DDNS::domainName, QLX_API_PLAIN>          ("ddns/domainName"),
    TextField<&DDNS::serverName, QLX_API_PLAIN>          ("ddns/serverName"),
};
// clang-format on

template <typename RECORD>
using GET_OPERATION = NETNS::DEV_RET (CDevInterface::*)(const char*, RECORD*);
template <typename RECORD>
using SET_OPERATION = NETNS::DEV_RET (CDevInterface::*)(const char*, const RECORD*);

/// Asks the host for a record and answers with its document.
template <typename RECORD, size_t COUNT>
int Show(CQlxApiCall& call, CDevInterface& dev, GET_OPERATION<RECORD> get, const QLX_API_FIELD<RECORD> (&fields)[COUNT],
         const std::string& xml)
{
    RECORD record = {};
    if (!call.Succeeded((dev.*get)(call.Verify(), &record)))
    {
        return -1;
    }
    CQLXXMLParse document(xml);
    FillFields(document, fields, record);
    return call.Answer(document);
}

/// Reads the host's record, takes what the request brings, and writes it back. Another client's change in between may
/// be lost.
template <typename RECORD, size_t COUNT>
int Change(CQlxApiCall& call, CDevInterface& dev, GET_OPERATION<RECORD> get, SET_OPERATION<RECORD> set,
           const QLX_API_FIELD<RECORD> (&fields)[COUNT])
{
    RECORD record = {};
    if (!call.RequireBody() || !call.Succeeded((dev.*get)(call.Verify(), &record)))
    {
        return -1;
    }
    if (!TakeFields(call.Body(), fields, record))
    {
        return call.Refuse();
    }
    return call.Answer((dev.*set)(call.Verify(), &record));
}

} // namespace

int CQLXApiProc::GetNetBasicConfig(const std::string& ip, const CHttpProtocolAnalyse& request,
                                   CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    return Show(call, *m_dev, &CDevInterface::GetNetBasic, NET_FIELDS, CQlxApiXmlFmt::GetNetBasicConfig());
}

int CQLXApiProc::SetNetBasicConfig(const std::string& ip, const CHttpProtocolAnalyse& request,
                                   CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    return Change(call, *m_dev, &CDevInterface::GetNetBasic, &CDevInterface::SetNetBasic, NET_FIELDS);
}

int CQLXApiProc::GetNetPppoeConfig(const std::string& ip, const CHttpProtocolAnalyse& request,
                                   CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    return Show(call, *m_dev, &CDevInterface::GetPppoe, PPPOE_FIELDS, CQlxApiXmlFmt::GetNetPppoeConfig());
}

int CQLXApiProc::SetNetPppoeConfig(const std::string& ip, const CHttpProtocolAnalyse& request,
                                   CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    return Change(call, *m_dev, &CDevInterface::GetPppoe, &CDevInterface::SetPppoe, PPPOE_FIELDS);
}

int CQLXApiProc::GetPortConfig(const std::string& ip, const CHttpProtocolAnalyse& request,
                               CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    return Show(call, *m_dev, &CDevInterface::GetPortInfo, PORT_FIELDS, CQlxApiXmlFmt::GetPortConfig());
}

// No port is refused here, and no listener moves: the host does that.
int CQLXApiProc::SetPortConfig(const std::string& ip, const CHttpProtocolAnalyse& request,
                               CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    return Change(call, *m_dev, &CDevInterface::GetPortInfo, &CDevInterface::SetPortInfo, PORT_FIELDS);
}

int CQLXApiProc::GetDdnsConfig(const std::string& ip, const CHttpProtocolAnalyse& request,
                               CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    return Show(call, *m_dev, &CDevInterface::GetDdns, DDNS_FIELDS, CQlxApiXmlFmt::GetDdnsConfig());
}

int CQLXApiProc::SetDdnsConfig(const std::string& ip, const CHttpProtocolAnalyse& request,
                               CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    return Change(call, *m_dev, &CDevInterface::GetDdns, &CDevInterface::SetDdns, DDNS_FIELDS);
}
