// AlarmStateObserver.h: what a host implements to hear of motion and alarm inputs of the cameras it has logged in to.
#pragma once

/// Hears of the alarms of one or more cameras, see ONVIF_CLIENT_AddAlarmStateObserver.
///
/// All operations run on one thread of the library, which serves all cameras: they must return quickly. They may add
/// and remove observers. Each tells a change; the state before the first call is false.
class CONVIFAlarmStateObserver
{
public:
    virtual ~CONVIFAlarmStateObserver() = default;

    /// Motion begins or ends. It ends by the camera's word or ten seconds after its last event.
    /// @param token  of the camera's login
    /// @param state  true: motion
    virtual void OnMotionState(unsigned int token, bool state) = 0;

    /// An alarm input of the camera closes or opens; it ends as motion does.
    /// @param token  of the camera's login
    /// @param index  1: all inputs and relays of a camera count as one
    /// @param state  true: alarm
    virtual void OnAlarmInState(unsigned int token, unsigned int index, bool state) = 0;
};
