// NetServerConfig.h: the library's only settings of its own, the alarm server's address and port, in a small XML file
// whose path the host chooses.
//
//     <Config><QlxApi><AlarmServAddr>10.0.0.5</AlarmServAddr><AlarmServPort>7000</AlarmServPort></QlxApi></Config>
//
// The file is read and written anew with each call. Any thread.
#pragma once

#include "Lock.h"
#include "ThreadAnnotations.h"

#include <string>

class CQLXXMLParse;

class CNetServerCfg
{
public:
    /// The process has one, from Instance(); tests make their own.
    static CNetServerCfg& Instance();
    CNetServerCfg() = default;

    static constexpr unsigned int FILE_BYTES_MAX = 1024; ///< a longer file cannot be read
    static constexpr int PORT_MIN = 24;                  ///< ports below it are refused

    /// @param path  null: nothing changes
    void Initial(const char* path);

    /// @param address  dotted IPv4 text, nothing behind it
    /// @return false, with the file unchanged, when the values or the file are not acceptable; true also when the file
    /// could not be written
    bool QlxApiSetAlarmServerConfig(const std::string& address, int port);
    /// @return false, with both empty, when the file cannot be read or holds no such values
    bool QlxApiGetAlarmServerConfig(std::string& address, int& port);

private:
    bool LoadXml(CQLXXMLParse& document, const char* path) REQUIRES(m_lock);
    bool SaveXml(CQLXXMLParse& document) REQUIRES(m_lock);

    // Over each access to the file, so that two clients do not mix their values: the file is small and on the device.
    CLock m_lock;
    std::string m_path GUARDED_BY(m_lock);
    bool m_isInitialised GUARDED_BY(m_lock) = false;
};
