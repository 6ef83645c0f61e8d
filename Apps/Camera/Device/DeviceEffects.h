// DeviceEffects.h: what the device makes happen in the rest of the camera.
#pragma once

#include "DeviceSettings.h"
#include "SettingsStore.h"

/// Called on HTTP workers, one at a time: returns soon and does not call the device back.
class CDeviceEffects
{
public:
    virtual ~CDeviceEffects() = default;

    /// The settings of the topic have changed and are stored.
    virtual void SettingsChanged(SettingsTopic topic, const DeviceSettings& settings) = 0;

    /// Makes the next frame of every stream a key frame.
    virtual void RequestKeyFrames() = 0;

    /// Stops and starts the camera's services soon; returns at once.
    virtual void Reboot() = 0;
};
