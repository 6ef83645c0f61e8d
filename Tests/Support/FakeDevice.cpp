#include "FakeDevice.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <type_traits>

namespace
{

using Guard = std::lock_guard<std::recursive_mutex>;

template <typename ROW>
int Copy(const std::vector<ROW>& rows, ROW* out, int max)
{
    const int count = std::min(static_cast<int>(rows.size()), max);
    std::copy_n(rows.begin(), count, out);
    return count;
}

template <size_t SIZE>
void SetText(char (&field)[SIZE], const std::string& text)
{
    std::snprintf(field, SIZE, "%s", text.c_str());
}

// Values and records as the call log shows them: the fields in their order.
template <typename NUMBER, std::enable_if_t<std::is_arithmetic_v<NUMBER>, int> = 0>
std::string Shown(NUMBER number)
{
    return std::to_string(number);
}

std::string Shown(const char* text)
{
    return "\"" + std::string(text) + "\"";
}

std::string Shown(const std::string& text)
{
    return text;
}

// A text may fill its field without a zero byte.
template <size_t SIZE>
std::string TextOf(const char (&field)[SIZE])
{
    return std::string(field, strnlen(field, SIZE));
}

template <typename VALUE>
std::string ShownField(const VALUE& field)
{
    if constexpr (std::is_array_v<VALUE>)
        return "\"" + TextOf(field) + "\"";
    else
        return Shown(field);
}

template <typename... VALUES>
std::string Braced(const VALUES&... values)
{
    std::string text;
    ((text += (text.empty() ? "{" : " ") + ShownField(values)), ...);
    return text + "}";
}

std::string Shown(const NETNS::DEV_TIME_CONFIG& config)
{
    return Braced(config.synchronizeType, config.ntpServer, config.timeZone, config.daylightSwitch);
}

std::string Shown(const NETNS::DEV_DATETIME& time)
{
    return Braced(time.date.year, time.date.month, time.date.day, time.time.hour, time.time.minute, time.time.second);
}

std::string Shown(const NETNS::DEV_IMAGE_PARAM& image)
{
    return Braced(image.frequency, image.bright, image.contrast, image.hue, image.saturation, image.mirrorSwitch,
                  image.flipSwitch, image.irisSwitch, image.sharpenSwitch, image.sharpenValue, image.denoiseValue,
                  image.denoiseSwitch, image.whiteBalanceMode, image.red, image.blue, image.wdrSwitch, image.wdrValue,
                  image.irCutMode);
}

std::string Shown(const NETNS::DEV_VIDEO_PROFILE& profile)
{
    return Braced(profile.width, profile.height, profile.frameRate, profile.maxBitRate, profile.quality,
                  profile.encodeType, profile.encodeLevel, profile.gop);
}

std::string Shown(const NETNS::DEV_TIME_OSD& osd)
{
    return Braced(osd.osdSwitch, osd.x, osd.y, osd.dateFormat);
}

std::string Shown(const NETNS::DEV_CHANNEL_NAME_OSD& osd)
{
    return Braced(osd.osdSwitch, osd.x, osd.y, osd.name);
}

std::string Shown(const NETNS::DEV_PRIVACY_MASK& mask)
{
    return Braced(mask.maskSwitch, mask.x, mask.y, mask.width, mask.height, mask.color);
}

std::string Shown(const NETNS::DEV_PTZ_PROTOCOL& protocol)
{
    return Braced(protocol.baudRate, protocol.protocol, protocol.address);
}

std::string Shown(const NETNS::DEV_PTZ_CRUISE_POINT& point)
{
    return Braced(point.presetId, point.name, point.speed, point.holdTime);
}

template <typename ROW>
std::string Rows(const ROW* list, int count)
{
    std::string text = "[";
    for (int i = 0; i < count; ++i)
    {
        text += Shown(list[i]);
    }
    return text + "]";
}

std::string Cells(const NETNS::DEV_MOTION_CONFIG& config)
{
    std::string text = "[";
    for (const NETNS::DEV_MOTION_ROW& row : config.area)
    {
        text += (text.size() > 1 ? " " : "") + Shown(row.cells);
    }
    return text + "]";
}

std::string Ids(const std::uint32_t* ids, std::uint32_t count)
{
    std::string text = "[";
    for (std::uint32_t i = 0; i < count; ++i)
    {
        text += (i > 0 ? " " : "") + Shown(ids[i]);
    }
    return text + "]";
}

std::string Shown(const NETNS::DEV_MOTION_CONFIG& config)
{
    return Braced(config.motionSwitch, config.alarmHoldTime, config.sensitivity, Cells(config), config.columns,
                  config.rows, Ids(config.alarmOuts, config.alarmOutCount));
}

std::string Shown(const NETNS::DEV_SENSOR_CONFIG& config)
{
    return Braced(config.id, config.name, config.sensorSwitch, config.voltage, config.alarmHoldTime,
                  Ids(config.alarmOuts, config.alarmOutCount));
}

std::string Shown(const NETNS::DEV_ALARM_OUT_CONFIG& config)
{
    return Braced(config.id, config.name, config.alarmHoldTime);
}

std::string Shown(const NETNS::DEV_NET_BASIC& config)
{
    return Braced(config.ipSettingMode, config.staticIp, config.staticIpRoute, config.staticIpMask,
                  config.dnsFromDhcpSwitch, config.dnsServer1, config.dnsServer2);
}

std::string Shown(const NETNS::DEV_PPPOE& config)
{
    return Braced(config.pppoeSwitch, config.userName, config.password);
}

std::string Shown(const NETNS::DEV_PORT_INFO& info)
{
    return Braced(info.httpPort, info.netPort, info.rtspPort);
}

std::string Shown(const NETNS::DEV_DDNS& config)
{
    return Braced(config.ddnsSwitch, config.serverType, config.userName, config.password, config.domainName,
                  config.serverName);
}

// The text between two tags; empty when it is not there.
std::string Between(const std::string& xml, const std::string& begin, const std::string& end)
{
    const size_t from = xml.find(begin);
    const size_t to = xml.rfind(end);
    const bool found = from != std::string::npos && to != std::string::npos && to >= from + begin.size();
    return found ? xml.substr(from + begin.size(), to - from - begin.size()) : std::string();
}

} // namespace

