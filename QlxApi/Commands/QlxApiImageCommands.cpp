// Commands of the picture: image settings, the texts and the masks in it, and a snapshot.
#include "QlxApiProtocolProc.h"

#include "Limits.h"
#include "QlxApiCall.h"
#include "QlxApiFields.h"
#include "QlxApiXmlFmt.h"
#include "RTSP_DataManager.h"

#include <vector>

namespace
{

using CAPS = NETNS::DEV_IMAGE_CAPS;
using CHANNEL_NAME = NETNS::DEV_CHANNEL_NAME_OSD;
using IMAGE = NETNS::DEV_IMAGE_PARAM;
using MASK = NETNS::DEV_PRIVACY_MASK;
using TIME = NETNS::DEV_TIME_OSD;

const int STATUS_OK = 200;
const int MASKS_SHOWN_MAX = 8;

// clang-format off
const QLX_API_FIELD<IMAGE> IMAGE_FIELDS[] = {
    // Clients read and write the frequency as a number, not as a word of its enumeration.
    NumberField<&IMAGE::frequency>                          ("image/frequency"),
    NumberField<&IMAGE::bright>                             ("image/bright"),
    NumberField<&IMAGE::contrast>                           ("image/contrast"),
    NumberField<&IMAGE::hue>                                ("image/hue"),
    NumberField<&IMAGE::saturation>                         ("image/saturation"),
    SwitchField<&IMAGE::mirrorSwitch>                       ("image/mirrorSwitch"),
    SwitchField<&IMAGE::flipSwitch>                         ("image/flipSwitch"),
    SwitchField<&IMAGE::wdrSwitch>                          ("image/WDR/switch"),
    NumberField<&IMAGE::wdrValue>                           ("image/WDR/value"),
    WordField<&IMAGE::whiteBalanceMode, WHITE_BALANCE_WORDS>("image/whiteBalance/mode"),
    NumberField<&IMAGE::red>                                ("image/whiteBalance/red"),
    NumberField<&IMAGE::blue>                               ("image/whiteBalance/blue"),
    SwitchField<&IMAGE::denoiseSwitch>                      ("image/denoise/switch"),
    NumberField<&IMAGE::denoiseValue>                       ("image/denoise/value"),
    SwitchField<&IMAGE::irisSwitch>                         ("image/irisSwitch"),
    SwitchField<&IMAGE::sharpenSwitch>                      ("image/sharpen/switch"),
    NumberField<&IMAGE::sharpenValue>                       ("image/sharpen/value"),
    WordField<&IMAGE::irCutMode, IR_CUT_WORDS>              ("image/IRCutMode"),
};

// The numbers' limits and defaults.
struct LIMITS_ROW
{
    const char* path;
    std::uint32_t CAPS::*min;   // null: none
    std::uint32_t CAPS::*max;
    std::uint32_t CAPS::*byDefault;
};

const LIMITS_ROW LIMITS[] = {
    {"image/frequency",         nullptr,              nullptr,              &CAPS::frequencyDefault },
    {"image/bright",            &CAPS::brightMin,     &CAPS::brightMax,     &CAPS::brightDefault    },
    {"image/contrast",          &CAPS::contrastMin,   &CAPS::contrastMax,   &CAPS::contrastDefault  },
    {"image/hue",               &CAPS::hueMin,        &CAPS::hueMax,        &CAPS::hueDefault       },
    {"image/saturation",        &CAPS::saturationMin, &CAPS::saturationMax, &CAPS::saturationDefault},
    {"image/whiteBalance/red",  &CAPS::redMin,        &CAPS::redMax,        &CAPS::redDefault       },
    {"image/whiteBalance/blue", &CAPS::blueMin,       &CAPS::blueMax,       &CAPS::blueDefault      },
};

struct BYTE_DEFAULT_ROW
{
    const char* path;
    std::uint8_t CAPS::*byDefault;
};

const BYTE_DEFAULT_ROW NUMBER_DEFAULTS[] = {
    {"image/WDR/value",     &CAPS::wdrValueDefault    },
    {"image/denoise/value", &CAPS::denoiseValueDefault},
    {"image/sharpen/value", &CAPS::sharpenValueDefault},
};

// The template says "false" for all of them.
const struct
{
    const char* path;
    const char* attribute;
    std::uint8_t CAPS::*byDefault;
} SWITCH_DEFAULTS[] = {
    {"image/mirrorSwitch",   "default", &CAPS::mirrorDefault       },
    {"image/flipSwitch",     "default", &CAPS::flipDefault         },
    // The document has no such place: a host must not say that wide dynamic range is on by default.
    {"config/WDR/switch",    "default", &CAPS::wdrSwitchDefault    },
    {"image/denoise/switch", "default", &CAPS::denoiseSwitchDefault},
    // Clients see an empty attribute of this name beside a default of "false".
    {"image/irisSwitch",     "true",    &CAPS::irisDefault         },
    {"image/sharpen/switch", "default", &CAPS::sharpenSwitchDefault},
};

const QLX_API_FIELD<TIME> TIME_FIELDS[] = {
    SwitchField<&TIME::osdSwitch>                   ("imageOsd/time/switch"),
    NumberField<&TIME::x>                           ("imageOsd/time/X"),
    NumberField<&TIME::y>                           ("imageOsd/time/Y"),
    WordField<&TIME::dateFormat, DATE_FORMAT_WORDS> ("imageOsd/time/dateFormat"),
};

const QLX_API_FIELD<CHANNEL_NAME> CHANNEL_NAME_FIELDS[] = {
    SwitchField<&CHANNEL_NAME::osdSwitch>           ("imageOsd/channelName/switch"),
    NumberField<&CHANNEL_NAME::x>                   ("imageOsd/channelName/X"),
    NumberField<&CHANNEL_NAME::y>                   ("imageOsd/channelName/Y"),
    TextField<&CHANNEL_NAME::name, QLX_API_CDATA>   ("imageOsd/channelName/name"),
};

const QLX_API_FIELD<MASK> MASK_FIELDS[] = { // below an item
    SwitchField<&MASK::maskSwitch>                  ("switch"),
    NumberField<&MASK::x>                           ("rectangle/X"),
    NumberField<&MASK::y>                           ("rectangle/Y"),
    NumberField<&MASK::width>                       ("rectangle/width"),
    NumberField<&MASK::height>                      ("rectangle/height"),
    WordField<&MASK::color, MASK_COLOR_WORDS>       ("color"),
};
// clang-format on

void FillLimits(CQLXXMLParse& document, const CAPS& caps)
{
    for (const LIMITS_ROW& row : LIMITS)
    {
        const std::string path = row.path;
        if (row.min != nullptr)
        {
            document.SetAttribute(path, "min", caps.*row.min);
            document.SetAttribute(path, "max", caps.*row.max);
        }
        document.SetAttribute(path, "default", caps.*row.byDefault);
    }
    for (const BYTE_DEFAULT_ROW& row : NUMBER_DEFAULTS)
    {
        document.SetAttribute(row.path, "default", static_cast<unsigned int>(caps.*row.byDefault));
    }
    for (const auto& row : SWITCH_DEFAULTS)
    {
        if (caps.*row.byDefault != 0)
        {
            const bool isDefault = std::strcmp(row.attribute, "default") == 0;
            document.SetAttribute(row.path, row.attribute, std::string(isDefault ? "true" : ""));
        }
    }
    const char* const whiteBalance = WordOf(WHITE_BALANCE_WORDS, caps.whiteBalanceModeDefault);
    if (whiteBalance != nullptr)
    {
        document.SetAttribute("image/whiteBalance/mode", "default", std::string(whiteBalance));
    }
    const char* const irCut = WordOf(IR_CUT_WORDS, caps.irCutDefault);
    if (irCut != nullptr)
    {
        document.SetAttribute("image/IRCutMode", "default", std::string(irCut));
    }
}

void AddMask(CQLXXMLParse& document, unsigned int list, const MASK& mask)
{
    const unsigned int item = AddEmpty(document, list, "item");
    document.AddElement(item, "switch", BooleanWord(mask.maskSwitch != 0), false);
    const unsigned int rectangle = AddEmpty(document, item, "rectangle");
    document.AddValue(rectangle, "X", mask.x);
    document.AddValue(rectangle, "Y", mask.y);
    document.AddValue(rectangle, "width", mask.width);
    document.AddValue(rectangle, "height", mask.height);
    const char* const color = WordOf(MASK_COLOR_WORDS, mask.color);
    document.AddElement(item, "color", color != nullptr ? color : "", false);
}

} // namespace

