#include "AlarmServer.h"

#include "NetServerConfig.h"
#include "NetSocket.h"
#include "QLXXMLParse.h"
#include "QlxApiXmlFmt.h"
#include "ShareSDK.h"

#include <algorithm>

namespace
{

const int SEND_ATTEMPTS_MAX = 41;

const char* Word(bool active)
{
    return active ? "true" : "false";
}

/// One element for each id, in the order of the ids.
void AddStatuses(CQLXXMLParse& document, unsigned int parent, const char* name,
                 const std::map<unsigned int, bool>& statuses)
{
    for (const auto& status : statuses)
    {
        const unsigned int element = document.AddElement(parent, name, Word(status.second), false);
        document.SetAttribute(element, "type", std::string("boolean"));
        document.SetAttribute(element, "id", status.first);
    }
}

void AddSensors(CQLXXMLParse& document, unsigned int parent, const std::map<unsigned int, bool>& statuses)
{
    if (statuses.empty())
    {
        return;
    }
    const unsigned int list = document.AddElement(parent, "sensorAlarmIn", "", false);
    document.SetAttribute(list, "type", std::string("list"));
    document.SetAttribute(list, "count", static_cast<unsigned int>(statuses.size()));
    for (const auto& status : statuses)
    {
        document.SetAttribute(document.AddElement(list, "item", Word(status.second), false), "id", status.first);
    }
}

/// Sends what a peer takes in so many attempts; one that does not read shall not hold the host.
void Send(int handle, const std::string& text)
{
    const char* next = text.data();
    int left = static_cast<int>(text.size());
    bool broken = false;
    for (int attempts = 0; left > 0 && attempts < SEND_ATTEMPTS_MAX; ++attempts)
    {
        const int sent = NET_SOCKET_Send_Immediate(handle, next, left, broken);
        if (broken)
        {
            return;
        }
        next += std::max(sent, 0);
        left -= std::max(sent, 0);
    }
}

} // namespace

CAlarmServer& CAlarmServer::Instance()
{
    static CAlarmServer server;
    return server;
}

int CAlarmServer::Initial(unsigned int channels, unsigned int alarmOuts, unsigned int sensors)
{
    const CMySingleLock lock(m_lock);
    m_motion.clear();
    m_videoLoss.clear();
    m_sensors.clear();
    for (unsigned int id = 0; id < channels; ++id)
    {
        m_motion[id] = false;
        m_videoLoss[id] = false;
    }
    for (unsigned int id = 0; id < sensors; ++id)
    {
        m_sensors[id] = false;
    }
    m_alarmOutNum = alarmOuts;
    m_sensorNum = sensors;
    return 1;
}

unsigned int CAlarmServer::GetAlarmOutNum() const
{
    const CMySingleLock lock(m_lock);
    return m_alarmOutNum;
}

unsigned int CAlarmServer::GetSensorNum() const
{
    const CMySingleLock lock(m_lock);
    return m_sensorNum;
}

void CAlarmServer::SetMotionStatus(unsigned int id, bool active)
{
    SetStatus(&CAlarmServer::m_motion, id, active);
}

void CAlarmServer::SetSensorStatus(unsigned int id, bool active)
{
    SetStatus(&CAlarmServer::m_sensors, id, active);
}

void CAlarmServer::SetVideoLossStatus(unsigned int id, bool active)
{
    SetStatus(&CAlarmServer::m_videoLoss, id, active);
}

void CAlarmServer::SetStatus(StatusMap CAlarmServer::*statuses, unsigned int id, bool active)
{
    bool isKnown = false;
    {
        const CMySingleLock lock(m_lock);
        const auto status = (this->*statuses).find(id);
        isKnown = status != (this->*statuses).end();
        if (isKnown)
        {
            status->second = active;
        }
    }
    if (!isKnown)
    {
        SHARESDK_NormalOutput("Warning, unknowned channel ID!", __FILE__, __LINE__);
        return;
    }
    AlarmStatusNotify();
}

bool CAlarmServer::IsActive() const
{
    const auto anyActive = [](const StatusMap& statuses)
    {
        return std::any_of(statuses.begin(), statuses.end(), [](const auto& status) { return status.second; });
    };
    return anyActive(m_motion) || anyActive(m_videoLoss) || anyActive(m_sensors);
}

bool CAlarmServer::GetAlarmStatus(std::string& xml) const
{
    StatusMap motion;
    StatusMap videoLoss;
    StatusMap sensors;
    {
        const CMySingleLock lock(m_lock);
        if (!IsActive())
        {
            return false;
        }
        motion = m_motion;
        videoLoss = m_videoLoss;
        sensors = m_sensors;
    }
    CQLXXMLParse document(CQlxApiXmlFmt::GetAlarmStauts());
    const unsigned int info = document.GetFirstItem("config/alarmStatusInfo");
    AddStatuses(document, info, "motionAlarm", motion);
    AddStatuses(document, info, "videoLoss", videoLoss);
    AddSensors(document, info, sensors);
    xml = *document.GetDoc();
    return true;
}

int CAlarmServer::AlarmStatusNotify()
{
    std::string xml;
    GetAlarmStatus(xml);
    std::string address;
    int port = 0;
    {
        const CMySingleLock lock(m_lock);
        address = m_address;
        port = m_port;
    }
    // Also with nothing to say, and with no address yet.
    const int handle = NET_SOCKET_AddConnect(0, address.c_str(), static_cast<unsigned short>(port));
    Send(handle, xml);
    NET_SOCKET_DestroyHNetCommunication(handle);
    return 0;
}

bool CAlarmServer::SetAlarmServerConfig(const std::string& address, int port)
{
    {
        const CMySingleLock lock(m_lock);
        m_address = address;
        m_port = port;
    }
    return CNetServerCfg::Instance().QlxApiSetAlarmServerConfig(address, port);
}

bool CAlarmServer::GetAlarmServerConfig(std::string& address, int& port)
{
    return CNetServerCfg::Instance().QlxApiGetAlarmServerConfig(address, port);
}
