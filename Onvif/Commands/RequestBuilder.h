// RequestBuilder.h: what a builder works on: the host's request, and the SOAP document that its fields go into.
//
// Local to one builder.
#pragma once

#include "OnvifXmlParse.h"
#include "QLXXMLParse.h"

#include <string>
#include <string_view>

class CRequestBuilder
{
public:
    /// @param document  one of ONVIF_TEMPLATES
    CRequestBuilder(const std::string& request, std::string_view document);

    const CQLXXMLParse& Request() const { return m_request; }
    COnvifXmlParse& Soap() { return m_soap; }
    /// The finished request.
    std::string Text() { return *m_soap.GetDoc(); }

    /// The text of a field of the host's request; empty when it is missing.
    std::string Field(const std::string& path) const;
    std::string Field(unsigned int item, const std::string& path) const;

    /// Writes a field that the host's request has into an element that the document has.
    void Fill(const std::string& soapPath, const std::string& field);

private:
    CQLXXMLParse m_request;
    COnvifXmlParse m_soap;
};