int CQLXApiProc::GetImageConfig(const std::string& ip, const CHttpProtocolAnalyse& request,
                                CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    CAPS caps = {};
    IMAGE image = {};
    if (!call.Succeeded(m_dev->GetImageCaps(call.Verify(), call.Channel(), &caps)) ||
        !call.Succeeded(m_dev->GetImageParam(call.Verify(), call.Channel(), &image)))
    {
        return -1;
    }
    CQLXXMLParse document(CQlxApiXmlFmt::GetImageConfig());
    FillFields(document, IMAGE_FIELDS, image);
    FillLimits(document, caps);
    return call.Answer(document);
}

int CQLXApiProc::SetImageConfig(const std::string& ip, const CHttpProtocolAnalyse& request,
                                CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!call.HasBody())
    {
        return CQlxApiCall::StaySilent();
    }
    CAPS caps = {}; // only to see that the host has limits; no value is held against them
    IMAGE image = {};
    if (!call.Succeeded(m_dev->GetImageCaps(call.Verify(), call.Channel(), &caps)) ||
        !call.Succeeded(m_dev->GetImageParam(call.Verify(), call.Channel(), &image)))
    {
        return -1;
    }
    if (!TakeFields(call.Body(), IMAGE_FIELDS, image))
    {
        return call.Refuse();
    }
    return call.Answer(m_dev->SetImageParam(call.Verify(), call.Channel(), &image));
}

