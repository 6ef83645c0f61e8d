// The answers of the media service: profiles, encoder configurations, their options, and addresses of streams.
#include "XmlTransform.h"

#include "TransformAnswer.h"

#include <cstdio>

namespace
{

// What an encoder can be set to when its device does not say.
const char* const DEFAULT_MIN_BITRATE = "64";
const char* const DEFAULT_MAX_BITRATE = "12288";

/// An encoding whose settings stand in an element of their own.
struct CodecRow
{
    const char* encoding;
    const char* interval;
    const char* profile;
};

struct CodecOptionsRow
{
    const char* name;
    const char* element;
    const char* profiles;   // null: the encoding has none
    const char* resolution; // stands for a device that lists none; null: nothing does
};

// clang-format off
const CodecRow CODECS[] = {
    {"H264",  "tt:H264/tt:GovLength",  "tt:H264/tt:H264Profile"  },
    {"MPEG4", "tt:MPEG4/tt:GovLength", "tt:MPEG4/tt:Mpeg4Profile"},
};

const CodecOptionsRow CODEC_OPTIONS[] = {
    {"JPEG",  "tt:JPEG",  nullptr,                     nullptr},
    {"H264",  "tt:H264",  "tt:H264ProfilesSupported",  "0*0"  },
    {"MPEG4", "tt:MPEG4", "tt:Mpeg4ProfilesSupported", nullptr},
};
// clang-format on

template <std::size_t SIZE>
void CopyText(char (&field)[SIZE], const std::string& text)
{
    std::snprintf(field, SIZE, "%s", text.c_str()); // a longer name is cut
}

unsigned int AddEmpty(CTransformAnswer& out, unsigned int to, const char* name)
{
    return out.Answer().AddValue(to, name, "", false);
}

/// The attribute `token` of a device's element; empty when there is none.
std::string TokenOf(const COnvifXmlParse& soap, unsigned int item)
{
    std::string token;
    soap.GetAttributeStr(item, "token", token);
    return token;
}

bool CopyResolution(CTransformAnswer& out, unsigned int from, unsigned int to)
{
    std::string width;
    std::string height;
    if (!out.Soap().GetValueStr(from, "tt:Width", width) || !out.Soap().GetValueStr(from, "tt:Height", height))
    {
        return false;
    }
    out.Answer().AddValue(to, "resolution", width + "*" + height, false);
    return true;
}

void CopyCodec(CTransformAnswer& out, unsigned int from, unsigned int to, const CodecRow& codec)
{
    out.Copy(from, codec.interval, to, "IFrameInterval");
    out.Copy(from, codec.profile, to, "profile");
}

/// A configuration that a profile has one of, as an element with its `token`. @return the token
std::string CopyConfiguration(CTransformAnswer& out, unsigned int profile, const char* element, unsigned int to,
                              const char* name)
{
    const unsigned int item = out.Soap().GetFirstItem(profile, element);
    if (item == 0)
    {
        return {};
    }
    std::string token = TokenOf(out.Soap(), item);
    out.Answer().AddValue(AddEmpty(out, to, name), "token", token, false);
    return token;
}

/// @param record  receives the encoder's token and name
/// @return the new `videoEncode`
unsigned int CopyEncoder(CTransformAnswer& out, unsigned int encoder, unsigned int to, ONVIF_PROFILE_TOKEN& record)
{
    const unsigned int videoEncode = AddEmpty(out, to, "videoEncode");
    const std::string token = TokenOf(out.Soap(), encoder);
    std::string name;
    if (!out.Soap().GetValueStr(encoder, "tt:Name", name))
    {
        name = token;
    }
    CopyText(record.videoEncoderToken, token);
    CopyText(record.encodeName, name);
    out.Answer().AddValue(videoEncode, "token", token, false);
    out.Answer().AddValue(videoEncode, "EncodeName", name, false);
    out.Copy(encoder, "tt:Encoding", videoEncode, "encode");
    CopyResolution(out, out.Soap().GetFirstItem(encoder, "tt:Resolution"), videoEncode);
    out.Copy(encoder, "tt:Quality", videoEncode, "quality");
    out.Copy(encoder, "tt:RateControl/tt:FrameRateLimit", videoEncode, "frameRate");
    out.Copy(encoder, "tt:RateControl/tt:BitrateLimit", videoEncode, "bitrate");
    for (const CodecRow& codec : CODECS)
    {
        CopyCodec(out, encoder, videoEncode, codec);
    }
    return videoEncode;
}

void CopyVideoSource(CTransformAnswer& out, unsigned int profile, unsigned int to, ONVIF_PROFILE_TOKEN& record)
{
    std::string token;
    if (out.Soap().GetValueStr(profile, "tt:VideoSourceConfiguration/tt:SourceToken", token))
    {
        out.Answer().AddValue(to, "videoSource/token", token, false);
        CopyText(record.videoSourceToken, token);
    }
}

ONVIF_PROFILE_TOKEN CopyProfile(CTransformAnswer& out, unsigned int profile, unsigned int encoder)
{
    ONVIF_PROFILE_TOKEN record{};
    const unsigned int to = AddEmpty(out, out.Key(), "profile");
    const std::string token = TokenOf(out.Soap(), profile);
    CopyText(record.profileToken, token);
    out.Answer().AddValue(to, "token", token, false);
    out.Copy(profile, "tt:Name", to, "name");
    CopyVideoSource(out, profile, to, record);
    CopyEncoder(out, encoder, to, record);
    CopyText(record.ptzToken, CopyConfiguration(out, profile, "tt:PTZConfiguration", to, "PTZ"));
    CopyConfiguration(out, profile, "tt:AudioEncoderConfiguration", to, "audioEncoder");
    CopyConfiguration(out, profile, "tt:AudioSourceConfiguration", to, "audioSource");
    CopyText(record.videoAnalyticsToken,
             CopyConfiguration(out, profile, "tt:VideoAnalyticsConfiguration", to, "videoAnalytics"));
    return record;
}

/// A new `item` of a key that is asked for by index, with its own `status`. @return it; 0 for a fault
unsigned int AddIndexedItem(CTransformAnswer& out, int index)
{
    const unsigned int item = AddEmpty(out, out.Key(), "item");
    out.Answer().SetAttribute_i32(item, "index", index);
    return out.AddStatus(item) ? item : 0;
}

/// A range of a device, as an element with `min` and `max`; nothing when the device gives none.
void CopyRange(CTransformAnswer& out, unsigned int from, const char* element, unsigned int to, const char* name)
{
    const unsigned int range = out.Soap().GetFirstItem(from, element);
    if (range == 0)
    {
        return;
    }
    const unsigned int item = AddEmpty(out, to, name);
    out.Copy(range, "tt:Min", item, "min");
    out.Copy(range, "tt:Max", item, "max");
}

// The ranges of bit rates stand apart, in an extension that many devices leave out.
void CopyBitrateRange(CTransformAnswer& out, unsigned int extension, const std::string& element, unsigned int to)
{
    std::string min;
    std::string max;
    if (!out.Soap().GetValueStr(extension, element + "/tt:BitrateRange/tt:Min", min))
    {
        min = DEFAULT_MIN_BITRATE;
    }
    if (!out.Soap().GetValueStr(extension, element + "/tt:BitrateRange/tt:Max", max))
    {
        max = DEFAULT_MAX_BITRATE;
    }
    const unsigned int item = AddEmpty(out, to, "bitrate");
    out.Answer().AddValue(item, "min", min, false);
    out.Answer().AddValue(item, "max", max, false);
}

void CopyResolutions(CTransformAnswer& out, unsigned int options, unsigned int to, const char* fallback)
{
    const char* const element = "tt:ResolutionsAvailable";
    bool any = false;
    for (unsigned int item = out.Soap().GetFirstItem(options, element); item != 0;
         item = out.Soap().GetNextSiblingItemByName(item, element))
    {
        any = CopyResolution(out, item, to) || any;
    }
    if (!any && fallback != nullptr)
    {
        out.Answer().AddValue(to, "resolution", fallback, false);
    }
}

void CopyProfilesSupported(CTransformAnswer& out, unsigned int options, unsigned int to, const char* element)
{
    for (unsigned int item = out.Soap().GetFirstItem(options, element); item != 0;
         item = out.Soap().GetNextSiblingItemByName(item, element))
    {
        std::string profile;
        out.Soap().GetValueStr(item, profile);
        out.Answer().AddValue(to, "profilesSupport", profile, false);
    }
}

void CopyCodecOptions(CTransformAnswer& out, unsigned int options, unsigned int extension, unsigned int to,
                      const CodecOptionsRow& row)
{
    const unsigned int codec = out.Soap().GetFirstItem(options, row.element);
    if (codec == 0)
    {
        return;
    }
    const unsigned int item = AddEmpty(out, to, row.name);
    CopyResolutions(out, codec, item, row.resolution);
    CopyRange(out, codec, "tt:FrameRateRange", item, "frameRate");
    if (row.profiles != nullptr)
    {
        CopyRange(out, codec, "tt:GovLengthRange", item, "IFrameInterval");
        CopyProfilesSupported(out, codec, item, row.profiles);
    }
    CopyBitrateRange(out, extension, row.element, item);
}

} // namespace

