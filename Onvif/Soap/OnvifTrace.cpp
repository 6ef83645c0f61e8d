#include "OnvifTrace.h"

#include "OnvifTraceObserver.h"
#include "PFHelper.h"

#include <atomic>
#include <string_view>

namespace
{

std::atomic<CONVIFTraceObserver*> g_observer{nullptr};

const char* const HIDDEN = "***";
const std::string_view BASIC = "Authorization: Basic ";
const std::string_view PASSWORD = "Password";
const std::string_view SCHEME = "://";

/// Where one of the characters of `end` comes first, or the text's end.
std::size_t FindEnd(const std::string& text, std::size_t from, const char* end)
{
    const std::size_t found = text.find_first_of(end, from);
    return found != std::string::npos ? found : text.size();
}

void MaskBasic(std::string& text)
{
    for (std::size_t at = text.find(BASIC); at != std::string::npos; at = text.find(BASIC, at))
    {
        at += BASIC.size();
        text.replace(at, FindEnd(text, at, "\r\n") - at, HIDDEN);
    }
}

/// @param tag  the place behind its "<"
bool IsPassword(const std::string& text, std::size_t tag)
{
    std::string_view name(text);
    name = name.substr(tag, FindEnd(text, tag, " \t\r\n>") - tag);
    const std::size_t colon = name.find(':'); // any prefix
    return (colon != std::string_view::npos ? name.substr(colon + 1) : name) == PASSWORD && name.front() != '/';
}

void MaskPasswords(std::string& text)
{
    for (std::size_t at = text.find('<'); at != std::string::npos; at = text.find('<', at))
    {
        ++at;
        const std::size_t content = FindEnd(text, at, ">") + 1;
        const std::size_t end = FindEnd(text, content, "<");
        if (IsPassword(text, at) && end > content)
        {
            text.replace(content, end - content, HIDDEN);
        }
    }
}

void MaskUrls(std::string& text)
{
    for (std::size_t at = text.find(SCHEME); at != std::string::npos; at = text.find(SCHEME, at))
    {
        at += SCHEME.size();
        const std::size_t end = FindEnd(text, at, "/?#<>\"' \t\r\n");
        const std::size_t sign = text.rfind('@', end);
        if (sign != std::string::npos && sign >= at && sign < end)
        {
            text.replace(at, sign - at, HIDDEN);
        }
    }
}

} // namespace

COnvifTrace::COnvifTrace()
    : m_observer(g_observer.load()), m_start(m_observer != nullptr ? CPFHelper::GetTickCount() : 0)
{
}

void COnvifTrace::Tell(const char* ip, unsigned short port, const char* request, const char* reply,
                       std::size_t replyBytes) const
{
    if (m_observer == nullptr)
    {
        return;
    }
    const unsigned int durationMs = CPFHelper::GetTickCount() - m_start;
    const std::string maskedRequest = Mask(request);
    const std::string maskedReply = Mask(reply);
    m_observer->OnExchange(
        {ip, port, maskedRequest.c_str(), maskedReply.c_str(), static_cast<unsigned int>(replyBytes), durationMs});
}

void COnvifTrace::SetObserver(CONVIFTraceObserver* observer)
{
    g_observer = observer;
}

std::string COnvifTrace::Mask(const std::string& text)
{
    std::string masked = text;
    MaskBasic(masked);
    MaskPasswords(masked);
    MaskUrls(masked);
    return masked;
}
