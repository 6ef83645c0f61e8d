// Commands of the camera's head: what it can do, its serial protocol, moving it, presets and cruises.
//
// A device that cannot do both, a built-in head and one over RS485, refuses all of them. A command that takes a body
// leaves a request without one unanswered, also where nothing is read from it. The bodies' paths do not begin with
// "config", so clients may leave that element out.
#include "QlxApiProtocolProc.h"

#include "QlxApiCall.h"
#include "QlxApiFields.h"
#include "QlxApiXmlFmt.h"

#include <cctype>

namespace
{

using CRUISE = NETNS::DEV_PTZ_CRUISE;
using CRUISE_CAPS = NETNS::DEV_PTZ_CRUISE_CAPS;
using POINT = NETNS::DEV_PTZ_CRUISE_POINT;
using PRESET = NETNS::DEV_PTZ_PRESET;
using PRESET_CAPS = NETNS::DEV_PTZ_PRESET_CAPS;
using PROTOCOL = NETNS::DEV_PTZ_PROTOCOL;

const int PRESETS_MAX = 256;
const int CRUISES_MAX = 12;
const int POINTS_SHOWN_MAX = 256;
const int POINTS_TAKEN_MAX = 64;

const unsigned int PRESET_NAME_LEN = 11;
const unsigned int CRUISE_NAME_LEN = 31;
const unsigned int HOLD_TIME_MIN = 1;

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

/// An element with a type and a length that its text may have.
void DescribeText(CQLXXMLParse& document, unsigned int item, unsigned int maxLen)
{
    document.SetAttribute(item, "type", std::string("string"));
    document.SetAttribute(item, "maxLen", maxLen);
}

/// A list that says how many items the device can store. @return its item
unsigned int AddStore(CQLXXMLParse& document, unsigned int parent, const char* name, unsigned int maxCount)
{
    const unsigned int list = AddEmpty(document, parent, name);
    document.SetAttribute(list, "maxCount", maxCount);
    document.SetAttribute(list, "type", std::string("list"));
    return list;
}

/// The same with its named items.
template <typename ROW>
void AddNames(CQLXXMLParse& document, const char* name, unsigned int maxCount, unsigned int maxLen, const ROW* rows,
              int count)
{
    const unsigned int list = AddStore(document, AddConfigRoot(document), name, maxCount);
    DescribeText(document, AddEmpty(document, list, "itemType"), maxLen);
    for (int i = 0; i < count; ++i)
    {
        const unsigned int item = document.AddElement(list, "item", QlxApiTextOf(rows[i].name), true);
        document.SetAttribute(item, "id", static_cast<unsigned int>(rows[i].id));
    }
}

void AddRange(CQLXXMLParse& document, unsigned int parent, const char* name, unsigned int min, unsigned int max)
{
    const unsigned int element = AddEmpty(document, parent, name);
    document.SetAttribute(element, "type", std::string("uint32"));
    document.SetAttribute(element, "min", min);
    document.SetAttribute(element, "max", max);
}

/// The number of a body; 0 when it is missing. @return false when it is missing
bool TakeId(const CQLXXMLParse& body, const char* path, int& id)
{
    return body.GetValue_i32(path, id);
}

struct CRUISE_POINTS
{
    POINT rows[POINTS_TAKEN_MAX] = {};
    int count = 0;
};

template <typename VALUE>
void TakeByte(const CQLXXMLParse& body, unsigned int item, const char* path, VALUE& value)
{
    int number = 0;
    if (body.GetValue_i32(item, path, number))
    {
        value = static_cast<VALUE>(number);
    }
}

/// The points' names are not read: the host knows its presets. @return false when there are more than fit
bool TakePoints(const CQLXXMLParse& body, CRUISE_POINTS& points)
{
    for (unsigned int item = body.GetFirstItem("cruiseInfo/presetInfo/item"); item != 0;
         item = body.GetNextSiblingItemByName(item, "item"))
    {
        if (points.count == POINTS_TAKEN_MAX)
        {
            return false;
        }
        POINT& point = points.rows[points.count++];
        int id = 0;
        body.GetAttribute_i32(item, "id", id);
        point.presetId = static_cast<std::uint8_t>(id);
        TakeByte(body, item, "speed", point.speed);
        TakeByte(body, item, "holdTime", point.holdTime);
    }
    return true;
}

void AddPoints(CQLXXMLParse& document, unsigned int list, const POINT* points, int count)
{
    for (int i = 0; i < count; ++i)
    {
        const unsigned int item = AddEmpty(document, list, "item");
        document.SetAttribute(item, "id", static_cast<unsigned int>(points[i].presetId));
        document.AddElement(item, "name", QlxApiTextOf(points[i].name), true);
        document.AddValue(item, "speed", static_cast<unsigned int>(points[i].speed));
        document.AddValue(item, "holdTime", static_cast<unsigned int>(points[i].holdTime));
    }
}

// The root is "cruiseInfo" itself, without version and namespace. Clients expect it so.
void FillCruise(CQLXXMLParse& document, int id, const std::string& name, const CRUISE_CAPS& caps, const POINT* points,
                int count)
{
    const unsigned int root = document.AddElement("cruiseInfo", "", false);
    document.SetAttribute(document.AddValue_i32(root, "id", id), "type", std::string("uint32"));
    DescribeText(document, document.AddElement(root, "name", name, true), CRUISE_NAME_LEN);
    const unsigned int list = AddStore(document, root, "presetInfo", caps.presetMax);
    const unsigned int itemType = AddEmpty(document, list, "itemType");
    DescribeText(document, AddEmpty(document, itemType, "name"), PRESET_NAME_LEN);
    AddRange(document, itemType, "speed", caps.speedMin, caps.speedMax);
    AddRange(document, itemType, "holdTime", HOLD_TIME_MIN, caps.holdTimeMax);
    AddPoints(document, list, points, count);
}

std::string CruiseName(const CRUISE* cruises, int count, int id)
{
    const CRUISE* const end = cruises + count;
    const CRUISE* const row = std::find_if(cruises, end, [id](const CRUISE& cruise) { return cruise.id == id; });
    return row != end ? QlxApiTextOf(row->name) : std::string();
}

std::string LowerCase(std::string text)
{
    for (char& character : text)
    {
        character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    }
    return text;
}

/// Whether the device serves these commands; answers error 1 when it does not.
bool IsOpen(CQLXApiProc& proc, CQlxApiCall& call)
{
    if (!proc.SupportPtz())
    {
        call.Answer(QLX_API_ERR_NOT_SUPPORT);
        return false;
    }
    return true;
}

/// The same for a command that takes a body; without one the reply stays empty.
bool IsOpenWithBody(CQLXApiProc& proc, CQlxApiCall& call)
{
    return IsOpen(proc, call) && call.HasBody();
}

enum ID_NEED
{
    ID_READ,     ///< a missing one is 0
    ID_REQUIRED, ///< a missing one is refused
};
using ID_OPERATION = NETNS::DEV_RET (CDevInterface::*)(const char* verify, unsigned int chn, int index);

/// Commands that do one thing with the preset or cruise of an id.
int RunById(CQLXApiProc& proc, CDevInterface& dev, CQlxApiCall& call, const char* path, ID_NEED need,
            ID_OPERATION operation)
{
    if (!IsOpenWithBody(proc, call))
    {
        return -1;
    }
    int id = 0;
    if (!TakeId(call.Body(), path, id) && need == ID_REQUIRED)
    {
        return call.Refuse();
    }
    return call.Answer((dev.*operation)(call.Verify(), call.Channel(), id));
}

} // namespace

