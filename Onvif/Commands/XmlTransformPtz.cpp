// The answers of the PTZ service: ranges, presets and preset tours.
#include "XmlTransform.h"

#include "OnvifHelper.h"
#include "TransformAnswer.h"

#include <algorithm>
#include <climits>
#include <cstdlib>

namespace
{

const char* const DIGITS = "0123456789";

/// The number in an ISO 8601 duration, whatever its unit: "PT5S" is 5.
int NumberOf(const std::string& duration)
{
    const std::size_t begin = duration.find_first_of(DIGITS);
    if (begin == std::string::npos)
    {
        return 0;
    }
    const long number = std::strtol(duration.c_str() + begin, nullptr, 10);
    return static_cast<int>(std::min(number, long{INT_MAX}));
}

/// The greater of a speed's pan and tilt, as the device wrote it; empty when there is none.
std::string SpeedOf(const COnvifXmlParse& soap, unsigned int speed)
{
    const unsigned int panTilt = soap.GetFirstItem(speed, "tt:PanTilt");
    std::string x;
    std::string y;
    soap.GetAttributeStr(panTilt, "x", x);
    soap.GetAttributeStr(panTilt, "y", y);
    return COnvifHelper::ReadDecimal(y) > COnvifHelper::ReadDecimal(x) ? y : x;
}

void AddSpot(CTransformAnswer& out, unsigned int spot, unsigned int presets)
{
    const unsigned int item = out.Answer().AddValue(presets, "item", "", false);
    out.Copy(spot, "tt:PresetDetail/tt:PresetToken", item, "presetToken");
    std::string stayTime;
    if (out.Soap().GetValueStr(spot, "tt:StayTime", stayTime))
    {
        out.Answer().AddValue_i32(item, "time", NumberOf(stayTime));
    }
    const unsigned int speed = out.Soap().GetFirstItem(spot, "tt:Speed");
    if (speed != 0)
    {
        out.Answer().AddValue(item, "speed", SpeedOf(out.Soap(), speed), false);
    }
}

void AddTour(CTransformAnswer& out, unsigned int tour)
{
    const unsigned int item = out.Answer().AddValue(out.Key(), "item", "", false);
    if (!out.CopyAttribute(tour, "tt:token", item, "token"))
    {
        out.CopyAttribute(tour, "token", item, "token");
    }
    if (!out.Copy(tour, "tt:Name", item, "name"))
    {
        out.Answer().AddValue(item, "name", "", false);
    }
    unsigned int spot = out.Soap().GetFirstItem(tour, "tt:TourSpot");
    const unsigned int presets = spot != 0 ? out.Answer().AddValue(item, "presets", "", false) : 0;
    for (; spot != 0; spot = out.Soap().GetNextSiblingItemByName(spot, "tt:TourSpot"))
    {
        AddSpot(out, spot, presets);
    }
}

/// A `status`, and the token of what the device has made.
void TransToken(const std::string& soap, std::string& answer, const char* key, const char* response, const char* token)
{
    CTransformAnswer out(soap, answer, "SetResponse", key);
    if (out.AddStatus())
    {
        out.Copy(out.Soap().GetFirstItem(std::string("s:Envelope/s:Body/") + response), token, out.Key(), "token");
    }
}

} // namespace

int CXmlTransform::TransGetPTZCfgOptions(const std::string& soap, ONVIF_PTZ_VELOCITY* velocity)
{
    const COnvifXmlParse document(soap);
    *velocity = {};
    if (document.GetFirstItem("s:Envelope/s:Body/s:Fault") != 0)
    {
        return ONVIF_FAULT;
    }
    const unsigned int spaces =
        document.GetFirstItem(document.GetFirstItem("s:Envelope/s:Body/ptzw:GetConfigurationOptionsResponse"),
                              "ptzw:PTZConfigurationOptions/tt:Spaces");
    const unsigned int panTilt = document.GetFirstItem(spaces, "tt:ContinuousPanTiltVelocitySpace");
    const unsigned int zoom = document.GetFirstItem(spaces, "tt:ContinuousZoomVelocitySpace");
    const bool all = document.GetValue_i32(panTilt, "tt:XRange/tt:Min", velocity->panMin) &&
                     document.GetValue_i32(panTilt, "tt:XRange/tt:Max", velocity->panMax) &&
                     document.GetValue_i32(panTilt, "tt:YRange/tt:Min", velocity->tiltMin) &&
                     document.GetValue_i32(panTilt, "tt:YRange/tt:Max", velocity->tiltMax) &&
                     document.GetValue_i32(zoom, "tt:XRange/tt:Min", velocity->zoomMin) &&
                     document.GetValue_i32(zoom, "tt:XRange/tt:Max", velocity->zoomMax);
    return all ? ONVIF_OK : ONVIF_UNREADABLE;
}

void CXmlTransform::TransContinuousMove(const std::string& soap, std::string& answer)
{
    TransSetBaseResponse(soap, answer, "continuousMove");
}

void CXmlTransform::TransGetPresets(const std::string& soap, std::string& answer)
{
    CTransformAnswer out(soap, answer, "GetResponse", "presets");
    if (!out.AddStatus())
    {
        return;
    }
    const unsigned int response = out.FindFirst(
        {"s:Envelope/s:Body/ptzw:GetPresetsResponse", "SOAP-ENV:Envelope/SOAP-ENV:Body/ptzw:GetPresetsResponse"});
    for (unsigned int preset = out.Soap().GetFirstItem(response, "ptzw:Preset"); preset != 0;
         preset = out.Soap().GetNextSiblingItemByName(preset, "ptzw:Preset"))
    {
        const unsigned int item = out.Answer().AddValue(out.Key(), "item", "", false);
        out.CopyAttribute(preset, "token", item, "token");
        out.Copy(preset, "tt:Name", item, "name");
    }
}

void CXmlTransform::TransAddPreset(const std::string& soap, std::string& answer)
{
    TransToken(soap, answer, "addPreset", "ptzw:SetPresetResponse", "ptzw:PresetToken");
}

void CXmlTransform::TransModifyPresetName(const std::string& soap, std::string& answer)
{
    TransSetBaseResponse(soap, answer, "modifyPresetName");
}

void CXmlTransform::TransRemovePreset(const std::string& soap, std::string& answer)
{
    TransSetBaseResponse(soap, answer, "removePreset");
}

void CXmlTransform::TransGetCruises(const std::string& soap, std::string& answer)
{
    CTransformAnswer out(soap, answer, "GetResponse", "cruises");
    if (!out.AddStatus())
    {
        return;
    }
    const unsigned int response = out.FindFirst({"s:Envelope/s:Body/ptzw:GetPresetToursResponse"});
    for (unsigned int tour = out.Soap().GetFirstItem(response, "ptzw:PresetTour"); tour != 0;
         tour = out.Soap().GetNextSiblingItemByName(tour, "ptzw:PresetTour"))
    {
        AddTour(out, tour);
    }
}

void CXmlTransform::TransAddPresetTour(const std::string& soap, std::string& answer)
{
    TransToken(soap, answer, "addCruise", "ptzw:CreatePresetTourResponse", "ptzw:PresetTourToken");
}
