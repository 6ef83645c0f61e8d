// Alarms: motion, sensors, outputs, and the camera's own request that switches the simulated ones.
#include "CameraDevice.h"

#include "ControlRequest.h"
#include "RecordTime.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

using namespace NETNS;

namespace
{

constexpr std::int32_t SENSITIVITY_MIN = 1;
constexpr std::int32_t SENSITIVITY_MAX = 8;
constexpr std::uint32_t HOLD_TIME_MAX = 600; // seconds
constexpr std::uint64_t MS_US = 1000;

std::uint64_t NowMs()
{
    return SteadyClockUs() / MS_US;
}

bool IsWithin(int id, unsigned int count)
{
    return id >= 0 && static_cast<unsigned int>(id) < count;
}

template <class Config>
bool AreOutputsKnown(const Config& config)
{
    const std::size_t room = std::size(config.alarmOuts);
    return config.alarmOutCount <= room && std::all_of(config.alarmOuts, config.alarmOuts + config.alarmOutCount,
                                                       [](std::uint32_t id) { return id < ALARM_OUT_COUNT; });
}

const char* Word(bool yes)
{
    return yes ? "true" : "false";
}

char* NewText(const std::string& text)
{
    char* const buffer = new char[text.size() + 1];
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return buffer;
}

template <std::size_t N>
void EndText(char (&field)[N])
{
    field[N - 1] = '\0';
}

} // namespace

DEV_RET CCameraDevice::GetMotionParam(const char* verify, unsigned int chn, DEV_MOTION_CONFIG* config)
{
    return Read(Check(verify, chn), config, &DeviceSettings::motion);
}

DEV_RET CCameraDevice::GetMotionCaps(const char* verify, unsigned int chn, DEV_MOTION_CAPS* caps)
{
    const DEV_RET checked = Check(verify, chn);
    if (checked == DEV_RET_OK)
    {
        *caps = {SENSITIVITY_MIN, SENSITIVITY_MAX};
    }
    return checked;
}

DEV_RET CCameraDevice::SetMotionParam(const char* verify, unsigned int chn, const DEV_MOTION_CONFIG* config)
{
    return Apply(Check(verify, chn), SettingsTopic::Motion,
                 [config](DeviceSettings& settings)
                 {
                     const bool good = config->motionSwitch <= 1 && config->sensitivity >= SENSITIVITY_MIN &&
                                       config->sensitivity <= SENSITIVITY_MAX &&
                                       config->alarmHoldTime <= HOLD_TIME_MAX && AreOutputsKnown(*config);
                     settings.motion = *config;
                     settings.motion.rows = MOTION_ROWS;
                     settings.motion.columns = MOTION_COLUMNS;
                     for (DEV_MOTION_ROW& row : settings.motion.area)
                     {
                         row.cells &= (std::uint64_t{1} << MOTION_COLUMNS) - 1;
                     }
                     return good ? DEV_RET_OK : DEV_RET_BAD_PARAM;
                 });
}

DEV_RET CCameraDevice::GetSensorConfig(const char* verify, int id, DEV_SENSOR_CONFIG* config)
{
    const DEV_RET checked = CheckUser(verify);
    if (checked == DEV_RET_OK && !IsWithin(id, SENSOR_COUNT))
    {
        return DEV_RET_BAD_PARAM;
    }
    if (checked == DEV_RET_OK)
    {
        *config = Settings().sensors[id];
    }
    return checked;
}

DEV_RET CCameraDevice::SetSensorConfig(const char* verify, int id, const DEV_SENSOR_CONFIG* config)
{
    return Apply(CheckUser(verify), SettingsTopic::Sensors,
                 [id, config](DeviceSettings& settings)
                 {
                     const bool good = IsWithin(id, SENSOR_COUNT) && config->sensorSwitch <= 1 &&
                                       config->voltage <= 1 && config->alarmHoldTime <= HOLD_TIME_MAX &&
                                       AreOutputsKnown(*config);
                     if (!good)
                     {
                         return DEV_RET_BAD_PARAM;
                     }
                     settings.sensors[id] = *config;
                     settings.sensors[id].id = static_cast<std::uint32_t>(id);
                     EndText(settings.sensors[id].name);
                     return DEV_RET_OK;
                 });
}

DEV_RET CCameraDevice::ManualAlarmOut(const char* verify, int id, bool on)
{
    const DEV_RET checked = CheckUser(verify);
    if (checked == DEV_RET_OK &&
        (!IsWithin(id, ALARM_OUT_COUNT) || !m_parts.alarms.SwitchOutput(static_cast<unsigned int>(id), on)))
    {
        return DEV_RET_BAD_PARAM;
    }
    return checked;
}

DEV_RET CCameraDevice::GetAlarmOutConfig(const char* verify, int id, DEV_ALARM_OUT_CONFIG* config)
{
    const DEV_RET checked = CheckUser(verify);
    if (checked == DEV_RET_OK && !IsWithin(id, ALARM_OUT_COUNT))
    {
        return DEV_RET_BAD_PARAM;
    }
    if (checked == DEV_RET_OK)
    {
        *config = Settings().alarmOuts[id];
    }
    return checked;
}

