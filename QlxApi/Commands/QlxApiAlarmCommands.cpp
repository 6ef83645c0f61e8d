// Commands of alarms: their status, an output switched by hand, and the settings of motion detection, of the alarm
// inputs and outputs and of the alarm server.
#include "QlxApiProtocolProc.h"

#include "AlarmServer.h"
#include "QlxApiCall.h"
#include "QlxApiFields.h"
#include "QlxApiXmlFmt.h"
#include "SysHelper.h"

namespace
{

using ALARM_OUT = NETNS::DEV_ALARM_OUT_CONFIG;
using MOTION = NETNS::DEV_MOTION_CONFIG;
using SENSOR = NETNS::DEV_SENSOR_CONFIG;

const int STATUS_OK = 200;
const int STATUS_UNAUTHORIZED = 401;
const int USERS_MAX = 16;
const std::uint32_t AREA_ROWS_MAX = std::size(MOTION().area);

// clang-format off
const QLX_API_FIELD<MOTION> MOTION_FIELDS[] = {
    SwitchField<&MOTION::motionSwitch>         ("motion/switch"),
    NumberField<&MOTION::sensitivity>          ("motion/sensitivity"),
    NumberField<&MOTION::alarmHoldTime>        ("motion/alarmHoldTime"),
};

const QLX_API_FIELD<SENSOR> SENSOR_FIELDS[] = {
    NumberField<&SENSOR::id>                   ("sensor/id"),
    TextField<&SENSOR::name, QLX_API_CDATA>    ("sensor/sensorName"),
    SwitchField<&SENSOR::sensorSwitch>         ("sensor/switch"),
    WordField<&SENSOR::voltage, VOLTAGE_WORDS> ("sensor/voltage"),
    NumberField<&SENSOR::alarmHoldTime>        ("sensor/alarmHoldTime"),
};

const QLX_API_FIELD<ALARM_OUT> ALARM_OUT_FIELDS[] = {
    NumberField<&ALARM_OUT::id>                ("alarmOut/id"),
    TextField<&ALARM_OUT::name, QLX_API_CDATA> ("alarmOut/alarmOutName"),
    NumberField<&ALARM_OUT::alarmHoldTime>     ("alarmOut/alarmHoldTime"),
};
// clang-format on

/// The cells of the motion grid, a text of 64 digits for each row.
void AddArea(CQLXXMLParse& document, unsigned int motion, const MOTION& config)
{
    const unsigned int rows = std::min(config.rows, AREA_ROWS_MAX);
    const unsigned int area = AddList(document, motion, "area", rows);
    if (rows == 0)
    {
        return;
    }
    const unsigned int itemType = AddEmpty(document, area, "itemType");
    document.SetAttribute(itemType, "type", std::string("string"));
    document.SetAttribute(itemType, "minLen", config.columns);
    document.SetAttribute(itemType, "maxLen", config.columns);
    for (unsigned int i = 0; i < rows; ++i)
    {
        char text[65];
        CSysHelper::ullToString(config.area[i].cells, text);
        document.AddElement(area, "item", text, true);
    }
}

std::string WithoutSpaceAround(const std::string& text)
{
    const char SPACE[] = " \t\r\n";
    const size_t begin = text.find_first_not_of(SPACE);
    return begin == std::string::npos ? std::string() : text.substr(begin, text.find_last_not_of(SPACE) + 1 - begin);
}

/// The rows stand behind "itemType"; those beyond the record's own are not looked at.
/// @return false at a row with anything but digits 0 and 1
bool TakeArea(const CQLXXMLParse& body, MOTION& config)
{
    const unsigned int rows = std::min(config.rows, AREA_ROWS_MAX);
    unsigned int item = body.GetFirstItem("config/motion/area/itemType");
    for (unsigned int i = 0; i < rows && (item = body.GetNextSiblingItem(item)) != 0; ++i)
    {
        std::string text;
        body.GetValueStr(item, text);
        text = WithoutSpaceAround(text);
        unsigned long long cells = 0;
        if (text.find_first_not_of("01") != std::string::npos || !CSysHelper::stringToUll(text.c_str(), cells))
        {
            return false;
        }
        config.area[i].cells = cells;
    }
    return true;
}

/// The "count" says how many outputs there are; the items are those that are triggered.
template <size_t SIZE>
void AddTriggers(CQLXXMLParse& document, unsigned int parent, const std::uint32_t (&ids)[SIZE], std::uint32_t count)
{
    const unsigned int list = AddList(document, parent, "triggerAlarmOut", CAlarmServer::Instance().GetAlarmOutNum());
    document.SetAttribute(AddEmpty(document, list, "itemType"), "type", std::string("boolean"));
    for (std::uint32_t i = 0; i < std::min<std::uint32_t>(count, SIZE); ++i)
    {
        document.SetAttribute(document.AddElement(list, "item", "true", false), "id", ids[i]);
    }
}

/// Every item is an output that is triggered, whatever its text says; without items there is none.
/// @return false when there are more than the record holds
template <size_t SIZE>
bool TakeTriggers(const CQLXXMLParse& body, const char* firstItem, std::uint32_t (&ids)[SIZE], std::uint32_t& count)
{
    count = 0;
    for (unsigned int item = body.GetFirstItem(firstItem); item != 0;
         item = body.GetNextSiblingItemByName(item, "item"))
    {
        if (count == SIZE)
        {
            return false;
        }
        ids[count] = 0;
        body.GetAttributeDWORD(item, "id", ids[count]);
        ++count;
    }
    return true;
}

bool IsUser(const NETNS::DEV_USER_INFO& row, const std::string& user, const std::string& password)
{
    return user == QlxApiTextOf(row.userName) && password == QlxApiTextOf(row.password);
}

} // namespace