CFakeDevice::CFakeDevice()
{
    AddUser("admin", "admin");
}

int CFakeDevice::Calls(const std::string& operation) const
{
    Guard guard(m_mutex);
    return static_cast<int>(std::count(m_calls.begin(), m_calls.end(), operation));
}

std::vector<std::string> CFakeDevice::CallOrder() const
{
    Guard guard(m_mutex);
    return m_calls;
}

std::vector<std::string> CFakeDevice::CallLog() const
{
    Guard guard(m_mutex);
    return m_log;
}

void CFakeDevice::ForgetCalls()
{
    Guard guard(m_mutex);
    m_calls.clear();
    m_log.clear();
}

std::string CFakeDevice::LastVerify() const
{
    Guard guard(m_mutex);
    return m_lastVerify;
}

unsigned int CFakeDevice::LastChannel() const
{
    Guard guard(m_mutex);
    return m_lastChannel;
}

int CFakeDevice::BuffersOut() const
{
    Guard guard(m_mutex);
    return m_buffersOut;
}

void CFakeDevice::Change(const std::function<void(CFakeDevice&)>& change)
{
    Guard guard(m_mutex);
    change(*this);
}

void CFakeDevice::AddUser(const std::string& name, const std::string& password)
{
    Guard guard(m_mutex);
    NETNS::DEV_USER_INFO user = {};
    SetText(user.userName, name);
    SetText(user.password, password);
    users.push_back(user);
}

NETNS::DEV_RET CFakeDevice::Enter(const char* operation)
{
    m_calls.emplace_back(operation);
    m_log.emplace_back(operation);
    const auto row = results.find(operation);
    return row != results.end() ? row->second : NETNS::DEV_RET_OK;
}

