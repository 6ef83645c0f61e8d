#include "CameraWorld.h"

#include <cstring>

using namespace NETNS;

namespace
{

class CameraDeviceAlarm : public CCameraWorld
{
protected:
    int Control(const std::string& command, const std::string& header = "Authorization: Basic YWRtaW46YWRtaW4=\r\n")
    {
        const std::string request = "POST /camera HTTP/1.1\r\n" + header + "\r\nORBIT-700 " + command;
        char* body = nullptr;
        int length = 0;
        int status = 0;
        m_device->ProcHttpData(request.c_str(), static_cast<int>(request.size()), body, length, status);
        m_answer.assign(body == nullptr ? "" : body, static_cast<std::size_t>(length));
        m_device->FreeBuffer(body);
        return status;
    }
    bool Answered(const char* part) const { return m_answer.find(part) != std::string::npos; }

    std::string m_answer;
};

} // namespace

TEST_F(CameraDeviceAlarm, KeepsTheMotionSettings)
{
    DEV_MOTION_CONFIG motion = {};
    ASSERT_EQ(DEV_RET_OK, m_device->GetMotionParam(m_admin, 1, &motion));
    EXPECT_EQ(8U, motion.rows);
    EXPECT_EQ(16U, motion.columns);
    EXPECT_EQ(0xffffU, motion.area[7].cells);
    motion.motionSwitch = 1;
    motion.sensitivity = 8;
    motion.area[3].cells = 0xfffff00f;
    motion.alarmOuts[0] = 1;
    motion.alarmOutCount = 1;
    ASSERT_EQ(DEV_RET_OK, m_device->SetMotionParam(m_admin, 1, &motion));
    Start();
    DEV_MOTION_CONFIG kept = {};
    ASSERT_EQ(DEV_RET_OK, m_device->GetMotionParam(m_admin, 1, &kept));
    EXPECT_EQ(1U, kept.motionSwitch);
    EXPECT_EQ(8, kept.sensitivity);
    EXPECT_EQ(0xf00fU, kept.area[3].cells); // a row has 16 cells
    ASSERT_EQ(1U, kept.alarmOutCount);
    EXPECT_EQ(1U, kept.alarmOuts[0]);
}

TEST_F(CameraDeviceAlarm, MotionSettingsOutsideOfTheLimitsAreRefused)
{
    DEV_MOTION_CONFIG good = {};
    ASSERT_EQ(DEV_RET_OK, m_device->GetMotionParam(m_admin, 1, &good));
    for (const int sensitivity : {0, 9, -1})
    {
        DEV_MOTION_CONFIG motion = good;
        motion.sensitivity = sensitivity;
        EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->SetMotionParam(m_admin, 1, &motion));
    }
    DEV_MOTION_CONFIG motion = good;
    motion.alarmOuts[0] = 2; // there are 0 and 1
    motion.alarmOutCount = 1;
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->SetMotionParam(m_admin, 1, &motion));
    motion = good;
    motion.alarmHoldTime = 601;
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->SetMotionParam(m_admin, 1, &motion));
    DEV_MOTION_CAPS caps = {};
    ASSERT_EQ(DEV_RET_OK, m_device->GetMotionCaps(m_admin, 1, &caps));
    EXPECT_EQ(1U, caps.sensitivityMin);
    EXPECT_EQ(8U, caps.sensitivityMax);
}

TEST_F(CameraDeviceAlarm, SensorsAndOutputsCountFromZero)
{
    DEV_SENSOR_CONFIG sensor = {};
    DEV_ALARM_OUT_CONFIG output = {};
    ASSERT_EQ(DEV_RET_OK, m_device->GetSensorConfig(m_admin, 0, &sensor));
    EXPECT_EQ(0U, sensor.id);
    EXPECT_STREQ("Sensor 0", sensor.name);
    ASSERT_EQ(DEV_RET_OK, m_device->GetSensorConfig(m_admin, 1, &sensor));
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->GetSensorConfig(m_admin, 2, &sensor));
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->GetSensorConfig(m_admin, -1, &sensor));
    ASSERT_EQ(DEV_RET_OK, m_device->GetAlarmOutConfig(m_admin, 1, &output));
    EXPECT_EQ(1U, output.id);
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->GetAlarmOutConfig(m_admin, 2, &output));
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->ManualAlarmOut(m_admin, 2, true));
    EXPECT_EQ(DEV_RET_NO_RIGHT, m_device->ManualAlarmOut(m_stranger, 1, true));
}

