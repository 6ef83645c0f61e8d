// CameraDevice.h: the camera as the library's clients see it through the XML API and RTSP.
//
// Called on HTTP workers and on the RTSP scheduler at the same time; one lock guards what can change.
#pragma once

#include "CameraUsers.h"
#include "DefaultHost.h"

#include <functional>
#include <mutex>

class CCameraDevice : public CDefaultDevice
{
public:
    /// @param users           borrowed for the device's life
    /// @param requestKeyFrame makes the next frame of every stream a key frame
    /// @param reboot          stops and starts the camera soon; returns at once
    CCameraDevice(const CameraOptions& options, CCameraUsers& users, std::function<void()> requestKeyFrame,
                  std::function<void()> reboot);

    NETNS::DEV_RET GetUserList(NETNS::DEV_USER_INFO* list, int max, int& count) override;
    NETNS::DEV_RET GetDevInfo(const char* verify, NETNS::DEV_DEVICE_INFO* info) override;
    /// Kept until the program ends.
    NETNS::DEV_RET GetTimeConfig(const char* verify, NETNS::DEV_TIME_CONFIG* config) override;
    NETNS::DEV_RET SetTimeConfig(const char* verify, const NETNS::DEV_TIME_CONFIG* config) override;
    /// Refuses: the clock is the machine's.
    NETNS::DEV_RET SetDateTime(const char* verify, const NETNS::DEV_DATETIME* time) override;
    NETNS::DEV_RET RequestKeyFrame(const char* verify, unsigned int chn) override;
    bool NeedAuthorization() override;
    /// Refuses a password that some kind of login could not carry.
    NETNS::DEV_RET ModifyPassword(const char* verify, const char* newPassword) override;
    NETNS::DEV_RET Reboot(const char* verify) override;
    NETNS::DEV_RET GetChannelIdList(const char* verify, unsigned int* ids, int max, int& count) override;
    int GetMaxLen(int kind) override;

private:
    const unsigned int m_channels;
    const bool m_rtspAuth;
    CCameraUsers& m_users;
    const std::function<void()> m_requestKeyFrame;
    const std::function<void()> m_reboot;

    std::mutex m_lock;
    NETNS::DEV_TIME_CONFIG m_timeConfig = {};
};
