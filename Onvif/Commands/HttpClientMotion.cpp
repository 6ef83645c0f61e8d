// Motion detection, relay outputs and digital inputs: exchanges with the analytics, device and device IO services.
#include "HttpClient.h"

#include "GetCmd.h"
#include "XmlTransform.h"

#include <cstring>

// The names under which a device has its module and its rule are kept in the first profile: the writes use them.
void CHttpClient::KeepMotionName(char (ONVIF_PROFILE_TOKEN::*field)[64], const ONVIF_PROFILE_TOKEN& profile)
{
    CMySingleLock guard(m_lock);
    if (!m_profiles.empty())
    {
        std::memcpy(m_profiles.front().*field, profile.*field, sizeof(profile.*field));
    }
}

int CHttpClient::GetMotionCfg(std::string& answer)
{
    ONVIF_PROFILE_TOKEN profile{};
    if (!GetProfileAt(0, profile) || profile.videoAnalyticsToken[0] == '\0')
    {
        return ONVIF_UNREADABLE;
    }
    std::string soap;
    const int result =
        Exchange(SERVICE_ANALYTICS, CGetDefaultCmd::Instance().GetAnalyticsModules(profile.videoAnalyticsToken), soap);
    if (result == ONVIF_OK)
    {
        CXmlTransform::TransGetAnalyticsModules(soap, answer, profile.motionModuleName);
        KeepMotionName(&ONVIF_PROFILE_TOKEN::motionModuleName, profile);
    }
    return result;
}

int CHttpClient::GetMotionArea(std::string& answer)
{
    ONVIF_PROFILE_TOKEN profile{};
    if (!GetProfileAt(0, profile) || profile.videoAnalyticsToken[0] == '\0')
    {
        return ONVIF_UNREADABLE;
    }
    std::string soap;
    const int result =
        Exchange(SERVICE_ANALYTICS, CGetDefaultCmd::Instance().GetRules(profile.videoAnalyticsToken), soap);
    if (result == ONVIF_OK)
    {
        CXmlTransform::TransGetRules(soap, answer, profile.motionRuleName);
        KeepMotionName(&ONVIF_PROFILE_TOKEN::motionRuleName, profile);
    }
    return result;
}

// A device without analytics has nothing to set, which is a success.
int CHttpClient::SetMotionCfg(const std::string& request, std::string& answer)
{
    ONVIF_PROFILE_TOKEN profile{};
    if (!GetProfileAt(0, profile) || profile.videoAnalyticsToken[0] == '\0')
    {
        return ONVIF_OK;
    }
    return Run(
        SERVICE_ANALYTICS,
        CGetDefaultCmd::Instance().SetAnalyticsModules(request, profile.videoAnalyticsToken, profile.motionModuleName),
        CXmlTransform::TransSetAnalyticsModules, answer);
}

int CHttpClient::SetMotionArea(const std::string& request, std::string& answer)
{
    ONVIF_PROFILE_TOKEN profile{};
    if (!GetProfileAt(0, profile) || profile.videoAnalyticsToken[0] == '\0')
    {
        return ONVIF_OK;
    }
    return Run(SERVICE_ANALYTICS,
               CGetDefaultCmd::Instance().SetRules(request, profile.videoAnalyticsToken, profile.motionRuleName),
               CXmlTransform::TransSetRules, answer);
}

int CHttpClient::GetAlarmout(std::string& answer)
{
    return Run(SERVICE_DEVICE, CGetDefaultCmd::Instance().GetRelayOutputs(), CXmlTransform::TransGetRelayOutputs,
               answer);
}

int CHttpClient::SetAlarmout(const std::string& request, std::string& answer)
{
    return Run(SERVICE_DEVICE, CGetDefaultCmd::Instance().SetRelayOutputs(request), CXmlTransform::TransSetRelayOutputs,
               answer);
}

int CHttpClient::ManualAlarmout(const std::string& request, std::string& answer)
{
    return Run(SERVICE_DEVICEIO, CGetDefaultCmd::Instance().SetRelayOutputState(request),
               CXmlTransform::TransSetRelayOutputState, answer);
}

int CHttpClient::GetAlarmin(std::string& answer)
{
    return Run(SERVICE_DEVICEIO, CGetDefaultCmd::Instance().GetDigitalInputs(), CXmlTransform::TransGetDigitalInputs,
               answer);
}
