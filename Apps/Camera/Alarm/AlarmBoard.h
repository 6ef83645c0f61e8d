// AlarmBoard.h: the state of motion, sensors, video loss and alarm outputs, and their edges.
//
// Any thread. Time comes from the callers, in milliseconds of one steady clock.
#pragma once

#include "DeviceSettings.h"

#include <cstdint>
#include <functional>
#include <mutex>

enum class AlarmKind
{
    Motion,
    Sensor,
    VideoLoss,
};

struct AlarmEdge
{
    AlarmKind kind;
    unsigned int id; ///< the sensor's; 0 for the others
    bool active;
};

/// An alarm begins with its cause and ends when the cause has been away for the hold time. What it triggers goes with
/// it: an output is on while the alarm lasts and for the output's own hold time afterwards.
class CAlarmBoard
{
public:
    /// @param onEdge  called with each beginning and each end, in order, under the board's lock: must not call back
    explicit CAlarmBoard(std::function<void(const AlarmEdge&)> onEdge);

    /// Takes the settings over; a switched-off alarm ends with the next Tick.
    void Configure(const DeviceSettings& settings);

    void SetMoving(bool moving, std::uint64_t nowMs);
    /// @param closed  the contact of the sensor; the voltage setting says whether that is the alarm
    bool SetContact(unsigned int id, bool closed, std::uint64_t nowMs);
    void SetVideoLoss(bool lost);
    bool SwitchOutput(unsigned int id, bool on);

    /// Ends what has lasted long enough. Called several times a second.
    void Tick(std::uint64_t nowMs);

    struct State
    {
        bool motion;
        bool videoLoss;
        bool sensors[SENSOR_COUNT];
        bool contacts[SENSOR_COUNT]; ///< closed
        bool outputs[ALARM_OUT_COUNT];
    };
    State Read() const;

private:
    struct Alarm
    {
        bool active = false;
        std::uint64_t lastCauseMs = 0;
    };

    bool IsSensorTriggered(unsigned int id) const;
    void Update(Alarm& alarm, bool cause, bool enabled, std::uint32_t holdSeconds, AlarmEdge edge, std::uint64_t nowMs);
    void TickLocked(std::uint64_t nowMs);
    void UpdateOutputs(std::uint64_t nowMs);

    const std::function<void(const AlarmEdge&)> m_onEdge;

    mutable std::mutex m_lock;
    NETNS::DEV_MOTION_CONFIG m_motionConfig = {};
    NETNS::DEV_SENSOR_CONFIG m_sensorConfigs[SENSOR_COUNT] = {};
    NETNS::DEV_ALARM_OUT_CONFIG m_outputConfigs[ALARM_OUT_COUNT] = {};
    bool m_moving = false;
    bool m_videoLoss = false;
    bool m_contacts[SENSOR_COUNT] = {};
    Alarm m_motion;
    Alarm m_sensors[SENSOR_COUNT];
    bool m_manual[ALARM_OUT_COUNT] = {};
    std::uint64_t m_outputUntilMs[ALARM_OUT_COUNT] = {};
    bool m_outputs[ALARM_OUT_COUNT] = {};
};
