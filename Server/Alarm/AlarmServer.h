// AlarmServer.h: how many alarm inputs and outputs the device has.
//
// Set up once before requests come, read from any thread afterwards.
#pragma once

#include <atomic>

class CAlarmServer
{
public:
    static CAlarmServer& Instance();

    /// Stores the counts. @param channels  not looked at. @return 1
    int Initial(unsigned int channels, unsigned int alarmOuts, unsigned int sensors);

    unsigned int GetAlarmOutNum() const;
    unsigned int GetSensorNum() const;

private:
    CAlarmServer() = default;

    std::atomic<unsigned int> m_alarmOutNum{0};
    std::atomic<unsigned int> m_sensorNum{0};
};
