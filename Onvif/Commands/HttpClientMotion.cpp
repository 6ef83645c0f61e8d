// Motion, relays and digital inputs.
#include "HttpClient.h"

int CHttpClient::GetMotionCfg(std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::GetMotionArea(std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::SetMotionCfg(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::SetMotionArea(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::GetAlarmout(std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::SetAlarmout(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::ManualAlarmout(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::GetAlarmin(std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}
