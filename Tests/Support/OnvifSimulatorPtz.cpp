// The simulated camera: PTZ and preset tours.
//
// It keeps its velocity as "ptz.pan", "ptz.tilt" and "ptz.zoom" (empty: it stands), the preset it stands at as
// "ptz.at", the presets' names as "preset.TOKEN", the tours' names as "tour.TOKEN" with "spots.TOKEN" (token and stay
// of each spot) and "state.TOKEN".
#include "OnvifSimulatorTables.h"

#include <sstream>

namespace
{

bool IsProfile(const OnvifCall& call)
{
    return call.request.Text("ProfileToken") == "Profile_1";
}

OnvifAnswer NoSuch(const std::string& what)
{
    return OnvifAnswer::Fault("ter:InvalidArgVal", "No such " + what);
}

OnvifAnswer Done(const std::string& operation)
{
    return OnvifBody("<ptzw:" + operation + "Response/>");
}

/// The tokens under which values of a kind are kept.
std::vector<std::string> TokensOf(const OnvifValues& values, const std::string& kind)
{
    std::vector<std::string> tokens;
    for (auto value = values.lower_bound(kind); value != values.end() && value->first.rfind(kind, 0) == 0; ++value)
    {
        tokens.push_back(value->first.substr(kind.size()));
    }
    return tokens;
}

/// A token that no value of the kind has.
std::string NewToken(const OnvifValues& values, const std::string& kind)
{
    int number = 1;
    while (values.count(kind + std::to_string(number)) != 0)
    {
        ++number;
    }
    return std::to_string(number);
}

std::string Range(const std::string& name, const std::string& min, const std::string& max)
{
    return "<tt:" + name + "><tt:Min>" + min + "</tt:Min><tt:Max>" + max + "</tt:Max></tt:" + name + ">";
}

OnvifAnswer GetConfigurationOptions(OnvifCall& call)
{
    if (call.request.Text("ConfigurationToken") != "PTZ_1")
    {
        return NoSuch("configuration");
    }
    const std::string& min = call.values["ptz.min"];
    const std::string& max = call.values["ptz.max"];
    return OnvifBody("<ptzw:GetConfigurationOptionsResponse><ptzw:PTZConfigurationOptions><tt:Spaces>"
                     "<tt:ContinuousPanTiltVelocitySpace>" +
                     Range("XRange", min, max) + Range("YRange", min, max) +
                     "</tt:ContinuousPanTiltVelocitySpace><tt:ContinuousZoomVelocitySpace>" +
                     Range("XRange", min, max) +
                     "</tt:ContinuousZoomVelocitySpace></tt:Spaces></ptzw:PTZConfigurationOptions>"
                     "</ptzw:GetConfigurationOptionsResponse>");
}

OnvifAnswer ContinuousMove(OnvifCall& call)
{
    if (!IsProfile(call))
    {
        return NoSuch("profile");
    }
    if (call.request.Has("Velocity/PanTilt"))
    {
        call.values["ptz.pan"] = call.request.Attribute("Velocity/PanTilt", "x");
        call.values["ptz.tilt"] = call.request.Attribute("Velocity/PanTilt", "y");
    }
    if (call.request.Has("Velocity/Zoom"))
    {
        call.values["ptz.zoom"] = call.request.Attribute("Velocity/Zoom", "x");
    }
    return Done("ContinuousMove");
}

OnvifAnswer Stop(OnvifCall& call)
{
    if (!IsProfile(call))
    {
        return NoSuch("profile");
    }
    if (call.request.Text("PanTilt") != "false")
    {
        call.values["ptz.pan"] = "";
        call.values["ptz.tilt"] = "";
    }
    if (call.request.Text("Zoom") != "false")
    {
        call.values["ptz.zoom"] = "";
    }
    return Done("Stop");
}

OnvifAnswer GetPresets(OnvifCall& call)
{
    if (!IsProfile(call))
    {
        return NoSuch("profile");
    }
    std::string body = "<ptzw:GetPresetsResponse>";
    for (const std::string& token : TokensOf(call.values, "preset."))
    {
        body += "<ptzw:Preset token=\"" + token + "\"><tt:Name>" + XmlEscaped(call.values["preset." + token]) +
                "</tt:Name></ptzw:Preset>";
    }
    return OnvifBody(body + "</ptzw:GetPresetsResponse>");
}

OnvifAnswer SetPreset(OnvifCall& call)
{
    std::string token = call.request.Text("PresetToken");
    if (!IsProfile(call) || (!token.empty() && call.values.count("preset." + token) == 0))
    {
        return NoSuch("preset");
    }
    if (token.empty())
    {
        token = NewToken(call.values, "preset.");
    }
    call.values["preset." + token] = call.request.Text("PresetName");
    return OnvifBody("<ptzw:SetPresetResponse><ptzw:PresetToken>" + token +
                     "</ptzw:PresetToken></ptzw:SetPresetResponse>");
}

OnvifAnswer RemovePreset(OnvifCall& call)
{
    return IsProfile(call) && call.values.erase("preset." + call.request.Text("PresetToken")) != 0
               ? Done("RemovePreset")
               : NoSuch("preset");
}

OnvifAnswer GotoPreset(OnvifCall& call)
{
    const std::string token = call.request.Text("PresetToken");
    if (!IsProfile(call) || call.values.count("preset." + token) == 0)
    {
        return NoSuch("preset");
    }
    call.values["ptz.at"] = token;
    return Done("GotoPreset");
}

OnvifAnswer GetPresetTours(OnvifCall& call)
{
    if (!IsProfile(call))
    {
        return NoSuch("profile");
    }
    std::string body = "<ptzw:GetPresetToursResponse>";
    for (const std::string& token : TokensOf(call.values, "tour."))
    {
        body += "<ptzw:PresetTour token=\"" + token + "\"><tt:Name>" + XmlEscaped(call.values["tour." + token]) +
                "</tt:Name><tt:Status><tt:State>" + call.values["state." + token] + "</tt:State></tt:Status>";
        std::istringstream spots(call.values["spots." + token]);
        std::string preset;
        std::string stay;
        while (spots >> preset >> stay)
        {
            body += "<tt:TourSpot><tt:PresetDetail><tt:PresetToken>" + preset +
                    "</tt:PresetToken></tt:PresetDetail><tt:StayTime>" + stay + "</tt:StayTime></tt:TourSpot>";
        }
        body += "</ptzw:PresetTour>";
    }
    return OnvifBody(body + "</ptzw:GetPresetToursResponse>");
}

OnvifAnswer CreatePresetTour(OnvifCall& call)
{
    if (!IsProfile(call))
    {
        return NoSuch("profile");
    }
    const std::string token = NewToken(call.values, "tour.");
    call.values["tour." + token] = "";
    call.values["state." + token] = "Idle";
    return OnvifBody("<ptzw:CreatePresetTourResponse><ptzw:PresetTourToken>" + token +
                     "</ptzw:PresetTourToken></ptzw:CreatePresetTourResponse>");
}

OnvifAnswer ModifyPresetTour(OnvifCall& call)
{
    const std::string token = call.request.Attribute("PresetTour", "token");
    if (!IsProfile(call) || call.values.count("tour." + token) == 0)
    {
        return NoSuch("tour");
    }
    call.values["tour." + token] = call.request.Text("PresetTour/Name");
    std::string spots;
    for (const tinyxml2::XMLElement* spot : call.request.All("PresetTour/TourSpot"))
    {
        spots += OnvifSoapRequest::TextOf(OnvifSoapRequest::Find(spot, "PresetDetail/PresetToken")) + " " +
                 OnvifSoapRequest::TextOf(OnvifSoapRequest::Find(spot, "StayTime")) + " ";
    }
    call.values["spots." + token] = spots;
    return Done("ModifyPresetTour");
}

OnvifAnswer RemovePresetTour(OnvifCall& call)
{
    return IsProfile(call) && call.values.erase("tour." + call.request.Text("PresetTourToken")) != 0
               ? Done("RemovePresetTour")
               : NoSuch("tour");
}

OnvifAnswer OperatePresetTour(OnvifCall& call)
{
    const std::string token = call.request.Text("PresetTourToken");
    if (!IsProfile(call) || call.values.count("tour." + token) == 0)
    {
        return NoSuch("tour");
    }
    call.values["state." + token] = call.request.Text("Operation");
    return Done("OperatePresetTour");
}

} // namespace

