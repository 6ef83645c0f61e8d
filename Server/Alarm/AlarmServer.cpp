#include "AlarmServer.h"

CAlarmServer& CAlarmServer::Instance()
{
    static CAlarmServer server;
    return server;
}

int CAlarmServer::Initial(unsigned int /*channels*/, unsigned int alarmOuts, unsigned int sensors)
{
    m_alarmOutNum = alarmOuts;
    m_sensorNum = sensors;
    return 1;
}

unsigned int CAlarmServer::GetAlarmOutNum() const
{
    return m_alarmOutNum;
}

unsigned int CAlarmServer::GetSensorNum() const
{
    return m_sensorNum;
}
