// The requests of the media service (ONVIF Media Service).
#include "GetCmd.h"

#include "OnvifTemplates.h"
#include "OperationBuilder.h"

namespace
{

const char* const ALWAYS_TIMEOUT = "PT60S";

/// One encoder's settings on their way from a host's request into a SOAP request.
struct EncoderCopy
{
    const CQLXXMLParse& host;
    unsigned int from;
    COnvifXmlParse& soap;
    unsigned int configuration;

    bool Has(const char* field) const { return host.GetFirstItem(from, field) != 0; }
    std::string Read(const char* field) const
    {
        std::string text;
        host.GetValueStr(from, field, text);
        return text;
    }
    bool Copy(const char* field, unsigned int to, const char* element) const
    {
        const bool there = Has(field);
        if (there)
        {
            soap.AddValue(to, element, Read(field), false);
        }
        return there;
    }
    unsigned int Add(const char* element) const { return soap.AddValue(configuration, element, "", false); }
};

void CopyIdentity(const EncoderCopy& copy, const char* encodeName)
{
    if (!copy.Has("encodeToken"))
    {
        return;
    }
    copy.soap.SetAttribute(copy.configuration, "token", copy.Read("encodeToken"));
    copy.soap.AddValue(copy.configuration, "tt:Name", encodeName, false);
    copy.soap.AddValue(copy.configuration, "tt:UseCount", 1U);
}

void CopyH264(const EncoderCopy& copy)
{
    if (!copy.Has("IFrameInterval") && !copy.Has("profile"))
    {
        return;
    }
    const unsigned int h264 = copy.Add("tt:H264");
    copy.Copy("IFrameInterval", h264, "tt:GovLength");
    copy.Copy("profile", h264, "tt:H264Profile");
}

// The profile of MPEG4 goes straight into the configuration, and an empty tt:H264 goes with it when there is no
// tt:MPEG4: devices that use MPEG4 are set up with requests of this form.
void CopyMpeg4(const EncoderCopy& copy)
{
    const bool hasInterval = copy.Has("IFrameInterval");
    if (hasInterval)
    {
        copy.Copy("IFrameInterval", copy.Add("tt:MPEG4"), "tt:GovLength");
    }
    if (copy.Copy("profile", copy.configuration, "tt:Mpeg4Profile") && !hasInterval)
    {
        copy.Add("tt:H264");
    }
}

void CopyEncoding(const EncoderCopy& copy)
{
    if (!copy.Copy("encode", copy.configuration, "tt:Encoding"))
    {
        return;
    }
    const std::string encode = copy.Read("encode");
    if (encode == "H264")
    {
        CopyH264(copy);
    }
    else if (encode == "MPEG4")
    {
        CopyMpeg4(copy);
    }
}

/// "1920*1080"; a text without "*" is no resolution.
void CopyResolution(const EncoderCopy& copy)
{
    const std::string text = copy.Read("resolution");
    const std::size_t star = text.find('*');
    if (star == std::string::npos)
    {
        return;
    }
    const unsigned int resolution = copy.Add("tt:Resolution");
    copy.soap.AddValue(resolution, "tt:Width", text.substr(0, star), false);
    copy.soap.AddValue(resolution, "tt:Height", text.substr(star + 1), false);
}

// There is always a rate control: one that would be empty carries an encoding interval of 1.
void CopyRateControl(const EncoderCopy& copy)
{
    const bool hasRate = copy.Has("frameRate") || copy.Has("bitrate");
    const unsigned int rate = copy.Add("tt:RateControl");
    copy.Copy("frameRate", rate, "tt:FrameRateLimit");
    copy.Copy("bitrate", rate, "tt:BitrateLimit");
    if (!copy.Copy("encodingInterval", rate, "tt:EncodingInterval") && !hasRate)
    {
        copy.soap.AddValue(rate, "tt:EncodingInterval", 1U);
    }
}

// Devices want a multicast address also when nothing is sent to it.
void AddMulticast(const EncoderCopy& copy)
{
    const unsigned int multicast = copy.Add("tt:Multicast");
    const unsigned int address = copy.soap.AddValue(multicast, "tt:Address", "", false);
    copy.soap.AddValue(address, "tt:Type", "IPv4", false);
    copy.soap.AddValue(address, "tt:IPv4Address", "239.0.1.0", false);
    copy.soap.AddValue(multicast, "tt:Port", 4000U);
    copy.soap.AddValue(multicast, "tt:TTL", 64U);
    copy.soap.AddValue(multicast, "tt:AutoStart", "false", false);
}

} // namespace

std::string CGetDefaultCmd::GetProfiles() const
{
    return std::string(ONVIF_TEMPLATES::GetProfiles);
}

std::string CGetDefaultCmd::GetProfile(const std::string& profileToken) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::GetProfile, "mdw:GetProfile");
    soap.FillText("mdw:ProfileToken", profileToken);
    return soap.Text();
}

std::string CGetDefaultCmd::GetVideoEncoderConfigurationOption(const std::string& profileToken,
                                                               const std::string& encoderToken) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::GetVideoEncoderConfigurationOptions,
                           "mdw:GetVideoEncoderConfigurationOptions");
    soap.FillText("mdw:ProfileToken", profileToken);
    soap.FillText("mdw:ConfigurationToken", encoderToken);
    return soap.Text();
}

std::string CGetDefaultCmd::GetVideoEncoderConfiguration(const std::string& encoderToken) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::GetVideoEncoderConfiguration, "mdw:GetVideoEncoderConfiguration");
    soap.FillText("mdw:ConfigurationToken", encoderToken);
    return soap.Text();
}

std::string CGetDefaultCmd::SetVideoEncoderConfiguration(CQLXXMLParse& request, const unsigned int& item,
                                                         const char* encodeName) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::SetVideoEncoderConfiguration, "mdw:SetVideoEncoderConfiguration");
    const EncoderCopy copy{request, item, soap.Soap(), soap.Soap().GetFirstItem(soap.Operation(), "mdw:Configuration")};
    CopyIdentity(copy, encodeName);
    CopyEncoding(copy);
    CopyResolution(copy);
    copy.Copy("quality", copy.configuration, "tt:Quality");
    if (copy.Has("sessionTimeout"))
    {
        copy.soap.AddValue(copy.configuration, "tt:SessionTimeout", ALWAYS_TIMEOUT, false);
    }
    CopyRateControl(copy);
    AddMulticast(copy);
    return soap.Text();
}

// The host's `multicast` and `transport` do not alter what is asked for: the stream is always unicast over RTSP.
std::string CGetDefaultCmd::GetStreamUri(const std::string& request) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::GetStreamUri, "mdw:GetStreamUri", request, "Get/streamURI");
    COnvifXmlParse& document = soap.Soap();
    const unsigned int setup = document.AddValue(soap.Operation(), "mdw:StreamSetup", "", false);
    document.AddValue(setup, "tt:Stream", "RTP-Unicast", false);
    document.AddValue(setup, "tt:Transport/tt:Protocol", "RTSP", false);
    soap.Add("profiletoken", "mdw:ProfileToken");
    return soap.Text();
}

std::string CGetDefaultCmd::GetSnapshotUri(const std::string& request) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::GetSnapshotUri, "mdw:GetSnapshotUri", request, "Get/snapshotURI");
    soap.Fill("profiletoken", "mdw:ProfileToken");
    return soap.Text();
}
