// The imaging commands.
#include "HttpClient.h"

int CHttpClient::GetImgOptions(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::GetImgSettings(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::SetImgSettings(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::ImgStop(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::ContinuousFocus(const std::string& /*request*/, std::string& /*answer*/)
{
    return ONVIF_NOTHING_DONE;
}

int CHttpClient::GetImgMoveOptions()
{
    return ONVIF_NOTHING_DONE;
}
