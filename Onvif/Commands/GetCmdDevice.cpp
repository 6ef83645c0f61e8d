// The requests: services, device and network.
#include "GetCmd.h"

#include "OnvifHelper.h"
#include "OnvifTemplates.h"
#include "RequestBuilder.h"

#include <climits>
#include <ctime>
#include <iterator>

namespace
{

const std::string BODY = "s:Envelope/s:Body/";

// By SERVICE_TYPE.
const char* const CATEGORIES[] = {"Media",  "PTZ",      "Imaging",  "Events",    "Device",  "Analytics",
                                  "Search", "DeviceIO", "Receiver", "Recording", "Display", "Replay"};

/// One field of a broken-down time: what the host says less where the field begins, whatever the host says.
int Since(int value, int begin)
{
    return value < INT_MIN + begin ? INT_MIN : value - begin;
}

int Number(const CQLXXMLParse& request, unsigned int item, const std::string& path)
{
    int value = 0;
    request.GetValue_i32(item, path, value);
    return value;
}

/// The host's time, which is this machine's local time, as UTC.
tm ReadLocalTime(const CQLXXMLParse& request, unsigned int item)
{
    tm local{};
    local.tm_hour = Number(request, item, "time/hour");
    local.tm_min = Number(request, item, "time/minute");
    local.tm_sec = Number(request, item, "time/second");
    local.tm_year = Since(Number(request, item, "date/year"), 1900);
    local.tm_mon = Since(Number(request, item, "date/month"), 1);
    local.tm_mday = Number(request, item, "date/day");
    local.tm_isdst = -1;
    const time_t seconds = mktime(&local);
    tm utc{};
    gmtime_r(&seconds, &utc);
    return utc;
}

void AddUtcTime(COnvifXmlParse& soap, unsigned int parent, const tm& utc)
{
    const unsigned int dateTime = soap.AddValue(parent, "tds:UTCDateTime", "", false);
    const unsigned int time = soap.AddValue(dateTime, "tt:Time", "", false);
    soap.AddValue_i32(time, "tt:Hour", utc.tm_hour);
    soap.AddValue_i32(time, "tt:Minute", utc.tm_min);
    soap.AddValue_i32(time, "tt:Second", utc.tm_sec);
    const unsigned int date = soap.AddValue(dateTime, "tt:Date", "", false);
    soap.AddValue(date, "tt:Year", std::to_string(utc.tm_year + 1900LL), false);
    soap.AddValue_i32(date, "tt:Month", utc.tm_mon + 1);
    soap.AddValue_i32(date, "tt:Day", utc.tm_mday);
}

} // namespace

std::string CGetDefaultCmd::GetServices() const
{
    return std::string(ONVIF_TEMPLATES::GetServices);
}

std::string CGetDefaultCmd::GetAllCapabilities() const
{
    return std::string(ONVIF_TEMPLATES::GetAllCapabilities);
}

std::string CGetDefaultCmd::GetCapabilities(SERVICE_TYPE type) const
{
    COnvifXmlParse soap{std::string(ONVIF_TEMPLATES::GetCapabilities)};
    if (type >= 0 && static_cast<std::size_t>(type) < std::size(CATEGORIES))
    {
        soap.SetValue(BODY + "tds:GetCapabilities/tds:Category", CATEGORIES[type], false);
    }
    return *soap.GetDoc();
}

std::string CGetDefaultCmd::Probe() const
{
    return std::string(ONVIF_TEMPLATES::Probe);
}

std::string CGetDefaultCmd::GetNetworkInterfaces() const
{
    return std::string(ONVIF_TEMPLATES::GetNetworkInterfaces);
}

// An address goes out with DHCP switched off only.
std::string CGetDefaultCmd::SetNetworkInterfaces(const std::string& request) const
{
    CRequestBuilder builder(request, ONVIF_TEMPLATES::SetNetworkInterfaces);
    COnvifXmlParse& soap = builder.Soap();
    const std::string dhcp = builder.Field("Set/ipv4/dhcp");
    const unsigned int ipv4 = soap.GetFirstItem(BODY + "tds:SetNetworkInterfaces/tds:NetworkInterface/tt:IPv4");
    soap.SetValue(BODY + "tds:SetNetworkInterfaces/tds:InterfaceToken", builder.Field("Set/ipv4/token"), false);
    soap.SetValue(ipv4, "tt:DHCP", dhcp, false);
    if (dhcp == "false")
    {
        const unsigned int manual = soap.AddValue(ipv4, "tt:Manual", "", false);
        soap.AddValue(manual, "tt:Address", builder.Field("Set/ipv4/ip"), false);
        soap.AddValue_i32(manual, "tt:PrefixLength",
                          COnvifHelper::SubmaskStringToLength(builder.Field("Set/ipv4/netmask")));
    }
    return builder.Text();
}