int CQLXApiProc::PtzGetCaps(const std::string& ip, const CHttpProtocolAnalyse& request, CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!IsOpen(*this, call))
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
    if (!IsOpen(*this, call))
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
    if (!IsOpenWithBody(*this, call))
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
    if (!IsOpenWithBody(*this, call))
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
    return RunById(*this, *m_dev, call, "presetInfo/id", ID_READ, &CDevInterface::PtzGotoPreset);
}

int CQLXApiProc::PtzRunCruise(const std::string& ip, const CHttpProtocolAnalyse& request,
                              CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    return RunById(*this, *m_dev, call, "cruiseInfo/id", ID_READ, &CDevInterface::PtzRunCruise);
}

// The body is not looked at, but there must be one.
int CQLXApiProc::PtzStopCruise(const std::string& ip, const CHttpProtocolAnalyse& request,
                               CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!IsOpenWithBody(*this, call))
    {
        return -1;
    }
    return call.Answer(m_dev->PtzStopCruise(call.Verify(), call.Channel()));
}

int CQLXApiProc::PtzGetPresets(const std::string& ip, const CHttpProtocolAnalyse& request,
                               CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!IsOpen(*this, call))
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
    AddNames(document, "presetInfo", caps.presetMax, PRESET_NAME_LEN, presets, count);
    return call.Answer(document);
}

