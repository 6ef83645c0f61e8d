// The simulated camera: imaging. It keeps "image.NAME" for each setting, and the focus as "focus.speed".
#include "OnvifSimulatorTables.h"

namespace
{

// Paths below the settings, of the imaging service's schema, and the names under which they are kept.
// clang-format off
const char* const SETTINGS[][2] = {
    {"BacklightCompensation/Mode", "backlight" },
    {"Brightness",                 "brightness"},
    {"ColorSaturation",            "saturation"},
    {"Contrast",                   "contrast"  },
    {"Exposure/Iris",              "iris"      },
    {"IrCutFilter",                "irCut"     },
    {"Sharpness",                  "sharpness" },
    {"WideDynamicRange/Mode",      "wdr"       },
    {"WideDynamicRange/Level",     "wdrLevel"  },
    {"WhiteBalance/Mode",          "balance"   },
    {"WhiteBalance/CrGain",        "crGain"    },
    {"WhiteBalance/CbGain",        "cbGain"    },
};
// clang-format on

bool IsSource(const OnvifCall& call)
{
    return call.request.Text("VideoSourceToken") == "VideoSource_1";
}

OnvifAnswer NoSuchSource()
{
    return OnvifAnswer::Fault("ter:InvalidArgVal", "No such video source");
}

std::string Range(const std::string& name, const std::string& min, const std::string& max)
{
    return "<tt:" + name + "><tt:Min>" + min + "</tt:Min><tt:Max>" + max + "</tt:Max></tt:" + name + ">";
}

OnvifAnswer GetImagingSettings(OnvifCall& call)
{
    if (!IsSource(call))
    {
        return NoSuchSource();
    }
    std::string body;
    std::string open;
    for (const auto& setting : SETTINGS)
    {
        const std::string path = setting[0];
        const std::size_t slash = path.find('/');
        const std::string group = slash != std::string::npos ? path.substr(0, slash) : "";
        body += group != open && !open.empty() ? "</tt:" + open + ">" : "";
        body += group != open && !group.empty() ? "<tt:" + group + ">" : "";
        open = group;
        const std::string name = slash != std::string::npos ? path.substr(slash + 1) : path;
        body +=
            "<tt:" + name + ">" + XmlEscaped(call.values[std::string("image.") + setting[1]]) + "</tt:" + name + ">";
    }
    return OnvifBody("<img:GetImagingSettingsResponse><img:ImagingSettings>" + body + "</tt:" + open +
                     "></img:ImagingSettings></img:GetImagingSettingsResponse>");
}

OnvifAnswer SetImagingSettings(OnvifCall& call)
{
    if (!IsSource(call))
    {
        return NoSuchSource();
    }
    for (const auto& setting : SETTINGS)
    {
        const std::string path = std::string("ImagingSettings/") + setting[0];
        if (call.request.Has(path))
        {
            call.values[std::string("image.") + setting[1]] = call.request.Text(path);
        }
    }
    return OnvifBody("<img:SetImagingSettingsResponse/>");
}

OnvifAnswer GetOptions(OnvifCall& call)
{
    if (!IsSource(call))
    {
        return NoSuchSource();
    }
    return OnvifBody(
        "<img:GetOptionsResponse><img:ImagingOptions>"
        "<tt:BacklightCompensation><tt:Mode>OFF</tt:Mode><tt:Mode>ON</tt:Mode></tt:BacklightCompensation>" +
        Range("Brightness", "0", "100") + Range("ColorSaturation", "0", "100") + Range("Contrast", "0", "100") +
        "<tt:Exposure><tt:Mode>AUTO</tt:Mode>" + Range("Iris", "-22", "0") +
        "</tt:Exposure><tt:IrCutFilterModes>ON</tt:IrCutFilterModes>"
        "<tt:IrCutFilterModes>OFF</tt:IrCutFilterModes>" +
        Range("Sharpness", "0", "100") + "<tt:WideDynamicRange><tt:Mode>OFF</tt:Mode><tt:Mode>ON</tt:Mode>" +
        Range("Level", "1", "7") +
        "</tt:WideDynamicRange><tt:WhiteBalance><tt:Mode>AUTO</tt:Mode><tt:Mode>MANUAL</tt:Mode>" +
        Range("YrGain", "0", "255") + Range("YbGain", "0", "255") +
        "</tt:WhiteBalance></img:ImagingOptions></img:GetOptionsResponse>");
}

OnvifAnswer GetMoveOptions(OnvifCall& call)
{
    return !IsSource(call) ? NoSuchSource()
                           : OnvifBody("<img:GetMoveOptionsResponse><img:MoveOptions><tt:Continuous>" +
                                       Range("Speed", call.values["focus.min"], call.values["focus.max"]) +
                                       "</tt:Continuous></img:MoveOptions></img:GetMoveOptionsResponse>");
}

OnvifAnswer Move(OnvifCall& call)
{
    if (!IsSource(call) || !call.request.Has("Focus/Continuous/Speed"))
    {
        return NoSuchSource();
    }
    call.values["focus.speed"] = call.request.Text("Focus/Continuous/Speed");
    return OnvifBody("<img:MoveResponse/>");
}

OnvifAnswer Stop(OnvifCall& call)
{
    if (!IsSource(call))
    {
        return NoSuchSource();
    }
    call.values["focus.speed"] = "";
    return OnvifBody("<img:StopResponse/>");
}

} // namespace

OnvifFamily OnvifImagingFamily()
{
    // clang-format off
    return {{
        {"GetImagingSettings", "img", &GetImagingSettings},
        {"SetImagingSettings", "img", &SetImagingSettings},
        {"GetOptions",         "img", &GetOptions        },
        {"GetMoveOptions",     "img", &GetMoveOptions    },
        {"Move",               "img", &Move              },
        {"Stop",               "img", &Stop              },
    }, {
        {"image.backlight",  "OFF" },
        {"image.brightness", "50"  },
        {"image.saturation", "51"  },
        {"image.contrast",   "52"  },
        {"image.iris",       "-3"  },
        {"image.irCut",      "AUTO"},
        {"image.sharpness",  "53"  },
        {"image.wdr",        "ON"  },
        {"image.wdrLevel",   "4"   },
        {"image.balance",    "AUTO"},
        {"image.crGain",     "10"  },
        {"image.cbGain",     "20"  },
        {"focus.min",        "-7"  },
        {"focus.max",        "7"   },
        {"focus.speed",      ""    }, // empty: it stands
    }};
    // clang-format on
}
