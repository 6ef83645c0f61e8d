#include "NetServerDataProc.h"

#include "AlarmServer.h"
#include "DevInterface.h"
#include "HttpProtocolAnalyse.h"
#include "QlxApiProtocolProc.h"
#include "ShareSDK.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr unsigned int FLAG_API = 1;
constexpr const char* ONVIF_PREFIX = "onvif";

/// A message that holds one of these is the host's.
constexpr const char* HOST_MARKERS[] = {"ORBIT-700", "queryQRInfo"};

/// Room that a response needs beside its body.
constexpr off_t RESPONSE_ROOM = 4096;

constexpr int STATUS_OK = 200;
constexpr int STATUS_NOT_FOUND = 404;

std::string TextOrEmpty(const char* text)
{
    if (text == nullptr)
    {
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
    }
    return text == nullptr ? std::string() : std::string(text);
}

int NotFound(CHttpProtocolAnalyse& response)
{
    response.SetResponseHeader(STATUS_NOT_FOUND);
    return 0;
}

bool ReadAll(int descriptor, CNetServerDataProc::FileBytes& file)
{
    int done = 0;
    while (done < file.size)
    {
        const ssize_t count = read(descriptor, file.data.get() + done, static_cast<std::size_t>(file.size - done));
        if (count < 0 && errno == EINTR)
        {
            continue;
        }
        if (count <= 0)
        {
            break;
        }
        done += static_cast<int>(count);
    }
    file.size = done;
    return done > 0;
}

enum FILE_STATE
{
    FILE_READ,      ///< a regular file, read whole
    FILE_MISSING,   ///< nothing, a directory, a link or a socket: the host may put a file there
    FILE_UNREADABLE ///< a pipe or a device, an empty or a huge file, or no right to read it
};

/// Reads a regular file whole. A pipe or a device is not even opened: that may wait, or set a device going.
FILE_STATE ReadRegularFile(const std::string& path, CNetServerDataProc::FileBytes& file)
{
    struct stat status
    {
    };
    if (lstat(path.c_str(), &status) != 0 || S_ISDIR(status.st_mode) || S_ISLNK(status.st_mode) ||
        S_ISSOCK(status.st_mode))
    {
        return FILE_MISSING;
    }
    if (!S_ISREG(status.st_mode))
    {
        return FILE_UNREADABLE;
    }
    // Another kind of file may have taken the name in between.
    const int descriptor = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor == -1)
    {
        return FILE_UNREADABLE;
    }
    FILE_STATE state = FILE_UNREADABLE;
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0 &&
        status.st_size <= INT_MAX - RESPONSE_ROOM)
    {
        file.size = static_cast<int>(status.st_size);
        file.data.reset(new char[static_cast<std::size_t>(file.size)]);
        if (ReadAll(descriptor, file))
        {
            state = FILE_READ;
        }
    }
    close(descriptor);
    return state;
}

} // namespace

CNetServerDataProc& CNetServerDataProc::Instance()
{
    static CNetServerDataProc proc;
    return proc;
}

int CNetServerDataProc::Initial(unsigned int channels, unsigned int alarmOuts, unsigned int sensors, CDevInterface* dev,
                                const char* oldVersion, const char* newVersion, unsigned int flags)
{
    if (dev == nullptr)
    {
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
    }
    const auto settings = std::make_shared<SETTINGS>();
    settings->webRoot = Settings()->webRoot;
    settings->dev = dev;
    settings->oldVersion = TextOrEmpty(oldVersion);
    settings->newVersion = TextOrEmpty(newVersion);
    if ((flags & FLAG_API) != 0)
    {
        CQLXApiProc::Instance().Init(channels, dev);
        for (const QLX_API_COMMAND& command : QlxApiCommands())
        {
            settings->commands[command.word] = command.value;
        }
        settings->unused.assign(1, std::string());
    }
    SetSettings(settings);
    CAlarmServer::Instance().Initial(channels, alarmOuts, sensors);
    return 1;
}

int CNetServerDataProc::Start(const char* webRoot)
{
    const auto settings = std::make_shared<SETTINGS>(*Settings());
    settings->webRoot = TextOrEmpty(webRoot);
    // A root of nothing but the slash would be the whole file system.
    if (!settings->webRoot.empty() && settings->webRoot.back() != '/')
    {
        settings->webRoot += '/';
    }
    SetSettings(settings);
    return 1;
}

std::shared_ptr<const CNetServerDataProc::SETTINGS> CNetServerDataProc::Settings()
{
    const CMySingleLock lock(m_lock);
    return m_settings;
}

void CNetServerDataProc::SetSettings(const std::shared_ptr<const SETTINGS>& settings)
{
    const CMySingleLock lock(m_lock);
    m_settings = settings;
}

