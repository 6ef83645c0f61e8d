#include "OperationBuilder.h"

namespace
{

const char* const BODY = "s:Envelope/s:Body/";

} // namespace

COperationBuilder::COperationBuilder(std::string_view document, const std::string& operation,
                                     const std::string& request, const std::string& key)
    : CRequestBuilder(request, document), m_operation(Soap().GetFirstItem(BODY + operation)),
      m_key(Request().GetFirstItem(key))
{
}

COperationBuilder::COperationBuilder(std::string_view document, const std::string& operation)
    : CRequestBuilder("", document), m_operation(Soap().GetFirstItem(BODY + operation))
{
}

void COperationBuilder::Add(const std::string& field, const std::string& element)
{
    if (m_operation != 0)
    {
        Copy(field, m_operation, element);
    }
}

void COperationBuilder::Fill(const std::string& field, const std::string& element)
{
    std::string text;
    if (Request().GetValueStr(m_key, field, text))
    {
        FillText(element, text);
    }
}

void COperationBuilder::FillText(const std::string& element, const std::string& text)
{
    Soap().SetValue(m_operation, element, text, false);
}

bool COperationBuilder::Copy(const std::string& field, unsigned int to, const std::string& element)
{
    return Copy(m_key, field, to, element);
}

bool COperationBuilder::Copy(unsigned int from, const std::string& field, unsigned int to, const std::string& element)
{
    std::string text;
    const bool there = Request().GetValueStr(from, field, text);
    if (there)
    {
        Soap().AddValue(to, element, text, false);
    }
    return there;
}

unsigned int COperationBuilder::FindOrAdd(unsigned int parent, const std::string& element)
{
    const unsigned int found = Soap().GetFirstItem(parent, element);
    return found != 0 ? found : Soap().AddValue(parent, element, "", false);
}