int CQLXApiProc::GetImageOsdCfg(const std::string& ip, const CHttpProtocolAnalyse& request,
                                CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    TIME time = {};
    CHANNEL_NAME name = {};
    if (!call.Succeeded(m_dev->GetTimeOsd(call.Verify(), call.Channel(), &time)) ||
        !call.Succeeded(m_dev->GetChannelNameOsd(call.Verify(), call.Channel(), &name)))
    {
        return -1;
    }
    CQLXXMLParse document(CQlxApiXmlFmt::GetImageOsdCfg());
    FillFields(document, TIME_FIELDS, time);
    FillFields(document, CHANNEL_NAME_FIELDS, name);
    return call.Answer(document);
}

// What the request leaves out goes to the host as 0, since nothing is read from it first.
int CQLXApiProc::SetImageOsdCfg(const std::string& ip, const CHttpProtocolAnalyse& request,
                                CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!call.RequireBody())
    {
        return -1;
    }
    TIME time = {};
    CHANNEL_NAME name = {};
    if (!TakeFields(call.Body(), TIME_FIELDS, time) || !TakeFields(call.Body(), CHANNEL_NAME_FIELDS, name))
    {
        return call.Refuse();
    }
    if (!call.Succeeded(m_dev->SetTimeOsd(call.Verify(), call.Channel(), time)))
    {
        return -1;
    }
    return call.Answer(m_dev->SetChannelNameOsd(call.Verify(), call.Channel(), name));
}

int CQLXApiProc::GetPrivacyMaskCfg(const std::string& ip, const CHttpProtocolAnalyse& request,
                                   CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    MASK masks[MASKS_SHOWN_MAX] = {};
    int count = 0;
    const NETNS::DEV_RET result = m_dev->GetPrivacyMask(call.Verify(), call.Channel(), masks, MASKS_SHOWN_MAX, count);
    if (result != NETNS::DEV_RET_OK || count > MASKS_SHOWN_MAX)
    {
        return call.Answer(result); // with more masks than fit, clients get the bare success document
    }
    const unsigned int shown = count > 0 ? static_cast<unsigned int>(count) : 0;
    CQLXXMLParse document(CQlxApiXmlFmt::GetPrivacyMaskCfg());
    const unsigned int list = document.GetFirstItem("config/privacyMask");
    document.SetAttribute(list, "count", shown);
    for (unsigned int i = 0; i < shown; ++i)
    {
        AddMask(document, list, masks[i]);
    }
    return call.Answer(document);
}

// The masks are what stands behind "itemType", as many as "count" says or as there are, whichever is less.
int CQLXApiProc::SetPrivacyMaskCfg(const std::string& ip, const CHttpProtocolAnalyse& request,
                                   CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!call.RequireBody())
    {
        return -1;
    }
    unsigned int count = 0;
    call.Body().GetAttributeDWORD("config/privacyMask", "count", count);
    if (count > LIMIT_PRIVACY_MASKS)
    {
        return call.Refuse();
    }
    std::vector<MASK> masks;
    masks.reserve(count);
    unsigned int item = call.Body().GetFirstItem("config/privacyMask/itemType");
    while (masks.size() < count && (item = call.Body().GetNextSiblingItem(item)) != 0)
    {
        MASK mask = {};
        if (!TakeFields(call.Body(), item, MASK_FIELDS, mask))
        {
            return call.Refuse();
        }
        masks.push_back(mask);
    }
    return call.Answer(
        m_dev->SetPrivacyMask(call.Verify(), call.Channel(), masks.data(), static_cast<int>(masks.size())));
}

int CQLXApiProc::GetSnapShot(const std::string& ip, const CHttpProtocolAnalyse& request, CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    char* picture = nullptr;
    unsigned int length = 0;
    if (!CRTSP_DataManager::Instance().GetSnapShot(call.Channel(), picture, length))
    {
        return call.Answer(QLX_API_ERR_NOT_SUPPORT);
    }
    const std::unique_ptr<char[]> owner(picture);
    response.SetURL(request.GetUrl()); // its word makes the type "image/png", whatever the bytes are
    response.SetResPackage(STATUS_OK, picture, static_cast<int>(length), "");
    return 0;
}
