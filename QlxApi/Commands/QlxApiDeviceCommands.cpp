// Commands that tell what the device is, and change its clock, its users' passwords and its running state.
#include "QlxApiProtocolProc.h"

#include "AlarmServer.h"
#include "Base64Coder.h"
#include "QLXXMLParse.h"
#include "QlxApiXmlFmt.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>

namespace
{

const int STATUS_OK = 200;

const std::uint32_t SYNCHRONIZE_MANUALLY = 0;
const std::uint32_t SYNCHRONIZE_NTP = 1;
const int MAX_LEN_NTP_SERVER = 0; // kind of CDevInterface::GetMaxLen

const int USERS_MAX = 16;
const int CHANNELS_MAX = 128;
const size_t PASSWORD_MAX = 64; // decoded bytes

struct WORD_ROW
{
    const char* word;
    std::uint32_t value;
};

const WORD_ROW BOOLEAN_WORDS[] = {{"true", 1}, {"false", 0}};
const WORD_ROW SYNCHRONIZE_WORDS[] = {{"NTP", SYNCHRONIZE_NTP}, {"manually", SYNCHRONIZE_MANUALLY}};

// A text of the host's, which ends within its field.
template <size_t SIZE>
std::string TextOf(const char (&field)[SIZE])
{
    return std::string(field, strnlen(field, SIZE));
}

int Answer(CHttpProtocolAnalyse& response, NETNS::DEV_RET result)
{
    CQLXApiProc::CommonResp(response, result);
    return result == NETNS::DEV_RET_OK ? 0 : -1;
}

int Refuse(CHttpProtocolAnalyse& response)
{
    CQLXApiProc::CommonResp(response, QLX_API_ERR_BAD_PARAM);
    return -1;
}

int Answer(CHttpProtocolAnalyse& response, CQLXXMLParse& document)
{
    const std::string& body = *document.GetDoc();
    response.SetResPackage(STATUS_OK, body.c_str(), static_cast<int>(body.size()), "");
    return 0;
}

/// A text of the request into a field. @return false when it is too long; a missing one leaves the field alone
template <size_t SIZE>
bool ReadText(const CQLXXMLParse& body, const char* path, char (&field)[SIZE])
{
    std::string text;
    if (!body.GetValueStr(path, text))
    {
        return true;
    }
    if (text.size() > SIZE - 1)
    {
        return false;
    }
    std::memset(field, 0, SIZE);
    std::memcpy(field, text.data(), text.size());
    return true;
}

/// A word of the request into a number. @return false for any other word; a missing one leaves the number alone
template <size_t COUNT>
bool ReadWord(const CQLXXMLParse& body, const char* path, const WORD_ROW (&rows)[COUNT], std::uint32_t& value)
{
    std::string word;
    if (!body.GetValueStr(path, word))
    {
        return true;
    }
    for (const WORD_ROW& row : rows)
    {
        if (word == row.word)
        {
            value = row.value;
            return true;
        }
    }
    return false;
}

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
void FillIdList(CQLXXMLParse& document, const char* name, const unsigned int* ids, unsigned int count)
{
    const unsigned int root = document.AddElement("config", "", false);
    document.SetAttribute(root, "version", std::string("1.0"));
    document.SetAttribute(root, "xmlns", std::string(QLX_API_NAMESPACE));
    const unsigned int list = document.AddElement(root, name, "", false);
    document.SetAttribute(list, "type", std::string("list"));
    document.SetAttribute(list, "count", count);
    const unsigned int itemType = document.AddElement(list, "itemType", "", false);
    document.SetAttribute(itemType, "type", std::string("string"));
    document.SetAttribute(itemType, "maxLen", 20u);
    for (unsigned int i = 0; i < count; ++i)
    {
        document.AddValue(list, "item", ids != nullptr ? ids[i] : i);
    }
}

} // namespace

