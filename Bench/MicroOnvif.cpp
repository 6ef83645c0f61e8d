// The ONVIF client without a network: parsing and reading a large answer, and making a request.
#include "GetCmd.h"
#include "HttpClient.h"
#include "OnvifXmlParse.h"
#include "XmlTransform.h"

#include <benchmark/benchmark.h>

namespace
{

/// A list of profiles as cameras write it, of about 40 kB.
std::string ProfilesAnswer()
{
    std::string body;
    for (int i = 0; i < 15; ++i)
    {
        const std::string number = std::to_string(i);
        body += "<trt:Profiles token=\"Profile_" + number + "\" fixed=\"true\"><tt:Name>mainStream" + number +
                "</tt:Name><tt:VideoSourceConfiguration token=\"VideoSourceToken\"><tt:Name>VideoSourceConfig</tt:Name>"
                "<tt:UseCount>3</tt:UseCount><tt:SourceToken>VideoSource_1</tt:SourceToken>"
                "<tt:Bounds x=\"0\" y=\"0\" width=\"1920\" height=\"1080\"></tt:Bounds></tt:VideoSourceConfiguration>"
                "<tt:AudioSourceConfiguration token=\"AudioSourceConfigToken\"><tt:Name>AudioSourceConfig</tt:Name>"
                "<tt:UseCount>3</tt:UseCount><tt:SourceToken>AudioSourceChannel</tt:SourceToken>"
                "</tt:AudioSourceConfiguration><tt:VideoEncoderConfiguration token=\"VideoEncoderToken_" +
                number +
                "\"><tt:Name>VideoEncoder_1</tt:Name><tt:UseCount>1</tt:UseCount><tt:Encoding>H264</tt:Encoding>"
                "<tt:Resolution><tt:Width>1920</tt:Width><tt:Height>1080</tt:Height></tt:Resolution>"
                "<tt:Quality>3.000000</tt:Quality><tt:RateControl><tt:FrameRateLimit>25</tt:FrameRateLimit>"
                "<tt:EncodingInterval>1</tt:EncodingInterval><tt:BitrateLimit>4096</tt:BitrateLimit></tt:RateControl>"
                "<tt:H264><tt:GovLength>50</tt:GovLength><tt:H264Profile>Main</tt:H264Profile></tt:H264><tt:Multicast>"
                "<tt:Address><tt:Type>IPv4</tt:Type><tt:IPv4Address>0.0.0.0</tt:IPv4Address></tt:Address>"
                "<tt:Port>8860</tt:Port><tt:TTL>128</tt:TTL><tt:AutoStart>false</tt:AutoStart></tt:Multicast>"
                "<tt:SessionTimeout>PT5S</tt:SessionTimeout></tt:VideoEncoderConfiguration>"
                "<tt:AudioEncoderConfiguration token=\"MainAudioEncoderToken\"><tt:Name>AudioEncoderConfig</tt:Name>"
                "<tt:UseCount>3</tt:UseCount><tt:Encoding>G711</tt:Encoding><tt:Bitrate>64</tt:Bitrate>"
                "<tt:SampleRate>8</tt:SampleRate><tt:SessionTimeout>PT5S</tt:SessionTimeout>"
                "</tt:AudioEncoderConfiguration><tt:VideoAnalyticsConfiguration token=\"VideoAnalyticsToken\">"
                "<tt:Name>VideoAnalyticsName</tt:Name><tt:UseCount>3</tt:UseCount><tt:AnalyticsEngineConfiguration>"
                "<tt:AnalyticsModule Name=\"MyCellMotionModule\" Type=\"tt:CellMotionEngine\"><tt:Parameters>"
                "<tt:SimpleItem Name=\"Sensitivity\" Value=\"60\"></tt:SimpleItem><tt:ElementItem Name=\"Layout\">"
                "<tt:CellLayout Columns=\"22\" Rows=\"18\"><tt:Transformation><tt:Translate x=\"-1.0\" y=\"-1.0\"/>"
                "<tt:Scale x=\"0.090909\" y=\"0.111111\"/></tt:Transformation></tt:CellLayout></tt:ElementItem>"
                "</tt:Parameters></tt:AnalyticsModule></tt:AnalyticsEngineConfiguration><tt:RuleEngineConfiguration>"
                "<tt:Rule Name=\"MyMotionDetectorRule\" Type=\"tt:CellMotionDetector\"><tt:Parameters>"
                "<tt:SimpleItem Name=\"MinCount\" Value=\"5\"/><tt:SimpleItem Name=\"ActiveCells\" Value=\"0P8A8A==\"/>"
                "</tt:Parameters></tt:Rule></tt:RuleEngineConfiguration></tt:VideoAnalyticsConfiguration>"
                "<tt:PTZConfiguration token=\"PTZToken\"><tt:Name>PTZ</tt:Name><tt:UseCount>3</tt:UseCount>"
                "<tt:NodeToken>PTZNODETOKEN</tt:NodeToken></tt:PTZConfiguration></trt:Profiles>";
    }
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<env:Envelope"
           " xmlns:env=\"http://www.w3.org/2003/05/soap-envelope\" xmlns:tt=\"http://www.onvif.org/ver10/schema\""
           " xmlns:trt=\"http://www.onvif.org/ver10/media/wsdl\" xmlns:tds=\"http://www.onvif.org/ver10/device/wsdl\">"
           "<env:Body><trt:GetProfilesResponse>" +
           body + "</trt:GetProfilesResponse></env:Body></env:Envelope>";
}

void ParseProfiles(benchmark::State& state)
{
    const std::string soap = ProfilesAnswer();
    for (auto _ : state)
    {
        const COnvifXmlParse document(soap);
        benchmark::DoNotOptimize(document.GetRootItem());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(soap.size()));
    state.counters["bytes"] = static_cast<double>(soap.size());
}
BENCHMARK(ParseProfiles);

void ReadProfiles(benchmark::State& state)
{
    const std::string soap = ProfilesAnswer();
    for (auto _ : state)
    {
        std::string answer;
        std::vector<ONVIF_PROFILE_TOKEN> profiles;
        CXmlTransform::TransGetProfiles(soap, answer, profiles);
        benchmark::DoNotOptimize(answer.data());
    }
    state.counters["bytes"] = static_cast<double>(soap.size());
}
BENCHMARK(ReadProfiles);

void ParseAnEmptyAnswer(benchmark::State& state)
{
    const std::string soap = "<s:Envelope xmlns:s=\"http://www.w3.org/2003/05/soap-envelope\"><s:Body/></s:Envelope>";
    for (auto _ : state)
    {
        const COnvifXmlParse document(soap);
        benchmark::DoNotOptimize(document.GetRootItem());
    }
}
BENCHMARK(ParseAnEmptyAnswer);

void MakeAMove(benchmark::State& state)
{
    const std::string request = "<Set><continuousMove><profileToken>Profile_1</profileToken><ptz><velocity><x>50</x>"
                                "<y>-20</y><zoom>0</zoom></velocity></ptz></continuousMove></Set>";
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(CGetDefaultCmd::Instance().ContinuousMove(request, nullptr));
    }
}
BENCHMARK(MakeAMove);

void FillTheSecurityHeader(benchmark::State& state)
{
    const CHttpClient client("admin", "secret", "127.0.0.1", 80);
    const std::string request = CGetDefaultCmd::Instance().GetProfiles();
    for (auto _ : state)
    {
        COnvifXmlParse document(request);
        client.Authentication(document);
        benchmark::DoNotOptimize(document.GetDoc());
    }
}
BENCHMARK(FillTheSecurityHeader);

} // namespace
