// The simulated camera: media. It has two profiles with a video encoder and, between them, one of sound alone.
#include "OnvifSimulatorTables.h"

namespace
{

struct ProfileRow
{
    const char* token;
    const char* name;
    const char* encoder; ///< token of the encoder's configuration; empty: none
};

const ProfileRow PROFILES[] = {
    {"Profile_1", "main", "Encoder_1"}, {"Sound", "sound", ""}, {"Profile_2", "sub", "Encoder_2"}};

std::string Element(const std::string& name, const std::string& text)
{
    return "<" + name + ">" + XmlEscaped(text) + "</" + name + ">";
}

const ProfileRow* FindProfile(const std::string& token)
{
    for (const ProfileRow& row : PROFILES)
    {
        if (token == row.token)
        {
            return &row;
        }
    }
    return nullptr;
}

OnvifAnswer NoSuchProfile()
{
    return OnvifAnswer::Fault("ter:InvalidArgVal", "No such profile");
}

/// What stands in an encoder's configuration.
std::string EncoderFields(OnvifValues& values, const std::string& token)
{
    const std::string own = token + ".";
    const std::string codec = values[own + "encoding"] == "MPEG4" ? "tt:MPEG4" : "tt:H264";
    const std::string profile = values[own + "encoding"] == "MPEG4" ? "tt:Mpeg4Profile" : "tt:H264Profile";
    return Element("tt:Name", values[own + "name"]) + Element("tt:UseCount", "1") +
           Element("tt:Encoding", values[own + "encoding"]) + "<tt:Resolution>" +
           Element("tt:Width", values[own + "width"]) + Element("tt:Height", values[own + "height"]) +
           "</tt:Resolution>" + Element("tt:Quality", values[own + "quality"]) + "<tt:RateControl>" +
           Element("tt:FrameRateLimit", values[own + "frameRate"]) +
           Element("tt:EncodingInterval", values[own + "interval"]) +
           Element("tt:BitrateLimit", values[own + "bitrate"]) + "</tt:RateControl><" + codec + ">" +
           Element("tt:GovLength", values[own + "gov"]) + Element(profile, values[own + "profile"]) + "</" + codec +
           ">" + Element("tt:SessionTimeout", "PT60S");
}

std::string Profile(OnvifValues& values, const ProfileRow& row, const std::string& element)
{
    std::string text = "<" + element + " token=\"" + row.token + "\" fixed=\"true\">" + Element("tt:Name", row.name);
    if (row.encoder[0] != '\0')
    {
        text += "<tt:VideoSourceConfiguration token=\"SourceConfig\">" + Element("tt:SourceToken", "VideoSource_1") +
                "</tt:VideoSourceConfiguration><tt:VideoEncoderConfiguration token=\"" + row.encoder + "\">" +
                EncoderFields(values, row.encoder) + "</tt:VideoEncoderConfiguration>";
    }
    text += "<tt:AudioSourceConfiguration token=\"AudioSource_1\"/><tt:AudioEncoderConfiguration token=\"Audio_1\"/>"
            "<tt:VideoAnalyticsConfiguration token=\"Analytics_1\"/><tt:PTZConfiguration token=\"PTZ_1\"/>";
    return text + "</" + element + ">";
}

OnvifAnswer GetProfiles(OnvifCall& call)
{
    std::string body = "<mdw:GetProfilesResponse>";
    for (const ProfileRow& row : PROFILES)
    {
        body += Profile(call.values, row, "mdw:Profiles");
    }
    return OnvifBody(body + "</mdw:GetProfilesResponse>");
}

OnvifAnswer GetProfile(OnvifCall& call)
{
    const ProfileRow* const row = FindProfile(call.request.Text("ProfileToken"));
    return row == nullptr ? NoSuchProfile()
                          : OnvifBody("<mdw:GetProfileResponse>" + Profile(call.values, *row, "mdw:Profile") +
                                      "</mdw:GetProfileResponse>");
}

OnvifAnswer GetVideoEncoderConfigurationOptions(OnvifCall& call)
{
    const ProfileRow* const row = FindProfile(call.request.Text("ProfileToken"));
    if (row == nullptr || call.request.Text("ConfigurationToken") != row->encoder)
    {
        return NoSuchProfile();
    }
    return OnvifBody(
        "<mdw:GetVideoEncoderConfigurationOptionsResponse><mdw:Options>"
        "<tt:QualityRange><tt:Min>1</tt:Min><tt:Max>6</tt:Max></tt:QualityRange>"
        "<tt:H264><tt:ResolutionsAvailable><tt:Width>1920</tt:Width><tt:Height>1080</tt:Height>"
        "</tt:ResolutionsAvailable><tt:ResolutionsAvailable><tt:Width>640</tt:Width><tt:Height>360</tt:Height>"
        "</tt:ResolutionsAvailable><tt:GovLengthRange><tt:Min>1</tt:Min><tt:Max>200</tt:Max></tt:GovLengthRange>"
        "<tt:FrameRateRange><tt:Min>1</tt:Min><tt:Max>25</tt:Max></tt:FrameRateRange>"
        "<tt:EncodingIntervalRange><tt:Min>1</tt:Min><tt:Max>1</tt:Max></tt:EncodingIntervalRange>"
        "<tt:H264ProfilesSupported>Baseline</tt:H264ProfilesSupported>"
        "<tt:H264ProfilesSupported>Main</tt:H264ProfilesSupported></tt:H264>"
        "<tt:Extension><tt:H264><tt:BitrateRange><tt:Min>128</tt:Min><tt:Max>8192</tt:Max></tt:BitrateRange></tt:H264>"
        "</tt:Extension></mdw:Options></mdw:GetVideoEncoderConfigurationOptionsResponse>");
}

// The fields stand straight below the response, which is where the client looks for them.
OnvifAnswer GetVideoEncoderConfiguration(OnvifCall& call)
{
    const std::string token = call.request.Text("ConfigurationToken");
    if (call.values.count(token + ".encoding") == 0)
    {
        return NoSuchProfile();
    }
    return OnvifBody("<mdw:GetVideoEncoderConfigurationResponse>" + EncoderFields(call.values, token) +
                     "</mdw:GetVideoEncoderConfigurationResponse>");
}

OnvifAnswer SetVideoEncoderConfiguration(OnvifCall& call)
{
    const std::string token = call.request.Attribute("Configuration", "token");
    if (call.values.count(token + ".encoding") == 0)
    {
        return NoSuchProfile();
    }
    // clang-format off
    const char* const FIELDS[][2] = {
        {"name",      "Configuration/Name"                        },
        {"encoding",  "Configuration/Encoding"                    },
        {"width",     "Configuration/Resolution/Width"            },
        {"height",    "Configuration/Resolution/Height"           },
        {"quality",   "Configuration/Quality"                     },
        {"frameRate", "Configuration/RateControl/FrameRateLimit"  },
        {"interval",  "Configuration/RateControl/EncodingInterval"},
        {"bitrate",   "Configuration/RateControl/BitrateLimit"    },
        {"gov",       "Configuration/H264/GovLength"              },
        {"profile",   "Configuration/H264/H264Profile"            },
    };
    // clang-format on
    for (const auto& field : FIELDS)
    {
        if (call.request.Has(field[1]))
        {
            call.values[token + "." + field[0]] = call.request.Text(field[1]);
        }
    }
    return OnvifBody("<mdw:SetVideoEncoderConfigurationResponse/>");
}

OnvifAnswer MediaUri(OnvifCall& call, const std::string& response, const std::string& uri)
{
    if (FindProfile(call.request.Text("ProfileToken")) == nullptr)
    {
        return NoSuchProfile();
    }
    return OnvifBody("<mdw:" + response + "><mdw:MediaUri>" + Element("tt:Uri", uri) +
                     "<tt:InvalidAfterConnect>false</tt:InvalidAfterConnect>"
                     "<tt:InvalidAfterReboot>false</tt:InvalidAfterReboot><tt:Timeout>PT0S</tt:Timeout>"
                     "</mdw:MediaUri></mdw:" +
                     response + ">");
}

OnvifAnswer GetStreamUri(OnvifCall& call)
{
    if (call.request.Text("StreamSetup/Stream") != "RTP-Unicast" ||
        call.request.Text("StreamSetup/Transport/Protocol") != "RTSP")
    {
        return OnvifAnswer::Fault("ter:InvalidArgVal", "No such stream setup");
    }
    return MediaUri(call, "GetStreamUriResponse", "rtsp://192.168.1.20:554/" + call.request.Text("ProfileToken"));
}

OnvifAnswer GetSnapshotUri(OnvifCall& call)
{
    return MediaUri(call, "GetSnapshotUriResponse", call.address + call.values["snapshot.path"]);
}

} // namespace

