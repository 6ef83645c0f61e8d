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

std::string CQlxApiXmlFmt::GetImageConfig()
{
    return std::string(QLX_TEMPLATES::GetImageConfig);
}

std::string CQlxApiXmlFmt::GetImageOsdCfg()
{
    return std::string(QLX_TEMPLATES::GetImageOsdCfg);
}

std::string CQlxApiXmlFmt::GetPrivacyMaskCfg()
{
    return std::string(QLX_TEMPLATES::GetPrivacyMaskCfg);
}

std::string CQlxApiXmlFmt::GetStreamCaps()
{
    return std::string(QLX_TEMPLATES::GetStreamCaps);
}

std::string CQlxApiXmlFmt::GetVideoStreamCfg()
{
    return std::string(QLX_TEMPLATES::GetVideoStreamCfg);
}

std::string CQlxApiXmlFmt::GetAudioStreamCfg()
{
    return std::string(QLX_TEMPLATES::GetAudioStreamCfg);
}

std::string CQlxApiXmlFmt::GetMotionConfig()
{
    return std::string(QLX_TEMPLATES::GetMotionConfig);
}

std::string CQlxApiXmlFmt::GetAlarmInConfig()
{
    return std::string(QLX_TEMPLATES::GetAlarmInConfig);
}

std::string CQlxApiXmlFmt::GetAlarmOutConfig()
{
    return std::string(QLX_TEMPLATES::GetAlarmOutConfig);
}

std::string CQlxApiXmlFmt::GetAlarmServerConfig()
{
    return std::string(QLX_TEMPLATES::GetAlarmServerConfig);
}

std::string CQlxApiXmlFmt::GetAlarmStauts()
{
    return std::string(QLX_TEMPLATES::GetAlarmStauts);
}

std::string CQlxApiXmlFmt::PtzGetProtocolConfig()
{
    return std::string(QLX_TEMPLATES::PtzGetProtocolConfig);
}

std::string CQlxApiXmlFmt::GetNetBasicConfig()
{
    return std::string(QLX_TEMPLATES::GetNetBasicConfig);
}

std::string CQlxApiXmlFmt::GetNetPppoeConfig()
{
    return std::string(QLX_TEMPLATES::GetNetPppoeConfig);
}

std::string CQlxApiXmlFmt::GetPortConfig()
{
    return std::string(QLX_TEMPLATES::GetPortConfig);
}

std::string CQlxApiXmlFmt::GetDdnsConfig()
{
    return std::string(QLX_TEMPLATES::GetDdnsConfig);
}