int CXmlTransform::TransGetProfiles(const std::string& soap, std::string& answer,
                                    std::vector<ONVIF_PROFILE_TOKEN>& profiles)
{
    CTransformAnswer out(soap, answer, "GetResponse", "profiles");
    if (!out.AddStatus())
    {
        return ONVIF_FAULT;
    }
    unsigned int profile = out.FindFirst({"s:Envelope/s:Body/mdw:GetProfilesResponse/mdw:Profiles",
                                          "s:Envelope/s:Body/GetProfilesResponse/mdw:Profiles",
                                          "SOAP-ENV:Envelope/SOAP-ENV:Body/mdw:GetProfilesResponse/mdw:Profiles"});
    for (; profile != 0; profile = out.Soap().GetNextSiblingItemByName(profile, "mdw:Profiles"))
    {
        const unsigned int encoder = out.Soap().GetFirstItem(profile, "tt:VideoEncoderConfiguration");
        if (encoder != 0)
        {
            profiles.push_back(CopyProfile(out, profile, encoder));
        }
    }
    return ONVIF_OK;
}

void CXmlTransform::TransGetProfile(const std::string& soap, std::string& answer, int index)
{
    CTransformAnswer out(soap, answer, "GetResponse", "profile");
    const unsigned int item = AddIndexedItem(out, index);
    const unsigned int profile = out.FindFirst({"s:Envelope/s:Body/mdw:GetProfileResponse/mdw:Profile"});
    if (item == 0 || profile == 0)
    {
        return;
    }
    ONVIF_PROFILE_TOKEN record{};
    out.CopyAttribute(profile, "token", item, "token");
    CopyVideoSource(out, profile, item, record);
    const unsigned int encoder = out.Soap().GetFirstItem(profile, "tt:VideoEncoderConfiguration");
    if (encoder != 0)
    {
        const unsigned int videoEncode = CopyEncoder(out, encoder, item, record);
        out.Copy(encoder, "tt:RateControl/tt:EncodingInterval", videoEncode, "encodingInterval");
        out.Copy(encoder, "tt:SessionTimeout", videoEncode, "sessionTimeout");
    }
    CopyConfiguration(out, profile, "tt:PTZConfiguration", item, "PTZ");
}

