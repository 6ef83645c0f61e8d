// Commands that tell what the device is, and change its clock, its users' passwords and its running state.
#include "QlxApiProtocolProc.h"

#include "AlarmServer.h"
#include "Base64Coder.h"
#include "QlxApiCall.h"
#include "QlxApiFields.h"
#include "QlxApiXmlFmt.h"

#include <algorithm>
#include <cstdio>
#include <ctime>

namespace
{

using TIME = NETNS::DEV_TIME_CONFIG;

const int MAX_LEN_NTP_SERVER = 0; // kind of CDevInterface::GetMaxLen

const int USERS_MAX = 16;
const int CHANNELS_MAX = 128;
const size_t PASSWORD_MAX = 64; // decoded bytes

struct CAPABILITY_ROW
{
    NETNS::DEV_RET (CDevInterface::*ask)(bool& supported);
    const char* path; ///< "false" in the template
};

// clang-format off
const CAPABILITY_ROW CAPABILITIES[] = { // asked for in this order
    {&CDevInterface::GetIntegratedPtz,   "deviceInfo/integratedPtz"  },
    {&CDevInterface::GetSupportRS485Ptz, "deviceInfo/supportRS485Ptz"},
    {&CDevInterface::GetSupportSDCard,   "deviceInfo/supportSDCard"  },
};

// The texts go out as plain text, although the template holds CDATA sections.
const QLX_API_FIELD<TIME> TIME_FIELDS[] = {
    TextField<&TIME::timeZone, QLX_API_PLAIN, QLX_API_REFUSE> ("time/timezoneInfo/timeZone"),
    SwitchField<&TIME::daylightSwitch>                        ("time/timezoneInfo/daylightSwitch"),
    WordField<&TIME::synchronizeType, SYNCHRONIZE_WORDS>      ("time/synchronizeInfo/type"),
    TextField<&TIME::ntpServer, QLX_API_PLAIN, QLX_API_REFUSE>("time/synchronizeInfo/ntpServer"),
};
// clang-format on

// Months and days have no lower bound: 2000-00-00 passes.
bool ReadDateTime(const std::string& text, NETNS::DEV_DATETIME& time)
{
    const size_t LENGTH = 19; // "YYYY-MM-DD hh:mm:ss"
    time = NETNS::DEV_DATETIME();
    if (text.size() != LENGTH ||
        // NOLINTNEXTLINE(cert-err34-c): clients rely on how the C library reads numbers
        std::sscanf(text.c_str(), "%04hu-%02hu-%02hu %02hu:%02hu:%02hu", &time.date.year, &time.date.month,
                    &time.date.day, &time.time.hour, &time.time.minute, &time.time.second) != 6)
    {
        return false;
    }
    return time.date.year > 1969 && time.date.month < 13 && time.date.day < 32 && time.time.hour < 24 &&
           time.time.minute < 60 && time.time.second < 60;
}

/// A Base64 text of the request; a missing one is empty. @return the decoded text up to its first zero byte
std::string ReadPassword(const CQLXXMLParse& body, const char* path)
{
    std::string encoded;
    body.GetValueStr(path, encoded);
    unsigned char text[PASSWORD_MAX + 1] = {};
    unsigned long room = PASSWORD_MAX;
    CBase64Coder::Decode(encoded, text, &room); // what was decoded before the room ended stands
    return reinterpret_cast<const char*>(text);
}

/// A document of one list: its "count", what its items are, and the items.
/// @param ids  null: the numbers from 0 on
int AnswerIdList(CQlxApiCall& call, const char* name, const unsigned int* ids, unsigned int count)
{
    CQLXXMLParse document;
    const unsigned int list = AddList(document, AddConfigRoot(document), name, count);
    const unsigned int itemType = AddEmpty(document, list, "itemType");
    document.SetAttribute(itemType, "type", std::string("string"));
    document.SetAttribute(itemType, "maxLen", 20u);
    for (unsigned int i = 0; i < count; ++i)
    {
        document.AddValue(list, "item", ids != nullptr ? ids[i] : i);
    }
    return call.Answer(document);
}

} // namespace

