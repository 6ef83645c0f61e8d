#include "OnvifSimulatorSoap.h"

#include <cctype>

using tinyxml2::XMLElement;

namespace
{

// clang-format off
const std::map<std::string, std::string> NAMESPACES = {
    {"s",    "http://www.w3.org/2003/05/soap-envelope"},
    {"tds",  "http://www.onvif.org/ver10/device/wsdl"},
    {"tt",   "http://www.onvif.org/ver10/schema"},
    {"mdw",  "http://www.onvif.org/ver10/media/wsdl"},
    {"img",  "http://www.onvif.org/ver20/imaging/wsdl"},
    {"ptzw", "http://www.onvif.org/ver20/ptz/wsdl"},
    {"ana",  "http://www.onvif.org/ver20/analytics/wsdl"},
    {"dio",  "http://www.onvif.org/ver10/deviceIO/wsdl"},
    {"ew",   "http://www.onvif.org/ver10/events/wsdl"},
    {"wsn",  "http://docs.oasis-open.org/wsn/b-2"},
    {"ad",   "http://www.w3.org/2005/08/addressing"},
    {"ter",  "http://www.onvif.org/ver10/error"},
};
// clang-format on

std::string Mapped(const std::map<std::string, std::string>& map, const std::string& key, const std::string& otherwise)
{
    const auto found = map.find(key);
    return found != map.end() ? found->second : otherwise;
}

std::string PrefixOf(const OnvifDialect& dialect, const std::string& ours)
{
    return Mapped(dialect.prefixes, ours, ours);
}

/// A name with one of our prefixes in the maker's.
std::string Translated(const std::string& name, const OnvifDialect& dialect)
{
    const std::size_t colon = name.find(':');
    if (colon == std::string::npos || NAMESPACES.count(name.substr(0, colon)) == 0)
    {
        return name;
    }
    return PrefixOf(dialect, name.substr(0, colon)) + name.substr(colon);
}

bool IsNameCharacter(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == ':' || c == '_' || c == '-' || c == '.';
}

/// Rewrites the names of elements and attributes; texts and attribute values stay.
std::string TranslateNames(const std::string& xml, const OnvifDialect& dialect)
{
    std::string out;
    bool inTag = false;
    char quote = '\0';
    for (std::size_t i = 0; i < xml.size();)
    {
        const char c = xml[i];
        if (inTag && quote == '\0' && IsNameCharacter(c))
        {
            std::size_t end = i;
            while (end < xml.size() && IsNameCharacter(xml[end]))
            {
                ++end;
            }
            out += Translated(xml.substr(i, end - i), dialect);
            i = end;
            continue;
        }
        if (inTag && (c == '"' || c == '\''))
        {
            quote = quote == '\0' ? c : quote == c ? '\0' : quote;
        }
        else if (quote == '\0' && (c == '<' || c == '>'))
        {
            inTag = c == '<';
        }
        out += c;
        ++i;
    }
    return out;
}

/// Takes the prefix off the body's element, at both of its ends.
std::string WithoutPrefix(const std::string& body)
{
    const std::size_t colon = body.find(':');
    const std::string tag = body.substr(1, body.find_first_of(" />") - 1);
    std::string bare = "<" + body.substr(colon + 1);
    const std::size_t end = bare.rfind("</" + tag + ">");
    if (end != std::string::npos)
    {
        bare.erase(end + 2, tag.find(':') + 1);
    }
    return bare;
}

std::string FaultBody(const OnvifAnswer& answer, const OnvifDialect& dialect)
{
    return "<s:Fault><s:Code><s:Value>" + Translated("s:" + answer.faultCode, dialect) +
           "</s:Value><s:Subcode><s:Value>" + Translated(answer.faultSubcode, dialect) +
           "</s:Value></s:Subcode></s:Code><s:Reason><s:Text xml:lang=\"en\">" + XmlEscaped(answer.faultReason) +
           "</s:Text></s:Reason></s:Fault>";
}

std::string Declarations(const OnvifDialect& dialect, bool envelope)
{
    std::string text;
    for (const auto& [prefix, uri] : NAMESPACES)
    {
        if ((prefix == "s") == envelope)
        {
            text += " xmlns:" + PrefixOf(dialect, prefix) + "=\"" + Mapped(dialect.namespaces, prefix, uri) + "\"";
        }
    }
    return text;
}

} // namespace

