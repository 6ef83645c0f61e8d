// BenchDevice.h: a device that keeps what it is told and shows it again, and does nothing else, so that a measurement
// of the API holds next to no time of the host's. Any thread.
#pragma once

#include "DefaultHost.h"

#include <cstdio>
#include <mutex>
#include <vector>

class BenchDevice : public CDefaultDevice
{
public:
    BenchDevice()
    {
        m_image = {1, 50, 50, 50, 50, 0, 0, 0, 1, 50, 30, 1, 0, 50, 50, 0, 128, 0};
        m_imageCaps.brightMax = m_imageCaps.contrastMax = m_imageCaps.saturationMax = m_imageCaps.hueMax = 100;
        m_imageCaps.redMax = m_imageCaps.blueMax = 100;
        m_videoCaps.encodeTypes[0] = 2;
        m_videoCaps.encodeTypeCount = 1;
        m_videoCaps.resolutions[0] = {1280, 720};
        m_videoCaps.resolutions[1] = {640, 360};
        m_videoCaps.resolutionCount = 2;
        m_videoCaps.frameRateMax = 25;
        m_videoCaps.gopMin = 1;
        m_videoCaps.gopMax = 250;
        m_videoCaps.encodeLevels[0] = 1;
        m_videoCaps.encodeLevels[1] = 2;
        m_videoCaps.encodeLevelCount = 2;
        m_videoCaps.bitRateMin = 64;
        m_videoCaps.bitRateMax = 8192;
        m_profiles[0] = {1280, 720, 25, 4000, 5, 2, 2, 50};
        m_profiles[1] = {640, 360, 15, 500, 3, 2, 1, 30};
        m_motion.columns = 22;
        m_motion.rows = 8;
    }

    NETNS::DEV_RET GetUserList(NETNS::DEV_USER_INFO* list, int, int& count) override
    {
        snprintf(list[0].userName, sizeof(list[0].userName), "admin");
        snprintf(list[0].password, sizeof(list[0].password), "admin");
        count = 1;
        return NETNS::DEV_RET_OK;
    }
    NETNS::DEV_RET GetDevInfo(const char*, NETNS::DEV_DEVICE_INFO* info) override
    {
        snprintf(info->model, sizeof(info->model), "Bench");
        snprintf(info->brand, sizeof(info->brand), "Netserver");
        snprintf(info->description, sizeof(info->description), "Benchmark host");
        snprintf(info->softwareVersion, sizeof(info->softwareVersion), "1.0");
        info->softwareBuildDate = {2024, 1, 1};
        snprintf(info->kernelVersion, sizeof(info->kernelVersion), "1.0");
        snprintf(info->hardwareVersion, sizeof(info->hardwareVersion), "1.0");
        return NETNS::DEV_RET_OK;
    }
    NETNS::DEV_RET GetAlarmStatusXml(const char*, char*& xml, int& len) override
    {
        xml = new char[64];
        len = snprintf(xml, 64, "<config><alarmStatusInfo/></config>");
        return NETNS::DEV_RET_OK;
    }
    NETNS::DEV_RET GetImageCaps(const char*, unsigned int, NETNS::DEV_IMAGE_CAPS* caps) override
    {
        return Show(m_imageCaps, caps);
    }
    NETNS::DEV_RET GetImageParam(const char*, unsigned int, NETNS::DEV_IMAGE_PARAM* param) override
    {
        return Show(m_image, param);
    }
    NETNS::DEV_RET SetImageParam(const char*, unsigned int, const NETNS::DEV_IMAGE_PARAM* param) override
    {
        return Keep(m_image, param);
    }
    int GetProfileCount(unsigned int) override { return 2; }
    NETNS::DEV_RET GetProfileName(const char*, unsigned int, int profile, char* name, int size, int& len) override
    {
        len = snprintf(name, static_cast<std::size_t>(size), "%s", profile == 0 ? "main" : "sub");
        return NETNS::DEV_RET_OK;
    }
    NETNS::DEV_RET GetVideoEncodeCaps(const char*, unsigned int, int, NETNS::DEV_VIDEO_ENCODE_CAPS* caps) override
    {
        return Show(m_videoCaps, caps);
    }
    NETNS::DEV_RET GetVideoProfile(const char*, unsigned int, int profile, NETNS::DEV_VIDEO_PROFILE* config) override
    {
        return Show(m_profiles[profile & 1], config);
    }
    NETNS::DEV_RET SetVideoProfile(const char*, unsigned int, int profile,
                                   const NETNS::DEV_VIDEO_PROFILE* config) override
    {
        return Keep(m_profiles[profile & 1], config);
    }
    NETNS::DEV_RET GetMotionParam(const char*, unsigned int, NETNS::DEV_MOTION_CONFIG* config) override
    {
        return Show(m_motion, config);
    }
    NETNS::DEV_RET GetMotionCaps(const char*, unsigned int, NETNS::DEV_MOTION_CAPS* caps) override
    {
        *caps = {1, 8};
        return NETNS::DEV_RET_OK;
    }
    NETNS::DEV_RET SetMotionParam(const char*, unsigned int, const NETNS::DEV_MOTION_CONFIG* config) override
    {
        return Keep(m_motion, config);
    }
    NETNS::DEV_RET GetPortInfo(const char*, NETNS::DEV_PORT_INFO* info) override
    {
        *info = {80, 9000, 554};
        return NETNS::DEV_RET_OK;
    }
    NETNS::DEV_RET GetNetBasic(const char*, NETNS::DEV_NET_BASIC* config) override { return Show(m_net, config); }
    NETNS::DEV_RET SetNetBasic(const char*, const NETNS::DEV_NET_BASIC* config) override { return Keep(m_net, config); }

private:
    template <typename RECORD>
    NETNS::DEV_RET Show(const RECORD& kept, RECORD* out)
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        *out = kept;
        return NETNS::DEV_RET_OK;
    }
    template <typename RECORD>
    NETNS::DEV_RET Keep(RECORD& kept, const RECORD* in)
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        kept = *in;
        return NETNS::DEV_RET_OK;
    }

    std::mutex m_lock; // over all below
    NETNS::DEV_IMAGE_CAPS m_imageCaps = {};
    NETNS::DEV_IMAGE_PARAM m_image = {};
    NETNS::DEV_VIDEO_ENCODE_CAPS m_videoCaps = {};
    NETNS::DEV_VIDEO_PROFILE m_profiles[2] = {};
    NETNS::DEV_MOTION_CONFIG m_motion = {};
    NETNS::DEV_NET_BASIC m_net = {};
};
