// Any document of the host through every builder: what comes out can be parsed.
#include "GetCmd.h"
#include "OnvifXmlParse.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace
{

using Builder = std::string (CGetDefaultCmd::*)(const std::string& request) const;

const Builder BUILDERS[] = {
    &CGetDefaultCmd::SetNetworkInterfaces,
    &CGetDefaultCmd::SetNetworkGateway,
    &CGetDefaultCmd::SetSystemDateAndTime,
    &CGetDefaultCmd::SetDNS,
    &CGetDefaultCmd::SetNetworkProtocols,
    &CGetDefaultCmd::CreatePullPointSubscription,
    &CGetDefaultCmd::Subscribe,
    &CGetDefaultCmd::Renew,
    &CGetDefaultCmd::PullMessages,
    &CGetDefaultCmd::GetStreamUri,
    &CGetDefaultCmd::GetSnapshotUri,
    &CGetDefaultCmd::GetImgOptions,
    &CGetDefaultCmd::GetImgSettings,
    &CGetDefaultCmd::SetImgSettings,
    &CGetDefaultCmd::ImgStop,
    &CGetDefaultCmd::PTZStop,
    &CGetDefaultCmd::GetPresets,
    &CGetDefaultCmd::AddPreset,
    &CGetDefaultCmd::ModifyPresetName,
    &CGetDefaultCmd::RemovePreset,
    &CGetDefaultCmd::GotoPreset,
    &CGetDefaultCmd::GetCruises,
    &CGetDefaultCmd::AddPresetTour,
    &CGetDefaultCmd::ModifyCruise,
    &CGetDefaultCmd::DelCruise,
    &CGetDefaultCmd::SetRelayOutputs,
    &CGetDefaultCmd::SetRelayOutputState,
};

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
    for (const Builder builder : BUILDERS)
    {
        RequireDocument((commands.*builder)(request));
    }
    const ONVIF_PTZ_VELOCITY velocity = {-2147483647 - 1, 2147483647, -1, 1, 0, 0};
    const ONVIF_RANGE range = {-2147483647 - 1, 2147483647};
    RequireDocument(commands.ContinuousMove(request, &velocity));
    RequireDocument(commands.ContinuousMove(request, nullptr));
    RequireDocument(commands.ContinuousFocus(request, &range));
    RequireDocument(commands.SetAnalyticsModules(request, "token", "module"));
    RequireDocument(commands.SetRules(request, "token", "rule"));
    RequireDocument(commands.OperateCruise(request, CGetDefaultCmd::CRUISE_PAUSE));
    return 0;
}
