// Commands of the camera's head: what it can do, its serial protocol, moving it, and its presets.
#include "QlxApiFields.h"
#include "QlxApiPtz.h"
#include "QlxApiXmlFmt.h"

#include <cctype>

namespace
{

using CRUISE_CAPS = NETNS::DEV_PTZ_CRUISE_CAPS;
using PRESET = NETNS::DEV_PTZ_PRESET;
using PRESET_CAPS = NETNS::DEV_PTZ_PRESET_CAPS;
using PROTOCOL = NETNS::DEV_PTZ_PROTOCOL;

const int PRESETS_MAX = 256;

// clang-format off
const QLX_API_FIELD<PROTOCOL> PROTOCOL_FIELDS[] = {
    NumberField<&PROTOCOL::baudRate>                    ("ptzInfo/baudRate"),
    WordField<&PROTOCOL::protocol, PTZ_PROTOCOL_WORDS>  ("ptzInfo/protocol"),
    NumberField<&PROTOCOL::address>                     ("ptzInfo/address"),
};

struct PRESET_CAPS_ROW
{
    const char* name;
    std::uint32_t PRESET_CAPS::*value;
};

const PRESET_CAPS_ROW PRESET_CAPS_ROWS[] = {
    {"controlMinSpeed", &PRESET_CAPS::speedMin },
    {"controlMaxSpeed", &PRESET_CAPS::speedMax },
    {"presetMaxCount",  &PRESET_CAPS::presetMax},
};

struct CRUISE_CAPS_ROW
{
    const char* name;
    std::uint32_t CRUISE_CAPS::*value;
};

const CRUISE_CAPS_ROW CRUISE_CAPS_ROWS[] = {
    {"cruiseMaxCount",          &CRUISE_CAPS::cruiseMax  },
    {"cruisePresetMinSpeed",    &CRUISE_CAPS::speedMin   },
    {"cruisePresetMaxSpeed",    &CRUISE_CAPS::speedMax   },
    {"cruisePresetMaxHoldTime", &CRUISE_CAPS::holdTimeMax},
    {"cruisePresetMaxCount",    &CRUISE_CAPS::presetMax  },
};
// clang-format on

template <typename RECORD, typename ROW, size_t COUNT>
void AddCaps(CQLXXMLParse& document, unsigned int parent, const ROW (&rows)[COUNT], const RECORD& record)
{
    for (const ROW& row : rows)
    {
        const unsigned int element = document.AddValue(parent, row.name, record.*row.value);
        document.SetAttribute(element, "type", std::string("uint32"));
    }
}

std::string LowerCase(std::string text)
{
    for (char& character : text)
    {
        character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    }
    return text;
}

} // namespace

int CQLXApiProc::PtzGetCaps(const std::string& ip, const CHttpProtocolAnalyse& request, CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!PtzIsOpen(*this, call))
    {
        return -1;
    }
    bool integrated = false;
    bool rs485 = false;
    m_dev->GetIntegratedPtz(integrated);
    if (!integrated)
    {
        m_dev->GetSupportRS485Ptz(rs485);
    }
    if (!integrated && !rs485)
    {
        return call.Answer(QLX_API_ERR_NOT_SUPPORT);
    }
    PRESET_CAPS presets = {};
    CRUISE_CAPS cruises = {};
    if (!call.Succeeded(m_dev->GetPtzPresetCaps(call.Verify(), call.Channel(), &presets)) ||
        (integrated && !call.Succeeded(m_dev->GetPtzCruiseCaps(call.Verify(), call.Channel(), &cruises))))
    {
        return -1;
    }
    CQLXXMLParse document;
    const unsigned int caps = AddEmpty(document, AddConfigRoot(document), "caps");
    AddCaps(document, caps, PRESET_CAPS_ROWS, presets);
    if (integrated)
    {
        AddCaps(document, caps, CRUISE_CAPS_ROWS, cruises);
    }
    return call.Answer(document);
}

int CQLXApiProc::PtzGetProtocolConfig(const std::string& ip, const CHttpProtocolAnalyse& request,
                                      CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!PtzIsOpen(*this, call))
    {
        return -1;
    }
    bool rs485 = false;
    m_dev->GetSupportRS485Ptz(rs485);
    if (!rs485)
    {
        return call.Answer(QLX_API_ERR_NOT_SUPPORT); // a built-in head has no serial protocol
    }
    PROTOCOL protocol = {};
    if (!call.Succeeded(m_dev->GetPtzProtocol(call.Verify(), call.Channel(), &protocol)))
    {
        return -1;
    }
    CQLXXMLParse document(CQlxApiXmlFmt::PtzGetProtocolConfig());
    FillFields(document, PROTOCOL_FIELDS, protocol);
    return call.Answer(document);
}