DEV_RET CCameraDevice::SetAlarmOutConfig(const char* verify, int id, const DEV_ALARM_OUT_CONFIG* config)
{
    return Apply(CheckUser(verify), SettingsTopic::AlarmOuts,
                 [id, config](DeviceSettings& settings)
                 {
                     if (!IsWithin(id, ALARM_OUT_COUNT) || config->alarmHoldTime > HOLD_TIME_MAX)
                     {
                         return DEV_RET_BAD_PARAM;
                     }
                     settings.alarmOuts[id] = *config;
                     settings.alarmOuts[id].id = static_cast<std::uint32_t>(id);
                     EndText(settings.alarmOuts[id].name);
                     return DEV_RET_OK;
                 });
}

/// The same document as the library's own, with nothing active in it.
DEV_RET CCameraDevice::GetAlarmStatusXml(const char* verify, char*& xml, int& len)
{
    xml = nullptr;
    len = 0;
    const DEV_RET checked = CheckUser(verify);
    if (checked != DEV_RET_OK)
    {
        return checked;
    }
    std::string channels;
    std::string losses;
    for (unsigned int id = 0; id < m_options.channels; ++id)
    {
        const std::string end = " type=\"boolean\" id=\"" + std::to_string(id) + "\">false</";
        channels += "<motionAlarm" + end + "motionAlarm>";
        losses += "<videoLoss" + end + "videoLoss>";
    }
    std::string sensors = "<sensorAlarmIn type=\"list\" count=\"" + std::to_string(SENSOR_COUNT) + "\">";
    for (unsigned int id = 0; id < SENSOR_COUNT; ++id)
    {
        sensors += "<item id=\"" + std::to_string(id) + "\">false</item>";
    }
    const std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                             "<config version=\"1.0\" xmlns=\"http://www.qlx.example/ver10\"><alarmStatusInfo>" +
                             channels + losses + sensors + "</sensorAlarmIn></alarmStatusInfo></config>\n";
    xml = NewText(text);
    len = static_cast<int>(text.size());
    return DEV_RET_OK;
}

DEV_RET CCameraDevice::ProcHttpData(const char* message, int len, char*& body, int& bodyLen, int& status)
{
    body = nullptr;
    bodyLen = 0;
    const ControlRequest request = ReadControlRequest(message, len < 0 ? 0 : static_cast<std::size_t>(len));
    if (!request.isControl)
    {
        status = 404;
        return DEV_RET_NOT_SUPPORTED;
    }
    if (!m_parts.users.IsKnown(request.user, request.password))
    {
        status = 401;
        return DEV_RET_NO_RIGHT;
    }
    if (!Control(request))
    {
        status = 400;
        return DEV_RET_BAD_PARAM;
    }
    const std::string text = StateXml();
    body = NewText(text);
    bodyLen = static_cast<int>(text.size());
    status = 200;
    return DEV_RET_OK;
}

/// "sensor ID open", "sensor ID close", "output ID on", "output ID off" and "status"; all of them answer the state.
bool CCameraDevice::Control(const ControlRequest& request)
{
    const std::vector<std::string>& words = request.words;
    if (words.size() == 1)
    {
        return words[0] == "status";
    }
    const bool hasId = words.size() == 3 && words[1].size() == 1 && words[1][0] >= '0' && words[1][0] <= '9';
    if (!hasId)
    {
        return false;
    }
    const auto id = static_cast<unsigned int>(words[1][0] - '0');
    if (words[0] == "sensor" && (words[2] == "open" || words[2] == "close"))
    {
        return m_parts.alarms.SetContact(id, words[2] == "close", NowMs());
    }
    if (words[0] == "output" && (words[2] == "on" || words[2] == "off"))
    {
        return m_parts.alarms.SwitchOutput(id, words[2] == "on");
    }
    return false;
}

std::string CCameraDevice::StateXml()
{
    const CAlarmBoard::State alarms = m_parts.alarms.Read();
    const DeviceSettings settings = Settings();
    const PtzView view = m_parts.head.At(SteadyClockUs());
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<state>\n";
    text += std::string("\t<motion>") + Word(alarms.motion) + "</motion>\n";
    text += std::string("\t<videoLoss>") + Word(alarms.videoLoss) + "</videoLoss>\n";
    for (unsigned int id = 0; id < SENSOR_COUNT; ++id)
    {
        text += "\t<sensor id=\"" + std::to_string(id) + "\" contact=\"" + (alarms.contacts[id] ? "closed" : "open") +
                "\">" + Word(alarms.sensors[id]) + "</sensor>\n";
    }
    for (unsigned int id = 0; id < ALARM_OUT_COUNT; ++id)
    {
        text += "\t<output id=\"" + std::to_string(id) + "\">" + Word(alarms.outputs[id]) + "</output>\n";
    }
    char ptz[160];
    std::snprintf(ptz, sizeof(ptz),
                  "\t<ptz x=\"%.3f\" y=\"%.3f\" zoom=\"%.3f\" focus=\"%u\" iris=\"%u\" cruise=\"%s\"/>\n", view.x,
                  view.y, view.zoom, settings.focus, settings.iris, Word(m_tour.IsRunning()));
    return text + ptz + "</state>\n";
}