int CQLXApiProc::GetDeviceInfo(const std::string& ip, const CHttpProtocolAnalyse& request,
                               CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    NETNS::DEV_DEVICE_INFO info = {};
    if (!call.Succeeded(m_dev->GetDevInfo(call.Verify(), &info)))
    {
        return -1;
    }
    char buildDate[32];
    std::snprintf(buildDate, sizeof(buildDate), "%d-%d-%d", info.softwareBuildDate.year, info.softwareBuildDate.month,
                  info.softwareBuildDate.day);
    char mac[18];
    std::snprintf(mac, sizeof(mac), "%02x:%02x:%02x:%02x:%02x:%02x", info.mac[0], info.mac[1], info.mac[2], info.mac[3],
                  info.mac[4], info.mac[5]);

    CQLXXMLParse document(CQlxApiXmlFmt::GetDeviceInfo());
    document.SetValue("deviceInfo/model", QlxApiTextOf(info.model), true);
    document.SetValue("deviceInfo/brand", QlxApiTextOf(info.brand), true);
    document.SetValue("deviceInfo/deviceDescription", QlxApiTextOf(info.description), true);
    document.SetValue("deviceInfo/audioInCount", info.audioInCount);
    document.SetValue("deviceInfo/audioOutCount", info.audioOutCount);
    bool supported = false;
    for (const CAPABILITY_ROW& row : CAPABILITIES)
    {
        (m_dev->*row.ask)(supported);
        if (supported)
        {
            document.SetValue(row.path, "true", false);
        }
    }
    document.SetValue("deviceInfo/alarmInCount", info.alarmInCount);
    document.SetValue("deviceInfo/alarmOutCount", info.alarmOutCount);
    document.SetValue("deviceInfo/softwareVersion", QlxApiTextOf(info.softwareVersion), true);
    document.SetValue("deviceInfo/softwareBuildDate", buildDate, true);
    document.SetValue("deviceInfo/kernelVersion", QlxApiTextOf(info.kernelVersion), true);
    document.SetValue("deviceInfo/hardwareVersion", QlxApiTextOf(info.hardwareVersion), true);
    document.SetValue("deviceInfo/mac", mac, true);
    return call.Answer(document);
}

int CQLXApiProc::Reboot(const std::string& ip, const CHttpProtocolAnalyse& request, CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    return call.Answer(m_dev->Reboot(call.Verify()));
}

int CQLXApiProc::GetDateAndTime(const std::string& ip, const CHttpProtocolAnalyse& request,
                                CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    TIME config = {};
    if (!call.Succeeded(m_dev->GetTimeConfig(call.Verify(), &config)))
    {
        return -1;
    }
    char now[TIME_SIZE];
    Time2Str(std::time(nullptr), now);

    CQLXXMLParse document(CQlxApiXmlFmt::GetDateAndTime());
    FillFields(document, TIME_FIELDS, config);
    document.SetAttribute_i32("time/synchronizeInfo/ntpServer", "maxLen", m_dev->GetMaxLen(MAX_LEN_NTP_SERVER));
    document.SetValue("time/synchronizeInfo/currentTime", now, false);
    return call.Answer(document);
}

int CQLXApiProc::SetDateAndTime(const std::string& ip, const CHttpProtocolAnalyse& request,
                                CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    TIME config = {};
    if (!call.RequireBody() || !call.Succeeded(m_dev->GetTimeConfig(call.Verify(), &config)))
    {
        return -1;
    }
    if (!TakeFields(call.Body(), TIME_FIELDS, config))
    {
        return call.Refuse();
    }
    std::string currentTime;
    if (call.Body().GetValueStr("time/synchronizeInfo/currentTime", currentTime))
    {
        NETNS::DEV_DATETIME time;
        if (!ReadDateTime(currentTime, time))
        {
            return call.Refuse();
        }
        m_dev->SetDateTime(call.Verify(), &time); // the clock first; it stays changed when the settings fail
    }
    return call.Answer(m_dev->SetTimeConfig(call.Verify(), &config));
}

// Clients send the desired password in both fields: they must hold the same text. Whose password it is, the host finds
// in the verification text.
int CQLXApiProc::ModifyPassword(const std::string& ip, const CHttpProtocolAnalyse& request,
                                CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    // Only to see that the host answers for this device at all; the list is not read.
    NETNS::DEV_USER_INFO users[USERS_MAX] = {};
    int count = 0;
    if (!call.RequireBody() || !call.Succeeded(m_dev->GetUserList(users, USERS_MAX, count)))
    {
        return -1;
    }
    const std::string oldPassword = ReadPassword(call.Body(), "userPassword/oldPassword");
    const std::string password = ReadPassword(call.Body(), "userPassword/password");
    if (oldPassword != password)
    {
        return call.Refuse();
    }
    return call.Answer(m_dev->ModifyPassword(call.Verify(), password.c_str()));
}

int CQLXApiProc::GetChnList(const std::string& ip, const CHttpProtocolAnalyse& request, CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    unsigned int ids[CHANNELS_MAX] = {};
    int count = 0;
    if (!call.Succeeded(m_dev->GetChannelIdList(call.Verify(), ids, CHANNELS_MAX, count)))
    {
        return -1;
    }
    return AnswerIdList(call, "channelIDList", ids, static_cast<unsigned int>(std::clamp(count, 0, CHANNELS_MAX)));
}

// No user is verified for the two alarm lists, and their items count from 0.
int CQLXApiProc::GetAlarmInList(const std::string& ip, const CHttpProtocolAnalyse& request,
                                CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    return AnswerIdList(call, "alarmInIDList", nullptr, CAlarmServer::Instance().GetSensorNum());
}

int CQLXApiProc::GetAlarmOutList(const std::string& ip, const CHttpProtocolAnalyse& request,
                                 CHttpProtocolAnalyse& response)
{
    CQlxApiCall call(ip, request, response);
    // Clients find the outputs under the name of the input list, too.
    return AnswerIdList(call, "alarmInIDList", nullptr, CAlarmServer::Instance().GetAlarmOutNum());
}