NETNS::DEV_RET CFakeDevice::Enter(const char* operation, const char* verify)
{
    m_lastVerify = verify;
    const NETNS::DEV_RET result = Enter(operation);
    return IsUser(m_lastVerify) ? result : NETNS::DEV_RET_NO_RIGHT;
}

NETNS::DEV_RET CFakeDevice::Enter(const char* operation, const char* verify, unsigned int chn)
{
    m_lastChannel = chn;
    const NETNS::DEV_RET result = Enter(operation, verify);
    Note(chn);
    return result;
}

template <typename... VALUES>
void CFakeDevice::Note(const VALUES&... values)
{
    std::ostringstream text;
    ((text << ' ' << Shown(values)), ...);
    m_log.back() += text.str();
}

template <typename ROW>
int CFakeDevice::Report(const char* operation, const std::vector<ROW>& rows, ROW* out, int max) const
{
    const int count = Copy(rows, out, max);
    const auto reported = counts.find(operation);
    return reported != counts.end() ? reported->second : count;
}

bool CFakeDevice::IsUser(const std::string& verify) const
{
    const std::string name = Between(verify, "<username>", "</username>");
    const std::string password = Between(verify, "<password>", "</password>");
    return std::any_of(users.begin(), users.end(),
                       [&](const NETNS::DEV_USER_INFO& user)
                       { return name == TextOf(user.userName) && password == TextOf(user.password); });
}

char* CFakeDevice::HandOut(const std::string& text, int& len)
{
    char* const buffer = new char[text.size() + 1];
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    len = static_cast<int>(text.size());
    ++m_buffersOut;
    return buffer;
}

NETNS::DEV_RET CFakeDevice::ProcHttpRequest(const std::string& /*request*/, int& /*status*/, std::string& /*response*/)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("ProcHttpRequest");
    return result;
}

NETNS::DEV_RET CFakeDevice::ProcHttpData(const char* message, int len, char*& body, int& bodyLen, int& status)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("ProcHttpData");
    lastHttpMessage.assign(message, static_cast<size_t>(len));
    status = httpStatus;
    if (httpAnswerIsNull)
    {
        return result;
    }
    body = HandOut(httpAnswer, bodyLen);
    return result;
}

NETNS::DEV_RET CFakeDevice::GetWebFile(const char* path, char*& buffer, int& len)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetWebFile");
    const auto file = webFiles.find(path);
    if (file == webFiles.end())
    {
        return NETNS::DEV_RET_FAILED;
    }
    std::ofstream(path, std::ios::binary) << file->second;
    buffer = HandOut("not looked at", len);
    return result;
}

NETNS::DEV_RET CFakeDevice::FreeBuffer(char*& buffer)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("FreeBuffer");
    m_buffersOut -= buffer != nullptr ? 1 : 0;
    delete[] buffer;
    buffer = nullptr;
    return result;
}

NETNS::DEV_RET CFakeDevice::GetIntegratedPtz(bool& supported)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetIntegratedPtz");
    supported = integratedPtz;
    return result;
}

NETNS::DEV_RET CFakeDevice::GetSupportRS485Ptz(bool& supported)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetSupportRS485Ptz");
    supported = rs485Ptz;
    return result;
}

NETNS::DEV_RET CFakeDevice::GetSupportSDCard(bool& supported)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetSupportSDCard");
    supported = sdCard;
    return result;
}

