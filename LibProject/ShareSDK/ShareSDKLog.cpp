// ShareSDKLog.cpp: log lines, written by spdlog. Any thread.
//
// A line: date, time, kernel thread id, kind, place, text (to syslog, which adds the rest, place and text). Bytes below
// a blank are written as blanks, so that nothing a peer sends can begin a line of its own.
#include "ShareSDK.h"

#include <atomic>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include <spdlog/logger.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/sinks/syslog_sink.h>

namespace
{

const char* const LINE_PATTERN = "%Y-%m-%d %H:%M:%S.%e %t %l %v";

/// The one place where lines go.
class CLog
{
public:
    static CLog& Instance();

    void Write(spdlog::level::level_enum kind, const char* text, const char* file, unsigned int line);
    void SetSink(std::shared_ptr<spdlog::sinks::sink> sink);
    void SetLevel(SHARESDK_LOG_LEVEL level) { m_level.store(level); }

private:
    CLog();
    bool Wants(spdlog::level::level_enum kind) const;

    std::atomic<SHARESDK_LOG_LEVEL> m_level{SHARESDK_LOG_ALL};
    std::mutex m_lock; // guards the pointer, not the logger behind it
    std::shared_ptr<spdlog::logger> m_logger;
};

CLog::CLog()
{
    SetSink(std::make_shared<spdlog::sinks::stderr_sink_mt>());
}

CLog& CLog::Instance()
{
    // Never destroyed: objects that end with the process still log.
    static CLog& log = *new CLog;
    return log;
}

void CLog::SetSink(std::shared_ptr<spdlog::sinks::sink> sink)
{
    auto logger = std::make_shared<spdlog::logger>("netserver", std::move(sink));
    logger->set_pattern(LINE_PATTERN);
    logger->flush_on(spdlog::level::info);
    std::lock_guard<std::mutex> lock(m_lock);
    m_logger.swap(logger);
}

bool CLog::Wants(spdlog::level::level_enum kind) const
{
    const SHARESDK_LOG_LEVEL level = m_level.load();
    return level == SHARESDK_LOG_ALL || (level == SHARESDK_LOG_ABNORMAL && kind == spdlog::level::err);
}

void CLog::Write(spdlog::level::level_enum kind, const char* text, const char* file, unsigned int line)
{
    if (!Wants(kind))
    {
        return;
    }
    const char* path = file != nullptr ? file : "";
    const char* slash = std::strrchr(path, '/');
    std::string output = slash != nullptr ? slash + 1 : path;
    output.append(":").append(std::to_string(line)).append(" ").append(text != nullptr ? text : "");
    for (char& byte : output)
    {
        if (static_cast<unsigned char>(byte) < ' ' || byte == 0x7F)
        {
            byte = ' ';
        }
    }
    std::shared_ptr<spdlog::logger> logger;
    {
        std::lock_guard<std::mutex> lock(m_lock);
        logger = m_logger;
    }
    logger->log(kind, spdlog::string_view_t(output));
}

} // namespace

void SHARESDK_NormalOutput(const char* text, const char* file, unsigned int line)
{
    CLog::Instance().Write(spdlog::level::info, text, file, line);
}

void SHARESDK_AbnormalOutput(const char* text, const char* file, unsigned int line)
{
    CLog::Instance().Write(spdlog::level::err, text, file, line);
}

void SHARESDK_LogToConsole()
{
    CLog::Instance().SetSink(std::make_shared<spdlog::sinks::stderr_sink_mt>());
}

bool SHARESDK_LogToFile(const char* path, unsigned int maxBytes, unsigned int maxFiles)
{
    if (path == nullptr || maxBytes == 0)
    {
        return false;
    }
    try // spdlog tells of a file that cannot be opened by an exception
    {
        CLog::Instance().SetSink(std::make_shared<spdlog::sinks::rotating_file_sink_mt>(path, maxBytes, maxFiles));
        return true;
    }
    catch (const spdlog::spdlog_ex&)
    {
        return false;
    }
}

void SHARESDK_LogToSyslog(const char* ident)
{
    SHARESDK_LogToConsole(); // an older syslog sink ends first: its end closes the process's syslog connection
    CLog::Instance().SetSink(std::make_shared<spdlog::sinks::syslog_sink_mt>(ident != nullptr ? ident : "netserver",
                                                                             LOG_PID, LOG_DAEMON, false));
}

void SHARESDK_SetLogLevel(SHARESDK_LOG_LEVEL level)
{
    CLog::Instance().SetLevel(level);
}
