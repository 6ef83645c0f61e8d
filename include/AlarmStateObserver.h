// AlarmStateObserver.h: what a host implements to hear of motion and alarm inputs of the cameras it has logged in to.
#pragma once

class CONVIFAlarmStateObserver
{
public:
    virtual ~CONVIFAlarmStateObserver() = default;

    /// Motion begins or ends. Runs on a thread of the library and must return quickly.
    /// @param token  of the camera's login
    virtual void OnMotionState(unsigned int token, bool state) = 0;

    /// An alarm input of the camera closes or opens; the same rules.
    /// @param index  1: all inputs of a camera count as one
    virtual void OnAlarmInState(unsigned int token, unsigned int index, bool state) = 0;
};
