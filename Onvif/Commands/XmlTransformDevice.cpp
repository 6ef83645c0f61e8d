// The answers: device and network.
#include "XmlTransform.h"

#include "OnvifHelper.h"
#include "ShareSDK.h"
#include "TransformAnswer.h"

namespace
{

const char* const GET = "GetResponse";
const char* const SET = "SetResponse";

/// The address of an interface that has one of its own: with DHCP there is none to tell.
void AddInterface(CTransformAnswer& out, unsigned int device)
{
    const COnvifXmlParse& soap = out.Soap();
    std::string token;
    soap.GetAttributeStr(device, "token", token);
    const unsigned int item = out.Answer().AddValue(out.Key(), "item", "", false);
    out.Answer().SetAttribute(item, "token", token);

    const unsigned int config = soap.GetFirstItem(device, "tt:IPv4/tt:Config");
    std::string dhcp;
    soap.GetValueStr(config, "tt:DHCP", dhcp);
    out.Copy(config, "tt:DHCP", item, "dhcp");
    int prefixLength = 0;
    if (dhcp == "false")
    {
        out.Copy(config, "tt:Manual/tt:Address", item, "ip");
        if (soap.GetValue_i32(config, "tt:Manual/tt:PrefixLength", prefixLength))
        {
            out.Answer().AddValue(item, "netmask", COnvifHelper::SubmaskLengthToString(prefixLength), false);
        }
    }
}

void AddUtcDateTime(CTransformAnswer& out, unsigned int utc)
{
    const unsigned int dateTime = out.Answer().AddValue(out.Key(), "UTCDateTime", "", false);
    const unsigned int time = out.Answer().AddValue(dateTime, "time", "", false);
    out.Copy(utc, "tt:Time/tt:Hour", time, "hour");
    out.Copy(utc, "tt:Time/tt:Minute", time, "minute");
    out.Copy(utc, "tt:Time/tt:Second", time, "second");
    const unsigned int date = out.Answer().AddValue(dateTime, "date", "", false);
    out.Copy(utc, "tt:Date/tt:Year", date, "year");
    out.Copy(utc, "tt:Date/tt:Month", date, "month");
    out.Copy(utc, "tt:Date/tt:Day", date, "day");
}

/// What the host calls a protocol of the device; null for one that it does not know.
const char* ProtocolField(const std::string& name)
{
    struct ProtocolRow
    {
        const char* name;
        const char* field;
    };
    const ProtocolRow PROTOCOLS[] = {{"HTTP", "http"}, {"HTTPS", "https"}, {"RTSP", "rtsp"}};
    for (const ProtocolRow& row : PROTOCOLS)
    {
        if (name == row.name)
        {
            return row.field;
        }
    }
    return nullptr;
}

} // namespace

// Two interfaces are told, however many a device has.
void CXmlTransform::TransGetNetworkInterface(const std::string& soap, std::string& answer)
{
    CTransformAnswer out(soap, answer, GET, "ipv4");
    if (!out.AddStatus())
    {
        return;
    }
    const unsigned int first =
        out.Soap().GetFirstItem("s:Envelope/s:Body/tds:GetNetworkInterfacesResponse/tds:NetworkInterfaces");
    if (first == 0)
    {
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
        return;
    }
    AddInterface(out, first);
    const unsigned int second = out.Soap().GetNextSiblingItemByName(first, "tds:NetworkInterfaces");
    if (second != 0)
    {
        AddInterface(out, second);
    }
}

void CXmlTransform::TransSetNetworkInterface(const std::string& soap, std::string& answer)
{
    CTransformAnswer out(soap, answer, SET, "ipv4");
    if (out.AddStatus())
    {
        const unsigned int body = out.Soap().GetFirstItem("s:Envelope/s:Body/tds:SetNetworkInterfacesResponse");
        out.Copy(body, "tds:RebootNeeded", out.Answer().GetFirstItem(out.Key(), "status"), "rebootNeeded");
    }
}

void CXmlTransform::TransGetNetworkGateway(const std::string& soap, std::string& answer)
{
    CTransformAnswer out(soap, answer, GET, "ipv4");
    const unsigned int status = out.Answer().AddValue(out.Key(), "gatewayStatus", "", false);
    if (out.AddStatus(status))
    {
        const unsigned int gateway =
            out.Soap().GetFirstItem("s:Envelope/s:Body/tds:GetNetworkDefaultGatewayResponse/tds:NetworkGateway");
        out.Copy(gateway, "tt:IPv4Address", status, "gateway");
    }
}