// The fields are looked for straight below the response, so a device that wraps them in a configuration, as the media
// service has it, gives a `status` only.
void CXmlTransform::TransGetVideoEncoderConfiguration(const std::string& soap, std::string& answer, int index)
{
    CTransformAnswer out(soap, answer, "GetResponse", "videoEncoderCfg");
    const unsigned int item = AddIndexedItem(out, index);
    const unsigned int from = out.FindFirst({"s:Envelope/s:Body/mdw:GetVideoEncoderConfigurationResponse"});
    if (item == 0 || from == 0)
    {
        return;
    }
    std::string encoding;
    out.Soap().GetValueStr(from, "tt:Encoding", encoding);
    out.Copy(from, "tt:Encoding", item, "encode");
    for (const CodecRow& codec : CODECS)
    {
        if (encoding == codec.encoding)
        {
            CopyCodec(out, from, item, codec);
        }
    }
    out.Copy(from, "tt:Quality", item, "quality");
    CopyResolution(out, out.Soap().GetFirstItem(from, "tt:Resolution"), item);
    out.Copy(from, "tt:RateControl/tt:FrameRateLimit", item, "frameRate");
    out.Copy(from, "tt:RateControl/tt:BitrateLimit", item, "bitrate");
}

void CXmlTransform::TransGetVideoEncoderConfigurationOption(const std::string& soap, std::string& answer, int index)
{
    CTransformAnswer out(soap, answer, "GetResponse", "videoEncoderCfgOpts");
    const unsigned int item = AddIndexedItem(out, index);
    const unsigned int options =
        out.FindFirst({"s:Envelope/s:Body/mdw:GetVideoEncoderConfigurationOptionsResponse/mdw:Options",
                       "s:Envelope/s:Body/GetVideoEncoderConfigurationOptionsResponse/mdw:Options",
                       "SOAP-ENV:Envelope/SOAP-ENV:Body/mdw:GetVideoEncoderConfigurationOptionsResponse/mdw:Options"});
    if (item == 0 || options == 0)
    {
        return;
    }
    const unsigned int extension = out.Soap().GetFirstItem(options, "tt:Extension");
    CopyRange(out, options, "tt:QualityRange", item, "quality");
    for (const CodecOptionsRow& row : CODEC_OPTIONS)
    {
        CopyCodecOptions(out, options, extension, item, row);
    }
}

