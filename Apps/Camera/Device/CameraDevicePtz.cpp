// The digital head: movements, presets, cruises. What is refused without a head is refused by the library.
#include "CameraDevice.h"

#include "RecordTime.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

using namespace NETNS;

namespace
{

constexpr std::uint32_t PRESET_MAX = 64;
constexpr std::uint32_t CRUISE_MAX = 12; // as many rows as clients are given
constexpr std::uint32_t CRUISE_PRESET_MAX = 32;
constexpr std::uint32_t HOLD_TIME_MAX = 120; // seconds
constexpr std::size_t PRESET_NAME_MAX = 11;
constexpr std::size_t CRUISE_NAME_MAX = 30;
constexpr std::uint32_t PROTOCOLS = 9;
constexpr std::uint32_t BAUD_RATES[] = {0,    110,  300,   600,   1200,  2400,
                                        4800, 9600, 19200, 38400, 57600, 115200}; // 0: not named
constexpr std::uint32_t ADDRESS_MAX = 255;
constexpr std::uint32_t LENS_MAX = 100;
constexpr int GOTO_SPEED = static_cast<int>(PTZ_SPEED_MAX);

template <class Rows>
auto FindById(Rows& rows, int id)
{
    return std::find_if(rows.begin(), rows.end(),
                        [id](const auto& row) { return id > 0 && row.id == static_cast<unsigned int>(id); });
}

/// The smallest id, from 1 on, that no row has. Keeps the rows in the order of their ids.
template <class Rows, class Row>
void AddWithNewId(Rows& rows, Row row)
{
    row.id = 1;
    auto at = rows.begin();
    while (at != rows.end() && at->id == row.id)
    {
        ++row.id;
        ++at;
    }
    rows.insert(at, row);
}

bool IsName(const char* name, std::size_t longest)
{
    return name != nullptr && name[0] != '\0' && std::strlen(name) <= longest;
}

DEV_RET TakePoints(const DeviceSettings& settings, const DEV_PTZ_CRUISE_POINT* list, int count, PtzCruise& cruise)
{
    if (count < 0 || static_cast<std::uint32_t>(count) > CRUISE_PRESET_MAX)
    {
        return DEV_RET_BAD_PARAM;
    }
    cruise.points.clear();
    for (const DEV_PTZ_CRUISE_POINT* point = list; point != list + count; ++point)
    {
        const bool good = FindById(settings.presets, point->presetId) != settings.presets.end() &&
                          point->speed >= PTZ_SPEED_MIN && point->speed <= PTZ_SPEED_MAX &&
                          point->holdTime <= HOLD_TIME_MAX;
        if (!good)
        {
            return DEV_RET_BAD_PARAM;
        }
        cruise.points.push_back({point->presetId, point->speed, point->holdTime});
    }
    return DEV_RET_OK;
}

} // namespace

DEV_RET CCameraDevice::GetIntegratedPtz(bool& supported)
{
    supported = m_options.ptz == PtzSupport::Integrated || m_options.ptz == PtzSupport::Both;
    return DEV_RET_OK;
}

DEV_RET CCameraDevice::GetSupportRS485Ptz(bool& supported)
{
    supported = m_options.ptz == PtzSupport::Rs485 || m_options.ptz == PtzSupport::Both;
    return DEV_RET_OK;
}

DEV_RET CCameraDevice::GetPtzPresetCaps(const char* verify, unsigned int chn, DEV_PTZ_PRESET_CAPS* caps)
{
    const DEV_RET checked = Check(verify, chn);
    if (checked == DEV_RET_OK)
    {
        *caps = {PTZ_SPEED_MIN, PTZ_SPEED_MAX, PRESET_MAX};
    }
    return checked;
}

DEV_RET CCameraDevice::GetPtzCruiseCaps(const char* verify, unsigned int chn, DEV_PTZ_CRUISE_CAPS* caps)
{
    const DEV_RET checked = Check(verify, chn);
    if (checked == DEV_RET_OK)
    {
        *caps = {CRUISE_MAX, PTZ_SPEED_MIN, PTZ_SPEED_MAX, HOLD_TIME_MAX, CRUISE_PRESET_MAX};
    }
    return checked;
}

DEV_RET CCameraDevice::GetPtzProtocol(const char* verify, unsigned int chn, DEV_PTZ_PROTOCOL* protocol)
{
    return Read(Check(verify, chn), protocol, &DeviceSettings::ptzProtocol);
}

DEV_RET CCameraDevice::SetPtzProtocol(const char* verify, unsigned int chn, const DEV_PTZ_PROTOCOL* protocol)
{
    return Apply(Check(verify, chn), SettingsTopic::PtzProtocol,
                 [protocol](DeviceSettings& settings)
                 {
                     settings.ptzProtocol = *protocol;
                     const bool good = protocol->protocol < PROTOCOLS && protocol->address <= ADDRESS_MAX &&
                                       std::find(std::begin(BAUD_RATES), std::end(BAUD_RATES), protocol->baudRate) !=
                                           std::end(BAUD_RATES);
                     return good ? DEV_RET_OK : DEV_RET_BAD_PARAM;
                 });
}