std::string CGetDefaultCmd::GetNetworkGateway() const
{
    return std::string(ONVIF_TEMPLATES::GetNetworkDefaultGateway);
}

std::string CGetDefaultCmd::SetNetworkGateway(const std::string& request) const
{
    CRequestBuilder builder(request, ONVIF_TEMPLATES::SetNetworkDefaultGateway);
    builder.Fill(BODY + "tds:SetNetworkDefaultGateway/tds:IPv4Address", "Set/ipv4/gateway");
    return builder.Text();
}

std::string CGetDefaultCmd::GetSystemDateAndTime() const
{
    return std::string(ONVIF_TEMPLATES::GetSystemDateAndTime);
}

// Devices are sent the elements in this order, which is not that of the ONVIF schema.
std::string CGetDefaultCmd::SetSystemDateAndTime(const std::string& request) const
{
    CRequestBuilder builder(request, ONVIF_TEMPLATES::SetSystemDateAndTime);
    COnvifXmlParse& soap = builder.Soap();
    const CQLXXMLParse& host = builder.Request();
    const unsigned int key = host.GetFirstItem("Set/dateAndTime");
    const unsigned int body = soap.GetFirstItem(BODY + "tds:SetSystemDateAndTime");

    const std::string type = builder.Field(key, "type");
    if (!type.empty())
    {
        soap.AddValue(body, "tds:DateTimeType", type, false);
    }
    const unsigned int utc = host.GetFirstItem(key, "UTCDateTime");
    if (type == "Manual" && utc != 0)
    {
        AddUtcTime(soap, body, ReadLocalTime(host, utc));
    }
    if (host.GetFirstItem(key, "daylightSaving") != 0)
    {
        const bool on = builder.Field(key, "daylightSaving/switch") == "on";
        soap.AddValue(body, "tds:DaylightSavings", on ? "true" : "false", false);
    }
    if (host.GetFirstItem(key, "timeZone") != 0)
    {
        soap.AddValue(body, "tds:TimeZone/tt:TZ", builder.Field(key, "timeZone/tz"), false);
    }
    return builder.Text();
}

std::string CGetDefaultCmd::GetDeviceInformation() const
{
    return std::string(ONVIF_TEMPLATES::GetDeviceInformation);
}

std::string CGetDefaultCmd::GetDNS() const
{
    return std::string(ONVIF_TEMPLATES::GetDNS);
}

std::string CGetDefaultCmd::SetDNS(const std::string& request) const
{
    CRequestBuilder builder(request, ONVIF_TEMPLATES::SetDNS);
    COnvifXmlParse& soap = builder.Soap();
    const CQLXXMLParse& host = builder.Request();
    const unsigned int key = host.GetFirstItem("Set/dns");
    if (key == 0)
    {
        return "";
    }
    const std::string dhcp = builder.Field(key, "dhcp");
    const unsigned int body = soap.GetFirstItem(BODY + "tds:SetDNS");
    soap.SetValue(body, "tds:FromDHCP", dhcp, false);
    unsigned int ip = host.GetFirstItem(key, "ip");
    for (; ip != 0; ip = host.GetNextSiblingItemByName(ip, "ip"))
    {
        std::string address;
        host.GetValueStr(ip, address);
        const unsigned int entry =
            soap.AddValue(body, dhcp == "false" ? "tds:DNSManual" : "tds:DNSFromDHCP", "", false);
        soap.AddValue(entry, "tt:Type", "IPv4", false);
        soap.AddValue(entry, "tt:IPv4Address", address, false);
    }
    return builder.Text();
}

std::string CGetDefaultCmd::GetNetworkProtocols() const
{
    return std::string(ONVIF_TEMPLATES::GetNetworkProtocols);
}

std::string CGetDefaultCmd::SetNetworkProtocols(const std::string& request) const
{
    struct ProtocolRow
    {
        const char* field;
        const char* name;
    };
    const ProtocolRow PROTOCOLS[] = {{"rtsp", "RTSP"}, {"http", "HTTP"}};

    CRequestBuilder builder(request, ONVIF_TEMPLATES::SetNetworkProtocols);
    COnvifXmlParse& soap = builder.Soap();
    const CQLXXMLParse& host = builder.Request();
    const unsigned int key = host.GetFirstItem("Set/networkProtocols");
    if (key == 0)
    {
        return "";
    }
    const unsigned int body = soap.GetFirstItem(BODY + "tds:SetNetworkProtocols");
    for (const ProtocolRow& row : PROTOCOLS)
    {
        const unsigned int field = host.GetFirstItem(key, row.field);
        if (field != 0)
        {
            const unsigned int entry = soap.AddValue(body, "tds:NetworkProtocols", "", false);
            soap.AddValue(entry, "tt:Name", row.name, false);
            soap.AddValue(entry, "tt:Enabled", "true", false);
            soap.AddValue(entry, "tt:Port", builder.Field(field, "port"), false);
        }
    }
    return builder.Text();
}
