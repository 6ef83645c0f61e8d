// The simulated camera: services, device and network.
#include "OnvifSimulatorTables.h"

#include <sstream>

namespace
{

// clang-format off
struct ServiceRow
{
    const char* prefix;
    const char* uri;
    const char* category;   // of GetCapabilities
};

const ServiceRow SERVICES[] = {
    {"ana",  "http://www.onvif.org/ver20/analytics/wsdl", "Analytics"},
    {"tds",  "http://www.onvif.org/ver10/device/wsdl",    "Device"   },
    {"ew",   "http://www.onvif.org/ver10/events/wsdl",    "Events"   },
    {"img",  "http://www.onvif.org/ver20/imaging/wsdl",   "Imaging"  },
    {"mdw",  "http://www.onvif.org/ver10/media/wsdl",     "Media"    },
    {"ptzw", "http://www.onvif.org/ver20/ptz/wsdl",       "PTZ"      },
    {"dio",  "http://www.onvif.org/ver10/deviceIO/wsdl",  "DeviceIO" },
};
// clang-format on

std::string Element(const std::string& name, const std::string& text)
{
    return "<" + name + ">" + XmlEscaped(text) + "</" + name + ">";
}

std::string Flag(bool value)
{
    return value ? "true" : "false";
}

std::vector<std::string> Words(const std::string& text)
{
    std::istringstream stream(text);
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
    {
        words.push_back(word);
    }
    return words;
}

/// The address of a service that the camera has; empty for one that it has not.
std::string AddressOf(const OnvifCall& call, const std::string& prefix)
{
    const auto path = call.options.services.find(prefix);
    return path != call.options.services.end() ? call.address + path->second : "";
}

OnvifAnswer GetServices(OnvifCall& call)
{
    if (!call.options.hasGetServices)
    {
        return OnvifAnswer::Fault("ter:ActionNotSupported", "Optional Action Not Implemented", "Receiver");
    }
    std::string body = "<tds:GetServicesResponse>";
    for (const ServiceRow& row : SERVICES)
    {
        const std::string address = AddressOf(call, row.prefix);
        if (!address.empty() && call.options.unlisted.count(row.prefix) == 0)
        {
            body += "<tds:Service>" + Element("tds:Namespace", row.uri) + Element("tds:XAddr", address) +
                    "<tds:Version><tt:Major>2</tt:Major><tt:Minor>60</tt:Minor></tds:Version></tds:Service>";
        }
    }
    return OnvifBody(body + "</tds:GetServicesResponse>");
}

std::string Capability(const OnvifCall& call, const ServiceRow& row)
{
    const std::string name = std::string("tt:") + row.category;
    std::string text = "<" + name + ">" + Element("tt:XAddr", AddressOf(call, row.prefix));
    if (std::string("Events") == row.category)
    {
        text += Element("tt:WSSubscriptionPolicySupport", Flag(call.options.subscriptionPolicy)) +
                Element("tt:WSPullPointSupport", Flag(call.options.pullPoint));
    }
    return text + "</" + name + ">";
}

OnvifAnswer GetCapabilities(OnvifCall& call)
{
    const std::string category = call.request.Text("Category");
    const bool all = category == "All";
    std::string body;
    for (const ServiceRow& row : SERVICES)
    {
        if ((all || category == row.category) && !AddressOf(call, row.prefix).empty())
        {
            body += Capability(call, row);
        }
    }
    if (!(all ? call.options.hasAllCapabilities : call.options.hasCategoryCapabilities) || body.empty())
    {
        return OnvifAnswer::Fault("ter:NoSuchService", "No such service", "Receiver");
    }
    return OnvifBody("<tds:GetCapabilitiesResponse><tds:Capabilities>" + body +
                     "</tds:Capabilities></tds:GetCapabilitiesResponse>");
}

OnvifAnswer GetDeviceInformation(OnvifCall& call)
{
    return OnvifBody("<tds:GetDeviceInformationResponse>" +
                     Element("tds:Manufacturer", call.values["device.manufacturer"]) +
                     Element("tds:Model", call.values["device.model"]) +
                     "<tds:FirmwareVersion>1.0</tds:FirmwareVersion><tds:SerialNumber>1</tds:SerialNumber>"
                     "<tds:HardwareId>1</tds:HardwareId></tds:GetDeviceInformationResponse>");
}

OnvifAnswer GetNetworkInterfaces(OnvifCall& call)
{
    OnvifValues& values = call.values;
    const std::string address = "<" + values["ipv4.kind"] + ">" + Element("tt:Address", values["ipv4.address"]) +
                                Element("tt:PrefixLength", values["ipv4.prefix"]) + "</" + values["ipv4.kind"] + ">";
    return OnvifBody("<tds:GetNetworkInterfacesResponse><tds:NetworkInterfaces token=\"eth0\">"
                     "<tt:Enabled>true</tt:Enabled><tt:IPv4><tt:Enabled>true</tt:Enabled><tt:Config>" +
                     address + Element("tt:DHCP", values["ipv4.dhcp"]) +
                     "</tt:Config></tt:IPv4></tds:NetworkInterfaces></tds:GetNetworkInterfacesResponse>");
}

OnvifAnswer SetNetworkInterfaces(OnvifCall& call)
{
    if (call.request.Text("InterfaceToken") != "eth0")
    {
        return OnvifAnswer::Fault("ter:InvalidArgVal", "No such interface");
    }
    const std::string ipv4 = "NetworkInterface/IPv4/";
    call.values["ipv4.dhcp"] = call.request.Text(ipv4 + "DHCP");
    call.values["ipv4.kind"] = call.values["ipv4.dhcp"] == "false" ? "tt:Manual" : "tt:FromDHCP";
    if (call.request.Has(ipv4 + "Manual"))
    {
        call.values["ipv4.address"] = call.request.Text(ipv4 + "Manual/Address");
        call.values["ipv4.prefix"] = call.request.Text(ipv4 + "Manual/PrefixLength");
    }
    return OnvifBody("<tds:SetNetworkInterfacesResponse><tds:RebootNeeded>false</tds:RebootNeeded>"
                     "</tds:SetNetworkInterfacesResponse>");
}

OnvifAnswer GetNetworkDefaultGateway(OnvifCall& call)
{
    return OnvifBody("<tds:GetNetworkDefaultGatewayResponse><tds:NetworkGateway>" +
                     Element("tt:IPv4Address", call.values["gateway"]) +
                     "</tds:NetworkGateway></tds:GetNetworkDefaultGatewayResponse>");
}

OnvifAnswer SetNetworkDefaultGateway(OnvifCall& call)
{
    call.values["gateway"] = call.request.Text("IPv4Address");
    return OnvifBody("<tds:SetNetworkDefaultGatewayResponse/>");
}

OnvifAnswer GetSystemDateAndTime(OnvifCall& call)
{
    OnvifValues& values = call.values;
    const std::vector<std::string> utc = Words(values["time.utc"]);
    return OnvifBody("<tds:GetSystemDateAndTimeResponse><tds:SystemDateAndTime>" +
                     Element("tt:DateTimeType", values["time.type"]) +
                     Element("tt:DaylightSavings", values["time.daylight"]) + "<tt:TimeZone>" +
                     Element("tt:TZ", values["time.zone"]) + "</tt:TimeZone><tt:UTCDateTime><tt:Time>" +
                     Element("tt:Hour", utc.at(3)) + Element("tt:Minute", utc.at(4)) + Element("tt:Second", utc.at(5)) +
                     "</tt:Time><tt:Date>" + Element("tt:Year", utc.at(0)) + Element("tt:Month", utc.at(1)) +
                     Element("tt:Day", utc.at(2)) +
                     "</tt:Date></tt:UTCDateTime></tds:SystemDateAndTime></tds:GetSystemDateAndTimeResponse>");
}

OnvifAnswer SetSystemDateAndTime(OnvifCall& call)
{
    const std::string date = "UTCDateTime/Date/";
    const std::string time = "UTCDateTime/Time/";
    call.values["time.type"] = call.request.Text("DateTimeType");
    if (call.request.Has("UTCDateTime"))
    {
        std::string utc;
        for (const std::string& field :
             {date + "Year", date + "Month", date + "Day", time + "Hour", time + "Minute", time + "Second"})
        {
            utc += call.request.Text(field) + " ";
        }
        call.values["time.utc"] = utc;
    }
    if (call.request.Has("DaylightSavings"))
    {
        call.values["time.daylight"] = call.request.Text("DaylightSavings");
    }
    if (call.request.Has("TimeZone"))
    {
        call.values["time.zone"] = call.request.Text("TimeZone/TZ");
    }
    return OnvifBody("<tds:SetSystemDateAndTimeResponse/>");
}

OnvifAnswer GetDNS(OnvifCall& call)
{
    const bool dhcp = call.values["dns.dhcp"] == "true";
    std::string servers;
    for (const std::string& address : Words(call.values["dns.servers"]))
    {
        const std::string name = dhcp ? "tt:DNSFromDHCP" : "tt:DNSManual";
        servers += "<" + name + "><tt:Type>IPv4</tt:Type>" + Element("tt:IPv4Address", address) + "</" + name + ">";
    }
    return OnvifBody("<tds:GetDNSResponse><tds:DNSInformation>" + Element("tt:FromDHCP", Flag(dhcp)) + servers +
                     "</tds:DNSInformation></tds:GetDNSResponse>");
}

OnvifAnswer SetDNS(OnvifCall& call)
{
    call.values["dns.dhcp"] = call.request.Text("FromDHCP");
    std::string servers;
    for (const tinyxml2::XMLElement* entry : call.request.All("DNSManual"))
    {
        servers += OnvifSoapRequest::TextOf(OnvifSoapRequest::Find(entry, "IPv4Address")) + " ";
    }
    call.values["dns.servers"] = servers;
    return OnvifBody("<tds:SetDNSResponse/>");
}

OnvifAnswer GetNetworkProtocols(OnvifCall& call)
{
    std::string body;
    for (const char* name : {"HTTP", "HTTPS", "RTSP"})
    {
        body += "<tds:NetworkProtocols>" + Element("tt:Name", name) +
                Element("tt:Enabled", call.values[std::string("enabled.") + name]) +
                Element("tt:Port", call.values[std::string("port.") + name]) + "</tds:NetworkProtocols>";
    }
    return OnvifBody("<tds:GetNetworkProtocolsResponse>" + body + "</tds:GetNetworkProtocolsResponse>");
}

OnvifAnswer SetNetworkProtocols(OnvifCall& call)
{
    for (const tinyxml2::XMLElement* protocol : call.request.All("NetworkProtocols"))
    {
        const std::string name = OnvifSoapRequest::TextOf(OnvifSoapRequest::Find(protocol, "Name"));
        const std::string port = OnvifSoapRequest::TextOf(OnvifSoapRequest::Find(protocol, "Port"));
        if (port.empty() || port == "0")
        {
            return OnvifAnswer::Fault("ter:InvalidArgVal", "No such port");
        }
        call.values["port." + name] = port;
        call.values["enabled." + name] = OnvifSoapRequest::TextOf(OnvifSoapRequest::Find(protocol, "Enabled"));
    }
    return OnvifBody("<tds:SetNetworkProtocolsResponse/>");
}

} // namespace