TEST_F(CameraDeviceAlarm, KeepsSensorsAndOutputs)
{
    DEV_SENSOR_CONFIG sensor = {};
    std::strcpy(sensor.name, "Door");
    sensor.sensorSwitch = 1;
    sensor.voltage = 1;
    sensor.alarmHoldTime = 9;
    sensor.id = 77; // that of the request counts
    DEV_ALARM_OUT_CONFIG output = {0, "Siren", 3};
    ASSERT_EQ(DEV_RET_OK, m_device->SetSensorConfig(m_admin, 1, &sensor));
    ASSERT_EQ(DEV_RET_OK, m_device->SetAlarmOutConfig(m_admin, 1, &output));
    Start();
    DEV_SENSOR_CONFIG kept = {};
    ASSERT_EQ(DEV_RET_OK, m_device->GetSensorConfig(m_admin, 1, &kept));
    EXPECT_STREQ("Door", kept.name);
    EXPECT_EQ(1U, kept.id);
    EXPECT_EQ(1U, kept.voltage);
    EXPECT_EQ(9U, kept.alarmHoldTime);
    ASSERT_EQ(DEV_RET_OK, m_device->GetAlarmOutConfig(m_admin, 1, &output));
    EXPECT_STREQ("Siren", output.name);
    ASSERT_EQ(DEV_RET_OK, m_device->GetSensorConfig(m_admin, 0, &kept));
    EXPECT_STREQ("Sensor 0", kept.name);
    sensor.voltage = 2;
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->SetSensorConfig(m_admin, 1, &sensor));
}

TEST_F(CameraDeviceAlarm, TheQuietStatusNamesEveryChannelAndSensor)
{
    char* xml = nullptr;
    int length = 0;
    ASSERT_EQ(DEV_RET_OK, m_device->GetAlarmStatusXml(m_admin, xml, length));
    EXPECT_STREQ("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                 "<config version=\"1.0\" xmlns=\"http://www.qlx.example/ver10\"><alarmStatusInfo>"
                 "<motionAlarm type=\"boolean\" id=\"0\">false</motionAlarm>"
                 "<motionAlarm type=\"boolean\" id=\"1\">false</motionAlarm>"
                 "<motionAlarm type=\"boolean\" id=\"2\">false</motionAlarm>"
                 "<videoLoss type=\"boolean\" id=\"0\">false</videoLoss>"
                 "<videoLoss type=\"boolean\" id=\"1\">false</videoLoss>"
                 "<videoLoss type=\"boolean\" id=\"2\">false</videoLoss>"
                 "<sensorAlarmIn type=\"list\" count=\"2\"><item id=\"0\">false</item><item id=\"1\">false</item>"
                 "</sensorAlarmIn></alarmStatusInfo></config>\n",
                 xml);
    EXPECT_EQ(std::strlen(xml), static_cast<std::size_t>(length));
    m_device->FreeBuffer(xml);
    EXPECT_EQ(nullptr, xml);
    EXPECT_EQ(DEV_RET_NO_RIGHT, m_device->GetAlarmStatusXml(m_stranger, xml, length));
    EXPECT_EQ(nullptr, xml);
}

TEST_F(CameraDeviceAlarm, TheCamerasOwnRequestSwitchesSensorsAndOutputs)
{
    ASSERT_EQ(200, Control("sensor 1 close"));
    EXPECT_TRUE(Answered("<sensor id=\"1\" contact=\"closed\">true</sensor>"));
    EXPECT_TRUE(Answered("<sensor id=\"0\" contact=\"open\">false</sensor>"));
    ASSERT_EQ(1U, m_edges.size());
    EXPECT_EQ(AlarmKind::Sensor, m_edges[0].kind);
    EXPECT_EQ(1U, m_edges[0].id);
    EXPECT_TRUE(m_edges[0].active);
    ASSERT_EQ(200, Control("output 0 on"));
    EXPECT_TRUE(Answered("<output id=\"0\">true</output>"));
    ASSERT_EQ(200, Control("output 0 off"));
    EXPECT_TRUE(Answered("<output id=\"0\">false</output>"));
    ASSERT_EQ(200, Control("status"));
    EXPECT_TRUE(Answered("<ptz x=\"0.500\" y=\"0.500\" zoom=\"1.000\" focus=\"50\" iris=\"50\" cruise=\"false\"/>"));
}

TEST_F(CameraDeviceAlarm, OtherCommandsAreRefusedAndChangeNothing)
{
    for (const char* command : {"", "sensor", "sensor 2 close", "sensor -1 close", "sensor 0 on", "output 0 open",
                                "output 9 on", "sensor 0 close now", "reboot", "sensor 00 close"})
    {
        EXPECT_EQ(400, Control(command)) << command;
        EXPECT_EQ("", m_answer);
    }
    EXPECT_TRUE(m_edges.empty());
}

TEST_F(CameraDeviceAlarm, TheCamerasOwnRequestNeedsALogin)
{
    for (const char* header : {"", "Authorization: Basic YWRtaW46d3Jvbmc=\r\n", "Authorization: Basic !!\r\n",
                               "Authorization: Digest username=\"admin\"\r\n"})
    {
        EXPECT_EQ(401, Control("sensor 1 close", header)) << header;
    }
    EXPECT_TRUE(m_edges.empty());
}