// The one command that compares credentials itself. Who is unknown gets no challenge.
int CQLXApiProc::GetAlarmStauts(const std::string& ip, const CHttpProtocolAnalyse& request,
                                CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    std::string user;
    std::string password;
    GetUserInfo(request, user, password);
    NETNS::DEV_USER_INFO users[USERS_MAX] = {};
    int count = 0;
    const NETNS::DEV_RET listed = m_dev->GetUserList(users, USERS_MAX, count);
    const bool isKnown =
        listed == NETNS::DEV_RET_OK && count > 0 && count <= USERS_MAX &&
        std::any_of(users, users + count, [&](const NETNS::DEV_USER_INFO& row) { return IsUser(row, user, password); });
    if (!isKnown)
    {
        response.SetResponseHeader(STATUS_UNAUTHORIZED);
        return -1;
    }
    std::string xml;
    if (CAlarmServer::Instance().GetAlarmStatus(xml))
    {
        response.SetResPackage(STATUS_OK, xml.c_str(), static_cast<int>(xml.size()), "");
        return 0;
    }
    char* text = nullptr;
    int length = 0;
    if (m_dev->GetAlarmStatusXml(call.Verify(), text, length) != NETNS::DEV_RET_OK)
    {
        return call.Refuse();
    }
    response.SetResPackage(STATUS_OK, text, text != nullptr ? length : 0, "");
    m_dev->FreeBuffer(text);
    return 0;
}

int CQLXApiProc::GetMotionConfig(const std::string& ip, const CHttpProtocolAnalyse& request,
                                 CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    MOTION config = {};
    NETNS::DEV_MOTION_CAPS caps = {};
    if (!call.Succeeded(m_dev->GetMotionParam(call.Verify(), call.Channel(), &config)) ||
        !call.Succeeded(m_dev->GetMotionCaps(call.Verify(), call.Channel(), &caps)))
    {
        return -1;
    }
    CQLXXMLParse document(CQlxApiXmlFmt::GetMotionConfig());
    FillFields(document, MOTION_FIELDS, config);
    document.SetAttribute("motion/sensitivity", "min", caps.sensitivityMin);
    document.SetAttribute("motion/sensitivity", "max", caps.sensitivityMax);
    const unsigned int motion = document.GetFirstItem("config/motion");
    AddArea(document, motion, config);
    AddTriggers(document, motion, config.alarmOuts, config.alarmOutCount);
    return call.Answer(document);
}

int CQLXApiProc::SetMotionConfig(const std::string& ip, const CHttpProtocolAnalyse& request,
                                 CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    MOTION config = {};
    if (!call.RequireBody() || !call.Succeeded(m_dev->GetMotionParam(call.Verify(), call.Channel(), &config)))
    {
        return -1;
    }
    if (!TakeFields(call.Body(), MOTION_FIELDS, config) || !TakeArea(call.Body(), config) ||
        !TakeTriggers(call.Body(), "config/motion/triggerAlarmOut/item", config.alarmOuts, config.alarmOutCount))
    {
        return call.Refuse();
    }
    m_dev->SetMotionParam(call.Verify(), call.Channel(), &config); // clients get success whatever the host says
    return call.Answer(QLX_API_ERR_OK);
}

