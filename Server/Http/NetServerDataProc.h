// NetServerDataProc.h: decides what one HTTP request is: a file of the web root, an API command, a request that the
// host answers itself, or a 404.
//
// Up to four workers at once. Each request is answered with the settings that stood when it came, also when the host
// starts the server anew meanwhile.
#pragma once

#include "Lock.h"
#include "ThreadAnnotations.h"

#include <list>
#include <map>
#include <memory>
#include <string>

class CDevInterface;
class CHttpProtocolAnalyse;

class CNetServerDataProc
{
public:
    static CNetServerDataProc& Instance();

    /// @param dev    borrowed; logged when null, as are the two texts
    /// @param oldVersion, newVersion  copied; null counts as empty
    /// @param flags  bit 0: the API is served
    /// @return 1
    int Initial(unsigned int channels, unsigned int alarmOuts, unsigned int sensors, CDevInterface* dev,
                const char* oldVersion, const char* newVersion, unsigned int flags);

    /// Takes the directory of the web pages. Without one no file is served. @return 1
    int Start(const char* webRoot);

    /// Answers a request. @param ip  the peer's address as dotted text
    /// @return 1 when a file, a command or the host answered, 0 for a 404; what counts is the response
    int AnalysisRequest(const std::string& ip, const CHttpProtocolAnalyse& request, CHttpProtocolAnalyse& response);

    /// Overwrites every occurrence of a text in place, as far as the first zero byte.
    /// @param text  `len` bytes that need not end in a zero byte
    /// @return 0; -1 when the text does not occur
    static int ModifyFileVertionInfo(char* text, unsigned int len, const char* oldVersion, const char* newVersion);

    /// A file's contents.
    struct FileBytes
    {
        std::unique_ptr<char[]> data;
        int size = 0;
    };

private:
    CNetServerDataProc() = default;

    struct SETTINGS
    {
        std::map<std::string, unsigned int> commands; // numbers by word; empty while the API is off
        std::list<std::string> unused;                // one empty text; nothing reads it
        CDevInterface* dev = nullptr;
        std::string webRoot; // ends in "/", or is empty
        std::string oldVersion;
        std::string newVersion;
    };

    std::shared_ptr<const SETTINGS> Settings();
    void SetSettings(const std::shared_ptr<const SETTINGS>& settings);

    static int ServeFile(const SETTINGS& settings, const CHttpProtocolAnalyse& request, CHttpProtocolAnalyse& response);
    static bool FindFile(const SETTINGS& settings, const std::string& url, FileBytes& file);
    static int ServeCommand(const SETTINGS& settings, const std::string& ip, const CHttpProtocolAnalyse& request,
                            CHttpProtocolAnalyse& response);
    static int ServeByHost(const SETTINGS& settings, const CHttpProtocolAnalyse& request,
                           CHttpProtocolAnalyse& response);

    // Held to take or replace the pointer; the settings behind it do not change.
    CLock m_lock;
    std::shared_ptr<const SETTINGS> m_settings GUARDED_BY(m_lock) = std::make_shared<SETTINGS>();
};
