#include "AlarmBoard.h"

#include <algorithm>
#include <iterator>
#include <utility>

using namespace NETNS;

namespace
{

constexpr std::uint64_t SECOND_MS = 1000;
constexpr std::uint32_t NORMALLY_CLOSED = 1;

template <class Config>
bool Triggers(const Config& config, unsigned int output)
{
    const std::uint32_t* const end =
        config.alarmOuts + std::min<std::size_t>(config.alarmOutCount, std::size(config.alarmOuts));
    return std::find(config.alarmOuts, end, output) != end;
}

} // namespace

CAlarmBoard::CAlarmBoard(std::function<void(const AlarmEdge&)> onEdge) : m_onEdge(std::move(onEdge)) {}

void CAlarmBoard::Configure(const DeviceSettings& settings)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    m_motionConfig = settings.motion;
    std::copy(std::begin(settings.sensors), std::end(settings.sensors), m_sensorConfigs);
    std::copy(std::begin(settings.alarmOuts), std::end(settings.alarmOuts), m_outputConfigs);
}

void CAlarmBoard::SetMoving(bool moving, std::uint64_t nowMs)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    m_moving = moving;
    TickLocked(nowMs);
}

bool CAlarmBoard::SetContact(unsigned int id, bool closed, std::uint64_t nowMs)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    if (id >= SENSOR_COUNT)
    {
        return false;
    }
    m_contacts[id] = closed;
    TickLocked(nowMs);
    return true;
}

void CAlarmBoard::SetVideoLoss(bool lost)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    if (std::exchange(m_videoLoss, lost) != lost)
    {
        m_onEdge({AlarmKind::VideoLoss, 0, lost});
    }
}

bool CAlarmBoard::SwitchOutput(unsigned int id, bool on)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    if (id >= ALARM_OUT_COUNT)
    {
        return false;
    }
    m_manual[id] = on;
    m_outputs[id] = on;
    m_outputUntilMs[id] = 0; // switched off by hand is off, until an alarm triggers it anew
    return true;
}

void CAlarmBoard::Tick(std::uint64_t nowMs)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    TickLocked(nowMs);
}

bool CAlarmBoard::IsSensorTriggered(unsigned int id) const
{
    return m_contacts[id] != (m_sensorConfigs[id].voltage == NORMALLY_CLOSED);
}

void CAlarmBoard::TickLocked(std::uint64_t nowMs)
{
    Update(m_motion, m_moving, m_motionConfig.motionSwitch != 0, m_motionConfig.alarmHoldTime,
           {AlarmKind::Motion, 0, false}, nowMs);
    for (unsigned int id = 0; id < SENSOR_COUNT; ++id)
    {
        const DEV_SENSOR_CONFIG& config = m_sensorConfigs[id];
        Update(m_sensors[id], IsSensorTriggered(id), config.sensorSwitch != 0, config.alarmHoldTime,
               {AlarmKind::Sensor, id, false}, nowMs);
    }
    UpdateOutputs(nowMs);
}

void CAlarmBoard::Update(Alarm& alarm, bool cause, bool enabled, std::uint32_t holdSeconds, AlarmEdge edge,
                         std::uint64_t nowMs)
{
    if (cause)
    {
        alarm.lastCauseMs = nowMs;
    }
    const bool held = alarm.active && nowMs - alarm.lastCauseMs < holdSeconds * SECOND_MS;
    const bool active = enabled && (cause || held);
    if (std::exchange(alarm.active, active) != active)
    {
        edge.active = active;
        m_onEdge(edge);
    }
}

void CAlarmBoard::UpdateOutputs(std::uint64_t nowMs)
{
    for (unsigned int id = 0; id < ALARM_OUT_COUNT; ++id)
    {
        bool triggered = m_motion.active && Triggers(m_motionConfig, id);
        for (unsigned int sensor = 0; sensor < SENSOR_COUNT; ++sensor)
        {
            triggered = triggered || (m_sensors[sensor].active && Triggers(m_sensorConfigs[sensor], id));
        }
        if (triggered)
        {
            m_outputUntilMs[id] = nowMs + m_outputConfigs[id].alarmHoldTime * SECOND_MS;
        }
        m_outputs[id] = m_manual[id] || triggered || nowMs < m_outputUntilMs[id];
    }
}

CAlarmBoard::State CAlarmBoard::Read() const
{
    const std::lock_guard<std::mutex> guard(m_lock);
    State state = {};
    state.motion = m_motion.active;
    state.videoLoss = m_videoLoss;
    for (unsigned int id = 0; id < SENSOR_COUNT; ++id)
    {
        state.sensors[id] = m_sensors[id].active;
        state.contacts[id] = m_contacts[id];
    }
    std::copy(std::begin(m_outputs), std::end(m_outputs), state.outputs);
    return state;
}
