// CameraWorld.h: a camera device on a store of its own, without media. Local to one test.
#pragma once

#include "CameraDevice.h"
#include "TempDirectory.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

inline std::string Verify(const std::string& name, const std::string& password)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><userinfo>\t<username>" + name + "</username>\t<password>" +
           password + "</password>\t<ip>10.0.0.2</ip></userinfo>";
}

/// Remembers what the device made happen.
class CRecordedEffects : public CDeviceEffects
{
public:
    void SettingsChanged(SettingsTopic topic, const DeviceSettings&) override { m_topics.push_back(topic); }
    void RequestKeyFrames() override { ++m_keyFrames; }
    void Reboot() override { ++m_reboots; }

    std::vector<SettingsTopic> m_topics;
    int m_keyFrames = 0;
    int m_reboots = 0;
};

class CCameraWorld : public ::testing::Test
{
protected:
    CCameraWorld()
    {
        m_options.channels = 3;
        m_options.users = {{"admin", "admin"}, {"second", "pass"}};
    }

    void SetUp() override { Start(); }

    /// Starts the device, as the program does: on what is stored.
    void Start()
    {
        m_device.reset();
        m_store = std::make_unique<CSettingsStore>();
        std::string problem;
        ASSERT_TRUE(m_store->Open(m_directory.Path("camera.db"), problem)) << problem;
        if (m_records == nullptr)
        {
            m_records = std::make_unique<CRecordIndex>();
            ASSERT_TRUE(m_records->Open(m_directory.Path(), problem)) << problem;
        }
        DeviceSettings settings = DefaultSettings(m_options);
        m_store->Load(m_options, settings);
        m_users.Replace(settings.users);
        m_alarms.Configure(settings);
        m_device = std::make_unique<CCameraDevice>(
            m_options, CCameraDevice::Parts{*m_store, m_users, m_head, m_alarms, *m_records, m_effects}, settings);
    }

    CTempDirectory m_directory;
    CameraOptions m_options;
    CCameraUsers m_users{{}};
    CPtzHead m_head;
    std::vector<AlarmEdge> m_edges;
    CAlarmBoard m_alarms{[this](const AlarmEdge& edge)
                         {
                             m_edges.push_back(edge);
                         }};
    CRecordedEffects m_effects;
    std::unique_ptr<CSettingsStore> m_store;
    std::unique_ptr<CRecordIndex> m_records;
    std::unique_ptr<CCameraDevice> m_device;

    const std::string m_adminText = Verify("admin", "admin");
    const std::string m_strangerText = Verify("admin", "wrong");
    const char* const m_admin = m_adminText.c_str();
    const char* const m_stranger = m_strangerText.c_str();
};
