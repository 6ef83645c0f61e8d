// Any document of the host through every builder: what comes out can be parsed.
#include "GetCmd.h"
#include "OnvifXmlParse.h"

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace
{

using Builder = std::string (CGetDefaultCmd::*)(const std::string& request) const;

struct BuilderRow
{
    const char* key;
    Builder builder;
};

// clang-format off
const BuilderRow BUILDERS[] = {
    {"ipv4",             &CGetDefaultCmd::SetNetworkInterfaces},
    {"ipv4",             &CGetDefaultCmd::SetNetworkGateway},
    {"dateAndTime",      &CGetDefaultCmd::SetSystemDateAndTime},
    {"dns",              &CGetDefaultCmd::SetDNS},
    {"networkProtocols", &CGetDefaultCmd::SetNetworkProtocols},
    {"createPullPoint",  &CGetDefaultCmd::CreatePullPointSubscription},
    {"subscribe",        &CGetDefaultCmd::Subscribe},
    {"renew",            &CGetDefaultCmd::Renew},
    {"pullMessages",     &CGetDefaultCmd::PullMessages},
    {"streamURI",        &CGetDefaultCmd::GetStreamUri},
    {"snapshotURI",      &CGetDefaultCmd::GetSnapshotUri},
    {"imageOpts",        &CGetDefaultCmd::GetImgOptions},
    {"imageSettings",    &CGetDefaultCmd::GetImgSettings},
    {"imageSettings",    &CGetDefaultCmd::SetImgSettings},
    {"imageStop",        &CGetDefaultCmd::ImgStop},
    {"ptzStop",          &CGetDefaultCmd::PTZStop},
    {"presets",          &CGetDefaultCmd::GetPresets},
    {"addPreset",        &CGetDefaultCmd::AddPreset},
    {"modifyPresetName", &CGetDefaultCmd::ModifyPresetName},
    {"removePreset",     &CGetDefaultCmd::RemovePreset},
    {"gotoPreset",       &CGetDefaultCmd::GotoPreset},
    {"cruises",          &CGetDefaultCmd::GetCruises},
    {"addCruise",        &CGetDefaultCmd::AddPresetTour},
    {"modifyCruise",     &CGetDefaultCmd::ModifyCruise},
    {"delCruise",        &CGetDefaultCmd::DelCruise},
    {"alarmout",         &CGetDefaultCmd::SetRelayOutputs},
    {"manualAlarmout",   &CGetDefaultCmd::SetRelayOutputState},
};
// clang-format on

/// Whether a builder is tried: with documents that have its key, and with every short one.
bool Concerns(const std::string& request, const char* key)
{
    return request.size() < 64 || request.find(key) != std::string::npos;
}

void RequireDocument(const std::string& soap)
{
    if (!soap.empty() && COnvifXmlParse(soap).GetRootItem() == 0)
    {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string request(reinterpret_cast<const char*>(data), size);
    const CGetDefaultCmd& commands = CGetDefaultCmd::Instance();
    for (const BuilderRow& row : BUILDERS)
    {
        if (Concerns(request, row.key))
        {
            RequireDocument((commands.*row.builder)(request));
        }
    }
    const ONVIF_PTZ_VELOCITY velocity = {INT_MIN, INT_MAX, -1, 1, 0, 0};
    const ONVIF_RANGE range = {INT_MIN, INT_MAX};
    if (Concerns(request, "continuousMove"))
    {
        RequireDocument(commands.ContinuousMove(request, &velocity));
        RequireDocument(commands.ContinuousMove(request, nullptr));
    }
    if (Concerns(request, "continuousFocus"))
    {
        RequireDocument(commands.ContinuousFocus(request, &range));
    }
    if (Concerns(request, "motion"))
    {
        RequireDocument(commands.SetAnalyticsModules(request, "token", "module"));
        RequireDocument(commands.SetRules(request, "token", "rule"));
    }
    if (Concerns(request, "pauseCruise"))
    {
        RequireDocument(commands.OperateCruise(request, CGetDefaultCmd::CRUISE_PAUSE));
    }
    return 0;
}