int CQLXApiProc::GetDeviceInfo(const std::string& ip, const CHttpProtocolAnalyse& request,
                               CHttpProtocolAnalyse& response)
{
    char verify[VERIFY_SIZE] = {};
    GetUserVerifyXml(ip, request, verify);
    NETNS::DEV_DEVICE_INFO info = {};
    const NETNS::DEV_RET result = m_dev->GetDevInfo(verify, &info);
    if (result != NETNS::DEV_RET_OK)
    {
        return Answer(response, result);
    }
    char buildDate[32];
    std::snprintf(buildDate, sizeof(buildDate), "%d-%d-%d", info.softwareBuildDate.year, info.softwareBuildDate.month,
                  info.softwareBuildDate.day);
    char mac[18];
    std::snprintf(mac, sizeof(mac), "%02x:%02x:%02x:%02x:%02x:%02x", info.mac[0], info.mac[1], info.mac[2], info.mac[3],
                  info.mac[4], info.mac[5]);

    CQLXXMLParse document(CQlxApiXmlFmt::GetDeviceInfo());
    document.SetValue("deviceInfo/model", TextOf(info.model), true);
    document.SetValue("deviceInfo/brand", TextOf(info.brand), true);
    document.SetValue("deviceInfo/deviceDescription", TextOf(info.description), true);
    document.SetValue("deviceInfo/audioInCount", info.audioInCount);
    document.SetValue("deviceInfo/audioOutCount", info.audioOutCount);
    bool supported = false;
    m_dev->GetIntegratedPtz(supported);
    if (supported)
    {
        document.SetValue("deviceInfo/integratedPtz", "true", false);
    }
    m_dev->GetSupportRS485Ptz(supported);
    if (supported)
    {
        document.SetValue("deviceInfo/supportRS485Ptz", "true", false);
    }
    m_dev->GetSupportSDCard(supported);
    if (supported)
    {
        document.SetValue("deviceInfo/supportSDCard", "true", false);
    }
    document.SetValue("deviceInfo/alarmInCount", info.alarmInCount);
    document.SetValue("deviceInfo/alarmOutCount", info.alarmOutCount);
    document.SetValue("deviceInfo/softwareVersion", TextOf(info.softwareVersion), true);
    document.SetValue("deviceInfo/softwareBuildDate", buildDate, true);
    document.SetValue("deviceInfo/kernelVersion", TextOf(info.kernelVersion), true);
    document.SetValue("deviceInfo/hardwareVersion", TextOf(info.hardwareVersion), true);
    document.SetValue("deviceInfo/mac", mac, true);
    return Answer(response, document);
}

int CQLXApiProc::Reboot(const std::string& ip, const CHttpProtocolAnalyse& request, CHttpProtocolAnalyse& response)
{
    char verify[VERIFY_SIZE] = {};
    GetUserVerifyXml(ip, request, verify);
    return Answer(response, m_dev->Reboot(verify));
}

int CQLXApiProc::GetDateAndTime(const std::string& ip, const CHttpProtocolAnalyse& request,
                                CHttpProtocolAnalyse& response)
{
    char verify[VERIFY_SIZE] = {};
    GetUserVerifyXml(ip, request, verify);
    NETNS::DEV_TIME_CONFIG config = {};
    const NETNS::DEV_RET result = m_dev->GetTimeConfig(verify, &config);
    if (result != NETNS::DEV_RET_OK)
    {
        return Answer(response, result);
    }
    char now[TIME_SIZE];
    Time2Str(static_cast<long>(std::time(nullptr)), now);

    // The texts go out as plain text, although the template holds CDATA sections.
    CQLXXMLParse document(CQlxApiXmlFmt::GetDateAndTime());
    document.SetValue("time/timezoneInfo/timeZone", TextOf(config.timeZone), false);
    document.SetValue("time/timezoneInfo/daylightSwitch", config.daylightSwitch != 0 ? "true" : "false", false);
    document.SetValue("time/synchronizeInfo/type", config.synchronizeType == SYNCHRONIZE_NTP ? "NTP" : "manually",
                      false);
    document.SetAttribute_i32("time/synchronizeInfo/ntpServer", "maxLen", m_dev->GetMaxLen(MAX_LEN_NTP_SERVER));
    document.SetValue("time/synchronizeInfo/ntpServer", TextOf(config.ntpServer), false);
    document.SetValue("time/synchronizeInfo/currentTime", now, false);
    return Answer(response, document);
}

