// Commands of what the camera sends: what the streams can do, their encoder settings, the audio encoding, and a key
// frame on request.
#include "QlxApiProtocolProc.h"

#include "Limits.h"
#include "QlxApiCall.h"
#include "QlxApiFields.h"
#include "QlxApiXmlFmt.h"

#include <cstdio>
#include <map>

namespace
{

using CAPS = NETNS::DEV_VIDEO_ENCODE_CAPS;
using PROFILE = NETNS::DEV_VIDEO_PROFILE;

const std::uint32_t RESOLUTIONS_MAX = std::size(CAPS().resolutions);
const int PROFILE_NAME_SIZE = 128;

const std::uint32_t AUDIO_TYPES[] = {0, 1}; // asked for in this order

// clang-format off
const QLX_API_FIELD<PROFILE> PROFILE_FIELDS[] = { // below an item, as they are read
    NumberField<&PROFILE::frameRate>                    ("frameRate"),
    NumberField<&PROFILE::maxBitRate>                   ("maxBitRate"),
    NumberField<&PROFILE::gop>                          ("GOP"),
    WordField<&PROFILE::encodeType, ENCODE_TYPE_WORDS>  ("encodeType"),
    WordField<&PROFILE::encodeLevel, ENCODE_LEVEL_WORDS>("encodeLevel"),
    WordField<&PROFILE::quality, QUALITY_WORDS>         ("quality"),
};
// clang-format on

std::string SizeText(std::uint32_t width, std::uint32_t height)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%dx%d", static_cast<int>(width), static_cast<int>(height));
    return text;
}

/// What all streams together can do, for the enumerations of the document.
struct STREAM_WORDS
{
    // By pixel count: two sizes of one area are one, and the smallest comes first.
    std::map<std::uint64_t, std::string> resolutions;
    std::map<std::uint32_t, std::string> encodeTypes;
    std::map<std::uint32_t, std::string> encodeLevels;
};

/// A list whose template shows one "item", to be filled with more of its kind.
class CItemList
{
public:
    CItemList(CQLXXMLParse& document, unsigned int list) : m_document(document), m_list(list)
    {
        m_item = document.GetFirstItem(list, "item");
        m_hasPattern = document.GetXMLData(m_item, m_pattern);
    }
    bool HasPattern() const { return m_hasPattern; }
    void SetCount(unsigned int count)
    {
        m_document.SetAttribute(m_list, "count", count);
        if (count == 0)
        {
            m_document.DeleteValue(m_item);
        }
    }
    /// The next item, at first that of the template.
    unsigned int Next()
    {
        if (m_taken)
        {
            m_document.CloneValue(m_list, m_pattern);
            m_item = m_document.GetNextSiblingItemByName(m_item, "item");
        }
        m_taken = true;
        return m_item;
    }

private:
    CQLXXMLParse& m_document;
    const unsigned int m_list;
    unsigned int m_item;
    std::string m_pattern;
    bool m_hasPattern;
    bool m_taken = false;
};

void FillResolutions(CQLXXMLParse& document, unsigned int stream, const CAPS& caps, STREAM_WORDS& words)
{
    CItemList list(document, document.GetFirstItem(stream, "resolutionCaps"));
    const unsigned int count = std::min(caps.resolutionCount, RESOLUTIONS_MAX);
    list.SetCount(count);
    for (unsigned int i = 0; i < count; ++i)
    {
        const NETNS::DEV_RESOLUTION& resolution = caps.resolutions[i];
        const std::string text = SizeText(resolution.width, resolution.height);
        const unsigned int item = list.Next();
        document.SetValue(item, text, false);
        document.SetAttribute(item, "maxFrameRate", caps.frameRateMax);
        words.resolutions[std::uint64_t{resolution.width} * resolution.height] = text;
    }
}

/// A value without a word leaves the template's word in its item.
template <size_t WORD_COUNT, size_t SIZE>
void FillWords(CQLXXMLParse& document, unsigned int listItem, const QLX_API_WORD (&table)[WORD_COUNT],
               const std::uint32_t (&values)[SIZE], std::uint32_t valueCount,
               std::map<std::uint32_t, std::string>& words)
{
    CItemList list(document, listItem);
    const unsigned int count = std::min(valueCount, static_cast<std::uint32_t>(SIZE));
    list.SetCount(count);
    for (unsigned int i = 0; i < count; ++i)
    {
        const unsigned int item = list.Next();
        const char* const word = WordOf(table, values[i]);
        if (word != nullptr)
        {
            document.SetValue(item, word, false);
            words[values[i]] = word;
        }
    }
}

