// Profiles, encoders and addresses of streams: exchanges with the media service.
#include "HttpClient.h"

#include "GetCmd.h"
#include "QLXXMLParse.h"
#include "XmlTransform.h"

namespace
{

constexpr unsigned int PROFILES_BUFFER = 46080;
constexpr unsigned int PROFILE_BUFFER = 10240;
constexpr int ENCODER_TIMEOUT_MS = 8000; // a device may restart its encoder before it answers

} // namespace

int CHttpClient::GetProfiles(std::string& answer, std::vector<ONVIF_PROFILE_TOKEN>& profiles)
{
    profiles.clear();
    std::string soap;
    const int result = Exchange(SERVICE_MEDIA, CGetDefaultCmd::Instance().GetProfiles(), soap, PROFILES_BUFFER);
    return result == ONVIF_OK ? CXmlTransform::TransGetProfiles(soap, answer, profiles) : result;
}

// An index without a profile is passed over; when none has one, nothing is done.
int CHttpClient::RunForEachIndex(const std::string& request, const char* path, ProfileBuilder builder,
                                 IndexedTransform transform, std::string& answer, unsigned int recvSize)
{
    const CQLXXMLParse host(request);
    int result = ONVIF_NOTHING_DONE;
    for (unsigned int item = host.GetFirstItem(path); item != 0; item = host.GetNextSiblingItemByName(item, "index"))
    {
        int index = 0;
        ONVIF_PROFILE_TOKEN profile{};
        if (!host.GetValue_i32(item, index) || !GetProfileAt(index, profile))
        {
            continue;
        }
        std::string soap;
        result = Exchange(SERVICE_MEDIA, builder(profile), soap, recvSize);
        if (result != ONVIF_OK)
        {
            break;
        }
        transform(soap, answer, index);
    }
    return result;
}

int CHttpClient::GetProfile(const std::string& request, std::string& answer)
{
    const auto builder = [](const ONVIF_PROFILE_TOKEN& profile)
    {
        return CGetDefaultCmd::Instance().GetProfile(profile.profileToken);
    };
    return RunForEachIndex(request, "Get/profile/index", builder, CXmlTransform::TransGetProfile, answer,
                           PROFILE_BUFFER);
}

int CHttpClient::GetVideoEncoderConfigurationOption(const std::string& request, std::string& answer)
{
    const auto builder = [](const ONVIF_PROFILE_TOKEN& profile)
    {
        return CGetDefaultCmd::Instance().GetVideoEncoderConfigurationOption(profile.profileToken,
                                                                             profile.videoEncoderToken);
    };
    return RunForEachIndex(request, "Get/videoEncoderCfgOpts/index", builder,
                           CXmlTransform::TransGetVideoEncoderConfigurationOption, answer, PROFILE_BUFFER);
}

int CHttpClient::GetVideoEncoderConfiguration(const std::string& request, std::string& answer)
{
    const auto builder = [](const ONVIF_PROFILE_TOKEN& profile)
    {
        return CGetDefaultCmd::Instance().GetVideoEncoderConfiguration(profile.videoEncoderToken);
    };
    return RunForEachIndex(request, "Get/videoEncoderCfg/index", builder,
                           CXmlTransform::TransGetVideoEncoderConfiguration, answer, COMMAND_BUFFER);
}

int CHttpClient::SetVideoEncoderConfiguration(const std::string& request, std::string& answer)
{
    CQLXXMLParse host(request);
    int result = ONVIF_NOTHING_DONE;
    for (unsigned int item = host.GetFirstItem("Set/videoEncodeCfg/item"); item != 0;
         item = host.GetNextSiblingItemByName(item, "item"))
    {
        int index = 0;
        ONVIF_PROFILE_TOKEN profile{};
        if (!host.GetValue_i32(item, "index", index) || !GetProfileAt(index, profile))
        {
            continue;
        }
        host.AddValue(item, "encodeToken", profile.videoEncoderToken, false);
        std::string soap;
        result = Exchange(SERVICE_MEDIA,
                          CGetDefaultCmd::Instance().SetVideoEncoderConfiguration(host, item, profile.encodeName), soap,
                          COMMAND_BUFFER, ENCODER_TIMEOUT_MS);
        if (result != ONVIF_OK)
        {
            break;
        }
        CXmlTransform::TransSetVideoEncoderConfiguration(soap, answer);
    }
    return result;
}

int CHttpClient::GetStreamUri(const std::string& request, std::string& answer)
{
    return Run(SERVICE_MEDIA, CGetDefaultCmd::Instance().GetStreamUri(request), CXmlTransform::TransGetStreamUri,
               answer);
}

int CHttpClient::GetSnapshotUri(const std::string& request, std::string& answer, std::string& uri)
{
    std::string soap;
    const int result = Exchange(SERVICE_MEDIA, CGetDefaultCmd::Instance().GetSnapshotUri(request), soap);
    if (result == ONVIF_OK)
    {
        CXmlTransform::TransGetSnapshotUri(soap, answer, uri);
    }
    return result;
}

int CHttpClient::GetSnapshotFile(const std::string& request, char*& data, int& size)
{
    std::string answer;
    std::string uri;
    const int result = GetSnapshotUri(request, answer, uri);
    return result == ONVIF_OK ? GetSnapshotData(uri, data, size) : result;
}