DEV_RET CCameraDevice::PtzControl(const char* verify, unsigned int chn, int command, int speed)
{
    const DEV_RET checked = Check(verify, chn);
    if (checked != DEV_RET_OK)
    {
        return checked;
    }
    if (command < static_cast<int>(PtzCommand::Up) || command > static_cast<int>(PtzCommand::Stop))
    {
        return DEV_RET_BAD_PARAM;
    }
    m_tour.Stop();
    const auto known = static_cast<PtzCommand>(command);
    const int step = std::clamp(speed, static_cast<int>(PTZ_SPEED_MIN), static_cast<int>(PTZ_SPEED_MAX));
    switch (known)
    {
    case PtzCommand::Near:
        return MoveLens(&DeviceSettings::focus, -step);
    case PtzCommand::Far:
        return MoveLens(&DeviceSettings::focus, step);
    case PtzCommand::IrisOpen:
        return MoveLens(&DeviceSettings::iris, step);
    case PtzCommand::IrisClose:
        return MoveLens(&DeviceSettings::iris, -step);
    default:
        m_parts.head.Control(known, speed, SteadyClockUs());
        return DEV_RET_OK;
    }
}

DEV_RET CCameraDevice::MoveLens(std::uint32_t DeviceSettings::*member, int step)
{
    return Apply(DEV_RET_OK, SettingsTopic::PtzLens,
                 [member, step](DeviceSettings& settings)
                 {
                     const int moved = static_cast<int>(settings.*member) + step;
                     settings.*member = static_cast<std::uint32_t>(std::clamp(moved, 0, static_cast<int>(LENS_MAX)));
                     return DEV_RET_OK;
                 });
}

DEV_RET CCameraDevice::PtzGotoPreset(const char* verify, unsigned int chn, int index)
{
    const DEV_RET checked = Check(verify, chn);
    if (checked != DEV_RET_OK)
    {
        return checked;
    }
    const DeviceSettings settings = Settings();
    const auto preset = FindById(settings.presets, index);
    if (preset == settings.presets.end())
    {
        return DEV_RET_BAD_PARAM;
    }
    m_tour.Stop();
    m_parts.head.GoTo(preset->view, GOTO_SPEED, SteadyClockUs());
    return DEV_RET_OK;
}

DEV_RET CCameraDevice::PtzGetPresets(const char* verify, unsigned int chn, DEV_PTZ_PRESET* list, int max, int& count)
{
    count = 0;
    const DEV_RET checked = Check(verify, chn);
    if (checked == DEV_RET_OK)
    {
        for (const PtzPreset& preset : Settings().presets)
        {
            if (count < max)
            {
                DEV_PTZ_PRESET& row = list[count++];
                row = {};
                row.id = static_cast<std::uint8_t>(preset.id);
                std::snprintf(row.name, sizeof(row.name), "%s", preset.name.c_str());
            }
        }
    }
    return checked;
}

DEV_RET CCameraDevice::PtzAddPreset(const char* verify, unsigned int chn, const char* name)
{
    return Apply(Check(verify, chn), SettingsTopic::Presets,
                 [this, name](DeviceSettings& settings)
                 {
                     if (!IsName(name, PRESET_NAME_MAX) || settings.presets.size() >= PRESET_MAX)
                     {
                         return DEV_RET_BAD_PARAM;
                     }
                     AddWithNewId(settings.presets, PtzPreset{0, name, m_parts.head.At(SteadyClockUs())});
                     return DEV_RET_OK;
                 });
}

DEV_RET CCameraDevice::PtzModifyPresetName(const char* verify, unsigned int chn, int index, const char* name)
{
    return Apply(Check(verify, chn), SettingsTopic::Presets,
                 [index, name](DeviceSettings& settings)
                 {
                     const auto preset = FindById(settings.presets, index);
                     if (preset == settings.presets.end() || !IsName(name, PRESET_NAME_MAX))
                     {
                         return DEV_RET_BAD_PARAM;
                     }
                     preset->name = name;
                     return DEV_RET_OK;
                 });
}

DEV_RET CCameraDevice::PtzDeletePreset(const char* verify, unsigned int chn, int index)
{
    return Apply(Check(verify, chn), SettingsTopic::Presets,
                 [index](DeviceSettings& settings)
                 {
                     const auto preset = FindById(settings.presets, index);
                     if (preset == settings.presets.end())
                     {
                         return DEV_RET_BAD_PARAM;
                     }
                     settings.presets.erase(preset);
                     return DEV_RET_OK;
                 });
}

DEV_RET CCameraDevice::PtzModifyPresetPosition(const char* verify, unsigned int chn, int index)
{
    return Apply(Check(verify, chn), SettingsTopic::Presets,
                 [this, index](DeviceSettings& settings)
                 {
                     const auto preset = FindById(settings.presets, index);
                     if (preset == settings.presets.end())
                     {
                         return DEV_RET_BAD_PARAM;
                     }
                     preset->view = m_parts.head.At(SteadyClockUs());
                     return DEV_RET_OK;
                 });
}

