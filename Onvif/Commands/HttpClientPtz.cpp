// PTZ and cruises: exchanges with the PTZ service.
#include "HttpClient.h"

#include "GetCmd.h"
#include "XmlTransform.h"

namespace
{

constexpr unsigned int PRESETS_BUFFER = 20480;

} // namespace

int CHttpClient::GetPTZCfgOptions()
{
    ONVIF_PROFILE_TOKEN profile{};
    if (!GetProfileAt(0, profile))
    {
        return ONVIF_NOTHING_DONE;
    }
    std::string soap;
    const int result = Exchange(SERVICE_PTZ, CGetDefaultCmd::Instance().GetPTZCfgOptions(profile.ptzToken), soap);
    if (result == ONVIF_OK)
    {
        auto velocity = std::make_unique<ONVIF_PTZ_VELOCITY>();
        const bool known = CXmlTransform::TransGetPTZCfgOptions(soap, velocity.get()) == ONVIF_OK;
        m_ptzVelocity = known ? std::move(velocity) : nullptr;
    }
    return result;
}

int CHttpClient::ContinuousMove(const std::string& request, std::string& answer)
{
    return Run(SERVICE_PTZ, CGetDefaultCmd::Instance().ContinuousMove(request, m_ptzVelocity.get()),
               CXmlTransform::TransContinuousMove, answer);
}

int CHttpClient::PTZStop(const std::string& request, std::string& answer)
{
    return RunSet(SERVICE_PTZ, CGetDefaultCmd::Instance().PTZStop(request), "ptzStop", answer);
}

int CHttpClient::GetPresets(const std::string& request, std::string& answer)
{
    return Run(SERVICE_PTZ, CGetDefaultCmd::Instance().GetPresets(request), CXmlTransform::TransGetPresets, answer,
               PRESETS_BUFFER);
}

int CHttpClient::AddPreset(const std::string& request, std::string& answer)
{
    return Run(SERVICE_PTZ, CGetDefaultCmd::Instance().AddPreset(request), CXmlTransform::TransAddPreset, answer);
}

int CHttpClient::ModifyPresetName(const std::string& request, std::string& answer)
{
    return Run(SERVICE_PTZ, CGetDefaultCmd::Instance().ModifyPresetName(request), CXmlTransform::TransModifyPresetName,
               answer);
}

int CHttpClient::RemovePreset(const std::string& request, std::string& answer)
{
    return Run(SERVICE_PTZ, CGetDefaultCmd::Instance().RemovePreset(request), CXmlTransform::TransRemovePreset, answer);
}

int CHttpClient::GotoPreset(const std::string& request, std::string& answer)
{
    return RunSet(SERVICE_PTZ, CGetDefaultCmd::Instance().GotoPreset(request), "gotoPreset", answer);
}

int CHttpClient::GetCruises(const std::string& request, std::string& answer)
{
    return Run(SERVICE_PTZ, CGetDefaultCmd::Instance().GetCruises(request), CXmlTransform::TransGetCruises, answer);
}

int CHttpClient::AddCruise(const std::string& request, std::string& answer)
{
    const std::string soap = CGetDefaultCmd::Instance().AddPresetTour(request);
    return soap.empty() ? ONVIF_MISSING_FIELD : Run(SERVICE_PTZ, soap, CXmlTransform::TransAddPresetTour, answer);
}

int CHttpClient::ModifyCruise(const std::string& request, std::string& answer)
{
    return RunCruise(CGetDefaultCmd::Instance().ModifyCruise(request), "modifyCruise", answer);
}

int CHttpClient::DelCruise(const std::string& request, std::string& answer)
{
    return RunCruise(CGetDefaultCmd::Instance().DelCruise(request), "delCruise", answer);
}

int CHttpClient::StartCruise(const std::string& request, std::string& answer)
{
    return RunCruise(CGetDefaultCmd::Instance().OperateCruise(request, CGetDefaultCmd::CRUISE_START), "startCruise",
                     answer);
}

int CHttpClient::StopCruise(const std::string& request, std::string& answer)
{
    return RunCruise(CGetDefaultCmd::Instance().OperateCruise(request, CGetDefaultCmd::CRUISE_STOP), "stopCruise",
                     answer);
}

int CHttpClient::PauseCruise(const std::string& request, std::string& answer)
{
    return RunCruise(CGetDefaultCmd::Instance().OperateCruise(request, CGetDefaultCmd::CRUISE_PAUSE), "pauseCruise",
                     answer);
}

// A request that lacks a field does not go out.
int CHttpClient::RunCruise(const std::string& soap, const char* key, std::string& answer)
{
    return soap.empty() ? ONVIF_MISSING_FIELD : RunSet(SERVICE_PTZ, soap, key, answer);
}