NETNS::DEV_RET CFakeDevice::GetUserList(NETNS::DEV_USER_INFO* list, int max, int& count)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetUserList");
    if (result == NETNS::DEV_RET_OK)
    {
        count = Report("GetUserList", users, list, max);
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::GetDevInfo(const char* verify, NETNS::DEV_DEVICE_INFO* info)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetDevInfo", verify);
    if (result == NETNS::DEV_RET_OK)
    {
        *info = deviceInfo;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::GetTimeConfig(const char* verify, NETNS::DEV_TIME_CONFIG* config)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetTimeConfig", verify);
    if (result == NETNS::DEV_RET_OK)
    {
        *config = timeConfig;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::SetTimeConfig(const char* verify, const NETNS::DEV_TIME_CONFIG* config)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("SetTimeConfig", verify);
    Note(*config);
    if (result == NETNS::DEV_RET_OK)
    {
        timeConfig = *config;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::SetDateTime(const char* verify, const NETNS::DEV_DATETIME* time)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("SetDateTime", verify);
    Note(*time);
    if (result == NETNS::DEV_RET_OK)
    {
        dateTime = *time;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::GetImageCaps(const char* verify, unsigned int chn, NETNS::DEV_IMAGE_CAPS* caps)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetImageCaps", verify, chn);
    if (result == NETNS::DEV_RET_OK)
    {
        *caps = imageCaps;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::GetImageParam(const char* verify, unsigned int chn, NETNS::DEV_IMAGE_PARAM* param)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetImageParam", verify, chn);
    if (result == NETNS::DEV_RET_OK)
    {
        *param = imageParam;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::SetImageParam(const char* verify, unsigned int chn, const NETNS::DEV_IMAGE_PARAM* param)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("SetImageParam", verify, chn);
    Note(*param);
    if (result == NETNS::DEV_RET_OK)
    {
        imageParam = *param;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::ImageReserved()
{
    Guard guard(m_mutex);
    return Enter("ImageReserved");
}

NETNS::DEV_RET CFakeDevice::GetVideoEncodeCaps(const char* verify, unsigned int chn, int profile,
                                               NETNS::DEV_VIDEO_ENCODE_CAPS* caps)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetVideoEncodeCaps", verify, chn);
    Note(profile);
    if (result == NETNS::DEV_RET_OK)
    {
        *caps = videoCaps[profile];
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::GetProfileName(const char* verify, unsigned int chn, int profile, char* name, int size,
                                           int& len)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetProfileName", verify, chn);
    Note(profile);
    if (result == NETNS::DEV_RET_OK)
    {
        len = std::snprintf(name, static_cast<size_t>(size), "%s", profileNames[profile].c_str());
    }
    return result;
}

int CFakeDevice::GetProfileCount(unsigned int chn)
{
    Guard guard(m_mutex);
    m_lastChannel = chn;
    Enter("GetProfileCount");
    Note(chn);
    return profileCount;
}

bool CFakeDevice::SupportAudioEncode(unsigned int chn, int type)
{
    Guard guard(m_mutex);
    m_lastChannel = chn;
    Enter("SupportAudioEncode");
    Note(chn, type);
    return audioType == type;
}

NETNS::DEV_RET CFakeDevice::SetAudioEncode(const char* verify, unsigned int chn, int type)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("SetAudioEncode", verify, chn);
    Note(type);
    if (result == NETNS::DEV_RET_OK)
    {
        audioType = type;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::GetVideoProfile(const char* verify, unsigned int chn, int profile,
                                            NETNS::DEV_VIDEO_PROFILE* config)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetVideoProfile", verify, chn);
    Note(profile);
    if (result == NETNS::DEV_RET_OK)
    {
        *config = videoProfiles[profile];
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::SetVideoProfile(const char* verify, unsigned int chn, int profile,
                                            const NETNS::DEV_VIDEO_PROFILE* config)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("SetVideoProfile", verify, chn);
    Note(profile, *config);
    if (result == NETNS::DEV_RET_OK)
    {
        videoProfiles[profile] = *config;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::RequestKeyFrame(const char* verify, unsigned int chn)
{
    Guard guard(m_mutex);
    return Enter("RequestKeyFrame", verify, chn);
}

bool CFakeDevice::NeedAuthorization()
{
    Guard guard(m_mutex);
    Enter("NeedAuthorization");
    return needAuthorization;
}

NETNS::DEV_RET CFakeDevice::GetTimeOsd(const char* verify, unsigned int chn, NETNS::DEV_TIME_OSD* osd)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetTimeOsd", verify, chn);
    if (result == NETNS::DEV_RET_OK)
    {
        *osd = timeOsd;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::GetChannelNameOsd(const char* verify, unsigned int chn, NETNS::DEV_CHANNEL_NAME_OSD* osd)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetChannelNameOsd", verify, chn);
    if (result == NETNS::DEV_RET_OK)
    {
        *osd = channelNameOsd;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::SetTimeOsd(const char* verify, unsigned int chn, NETNS::DEV_TIME_OSD osd)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("SetTimeOsd", verify, chn);
    Note(osd);
    if (result == NETNS::DEV_RET_OK)
    {
        timeOsd = osd;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::SetChannelNameOsd(const char* verify, unsigned int chn, NETNS::DEV_CHANNEL_NAME_OSD osd)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("SetChannelNameOsd", verify, chn);
    Note(osd);
    if (result == NETNS::DEV_RET_OK)
    {
        channelNameOsd = osd;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::GetPrivacyMask(const char* verify, unsigned int chn, NETNS::DEV_PRIVACY_MASK* list, int max,
                                           int& count)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetPrivacyMask", verify, chn);
    if (result == NETNS::DEV_RET_OK)
    {
        count = Report("GetPrivacyMask", privacyMasks, list, max);
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::SetPrivacyMask(const char* verify, unsigned int chn, const NETNS::DEV_PRIVACY_MASK* list,
                                           int count)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("SetPrivacyMask", verify, chn);
    Note(Rows(list, count));
    if (result == NETNS::DEV_RET_OK)
    {
        privacyMasks.assign(list, list + count);
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::GetPtzPresetCaps(const char* verify, unsigned int chn, NETNS::DEV_PTZ_PRESET_CAPS* caps)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetPtzPresetCaps", verify, chn);
    if (result == NETNS::DEV_RET_OK)
    {
        *caps = presetCaps;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::GetPtzCruiseCaps(const char* verify, unsigned int chn, NETNS::DEV_PTZ_CRUISE_CAPS* caps)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetPtzCruiseCaps", verify, chn);
    if (result == NETNS::DEV_RET_OK)
    {
        *caps = cruiseCaps;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::GetPtzProtocol(const char* verify, unsigned int chn, NETNS::DEV_PTZ_PROTOCOL* protocol)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetPtzProtocol", verify, chn);
    if (result == NETNS::DEV_RET_OK)
    {
        *protocol = ptzProtocol;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::SetPtzProtocol(const char* verify, unsigned int chn,
                                           const NETNS::DEV_PTZ_PROTOCOL* protocol)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("SetPtzProtocol", verify, chn);
    Note(*protocol);
    if (result == NETNS::DEV_RET_OK)
    {
        ptzProtocol = *protocol;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::PtzControl(const char* verify, unsigned int chn, int command, int speed)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("PtzControl", verify, chn);
    Note(command, speed);
    return result;
}

NETNS::DEV_RET CFakeDevice::PtzGotoPreset(const char* verify, unsigned int chn, int index)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("PtzGotoPreset", verify, chn);
    Note(index);
    return result;
}

NETNS::DEV_RET CFakeDevice::PtzGetPresets(const char* verify, unsigned int chn, NETNS::DEV_PTZ_PRESET* list, int max,
                                          int& count)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("PtzGetPresets", verify, chn);
    if (result == NETNS::DEV_RET_OK)
    {
        count = Report("PtzGetPresets", presets, list, max);
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::PtzReserved()
{
    Guard guard(m_mutex);
    return Enter("PtzReserved");
}

NETNS::DEV_RET CFakeDevice::PtzAddPreset(const char* verify, unsigned int chn, const char* name)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("PtzAddPreset", verify, chn);
    Note(name);
    return result;
}

NETNS::DEV_RET CFakeDevice::PtzModifyPresetName(const char* verify, unsigned int chn, int index, const char* name)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("PtzModifyPresetName", verify, chn);
    Note(index, name);
    return result;
}

NETNS::DEV_RET CFakeDevice::PtzDeletePreset(const char* verify, unsigned int chn, int index)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("PtzDeletePreset", verify, chn);
    Note(index);
    return result;
}

NETNS::DEV_RET CFakeDevice::PtzModifyPresetPosition(const char* verify, unsigned int chn, int index)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("PtzModifyPresetPosition", verify, chn);
    Note(index);
    return result;
}

NETNS::DEV_RET CFakeDevice::PtzGetCruises(const char* verify, unsigned int chn, NETNS::DEV_PTZ_CRUISE* list, int max,
                                          int& count)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("PtzGetCruises", verify, chn);
    if (result == NETNS::DEV_RET_OK)
    {
        count = Report("PtzGetCruises", cruises, list, max);
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::PtzGetCruisePoints(const char* verify, unsigned int chn, int index,
                                               NETNS::DEV_PTZ_CRUISE_POINT* list, int max, int& count)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("PtzGetCruisePoints", verify, chn);
    Note(index);
    if (result == NETNS::DEV_RET_OK)
    {
        count = Report("PtzGetCruisePoints", cruisePoints, list, max);
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::PtzAddCruise(const char* verify, unsigned int chn, const char* name,
                                         const NETNS::DEV_PTZ_CRUISE_POINT* list, int count)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("PtzAddCruise", verify, chn);
    Note(name, Rows(list, count));
    return result;
}

NETNS::DEV_RET CFakeDevice::PtzModifyCruise(const char* verify, unsigned int chn, int index, const char* name,
                                            const NETNS::DEV_PTZ_CRUISE_POINT* list, int count)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("PtzModifyCruise", verify, chn);
    Note(index, name, Rows(list, count));
    return result;
}

NETNS::DEV_RET CFakeDevice::PtzDeleteCruise(const char* verify, unsigned int chn, int index)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("PtzDeleteCruise", verify, chn);
    Note(index);
    return result;
}

NETNS::DEV_RET CFakeDevice::PtzRunCruise(const char* verify, unsigned int chn, int index)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("PtzRunCruise", verify, chn);
    Note(index);
    return result;
}

NETNS::DEV_RET CFakeDevice::PtzStopCruise(const char* verify, unsigned int chn)
{
    Guard guard(m_mutex);
    return Enter("PtzStopCruise", verify, chn);
}

NETNS::DEV_RET CFakeDevice::GetMotionParam(const char* verify, unsigned int chn, NETNS::DEV_MOTION_CONFIG* config)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetMotionParam", verify, chn);
    if (result == NETNS::DEV_RET_OK)
    {
        *config = motionConfig;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::GetMotionCaps(const char* verify, unsigned int chn, NETNS::DEV_MOTION_CAPS* caps)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetMotionCaps", verify, chn);
    if (result == NETNS::DEV_RET_OK)
    {
        *caps = motionCaps;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::SetMotionParam(const char* verify, unsigned int chn, const NETNS::DEV_MOTION_CONFIG* config)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("SetMotionParam", verify, chn);
    Note(*config);
    if (result == NETNS::DEV_RET_OK)
    {
        motionConfig = *config;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::GetSensorConfig(const char* verify, int id, NETNS::DEV_SENSOR_CONFIG* config)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetSensorConfig", verify);
    Note(id);
    if (result == NETNS::DEV_RET_OK)
    {
        *config = sensorConfig;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::SetSensorConfig(const char* verify, int id, const NETNS::DEV_SENSOR_CONFIG* config)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("SetSensorConfig", verify);
    Note(id, *config);
    if (result == NETNS::DEV_RET_OK)
    {
        sensorConfig = *config;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::ManualAlarmOut(const char* verify, int id, bool on)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("ManualAlarmOut", verify);
    Note(id, on);
    return result;
}

NETNS::DEV_RET CFakeDevice::GetAlarmOutConfig(const char* verify, int id, NETNS::DEV_ALARM_OUT_CONFIG* config)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetAlarmOutConfig", verify);
    Note(id);
    if (result == NETNS::DEV_RET_OK)
    {
        *config = alarmOutConfig;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::SetAlarmOutConfig(const char* verify, int id, const NETNS::DEV_ALARM_OUT_CONFIG* config)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("SetAlarmOutConfig", verify);
    Note(id, *config);
    if (result == NETNS::DEV_RET_OK)
    {
        alarmOutConfig = *config;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::GetAlarmStatusXml(const char* verify, char*& xml, int& len)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetAlarmStatusXml", verify);
    if (result == NETNS::DEV_RET_OK)
    {
        xml = HandOut(alarmStatusXml, len);
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::GetNetBasic(const char* verify, NETNS::DEV_NET_BASIC* config)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetNetBasic", verify);
    if (result == NETNS::DEV_RET_OK)
    {
        *config = netBasic;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::SetNetBasic(const char* verify, const NETNS::DEV_NET_BASIC* config)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("SetNetBasic", verify);
    Note(*config);
    if (result == NETNS::DEV_RET_OK)
    {
        netBasic = *config;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::GetPppoe(const char* verify, NETNS::DEV_PPPOE* config)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetPppoe", verify);
    if (result == NETNS::DEV_RET_OK)
    {
        *config = pppoe;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::SetPppoe(const char* verify, const NETNS::DEV_PPPOE* config)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("SetPppoe", verify);
    Note(*config);
    if (result == NETNS::DEV_RET_OK)
    {
        pppoe = *config;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::GetPortInfo(const char* verify, NETNS::DEV_PORT_INFO* info)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetPortInfo", verify);
    if (result == NETNS::DEV_RET_OK)
    {
        *info = portInfo;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::SetPortInfo(const char* verify, const NETNS::DEV_PORT_INFO* info)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("SetPortInfo", verify);
    Note(*info);
    if (result == NETNS::DEV_RET_OK)
    {
        portInfo = *info;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::GetDdns(const char* verify, NETNS::DEV_DDNS* config)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetDdns", verify);
    if (result == NETNS::DEV_RET_OK)
    {
        *config = ddns;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::SetDdns(const char* verify, const NETNS::DEV_DDNS* config)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("SetDdns", verify);
    Note(*config);
    if (result == NETNS::DEV_RET_OK)
    {
        ddns = *config;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::ModifyPassword(const char* verify, const char* password)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("ModifyPassword", verify);
    Note(password);
    if (result == NETNS::DEV_RET_OK)
    {
        newPassword = password;
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::Reboot(const char* verify)
{
    Guard guard(m_mutex);
    return Enter("Reboot", verify);
}

NETNS::DEV_RET CFakeDevice::GetChannelIdList(const char* verify, unsigned int* ids, int max, int& count)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("GetChannelIdList", verify);
    count = Report("GetChannelIdList", channelIds, ids, max);
    return result;
}

NETNS::DEV_RET CFakeDevice::SearchRecordDate(const char* verify, NETNS::DEV_DATE* list, int max, int& count)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("SearchRecordDate", verify);
    if (result == NETNS::DEV_RET_OK)
    {
        count = Report("SearchRecordDate", recordDates, list, max);
    }
    return result;
}

NETNS::DEV_RET CFakeDevice::SearchRecord(const char* verify, const NETNS::DEV_DATETIME* start,
                                         const NETNS::DEV_DATETIME* end, int channel, NETNS::DEV_RECORD_INFO* list,
                                         int max, int& count)
{
    Guard guard(m_mutex);
    const NETNS::DEV_RET result = Enter("SearchRecord", verify);
    Note(*start, *end, channel);
    if (result == NETNS::DEV_RET_OK)
    {
        count = Report("SearchRecord", records, list, max);
    }
    return result;
}

int CFakeDevice::GetMaxLen(int kind)
{
    Guard guard(m_mutex);
    Enter("GetMaxLen");
    return kind == 0 ? ntpServerMaxLen : 0;
}