DEV_RET CCameraDevice::PtzGetCruises(const char* verify, unsigned int chn, DEV_PTZ_CRUISE* list, int max, int& count)
{
    count = 0;
    const DEV_RET checked = Check(verify, chn);
    if (checked == DEV_RET_OK)
    {
        for (const PtzCruise& cruise : Settings().cruises)
        {
            if (count < max)
            {
                DEV_PTZ_CRUISE& row = list[count++];
                row = {};
                row.id = static_cast<std::uint8_t>(cruise.id);
                std::snprintf(row.name, sizeof(row.name), "%s", cruise.name.c_str());
            }
        }
    }
    return checked;
}

DEV_RET CCameraDevice::PtzGetCruisePoints(const char* verify, unsigned int chn, int index, DEV_PTZ_CRUISE_POINT* list,
                                          int max, int& count)
{
    count = 0;
    const DEV_RET checked = Check(verify, chn);
    if (checked != DEV_RET_OK)
    {
        return checked;
    }
    const DeviceSettings settings = Settings();
    const auto cruise = FindById(settings.cruises, index);
    if (cruise == settings.cruises.end())
    {
        return DEV_RET_BAD_PARAM;
    }
    for (const PtzCruisePoint& point : cruise->points)
    {
        if (count < max)
        {
            DEV_PTZ_CRUISE_POINT& row = list[count++];
            row = {};
            row.presetId = static_cast<std::uint8_t>(point.preset);
            row.speed = static_cast<std::uint8_t>(point.speed);
            row.holdTime = static_cast<std::uint8_t>(point.holdTime);
            const auto preset = FindById(settings.presets, row.presetId);
            std::snprintf(row.name, sizeof(row.name), "%s",
                          preset == settings.presets.end() ? "" : preset->name.c_str());
        }
    }
    return DEV_RET_OK;
}

DEV_RET CCameraDevice::PtzAddCruise(const char* verify, unsigned int chn, const char* name,
                                    const DEV_PTZ_CRUISE_POINT* list, int count)
{
    return Apply(Check(verify, chn), SettingsTopic::Cruises,
                 [name, list, count](DeviceSettings& settings)
                 {
                     if (!IsName(name, CRUISE_NAME_MAX) || settings.cruises.size() >= CRUISE_MAX)
                     {
                         return DEV_RET_BAD_PARAM;
                     }
                     PtzCruise cruise{0, name, {}};
                     const DEV_RET taken = TakePoints(settings, list, count, cruise);
                     AddWithNewId(settings.cruises, cruise);
                     return taken;
                 });
}

DEV_RET CCameraDevice::PtzModifyCruise(const char* verify, unsigned int chn, int index, const char* name,
                                       const DEV_PTZ_CRUISE_POINT* list, int count)
{
    return Apply(Check(verify, chn), SettingsTopic::Cruises,
                 [index, name, list, count](DeviceSettings& settings)
                 {
                     const auto cruise = FindById(settings.cruises, index);
                     if (cruise == settings.cruises.end() || !IsName(name, CRUISE_NAME_MAX))
                     {
                         return DEV_RET_BAD_PARAM;
                     }
                     cruise->name = name;
                     return TakePoints(settings, list, count, *cruise);
                 });
}

DEV_RET CCameraDevice::PtzDeleteCruise(const char* verify, unsigned int chn, int index)
{
    return Apply(Check(verify, chn), SettingsTopic::Cruises,
                 [index](DeviceSettings& settings)
                 {
                     const auto cruise = FindById(settings.cruises, index);
                     if (cruise == settings.cruises.end())
                     {
                         return DEV_RET_BAD_PARAM;
                     }
                     settings.cruises.erase(cruise);
                     return DEV_RET_OK;
                 });
}

DEV_RET CCameraDevice::PtzRunCruise(const char* verify, unsigned int chn, int index)
{
    const DEV_RET checked = Check(verify, chn);
    if (checked != DEV_RET_OK)
    {
        return checked;
    }
    const DeviceSettings settings = Settings();
    const auto cruise = FindById(settings.cruises, index);
    std::vector<PtzTourStop> stops;
    if (cruise != settings.cruises.end())
    {
        for (const PtzCruisePoint& point : cruise->points)
        {
            // A preset that was deleted since is passed by.
            const auto preset = FindById(settings.presets, static_cast<int>(point.preset));
            if (preset != settings.presets.end())
            {
                stops.push_back({preset->view, static_cast<int>(point.speed), point.holdTime});
            }
        }
    }
    if (stops.empty())
    {
        return DEV_RET_BAD_PARAM;
    }
    m_tour.Start(std::move(stops));
    return DEV_RET_OK;
}

DEV_RET CCameraDevice::PtzStopCruise(const char* verify, unsigned int chn)
{
    const DEV_RET checked = Check(verify, chn);
    if (checked == DEV_RET_OK)
    {
        m_tour.Stop();
    }
    return checked;
}