OnvifFamily OnvifDeviceFamily()
{
    // clang-format off
    return {{
        {"GetServices",              "tds", &GetServices             },
        {"GetCapabilities",          "tds", &GetCapabilities         },
        {"GetDeviceInformation",     "tds", &GetDeviceInformation    },
        {"GetNetworkInterfaces",     "tds", &GetNetworkInterfaces    },
        {"SetNetworkInterfaces",     "tds", &SetNetworkInterfaces    },
        {"GetNetworkDefaultGateway", "tds", &GetNetworkDefaultGateway},
        {"SetNetworkDefaultGateway", "tds", &SetNetworkDefaultGateway},
        {"GetSystemDateAndTime",     "tds", &GetSystemDateAndTime    },
        {"SetSystemDateAndTime",     "tds", &SetSystemDateAndTime    },
        {"GetDNS",                   "tds", &GetDNS                  },
        {"SetDNS",                   "tds", &SetDNS                  },
        {"GetNetworkProtocols",      "tds", &GetNetworkProtocols     },
        {"SetNetworkProtocols",      "tds", &SetNetworkProtocols     },
    }, {
        {"device.manufacturer", "Test Works"        },
        {"device.model",        "TW-1"              },
        {"ipv4.dhcp",           "false"             },
        {"ipv4.kind",           "tt:Manual"         },
        {"ipv4.address",        "192.168.1.20"      },
        {"ipv4.prefix",         "24"                },
        {"gateway",             "192.168.1.1"       },
        {"time.type",           "Manual"            },
        {"time.utc",            "2026 11 21 13 30 5"},
        {"time.daylight",       "false"             },
        {"time.zone",           "GMT-08:00"         },
        {"dns.dhcp",            "false"             },
        {"dns.servers",         "8.8.8.8 1.1.1.1"   },
        {"enabled.HTTP",        "true"              },
        {"enabled.HTTPS",       "false"             },
        {"enabled.RTSP",        "true"              },
        {"port.HTTP",           "80"                },
        {"port.HTTPS",          "443"               },
        {"port.RTSP",           "554"               },
    }};
    // clang-format on
}