OnvifFamily OnvifPtzFamily()
{
    // clang-format off
    return {{
        {"GetConfigurationOptions", "ptzw", &GetConfigurationOptions},
        {"ContinuousMove",          "ptzw", &ContinuousMove         },
        {"Stop",                    "ptzw", &Stop                   },
        {"GetPresets",              "ptzw", &GetPresets             },
        {"SetPreset",               "ptzw", &SetPreset              },
        {"RemovePreset",            "ptzw", &RemovePreset           },
        {"GotoPreset",              "ptzw", &GotoPreset             },
        {"GetPresetTours",          "ptzw", &GetPresetTours         },
        {"CreatePresetTour",        "ptzw", &CreatePresetTour       },
        {"ModifyPresetTour",        "ptzw", &ModifyPresetTour       },
        {"RemovePresetTour",        "ptzw", &RemovePresetTour       },
        {"OperatePresetTour",       "ptzw", &OperatePresetTour      },
    }, {
        {"ptz.min",  "-1.0"           },
        {"ptz.max",  "1.0"            },
        {"ptz.pan",  ""               },
        {"ptz.tilt", ""               },
        {"ptz.zoom", ""               },
        {"ptz.at",   ""               },
        {"preset.1", "door"           },
        {"preset.2", "gate"           },
        {"tour.1",   "round"          },
        {"spots.1",  "1 PT5S 2 PT10S "},
        {"state.1",  "Idle"           },
    }};
    // clang-format on
}
