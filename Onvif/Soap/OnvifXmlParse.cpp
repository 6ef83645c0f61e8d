// The prefix table and the translation of paths. The family of typed values is in OnvifXmlParseValues.cpp.
#include "OnvifXmlParse.h"

#include <algorithm>
#include <cctype>

namespace
{

constexpr const char* ENVELOPE = "s";

struct NamespaceRow
{
    const char* prefix; // as paths are written
    const char* suffix; // lower case; what the namespace's URI ends in
};

// The first row that matches a URI takes it. ".../event/topics" also ends in "/topics", so such a namespace is "tp" and
// "et" keeps its own prefix.
// clang-format off
const NamespaceRow NAMESPACES[] = {
    {ENVELOPE, "/soap-envelope"                                   },
    {"tds",    "/device/wsdl"                                     },
    {"tt",     "www.onvif.org/ver10/schema"                       },
    {"dis",    "/discovery"                                       },
    {"ad",     "www.w3.org/2005/08/addressing"                    },
    {"addis",  "schemas.xmlsoap.org/ws/2004/08/addressing"        },
    {"nt",     "/network/wsdl"                                    },
    {"http",   "/wsdl/http"                                       },
    {"ana",    "/analytics/wsdl"                                  },
    {"ew",     "/events/wsdl"                                     },
    {"img",    "/imaging/wsdl"                                    },
    {"dio",    "/deviceio/wsdl"                                   },
    {"tp",     "/topics"                                          },
    {"et",     "/event/topics"                                    },
    {"ptzw",   "/ver20/ptz/wsdl"                                  },
    {"mdw",    "/media/wsdl"                                      },
    {"sto",    "/storage/wsdl"                                    },
    {"adw",    "/addressing/wsdl"                                 },
    {"wsdl",   "http://schemas.xmlsoap.org/wsdl/"                 },
    {"wsdl",   "http://schemas.xmlsoap.org/wsdl"                  },
    {"wsn",    "/wsn/b-2"                                         },
    {"wsse",   "/oasis-200401-wss-wssecurity-secext-1.0.xsd"      },
    {"wsu",    "/oasis-200401-wss-wssecurity-utility-1.0.xsd"     },
    {"ter",    "www.onvif.org/ver10/error"                        },
};
// clang-format on

const std::string XMLNS = "xmlns";

char ToLower(char c)
{
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

std::string Lowered(const std::string& text)
{
    std::string lowered = text;
    std::transform(lowered.begin(), lowered.end(), lowered.begin(), ToLower);
    return lowered;
}

int PositionOf(std::size_t found)
{
    return found == std::string::npos ? -1 : static_cast<int>(found);
}

/// Replaces the prefix of each component of a path by what `replacement` gives for it; null keeps it.
template <typename REPLACEMENT>
std::string ReplacePrefixes(const std::string& path, const REPLACEMENT& replacement)
{
    std::string replaced;
    replaced.reserve(path.size() + 16);
    for (std::size_t begin = 0, end = 0; end != std::string::npos; begin = end + 1)
    {
        end = path.find('/', begin);
        const std::string component = path.substr(begin, end == std::string::npos ? end : end - begin);
        const std::size_t colon = component.find(':');
        const std::string prefix = colon == std::string::npos ? std::string() : component.substr(0, colon);
        const std::string* other = replacement(prefix);
        replaced += other != nullptr ? *other + component.substr(prefix.size()) : component;
        replaced += end == std::string::npos ? "" : "/";
    }
    return replaced;
}

} // namespace

COnvifXmlParse::COnvifXmlParse()
{
    InitNamespaceMap();
}

COnvifXmlParse::COnvifXmlParse(const std::string& xml)
{
    InitNamespaceMap();
    if (!xml.empty())
    {
        LoadXML(xml);
    }
}

bool COnvifXmlParse::LoadXML(const std::string& xml)
{
    const bool loaded = CQLXXMLParse::LoadXML(xml);
    if (loaded)
    {
        RefreshNamespaceMap();
    }
    return loaded;
}

bool COnvifXmlParse::LoadFile(const std::string& path)
{
    const bool loaded = CQLXXMLParse::LoadFile(path);
    if (loaded)
    {
        RefreshNamespaceMap();
    }
    return loaded;
}

// A document that declares nothing is read with the standard prefixes.
void COnvifXmlParse::InitNamespaceMap()
{
    for (const NamespaceRow& row : NAMESPACES)
    {
        m_namespaceMap[row.prefix] = row.prefix;
    }
}

void COnvifXmlParse::RefreshNamespaceMap()
{
    const unsigned int root = GetRootItem();
    std::map<std::string, std::string> attributes;
    if (root == 0 || !GetAttributes(root, attributes))
    {
        return;
    }
    std::map<std::string, std::string> uris; // by the document's prefix; of two for one namespace the later one stands
    for (const auto& [name, value] : attributes)
    {
        const int found = InsensitiveFind(name, XMLNS, 0);
        if (found >= 0)
        {
            const std::size_t behind = static_cast<std::size_t>(found) + XMLNS.size();
            uris[name.substr(behind + (name.find(':', behind) == std::string::npos ? 0 : 1))] = value;
        }
    }
    for (const auto& [prefix, uri] : uris)
    {
        const NamespaceRow* row =
            std::find_if(std::begin(NAMESPACES), std::end(NAMESPACES),
                         [&uri = uri](const NamespaceRow& one) { return CheckNamespace(uri, one.suffix); });
        if (row != std::end(NAMESPACES))
        {
            m_namespaceMap[row->prefix] = prefix;
        }
    }
}

void COnvifXmlParse::ChangeNamespaces(std::string& path) const
{
    path = ReplacePrefixes(path,
                           [this](const std::string& prefix)
                           {
                               const auto entry = m_namespaceMap.find(prefix);
                               return entry != m_namespaceMap.end() ? &entry->second : nullptr;
                           });
}

// Of several standard prefixes that share one of the document's, the smallest is given.
void COnvifXmlParse::ChangeNamespacesToStandard(std::string& path) const
{
    path = ReplacePrefixes(path,
                           [this](const std::string& prefix)
                           {
                               const auto entry =
                                   std::find_if(m_namespaceMap.begin(), m_namespaceMap.end(),
                                                [&prefix](const auto& one) { return one.second == prefix; });
                               return entry != m_namespaceMap.end() ? &entry->first : nullptr;
                           });
}

std::string COnvifXmlParse::Translated(const std::string& path) const
{
    std::string translated = path;
    ChangeNamespaces(translated);
    return translated;
}

int COnvifXmlParse::InsensitiveFind(const std::string& haystack, const std::string& needle, int pos)
{
    return PositionOf(Lowered(haystack).find(needle, static_cast<std::size_t>(pos)));
}

int COnvifXmlParse::InsensitiveRightFind(const std::string& haystack, const std::string& needle)
{
    return PositionOf(Lowered(haystack).rfind(needle));
}

bool COnvifXmlParse::CheckNamespace(const std::string& uri, const std::string& suffix)
{
    return uri.size() >= suffix.size() && std::equal(suffix.rbegin(), suffix.rend(), uri.rbegin(),
                                                     [](char lower, char c) { return lower == ToLower(c); });
}