int CQLXApiProc::PtzAddPreset(const std::string& ip, const CHttpProtocolAnalyse& request,
                              CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!IsOpenWithBody(*this, call))
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
    if (!IsOpenWithBody(*this, call))
    {
        return -1;
    }
    int id = 0;
    std::string name;
    if (!TakeId(call.Body(), "presetInfo/id", id) || !call.Body().GetValueStr("presetInfo/name", name))
    {
        return call.Refuse();
    }
    return call.Answer(m_dev->PtzModifyPresetName(call.Verify(), call.Channel(), id, name.c_str()));
}

int CQLXApiProc::PtzDeletePreset(const std::string& ip, const CHttpProtocolAnalyse& request,
                                 CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    return RunById(*this, *m_dev, call, "presetInfo/id", ID_REQUIRED, &CDevInterface::PtzDeletePreset);
}

int CQLXApiProc::PtzModifyPresetPosition(const std::string& ip, const CHttpProtocolAnalyse& request,
                                         CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    return RunById(*this, *m_dev, call, "presetInfo/id", ID_REQUIRED, &CDevInterface::PtzModifyPresetPosition);
}

int CQLXApiProc::PtzGetCruises(const std::string& ip, const CHttpProtocolAnalyse& request,
                               CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!IsOpen(*this, call))
    {
        return -1;
    }
    CRUISE_CAPS caps = {};
    m_dev->GetPtzCruiseCaps(call.Verify(), call.Channel(), &caps); // zeros when the host fails
    CRUISE cruises[CRUISES_MAX] = {};
    int count = 0;
    const NETNS::DEV_RET result = m_dev->PtzGetCruises(call.Verify(), call.Channel(), cruises, CRUISES_MAX, count);
    if (result != NETNS::DEV_RET_OK || count > CRUISES_MAX)
    {
        return call.Answer(result); // with more cruises than fit, clients get the bare success document
    }
    CQLXXMLParse document;
    AddNames(document, "cruiseInfo", caps.cruiseMax, CRUISE_NAME_LEN, cruises, count);
    return call.Answer(document);
}

int CQLXApiProc::PtzGetCruise(const std::string& ip, const CHttpProtocolAnalyse& request,
                              CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!IsOpenWithBody(*this, call))
    {
        return -1;
    }
    int id = 0;
    if (!TakeId(call.Body(), "cruiseInfo/id", id))
    {
        return call.Refuse();
    }
    POINT points[POINTS_SHOWN_MAX] = {};
    int pointCount = 0;
    CRUISE cruises[CRUISES_MAX] = {};
    int cruiseCount = 0;
    CRUISE_CAPS caps = {};
    const char* const verify = call.Verify();
    const unsigned int chn = call.Channel();
    if (!call.Succeeded(m_dev->PtzGetCruisePoints(verify, chn, id, points, POINTS_SHOWN_MAX, pointCount)) ||
        !call.Succeeded(m_dev->PtzGetCruises(verify, chn, cruises, CRUISES_MAX, cruiseCount)) ||
        !call.Succeeded(m_dev->GetPtzCruiseCaps(verify, chn, &caps)))
    {
        return -1;
    }
    const std::string name = CruiseName(cruises, std::clamp(cruiseCount, 0, CRUISES_MAX), id);
    CQLXXMLParse document;
    FillCruise(document, id, name, caps, points, std::clamp(pointCount, 0, POINTS_SHOWN_MAX));
    return call.Answer(document);
}

int CQLXApiProc::PtzAddCruise(const std::string& ip, const CHttpProtocolAnalyse& request,
                              CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!IsOpenWithBody(*this, call))
    {
        return -1;
    }
    std::string name;
    CRUISE_POINTS points;
    if (!call.Body().GetValueStr("cruiseInfo/name", name) || !TakePoints(call.Body(), points))
    {
        return call.Refuse();
    }
    return call.Answer(m_dev->PtzAddCruise(call.Verify(), call.Channel(), name.c_str(), points.rows, points.count));
}

int CQLXApiProc::PtzModifyCruise(const std::string& ip, const CHttpProtocolAnalyse& request,
                                 CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!IsOpenWithBody(*this, call))
    {
        return -1;
    }
    std::string name;
    int id = 0;
    CRUISE_POINTS points;
    if (!call.Body().GetValueStr("cruiseInfo/name", name) || !TakeId(call.Body(), "cruiseInfo/id", id) ||
        !TakePoints(call.Body(), points))
    {
        return call.Refuse();
    }
    return call.Answer(
        m_dev->PtzModifyCruise(call.Verify(), call.Channel(), id, name.c_str(), points.rows, points.count));
}

int CQLXApiProc::PtzDeleteCruise(const std::string& ip, const CHttpProtocolAnalyse& request,
                                 CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    return RunById(*this, *m_dev, call, "cruiseInfo/id", ID_REQUIRED, &CDevInterface::PtzDeleteCruise);
}
