// OnvifSimulatorSoap.h: what an ONVIF camera reads and writes, for tests: a request by local names, whatever its
// prefixes are, and an answer in the dialect of a maker.
//
// It shares no code with the library under test. Local to one thread.
#pragma once

#include <map>
#include <string>
#include <vector>

#include <tinyxml2.h>

/// How a maker writes SOAP. Answers are made with the prefixes s, tds, tt, mdw, img, ptzw, ana, dio, ew, wsn, ad and
/// ter, and are rewritten into these.
struct OnvifDialect
{
    /// The maker's prefix by ours; what is not here stays.
    std::map<std::string, std::string> prefixes;
    /// The maker's namespace by our prefix, for makers that spell one differently.
    std::map<std::string, std::string> namespaces;
    bool declaration = true;          ///< begins with <?xml ... ?>
    bool bareResponseElement = false; ///< the first element of the body has no prefix
    bool declaresInBody = false;      ///< the namespaces of the services stand on the body's element, not on the root
};

/// The dialects that every key is tried in, by name.
std::map<std::string, OnvifDialect> OnvifDialects();
std::vector<std::string> OnvifDialectNames();

class OnvifSoapRequest
{
public:
    explicit OnvifSoapRequest(const std::string& xml);

    /// Local name of the body's element; empty when the document cannot be read.
    const std::string& Operation() const { return m_operation; }

    /// The text at a path of local names below the body's element; empty when it is missing.
    std::string Text(const std::string& path) const;
    bool Has(const std::string& path) const { return Find(Body(), path) != nullptr; }
    std::string Attribute(const std::string& path, const std::string& name) const;
    /// All elements that a path leads to, of several siblings in order.
    std::vector<const tinyxml2::XMLElement*> All(const std::string& path) const;
    /// The text at a path below the header.
    std::string HeaderText(const std::string& path) const;
    std::string HeaderAttribute(const std::string& path, const std::string& name) const;
    bool HasHeader(const std::string& path) const { return Find(m_header, path) != nullptr; }

    static const tinyxml2::XMLElement* Find(const tinyxml2::XMLElement* from, const std::string& path);
    static std::string TextOf(const tinyxml2::XMLElement* element);
    static std::string LocalName(const tinyxml2::XMLElement* element);

private:
    const tinyxml2::XMLElement* Body() const { return m_body; }

    tinyxml2::XMLDocument m_document;
    const tinyxml2::XMLElement* m_header = nullptr;
    const tinyxml2::XMLElement* m_body = nullptr; // the body's first element
    std::string m_operation;
};

/// What a camera answers to an operation.
struct OnvifAnswer
{
    std::string body;         ///< the body's element with our prefixes; empty for a fault
    std::string faultCode;    ///< "Sender" or "Receiver"
    std::string faultSubcode; ///< with our prefix
    std::string faultReason;

    static OnvifAnswer Fault(const std::string& subcode, const std::string& reason, const std::string& code = "Sender")
    {
        return {"", code, subcode, reason};
    }
    bool IsFault() const { return !faultCode.empty(); }
};

/// The whole answer document.
std::string RenderOnvifAnswer(const OnvifAnswer& answer, const OnvifDialect& dialect);

/// `text` with &, <, > and quotes as entities.
std::string XmlEscaped(const std::string& text);
