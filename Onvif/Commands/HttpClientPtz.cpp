// The PTZ and cruise commands.
#include "HttpClient.h"

int CHttpClient::ContinuousMove(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::PTZStop(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::GetPresets(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::AddPreset(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::ModifyPresetName(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::RemovePreset(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::GotoPreset(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::GetCruises(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::AddCruise(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::ModifyCruise(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::DelCruise(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::StartCruise(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::StopCruise(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::PauseCruise(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::GetPTZCfgOptions()
{
    return ONVIF_NOTHING_DONE;
}
