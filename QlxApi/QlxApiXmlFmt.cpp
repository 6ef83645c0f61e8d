#include "QlxApiXmlFmt.h"

#include "QlxApiTemplates.h"

const char* const QLX_API_NAMESPACE = "http://www.qlx.example/ver10";

std::string CQlxApiXmlFmt::CorrectResponse()
{
    return std::string(QLX_TEMPLATES::CorrectResponse);
}

std::string CQlxApiXmlFmt::ErrorResponse()
{
    return std::string(QLX_TEMPLATES::ErrorResponse);
}

std::string CQlxApiXmlFmt::GetVerifyXml()
{
    return std::string(QLX_TEMPLATES::GetVerifyXml);
}

std::string CQlxApiXmlFmt::GetDeviceInfo()
{
    return std::string(QLX_TEMPLATES::GetDeviceInfo);
}

std::string CQlxApiXmlFmt::GetDateAndTime()
{
    return std::string(QLX_TEMPLATES::GetDateAndTime);
}