// What the request leaves out goes to the host as 0, since nothing is read from it first.
int CQLXApiProc::PtzSetProtocolConfig(const std::string& ip, const CHttpProtocolAnalyse& request,
                                      CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!PtzIsOpenWithBody(*this, call))
    {
        return -1;
    }
    PROTOCOL protocol = {};
    if (!TakeFields(call.Body(), PROTOCOL_FIELDS, protocol))
    {
        return call.Refuse();
    }
    return call.Answer(m_dev->SetPtzProtocol(call.Verify(), call.Channel(), &protocol));
}

int CQLXApiProc::PtzControl(const std::string& ip, const CHttpProtocolAnalyse& request, CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!PtzIsOpenWithBody(*this, call))
    {
        return -1;
    }
    std::string action;
    std::uint32_t command = 0;
    if (!GetActionFromUrl(request.GetUrl(), action) || !ValueOf(PTZ_ACTION_WORDS, LowerCase(action), command))
    {
        return call.Refuse();
    }
    int speed = 0;
    call.Body().GetValue_i32("actionInfo/speed", speed);
    return call.Answer(m_dev->PtzControl(call.Verify(), call.Channel(), static_cast<int>(command), speed));
}

int CQLXApiProc::PtzGotoPreset(const std::string& ip, const CHttpProtocolAnalyse& request,
                               CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    return PtzRunById(*this, *m_dev, call, "presetInfo/id", QLX_PTZ_ID_READ, &CDevInterface::PtzGotoPreset);
}

int CQLXApiProc::PtzGetPresets(const std::string& ip, const CHttpProtocolAnalyse& request,
                               CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!PtzIsOpen(*this, call))
    {
        return -1;
    }
    PRESET_CAPS caps = {};
    m_dev->GetPtzPresetCaps(call.Verify(), call.Channel(), &caps); // zeros when the host fails
    PRESET presets[PRESETS_MAX] = {};
    int count = 0;
    const NETNS::DEV_RET result = m_dev->PtzGetPresets(call.Verify(), call.Channel(), presets, PRESETS_MAX, count);
    if (result != NETNS::DEV_RET_OK || count > PRESETS_MAX)
    {
        return call.Answer(result); // with more presets than fit, clients get the bare success document
    }
    CQLXXMLParse document;
    AddPtzNames(document, "presetInfo", caps.presetMax, PTZ_PRESET_NAME_LEN, presets, count);
    return call.Answer(document);
}

int CQLXApiProc::PtzAddPreset(const std::string& ip, const CHttpProtocolAnalyse& request,
                              CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!PtzIsOpenWithBody(*this, call))
    {
        return -1;
    }
    std::string name;
    if (!call.Body().GetValueStr("presetInfo/name", name))
    {
        return call.Refuse();
    }
    return call.Answer(m_dev->PtzAddPreset(call.Verify(), call.Channel(), name.c_str()));
}

int CQLXApiProc::PtzModifyPresetName(const std::string& ip, const CHttpProtocolAnalyse& request,
                                     CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!PtzIsOpenWithBody(*this, call))
    {
        return -1;
    }
    int id = 0;
    std::string name;
    if (!call.Body().GetValue_i32("presetInfo/id", id) || !call.Body().GetValueStr("presetInfo/name", name))
    {
        return call.Refuse();
    }
    return call.Answer(m_dev->PtzModifyPresetName(call.Verify(), call.Channel(), id, name.c_str()));
}

int CQLXApiProc::PtzDeletePreset(const std::string& ip, const CHttpProtocolAnalyse& request,
                                 CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    return PtzRunById(*this, *m_dev, call, "presetInfo/id", QLX_PTZ_ID_REQUIRED, &CDevInterface::PtzDeletePreset);
}

int CQLXApiProc::PtzModifyPresetPosition(const std::string& ip, const CHttpProtocolAnalyse& request,
                                         CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    return PtzRunById(*this, *m_dev, call, "presetInfo/id", QLX_PTZ_ID_REQUIRED,
                      &CDevInterface::PtzModifyPresetPosition);
}
