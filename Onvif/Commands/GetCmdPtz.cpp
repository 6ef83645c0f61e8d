// The requests of the PTZ service: velocities, presets and preset tours (ONVIF PTZ Service).
#include "GetCmd.h"

#include "OnvifHelper.h"
#include "OnvifTemplates.h"
#include "OperationBuilder.h"

#include <cmath>

namespace
{

const char* const PAN_TILT_SPACE = "http://www.onvif.org/ver10/tptz/PanTiltSpaces/VelocityGenericSpace";
const char* const ZOOM_SPACE = "http://www.onvif.org/ver10/tptz/ZoomSpaces/VelocityGenericSpace";

constexpr ONVIF_PTZ_VELOCITY GENERIC_VELOCITY = {-1, 1, -1, 1, -1, 1};

// Operations of a preset tour, by CRUISE_OPERATE.
struct CruiseRow
{
    const char* key;
    const char* operation;
};
const CruiseRow CRUISE_ROWS[] = {
    {"Set/startCruise", "Start"}, {"Set/stopCruise", "Stop"}, {"Set/pauseCruise", "Pause"}};

/// A percentage of a device's range, with the sign of the percentage whatever those of the bounds.
std::string Velocity(int percent, int min, int max)
{
    const double bound = std::abs(static_cast<double>(percent > 0 ? max : min));
    return COnvifHelper::DecimalText(percent * 0.01 * bound);
}

void AddVelocity(COperationBuilder& soap, const ONVIF_PTZ_VELOCITY& range)
{
    const unsigned int velocity = soap.Request().GetFirstItem(soap.Key(), "ptz/velocity");
    if (velocity == 0)
    {
        return;
    }
    int x = 0;
    int y = 0;
    int zoom = 0;
    soap.Request().GetValue_i32(velocity, "x", x);
    soap.Request().GetValue_i32(velocity, "y", y);
    soap.Request().GetValue_i32(velocity, "zoom", zoom);
    COnvifXmlParse& document = soap.Soap();
    const unsigned int out = document.AddValue(soap.Operation(), "ptzw:Velocity", "", false);
    const unsigned int panTilt = document.AddValue(out, "tt:PanTilt", "", false);
    document.SetAttribute(panTilt, "x", Velocity(x, range.panMin, range.panMax));
    document.SetAttribute(panTilt, "y", Velocity(y, range.tiltMin, range.tiltMax));
    document.SetAttribute(panTilt, "space", PAN_TILT_SPACE);
    const unsigned int zoomItem = document.AddValue(out, "tt:Zoom", "", false);
    document.SetAttribute(zoomItem, "x", Velocity(zoom, range.zoomMin, range.zoomMax));
    document.SetAttribute(zoomItem, "space", ZOOM_SPACE);
}

void AddTourSpot(COperationBuilder& soap, unsigned int preset, unsigned int tour)
{
    COnvifXmlParse& document = soap.Soap();
    const unsigned int spot = document.AddValue(tour, "tt:TourSpot", "", false);
    if (soap.Request().GetFirstItem(preset, "token") != 0)
    {
        const unsigned int detail = document.AddValue(spot, "tt:PresetDetail", "", false);
        soap.Copy(preset, "token", detail, "tt:PresetToken");
        document.AddValue(detail, "tt:Home", "false", false);
        document.AddValue(detail, "tt:PTZPosition", "", false);
    }
    std::string seconds;
    const bool given = soap.Request().GetValueStr(preset, "stayTime", seconds);
    document.AddValue(spot, "tt:StayTime", "PT" + (given ? seconds : "1") + "S", false);
}

void NameTour(COperationBuilder& soap, unsigned int tour)
{
    std::string text;
    if (soap.Request().GetValueStr(soap.Key(), "token", text))
    {
        soap.Soap().SetAttribute(tour, "token", text);
    }
    if (soap.Request().GetValueStr(soap.Key(), "name", text))
    {
        soap.Soap().SetValue(tour, "tt:Name", text, false);
    }
    else
    {
        soap.Soap().DeleteValue(soap.Soap().GetFirstItem(tour, "tt:Name"));
    }
}

/// Whether the host names a tour: without a token of the profile and one of the tour there is no request.
bool NamesATour(const COperationBuilder& soap)
{
    return soap.Has("profileToken") && soap.Has("token");
}

} // namespace

std::string CGetDefaultCmd::GetPTZCfgOptions(const std::string& ptzToken) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::GetPTZCfgOptions, "ptzw:GetConfigurationOptions");
    soap.FillText("ptzw:ConfigurationToken", ptzToken);
    return soap.Text();
}

