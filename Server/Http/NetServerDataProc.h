// NetServerDataProc.h: decides what one HTTP request is: a file of the web root, an API command, a request that the
// host answers itself, or a 404.
//
// Up to four workers at once, without a lock: nothing changes after Initial and Start.
#pragma once

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

    int ServeFile(const CHttpProtocolAnalyse& request, CHttpProtocolAnalyse& response);
    int ServeCommand(const std::string& ip, const CHttpProtocolAnalyse& request, CHttpProtocolAnalyse& response);
    int ServeByHost(const CHttpProtocolAnalyse& request, CHttpProtocolAnalyse& response);
    bool FindFile(const std::string& url, FileBytes& file);

    std::map<std::string, unsigned int> m_commands; ///< numbers by word; empty while the API is off
    std::list<std::string> m_unused;                ///< one empty text; nothing reads it
    CDevInterface* m_dev = nullptr;
    std::string m_webRoot; ///< ends in "/", or is empty
    std::string m_oldVersion;
    std::string m_newVersion;
};