std::map<std::string, OnvifDialect> OnvifDialects()
{
    std::map<std::string, OnvifDialect> dialects;
    dialects["Ours"] = {};
    OnvifDialect& usual = dialects["UsualPrefixes"];
    usual.prefixes = {{"s", "SOAP-ENV"}, {"mdw", "trt"}, {"img", "timg"}, {"ptzw", "tptz"}, {"ana", "tan"},
                      {"dio", "tmd"},    {"ew", "tev"},  {"wsn", "wsnt"}, {"ad", "wsa5"}};
    OnvifDialect& soap = dialects["SoapPrefix"];
    soap.prefixes = {{"s", "soap"}, {"mdw", "trt"}, {"wsn", "wsnt"}, {"ad", "wsa"}};
    OnvifDialect& unusual = dialects["UnusualPrefixes"];
    unusual.prefixes = {{"s", "env"},   {"tds", "ns1"}, {"tt", "ns2"}, {"mdw", "ns3"}, {"img", "ns4"}, {"ptzw", "ns5"},
                        {"ana", "ns6"}, {"dio", "ns7"}, {"ew", "ns8"}, {"wsn", "ns9"}, {"ad", "ns10"}, {"ter", "e"}};
    OnvifDialect& capitals = dialects["CapitalNamespaces"];
    capitals.namespaces = {{"tds", "HTTP://WWW.ONVIF.ORG/VER10/DEVICE/WSDL"},
                           {"tt", "http://WWW.ONVIF.org/ver10/Schema"}};
    return dialects;
}

std::vector<std::string> OnvifDialectNames()
{
    std::vector<std::string> names;
    for (const auto& [name, dialect] : OnvifDialects())
    {
        names.push_back(name);
    }
    return names;
}

OnvifSoapRequest::OnvifSoapRequest(const std::string& xml)
{
    if (m_document.Parse(xml.data(), xml.size()) != tinyxml2::XML_SUCCESS)
    {
        return;
    }
    const XMLElement* const root = m_document.RootElement();
    if (LocalName(root) != "Envelope")
    {
        return;
    }
    m_header = Find(root, "Header");
    const XMLElement* const body = Find(root, "Body");
    m_body = body != nullptr ? body->FirstChildElement() : nullptr;
    m_operation = LocalName(m_body);
}

const XMLElement* OnvifSoapRequest::Find(const XMLElement* from, const std::string& path)
{
    const std::size_t slash = path.find('/');
    const std::string name = path.substr(0, slash);
    const XMLElement* child = from != nullptr ? from->FirstChildElement() : nullptr;
    while (child != nullptr && LocalName(child) != name)
    {
        child = child->NextSiblingElement();
    }
    return slash == std::string::npos ? child : Find(child, path.substr(slash + 1));
}

std::string OnvifSoapRequest::TextOf(const XMLElement* element)
{
    return element != nullptr && element->GetText() != nullptr ? element->GetText() : "";
}

std::string OnvifSoapRequest::LocalName(const XMLElement* element)
{
    const std::string name = element != nullptr ? element->Name() : "";
    return name.substr(name.find(':') + 1);
}

std::string OnvifSoapRequest::Text(const std::string& path) const
{
    return TextOf(Find(m_body, path));
}

std::string OnvifSoapRequest::Attribute(const std::string& path, const std::string& name) const
{
    const XMLElement* const element = Find(m_body, path);
    const char* const value = element != nullptr ? element->Attribute(name.c_str()) : nullptr;
    return value != nullptr ? value : "";
}

std::vector<const XMLElement*> OnvifSoapRequest::All(const std::string& path) const
{
    std::vector<const XMLElement*> all;
    const XMLElement* const first = Find(m_body, path);
    for (const XMLElement* one = first; one != nullptr; one = one->NextSiblingElement())
    {
        if (LocalName(one) == LocalName(first))
        {
            all.push_back(one);
        }
    }
    return all;
}

std::string OnvifSoapRequest::HeaderText(const std::string& path) const
{
    return TextOf(Find(m_header, path));
}

std::string OnvifSoapRequest::HeaderAttribute(const std::string& path, const std::string& name) const
{
    const XMLElement* const element = Find(m_header, path);
    const char* const value = element != nullptr ? element->Attribute(name.c_str()) : nullptr;
    return value != nullptr ? value : "";
}

std::string RenderOnvifAnswer(const OnvifAnswer& answer, const OnvifDialect& dialect)
{
    std::string body = TranslateNames(answer.IsFault() ? FaultBody(answer, dialect) : answer.body, dialect);
    if (dialect.bareResponseElement && !answer.IsFault())
    {
        body = WithoutPrefix(body);
    }
    const std::string services = Declarations(dialect, false);
    if (dialect.declaresInBody && !answer.IsFault())
    {
        body.insert(body.find_first_of(" />"), services);
    }
    const std::string envelope = PrefixOf(dialect, "s");
    return std::string(dialect.declaration ? "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" : "") + "<" + envelope +
           ":Envelope" + Declarations(dialect, true) + (dialect.declaresInBody ? "" : services) + "><" + envelope +
           ":Body>" + body + "</" + envelope + ":Body></" + envelope + ":Envelope>";
}

std::string XmlEscaped(const std::string& text)
{
    std::string escaped;
    for (const char c : text)
    {
        switch (c)
        {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += c;
        }
    }
    return escaped;
}