template <typename KEY>
void AddEnumeration(CQLXXMLParse& document, const char* path, const std::map<KEY, std::string>& words)
{
    const unsigned int type = document.GetFirstItem(path);
    for (const auto& row : words)
    {
        document.AddElement(type, "enum", row.second, false);
    }
}

NETNS::DEV_RET GetName(CDevInterface& dev, const CQlxApiCall& call, int profile, std::string& name)
{
    char text[PROFILE_NAME_SIZE] = {};
    int length = 0; // the text's end tells it as well
    const NETNS::DEV_RET result =
        dev.GetProfileName(call.Verify(), call.Channel(), profile, text, PROFILE_NAME_SIZE, length);
    name = QlxApiTextOf(text);
    return result;
}

// Both numbers must be there.
void TakeResolution(const CQLXXMLParse& body, unsigned int item, PROFILE& profile)
{
    std::string text;
    int width = 0;
    int height = 0;
    body.GetValueStr(item, "resolution", text);
    // NOLINTNEXTLINE(cert-err34-c): clients rely on how the C library reads numbers
    if (std::sscanf(text.c_str(), "%dx%d", &width, &height) == 2)
    {
        profile.width = static_cast<std::uint32_t>(width);
        profile.height = static_cast<std::uint32_t>(height);
    }
}

} // namespace

int CQLXApiProc::GetStreamCaps(const std::string& ip, const CHttpProtocolAnalyse& request,
                               CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    const int count = std::min(m_dev->GetProfileCount(call.Channel()), LIMIT_CHANNEL_STREAMS);
    if (count <= 0)
    {
        return call.Answer(QLX_API_ERR_NOT_SUPPORT);
    }
    NETNS::DEV_PORT_INFO ports = {};
    if (!call.Succeeded(m_dev->GetPortInfo(call.Verify(), &ports)))
    {
        return -1;
    }
    CQLXXMLParse document(CQlxApiXmlFmt::GetStreamCaps());
    document.SetValue("config/rtspPort", static_cast<unsigned int>(ports.rtspPort));
    CItemList streams(document, document.GetFirstItem("config/streamList"));
    streams.SetCount(static_cast<unsigned int>(count));
    STREAM_WORDS words;
    for (int i = 0; i < count; ++i)
    {
        CAPS caps = {};
        std::string name;
        if (!call.Succeeded(m_dev->GetVideoEncodeCaps(call.Verify(), call.Channel(), i, &caps)) ||
            !call.Succeeded(GetName(*m_dev, call, i, name)))
        {
            return -1;
        }
        const unsigned int stream = streams.Next();
        document.SetValue(stream, "streamName", name, true);
        document.SetAttribute_i32(stream, "id", i);
        FillResolutions(document, stream, caps, words);
        FillWords(document, document.GetFirstItem(stream, "encodeTypeCaps"), ENCODE_TYPE_WORDS, caps.encodeTypes,
                  caps.encodeTypeCount, words.encodeTypes);
        FillWords(document, document.GetFirstItem(stream, "encodeLevelCaps"), ENCODE_LEVEL_WORDS, caps.encodeLevels,
                  caps.encodeLevelCount, words.encodeLevels);
    }
    AddEnumeration(document, "config/types/resolution", words.resolutions);
    AddEnumeration(document, "config/types/encodeLevel", words.encodeLevels);
    AddEnumeration(document, "config/types/encodeType", words.encodeTypes);
    return call.Answer(document);
}

