// AlarmServer.h: which alarms are active, and who is told.
//
// The host reports each edge of motion, video loss and the sensors; every report is pushed to one configured server
// over TCP, on the reporting thread: the document as it stands, without any framing, and the end of the connection ends
// it. When nothing is active the server gets a connection without a byte. Nothing is retried.
//
// Any thread.
#pragma once

#include "Lock.h"
#include "ThreadAnnotations.h"

#include <map>
#include <string>

class CQLXXMLParse;

class CAlarmServer
{
public:
    /// The process has one, from Instance(); tests make their own.
    static CAlarmServer& Instance();
    CAlarmServer() = default;

    /// Sets up the ids, counted from 0, with nothing active. @return 1
    int Initial(unsigned int channels, unsigned int alarmOuts, unsigned int sensors);

    unsigned int GetAlarmOutNum() const;
    unsigned int GetSensorNum() const;

    // Each report is pushed, also when nothing changes with it; one for an unknown id is only logged.
    // A push waits for the connection a second at most, and for a server that reads nothing at most 41 times 100 ms.
    void SetMotionStatus(unsigned int id, bool active);
    void SetSensorStatus(unsigned int id, bool active);
    void SetVideoLossStatus(unsigned int id, bool active);

    /// Writes the status document.
    /// @param xml  left alone when nothing is active
    /// @return whether anything is active
    bool GetAlarmStatus(std::string& xml) const;

    /// Pushes the status. @return 0, whatever became of it
    int AlarmStatusNotify();

    /// Where to push to, and into the settings file. The values are in use from now on even when they are refused.
    /// @param address  dotted IPv4 text
    /// @return false when the settings file refuses them
    bool SetAlarmServerConfig(const std::string& address, int port);
    /// What the settings file holds, which is not what is in use: pushes go nowhere until SetAlarmServerConfig was
    /// called once. @return false, with both empty, when it holds nothing
    static bool GetAlarmServerConfig(std::string& address, int& port);

private:
    using StatusMap = std::map<unsigned int, bool>;

    void SetStatus(StatusMap CAlarmServer::*statuses, unsigned int id, bool active);
    bool IsActive() const REQUIRES(m_lock);

    // Host threads report, HTTP workers read and configure. Nothing is called under it.
    mutable CLock m_lock;
    StatusMap m_motion GUARDED_BY(m_lock);
    StatusMap m_sensors GUARDED_BY(m_lock);
    StatusMap m_videoLoss GUARDED_BY(m_lock);
    std::string m_address GUARDED_BY(m_lock);
    int m_port GUARDED_BY(m_lock) = 0;
    unsigned int m_alarmOutNum GUARDED_BY(m_lock) = 0;
    unsigned int m_sensorNum GUARDED_BY(m_lock) = 0;
};