int CQLXApiProc::GetAlarmInConfig(const std::string& ip, const CHttpProtocolAnalyse& request,
                                  CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    SENSOR config = {};
    if (!call.Succeeded(m_dev->GetSensorConfig(call.Verify(), call.Id(), &config)))
    {
        return -1;
    }
    CQLXXMLParse document(CQlxApiXmlFmt::GetAlarmInConfig());
    FillFields(document, SENSOR_FIELDS, config);
    AddTriggers(document, document.GetFirstItem("config/sensor"), config.alarmOuts, config.alarmOutCount);
    return call.Answer(document);
}

int CQLXApiProc::SetAlarmInConfig(const std::string& ip, const CHttpProtocolAnalyse& request,
                                  CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    SENSOR config = {};
    if (!call.RequireBody() || !call.Succeeded(m_dev->GetSensorConfig(call.Verify(), call.Id(), &config)))
    {
        return -1;
    }
    if (!TakeFields(call.Body(), SENSOR_FIELDS, config) ||
        !TakeTriggers(call.Body(), "config/sensor/triggerAlarmOut/item", config.alarmOuts, config.alarmOutCount))
    {
        return call.Refuse();
    }
    return call.AnswerOrRefuse(m_dev->SetSensorConfig(call.Verify(), call.Id(), &config));
}

int CQLXApiProc::GetAlarmOutConfig(const std::string& ip, const CHttpProtocolAnalyse& request,
                                   CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    ALARM_OUT config = {};
    if (!call.Succeeded(m_dev->GetAlarmOutConfig(call.Verify(), call.Id(), &config)))
    {
        return -1;
    }
    CQLXXMLParse document(CQlxApiXmlFmt::GetAlarmOutConfig());
    FillFields(document, ALARM_OUT_FIELDS, config);
    return call.Answer(document);
}

int CQLXApiProc::SetAlarmOutConfig(const std::string& ip, const CHttpProtocolAnalyse& request,
                                   CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    ALARM_OUT config = {};
    if (!call.RequireBody() || !call.Succeeded(m_dev->GetAlarmOutConfig(call.Verify(), call.Id(), &config)))
    {
        return -1;
    }
    if (!TakeFields(call.Body(), ALARM_OUT_FIELDS, config))
    {
        return call.Refuse();
    }
    return call.AnswerOrRefuse(m_dev->SetAlarmOutConfig(call.Verify(), call.Id(), &config));
}

int CQLXApiProc::ManualAlarmOut(const std::string& ip, const CHttpProtocolAnalyse& request,
                                CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!call.RequireBody())
    {
        return -1;
    }
    std::string word;
    std::uint32_t on = 0;
    call.Body().GetValueStr("config/action/status", word);
    if (!ValueOf(BOOLEAN_WORDS, word, on))
    {
        return call.Refuse();
    }
    return call.AnswerOrRefuse(m_dev->ManualAlarmOut(call.Verify(), call.Id(), on != 0));
}

// No right is needed to read the alarm server's address or to change it: the host is not asked.
int CQLXApiProc::GetAlarmServerConfig(const std::string& ip, const CHttpProtocolAnalyse& request,
                                      CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    std::string address;
    int port = 0;
    CQLXXMLParse document(CQlxApiXmlFmt::GetAlarmServerConfig());
    if (CAlarmServer::Instance().GetAlarmServerConfig(address, port))
    {
        document.SetValue("alarmServer/serverAddr", address, false);
        document.SetValue_i32("alarmServer/serverPort", port);
    }
    return call.Answer(document);
}

int CQLXApiProc::SetAlarmServerConfig(const std::string& ip, const CHttpProtocolAnalyse& request,
                                      CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    if (!call.RequireBody())
    {
        return -1;
    }
    std::string address;
    int port = 0;
    call.Body().GetValueStr("config/alarmServer/serverAddr", address);
    call.Body().GetValue_i32("config/alarmServer/serverPort", port);
    if (!CAlarmServer::Instance().SetAlarmServerConfig(address, static_cast<std::uint16_t>(port)))
    {
        return call.Refuse();
    }
    return call.Answer(QLX_API_ERR_OK);
}
