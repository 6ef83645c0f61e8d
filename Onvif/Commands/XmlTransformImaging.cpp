// The answers of the imaging service: settings, their options and the range of the focus.
#include "XmlTransform.h"

#include "TransformAnswer.h"

namespace
{

/// A field of the host's answer and where it stands in the device's document.
struct FieldRow
{
    const char* name;
    const char* path;
};

// clang-format off
const FieldRow SETTINGS[] = {
    {"brightness",            "tt:Brightness"                  },
    {"contrast",              "tt:Contrast"                    },
    {"saturation",            "tt:ColorSaturation"             },
    {"backlightCompensation", "tt:BacklightCompensation/tt:Mode"},
    {"nightVision",           "tt:IrCutFilter"                 },
    {"sharpness",             "tt:Sharpness"                   },
    {"iris",                  "tt:Exposure/tt:Iris"            },
};

// Below tt:WideDynamicRange and tt:WhiteBalance. The mode of the white balance is looked for without a prefix.
const FieldRow WIDE_DYNAMIC[] = {
    {"mode", "tt:Mode" },
    {"val",  "tt:Level"},
};
const FieldRow WHITE_BALANCE[] = {
    {"mode",   "Mode"     },
    {"crGain", "tt:CrGain"},
    {"cbGain", "tt:CbGain"},
};

// Options with a lowest and a highest value.
const FieldRow RANGES[] = {
    {"brightness", "tt:Brightness"     },
    {"contrast",   "tt:Contrast"       },
    {"saturation", "tt:ColorSaturation"},
    {"sharpness",  "tt:Sharpness"      },
};

// The gains have other names than in the settings.
const FieldRow WHITE_BALANCE_RANGES[] = {
    {"yrGain", "tt:YrGain"},
    {"ybGain", "tt:YbGain"},
};
// clang-format on

void CopyRange(CTransformAnswer& out, unsigned int range, unsigned int to)
{
    out.Copy(range, "tt:Min", to, "min");
    out.Copy(range, "tt:Max", to, "max");
}

/// An element with `min` and `max`; nothing when the device gives no such range.
void AddRange(CTransformAnswer& out, unsigned int from, const FieldRow& row, unsigned int to)
{
    const unsigned int range = out.Soap().GetFirstItem(from, row.path);
    if (range != 0)
    {
        CopyRange(out, range, out.Answer().AddValue(to, row.name, "", false));
    }
}

/// One `mode` for each element of that name, in an element that is added for the first.
void AddModes(CTransformAnswer& out, unsigned int from, const char* element, const char* name)
{
    for (unsigned int mode = out.Soap().GetFirstItem(from, element); mode != 0;
         mode = out.Soap().GetNextSiblingItemByName(mode, element))
    {
        std::string text;
        out.Soap().GetValueStr(mode, text);
        const unsigned int to = CTransformAnswer::FindOrAdd(out.Answer(), out.Key(), name);
        out.Answer().AddValue(to, "mode", text, false);
    }
}

template <std::size_t COUNT>
void AddGroup(CTransformAnswer& out, unsigned int from, const char* name, const FieldRow (&fields)[COUNT])
{
    if (from == 0)
    {
        return;
    }
    const unsigned int to = out.Answer().AddValue(out.Key(), name, "", false);
    for (const FieldRow& field : fields)
    {
        out.Copy(from, field.path, to, field.name);
    }
}

void AddWideDynamicOptions(CTransformAnswer& out, unsigned int options)
{
    const unsigned int range = out.Soap().GetFirstItem(options, "tt:WideDynamicRange");
    AddModes(out, range, "tt:Mode", "wideDynamic");
    const unsigned int level = out.Soap().GetFirstItem(range, "tt:Level");
    if (level != 0)
    {
        CopyRange(out, level, CTransformAnswer::FindOrAdd(out.Answer(), out.Key(), "wideDynamic"));
    }
}

void AddWhiteBalanceOptions(CTransformAnswer& out, unsigned int options)
{
    const unsigned int balance = out.Soap().GetFirstItem(options, "tt:WhiteBalance");
    AddModes(out, balance, "tt:Mode", "whiteBalance");
    for (const FieldRow& row : WHITE_BALANCE_RANGES)
    {
        if (out.Soap().GetFirstItem(balance, row.path) != 0)
        {
            AddRange(out, balance, row, CTransformAnswer::FindOrAdd(out.Answer(), out.Key(), "whiteBalance"));
        }
    }
}

} // namespace

void CXmlTransform::TransGetImgOptions(const std::string& soap, std::string& answer)
{
    CTransformAnswer out(soap, answer, "GetResponse", "imageOpts");
    if (!out.AddStatus())
    {
        return;
    }
    const unsigned int options = out.FindFirst({"s:Envelope/s:Body/img:GetOptionsResponse/img:ImagingOptions",
                                                "s:Envelope/s:Body/timg:GetOptionsResponse/timg:ImagingOptions"});
    for (const FieldRow& row : RANGES)
    {
        AddRange(out, options, row, out.Key());
    }
    AddModes(out, out.Soap().GetFirstItem(options, "tt:BacklightCompensation"), "tt:Mode", "backlightCompensation");
    AddModes(out, options, "tt:IrCutFilterModes", "nightVision");
    AddWideDynamicOptions(out, options);
    AddWhiteBalanceOptions(out, options);
    AddRange(out, options, {"iris", "tt:Exposure/tt:Iris"}, out.Key());
}

void CXmlTransform::TransGetImgSettings(const std::string& soap, std::string& answer)
{
    CTransformAnswer out(soap, answer, "GetResponse", "imageSettings");
    if (!out.AddStatus())
    {
        return;
    }
    const unsigned int settings =
        out.FindFirst({"s:Envelope/s:Body/img:GetImagingSettingsResponse/img:ImagingSettings",
                       "s:Envelope/s:Body/timg:GetImagingSettingsResponse/timg:ImagingSettings"});
    for (const FieldRow& row : SETTINGS)
    {
        out.Copy(settings, row.path, out.Key(), row.name);
    }
    AddGroup(out, out.Soap().GetFirstItem(settings, "tt:WideDynamicRange"), "wideDynamic", WIDE_DYNAMIC);
    AddGroup(out, out.Soap().GetFirstItem(settings, "tt:WhiteBalance"), "whiteBalance", WHITE_BALANCE);
}

void CXmlTransform::TransSetImgSettings(const std::string& soap, std::string& answer)
{
    TransSetBaseResponse(soap, answer, "imageSettings");
}

void CXmlTransform::TransImgStop(const std::string& soap, std::string& answer)
{
    TransSetBaseResponse(soap, answer, "imageStop");
}

void CXmlTransform::TransContinuousFocus(const std::string& soap, std::string& answer)
{
    TransSetBaseResponse(soap, answer, "continuousFocus");
}

// Fractions of a range are cut.
int CXmlTransform::TransGetImgMoveOption(const std::string& soap, ONVIF_RANGE* range)
{
    const COnvifXmlParse document(soap);
    *range = {};
    if (document.GetFirstItem("s:Envelope/s:Body/s:Fault") != 0)
    {
        return ONVIF_FAULT;
    }
    const unsigned int speed =
        document.GetFirstItem(document.GetFirstItem("s:Envelope/s:Body/img:GetMoveOptionsResponse"),
                              "img:MoveOptions/tt:Continuous/tt:Speed");
    const bool both =
        document.GetValue_i32(speed, "tt:Min", range->min) && document.GetValue_i32(speed, "tt:Max", range->max);
    return both ? ONVIF_OK : ONVIF_UNREADABLE;
}