void CXmlTransform::TransSetVideoEncoderConfiguration(const std::string& soap, std::string& answer)
{
    TransSetBaseResponse(soap, answer, "videoEncodeCfg");
}

void CXmlTransform::TransGetStreamUri(const std::string& soap, std::string& answer)
{
    CTransformAnswer out(soap, answer, "GetResponse", "streamURI");
    if (!out.AddStatus())
    {
        return;
    }
    const unsigned int uri =
        out.FindFirst({"s:Envelope/s:Body/mdw:GetStreamUriResponse/mdw:MediaUri/tt:Uri",
                       "s:Envelope/s:Body/GetStreamUriResponse/mdw:MediaUri/tt:Uri",
                       "SOAP-ENV:Envelope/SOAP-ENV:Body/mdw:GetStreamUriResponse/mdw:MediaUri/tt:Uri"});
    std::string text;
    if (out.Soap().GetValueStr(uri, text))
    {
        out.Answer().AddValue(out.Key(), "uri", text, false);
    }
}

void CXmlTransform::TransGetSnapshotUri(const std::string& soap, std::string& answer, std::string& uri)
{
    CTransformAnswer out(soap, answer, "GetResponse", "snapshotURI");
    if (!out.AddStatus())
    {
        return;
    }
    if (out.Soap().GetValueStr("s:Envelope/s:Body/mdw:GetSnapshotUriResponse/mdw:MediaUri/tt:Uri", uri))
    {
        out.Answer().AddValue(out.Key(), "uri", uri, false);
    }
}
