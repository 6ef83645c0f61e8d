// The media commands.
#include "HttpClient.h"

int CHttpClient::GetProfiles(std::string& /*answer*/, std::vector<ONVIF_PROFILE_TOKEN>& /*profiles*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::GetProfile(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::GetVideoEncoderConfigurationOption(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::GetVideoEncoderConfiguration(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::SetVideoEncoderConfiguration(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::GetStreamUri(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::GetSnapshotUri(const std::string& /*request*/, std::string& /*answer*/, std::string& /*uri*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::GetSnapshotFile(const std::string& /*request*/, char*& /*data*/, int& /*size*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::GetSnapshotData(std::string /*url*/, char*& /*data*/, int& /*size*/)
{
    return ONVIF_NOTHING_DONE;
}