int CQLXApiProc::SetDateAndTime(const std::string& ip, const CHttpProtocolAnalyse& request,
                                CHttpProtocolAnalyse& response)
{
    int length = 0;
    const char* const payload = request.GetPayLoad(length);
    if (length == 0)
    {
        return Refuse(response);
    }
    char verify[VERIFY_SIZE] = {};
    GetUserVerifyXml(ip, request, verify);
    NETNS::DEV_TIME_CONFIG config = {};
    const NETNS::DEV_RET result = m_dev->GetTimeConfig(verify, &config);
    if (result != NETNS::DEV_RET_OK)
    {
        return Answer(response, result);
    }
    const CQLXXMLParse body(payload, static_cast<unsigned int>(length));
    if (!ReadText(body, "time/timezoneInfo/timeZone", config.timeZone) ||
        !ReadWord(body, "time/timezoneInfo/daylightSwitch", BOOLEAN_WORDS, config.daylightSwitch) ||
        !ReadWord(body, "time/synchronizeInfo/type", SYNCHRONIZE_WORDS, config.synchronizeType) ||
        !ReadText(body, "time/synchronizeInfo/ntpServer", config.ntpServer))
    {
        return Refuse(response);
    }
    std::string currentTime;
    if (body.GetValueStr("time/synchronizeInfo/currentTime", currentTime))
    {
        NETNS::DEV_DATETIME time;
        if (!ReadDateTime(currentTime, time))
        {
            return Refuse(response);
        }
        m_dev->SetDateTime(verify, &time); // the clock first; it stays changed when the settings fail
    }
    return Answer(response, m_dev->SetTimeConfig(verify, &config));
}

// Clients send the desired password in both fields: they must hold the same text. Whose password it is, the host finds
// in the verification text.
int CQLXApiProc::ModifyPassword(const std::string& ip, const CHttpProtocolAnalyse& request,
                                CHttpProtocolAnalyse& response)
{
    int length = 0;
    const char* const payload = request.GetPayLoad(length);
    if (length == 0)
    {
        return Refuse(response);
    }
    char verify[VERIFY_SIZE] = {};
    GetUserVerifyXml(ip, request, verify);
    // Only to see that the host answers for this device at all; the list is not read.
    NETNS::DEV_USER_INFO users[USERS_MAX] = {};
    int count = 0;
    const NETNS::DEV_RET result = m_dev->GetUserList(users, USERS_MAX, count);
    if (result != NETNS::DEV_RET_OK)
    {
        return Answer(response, result);
    }
    const CQLXXMLParse body(payload, static_cast<unsigned int>(length));
    const std::string oldPassword = ReadPassword(body, "userPassword/oldPassword");
    const std::string password = ReadPassword(body, "userPassword/password");
    if (oldPassword != password)
    {
        return Refuse(response);
    }
    return Answer(response, m_dev->ModifyPassword(verify, password.c_str()));
}

int CQLXApiProc::GetChnList(const std::string& ip, const CHttpProtocolAnalyse& request, CHttpProtocolAnalyse& response)
{
    char verify[VERIFY_SIZE] = {};
    GetUserVerifyXml(ip, request, verify);
    unsigned int ids[CHANNELS_MAX] = {};
    int count = 0;
    const NETNS::DEV_RET result = m_dev->GetChannelIdList(verify, ids, CHANNELS_MAX, count);
    if (result != NETNS::DEV_RET_OK)
    {
        return Answer(response, result);
    }
    CQLXXMLParse document;
    FillIdList(document, "channelIDList", ids, static_cast<unsigned int>(std::clamp(count, 0, CHANNELS_MAX)));
    return Answer(response, document);
}

// No user is verified for the two alarm lists, and their items count from 0.
int CQLXApiProc::GetAlarmInList(const std::string& /*ip*/, const CHttpProtocolAnalyse& /*request*/,
                                CHttpProtocolAnalyse& response)
{
    CQLXXMLParse document;
    FillIdList(document, "alarmInIDList", nullptr, CAlarmServer::Instance().GetSensorNum());
    return Answer(response, document);
}

int CQLXApiProc::GetAlarmOutList(const std::string& /*ip*/, const CHttpProtocolAnalyse& /*request*/,
                                 CHttpProtocolAnalyse& response)
{
    CQLXXMLParse document;
    // Clients find the outputs under the name of the input list, too.
    FillIdList(document, "alarmInIDList", nullptr, CAlarmServer::Instance().GetAlarmOutNum());
    return Answer(response, document);
}