// Clients find the template's words in encodeType, encodeLevel and quality and its number in GOP, whatever the stream
// does; of these four only the limits of GOP are the stream's own. The bit rate type is always "CBR".
int CQLXApiProc::GetVideoStreamCfg(const std::string& ip, const CHttpProtocolAnalyse& request,
                                   CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    const int count = std::min(m_dev->GetProfileCount(call.Channel()), LIMIT_CHANNEL_STREAMS);
    CQLXXMLParse document(CQlxApiXmlFmt::GetVideoStreamCfg());
    CItemList streams(document, document.GetFirstItem("config/streams"));
    if (count <= 0 || !streams.HasPattern())
    {
        return call.Answer(QLX_API_ERR_NOT_SUPPORT);
    }
    streams.SetCount(static_cast<unsigned int>(count));
    for (int i = 0; i < count; ++i)
    {
        PROFILE profile = {};
        CAPS caps = {};
        std::string name;
        if (!call.Succeeded(m_dev->GetVideoProfile(call.Verify(), call.Channel(), i, &profile)) ||
            !call.Succeeded(GetName(*m_dev, call, i, name)) ||
            !call.Succeeded(m_dev->GetVideoEncodeCaps(call.Verify(), call.Channel(), i, &caps)))
        {
            return -1;
        }
        if (WordOf(ENCODE_TYPE_WORDS, profile.encodeType) == nullptr)
        {
            return call.Refuse();
        }
        const unsigned int stream = streams.Next();
        document.SetValue(stream, "name", name, true);
        document.SetAttribute_i32(stream, "id", i);
        document.SetValue(stream, "resolution", SizeText(profile.width, profile.height), false);
        document.SetValue(stream, "frameRate", profile.frameRate);
        document.SetValue(stream, "bitRateType", "CBR", false);
        document.SetValue(stream, "maxBitRate", profile.maxBitRate);
        const unsigned int bitRate = document.GetFirstItem(stream, "maxBitRate");
        document.SetAttribute(bitRate, "min", caps.bitRateMin);
        document.SetAttribute(bitRate, "max", caps.bitRateMax);
        const unsigned int gop = document.GetFirstItem(stream, "GOP");
        document.SetAttribute(gop, "min", caps.gopMin);
        document.SetAttribute(gop, "max", caps.gopMax);
    }
    return call.Answer(document);
}

// Items in front of one that fails stay applied.
int CQLXApiProc::SetVideoStreamCfg(const std::string& ip, const CHttpProtocolAnalyse& request,
                                   CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!call.RequireBody())
    {
        return -1;
    }
    const CQLXXMLParse& body = call.Body();
    for (unsigned int item = body.GetFirstItem("config/streams/item"); item != 0;
         item = body.GetNextSiblingItemByName(item, "item"))
    {
        int id = 0;
        body.GetAttribute_i32(item, "id", id);
        PROFILE profile = {};
        if (!call.Succeeded(m_dev->GetVideoProfile(call.Verify(), call.Channel(), id, &profile)))
        {
            return -1;
        }
        TakeResolution(body, item, profile);
        if (!TakeFields(body, item, PROFILE_FIELDS, profile))
        {
            return call.Refuse();
        }
        m_dev->SetVideoProfile(call.Verify(), call.Channel(), id, &profile); // its result is not looked at
    }
    return call.Answer(QLX_API_ERR_OK);
}

// No user is verified.
int CQLXApiProc::GetAudioStreamCfg(const std::string& ip, const CHttpProtocolAnalyse& request,
                                   CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    for (const std::uint32_t type : AUDIO_TYPES)
    {
        if (m_dev->SupportAudioEncode(call.Channel(), static_cast<int>(type)))
        {
            CQLXXMLParse document(CQlxApiXmlFmt::GetAudioStreamCfg());
            document.SetValue("config/audioEncode", WordOf(AUDIO_ENCODE_WORDS, type), false);
            return call.Answer(document);
        }
    }
    return call.Refuse();
}

int CQLXApiProc::SetAudioStreamCfg(const std::string& ip, const CHttpProtocolAnalyse& request,
                                   CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!call.HasBody())
    {
        return CQlxApiCall::StaySilent();
    }
    std::string word;
    std::uint32_t type = 0;
    call.Body().GetValueStr("config/audioEncode", word);
    if (!ValueOf(AUDIO_ENCODE_WORDS, word, type))
    {
        return call.Refuse();
    }
    // Clients get success whatever the host says.
    m_dev->SetAudioEncode(call.Verify(), call.Channel(), static_cast<int>(type));
    return call.Answer(QLX_API_ERR_OK);
}

int CQLXApiProc::RequestKeyFrame(const std::string& ip, const CHttpProtocolAnalyse& request,
                                 CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    return call.Answer(m_dev->RequestKeyFrame(call.Verify(), call.Channel()));
}
