// Whatever a camera sends: judged as an HTTP answer, parsed with its prefixes made ours, and read by every transform.
#include "HttpClient.h"
#include "OnvifXmlParse.h"
#include "ShareSDK.h"
#include "XmlTransform.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace
{

using Transform = void (*)(const std::string& soap, std::string& answer);

const Transform TRANSFORMS[] = {
    &CXmlTransform::TransGetNetworkInterface,
    &CXmlTransform::TransSetNetworkInterface,
    &CXmlTransform::TransGetNetworkGateway,
    &CXmlTransform::TransGetSystemDateAndTime,
    &CXmlTransform::TransSetSystemDateAndTime,
    &CXmlTransform::TransGetDeviceInformation,
    &CXmlTransform::TransGetDNS,
    &CXmlTransform::TransGetNetworkProtocols,
    &CXmlTransform::TransCreatePullPointSubscription,
    &CXmlTransform::TransSubscribe,
    &CXmlTransform::TransRenew,
    &CXmlTransform::TransPullMessages,
    &CXmlTransform::TransSetVideoEncoderConfiguration,
    &CXmlTransform::TransGetStreamUri,
    &CXmlTransform::TransGetImgOptions,
    &CXmlTransform::TransGetImgSettings,
    &CXmlTransform::TransSetImgSettings,
    &CXmlTransform::TransImgStop,
    &CXmlTransform::TransContinuousFocus,
    &CXmlTransform::TransContinuousMove,
    &CXmlTransform::TransGetPresets,
    &CXmlTransform::TransAddPreset,
    &CXmlTransform::TransModifyPresetName,
    &CXmlTransform::TransRemovePreset,
    &CXmlTransform::TransGetCruises,
    &CXmlTransform::TransAddPresetTour,
    &CXmlTransform::TransSetAnalyticsModules,
    &CXmlTransform::TransSetRules,
    &CXmlTransform::TransSetRelayOutputs,
    &CXmlTransform::TransSetRelayOutputState,
    &CXmlTransform::TransGetDigitalInputs,
};

void Require(bool condition)
{
    if (!condition)
    {
        std::abort();
    }
}

/// An idle state of other words ends the process, as it is meant to.
bool HasKnownIdleStatesOnly(const std::string& xml)
{
    const std::string name = "IdleState";
    for (std::size_t at = xml.find(name); at != std::string::npos; at = xml.find(name, at + 1))
    {
        const std::size_t behind = at + name.size();
        const bool closing = at >= 5 && xml.compare(at - 5, 5, "</tt:") == 0;
        if (!closing && xml.compare(behind, 7, ">open</") != 0 && xml.compare(behind, 9, ">closed</") != 0)
        {
            return false;
        }
    }
    return true;
}

void RequireZeroEnd(const char (&field)[64])
{
    Require(field[63] == '\0');
}

void ReadServices(const std::string& xml)
{
    std::map<std::string, std::string> urls;
    bool subscription = false;
    bool pullPoint = false;
    std::string url;
    CXmlTransform::TransGetServers(xml, urls);
    CXmlTransform::TransGetAllCapabilitiesUrl(xml, urls, subscription, pullPoint);
    for (int type = 0; type <= SERVICE_TYPE_REPLAY; ++type)
    {
        CXmlTransform::TransGetCapabilitieUrl(static_cast<SERVICE_TYPE>(type), xml, url);
    }
    CXmlTransform::TransPorbeMatch(xml);
}

void ReadMediaAndMotion(const std::string& xml)
{
    std::string answer;
    std::string uri;
    std::vector<ONVIF_PROFILE_TOKEN> profiles;
    CXmlTransform::TransGetProfiles(xml, answer, profiles);
    for (const ONVIF_PROFILE_TOKEN& profile : profiles)
    {
        RequireZeroEnd(profile.profileToken);
        RequireZeroEnd(profile.encodeName);
    }
    CXmlTransform::TransGetProfile(xml, answer, 0);
    CXmlTransform::TransGetVideoEncoderConfiguration(xml, answer, 1);
    CXmlTransform::TransGetVideoEncoderConfigurationOption(xml, answer, 2);
    CXmlTransform::TransGetSnapshotUri(xml, answer, uri);
    ONVIF_PTZ_VELOCITY velocity{};
    ONVIF_RANGE range{};
    CXmlTransform::TransGetPTZCfgOptions(xml, &velocity);
    CXmlTransform::TransGetImgMoveOption(xml, &range);
    char name[64] = {};
    std::string motion;
    CXmlTransform::TransGetAnalyticsModules(xml, motion, name);
    RequireZeroEnd(name);
    CXmlTransform::TransGetRules(xml, motion, name);
    RequireZeroEnd(name);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    SHARESDK_SetLogLevel(SHARESDK_LOG_NONE);
    const std::string input(reinterpret_cast<const char*>(data), size);
    std::string xml;
    const int result = CHttpClient::HttpRespCheck(input.c_str(), xml);
    Require(result == ONVIF_OK ? xml.compare(0, 5, "<?xml") == 0 : xml.empty());
    xml = result == ONVIF_OK ? xml : input;

    std::string answer;
    for (const Transform transform : TRANSFORMS)
    {
        transform(xml, answer);
    }
    if (HasKnownIdleStatesOnly(xml))
    {
        CXmlTransform::TransGetRelayOutputs(xml, answer);
    }
    Require(CQLXXMLParse(answer).GetRootItem() != 0);
    std::string gateway; // no parser reads this one back
    CXmlTransform::TransSetNetworkGateway(xml, gateway);
    ReadServices(xml);
    ReadMediaAndMotion(xml);
    return 0;
}
