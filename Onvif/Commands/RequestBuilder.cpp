#include "RequestBuilder.h"

CRequestBuilder::CRequestBuilder(const std::string& request, std::string_view document)
    : m_request(request), m_soap(std::string(document))
{
}

std::string CRequestBuilder::Field(const std::string& path) const
{
    std::string value;
    m_request.GetValueStr(path, value);
    return value;
}

std::string CRequestBuilder::Field(unsigned int item, const std::string& path) const
{
    std::string value;
    m_request.GetValueStr(item, path, value);
    return value;
}

void CRequestBuilder::Fill(const std::string& soapPath, const std::string& field)
{
    std::string value;
    const unsigned int target = m_soap.GetFirstItem(soapPath);
    if (target != 0 && m_request.GetValueStr(field, value))
    {
        m_soap.SetValue(target, value, false);
    }
}
