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

struct TransformRow
{
    const char* word; // in the documents that it reads
    Transform transform;
};

// clang-format off
const TransformRow TRANSFORMS[] = {
    {"NetworkInterfaces",    &CXmlTransform::TransGetNetworkInterface},
    {"SetNetworkInterfaces", &CXmlTransform::TransSetNetworkInterface},
    {"Gateway",              &CXmlTransform::TransGetNetworkGateway},
    {"DateAndTime",          &CXmlTransform::TransGetSystemDateAndTime},
    {"SetSystemDateAndTime", &CXmlTransform::TransSetSystemDateAndTime},
    {"DeviceInformation",    &CXmlTransform::TransGetDeviceInformation},
    {"DNS",                  &CXmlTransform::TransGetDNS},
    {"NetworkProtocols",     &CXmlTransform::TransGetNetworkProtocols},
    {"PullPoint",            &CXmlTransform::TransCreatePullPointSubscription},
    {"Subscribe",            &CXmlTransform::TransSubscribe},
    {"Renew",                &CXmlTransform::TransRenew},
    {"PullMessages",         &CXmlTransform::TransPullMessages},
    {"SetVideoEncoder",      &CXmlTransform::TransSetVideoEncoderConfiguration},
    {"StreamUri",            &CXmlTransform::TransGetStreamUri},
    {"GetOptions",           &CXmlTransform::TransGetImgOptions},
    {"ImagingSettings",      &CXmlTransform::TransGetImgSettings},
    {"SetImaging",           &CXmlTransform::TransSetImgSettings},
    {"StopResponse",         &CXmlTransform::TransImgStop},
    {"MoveResponse",         &CXmlTransform::TransContinuousFocus},
    {"ContinuousMove",       &CXmlTransform::TransContinuousMove},
    {"GetPresets",           &CXmlTransform::TransGetPresets},
    {"SetPreset",            &CXmlTransform::TransAddPreset},
    {"SetPreset",            &CXmlTransform::TransModifyPresetName},
    {"RemovePreset",         &CXmlTransform::TransRemovePreset},
    {"PresetTour",           &CXmlTransform::TransGetCruises},
    {"CreatePresetTour",     &CXmlTransform::TransAddPresetTour},
    {"ModifyAnalytics",      &CXmlTransform::TransSetAnalyticsModules},
    {"ModifyRules",          &CXmlTransform::TransSetRules},
    {"SetRelayOutput",       &CXmlTransform::TransSetRelayOutputs},
    {"RelayOutputState",     &CXmlTransform::TransSetRelayOutputState},
    {"DigitalInputs",        &CXmlTransform::TransGetDigitalInputs},
};
// clang-format on

/// Whether a transform is tried: with documents that it may read, and with every short one.
bool Concerns(const std::string& xml, const char* word)
{
    return xml.size() < 64 || xml.find(word) != std::string::npos || xml.find("Fault") != std::string::npos;
}

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

void ReadMedia(const std::string& xml)
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
}

void ReadRangesAndMotion(const std::string& xml)
{
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
    CXmlTransform::TransSetBaseResponse(xml, answer, "key");
    for (const TransformRow& row : TRANSFORMS)
    {
        if (Concerns(xml, row.word))
        {
            row.transform(xml, answer);
        }
    }
    if (Concerns(xml, "RelayOutputs") && HasKnownIdleStatesOnly(xml))
    {
        CXmlTransform::TransGetRelayOutputs(xml, answer);
    }
    Require(CQLXXMLParse(answer).GetRootItem() != 0);
    if (Concerns(xml, "SetNetworkDefaultGateway"))
    {
        std::string gateway; // no parser reads this one back
        CXmlTransform::TransSetNetworkGateway(xml, gateway);
    }
    if (Concerns(xml, "GetServices") || Concerns(xml, "Capabilities") || Concerns(xml, "Probe"))
    {
        ReadServices(xml);
    }
    if (Concerns(xml, "Profile") || Concerns(xml, "Encoder") || Concerns(xml, "SnapshotUri"))
    {
        ReadMedia(xml);
    }
    if (Concerns(xml, "Options") || Concerns(xml, "Analytics") || Concerns(xml, "Rule"))
    {
        ReadRangesAndMotion(xml);
    }
    return 0;
}