// The status stands in an element without a name, which no parser reads back: a host sees the status of the interface
// that is written behind it.
void CXmlTransform::TransSetNetworkGateway(const std::string& soap, std::string& answer)
{
    CTransformAnswer out(soap, answer, SET, "ipv4");
    out.AddStatus(out.Answer().AddValue(out.Key(), "/", "", false));
}

void CXmlTransform::TransGetSystemDateAndTime(const std::string& soap, std::string& answer)
{
    CTransformAnswer out(soap, answer, GET, "dateAndTime");
    if (!out.AddStatus())
    {
        return;
    }
    const unsigned int device =
        out.FindFirst({"s:Envelope/s:Body/tds:GetSystemDateAndTimeResponse/tds:SystemDateAndTime",
                       "SOAP-ENV:Envelope/SOAP-ENV:Body/tds:GetSystemDateAndTimeResponse/tds:SystemDateAndTime",
                       "s:Envelope/s:Body/GetSystemDateAndTimeResponse/tds:SystemDateAndTime"});
    if (device == 0)
    {
        return;
    }
    out.Copy(device, "tt:DateTimeType", out.Key(), "type");
    const unsigned int utc = out.Soap().GetFirstItem(device, "tt:UTCDateTime");
    if (utc != 0)
    {
        AddUtcDateTime(out, utc);
    }
    std::string daylight;
    out.Soap().GetValueStr(device, "tt:DaylightSavings", daylight);
    out.Answer().AddValue(out.Key(), "daylightSaving", daylight == "true" ? "on" : "off", false); // "TRUE" is "off"
    out.Copy(device, "tt:TimeZone/tt:TZ", out.Key(), "timeZone");
}

void CXmlTransform::TransSetSystemDateAndTime(const std::string& soap, std::string& answer)
{
    TransSetBaseResponse(soap, answer, "dateAndTime");
}

void CXmlTransform::TransGetDeviceInformation(const std::string& soap, std::string& answer)
{
    CTransformAnswer out(soap, answer, GET, "devInfo");
    if (out.AddStatus())
    {
        const unsigned int device = out.Soap().GetFirstItem("s:Envelope/s:Body/tds:GetDeviceInformationResponse");
        out.Copy(device, "tds:Manufacturer", out.Key(), "manufacturer");
        out.Copy(device, "tds:Model", out.Key(), "model");
    }
}

void CXmlTransform::TransGetDNS(const std::string& soap, std::string& answer)
{
    CTransformAnswer out(soap, answer, GET, "dns");
    if (!out.AddStatus())
    {
        return;
    }
    const unsigned int device = out.Soap().GetFirstItem("s:Envelope/s:Body/tds:GetDNSResponse/tds:DNSInformation");
    std::string dhcp;
    out.Soap().GetValueStr(device, "tt:FromDHCP", dhcp);
    out.Copy(device, "tt:FromDHCP", out.Key(), "dhcp");
    const char* const name = dhcp == "true" ? "tt:DNSFromDHCP" : "tt:DNSManual";
    unsigned int server = out.Soap().GetFirstItem(device, name);
    for (; server != 0; server = out.Soap().GetNextSiblingItemByName(server, name))
    {
        std::string type;
        if (out.Soap().GetValueStr(server, "tt:Type", type) && type == "IPv4")
        {
            out.Copy(server, "tt:IPv4Address", out.Key(), "ip");
        }
    }
}

void CXmlTransform::TransGetNetworkProtocols(const std::string& soap, std::string& answer)
{
    const std::string PROTOCOL = "tds:NetworkProtocols";
    CTransformAnswer out(soap, answer, GET, "networkProtocols");
    if (TransResponseGeneric(out.Soap(), out.Answer(), out.Key()) != ONVIF_OK)
    {
        return;
    }
    const unsigned int device = out.Soap().GetFirstItem("s:Envelope/s:Body/tds:GetNetworkProtocolsResponse");
    unsigned int protocol = out.Soap().GetFirstItem(device, PROTOCOL);
    for (; protocol != 0; protocol = out.Soap().GetNextSiblingItemByName(protocol, PROTOCOL))
    {
        std::string name;
        out.Soap().GetValueStr(protocol, "tt:Name", name);
        const char* const field = ProtocolField(name);
        if (field != nullptr)
        {
            const unsigned int item = out.Answer().AddValue(out.Key(), field, "", false);
            out.Copy(protocol, "tt:Enabled", item, "enable");
            out.Copy(protocol, "tt:Port", item, "port");
        }
    }
}
