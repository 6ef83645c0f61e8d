#include "NvrTrace.h"

#include <cstdio>
#include <ostream>

namespace
{

constexpr unsigned int LONG_MS = 1000;

std::string Seconds(unsigned int ms)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%u.%u s", ms / 1000, ms % 1000 / 100);
    return text;
}

std::string FirstLine(const std::string& text)
{
    return text.substr(0, text.find_first_of("\r\n"));
}

void Write(std::ostream& out, const ONVIF_TRACE& trace)
{
    out << "--- to " << trace.ip << ":" << trace.port << "\n"
        << trace.request << "\n--- " << trace.replyBytes << " bytes after " << trace.durationMs << " ms\n"
        << trace.reply << "\n";
    out.flush();
}

} // namespace

bool CNvrTrace::OpenFile(const std::string& path)
{
    m_file.open(path, std::ios::trunc);
    return m_file.is_open();
}

void CNvrTrace::OnExchange(const ONVIF_TRACE& trace)
{
    if (m_file.is_open())
    {
        Write(m_file, trace);
    }
    if (m_out != nullptr)
    {
        Write(*m_out, trace);
    }
    const std::string operation = OperationOf(trace.request);
    const std::string place = std::string(trace.ip) + ":" + std::to_string(trace.port);
    const std::string time = Seconds(trace.durationMs);
    if (trace.replyBytes == 0)
    {
        m_lastOutcome = place + " gave no answer to " + operation + " within " + time;
        if (trace.durationMs >= LONG_MS)
        {
            m_messages << "netserver-nvr: " << m_lastOutcome << std::endl;
        }
        return;
    }
    m_lastOutcome = place + " answered " + operation + " with \"" + FirstLine(trace.reply) + "\"";
    if (trace.durationMs >= LONG_MS)
    {
        m_messages << "netserver-nvr: " << operation << " took " << time << std::endl;
    }
}

std::string CNvrTrace::OperationOf(const std::string& request)
{
    const std::size_t body = request.find(":Body");
    const std::size_t element = body != std::string::npos ? request.find('<', body) : std::string::npos;
    if (element == std::string::npos)
    {
        return "\"" + FirstLine(request) + "\"";
    }
    const std::string name = request.substr(element + 1, request.find_first_of(" />\n", element) - element - 1);
    return name.substr(name.find(':') + 1);
}