OnvifFamily OnvifMediaFamily()
{
    // clang-format off
    return {{
        {"GetProfiles",                         "mdw", &GetProfiles                        },
        {"GetProfile",                          "mdw", &GetProfile                         },
        {"GetVideoEncoderConfigurationOptions", "mdw", &GetVideoEncoderConfigurationOptions},
        {"GetVideoEncoderConfiguration",        "mdw", &GetVideoEncoderConfiguration       },
        {"SetVideoEncoderConfiguration",        "mdw", &SetVideoEncoderConfiguration       },
        {"GetStreamUri",                        "mdw", &GetStreamUri                       },
        {"GetSnapshotUri",                      "mdw", &GetSnapshotUri                     },
    }, {
        {"Encoder_1.name",      "first" },
        {"Encoder_1.encoding",  "H264"  },
        {"Encoder_1.width",     "1920"  },
        {"Encoder_1.height",    "1080"  },
        {"Encoder_1.quality",   "4"     },
        {"Encoder_1.frameRate", "25"    },
        {"Encoder_1.interval",  "1"     },
        {"Encoder_1.bitrate",   "4096"  },
        {"Encoder_1.gov",       "50"    },
        {"Encoder_1.profile",   "Main"  },
        {"Encoder_2.name",      "second"},
        {"Encoder_2.encoding",  "MPEG4" },
        {"Encoder_2.width",     "640"   },
        {"Encoder_2.height",    "360"   },
        {"Encoder_2.quality",   "3"     },
        {"Encoder_2.frameRate", "12"    },
        {"Encoder_2.interval",  "1"     },
        {"Encoder_2.bitrate",   "512"   },
        {"Encoder_2.gov",       "24"    },
        {"Encoder_2.profile",   "SP"    },
        {"snapshot.path",       "picture/1.jpg"},
        {"snapshot.picture",    "\xff\xd8\xff\xe0 a small picture \xff\xd9"}, // given for a GET of that path
    }};
    // clang-format on
}
