// OperationBuilder.h: a builder of requests whose fields stand below one key of the host's request and go into one
// operation of the SOAP document.
//
// Local to one builder.
#pragma once

#include "RequestBuilder.h"

class COperationBuilder : public CRequestBuilder
{
public:
    /// @param document   one of ONVIF_TEMPLATES
    /// @param operation  the element of its body that is filled
    /// @param request    the host's
    /// @param key        path of the key's element in it
    COperationBuilder(std::string_view document, const std::string& operation, const std::string& request,
                      const std::string& key);
    /// Without fields of the host's.
    COperationBuilder(std::string_view document, const std::string& operation);

    /// 0 when the document has no such operation.
    unsigned int Operation() const { return m_operation; }
    /// 0 when the host's request has no such key.
    unsigned int Key() const { return m_key; }
    bool Has(const std::string& field) const { return Request().GetFirstItem(m_key, field) != 0; }

    /// Adds an element with the text of a field to the operation; nothing when there is no such field or operation.
    void Add(const std::string& field, const std::string& element);
    /// Gives an element that stands in the operation the text of a field, if there is one.
    void Fill(const std::string& field, const std::string& element);
    /// Gives an element that stands in the operation a text.
    void FillText(const std::string& element, const std::string& text);

    /// Adds an element with the text of a field to another element of the document.
    /// @return whether there is such a field
    bool Copy(const std::string& field, unsigned int to, const std::string& element);
    /// The same for an element of the host's request other than the key.
    bool Copy(unsigned int from, const std::string& field, unsigned int to, const std::string& element);
    /// The child element of that name, added without a text when there is none.
    unsigned int FindOrAdd(unsigned int parent, const std::string& element);

private:
    unsigned int m_operation;
    unsigned int m_key = 0;
};
