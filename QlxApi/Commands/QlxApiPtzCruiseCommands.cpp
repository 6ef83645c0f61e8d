// Commands of the camera's head that store cruises, show them and run them.
#include "QlxApiFields.h"
#include "QlxApiPtz.h"

#include <algorithm>

namespace
{

using CRUISE = NETNS::DEV_PTZ_CRUISE;
using CRUISE_CAPS = NETNS::DEV_PTZ_CRUISE_CAPS;
using POINT = NETNS::DEV_PTZ_CRUISE_POINT;

const int CRUISES_MAX = 12;
const int POINTS_SHOWN_MAX = 256;
const int POINTS_TAKEN_MAX = 64;

const unsigned int CRUISE_NAME_LEN = 31;
const unsigned int HOLD_TIME_MIN = 1;

// clang-format off
const QLX_API_FIELD<POINT> POINT_FIELDS[] = { // below an item
    NumberField<&POINT::speed>   ("speed"),
    NumberField<&POINT::holdTime>("holdTime"),
};
// clang-format on

void AddRange(CQLXXMLParse& document, unsigned int parent, const char* name, unsigned int min, unsigned int max)
{
    const unsigned int element = AddEmpty(document, parent, name);
    document.SetAttribute(element, "type", std::string("uint32"));
    document.SetAttribute(element, "min", min);
    document.SetAttribute(element, "max", max);
}

struct CRUISE_POINTS
{
    POINT rows[POINTS_TAKEN_MAX] = {};
    int count = 0;
};

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
        TakeFields(body, item, POINT_FIELDS, point);
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
    DescribePtzText(document, document.AddElement(root, "name", name, true), CRUISE_NAME_LEN);
    const unsigned int list = AddPtzStore(document, root, "presetInfo", caps.presetMax);
    const unsigned int itemType = AddEmpty(document, list, "itemType");
    DescribePtzText(document, AddEmpty(document, itemType, "name"), PTZ_PRESET_NAME_LEN);
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

} // namespace

int CQLXApiProc::PtzRunCruise(const std::string& ip, const CHttpProtocolAnalyse& request,
                              CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    return PtzRunById(*this, *m_dev, call, "cruiseInfo/id", QLX_PTZ_ID_READ, &CDevInterface::PtzRunCruise);
}

// The body is not looked at, but there must be one.
int CQLXApiProc::PtzStopCruise(const std::string& ip, const CHttpProtocolAnalyse& request,
                               CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!PtzIsOpenWithBody(*this, call))
    {
        return -1;
    }
    return call.Answer(m_dev->PtzStopCruise(call.Verify(), call.Channel()));
}

int CQLXApiProc::PtzGetCruises(const std::string& ip, const CHttpProtocolAnalyse& request,
                               CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!PtzIsOpen(*this, call))
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
    AddPtzNames(document, "cruiseInfo", caps.cruiseMax, CRUISE_NAME_LEN, cruises, count);
    return call.Answer(document);
}

int CQLXApiProc::PtzGetCruise(const std::string& ip, const CHttpProtocolAnalyse& request,
                              CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!PtzIsOpenWithBody(*this, call))
    {
        return -1;
    }
    int id = 0;
    if (!call.Body().GetValue_i32("cruiseInfo/id", id))
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
    if (!PtzIsOpenWithBody(*this, call))
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
    if (!PtzIsOpenWithBody(*this, call))
    {
        return -1;
    }
    std::string name;
    int id = 0;
    CRUISE_POINTS points;
    if (!call.Body().GetValueStr("cruiseInfo/name", name) || !call.Body().GetValue_i32("cruiseInfo/id", id) ||
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
    return PtzRunById(*this, *m_dev, call, "cruiseInfo/id", QLX_PTZ_ID_REQUIRED, &CDevInterface::PtzDeleteCruise);
}
