// Pictures' settings and focus: exchanges with the imaging service.
#include "HttpClient.h"

#include "GetCmd.h"
#include "XmlTransform.h"

int CHttpClient::GetImgOptions(const std::string& request, std::string& answer)
{
    return Run(SERVICE_IMAGING, CGetDefaultCmd::Instance().GetImgOptions(request), CXmlTransform::TransGetImgOptions,
               answer);
}

int CHttpClient::GetImgSettings(const std::string& request, std::string& answer)
{
    return Run(SERVICE_IMAGING, CGetDefaultCmd::Instance().GetImgSettings(request), CXmlTransform::TransGetImgSettings,
               answer);
}

int CHttpClient::SetImgSettings(const std::string& request, std::string& answer)
{
    return Run(SERVICE_IMAGING, CGetDefaultCmd::Instance().SetImgSettings(request), CXmlTransform::TransSetImgSettings,
               answer);
}

int CHttpClient::ImgStop(const std::string& request, std::string& answer)
{
    return Run(SERVICE_IMAGING, CGetDefaultCmd::Instance().ImgStop(request), CXmlTransform::TransImgStop, answer);
}

int CHttpClient::ContinuousFocus(const std::string& request, std::string& answer)
{
    return Run(SERVICE_IMAGING, CGetDefaultCmd::Instance().ContinuousFocus(request, m_focusRange.get()),
               CXmlTransform::TransContinuousFocus, answer);
}

int CHttpClient::GetImgMoveOptions()
{
    ONVIF_PROFILE_TOKEN profile{};
    if (!GetProfileAt(0, profile))
    {
        return ONVIF_NOTHING_DONE;
    }
    std::string soap;
    const int result =
        Exchange(SERVICE_IMAGING, CGetDefaultCmd::Instance().GetImgMoveOptions(profile.videoSourceToken), soap);
    if (result == ONVIF_OK)
    {
        auto range = std::make_unique<ONVIF_RANGE>();
        const bool known = CXmlTransform::TransGetImgMoveOption(soap, range.get()) == ONVIF_OK;
        m_focusRange = known ? std::move(range) : nullptr;
    }
    return result;
}