int CNetServerDataProc::AnalysisRequest(const std::string& ip, const CHttpProtocolAnalyse& request,
                                        CHttpProtocolAnalyse& response)
{
    const std::shared_ptr<const SETTINGS> settings = Settings();
    return request.IsRequestFile() ? ServeFile(*settings, request, response)
                                   : ServeCommand(*settings, ip, request, response);
}

int CNetServerDataProc::ServeFile(const SETTINGS& settings, const CHttpProtocolAnalyse& request,
                                  CHttpProtocolAnalyse& response)
{
    const std::string& url = request.GetUrl();
    FileBytes file;
    if (settings.webRoot.empty() || url.find('\0') != std::string::npos || !FindFile(settings, url, file))
    {
        return NotFound(response);
    }
    ModifyFileVertionInfo(file.data.get(), static_cast<unsigned int>(file.size), settings.oldVersion.c_str(),
                          settings.newVersion.c_str());
    response.SetURL(url); // its extension decides on the type
    response.SetResPackage(STATUS_OK, file.data.get(), file.size, "");
    return 1;
}

/// Reads the file of a URL; a missing one the host may write in the moment that it is asked for it.
bool CNetServerDataProc::FindFile(const SETTINGS& settings, const std::string& url, FileBytes& file)
{
    std::string path = settings.webRoot + (url.empty() ? "index.htm" : url);
    FILE_STATE state = ReadRegularFile(path, file);
    if (state == FILE_MISSING && url.empty())
    {
        path += 'l';
        state = ReadRegularFile(path, file);
    }
    if (state == FILE_MISSING && settings.dev != nullptr)
    {
        char* buffer = nullptr;
        int length = 0;
        settings.dev->GetWebFile(path.c_str(), buffer, length);
        settings.dev->FreeBuffer(buffer);
        state = ReadRegularFile(path, file);
    }
    return state == FILE_READ;
}

int CNetServerDataProc::ServeCommand(const SETTINGS& settings, const std::string& ip,
                                     const CHttpProtocolAnalyse& request, CHttpProtocolAnalyse& response)
{
    const std::string& url = request.GetUrl();
    const auto command = settings.commands.find(url.substr(0, url.find('/')));
    if (command != settings.commands.end())
    {
        CQLXApiProc::Instance().ProcCmd(ip, static_cast<QLX_API_CMD>(command->second), request, response);
        return 1;
    }
    // This device offers no ONVIF service, and the host is not asked for one either.
    if (url.compare(0, std::strlen(ONVIF_PREFIX), ONVIF_PREFIX) == 0)
    {
        return NotFound(response);
    }
    int length = 0;
    const char* message = request.GetBuf(length);
    const bool isHosts = std::any_of(std::begin(HOST_MARKERS), std::end(HOST_MARKERS),
                                     [message](const char* marker) { return std::strstr(message, marker) != nullptr; });
    return isHosts ? ServeByHost(settings, request, response) : NotFound(response);
}

int CNetServerDataProc::ServeByHost(const SETTINGS& settings, const CHttpProtocolAnalyse& request,
                                    CHttpProtocolAnalyse& response)
{
    if (settings.dev == nullptr)
    {
        return NotFound(response);
    }
    int length = 0;
    const char* message = request.GetBuf(length);
    char* body = nullptr;
    int bodyLength = 0;
    int status = 0;
    settings.dev->ProcHttpData(message, length, body, bodyLength, status);
    response.SetURL(request.GetUrl());
    response.SetResPackage(status, body, bodyLength, "");
    if (body != nullptr)
    {
        settings.dev->FreeBuffer(body);
    }
    return 1;
}

int CNetServerDataProc::ModifyFileVertionInfo(char* text, unsigned int len, const char* oldVersion,
                                              const char* newVersion)
{
    if (oldVersion == nullptr || newVersion == nullptr)
    {
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
        return 0;
    }
    const std::size_t length = std::strlen(oldVersion);
    // Where the overwriting would change nothing the search would find the same place again and again.
    if (length == 0 || std::strncmp(oldVersion, newVersion, length) == 0)
    {
        return 0;
    }
    char* end = text + strnlen(text, len);
    char* hit = static_cast<char*>(memmem(text, static_cast<std::size_t>(end - text), oldVersion, length));
    if (hit == nullptr)
    {
        return -1;
    }
    if (std::strlen(newVersion) != length)
    {
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
    }
    while (hit != nullptr)
    {
        // Always as many bytes as the old text has, so that the file keeps its size.
        std::strncpy(hit, newVersion, length);
        end = text + strnlen(text, static_cast<std::size_t>(end - text));
        // What was written may join what stands in front of it to a new occurrence.
        char* from = hit - text < static_cast<std::ptrdiff_t>(length) ? text : hit - (length - 1);
        hit = from < end ? static_cast<char*>(memmem(from, static_cast<std::size_t>(end - from), oldVersion, length))
                         : nullptr;
    }
    return 0;
}