std::string CGetDefaultCmd::ContinuousMove(const std::string& request, const ONVIF_PTZ_VELOCITY* velocity) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::ContinuousMove, "ptzw:ContinuousMove", request, "Set/continuousMove");
    soap.Add("profileToken", "ptzw:ProfileToken");
    AddVelocity(soap, velocity != nullptr ? *velocity : GENERIC_VELOCITY);
    return soap.Text();
}

std::string CGetDefaultCmd::PTZStop(const std::string& request) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::PTZStop, "ptzw:Stop", request, "Set/ptzStop");
    soap.Add("profileToken", "ptzw:ProfileToken");
    soap.Add("panTilt", "ptzw:PanTilt");
    soap.Add("zoom", "ptzw:Zoom");
    return soap.Text();
}

std::string CGetDefaultCmd::GetPresets(const std::string& request) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::GetPresets, "ptzw:GetPresets", request, "Get/presets");
    soap.Add("profileToken", "ptzw:ProfileToken");
    return soap.Text();
}

std::string CGetDefaultCmd::AddPreset(const std::string& request) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::SetPreset, "ptzw:SetPreset", request, "Set/addPreset");
    soap.Add("profileToken", "ptzw:ProfileToken");
    soap.Add("presetName", "ptzw:PresetName");
    return soap.Text();
}

// A preset that is set again under its token takes the new name, and the camera's position at that moment.
std::string CGetDefaultCmd::ModifyPresetName(const std::string& request) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::SetPreset, "ptzw:SetPreset", request, "Set/modifyPresetName");
    soap.Add("profileToken", "ptzw:ProfileToken");
    soap.Add("presetName", "ptzw:PresetName");
    soap.Add("presetToken", "ptzw:PresetToken");
    return soap.Text();
}

std::string CGetDefaultCmd::RemovePreset(const std::string& request) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::RemovePreset, "ptzw:RemovePreset", request, "Set/removePreset");
    soap.Add("profileToken", "ptzw:ProfileToken");
    soap.Add("presetToken", "ptzw:PresetToken");
    return soap.Text();
}

std::string CGetDefaultCmd::GotoPreset(const std::string& request) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::GotoPreset, "ptzw:GotoPreset", request, "Set/gotoPreset");
    soap.Add("profileToken", "ptzw:ProfileToken");
    soap.Add("presetToken", "ptzw:PresetToken");
    return soap.Text();
}

std::string CGetDefaultCmd::GetCruises(const std::string& request) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::GetPresetTours, "ptzw:GetPresetTours", request, "Get/cruises");
    soap.Add("profileToken", "ptzw:ProfileToken");
    return soap.Text();
}

std::string CGetDefaultCmd::AddPresetTour(const std::string& request) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::CreatePresetTour, "ptzw:CreatePresetTour", request, "Set/addCruise");
    soap.Fill("profileToken", "ptzw:ProfileToken");
    return soap.Text();
}

std::string CGetDefaultCmd::ModifyCruise(const std::string& request) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::ModifyPresetTour, "ptzw:ModifyPresetTour", request, "Set/modifyCruise");
    soap.Fill("profileToken", "ptzw:ProfileToken");
    const unsigned int tour = soap.Soap().GetFirstItem(soap.Operation(), "ptzw:PresetTour");
    NameTour(soap, tour);
    const CQLXXMLParse& host = soap.Request();
    for (unsigned int preset = host.GetFirstItem(soap.Key(), "presets/item"); preset != 0;
         preset = host.GetNextSiblingItemByName(preset, "item"))
    {
        AddTourSpot(soap, preset, tour);
    }
    return soap.Text();
}

// The tokens are looked for in an operation that this document does not have, so they are not written: devices see an
// empty profile and an empty tour, and remove nothing.
std::string CGetDefaultCmd::DelCruise(const std::string& request) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::RemovePresetTour, "ptzw:SetPreset", request, "Set/delCruise");
    if (!NamesATour(soap))
    {
        return {};
    }
    soap.Add("profileToken", "ptzw:ProfileToken");
    soap.Add("token", "ptzw:PresetTourToken");
    return soap.Text();
}

std::string CGetDefaultCmd::OperateCruise(const std::string& request, CRUISE_OPERATE operate) const
{
    const CruiseRow& row = CRUISE_ROWS[operate];
    COperationBuilder soap(ONVIF_TEMPLATES::OperatePresetTour, "ptzw:OperatePresetTour", request, row.key);
    if (!NamesATour(soap))
    {
        return {};
    }
    soap.Fill("profileToken", "ptzw:ProfileToken");
    soap.Fill("token", "ptzw:PresetTourToken");
    soap.FillText("ptzw:Operation", row.operation);
    return soap.Text();
}
