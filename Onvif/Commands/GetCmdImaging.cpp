// The requests of the imaging service (ONVIF Imaging Service).
#include "GetCmd.h"

#include "OnvifHelper.h"
#include "OnvifTemplates.h"
#include "OperationBuilder.h"

#include <cmath>

namespace
{

constexpr ONVIF_RANGE GENERIC_FOCUS = {-1, 1};

struct SettingRow
{
    const char* field; // of the host's request
    const char* group; // null: the element stands in the settings themselves
    const char* element;
};

// In the order of the imaging service's schema.
// clang-format off
const SettingRow SETTINGS[] = {
    {"backlightCompensation", "tt:BacklightCompensation", "tt:Mode"           },
    {"brightness",            nullptr,                    "tt:Brightness"     },
    {"saturation",            nullptr,                    "tt:ColorSaturation"},
    {"contrast",              nullptr,                    "tt:Contrast"       },
    {"iris",                  "tt:Exposure",              "tt:Iris"           },
    {"nightVision",           nullptr,                    "tt:IrCutFilter"    },
    {"sharpness",             nullptr,                    "tt:Sharpness"      },
    {"wideDynamic/mode",      "tt:WideDynamicRange",      "tt:Mode"           },
    {"wideDynamic/val",       "tt:WideDynamicRange",      "tt:Level"          },
    {"whiteBalance/mode",     "tt:WhiteBalance",          "tt:Mode"           },
    {"whiteBalance/crGain",   "tt:WhiteBalance",          "tt:CrGain"         },
    {"whiteBalance/cbGain",   "tt:WhiteBalance",          "tt:CbGain"         },
};
// clang-format on

void AddSetting(COperationBuilder& soap, unsigned int settings, const SettingRow& row)
{
    if (soap.Has(row.field))
    {
        const unsigned int to = row.group != nullptr ? soap.FindOrAdd(settings, row.group) : settings;
        soap.Copy(row.field, to, row.element);
    }
}

/// A percentage of a device's focus range.
std::string FocusSpeed(int percent, const ONVIF_RANGE& range)
{
    const double bound = percent < 1 ? std::abs(static_cast<double>(range.min)) : static_cast<double>(range.max);
    return COnvifHelper::DecimalText(percent * 0.01 * bound);
}

} // namespace

std::string CGetDefaultCmd::GetImgOptions(const std::string& request) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::GetImgOptions, "img:GetOptions", request, "Get/imageOpts");
    soap.Fill("videoSourceToken", "img:VideoSourceToken");
    return soap.Text();
}

std::string CGetDefaultCmd::GetImgSettings(const std::string& request) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::GetImgSettings, "img:GetImagingSettings", request, "Get/imageSettings");
    soap.Fill("videoSourceToken", "img:VideoSourceToken");
    return soap.Text();
}

std::string CGetDefaultCmd::SetImgSettings(const std::string& request) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::SetImgSettings, "img:SetImagingSettings", request, "Set/imageSettings");
    soap.Fill("videoSourceToken", "img:VideoSourceToken");
    const unsigned int settings = soap.Soap().GetFirstItem(soap.Operation(), "img:ImagingSettings");
    for (const SettingRow& row : SETTINGS)
    {
        AddSetting(soap, settings, row);
    }
    return soap.Text();
}

std::string CGetDefaultCmd::ImgStop(const std::string& request) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::ImgStop, "img:Stop", request, "Set/imageStop");
    soap.Fill("token", "img:VideoSourceToken");
    return soap.Text();
}

std::string CGetDefaultCmd::ContinuousFocus(const std::string& request, const ONVIF_RANGE* range) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::ContinuousFocus, "img:Move", request, "Set/continuousFocus");
    soap.Add("videoSourcetoken", "img:VideoSourceToken");
    int speed = 0;
    if (soap.Request().GetValue_i32(soap.Key(), "speed", speed))
    {
        soap.Soap().AddValue(soap.Operation(), "img:Focus/img:Continuous/tt:Speed",
                             FocusSpeed(speed, range != nullptr ? *range : GENERIC_FOCUS), false);
    }
    return soap.Text();
}

std::string CGetDefaultCmd::GetImgMoveOptions(const std::string& videoSourceToken) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::GetImgMoveOptions, "img:GetMoveOptions");
    soap.FillText("img:VideoSourceToken", videoSourceToken);
    return soap.Text();
}
